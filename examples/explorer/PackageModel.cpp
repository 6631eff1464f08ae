#include "PackageModel.h"

#include "zrVOMGUI/foundation/util/Error.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace Explorer {

using ZR::cast;
using ZR::PtrT;
using ZR::RefT;
using ZR::VOM::FieldInt;
using ZR::VOM::FieldPtr;
using ZR::VOM::FieldReal;
using ZR::VOM::FieldRef;
using ZR::VOM::FieldString;
using ZR::VOM::MFieldPtr;
using ZR::VOM::MFieldRef;
using ZR::VOM::Object;

ZR::VOM::ClassInfo const Item::classInfo = {&Object::classInfo, "Item"};
ZR::VOM::ClassInfo const Maintainer::classInfo = {&Item::classInfo, "Maintainer"};
ZR::VOM::ClassInfo const Details::classInfo = {&Item::classInfo, "Details"};
ZR::VOM::ClassInfo const Package::classInfo = {&Item::classInfo, "Package"};
ZR::VOM::ClassInfo const Section::classInfo = {&Item::classInfo, "Section"};
ZR::VOM::ClassInfo const Archive::classInfo = {&Item::classInfo, "Archive"};

Item::Item(std::string const &itemName)
{
    ZR::VOM::addField<FieldString>(*this, "name", itemName);
}

std::string const &Item::getName() const
{
    static std::string const none;
    auto *const name = cast<FieldString>(findField("name"));
    return name ? name->get() : none;
}

Priority priorityOf(std::string const &name)
{
    static std::map<std::string, Priority> const priorities = {{"required", Required},
                                                               {"important", Important},
                                                               {"standard", Standard},
                                                               {"optional", Optional},
                                                               {"extra", Extra}};
    const auto entry = priorities.find(name);
    return entry == priorities.end() ? Unknown : entry->second;
}

namespace {

bool isText(std::string const &name)
{
    return !name.empty();
}

bool isWord(std::string const &name)
{
    return isText(name) && name.find_first_of(" \t\r\n") == std::string::npos;
}

} // namespace

void Item::guardName(bool (*isGood)(std::string const &), char const *refusal)
{
    if (auto *const name = cast<FieldString>(findField("name")))
        name->sigCanSet.connect([=](FieldString::SigCanSetData const &sigData) {
            if (!isGood(*sigData.value))
                throw ZR::Error(refusal);
        });
}

Package::Package(PackageRecord const &record, PtrT<Maintainer> const &maintainer)
    : Item(record.name)
{
    guardName();
    ZR::VOM::addField<FieldString>(*this, "version", record.version);
    ZR::VOM::addField<FieldString>(*this, "summary", record.summary);
    ZR::VOM::addField<FieldReal>(*this, "size", record.installedSize);
    ZR::VOM::addField<FieldInt>(*this, "priority", priorityOf(record.priority));
    ZR::VOM::addField<MFieldPtr>(*this, "depends");
    ZR::VOM::addField<FieldPtr>(*this, "maintainer", maintainer);
    ZR::VOM::addField<FieldRef>(*this, "details", RefT<Object>(new Details(record.summary)));
}

Package::Package(Package const &other)
    : Item(other)
{
    guardName();
}

void Package::guardName()
{
    Item::guardName(isWord, "A package needs a name without blanks.");
}

MFieldPtr *Package::getDepends() const
{
    return cast<MFieldPtr>(findField("depends"));
}

Section::Section(std::string const &sectionName, Objects const &packages)
    : Item(sectionName)
{
    ZR::VOM::addField<MFieldRef>(*this, "packages", packages);
    guardName();
}

Section::Section(Section const &other)
    : Item(other)
{
    guardName();
}

void Section::guardName()
{
    Item::guardName(isText, "A section needs a name.");
}

Archive::Archive(std::string const &archiveName)
    : Item(archiveName)
{
    ZR::VOM::addField<MFieldRef>(*this, "sections");
    ZR::VOM::addField<MFieldRef>(*this, "maintainers");
}

namespace {

/// What an owning list holds; nothing when the object has no such list.
Objects ownedBy(Object const &owner, char const *fieldName)
{
    auto const *const list = cast<MFieldRef>(owner.findField(fieldName));
    return list ? list->getAll() : Objects();
}

void append(Object const &owner, char const *fieldName, Objects const &objects)
{
    if (auto *const list = cast<MFieldRef>(owner.findField(fieldName)))
        list->replace(list->getAll().size(), 0, objects);
}

} // namespace

PackageModel::PackageModel(std::vector<PackageRecord> const &records)
    : archive(new Archive("installed"))
{
    makeObjects(records);
    linkDependencies(records);
    append(*archive, "sections", {sections.begin(), sections.end()});
    append(*archive, "maintainers", {maintainers.begin(), maintainers.end()});
}

PackageModel::PackageModel(RefT<Archive> const &ownedByIt)
    : archive(ownedByIt)
{
    for (char const *list : {"sections", "maintainers"})
        for (RefT<Object> const &object : ownedBy(*archive, list))
            note(object);
}

