#include "Project.h"

#include <zrVOMGUI/foundation/util/Error.h>
#include <zrVOMGUI/foundation/vom/linkFields.h>

#include <algorithm>
#include <initializer_list>
#include <type_traits>

namespace Example {

using namespace ZR::VOM;
using ZR::cast;
using ZR::PtrT;
using ZR::RefT;

//! [info]
ClassInfo const Person::classInfo = {&Object::classInfo, "Person"};

Person::Person(std::string const &name)
{
    addField<FieldString>(*this, "name", name);
}
//! [info]

ClassInfo const Task::classInfo = {&Object::classInfo, "Task"};
ClassInfo const Project::classInfo = {&Object::classInfo, "Project"};

//! [guard]
Task::Task(std::string const &name, double hours)
{
    addField<FieldString>(*this, "name", name);
    addField<FieldString>(*this, "note");
    addField<FieldReal>(*this, "hours", hours);
    addField<MFieldPtr>(*this, "needs");
    addField<FieldPtr>(*this, "worker");
    guardHours();
}

Task::Task(Task const &other)
    : Object(other)
{
    guardHours();
}

void Task::guardHours()
{
    cast<FieldReal>(findField("hours"))->sigCanSet.connect([](auto const &sigData) {
        if (!(*sigData.value >= 0))
            throw ZR::Error("A task can't take less than no time.");
    });
}
//! [guard]

Project::Project(std::string const &name)
{
    addField<FieldString>(*this, "name", name);
    addField<MFieldRef>(*this, "tasks");
    addField<MFieldRef>(*this, "people");
}

namespace {

template <class List>
void append(RefT<Object> const &object, char const *fieldName,
            std::initializer_list<RefT<Object>> objects)
{
    auto *const list = cast<List>(object->findField(fieldName));
    list->replace(list->getNum(), 0, typename List::Values(objects.begin(), objects.end()));
}

void assign(std::initializer_list<RefT<Object>> tasks, RefT<Object> const &worker)
{
    for (RefT<Object> const &task : tasks)
        cast<FieldPtr>(task->findField("worker"))->set(worker);
}

} // namespace

RefT<Object> makeProject()
{
    const RefT<Object> project(new Project("atlas"));
    const RefT<Object> kim(new Person("Kim")), noor(new Person("Noor"));
    const RefT<Object> plan(new Task("plan", 12)), survey(new Task("survey", 30)),
        draw(new Task("draw", 40)), write(new Task("write", 24)), check(new Task("check", 16)),
        print(new Task("print", 8));
    append<MFieldPtr>(survey, "needs", {plan});
    append<MFieldPtr>(draw, "needs", {survey});
    append<MFieldPtr>(write, "needs", {plan, survey});
    append<MFieldPtr>(check, "needs", {draw, write});
    append<MFieldPtr>(print, "needs", {check, draw});
    assign({plan, survey, check}, kim);
    assign({draw, write}, noor);
    append<MFieldRef>(project, "tasks", {plan, survey, draw, write, check, print});
    append<MFieldRef>(project, "people", {kim, noor});
    return project;
}

Objects listOf(RefT<Object> const &object, std::string const &fieldName)
{
    auto const *const list = cast<MFieldRef>(object->findField(fieldName));
    return list ? list->getAll() : Objects();
}

RefT<Object> findNamed(Objects const &objects, std::string const &name)
{
    for (RefT<Object> const &object : objects) {
        auto const *const field = cast<FieldString>(object->findField("name"));
        if (field && field->get() == name)
            return object;
    }
    return {};
}

//! [place]
void place(Field &field, std::size_t index, Objects const &objects)
{
    visitLinkField(field, [&](auto &links) {
        using Links = std::decay_t<decltype(links)>;
        if constexpr (std::is_base_of_v<MField, Links>) {
            typename Links::Values values, behind;
            for (std::size_t i = 0; i < links.getNum(); ++i)
                if (std::find(objects.begin(), objects.end(), links.get(i)) == objects.end())
                    (i < index ? values : behind).push_back(links.get(i));
            values.insert(values.end(), objects.begin(), objects.end());
            values.insert(values.end(), behind.begin(), behind.end());
            links.replace(0, links.getNum(), values); // One change, which widgets see as one.
        } else if (!objects.empty()) {
            links.set(objects.front());
        }
    });
}
//! [place]

//! [registry]
RefT<ClassRegistry> makeRegistry()
{
    const RefT<ClassRegistry> registry(new ClassRegistry);
    registry->add<Person>();
    registry->add<Task>();
    registry->add<Project>();
    return registry;
}
//! [registry]

} // namespace Example
