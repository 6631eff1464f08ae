#pragma once

#include "support/Things.h"
#include "zrVOMGUI/foundation/vom/linkFields.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

/// A random model of a few objects with all kinds of links, and edits of it. The same for the same
/// seed.
class RandomModel {
public:
    using Ref = ZR::RefT<ZR::VOM::Object>;
    using Ptr = ZR::PtrT<ZR::VOM::Object>;

    explicit RandomModel(unsigned seed)
        : generator(seed)
    {
        for (unsigned i = 0; i < 7; ++i) {
            objs.push_back(make(std::string(1, char('a' + i))));
            for (int field = 0; field < 2; ++field)
                addRandomField(objs.back());
        }
    }
    ~RandomModel()
    {
        for (Ptr const &obj : made)
            if (obj)
                removeFields(Ref(obj));
    }
    RandomModel(RandomModel const &) = delete;
    RandomModel &operator=(RandomModel const &) = delete;

    /// An object that the model takes apart in the end: owners in a circle keep each other alive.
    Ref make(std::string const &name)
    {
        const Ref obj = makeThing(name);
        made.emplace_back(obj);
        return obj;
    }

    unsigned below(unsigned n) { return unsigned(generator()) % n; }
    Ref any() { return below(6) == 0 ? Ref() : objs[below(unsigned(objs.size()))]; }

    /// What was done, in words.
    std::string edit()
    {
        const Ref obj = objs[below(unsigned(objs.size()))];
        if (!obj)
            return "nothing";
        switch (below(8)) {
        case 0:
            addRandomField(obj);
            return "add a field";
        case 1:
            if (obj->getNumFields() > 1)
                removeField(*obj, *obj->getField(1 + below(unsigned(obj->getNumFields()) - 1)));
            return "remove a field";
        case 2:
            if (auto *const name = ZR::cast<ZR::VOM::FieldString>(obj->findField("name")))
                name->set(std::string(1, char('A' + below(26))));
            return "rename";
        case 3:
            objs[below(unsigned(objs.size()))] = make("n");
            return "let go of one and make another";
        default:
            return changeLinks(obj);
        }
    }

    Things objs;

private:
    static void removeFields(Ref const &obj)
    {
        while (obj->getNumFields() != 0)
            removeField(*obj, *obj->getField(obj->getNumFields() - 1));
    }

    void addRandomField(Ref const &obj)
    {
        const std::string name(1, char('p' + below(5)));
        switch (below(4)) {
        case 0:
            ZR::VOM::addField<ZR::VOM::FieldPtr>(*obj, name.c_str(), Ptr(any()));
            break;
        case 1:
            ZR::VOM::addField<ZR::VOM::FieldRef>(*obj, name.c_str(), any());
            break;
        case 2:
            ZR::VOM::addField<ZR::VOM::MFieldPtr>(*obj, name.c_str(),
                                                  ZR::VOM::MFieldPtr::Values{any(), any()});
            break;
        default:
            ZR::VOM::addField<ZR::VOM::MFieldRef>(*obj, name.c_str(), Things{any(), any()});
        }
    }

    std::string changeLinks(Ref const &obj)
    {
        for (std::size_t i = 0; i < obj->getNumFields(); ++i) {
            ZR::VOM::Field &field = *obj->getField((i + below(3)) % obj->getNumFields());
            if (auto *const list = dynamic_cast<ZR::VOM::MFieldPtr *>(&field)) {
                const std::size_t at = below(unsigned(list->getNum()) + 1);
                list->replace(at, std::min<std::size_t>(below(2), list->getNum() - at),
                              {any(), any()});
                return "edit a watching list";
            }
            if (auto *const list = dynamic_cast<ZR::VOM::MFieldRef *>(&field)) {
                const std::size_t at = below(unsigned(list->getNum()) + 1);
                list->replace(at, std::min<std::size_t>(below(3), list->getNum() - at), {any()});
                return "edit an owning list";
            }
            if (auto *const link = dynamic_cast<ZR::VOM::FieldPtr *>(&field)) {
                link->set(any());
                return "set a watching link";
            }
            if (auto *const link = dynamic_cast<ZR::VOM::FieldRef *>(&field)) {
                link->set(any());
                return "set an owning link";
            }
        }
        return "nothing";
    }

    std::mt19937 generator;
    std::vector<Ptr> made;
};
