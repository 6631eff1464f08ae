#pragma once

// Models, and how they are written to XML and read back, for tests.

#include "zrVOMGUI/foundation/vom/XmlExporter.h"
#include "zrVOMGUI/foundation/vom/XmlImporter.h"

#include "support/Things.h"

#include <QByteArray>
#include <QtDebug>

#include <cstdint>
#include <cstring>
#include <map>
#include <sstream>
#include <string>

/// A class with a fixed set of fields, one of each kind.
class Fixed : public ZR::VOM::Object {
public:
    Fixed()
        : Object(0)
    {
        using namespace ZR::VOM;
        addField<FieldInt>(*this, "int", 7);
        addField<FieldReal>(*this, "real", 0.5);
        addField<FieldString>(*this, "string", "default");
        addField<FieldPtr>(*this, "ptr");
        addField<FieldRef>(*this, "ref");
        addField<MFieldPtr>(*this, "ptrs");
        addField<MFieldRef>(*this, "refs");
    }
    Fixed(Fixed const &other) = default;

    ZR::VOM::ClassInfo const &getClassInfo() const override { return info; }
    ZR::RefT<ZR::VOM::Object> clone() override { return new Fixed(*this); }
    inline static ZR::VOM::ClassInfo const info = {&ZR::VOM::Object::classInfo, "Fixed"};
};

/// Knows Fixed, and Thing and Special, whose objects may have any fields.
inline ZR::RefT<ZR::VOM::ClassRegistry> xmlRegistry()
{
    using ZR::VOM::ClassRegistry;
    const ZR::RefT<ClassRegistry> registry(new ClassRegistry);
    registry->add<Fixed>();
    registry->add<Thing>(ClassRegistry::Fields::Open);
    registry->add<Special>(ClassRegistry::Fields::Open);
    return registry;
}

/// An ErrorManager with its log.
struct XmlErrors {
    ZR::Log log;
    ZR::ErrorManager manager{log};

    unsigned count() const { return manager.errorCount; }
    /// All messages, joined by "; ".
    std::string text() const
    {
        std::string all;
        for (std::string const &message : log.getMessages())
            all += (all.empty() ? "" : "; ") + message;
        return all;
    }
};

/// A model as text, for comparisons: what `root` owns, directly or not, each object with all its
/// fields and their bits. Links are numbers of objects; "-" for null, and for an object that isn't
/// in the model.
class ModelText {
public:
    explicit ModelText(ZR::RefT<ZR::VOM::Object> const &root)
    {
        enter(root);
        for (std::size_t i = 0; i < objects.size(); ++i)
            for (std::size_t f = 0; f < objects[i]->getNumFields(); ++f)
                enterOwned(*ZR::RefT<ZR::VOM::Object>(objects[i])->getField(f));
        for (ZR::RefT<ZR::VOM::Object> const &object : objects)
            write(*object);
    }

    std::string get() const { return text.str(); }

private:
    void enter(ZR::RefT<ZR::VOM::Object> const &object)
    {
        if (object && numbers.try_emplace(object.get(), objects.size()).second)
            objects.push_back(object);
    }

    void enterOwned(ZR::VOM::Field &field)
    {
        if (auto *const ref = dynamic_cast<ZR::VOM::FieldRef *>(&field))
            enter(ref->get());
        else if (auto *const refs = dynamic_cast<ZR::VOM::MFieldRef *>(&field))
            for (ZR::RefT<ZR::VOM::Object> const &owned : refs->getAll())
                enter(owned);
    }

    void write(ZR::VOM::Object &object)
    {
        text << numbers[&object] << ' ' << object.getClassInfo().name << ' ' << object.getFlags();
        for (std::size_t i = 0; i < object.getNumFields(); ++i)
            write(*object.getField(i));
        text << '\n';
    }

