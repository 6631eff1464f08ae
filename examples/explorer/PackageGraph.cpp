#include "PackageGraph.h"

#include "PackageXml.h"

#include "zrVOMGUI/foundation/vom/linkFields.h"
#include "zrVOMGUI/transfer/Clipboard.h"

#include <QScrollBar>

#include <algorithm>
#include <functional>

namespace Explorer {

using ZR::RefT;
using ZR::VOM::Field;

PackageGraph::PackageGraph(PackageModel &shownModel, QWidget *parent)
    : ObjectGraphView(RefT<ZR::VOM::Exporter>(new ZR::VOM::XmlExporter), parent)
    , model(shownModel)
{
    setFieldName("name");
    setTypeName(false);
    setFieldTooltip("summary");
    setObjIconDB(makeIconDB(IconRule::ByPriority));
    setOutLinks(linkKinds[0], true);
    add(model.getObjects(), false);
}

void PackageGraph::setIconRule(IconRule rule)
{
    struct Place {
        RefT<Object> object;
        int x, y;
    };
    std::vector<Place> places;
    for (RefT<Object> const &object : getObjs()) {
        Place place{object, 0, 0};
        getPos(object, place.x, place.y);
        places.push_back(place);
    }
    const Objects visible = getVisibleObjs(), selected = getSel();

    clear();
    setObjIconDB(makeIconDB(rule));
    add(model.getObjects(), false);
    for (Place const &place : places)
        setPos(place.object, place.x, place.y, false);
    setVisible(visible, true);
    setSel(selected);
}

void PackageGraph::setOutLinks(LinkKind const &kind, bool on)
{
    if (on)
        addOutLinkField(kind.className, kind.fieldName);
    else
        removeOutLinkField(kind.className, kind.fieldName);
    layout();
}

void PackageGraph::setInLinks(LinkKind const &kind, bool on)
{
    if (on)
        addInLinkField(kind.className, kind.fieldName);
    else
        removeInLinkField(kind.className, kind.fieldName);
    layout();
}

PackageGraph::Revealed PackageGraph::showPackage(RefT<Package> const &package)
{
    Objects wanted = PackageModel::getDependencies(*package);
    const Objects dependents = model.getDependents(*package);
    wanted.insert(wanted.end(), dependents.begin(), dependents.end());
    const std::size_t numShown = std::min<std::size_t>(wanted.size(), neighbourLimit);
    const std::size_t numLeft = wanted.size() - numShown;
    wanted.resize(numShown);

    if (!isVisible(package))
        placeInView(package);
    for (RefT<Object> const &object : wanted)
        if (!isVisible(object))
            placeAt(object, package);
    // The last one holds its place on the screen.
    wanted.push_back(package);
    hideAllBut(wanted);
    setVisible(wanted, true);
    setSel({package});
    showSel();
    return {numShown, numLeft};
}

PackageGraph::Revealed PackageGraph::showMore()
{
    const Objects visible = getVisibleObjs(), selected = getSel();
    Objects const &from = selected.empty() ? visible : selected;
    const Neighbours neighbours = hiddenNeighbours({from.begin(), from.end()});
    Objects revealed;
    for (RefT<Object> const &object : model.getObjects()) {
        const auto neighbour = neighbours.find(object);
        if (neighbour == neighbours.end() || revealed.size() >= neighbourLimit)
            continue;
        placeAt(object, neighbour->second);
        revealed.push_back(object);
    }
    setVisible(revealed, true);
    return {revealed.size(), neighbours.size() - revealed.size()};
}

void PackageGraph::hideAllBut(Objects const &objects)
{
    const std::set<RefT<Object>> kept(objects.begin(), objects.end());
    Objects others = getVisibleObjs();
    others.erase(std::remove_if(others.begin(), others.end(),
                                [&](RefT<Object> const &object) { return kept.count(object); }),
                 others.end());
    setVisible(others, false);
}

/// Puts a hidden node where the drawing around it has room to both sides.
void PackageGraph::placeInView(RefT<Object> const &object)
{
    setPos(object, horizontalScrollBar()->value() + viewport()->width() / 2,
           verticalScrollBar()->value() + viewport()->height() / 4, false);
}

/// Puts a hidden node where another one is, to come out of it when it is shown.
void PackageGraph::placeAt(RefT<Object> const &object, RefT<Object> const &other)
{
    int x = 0, y = 0;
    getPos(other, x, y);
    setPos(object, x, y, false);
}

void PackageGraph::hideSelected()
{
    setVisible(getSel(), false);
    layout();
}

void PackageGraph::hideAll()
{
    setVisible(getVisibleObjs(), false);
    layout();
}

void PackageGraph::copySelected() const
{
    ZR::VOM::GUI::Clipboard::copyObjs(RefT<ZR::VOM::Exporter>(new ZR::VOM::XmlExporter), getSel());
}

bool PackageGraph::paste()
{
    Objects objects;
    if (ZR::VOM::GUI::Clipboard::pasteObjs(objects)) {
        // Another window of this process may show another model.
        objects.erase(std::remove_if(objects.begin(), objects.end(),
                                     [this](RefT<Object> const &object) { return !knows(object); }),
                      objects.end());
        if (!objects.empty()) {
            showPasted(objects);
            return true;
        }
    }
    const RefT<ZR::VOM::XmlImporter> importer = makeImporter();
    if (!ZR::VOM::GUI::Clipboard::pasteObjs(objects, *importer))
        return false;
    model.adopt(objects);
    add(model.getObjects(), false);
    showPasted(objects);
    return !objects.empty();
}

bool PackageGraph::knows(RefT<Object> const &object) const
{
    int x = 0, y = 0;
    return getPos(object, x, y);
}

void PackageGraph::showPasted(Objects const &objects)
{
    for (RefT<Object> const &object : objects)
        if (!isVisible(object))
            placeInView(object);
    setVisible(objects, true);
    setSel(objects);
    showSel();
}

/// Calls `use` with the two ends of each link that the object's fields make by the rules in force.
template <class Use>
void PackageGraph::forEachShownLink(RefT<Object> const &object, Use &&use) const
{
    for (std::size_t i = 0; i < object->getNumFields(); ++i) {
        RefT<Field> const &field = object->getField(i);
        if (isOutLinkField(field) || isInLinkField(field))
            ZR::VOM::forEachLink(*field, [&](RefT<Object> const &linked) { use(object, linked); });
    }
}

PackageGraph::Neighbours PackageGraph::hiddenNeighbours(std::set<RefT<Object>> const &of) const
{
    Neighbours neighbours;
    const auto note = [&](RefT<Object> const &from, RefT<Object> const &to) {
        if (of.count(from) && !isVisible(to))
            neighbours.emplace(to, from);
        if (of.count(to) && !isVisible(from))
            neighbours.emplace(from, to);
    };
    for (RefT<Object> const &object : model.getObjects())
        forEachShownLink(object, note);
    return neighbours;
}

PackageGraph::Counts PackageGraph::count() const
{
    const Objects visible = getVisibleObjs();
    std::set<std::pair<Object *, Object *>> links;
    for (RefT<Object> const &object : visible)
        forEachShownLink(object, [&](RefT<Object> const &from, RefT<Object> const &to) {
            if (isVisible(to))
                links.insert(std::minmax(from.get(), to.get(), std::less<Object *>()));
        });
    return {getObjs().size(), visible.size(), links.size()};
}

} // namespace Explorer
