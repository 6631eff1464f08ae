#pragma once

#include "Icons.h"
#include "PackageModel.h"

#include "zrVOMGUI/graph/ObjectGraphView.h"

#include <array>
#include <map>
#include <set>

namespace Explorer {

/// One kind of link in the model.
struct LinkKind {
    char const *className;
    char const *fieldName;
    char const *meaning;
};

constexpr std::array<LinkKind, 4> linkKinds = {{{"Package", "depends", "Dependencies"},
                                                {"Section", "packages", "Packages of sections"},
                                                {"Package", "maintainer", "Maintainers"},
                                                {"Package", "details", "Details"}}};

/// The graph of a package model: which objects are shown, by what they have to do with a package.
///
/// Knows all objects of the model from the start, and shows none. Dependencies are its links at
/// first.
class PackageGraph : public ZR::VOM::GUI::ObjectGraphView {
public:
    /// The model isn't owned.
    explicit PackageGraph(PackageModel &shownModel, QWidget *parent = nullptr);

    PackageModel const &getModel() const { return model; }

    /// Nodes keep the icon that they were made with: makes them all anew, where they were.
    void setIconRule(IconRule rule);
    void setOutLinks(LinkKind const &kind, bool on);
    void setInLinks(LinkKind const &kind, bool on);
    /// How many neighbours showPackage() and showMore() show at most; 24 by default.
    unsigned getNeighbourLimit() const { return neighbourLimit; }
    void setNeighbourLimit(unsigned limit) { neighbourLimit = limit; }

    struct Revealed {
        std::size_t shown, left;
    };
    /// Shows the package with its dependencies and those that need it, selects it, and hides the
    /// rest. Tells how many neighbours there are within the limit, and beyond it.
    Revealed showPackage(ZR::RefT<Package> const &package);
    /// Shows hidden neighbours of the selected nodes, or of all visible ones when none is selected.
    /// Tells how many were shown and how many stayed hidden beyond the limit.
    Revealed showMore();
    void hideSelected();
    void hideAll();

    /// Puts the selected objects on the clipboard, for this process and as XML for others.
    void copySelected() const;
    /// Shows and selects what is on the clipboard: objects that this model knows, or else new ones
    /// of the XML, which the model takes in. False when there is neither.
    bool paste();

    struct Counts {
        std::size_t known, visible, links;
    };
    /// Links are those between visible objects; several between the same two count once.
    Counts count() const;

private:
    /// Objects with the visible one that each is linked to.
    using Neighbours = std::map<ZR::RefT<Object>, ZR::RefT<Object>>;

    template <class Use>
    void forEachShownLink(ZR::RefT<Object> const &object, Use &&use) const;
    void hideAllBut(Objects const &objects);
    void placeInView(ZR::RefT<Object> const &object);
    void placeAt(ZR::RefT<Object> const &object, ZR::RefT<Object> const &other);
    bool knows(ZR::RefT<Object> const &object) const;
    void showPasted(Objects const &objects);
    Neighbours hiddenNeighbours(std::set<ZR::RefT<Object>> const &of) const;

    PackageModel &model;
    unsigned neighbourLimit = 24;
};

} // namespace Explorer
