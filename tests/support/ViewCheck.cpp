#include "support/ViewCheck.h"

#include "support/GraphViewAccess.h"
#include "support/ViewProbe.h"
#include "support/dump.h"
#include "zrVOMGUI/presentation/ItemLabel.h"

#include <set>

namespace ZR::VOM::GUI {

namespace {

using Graph::Direction;
using Graph::LinkEntry;
using Graph::LinkMap;
using Graph::Node;

class Check {
public:
    explicit Check(ObjectGraphView &checkedView)
        : view(checkedView)
    {
    }

    std::string run()
    {
        checkNodes();
        if (!faults.empty())
            return faults; // What follows goes through the nodes.
        for (RefT<Node> const &node : GraphViewAccess::nodes(view)) {
            checkLinks(*node);
            checkWatch(*node);
        }
        return faults;
    }

    std::string runAtRest()
    {
        if (GraphViewAccess::animTimer(view).isActive())
            fault("the animation runs");
        for (RefT<Node> const &node : GraphViewAccess::nodes(view)) {
            if (!node->visible)
                continue;
            checkPlace(*node, nameOf(node->obj));
            for (auto const &[far, entry] : node->linkedOut)
                forEachIntermediate(entry, [&, &to = far](Node &station) {
                    checkPlace(station, linkName(*node, *to));
                });
        }
        return faults;
    }

private:
    void fault(std::string const &text) { faults += (faults.empty() ? "" : "\n") + text; }

    static std::string linkName(Node const &from, Node const &to)
    {
        return nameOf(from.obj) + '>' + nameOf(to.obj);
    }

    void checkNodes()
    {
        const std::vector<RefT<VOM::Object>> objs = view.getObjs();
        const std::vector<RefT<Node>> nodes = GraphViewAccess::nodes(view);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            if (!objs[i])
                fault("a node of a dead object");
            else if (objs[i]->isBeingDeleted())
                fault("a node of a dying object");
            else if (!nodes[i])
                fault("no node for " + nameOf(objs[i]));
            else if (nodes[i]->view != &view || !nodes[i]->watch || nodes[i]->obj != objs[i])
                fault("a wrong node for " + nameOf(objs[i]));
            else if (GraphViewAccess::node(view, objs[i]) != nodes[i].get())
                fault(nameOf(objs[i]) + " isn't found");
        }
    }

    bool isInView(Node const &node) const
    {
        return node.obj && GraphViewAccess::node(view, node.obj) == &node;
    }

    void checkLinks(Node &node)
    {
        checkKeys(node.linkedIn, nameOf(node.obj));
        checkKeys(node.linkedOut, nameOf(node.obj));
        for (auto const &[from, entry] : node.linkedIn)
            if (from && from->linkedOut.find(Graph::keyOf(node)) == from->linkedOut.end())
                fault(linkName(*from, node) + " is only at its end");
        for (auto const &[to, entry] : node.linkedOut)
            if (to)
                checkLink(node, *to, entry);
    }

    void checkKeys(LinkMap const &links, std::string const &name)
    {
        Node const *previous = nullptr;
        for (auto const &[far, entry] : links) {
            if (!far)
                fault("a dead link at " + name);
            else if (!isInView(*far))
                fault("a link out of the view at " + name);
            else if (!std::less<Node const *>()(previous, far.get()))
                fault("links out of order at " + name);
            previous = far.get();
        }
    }

    void checkLink(Node &from, Node &to, LinkEntry const &out)
    {
        const std::string name = linkName(from, to);
        const auto in = to.linkedIn.find(Graph::keyOf(from));
        if (in == to.linkedIn.end())
            return fault(name + " is only at its start");
        if (out.count == 0 || in->second.count != out.count)
            fault(name + " counts " + std::to_string(out.count) + " and " +
                  std::to_string(in->second.count));
        if (out.split && (!from.visible || !to.visible))
            fault(name + " has stations, and an end is hidden");
        checkChain(from, to, out, in->second);
    }

    void checkChain(Node &from, Node &to, LinkEntry const &out, LinkEntry const &in)
    {
        const std::string name = linkName(from, to);
        Node *previous = nullptr;
        for (Node *station = out.split.get(); station;) {
            if (!stations.insert(station).second)
                return fault(name + " shares a station");
            if (station->view != &view || !station->isIntermediate() || station->obj ||
                !station->visible)
                return fault(name + " has a wrong station");
            if (!isPiece(station->linkedIn, from, out.count) ||
                !isPiece(station->linkedOut, to, out.count) ||
                station->linkedIn.begin()->second.split.get() != previous)
                return fault(name + " has a broken chain");
            previous = station;
            station = station->linkedOut.begin()->second.split.get();
        }
        if (in.split.get() != previous)
            fault(name + " has a chain of one direction");
    }

    static bool isPiece(LinkMap const &links, Node const &far, unsigned count)
    {
        return links.size() == 1 && links.begin()->first.get() == &far &&
               links.begin()->second.count == count;
    }

    void checkWatch(Node &node)
    {
        checkFields(node, node.watch->outFields, Direction::Out);
        checkFields(node, node.watch->inFields, Direction::In);
        FieldString const *const nameField = node.watch->nameField.get();
        if (nameField &&
            (nameField->owner != node.obj.get() || nameField->name != view.getFieldName()))
            fault("a wrong name field of " + nameOf(node.obj));
        const QString label = QString::fromStdString(
            getItemLabel(node.obj, view.getFieldName(), view.isTypeName(), false));
        const bool isCut =
            label.size() > node.watch->label.size() && node.watch->label.size() >= 0xffff;
        if (isCut ? !label.startsWith(node.watch->label) : label != node.watch->label)
            fault("a stale label of " + nameOf(node.obj));
    }

    void checkFields(Node &node, Graph::WatchedFields const &fields, Direction direction)
    {
        for (auto const &[address, conns] : fields) {
            Field *const field = conns.field.get();
            const bool out = direction == Direction::Out;
            if (!field)
                fault("a dead field of " + nameOf(node.obj));
            else if (field != address || field->owner != node.obj.get())
                fault("a field of another object at " + nameOf(node.obj));
            else if (out ? !view.isOutLinkField(field) : !view.isInLinkField(field))
                fault("a field without a rule at " + nameOf(node.obj));
        }
    }

    void checkPlace(Node const &node, std::string const &name)
    {
        if (node.x != node.toX || node.y != node.toY)
            fault(name + " isn't on its target");
        if (node.fromX != node.toX || node.fromY != node.toY)
            fault(name + " is still on its way");
    }

    ObjectGraphView &view;
    std::set<Node const *> stations;
    std::string faults;
};

} // namespace

std::string faultsOf(ObjectGraphView &view)
{
    return Check(view).run();
}

std::string faultsAtRest(ObjectGraphView &view)
{
    finishAnimation(view);
    const std::string faults = Check(view).run();
    return faults.empty() ? Check(view).runAtRest() : faults;
}

} // namespace ZR::VOM::GUI
