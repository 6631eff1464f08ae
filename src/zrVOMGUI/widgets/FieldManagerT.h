#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/util/LockBool.h"
#include "zrVOMGUI/foundation/util/Signal.h"
#include "zrVOMGUI/foundation/vom/Field.h"
#include "zrVOMGUI/widgets/FieldTallyT.h"
#include "zrVOMGUI/widgets/ObjsManager.h"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ZR::VOM::GUI {

/// Reads and sets the field of one name on a whole list of objects, and tells what the objects say.
///
/// `F` is a field class of one value, such as FieldReal; a field of that name and another class
/// counts as none. While it is bound, the manager hears of each field that appears, goes or
/// changes, and emits sigModify for each. An object that dies isn't heard of: it counts as absent
/// from the next update on.
///
/// Owns neither objects nor fields. Listeners of model and manager may destroy the manager or give
/// it another list at any moment. GUI thread only.
template <class F>
class ZRVOMGUI_EXPORT FieldManagerT : public ObjsManager {
public:
    using Value = typename F::Value;

    /// What an update found.
    struct SigModifyData : SigVoidData {
        std::size_t count;  ///< How many objects have the field.
        bool mixed;         ///< Not all of them agree. A NaN agrees with nothing.
        Value const *value; ///< That of the first of them. Valid only during the signal. Not owned.
    };

    /// Over an own list.
    FieldManagerT() = default;
    /// Over the caller's list, which must outlive this.
    explicit FieldManagerT(ObjPtrs &objs)
        : ObjsManager(objs)
    {
    }
    /// Over the list of `other`.
    explicit FieldManagerT(ObjsManager &other)
        : ObjsManager(other)
    {
    }
    /// The same, of another manager.
    FieldManagerT(FieldManagerT &other)
        : ObjsManager(other)
    {
    }
    ~FieldManagerT() override
    {
        unbind();
        life->isOver = true;
    }

    /// The name of the field, the same on all objects; empty at first, which is none.
    std::string const &getField() const { return field; }
    /// The name that is set already does nothing.
    void setField(std::string const &name)
    {
        if (name == field)
            return;
        unbind();
        field = name;
        if (bound)
            bind();
        update();
    }

    /// Whether the manager follows the model, as far as there is a list and a name.
    bool isBound() const { return bound; }
    /// Begins and ceases to follow the model. Does nothing where it does or doesn't already.
    void bindObjs()
    {
        if (bound)
            return;
        bound = true;
        bind();
        update();
    }
    void unbindObjs()
    {
        if (!bound)
            return;
        unbind();
        bound = false;
        update();
    }

    /// How many objects of the list had the field when it was last heard of them.
    /// KEPT: one that died since counts, so that a line doesn't lose focus while objects die.
    std::size_t getFieldCount() const { return fieldCount; }

    /// Reads all fields, and emits sigModify. Does nothing inside sigModify: what listeners change
    /// there is told with the next change. An exception from a listener goes to the error sink.
    void update()
    {
        if (life->isUpdating)
            return;
        tally.recount();
        tell();
    }

    /// Sets the value on every object that has the field, in list order, and updates once. With
    /// `createOnDemand` the other live objects get such a field, with that value.
    ///
    /// KEPT: where a listener refuses, or raises whatever exception, the object stays as it is, and
    /// the others get the value all the same. Nothing is reported: users see a mixed value.
    ///
    /// Ends where a listener unbinds the manager or gives it another list or name.
    void set(Value const &value, bool createOnDemand)
    {
        const std::shared_ptr<Life> held = life;
        if (setAll(value, createOnDemand))
            update();
    }

    /// After each update.
    SignalT<SigModifyData> sigModify;

protected:
    void onSetObjs() override
    {
        if (!bound)
            return;
        unbind();
        bind();
        update();
    }

private:
    /// Tells a slot whose place in the list it works for.
    struct Index : Class {
        explicit Index(std::size_t position)
            : index(position)
        {
        }
        std::size_t index;
    };

    /// What operations that call listeners look at afterwards. Outlives the manager where one
    /// runs.
    struct Life {
        bool isUpdating = false;
        bool isOver = false;
        unsigned numBindings = 0;
    };

    struct ObjConnections {
        Signal::Connection add, remove;
    };
    struct FieldConnections {
        Signal::Connection death, set;
        void disconnect()
        {
            death.disconnect();
            set.disconnect();
        }
    };

    /// Whether the manager is still there, and still holds the fields that it held before.
    class Binding {
    public:
        explicit Binding(FieldManagerT const &manager)
            : life(manager.life)
            , number(life->numBindings)
        {
        }
        bool isOver() const { return life->isOver || life->numBindings != number; }

    private:
        const std::shared_ptr<Life> life;
        const unsigned number;
    };

    /// What an update is where every change was noted.
    void tell()
    {
        const std::shared_ptr<Life> held = life;
        if (held->isUpdating)
            return;
        const LockBool lock(held->isUpdating);
        const Value value = tally.getValue();
        tally.refresh();
        SigModifyData data;
        data.count = tally.getCount();
        data.mixed = tally.isMixed();
        data.value = &value;
        sigModify.emitCatching(data, "ZR::VOM::GUI::FieldManagerT::update");
    }

    bool canBind() const { return !field.empty() && !getObjs().empty(); }

    void bind()
    {
        if (!canBind())
            return;
        ObjPtrs const &objs = getObjs();
        tally.reset(objs.size());
        boundObjs.resize(objs.size());
        objConnections.resize(objs.size());
        fieldConnections.resize(objs.size());
        for (std::size_t i = 0; i < objs.size(); ++i)
            if (Object *const object = objs[i].get())
                bindObj(*object, i);
    }

