#pragma once

// A parent that knows all its children, and children that know whether their parent still lives:
//
//     class House : public ParentT<House, Door> { ... };
//     class Door : public ChildT<Door, House> { explicit Door(House &house) : ChildT(house) {} };
//
// Neither owns the other. Whoever dies first leaves the other's side by itself. One thread only.

namespace ZR {

template <class Child, class Parent>
class ChildT;

/// The parent's side. Costs one pointer.
template <class Parent, class Child>
class ParentT {
public:
    ParentT(ParentT const &) = delete;
    ParentT &operator=(ParentT const &) = delete;

protected:
    ParentT() = default;
    ~ParentT() { leaveChildren(); }

    /// From now on all children so far read null for their parent. Takes time for each child.
    void leaveChildren()
    {
        while (firstChild) {
            ChildT<Child, Parent> *const child = firstChild;
            child->unlink();
            child->livingParent = nullptr;
        }
    }

private:
    friend class ChildT<Child, Parent>;
    ChildT<Child, Parent> *firstChild = nullptr; // The child made last. Not owned.
};

/// The child's side. Costs three pointers.
template <class Child, class Parent>
class ChildT {
public:
    ChildT(ChildT const &) = delete;
    ChildT &operator=(ChildT const &) = delete;

protected:
    explicit ChildT(Parent &newParent)
        : livingParent(&newParent)
    {
        ParentT<Parent, Child> &list = newParent;
        nextChild = list.firstChild;
        if (nextChild)
            nextChild->childLink = &nextChild;
        childLink = &list.firstChild;
        *childLink = this;
    }
    ~ChildT()
    {
        if (livingParent)
            unlink();
    }

    /// Null once the parent is gone, or has left its children.
    Parent *getLivingParent() const { return livingParent; }

private:
    friend class ParentT<Parent, Child>;

    void unlink()
    {
        *childLink = nextChild;
        if (nextChild)
            nextChild->childLink = childLink;
    }

    Parent *livingParent;         // Not owned.
    ChildT *nextChild = nullptr;  // Made before this one.
    ChildT **childLink = nullptr; // What points to this child.
};

} // namespace ZR
