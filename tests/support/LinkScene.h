#pragma once

#include "support/GraphViewAccess.h"
#include "support/Things.h"
#include "support/dump.h"

#include <QStringList>

#include <algorithm>
#include <string>

/// The type codes of fields that link.
constexpr int linkKinds[] = {5, 6, 11, 12};

inline bool isSingleLink(int kind)
{
    return kind == 5 || kind == 6;
}

/// Adds a link field of a type code with its start values; a single one takes the first of them.
inline ZR::VOM::Field &addLinkField(ZR::RefT<ZR::VOM::Object> const &obj, char const *name,
                                    int kind, Things const &values)
{
    using namespace ZR;
    const RefT<VOM::Object> first = values.empty() ? RefT<VOM::Object>() : values[0];
    switch (kind) {
    case 5:
        return VOM::addField<VOM::FieldPtr>(*obj, name, PtrT<VOM::Object>(first));
    case 6:
        return VOM::addField<VOM::FieldRef>(*obj, name, first);
    case 11:
        return VOM::addField<VOM::MFieldPtr>(*obj, name,
                                             VOM::MFieldPtr::Values(values.begin(), values.end()));
    default:
        return VOM::addField<VOM::MFieldRef>(*obj, name, values);
    }
}

/// Stores the first of the values in a single field, or replaces a stretch of a list by them.
inline void storeLinks(ZR::VOM::Field &field, std::size_t index, std::size_t numRemoved,
                       Things const &values)
{
    using namespace ZR;
    const RefT<VOM::Object> first = values.empty() ? RefT<VOM::Object>() : values[0];
    switch (field.getType()) {
    case 5:
        return static_cast<VOM::FieldPtr &>(field).set(first);
    case 6:
        return static_cast<VOM::FieldRef &>(field).set(first);
    case 11:
        return static_cast<VOM::MFieldPtr &>(field).replace(
            index, numRemoved, VOM::MFieldPtr::Values(values.begin(), values.end()));
    default:
        return static_cast<VOM::MFieldRef &>(field).replace(index, numRemoved, values);
    }
}

inline void clearOwningLinks(ZR::VOM::Field &field)
{
    using namespace ZR;
    if (auto *const single = dynamic_cast<VOM::FieldRef *>(&field))
        single->set({});
    if (auto *const list = dynamic_cast<VOM::MFieldRef *>(&field))
        list->replace(0, list->getNum(), {});
}

/// A field of a type that the library doesn't know.
class OpaqueField : public ZR::VOM::Field {
public:
    OpaqueField(ZR::VOM::Object &newOwner, char const *fieldName, unsigned initialFlags = 0)
        : Field(newOwner, fieldName, initialFlags)
    {
    }
    OpaqueField(ZR::VOM::Object &newOwner, OpaqueField const &other)
        : Field(newOwner, other)
    {
    }
    ZR::PtrT<Field> clone(ZR::VOM::Object &newOwner) const override
    {
        return ZR::VOM::cloneField(*this, newOwner);
    }
    int getType() const override { return 99; }
    void copyValue(Field const &) override {}
};

/// Objects a, b, c and d with nodes, and x without, which no rule covers yet.
struct LinkScene {
    LinkScene()
        : abcd(makeThings("abcd"))
        , x(makeThing("x"))
    {
        view.add(abcd, false);
    }
    ~LinkScene()
    {
        // Objects that own themselves or one another let go.
        for (ZR::RefT<ZR::VOM::Object> const &obj : abcd)
            for (std::size_t i = 0; obj && i < obj->getNumFields(); ++i)
                clearOwningLinks(*obj->getField(i));
    }
    LinkScene(LinkScene const &) = delete;
    LinkScene &operator=(LinkScene const &) = delete;

    /// By letter; "-" is a null reference.
    Things pick(std::string const &letters) const
    {
        Things picked;
        for (char c : letters)
            picked.push_back(c == '-'   ? ZR::RefT<ZR::VOM::Object>()
                             : c == 'x' ? x
                                        : abcd[std::size_t(c - 'a')]);
        return picked;
    }
    ZR::RefT<ZR::VOM::Object> &operator[](char letter) { return abcd[std::size_t(letter - 'a')]; }

    void addRule(bool out, char const *className = "", char const *name = "f")
    {
        if (out)
            view.addOutLinkField(className, name);
        else
            view.addInLinkField(className, name);
    }
    void removeRule(bool out, char const *className = "", char const *name = "f")
    {
        if (out)
            view.removeOutLinkField(className, name);
        else
            view.removeInLinkField(className, name);
    }
    std::string links() { return dumpLinks(view); }
    std::string rebuiltLinks()
    {
        ZR::VOM::GUI::GraphViewAccess::updateLinks(view);
        return dumpLinks(view);
    }

    Things abcd;
    ZR::RefT<ZR::VOM::Object> x;
    ZR::VOM::GUI::ObjectGraphView view;
};

/// Links as an out field makes them, such as "a>b a>c:2", or for an in field each the other way.
inline std::string linksAlong(bool out, std::string const &links)
{
    QStringList words = QString::fromStdString(links).split(' ', Qt::SkipEmptyParts);
    if (!out)
        for (QString &word : words)
            std::iter_swap(word.begin(), word.begin() + 2);
    words.sort();
    return words.join(' ').toStdString();
}
