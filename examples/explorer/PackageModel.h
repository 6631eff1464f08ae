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
    /// Refuses to store names that aren't good, with an Error that says why.
    void guardName(bool (*isGood)(std::string const &), char const *refusal);
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

/// An installed package, whose name has no blanks, with fields of all kinds:
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
    Package(Package const &other);
    void guardName();
};

/// A group of packages, which it owns by its list "packages".
class Section : public Item {
public:
    Section(std::string const &sectionName, Objects const &packages);

    ZR::VOM::ClassInfo const &getClassInfo() const override { return classInfo; }
    ZR::RefT<ZR::VOM::Object> clone() override { return new Section(*this); }

    static ZR::VOM::ClassInfo const classInfo;

private:
    Section(Section const &other);
    void guardName();
};

/// Owns all the rest, by its lists "sections" and "maintainers".
class Archive : public Item {
public:
    explicit Archive(std::string const &archiveName);

    ZR::VOM::ClassInfo const &getClassInfo() const override { return classInfo; }
    ZR::RefT<ZR::VOM::Object> clone() override { return new Archive(*this); }

    static ZR::VOM::ClassInfo const classInfo;

private:
    Archive(Archive const &) = default;
};

/// The installed packages as objects.
class PackageModel {
public:
    /// Each dependency leads to its first alternative that is installed, or else is provided by an
    /// installed package; one that nothing meets is left out.
    explicit PackageModel(std::vector<PackageRecord> const &records);
    /// The model that an archive owns.
    explicit PackageModel(ZR::RefT<Archive> const &ownedBy);

    ZR::RefT<Archive> const &getArchive() const { return archive; }
    /// Takes objects in that nobody owns: sections and maintainers into their lists, and all others
    /// into a section "pasted". Null references are passed over.
    void adopt(Objects const &objects);

    /// In the order of the records, or in that of the archive's sections.
    std::vector<ZR::RefT<Package>> const &getPackages() const { return packages; }
    /// By name, or in the order of the archive.
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
    void note(ZR::RefT<ZR::VOM::Object> const &object);
    ZR::RefT<Section> findSection(std::string const &name) const;

    ZR::RefT<Archive> archive;
    std::vector<ZR::RefT<Package>> packages;
    std::vector<ZR::RefT<Section>> sections;
    std::vector<ZR::RefT<Maintainer>> maintainers;
    std::map<std::string, ZR::RefT<Package>> packagesByName;
};

} // namespace Explorer
