#pragma once

#include "StatusFile.h"

#include "zrVOMGUI/foundation/vom/MField.h"

#include <map>
#include <string>
#include <vector>

namespace Explorer {

using Objects = std::vector<ZR::RefT<ZR::VOM::Object>>;

/// Base of everything in the model: an object with a field "name".
class Item : public ZR::VOM::Object {
public:
    explicit Item(std::string const &itemName);

    ZR::VOM::ClassInfo const &getClassInfo() const override { return classInfo; }
    ZR::RefT<ZR::VOM::Object> clone() override { return new Item(*this); }
    std::string const &getName() const;

    static ZR::VOM::ClassInfo const classInfo;

protected:
    Item(Item const &) = default;
};

/// Whoever looks after packages.
class Maintainer : public Item {
public:
    using Item::Item;

    ZR::VOM::ClassInfo const &getClassInfo() const override { return classInfo; }
    ZR::RefT<ZR::VOM::Object> clone() override { return new Maintainer(*this); }

    static ZR::VOM::ClassInfo const classInfo;
};

/// What a package is about, in one line, as its name. Owned by the package.
class Details : public Item {
public:
    using Item::Item;

    ZR::VOM::ClassInfo const &getClassInfo() const override { return classInfo; }
    ZR::RefT<ZR::VOM::Object> clone() override { return new Details(*this); }

    static ZR::VOM::ClassInfo const classInfo;
};

/// How much a system needs a package: the values of the field "priority".
enum Priority { Unknown, Required, Important, Standard, Optional, Extra };
Priority priorityOf(std::string const &name);

/// An installed package, with fields of all kinds:
/// strings "name", "version" and "summary", a real "size" in KiB, an int "priority", a list
/// "depends" that watches packages, a link "maintainer" that watches, and a link "details" that
/// owns.
class Package : public Item {
public:
    /// Depends on nothing at first.
    Package(PackageRecord const &record, ZR::PtrT<Maintainer> const &maintainer);

    ZR::VOM::ClassInfo const &getClassInfo() const override { return classInfo; }
    ZR::RefT<ZR::VOM::Object> clone() override { return new Package(*this); }
    /// Null once somebody has removed the field.
    ZR::VOM::MFieldPtr *getDepends() const;

    static ZR::VOM::ClassInfo const classInfo;

private:
    Package(Package const &) = default;
};

/// A group of packages, which it owns by its list "packages".
class Section : public Item {
public:
    Section(std::string const &sectionName, Objects const &packages);

    ZR::VOM::ClassInfo const &getClassInfo() const override { return classInfo; }
    ZR::RefT<ZR::VOM::Object> clone() override { return new Section(*this); }

    static ZR::VOM::ClassInfo const classInfo;

private:
    Section(Section const &) = default;
};

/// The installed packages as objects.
class PackageModel {
public:
    /// Each dependency leads to its first alternative that is installed, or else is provided by an
    /// installed package; one that nothing meets is left out.
    explicit PackageModel(std::vector<PackageRecord> const &records);

    /// In the order of the records.
    std::vector<ZR::RefT<Package>> const &getPackages() const { return packages; }
    /// By name.
    std::vector<ZR::RefT<Section>> const &getSections() const { return sections; }
    std::vector<ZR::RefT<Maintainer>> const &getMaintainers() const { return maintainers; }
    /// Sections, packages, maintainers and details.
    Objects getObjects() const;

    /// Null when no package of that name is there.
    ZR::RefT<Package> findPackage(std::string const &name) const;
    /// What the package depends on.
    static Objects getDependencies(Package const &package);
    /// The packages that depend on it, in the order of the records.
    Objects getDependents(Package const &package) const;

private:
    void makeObjects(std::vector<PackageRecord> const &records);
    void linkDependencies(std::vector<PackageRecord> const &records);

    std::vector<ZR::RefT<Package>> packages;
    std::vector<ZR::RefT<Section>> sections;
    std::vector<ZR::RefT<Maintainer>> maintainers;
    std::map<std::string, ZR::RefT<Package>> packagesByName;
};

} // namespace Explorer