/// Enters an object of the archive, with what it owns, into the lists that serve look-ups.
void PackageModel::note(RefT<Object> const &object)
{
    if (auto *const section = cast<Section>(object)) {
        sections.emplace_back(section);
        for (RefT<Object> const &owned : ownedBy(*section, "packages"))
            note(owned);
    } else if (auto *const maintainer = cast<Maintainer>(object)) {
        maintainers.emplace_back(maintainer);
    } else if (auto *const package = cast<Package>(object)) {
        packages.emplace_back(package);
        packagesByName.emplace(package->getName(), package);
    }
}

void PackageModel::adopt(Objects const &objects)
{
    constexpr char pasted[] = "pasted";
    Objects newSections, newMaintainers, others;
    for (RefT<Object> const &object : objects) {
        if (!object)
            continue;
        if (cast<Section>(object))
            newSections.push_back(object);
        else if (cast<Maintainer>(object))
            newMaintainers.push_back(object);
        else
            others.push_back(object);
    }
    RefT<Section> section = findSection(pasted);
    if (section) {
        append(*section, "packages", others);
        for (RefT<Object> const &object : others)
            note(object);
    } else if (!others.empty()) {
        newSections.emplace_back(new Section(pasted, others));
    }
    append(*archive, "sections", newSections);
    append(*archive, "maintainers", newMaintainers);
    for (Objects const &added : {newSections, newMaintainers})
        for (RefT<Object> const &object : added)
            note(object);
}

RefT<Section> PackageModel::findSection(std::string const &name) const
{
    for (RefT<Section> const &section : sections)
        if (section->getName() == name)
            return section;
    return {};
}

void PackageModel::makeObjects(std::vector<PackageRecord> const &records)
{
    std::map<std::string, RefT<Maintainer>> maintainersByName;
    std::map<std::string, Objects> packagesBySection;
    for (PackageRecord const &record : records) {
        RefT<Maintainer> maintainer;
        if (!record.maintainer.empty()) {
            RefT<Maintainer> &known = maintainersByName[record.maintainer];
            if (!known)
                known = new Maintainer(record.maintainer);
            maintainer = known;
        }
        const RefT<Package> package(new Package(record, maintainer));
        packages.push_back(package);
        packagesByName.emplace(record.name, package);
        packagesBySection[record.section.empty() ? "unknown" : record.section].push_back(package);
    }
    for (auto const &[name, maintainer] : maintainersByName)
        maintainers.push_back(maintainer);
    for (auto const &[name, sectionPackages] : packagesBySection)
        sections.emplace_back(new Section(name, sectionPackages));
}

void PackageModel::linkDependencies(std::vector<PackageRecord> const &records)
{
    std::map<std::string, RefT<Package>> met = packagesByName;
    for (std::size_t i = 0; i < records.size(); ++i)
        for (std::string const &name : records[i].provides)
            met.emplace(name, packages[i]);

    for (std::size_t i = 0; i < records.size(); ++i) {
        std::vector<PtrT<Object>> depends;
        std::set<Object const *> known;
        for (auto const &alternatives : records[i].depends) {
            const auto chosen = std::find_if(alternatives.begin(), alternatives.end(),
                                             [&](auto const &name) { return met.count(name); });
            if (chosen == alternatives.end())
                continue;
            RefT<Package> const &package = met.at(*chosen);
            if (known.insert(package.get()).second)
                depends.emplace_back(package);
        }
        packages[i]->getDepends()->replace(0, 0, depends);
    }
}

Objects PackageModel::getObjects() const
{
    Objects objects(sections.begin(), sections.end());
    objects.insert(objects.end(), maintainers.begin(), maintainers.end());
    for (RefT<Package> const &package : packages) {
        objects.push_back(package);
        auto *const details = cast<FieldRef>(package->findField("details"));
        if (details && details->get())
            objects.push_back(details->get());
    }
    return objects;
}

RefT<Package> PackageModel::findPackage(std::string const &name) const
{
    const auto entry = packagesByName.find(name);
    // A package may have been renamed, or lost its name, since it was entered.
    if (entry != packagesByName.end()) {
        std::string const &present = entry->second->getName();
        if (present == name || present.empty())
            return entry->second;
    }
    const auto renamed =
        std::find_if(packages.begin(), packages.end(),
                     [&](RefT<Package> const &package) { return package->getName() == name; });
    return renamed == packages.end() ? RefT<Package>() : *renamed;
}

Objects PackageModel::getDependencies(Package const &package)
{
    Objects dependencies;
    if (MFieldPtr const *const depends = package.getDepends())
        for (PtrT<Object> const &dependency : depends->getAll())
            if (dependency)
                dependencies.emplace_back(dependency);
    return dependencies;
}

Objects PackageModel::getDependents(Package const &package) const
{
    Objects dependents;
    for (RefT<Package> const &other : packages) {
        Objects const dependencies = getDependencies(*other);
        if (std::any_of(dependencies.begin(), dependencies.end(),
                        [&](RefT<Object> const &object) { return object.get() == &package; }))
            dependents.push_back(other);
    }
    return dependents;
}

} // namespace Explorer
