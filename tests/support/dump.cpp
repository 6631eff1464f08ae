#include "support/dump.h"

#include "support/GraphViewAccess.h"

#include <algorithm>

namespace ZR::VOM::GUI {

namespace {

using Graph::LinkEntry;
using Graph::LinkMap;
using Graph::Node;

std::string joined(std::vector<std::string> words, char const *separator)
{
    std::sort(words.begin(), words.end());
    std::string text;
    for (std::string const &word : words)
        text += (text.empty() ? "" : separator) + word;
    return text;
}

std::string nameOf(Node const &node)
{
    return ZR::VOM::GUI::nameOf(node.obj);
}

LinkEntry const *findEntry(LinkMap const &links, Node &far)
{
    const auto entry = links.find(Graph::keyOf(far));
    return entry == links.end() ? nullptr : &entry->second;
}

/// Whether a station of a chain has its one entry in `links`, as it should be.
bool isStation(LinkMap const &links, Node const &far, LinkEntry const &entry, Node const *next)
{
    return links.size() == 1 && links.begin()->first.get() == &far &&
           links.begin()->second.count == entry.count && links.begin()->second.split.get() == next;
}

/// Follows a chain from its from end; the number of stations, or -1 when it doesn't hold together.
int chainLength(Node const &from, Node const &to, LinkEntry const &out, LinkEntry const &in)
{
    int length = 0;
    Node const *previous = nullptr;
    for (Node const *station = out.split.get(); station; ++length) {
        Node const *const next =
            station->linkedOut.empty() ? nullptr : station->linkedOut.begin()->second.split.get();
        if (!station->visible || !station->isIntermediate() ||
            !isStation(station->linkedIn, from, out, previous) ||
            !isStation(station->linkedOut, to, out, next))
            return -1;
        previous = station;
        station = next;
    }
    return in.split.get() == previous ? length : -1;
}

std::string describeLink(Node &from, Node &to, LinkEntry const &out)
{
    std::string text = nameOf(from) + '>' + nameOf(to);
    if (out.count != 1)
        text += ':' + std::to_string(out.count);
    LinkEntry const *const in = findEntry(to.linkedIn, from);
    if (!in)
        return text + "!no other end";
    if (in->count != out.count)
        return text + "!other end " + std::to_string(in->count);
    const int length = chainLength(from, to, out, *in);
    if (length < 0)
        return text + "!broken chain";
    if (length > 0)
        text += '/' + std::to_string(length);
    return text;
}

std::vector<std::string> words(ObjectGraphView &view, std::string (*describe)(Node &))
{
    std::vector<std::string> all;
    for (RefT<Node> const &node : GraphViewAccess::nodes(view))
        all.push_back(describe(*node));
    return all;
}

} // namespace

std::string nameOf(Ptr const &obj)
{
    auto *const object = cast<VOM::Object>(obj);
    if (!object)
        return "(dead)";
    auto *const field = cast<FieldString>(object->findField("name"));
    return field ? field->get() : object->getClassInfo().name;
}

std::string dumpLinks(ObjectGraphView &view)
{
    std::vector<std::string> links;
    for (RefT<Node> const &node : GraphViewAccess::nodes(view)) {
        for (auto const &[far, entry] : node->linkedOut)
            links.push_back(far ? describeLink(*node, *far, entry) : nameOf(*node) + ">!dead");
        for (auto const &[far, entry] : node->linkedIn)
            if (!far || !findEntry(far->linkedOut, *node))
                links.push_back(nameOf(*node) + "<!no other end");
    }
    return joined(links, " ");
}

std::string dumpNodes(ObjectGraphView &view)
{
    return joined(words(view,
                        [](Node &node) {
                            return nameOf(node) + (node.visible ? "+" : "") +
                                   (node.selected ? "*" : "");
                        }),
                  " ");
}

std::string dumpLabels(ObjectGraphView &view)
{
    return joined(
        words(view,
              [](Node &node) { return nameOf(node) + '=' + node.watch->label.toStdString(); }),
        "\n");
}

std::string namesOf(std::vector<RefT<VOM::Object>> const &objs)
{
    std::vector<std::string> names;
    for (RefT<VOM::Object> const &obj : objs)
        names.push_back(nameOf(obj));
    return joined(names, " ");
}

std::string namesInOrder(std::vector<RefT<VOM::Object>> const &objs)
{
    std::string text;
    for (RefT<VOM::Object> const &obj : objs)
        text += (text.empty() ? "" : " ") + nameOf(obj);
    return text;
}

} // namespace ZR::VOM::GUI
