#pragma once

#include "zrVOMGUI/foundation/vom/MField.h"

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace ZR::VOM::GUI {

/// What a view should make of a model and its rules, worked out in the plainest way.
///
/// The test tells it of each change just before or after it makes it. Objects go by their string
/// field "name", which must be unique and stay.
///
/// Beside the links that follow from rules and model it knows where a view deliberately lags behind
/// until links are next rebuilt, which an add() does that makes a node:
/// - a list field added to a live object isn't followed;
/// - of several fields of one name a new rule covers the first one only;
/// - a layout merges one of two opposed links between visible nodes into the other. Which one
///   depends on addresses, so the oracle is told what came of it.
class LinkOracle {
public:
    using Objects = std::vector<RefT<Object>>;
    /// From, to, and the number of references.
    using Links = std::map<std::pair<std::string, std::string>, unsigned>;

    void add(Objects const &objs);
    void remove(Objects const &objs);
    void clear();
    /// The names of those that change, in order.
    std::vector<std::string> setVisible(Objects const &objs, bool visible);
    void setSel(Objects const &objs);
    /// After a layout, with what dumpLinks() says of the view.
    void layout(std::string const &viewLinks);

    void addRule(bool out, std::string const &className, std::string const &fieldName);
    void removeRule(bool out, std::string const &className, std::string const &fieldName);

    void fieldAdded(Field &field);
    void removingField(Field &field);
    /// Before values of a link field are replaced; a single link has its value at 0.
    void changing(Field &field, std::size_t index, std::size_t numRemoved, Objects const &values);
    /// After anything that may have ended an object.
    void forgetDead();

    /// As dumpLinks() of the view, without intermediate nodes, and as dumpNodes().
    std::string links() const { return describe(linkCounts); }
    std::string nodes() const;
    /// The links of a view built anew.
    std::string newLinks() const;
    /// Whether the view lags behind the model on purpose.
    bool isBehind() const { return links() != newLinks(); }
    /// Whether that is for a layout that merged opposed links.
    bool hasMerged() const { return merged; }
    /// Those with a node, and the visible and the selected among them, sorted.
    std::vector<std::string> names(bool visibleOnly = false, bool selectedOnly = false) const;

    using Rules = std::set<std::pair<std::string, std::string>>;
    Rules const &getRules(bool out) const { return out ? outRules : inRules; }

private:
    struct Node {
        PtrT<Object> obj;
        bool visible = false, selected = false;
    };
    struct Followed {
        std::string owner;
        PtrT<Field> field;
        bool out;
    };

    Node *find(RefT<Object> const &obj);
    bool covers(bool out, Field const &field) const;
    bool isFollowed(bool out, Field const &field) const;
    void follow(bool out, std::string const &owner, Field &field);
    void unfollow(std::vector<Followed>::iterator place);
    void count(bool out, std::string const &owner, RefT<Object> const &value, int change);
    void dropNode(std::string const &name);
    void rebuild();
    static std::string describe(Links const &links);

    std::map<std::string, Node> nodesByName;
    Rules outRules, inRules;
    std::vector<Followed> followed;
    Links linkCounts;
    bool merged = false;
};

/// Such as "a b c".
std::string joined(std::vector<std::string> const &names);

/// The values of a link field in order, nulls included; none for another field.
LinkOracle::Objects valuesOf(Field &field);

} // namespace ZR::VOM::GUI
