#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/util/LockBool.h"
#include "zrVOMGUI/foundation/util/Signal.h"
#include "zrVOMGUI/foundation/vom/Field.h"
#include "zrVOMGUI/widgets/FieldTallyT.h"
#include "zrVOMGUI/widgets/ObjsManager.h"

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ZR::VOM::GUI {

/// Reads and sets the field of one name on a whole list of objects, and tells what the objects say.
///
/// `F` is a field class of one value, such as FieldReal; a field of that name and another class
/// counts as none. While it is bound, the manager hears of each field that appears, goes or
/// changes, and emits sigModify for each. The death of an object emits nothing: it counts as absent
/// from the next update on. So does a field whose addition or removal went by unheard, since an
/// exception ended the signal, from the next call of update() or set() on.
///
/// Owns neither objects nor fields. Listeners of model and manager may destroy the manager or give
/// it another list at any moment. GUI thread only.
template <class F>
class ZRVOMGUI_EXPORT FieldManagerT : public ObjsManager {
public:
    using Value = typename F::Value;

    /// What an update found.
    struct SigModifyData : SigVoidData {
        std::size_t count = 0; ///< How many objects have the field.
        bool mixed = false;    ///< Not all of them agree. A NaN agrees with nothing.
        /// That of the first of them. Valid only during the signal. Not owned.
        Value const *value = nullptr;
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
    /// there is told with the next change. Neither inside set(), which updates when it is done. An
    /// exception from a listener goes to the error sink.
    void update()
    {
        if (life->isUpdating || life->isSetting)
            return;
        settleDoubts();
        for (std::size_t i = 0; i < boundObjs.size(); ++i)
            lookAgain(i);
        tally.recount();
        tell();
    }

    /// Sets the value on every object that has the field, in list order, and updates once. With
    /// `createOnDemand` the other live objects get such a field, with that value.
    ///
    /// KEPT: where a listener refuses, or raises whatever exception, the object stays as it is, and
    /// the others get the value all the same. Nothing is reported: users see a mixed value.
    ///
    /// Ends where a listener unbinds the manager or gives it another list or name. Called by a
    /// listener of sigModify, it emits that at once, unlike update(); called while another set()
    /// runs, it leaves that to the other one.
    void set(Value const &value, bool createOnDemand)
    {
        const std::shared_ptr<Life> held = life;
        if (held->isSetting) {
            setAll(value, createOnDemand);
            return;
        }
        {
            const LockBool lock(held->isSetting);
            setAll(value, createOnDemand);
        }
        if (held->isOver)
            return;
        held->isUpdating = false;
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
        bool isSetting = false;
        bool isOver = false;
        unsigned numBindings = 0;
    };

    struct ObjConnections {
        Signal::Connection death, add, remove;
        void disconnect()
        {
            death.disconnect();
            add.disconnect();
            remove.disconnect();
        }
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
        if (held->isUpdating || held->isSetting)
            return;
        const LockBool lock(held->isUpdating);
        settleDoubts();
        const Value value = tally.getValue();
        SigModifyData data;
        data.count = tally.getCount();
        data.mixed = tally.isMixed();
        data.value = &value;
        sigModify.emitCatching(data, "ZR::VOM::GUI::FieldManagerT::update");
    }

    /// Of a slot that was filled or emptied, and once more where a listener does the contrary.
    void tellOfSlot(std::size_t i)
    {
        const Binding binding(*this);
        F const *const told = tally.get(i);
        tell();
        if (!binding.isOver() && tally.get(i) != told)
            tell();
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
        if (object.isBeingDeleted())
            return;
        boundObjs[i] = &object;
        objConnections[i].death = object.sigDelete.connect(
            [this](auto const &sigData) { onObjSigDelete(sigData); }, {}, new Index(i));
        if (F *const found = firstField(i))
            take(i, *found);
        else
            watchAdding(i);
    }

    void unbind()
    {
        ++life->numBindings;
        for (ObjConnections &connections : objConnections)
            connections.disconnect();
        for (FieldConnections &connections : fieldConnections)
            connections.disconnect();
        objConnections.clear();
        fieldConnections.clear();
        boundObjs.clear();
        doubts.clear();
        tally.reset(0);
        fieldCount = 0;
    }

    /// Into the empty slot of a bound object.
    void take(std::size_t i, F &found)
    {
        objConnections[i].add.disconnect();
        tally.fill(i, found);
        ++fieldCount;
        watchField(i, found);
        // It may be the one that goes, of which the slot is too late to hear.
        if (isRemoving(i))
            doubts.try_emplace(i);
    }
    /// What is gone from its object, or about to go.
    void drop(std::size_t i)
    {
        fieldConnections[i].disconnect();
        objConnections[i].remove.disconnect();
        tally.empty(i);
        --fieldCount;
        watchAdding(i);
    }

    void watchAdding(std::size_t i)
    {
        objConnections[i].add = boundObjs[i]->sigAddField.connect(
            [this](auto const &sigData) { onObjSigAddField(sigData); }, {}, new Index(i));
    }
    void watchField(std::size_t i, F &found)
    {
        const RefT<Class> index(new Index(i));
        objConnections[i].remove = boundObjs[i]->sigRemoveField.connect(
            [this](auto const &sigData) { onObjSigRemoveField(sigData); }, {}, index);
        fieldConnections[i].set = found.sigSet.connect(
            [this](auto const &sigData) { onFieldSigSet(sigData); }, {}, index);
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
    /// The one that binding takes.
    F *firstField(std::size_t i) const
    {
        Object const &object = *boundObjs[i];
        F *const found = fieldAt(object, object.findFieldIndex(field));
        return found && !isLeaving(i, *found) ? found : nullptr;
    }
    /// The first one of the class.
    F *anyField(std::size_t i) const
    {
        Object const &object = *boundObjs[i];
        for (std::size_t place = 0; place < object.getNumFields(); ++place) {
            F *const found =
                object.getField(place)->name == field ? fieldAt(object, place) : nullptr;
            if (found && !isLeaving(i, *found))
                return found;
        }
        return nullptr;
    }

    /// Whether a field of the object is being removed: it is still there, and may stay.
    bool isRemoving(std::size_t i) const
    {
        return boundObjs[i] && boundObjs[i]->sigRemoveField.isEmitting();
    }
    bool isLeaving(std::size_t i, F const &found) const
    {
        const auto doubted = doubts.find(i);
        return doubted != doubts.end() && doubted->second.get() == &found && isRemoving(i);
    }
    void settleDoubts()
    {
        for (auto doubted = doubts.begin(); doubted != doubts.end();) {
            if (isRemoving(doubted->first)) {
                ++doubted;
            } else {
                lookAgain(doubted->first);
                doubted = doubts.erase(doubted);
            }
        }
    }
    /// Makes up for what went by unheard.
    void lookAgain(std::size_t i)
    {
        Object const *const object = boundObjs[i];
        if (!object)
            return;
        if (tally.get(i) && tally.get(i)->owner != object)
            drop(i);
        if (F *const found = tally.get(i) ? nullptr : firstField(i))
            take(i, *found);
    }

    /// Told with the next update.
    void onObjSigDelete(SigVoidData const &sigData)
    {
        const std::size_t i = indexOf(sigData);
        objConnections[i].disconnect();
        boundObjs[i] = nullptr;
        if (tally.get(i))
            tally.empty(i);
    }

    /// With its object, or because its removal wasn't heard of. Told with the next update.
    void onFieldSigDelete(SigVoidData const &sigData)
    {
        const std::size_t i = indexOf(sigData);
        fieldConnections[i].disconnect();
        if (tally.get(i))
            drop(i);
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
        F *added = fieldAt(*boundObjs[i], sigData.index);
        // Or one before, of which only the signal for this one made it here.
        if (!added || added->name != field)
            added = firstField(i);
        if (!added || added->name != field)
            return;
        take(i, *added);
        tellOfSlot(i);
    }

    void onObjSigRemoveField(SigRemoveFieldData const &sigData)
    {
        const std::size_t i = indexOf(sigData);
        PtrT<Field> &leaving = doubts[i];
        if (tally.get(i) != sigData.field->get())
            return;
        leaving = *sigData.field;
        drop(i);
        tellOfSlot(i);
    }

    void setAll(Value const &value, bool createOnDemand)
    {
        const Binding binding(*this);
        const Value wanted = value; // Listeners may change what it refers to.
        settleDoubts();
        for (std::size_t i = 0; !binding.isOver() && i < tally.getNumSlots(); ++i) {
            if (!tally.get(i))
                lookAgain(i);
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
    }

    /// KEPT: an object that has a field of that name and another class gets one more, since it
    /// counts as lacking it; and no further one, however often it is bound.
    void create(std::size_t i, Value const &value)
    {
        // A list that changed since without a word may hold other objects there.
        ObjPtrs const &objs = getObjs();
        if (i >= objs.size() || !objs[i] || objs[i].get() != boundObjs[i])
            return;
        if (F *const there = anyField(i)) {
            take(i, *there);
            there->set(value);
        } else {
            addField<F>(*boundObjs[i], field.c_str(), value);
        }
    }

    std::string field;
    bool bound = false;
    // One entry per object of the list, in its order. All empty while nothing is followed.
    FieldTallyT<F> tally;
    std::vector<Object *> boundObjs; // Not owned. Null for one that is gone.
    std::vector<ObjConnections> objConnections;
    std::vector<FieldConnections> fieldConnections;
    // Slots of objects from which a field was being removed when the manager heard of it last, each
    // with the field that it lost by that. What has become of it shows when no removal runs:
    // another one around it may have gone by unheard, and this one may have ended by an exception.
    std::map<std::size_t, PtrT<Field>> doubts;
    std::size_t fieldCount = 0; // Of slots filled, and not emptied since by a removal.
    const std::shared_ptr<Life> life = std::make_shared<Life>();
};

} // namespace ZR::VOM::GUI
