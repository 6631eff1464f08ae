#include "zrVOMGUI/foundation/vom/private/ModelBuilder.h"

#include "zrVOMGUI/foundation/vom/linkFields.h"
#include "zrVOMGUI/foundation/vom/private/FieldFinder.h"
#include "zrVOMGUI/foundation/vom/private/fieldTypes.h"

#include <unordered_set>
#include <utility>

namespace ZR::VOM::Xml {

namespace {

template <class FieldType, class Value>
void store(FieldType &field, Value &&value)
{
    if constexpr (isListField<FieldType>)
        field.replace(0, field.getNum(), std::forward<Value>(value));
    else
        field.set(std::forward<Value>(value));
}

template <class FieldType, class Value>
bool accepts(FieldType &field, Value const &value)
{
    if constexpr (isListField<FieldType>)
        return field.canReplace(0, field.getNum(), value);
    else
        return field.canSet(value);
}

template <class FieldType>
auto currentValue(FieldType &field)
{
    if constexpr (isListField<FieldType>)
        return field.getAll();
    else
        return field.get();
}

std::string factoryOf(ObjectRecord const &record)
{
    return "the factory of class " + quoted(record.className);
}

/// Answers whether `work` ended normally.
template <class Work>
bool quietly(Work const &work) noexcept
{
    try {
        work();
        return true;
    } catch (...) {
        return false;
    }
}

bool letGo(Field &field) noexcept
{
    return quietly([&] {
        visitField(field, [](auto &typed) { store(typed, decltype(currentValue(typed))()); });
    });
}

} // namespace

ModelBuilder::ModelBuilder(Document const &builtDocument, ClassRegistry const &classRegistry,
                           Reports &documentReports, Ticker &workTicker)
    : document(builtDocument)
    , registry(classRegistry)
    , reports(documentReports)
    , ticker(workTicker)
{
}

ModelBuilder::~ModelBuilder()
{
    if (!isDone)
        dismantle();
}

RefT<Object> ModelBuilder::build(RefT<Object> const &target)
{
    for (ObjectRecord const &object : document.objects)
        numSteps += 1 + 2 * static_cast<double>(object.fields.size());
    createObjects(target);
    matchFields();
    fillObjects();
    // The last moment at which the work may be ended.
    ticker.tell(1);
    if (isTargetGiven)
        fillTarget();
    isDone = true;
    return made.front().object;
}

void ModelBuilder::createObjects(RefT<Object> const &target)
{
    made.resize(document.objects.size());
    ObjectRecord const &root = document.objects.front();
    if (target) {
        isTargetGiven = true;
        made.front().object = target;
        const std::string name = target->getClassInfo().name;
        if (root.className != name)
            reports.report(root.place, "the first object is a " + quoted(root.className) +
                                           " and should be a " + quoted(name));
    }
    for (std::size_t i = isTargetGiven ? 1 : 0; i < made.size(); ++i) {
        tick();
        made[i].object = createObject(document.objects[i]);
    }
    reports.giveUpAfterErrors();
    std::unordered_set<Object const *> distinct;
    for (std::size_t i = 0; i < made.size(); ++i)
        if (!distinct.insert(made[i].object.get()).second)
            reports.report(document.objects[i].place,
                           factoryOf(document.objects[i]) + " has made the same object again");
    reports.giveUpAfterErrors();
}

RefT<Object> ModelBuilder::createObject(ObjectRecord const &record)
{
    if (!registry.isKnown(record.className)) {
        reports.report(record.place, "the class " + quoted(record.className) + " is unknown");
        return {};
    }
    RefT<Object> object;
    reports.attempt(record.place, factoryOf(record) + " failed: ", [&] {
        object = registry.create(record.className);
        if (!object)
            reports.report(record.place, factoryOf(record) + " has made no object");
    });
    return object;
}

void ModelBuilder::matchFields()
{
    for (std::size_t i = 0; i < made.size(); ++i)
        matchFields(document.objects[i], made[i]);
    reports.giveUpAfterErrors();
}

void ModelBuilder::matchFields(ObjectRecord const &record, Made &object)
{
    const bool isOpen = registry.isOpen(record.className);
    FieldFinder finder(*object.object);
    for (FieldRecord const &field : record.fields) {
        tick();
        RefT<Field> found = finder.take(field.name);
        if (!found && !isOpen)
            reports.report(field.place, "the class " + quoted(record.className) + " has no field " +
                                            quoted(field.name) + " left");
        const auto isOfItsType = [&] {
            return found->getType() == field.type && visitField(*found, [](auto &) {});
        };
        if (found && !isOfItsType())
            reports.report(field.place, "the field " + quoted(field.name) + " is of another type");
        object.fields.push_back(std::move(found));
    }
}

void ModelBuilder::fillObjects()
{
    for (std::size_t i = isTargetGiven ? 1 : 0; i < made.size(); ++i)
        fillObject(document.objects[i], made[i]);
    reports.giveUpAfterErrors();
}

void ModelBuilder::fillObject(ObjectRecord const &record, Made const &filled)
{
    setFlags(filled.object, record.flags);
    for (std::size_t i = 0; i < record.fields.size(); ++i) {
        tick();
        FieldRecord const &field = record.fields[i];
        reports.attempt(field.place, "",
                        [&] { fillField(filled.object, field, filled.fields[i]); });
    }
}

void ModelBuilder::fillField(RefT<Object> const &object, FieldRecord const &record,
                             RefT<Field> field)
{
    if (!field)
        field = addFieldOf(object, record);
    if (!object || field->owner != object.get())
        throw Error("field " + quoted(record.name) + ": a listener took it away");
    setFlags(field, record.flags);
    visitField(*field, [&](auto &typed) {
        if (keepsUndo)
            undo.emplace_back([field, &typed, old = currentValue(typed)] { store(typed, old); });
        store(typed, valueOf<std::decay_t<decltype(typed)>>(record));
    });
}

RefT<Field> ModelBuilder::addFieldOf(RefT<Object> const &object, FieldRecord const &record)
{
    // Where the new field will stand. A listener may refuse it, or take it away at once.
    const std::size_t index = object->getNumFields();
    const auto find = [object, index, &record]() -> RefT<Field> {
        if (!object || index >= object->getNumFields())
            return {};
        RefT<Field> const &field = object->getField(index);
        return field->name == record.name ? field : RefT<Field>();
    };
    if (keepsUndo)
        undo.emplace_back([object, find] {
            if (const RefT<Field> field = find())
                removeField(*object, *field);
        });
    visitFieldType(record.type, [&](auto tag) {
        addField<typename decltype(tag)::FieldType>(*object, record.name.c_str());
    });
    const RefT<Field> field = find();
    if (!field || field->getType() != record.type)
        throw Error("field " + quoted(record.name) + ": a listener took it away");
    return field;
}

/// Asks before anything is changed: so hosts don't see changes that are taken back.
void ModelBuilder::askTarget()
{
    ObjectRecord const &record = document.objects.front();
    for (std::size_t i = 0; i < record.fields.size(); ++i) {
        const RefT<Field> field = made.front().fields[i];
        if (!field)
            continue;
        FieldRecord const &value = record.fields[i];
        reports.attempt(value.place, "", [&] {
            visitField(*field, [&](auto &typed) {
                if (!accepts(typed, valueOf<std::decay_t<decltype(typed)>>(value)))
                    throw Error("field " + quoted(value.name) + ": the value is refused");
            });
        });
    }
    reports.giveUpAfterErrors();
}

void ModelBuilder::fillTarget()
{
    askTarget();
    keepsUndo = true;
    fillObject(document.objects.front(), made.front());
    reports.giveUpAfterErrors();
}

void ModelBuilder::restoreTarget() noexcept
{
    keepsUndo = false;
    const Place root = document.objects.front().place;
    for (; !undo.empty(); undo.pop_back())
        quietly([&] { reports.attempt(root, "the target can't be restored: ", undo.back()); });
}

void ModelBuilder::dismantle() noexcept
{
    restoreTarget();
    // Circles of owners don't end by themselves. Who refuses to let go loses the field.
    for (std::size_t i = isTargetGiven ? 1 : 0; i < made.size(); ++i) {
        const RefT<Object> object = std::move(made[i].object);
        made[i].fields.clear();
        for (std::size_t f = object ? object->getNumFields() : 0; f-- > 0;) {
            if (f >= object->getNumFields())
                continue;
            const RefT<Field> field = object->getField(f);
            if (isOwningLinkType(field->getType()) && !letGo(*field))
                quietly([&] { removeField(*object, *field); });
        }
    }
}

template <class Item>
void ModelBuilder::setFlags(RefT<Item> const &item, unsigned flags)
{
    if (keepsUndo)
        undo.emplace_back([item, old = item->getFlags()] {
            if (item)
                item->setFlags(old);
        });
    item->setFlags(flags);
}

template <class FieldType>
auto ModelBuilder::valueOf(FieldRecord const &record) const
{
    if constexpr (isListField<FieldType>) {
        typename FieldType::Values values;
        Links const &links = std::get<Links>(record.value);
        values.reserve(links.size());
        for (const Link link : links)
            values.emplace_back(linked(link));
        return values;
    } else if constexpr (FieldType::Traits::isLink) {
        return typename FieldType::Value(linked(std::get<Links>(record.value).front()));
    } else {
        return std::get<typename FieldType::Value>(record.value);
    }
}

RefT<Object> const &ModelBuilder::linked(Link link) const
{
    static const RefT<Object> nothing;
    return link == noLink ? nothing : made[link].object;
}

void ModelBuilder::tick()
{
    ticker.tick(0.5 + ++numDone / numSteps / 2);
}

} // namespace ZR::VOM::Xml
