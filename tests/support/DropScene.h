#pragma once

// Drops on a view, by events.

#include "support/GraphViewAccess.h"
#include "support/SentDrag.h"
#include "support/Things.h"
#include "support/ViewProbe.h"
#include "zrVOMGUI/foundation/vom/XmlExporter.h"
#include "zrVOMGUI/transfer/MimeData.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace ZR::VOM::GUI {

/// What a drag carries.
using Data = std::unique_ptr<QMimeData>;

/// Kept until the program ends, since payloads lead to it.
inline Things const &kept(Things const &objs)
{
    static std::vector<std::unique_ptr<Things>> all;
    all.push_back(std::make_unique<Things>(objs));
    return *all.back();
}

/// A reference to a list of these.
inline Data offer(Things const &objs)
{
    return Data(createMimeData({}, &kept(objs), nullptr));
}

/// Things by letter, of which "a" is shown. Links are given as "ab", from and to.
struct DropScene {
    explicit DropScene(std::string const &letters, std::vector<std::string> const &links = {})
        : things(makeThings(letters))
        , first(letters.front())
    {
        for (std::string const &link : links)
            setLink((*this)[link[0]], link.c_str(), (*this)[link[1]]);
        for (std::string const &link : links)
            view->addOutLinkField("", link);
        view->resize(300, 200);
        view->add(things, false);
        view->setVisible({things.front()}, true);
        finishAnimation(*view);
    }
    RefT<VOM::Object> const &operator[](char letter) const
    {
        return things[std::size_t(letter - first)];
    }
    Things these(std::string const &letters) const
    {
        Things found;
        for (char letter : letters)
            found.push_back((*this)[letter]);
        return found;
    }
    Graph::Node &node(char letter) const { return *GraphViewAccess::node(*view, (*this)[letter]); }
    std::set<Graph::Node *> nodesOf(std::string const &letters) const
    {
        std::set<Graph::Node *> found;
        for (char letter : letters)
            found.insert(&node(letter));
        return found;
    }
    /// Enters, moves and drops; answers whether that was accepted.
    bool drop(std::string const &letters, QPoint const &pos = {50, 40}) const
    {
        const Things objs = these(letters);
        const Data data(createMimeData({}, &objs, nullptr));
        return SentDrag(*view).run(pos, data.get());
    }

    Things things;
    const char first;
    std::unique_ptr<ObjectGraphView> view = std::make_unique<ObjectGraphView>();
};

/// All fields and links of the model.
inline std::string xmlOf(Things const &things)
{
    Log log;
    ErrorManager errors(log);
    std::string text;
    for (RefT<VOM::Object> const &thing : things)
        text += toXml(thing, errors);
    return errors.errorCount == 0 ? text : "not written";
}

} // namespace ZR::VOM::GUI