    void write(ZR::VOM::Field &field)
    {
        using namespace ZR::VOM;
        text << "\n  " << field.name << ' ' << field.getType() << ' ' << field.getFlags() << " =";
        if (auto *const number = dynamic_cast<FieldInt *>(&field))
            text << ' ' << number->get();
        else if (auto *const real = dynamic_cast<FieldReal *>(&field))
            writeBytes(&real->get(), sizeof(double));
        else if (auto *const string = dynamic_cast<FieldString *>(&field))
            writeBytes(string->get().data(), string->get().size());
        else if (auto *const ptr = dynamic_cast<FieldPtr *>(&field))
            writeLink(ptr->get());
        else if (auto *const ref = dynamic_cast<FieldRef *>(&field))
            writeLink(ref->get());
        else if (auto *const ptrs = dynamic_cast<MFieldPtr *>(&field))
            writeLinks(*ptrs);
        else if (auto *const refs = dynamic_cast<MFieldRef *>(&field))
            writeLinks(*refs);
    }

    void writeBytes(void const *bytes, std::size_t size)
    {
        text << ' ' << QByteArray(static_cast<char const *>(bytes), int(size)).toHex().constData();
    }

    void writeLink(ZR::Ptr const &link)
    {
        const auto number = numbers.find(link.get());
        text << ' ' << (number == numbers.end() ? "-" : std::to_string(number->second));
    }

    template <class List>
    void writeLinks(List const &list)
    {
        for (auto const &link : list.getAll())
            writeLink(link);
    }

    std::vector<ZR::RefT<ZR::VOM::Object>> objects;
    std::map<ZR::Class const *, std::size_t> numbers;
    std::ostringstream text;
};

inline std::string modelText(ZR::RefT<ZR::VOM::Object> const &root)
{
    return ModelText(root).get();
}

/// Breaks the circles of owners in a model, which would live on otherwise.
class XmlModelEnd {
public:
    explicit XmlModelEnd(ZR::RefT<ZR::VOM::Object> const &modelRoot)
        : root(modelRoot)
    {
    }
    ~XmlModelEnd() { letGo(root); }
    XmlModelEnd(XmlModelEnd const &) = delete;
    XmlModelEnd &operator=(XmlModelEnd const &) = delete;

    static void letGo(ZR::RefT<ZR::VOM::Object> const &root)
    {
        Things open{root};
        while (!open.empty()) {
            const ZR::RefT<ZR::VOM::Object> object = open.back();
            open.pop_back();
            for (std::size_t i = 0; object && i < object->getNumFields(); ++i) {
                ZR::VOM::Field &field = *object->getField(i);
                if (auto *const ref = dynamic_cast<ZR::VOM::FieldRef *>(&field)) {
                    open.push_back(ref->get());
                    ref->set(nullptr);
                } else if (auto *const refs = dynamic_cast<ZR::VOM::MFieldRef *>(&field)) {
                    open.insert(open.end(), refs->getAll().begin(), refs->getAll().end());
                    refs->replace(0, refs->getNum(), {});
                }
            }
        }
    }

private:
    ZR::RefT<ZR::VOM::Object> root;
};

/// Writes and reads back. Null, with a warning, if there is an error or if the copy is written in
/// another way.
inline ZR::RefT<ZR::VOM::Object> xmlRoundTrip(ZR::RefT<ZR::VOM::Object> const &root)
{
    XmlErrors errors;
    const std::string text = ZR::VOM::toXml(root, errors.manager);
    const ZR::RefT<ZR::VOM::Object> copy = ZR::VOM::fromXml(text, xmlRegistry(), errors.manager);
    const bool isSame = errors.count() == 0 && ZR::VOM::toXml(copy, errors.manager) == text;
    if (!isSame)
        qWarning("%s\n%.10000s", errors.text().c_str(), text.c_str());
    return isSame ? copy : nullptr;
}

/// The number of these bits.
inline double realOfBits(std::uint64_t bits)
{
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}
