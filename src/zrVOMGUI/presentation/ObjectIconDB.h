#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/util/Class.h"
#include "zrVOMGUI/foundation/vom/Field.h"

#include <QIcon>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace ZR::VOM::GUI {

/// Tells which icon shows an object, and the end of a chain of rules that tell it.
///
/// Each derived class knows one rule of choice. Where its rule has no icon it asks the next
/// database of the chain, so that a host can put a rule by field value in front of a rule by class,
/// and that in front of a default. This class has no rule: it only asks the next one.
///
///     RefT<ObjectClassIconDB> byClass(new ObjectClassIconDB);
///     byClass->add("House", houseIcon);
///     RefT<ObjectFieldIntIconDB> byState(new ObjectFieldIntIconDB({{1, burningIcon}}));
///     byState->setField("state");
///     byState->setObjIconDB(byClass);
///     view->setObjIconDB(byState);
///
/// Changes raise no signal: a view shows them when it next asks. Nothing is cached. GUI thread
/// only.
class ZRVOMGUI_EXPORT ObjectIconDB : public Class {
public:
    ObjectIconDB() = default;
    ~ObjectIconDB() override;
    ObjectIconDB(ObjectIconDB const &) = delete;
    ObjectIconDB &operator=(ObjectIconDB const &) = delete;

    /// The icon of `obj`, null when no rule of the chain has one. An empty reference is asked for
    /// along the chain like an object that no rule knows.
    ///
    /// A chain that leads back to a database which is being asked for the same object ends there,
    /// with a null icon.
    virtual QIcon find(RefT<Object> const &obj) const;

    /// The next database of the chain; empty by default.
    RefT<ObjectIconDB> const &getObjIconDB() const { return next; }
    /// Databases that are chained in a circle keep each other alive until the host cuts it.
    void setObjIconDB(RefT<ObjectIconDB> const &db) { next = db; }

private:
    struct Walk;

    RefT<ObjectIconDB> next;
    mutable Walk const *walks = nullptr; // Under way through here, innermost first. Not owned.
};

/// Icons by class name. The most derived class that has an entry wins.
class ZRVOMGUI_EXPORT ObjectClassIconDB : public ObjectIconDB {
public:
    ObjectClassIconDB() = default;
    ~ObjectClassIconDB() override;

    /// The icon of the object's class or of the nearest of its bases that has an entry, else what
    /// the chain says. An entry with a null icon sends to the chain, too: its class's bases aren't
    /// asked.
    QIcon find(RefT<Object> const &obj) const override;
    /// The icon of the class, or with `useBases` of the nearest of its bases that has an entry.
    /// Null when there is none; the chain isn't asked.
    QIcon find(ClassInfo const &info, bool useBases) const;

    std::map<std::string, QIcon> const &get() const { return icons; }
    /// Replaces an earlier entry of the same name.
    void add(std::string const &className, QIcon icon);
    /// Drops all entries; the next database stays.
    void clear() { icons.clear(); }

private:
    std::map<std::string, QIcon> icons;
};

/// Icons by the value of a field: an object's field of a given name and of exactly this field
/// class.
///
/// Values without an entry, objects without the field and fields of another class get what the
/// chain says.
template <class FieldType>
class ZRVOMGUI_EXPORT ObjectFieldIconDBT : public ObjectIconDB {
public:
    using Value = typename FieldType::Value;
    using Icons = std::vector<std::pair<Value, QIcon>>;

    /// Of several entries with one value the last one counts.
    explicit ObjectFieldIconDBT(Icons const &icons = {})
    {
        for (auto const &[value, icon] : icons)
            add(value, icon);
    }

    QIcon find(RefT<Object> const &obj) const override
    {
        if (RefT<FieldType> const field = findField(obj)) {
            const QIcon icon = find(field->get());
            if (!icon.isNull())
                return icon;
        }
        return ObjectIconDB::find(obj);
    }
    /// The icon of exactly this value; null when there is none. The chain isn't asked.
    QIcon find(Value const &value) const
    {
        const auto entry = table.find(value);
        return entry == table.end() ? QIcon() : entry->second;
    }

    std::map<Value, QIcon> const &get() const { return table; }
    /// The name of the field to look at; empty by default, which leaves everything to the chain.
    std::string getField() const { return fieldName; }
    void setField(std::string const &field) { fieldName = field; }
    /// Replaces an earlier entry of the same value.
    void add(Value const &value, QIcon icon) { table[value] = std::move(icon); }
    /// Drops all entries; the field's name and the next database stay.
    void clear() { table.clear(); }

protected:
    /// The object's field that chooses the icon; empty when there is none.
    RefT<FieldType> findField(RefT<Object> const &obj) const
    {
        if (fieldName.empty() || !obj)
            return {};
        return cast<FieldType>(obj->findField(fieldName));
    }

private:
    std::string fieldName;
    std::map<Value, QIcon> table;
};

extern template class ZRVOMGUI_EXPORT ObjectFieldIconDBT<FieldInt>;

/// Icons by some of the bits of an integer field.
class ZRVOMGUI_EXPORT ObjectFieldIntIconDB : public ObjectFieldIconDBT<FieldInt> {
public:
    explicit ObjectFieldIntIconDB(Icons const &icons = {});
    ~ObjectFieldIntIconDB() override;

    using ObjectFieldIconDBT<FieldInt>::find;
    /// The icon of the field's value with only the bits of the mask left in it.
    QIcon find(RefT<Object> const &obj) const override;

    /// The bits that count; all by default.
    int getMask() const { return mask; }
    void setMask(int bits) { mask = bits; }

private:
    int mask = ~0;
};

} // namespace ZR::VOM::GUI
