#include "support/LinkOracle.h"

#include "support/dump.h"

#include <algorithm>
#include <sstream>

namespace ZR::VOM::GUI {

namespace {

bool isLink(Field const &field)
{
    const int type = field.getType();
    return type == 5 || type == 6 || type == 11 || type == 12;
}

/// Reads what dumpLinks() wrote: "a>b:2/1" is a link of 2 references. What isn't written like that
/// gets a count of 0.
LinkOracle::Links parse(std::string const &text)
{
    LinkOracle::Links links;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const std::size_t arrow = word.find('>');
        const std::size_t end = word.find_first_of(":/!", arrow);
        if (arrow == std::string::npos)
            continue;
        unsigned count = 1;
        if (end != std::string::npos && word[end] != '/')
            count = word[end] == ':' ? unsigned(std::stoul(word.substr(end + 1))) : 0;
        links[{word.substr(0, arrow), word.substr(arrow + 1, end - arrow - 1)}] = count;
    }
    return links;
}

} // namespace

std::string joined(std::vector<std::string> const &names)
{
    std::string text;
    for (std::string const &name : names)
        text += (text.empty() ? "" : " ") + name;
    return text;
}

LinkOracle::Objects valuesOf(Field &field)
{
    if (auto *const link = dynamic_cast<FieldPtr *>(&field))
        return {RefT<Object>(link->get())};
    if (auto *const link = dynamic_cast<FieldRef *>(&field))
        return {link->get()};
    if (auto *const list = dynamic_cast<MFieldPtr *>(&field))
        return LinkOracle::Objects(list->getAll().begin(), list->getAll().end());
    if (auto *const list = dynamic_cast<MFieldRef *>(&field))
        return list->getAll();
    return {};
}

void LinkOracle::add(Objects const &objs)
{
    bool created = false;
    for (RefT<Object> const &obj : objs) {
        if (obj && !find(obj)) {
            nodesByName[nameOf(obj)].obj = obj;
            created = true;
        }
    }
    if (created)
        rebuild();
}

void LinkOracle::remove(Objects const &objs)
{
    for (RefT<Object> const &obj : objs)
        if (find(obj))
            dropNode(nameOf(obj));
}

void LinkOracle::clear()
{
    nodesByName.clear();
    followed.clear();
    linkCounts.clear();
    merged = false;
}

std::vector<std::string> LinkOracle::setVisible(Objects const &objs, bool visible)
{
    std::vector<std::string> changed;
    for (RefT<Object> const &obj : objs) {
        Node *const node = find(obj);
        if (node && std::exchange(node->visible, visible) != visible)
            changed.push_back(nameOf(obj));
    }
    return changed;
}

void LinkOracle::setSel(Objects const &objs)
{
    for (auto &[name, node] : nodesByName)
        node.selected = false;
    for (RefT<Object> const &obj : objs)
        if (Node *const node = find(obj))
            node->selected = true;
}

void LinkOracle::layout(std::string const &viewLinks)
{
    const Links inView = parse(viewLinks);
    for (auto const &[a, nodeA] : nodesByName) {
        for (auto const &[b, nodeB] : nodesByName) {
            const auto there = linkCounts.find({a, b});
            const auto back = linkCounts.find({b, a});
            if (a >= b || !nodeA.visible || !nodeB.visible || there == linkCounts.end() ||
                back == linkCounts.end())
                continue;
            const bool mergedBack = inView.count({b, a}) != 0;
            (mergedBack ? back : there)->second += (mergedBack ? there : back)->second;
            linkCounts.erase(mergedBack ? there : back);
            merged = true;
        }
    }
}

void LinkOracle::addRule(bool out, std::string const &className, std::string const &fieldName)
{
    if (fieldName.empty() || !(out ? outRules : inRules).insert({className, fieldName}).second)
        return;
    for (auto const &[name, node] : nodesByName) {
        const PtrT<Field> first = node.obj->findField(fieldName);
        const bool isOfClass = className.empty() || node.obj->getClassInfo().isType(className);
        if (isOfClass && first && isLink(*first) && !isFollowed(out, *first))
            follow(out, name, *first);
    }
}

void LinkOracle::removeRule(bool out, std::string const &className, std::string const &fieldName)
{
    (out ? outRules : inRules).erase({className, fieldName});
    for (std::size_t i = followed.size(); i-- > 0;)
        if (followed[i].out == out && !covers(out, *followed[i].field))
            unfollow(followed.begin() + std::ptrdiff_t(i));
}

void LinkOracle::fieldAdded(Field &field)
{
    const RefT<Object> owner(field.owner);
    for (bool out : {true, false})
        if (find(owner) && (field.getType() == 5 || field.getType() == 6) && covers(out, field))
            follow(out, nameOf(owner), field);
}

