#pragma once

// What the tests of the icon databases share: two model classes, and the end of a chain.

#include "zrVOMGUI/foundation/vom/Field.h"
#include "zrVOMGUI/presentation/ObjectIconDB.h"

#include <QColor>
#include <QIcon>
#include <QPixmap>

#include <utility>

using namespace ZR;
using namespace ZR::VOM::GUI;
using VOM::ClassInfo;
using VOM::FieldInt;
using Model = VOM::Object;

class Building : public Model {
public:
    VOM::ClassInfo const &getClassInfo() const override { return info; }
    std::size_t findFieldIndex(std::string const &name) const override
    {
        ++numLookUps;
        return Model::findFieldIndex(name);
    }
    static ClassInfo const info;
    mutable int numLookUps = 0;
};
inline ClassInfo const Building::info = {&Model::classInfo, "Building"};

class House : public Building {
public:
    VOM::ClassInfo const &getClassInfo() const override { return info; }
    static ClassInfo const info;
};
inline ClassInfo const House::info = {&Building::info, "House"};

/// The end of a chain: one icon for everything, and a count of how often it was asked.
class CountingIconDB : public ObjectIconDB {
public:
    explicit CountingIconDB(QIcon everythingsIcon)
        : icon(std::move(everythingsIcon))
    {
    }
    QIcon find(RefT<Model> const &) const override
    {
        ++numAsked;
        return icon;
    }
    mutable int numAsked = 0;

private:
    QIcon icon;
};

inline QIcon makeIcon(QColor const &color)
{
    QPixmap pixmap(4, 4);
    pixmap.fill(color);
    return QIcon(pixmap);
}

inline RefT<Model> withInt(char const *name, int value)
{
    RefT<Model> object(new Building);
    VOM::addField<FieldInt>(*object, name, value);
    return object;
}

inline bool same(QIcon const &a, QIcon const &b)
{
    return a.cacheKey() == b.cacheKey();
}
