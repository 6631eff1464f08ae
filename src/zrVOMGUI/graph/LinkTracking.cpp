// Turns the fields that the host declared as links into links between nodes, and keeps these
// current while the model changes.

#include "zrVOMGUI/foundation/vom/linkFields.h"
#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/graph/private/Node.h"
#include "zrVOMGUI/graph/private/NodeLinks.h"

#include <utility>

namespace ZR::VOM::GUI {

using Graph::Direction;

namespace {

auto &watchedFields(Graph::Node &node, Direction direction)
{
    return direction == Direction::Out ? node.watch->outFields : node.watch->inFields;
}

bool hasField(ObjectGraphView::LinkFields const &map, std::string const &className,
              std::string const &fieldName)
{
    const auto entry = map.find(className);
    return entry != map.end() && entry->second.count(fieldName) != 0;
}

void disconnectBoth(Graph::FieldConns &conns)
{
    conns.setConn.disconnect();
    conns.lostConn.disconnect();
}

void disconnectAll(Graph::WatchedFields &fields)
{
    for (auto &[field, conns] : fields)
        disconnectBoth(conns);
    fields.clear();
}

} // namespace

void ObjectGraphView::addOutLinkField(std::string const &className, std::string const &name)
{
    addLinkField(Direction::Out, className, name);
}

void ObjectGraphView::removeOutLinkField(std::string const &className, std::string const &name)
{
    removeLinkField(Direction::Out, className, name);
}

void ObjectGraphView::addInLinkField(std::string const &className, std::string const &name)
{
    addLinkField(Direction::In, className, name);
}

void ObjectGraphView::removeInLinkField(std::string const &className, std::string const &name)
{
    removeLinkField(Direction::In, className, name);
}

bool ObjectGraphView::isOutLinkField(RefT<Field> const &field) const
{
    return isLinkField(outLinkFields, field);
}

bool ObjectGraphView::isInLinkField(RefT<Field> const &field) const
{
    return isLinkField(inLinkFields, field);
}

bool ObjectGraphView::isLinkField(LinkFields const &map, PtrT<Field> const &field) const
{
    if (!field || !field->owner || !isLinkType(field->getType()))
        return false;
    for (ClassInfo const *info = &field->owner->getClassInfo(); info; info = info->base)
        if (hasField(map, info->name, field->name))
            return true;
    return hasField(map, {}, field->name);
}

ObjectGraphView::LinkFields &ObjectGraphView::linkFields(Direction direction)
{
    return direction == Direction::Out ? outLinkFields : inLinkFields;
}

void ObjectGraphView::addLinkField(Direction direction, std::string const &className,
                                   std::string const &name)
{
    if (name.empty() || !linkFields(direction)[className].insert(name).second)
        return;
    const RefreshPause pause(*this);
    for (auto const &[obj, slot] : nodes) {
        if (!className.empty() && !obj->getClassInfo().isType(className))
            continue;
        const std::size_t index = obj->findFieldIndex(name);
        if (index < obj->getNumFields())
            connectField(direction, *slot.node, *obj->getField(index));
    }
}

void ObjectGraphView::removeLinkField(Direction direction, std::string const &className,
                                      std::string const &name)
{
    LinkFields &map = linkFields(direction);
    const auto entry = map.find(className);
    if (name.empty() || entry == map.end() || entry->second.erase(name) == 0)
        return;
    if (entry->second.empty())
        map.erase(entry);
    for (auto const &[obj, slot] : nodes) {
        std::vector<PtrT<Field>> fields;
        for (auto const &[address, conns] : watchedFields(*slot.node, direction))
            fields.push_back(conns.field);
        // Another rule may still cover a field, and a field that was taken from its object by a
        // listener of its removal may be gone.
        for (PtrT<Field> const &field : fields)
            if (field && !isLinkField(map, field))
                removeWatchedField(direction, *slot.node, *field);
    }
}

void ObjectGraphView::link(Node &from, Node &to, unsigned count)
{
    Graph::addLink(from, to, count);
    if (from.visible || to.visible)
        refresh(true);
}

void ObjectGraphView::unlink(Node &from, Node &to, unsigned count)
{
    Graph::dropLink(from, to, count);
    if (from.visible || to.visible)
        refresh(true);
}

/// Links the node to the node of an object, in the direction of the field. An object without a node
/// makes no link, and isn't remembered.
void ObjectGraphView::linkAlong(Direction direction, Node &node, Ptr const &obj)
{
    Node *const far = obj ? findNode(obj) : nullptr;
    if (!far)
        return;
    if (direction == Direction::Out)
        link(node, *far, 1);
    else
        link(*far, node, 1);
}

void ObjectGraphView::unlinkAlong(Direction direction, Node &node, Ptr const &obj)
{
    Node *const far = obj ? findNode(obj) : nullptr;
    if (!far)
        return;
    if (direction == Direction::Out)
        unlink(node, *far, 1);
    else
        unlink(*far, node, 1);
}

/// Links what a field of the node's object holds, and watches it. Passes over fields that hold no
/// links, and over one that another rule covers already: its references count once.
void ObjectGraphView::connectField(Direction direction, Node &node, Field &field)
{
    auto const &fields = watchedFields(node, direction);
    const auto watched = fields.find(&field);
    if (watched != fields.end() && watched->second.field)
        return;
    visitLinkField(field, [&](auto &linkField) {
        const RefreshPause pause(*this);
        forEachLink(linkField,
                    [&](RefT<Object> const &value) { linkAlong(direction, node, value); });
        watchField(direction, node, linkField);
    });
}

template <class LinkField>
void ObjectGraphView::watchField(Direction direction, Node &node, LinkField &field)
{
    Graph::FieldConns &conns = watchedFields(node, direction)[&field];
    conns.field = field;
    if constexpr (std::is_base_of_v<MField, LinkField>) {
        conns.setConn = field.sigReplace.connect(
            [this, direction, &node](typename LinkField::SigReplaceData const &sigData) {
                auto const &changed = static_cast<LinkField const &>(*sigData.ptr);
                const RefreshPause pause(*this);
                for (std::size_t i = 0; i < sigData.numOld; ++i)
                    unlinkAlong(direction, node, sigData.old[i]);
                for (std::size_t i = sigData.index; i < sigData.end && i < changed.getNum(); ++i)
                    linkAlong(direction, node, changed.get(i));
            },
            PtrT<Class>(field));
    } else {
        conns.setConn = field.sigSet.connect(
            [this, direction, &node](typename LinkField::SigSetData const &sigData) {
                unlinkAlong(direction, node, *sigData.old);
                linkAlong(direction, node, static_cast<LinkField const &>(*sigData.ptr).get());
            },
            PtrT<Class>(field));
    }
    // A lost target needs no work: the dying object's node drops its own links.
    conns.lostConn = field.sigLost.connect([](auto const &) {}, PtrT<Class>(field));
}

void ObjectGraphView::removeWatchedField(Direction direction, Node &node, Field &field)
{
    auto &fields = watchedFields(node, direction);
    const auto watched = fields.find(&field);
    if (watched == fields.end())
        return;
    disconnectBoth(watched->second);
    fields.erase(watched);
    const RefreshPause pause(*this);
    forEachLink(field, [&](RefT<Object> const &value) { unlinkAlong(direction, node, value); });
}

/// Drops all links of a node and what it watches on its object's fields.
void ObjectGraphView::dropLinks(Node &node)
{
    if (node.watch) {
        disconnectAll(node.watch->outFields);
        disconnectAll(node.watch->inFields);
    }
    while (!node.linkedIn.empty()) {
        auto const &[far, entry] = *node.linkedIn.begin();
        unlink(*far, node, entry.count);
    }
    while (!node.linkedOut.empty()) {
        auto const &[far, entry] = *node.linkedOut.begin();
        unlink(node, *far, entry.count);
    }
}

void ObjectGraphView::clearLinks()
{
    for (auto const &[obj, slot] : nodes)
        dropLinks(*slot.node);
}

/// Rebuilds all links from the rules and the model.
void ObjectGraphView::updateLinks()
{
    const RefreshPause pause(*this);
    clearLinks();
    for (auto const &[obj, slot] : nodes)
        connectLinkFields(*slot.node);
}

void ObjectGraphView::connectLinkFields(Node &node)
{
    for (std::size_t i = 0; i < node.obj->getNumFields(); ++i) {
        RefT<Field> const &field = node.obj->getField(i);
        if (isOutLinkField(field))
            connectField(Direction::Out, node, *field);
        if (isInLinkField(field))
            connectField(Direction::In, node, *field);
    }
}

void ObjectGraphView::watchObject(Node &node)
{
    node.watch->addFieldConn = node.obj->sigAddField.connect(
        [this, &node](SigAddFieldData const &sigData) { onObjectSigAddField(node, sigData); });
    node.watch->removeFieldConn =
        node.obj->sigRemoveField.connect([this, &node](SigRemoveFieldData const &sigData) {
            onObjectSigRemoveField(node, sigData);
        });
}

/// KEPT: a list field added to a live object isn't linked here, only a single link is; the list
/// begins to link at the next add() that makes a node. Hosts build lists field by field and rely on
/// the view not following the half-built object.
void ObjectGraphView::onObjectSigAddField(Node &node, SigAddFieldData const &sigData)
{
    // A listener before this one may have removed fields.
    if (sigData.index >= node.obj->getNumFields())
        return;
    const RefT<Field> field = node.obj->getField(sigData.index);
    if (field->getType() == 5 || field->getType() == 6) {
        if (isInLinkField(field))
            connectField(Direction::In, node, *field);
        if (isOutLinkField(field))
            connectField(Direction::Out, node, *field);
    }
    if (field->getType() == 4 && field->name == fieldName)
        updateLabel(node);
}

void ObjectGraphView::onObjectSigRemoveField(Node &node, SigRemoveFieldData const &sigData)
{
    Field &field = **sigData.field;
    if (node.watch->nameField == *sigData.field) {
        node.watch->nameField.reset();
        updateLabel(node, &field);
    }
    removeWatchedField(Direction::Out, node, field);
    removeWatchedField(Direction::In, node, field);
}

} // namespace ZR::VOM::GUI
