#pragma once

// The model that the examples share: a project, the people in it, and tasks that need each other.

#include <zrVOMGUI/foundation/vom/ClassRegistry.h>
#include <zrVOMGUI/foundation/vom/MField.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Example {

using Objects = std::vector<ZR::RefT<ZR::VOM::Object>>;

//! [class]
/// Somebody who works: a string "name".
class Person : public ZR::VOM::Object {
public:
    explicit Person(std::string const &name = "");

    ZR::VOM::ClassInfo const &getClassInfo() const override { return classInfo; }
    ZR::RefT<ZR::VOM::Object> clone() override { return new Person(*this); }

    static ZR::VOM::ClassInfo const classInfo;
};
//! [class]

//! [task]
/// Work to be done: strings "name" and "note", a real "hours", which is never negative, a list
/// "needs" of tasks that come first, and a link "worker" to a person. Owns none of them.
class Task : public ZR::VOM::Object {
public:
    explicit Task(std::string const &name = "", double hours = 0);

    ZR::VOM::ClassInfo const &getClassInfo() const override { return classInfo; }
    ZR::RefT<ZR::VOM::Object> clone() override { return new Task(*this); }

    static ZR::VOM::ClassInfo const classInfo;

private:
    Task(Task const &other);
    void guardHours();
};
//! [task]

/// A string "name", and lists "tasks" and "people", which it owns.
class Project : public ZR::VOM::Object {
public:
    explicit Project(std::string const &name = "");

    ZR::VOM::ClassInfo const &getClassInfo() const override { return classInfo; }
    ZR::RefT<ZR::VOM::Object> clone() override { return new Project(*this); }

    static ZR::VOM::ClassInfo const classInfo;
};

/// A project with a few tasks and people.
ZR::RefT<ZR::VOM::Object> makeProject();

/// What an owning list of the object holds; nothing when it has no such list.
Objects listOf(ZR::RefT<ZR::VOM::Object> const &object, std::string const &fieldName);

/// The first of the objects that is called so; null when none is.
ZR::RefT<ZR::VOM::Object> findNamed(Objects const &objects, std::string const &name);

/// Puts objects into a link field, in a list before a position, or behind it all if there is no
/// such position. What the list has already is moved there.
void place(ZR::VOM::Field &field, std::size_t index, Objects const &objects);

/// The classes, for importers.
ZR::RefT<ZR::VOM::ClassRegistry> makeRegistry();

} // namespace Example