    void bindObj(Object &object, std::size_t i)
    {
        boundObjs[i] = &object;
        const std::size_t place = object.findFieldIndex(field);
        if (F *const found = fieldAt(object, place)) {
            tally.fill(i, *found);
            ++fieldCount;
            watchField(object, *found, i);
        } else {
            watchAdding(object, i);
        }
    }

    void unbind()
    {
        ++life->numBindings;
        for (ObjConnections &connections : objConnections) {
            connections.add.disconnect();
            connections.remove.disconnect();
        }
        for (FieldConnections &connections : fieldConnections)
            connections.disconnect();
        objConnections.clear();
        fieldConnections.clear();
        boundObjs.clear();
        tally.reset(0);
        fieldCount = 0;
    }

    void watchAdding(Object &object, std::size_t i)
    {
        objConnections[i].add = object.sigAddField.connect(
            [this](auto const &sigData) { onObjSigAddField(sigData); }, {}, new Index(i));
    }
    void watchField(Object &object, F &found, std::size_t i)
    {
        const RefT<Class> index(new Index(i));
        objConnections[i].remove = object.sigRemoveField.connect(
            [this](auto const &sigData) { onObjSigRemoveField(sigData); }, {}, index);
        fieldConnections[i].set = found.sigSet.connect(
            [this](auto const &sigData) { onFieldSigSet(sigData); }, {}, index);
        // It goes with its object, and also where a removal isn't heard of, since a listener before
        // takes out another field meanwhile.
        fieldConnections[i].death = found.sigDelete.connect(
            [this](auto const &sigData) { onFieldSigDelete(sigData); }, {}, index);
    }

    static std::size_t indexOf(SigVoidData const &sigData)
    {
        return static_cast<Index const &>(*sigData.ref).index;
    }
    /// Null where there is none, or one of another class.
    static F *fieldAt(Object const &object, std::size_t place)
    {
        return place < object.getNumFields() ? cast<F>(object.getField(place)) : nullptr;
    }

    /// Told with the next update.
    void onFieldSigDelete(SigVoidData const &sigData)
    {
        const std::size_t i = indexOf(sigData);
        fieldConnections[i].disconnect();
        if (tally.get(i))
            tally.empty(i);
    }

    void onFieldSigSet(SigVoidData const &sigData)
    {
        const std::size_t i = indexOf(sigData);
        if (tally.get(i))
            tally.noteValue(i);
        tell();
    }

    void onObjSigAddField(SigAddFieldData const &sigData)
    {
        const std::size_t i = indexOf(sigData);
        const PtrT<Object> object(boundObjs[i]);
        const PtrT<F> added(fieldAt(*object, sigData.index));
        if (!added || added->name != field)
            return;
        const Binding binding(*this);
        objConnections[i].add.disconnect();
        tally.fill(i, *added);
        ++fieldCount;
        tell();
        if (binding.isOver() || !object)
            return;
        if (added && added->owner == object.get()) {
            watchField(*object, *added, i);
            tally.noteValue(i); // A listener of the update may have set it.
        } else {
            // A listener of the update took it out.
            tally.recount();
            waitForField(i, object);
        }
    }

    void onObjSigRemoveField(SigRemoveFieldData const &sigData)
    {
        const std::size_t i = indexOf(sigData);
        if (!tally.get(i) || tally.get(i) != sigData.field->get())
            return;
        fieldConnections[i].disconnect();
        objConnections[i].remove.disconnect();
        tally.empty(i);
        waitForField(i, PtrT<Object>(boundObjs[i]));
    }

    /// In place of one that is gone.
    void waitForField(std::size_t i, PtrT<Object> const &object)
    {
        const Binding binding(*this);
        --fieldCount;
        tell();
        if (!binding.isOver() && object)
            watchAdding(*object, i);
    }

    /// False when it was ended by a listener.
    bool setAll(Value const &value, bool createOnDemand)
    {
        const Binding binding(*this);
        const std::shared_ptr<Life> held = life;
        const LockBool lock(held->isUpdating);
        const Value wanted = value; // Listeners may change what it refers to.
        for (std::size_t i = 0; !binding.isOver() && i < tally.getNumSlots(); ++i) {
            try {
                if (F *const found = tally.get(i))
                    found->set(wanted);
                else if (createOnDemand)
                    create(i, wanted);
            } catch (...) {
                // What the others got shows that this one refused.
                continue;
            }
        }
        return !held->isOver;
    }

    /// KEPT: an object that has a field of that name and another class gets one more, since it
    /// counts as lacking it.
    void create(std::size_t i, Value const &value)
    {
        // A list that changed since without a word may hold other objects there.
        ObjPtrs const &objs = getObjs();
        if (i < objs.size() && objs[i] && objs[i].get() == boundObjs[i])
            addField<F>(*objs[i], field.c_str(), value);
    }

    std::string field;
    bool bound = false;
    // One entry per object of the list, in its order. All empty while nothing is followed.
    FieldTallyT<F> tally;
    std::vector<Object *> boundObjs; // Not owned. Reads where it emits, else only compared.
    std::vector<ObjConnections> objConnections;
    std::vector<FieldConnections> fieldConnections;
    std::size_t fieldCount = 0; // Of slots filled, and not emptied since by a removal.
    const std::shared_ptr<Life> life = std::make_shared<Life>();
};

} // namespace ZR::VOM::GUI