void LinkOracle::removingField(Field &field)
{
    for (std::size_t i = followed.size(); i-- > 0;)
        if (followed[i].field.get() == &field)
            unfollow(followed.begin() + std::ptrdiff_t(i));
}

void LinkOracle::changing(Field &field, std::size_t index, std::size_t numRemoved,
                          Objects const &values)
{
    const Objects old = valuesOf(field);
    for (Followed const &follower : followed) {
        if (follower.field.get() != &field)
            continue;
        for (std::size_t i = index; i < index + numRemoved; ++i)
            count(follower.out, follower.owner, old[i], -1);
        for (RefT<Object> const &value : values)
            count(follower.out, follower.owner, value, 1);
    }
}

void LinkOracle::forgetDead()
{
    for (std::string const &name : names())
        if (!nodesByName[name].obj)
            dropNode(name);
}

std::string LinkOracle::nodes() const
{
    std::string text;
    for (auto const &[name, node] : nodesByName)
        text += (text.empty() ? "" : " ") + name + (node.visible ? "+" : "") +
                (node.selected ? "*" : "");
    return text;
}

std::string LinkOracle::newLinks() const
{
    LinkOracle fresh;
    fresh.nodesByName = nodesByName;
    fresh.outRules = outRules;
    fresh.inRules = inRules;
    fresh.rebuild();
    return fresh.links();
}

std::vector<std::string> LinkOracle::names(bool visibleOnly, bool selectedOnly) const
{
    std::vector<std::string> all;
    for (auto const &[name, node] : nodesByName)
        if ((!visibleOnly || node.visible) && (!selectedOnly || node.selected))
            all.push_back(name);
    return all;
}

LinkOracle::Node *LinkOracle::find(RefT<Object> const &obj)
{
    const auto node = obj ? nodesByName.find(nameOf(obj)) : nodesByName.end();
    return node == nodesByName.end() ? nullptr : &node->second;
}

bool LinkOracle::covers(bool out, Field const &field) const
{
    Rules const &rules = getRules(out);
    bool covered = rules.count({"", field.name}) != 0;
    for (ClassInfo const *info = &field.owner->getClassInfo(); info; info = info->base)
        covered |= rules.count({info->name, field.name}) != 0;
    return covered && isLink(field);
}

bool LinkOracle::isFollowed(bool out, Field const &field) const
{
    return std::any_of(followed.begin(), followed.end(), [&](Followed const &follower) {
        return follower.out == out && follower.field.get() == &field;
    });
}

void LinkOracle::follow(bool out, std::string const &owner, Field &field)
{
    followed.push_back({owner, field, out});
    for (RefT<Object> const &value : valuesOf(field))
        count(out, owner, value, 1);
}

void LinkOracle::unfollow(std::vector<Followed>::iterator place)
{
    for (RefT<Object> const &value : valuesOf(*place->field))
        count(place->out, place->owner, value, -1);
    followed.erase(place);
}

/// A reference that a merged link lost finds nothing to take off.
void LinkOracle::count(bool out, std::string const &owner, RefT<Object> const &value, int change)
{
    if (!find(value))
        return;
    const std::string far = nameOf(value);
    const auto ends = out ? std::pair(owner, far) : std::pair(far, owner);
    if (change > 0) {
        ++linkCounts[ends];
        return;
    }
    const auto link = linkCounts.find(ends);
    if (link != linkCounts.end() && --link->second == 0)
        linkCounts.erase(link);
}

void LinkOracle::dropNode(std::string const &name)
{
    nodesByName.erase(name);
    for (std::size_t i = followed.size(); i-- > 0;)
        if (followed[i].owner == name)
            followed.erase(followed.begin() + std::ptrdiff_t(i));
    for (auto link = linkCounts.begin(); link != linkCounts.end();) {
        const bool isEnd = link->first.first == name || link->first.second == name;
        link = isEnd ? linkCounts.erase(link) : std::next(link);
    }
}

void LinkOracle::rebuild()
{
    followed.clear();
    linkCounts.clear();
    merged = false;
    for (auto const &[name, node] : nodesByName) {
        for (std::size_t i = 0; i < node.obj->getNumFields(); ++i) {
            Field &field = *node.obj->getField(i);
            for (bool out : {true, false})
                if (covers(out, field))
                    follow(out, name, field);
        }
    }
}

std::string LinkOracle::describe(Links const &links)
{
    std::vector<std::string> words;
    for (auto const &[ends, count] : links)
        words.push_back(ends.first + '>' + ends.second +
                        (count == 1 ? "" : ':' + std::to_string(count)));
    std::sort(words.begin(), words.end());
    return joined(words);
}

} // namespace ZR::VOM::GUI
