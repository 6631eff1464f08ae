// What the steps of random programs do.

#include "support/GraphProgram.h"
#include "support/LinkScene.h"
#include "support/ViewCheck.h"
#include "support/ViewProbe.h"
#include "support/dump.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

#include <algorithm>
#include <array>
#include <tuple>

namespace ZR::VOM::GUI {

namespace {

std::string describe(Things const &list)
{
    std::string text;
    for (RefT<Object> const &obj : list)
        text += ' ' + (obj ? nameOf(obj) : std::string("-"));
    return text;
}

std::string describe(Field const &field)
{
    return nameOf(PtrT<Object>(field.owner)) + '.' + field.name + " (type " +
           std::to_string(field.getType()) + ")";
}

} // namespace

void GraphProgram::add(Dice &dice)
{
    Watched &watched = anyView(dice);
    const Things list = someObjects(dice, 8);
    const bool report = dice.oneIn(2);
    say(viewName(watched) + "add" + describe(list));
    watched.oracle.add(list);
    watched.view.add(list, report);
}

void GraphProgram::remove(Dice &dice)
{
    Watched &watched = anyView(dice);
    const Things list = someObjects(dice, 3);
    say(viewName(watched) + "remove" + describe(list));
    Things visible;
    for (RefT<Object> const &obj : list)
        if (watched.view.isVisible(obj) &&
            std::find(visible.begin(), visible.end(), obj) == visible.end())
            visible.push_back(obj);
    if (!visible.empty())
        watched.toTell = '-' + namesInOrder(visible) + ';';
    watched.oracle.remove(list);
    watched.view.remove(list);
}

void GraphProgram::clear(Dice &dice)
{
    Watched &watched = anyView(dice);
    say(viewName(watched) + "clear");
    watched.oracle.clear();
    watched.view.clear();
}

void GraphProgram::replaceView(Dice &dice)
{
    const unsigned index = dice.below(2);
    say(viewName(*both[index]) + "destroy, and make a new one");
    makeView(index);
}

void GraphProgram::show(Dice &dice)
{
    Watched &watched = anyView(dice);
    changeVisible(watched, someObjects(dice, 8), true);
}

void GraphProgram::hide(Dice &dice)
{
    Watched &watched = anyView(dice);
    changeVisible(watched, someObjects(dice, 3), false);
}

void GraphProgram::changeVisible(Watched &watched, Things const &list, bool visible)
{
    say(viewName(watched) + (visible ? "show" : "hide") + describe(list));
    const std::vector<std::string> selected = watched.oracle.names(false, true);
    const std::vector<std::string> changed = watched.oracle.setVisible(list, visible);
    if (!changed.empty())
        watched.toTell = (visible ? '+' : '-') + joined(changed) + ';';
    if (std::any_of(changed.begin(), changed.end(), [&](std::string const &name) {
            return std::binary_search(selected.begin(), selected.end(), name);
        }))
        watched.toTell += "selection;";
    watched.view.setVisible(list, visible);
    if (visible && !changed.empty())
        watched.oracle.layout(dumpLinks(watched.view));
}

void GraphProgram::select(Dice &dice)
{
    Watched &watched = anyView(dice);
    const Things list = someObjects(dice, 4);
    say(viewName(watched) + "select" + describe(list));
    watched.oracle.setSel(list);
    watched.view.setSel(list);
}

Things GraphProgram::named(std::vector<std::string> const &names) const
{
    Things found;
    for (PtrT<Object> const &obj : objs)
        if (obj && std::binary_search(names.begin(), names.end(), nameOf(obj)))
            found.emplace_back(obj);
    return found;
}

/// Clicks the middle of a visible node, where another one may lie over it.
void GraphProgram::click(Dice &dice)
{
    Watched &watched = anyView(dice);
    const Things visible = watched.view.getVisibleObjs();
    const bool withControl = dice.oneIn(2);
    if (visible.empty())
        return say(viewName(watched) + "click nowhere");
    int x = 0, y = 0;
    watched.view.getPos(visible[dice.below(unsigned(visible.size()))], x, y);
    const auto areaContains = [&](RefT<Object> const &obj, int band) {
        Graph::Node const &node = *GraphViewAccess::node(watched.view, obj);
        return QRect(node.x - node.width / 2, node.y - node.height / 2 + band, node.width,
                     node.height - 2 * band)
            .contains(x, y);
    };
    const auto hit = std::find_if(visible.begin(), visible.end(),
                                  [&](RefT<Object> const &obj) { return areaContains(obj, 0); });
    // In a band there may be an arrow.
    if (hit != visible.end() && !areaContains(*hit, GraphViewAccess::iconSize(watched.view)))
        return say(viewName(watched) + "click no band");
    Things selected = withControl ? named(watched.oracle.names(false, true)) : Things();
    if (hit == visible.end()) {
        selected.clear();
    } else {
        const auto before = std::find(selected.begin(), selected.end(), *hit);
        if (before == selected.end())
            selected.push_back(*hit);
        else
            selected.erase(before);
    }
    say(viewName(watched) + "click" + describe(selected));
    watched.oracle.setSel(selected);
    watched.toTell = "selection;";
    const QPoint pos = QPoint(x, y) - QPoint(watched.view.horizontalScrollBar()->value(),
                                             watched.view.verticalScrollBar()->value());
    QMouseEvent release(QEvent::MouseButtonRelease, pos, watched.view.viewport()->mapToGlobal(pos),
                        Qt::LeftButton, Qt::NoButton,
                        withControl ? Qt::ControlModifier : Qt::NoModifier);
    QCoreApplication::sendEvent(watched.view.viewport(), &release);
}

void GraphProgram::selectByKey(Dice &dice)
{
    Watched &watched = anyView(dice);
    const bool all = dice.oneIn(2);
    say(viewName(watched) + (all ? "select all" : "select none"));
    watched.oracle.setSel(all ? watched.view.getVisibleObjs() : Things());
    watched.toTell = "selection;";
    QKeyEvent key(QEvent::KeyPress, Qt::Key_A,
                  all ? Qt::ControlModifier : Qt::ControlModifier | Qt::ShiftModifier);
    QCoreApplication::sendEvent(&watched.view, &key);
}

/// Clicks an arrow where nothing lies over it.
void GraphProgram::clickArrow(Dice &dice)
{
    Watched &watched = anyView(dice);
    struct Arrow {
        Graph::Node *node;
        bool upper;
        QPoint pos;
    };
    std::vector<Arrow> arrows;
    watched.view.viewport()->grab();
    for (RefT<Object> const &obj : watched.view.getVisibleObjs()) {
        Graph::Node &node = *GraphViewAccess::node(watched.view, obj);
        const QPoint corner(node.x + node.arrowX, node.y);
        if (node.hiddenIn)
            arrows.push_back({&node, true, corner + QPoint(0, node.topY)});
        if (node.hiddenOut)
            arrows.push_back({&node, false, corner + QPoint(0, node.bottomY)});
    }
    if (arrows.empty())
        return say(viewName(watched) + "click no arrow");
    const Arrow arrow = arrows[dice.below(unsigned(arrows.size()))];
    const auto [hitNode, hit] = GraphViewAccess::find(watched.view, arrow.pos);
    if (hitNode.get() != arrow.node || hit != (arrow.upper ? 2 : 3))
        return say(viewName(watched) + "click no hidden arrow");
    say(viewName(watched) + (arrow.upper ? "reveal above" : "reveal below") +
        describe({RefT<Object>(arrow.node->obj)}));
    Things neighbours;
    for (auto const &[far, entry] : arrow.upper ? arrow.node->linkedIn : arrow.node->linkedOut)
        neighbours.emplace_back(far->obj);
    // None where the node was out of sight, and has kept its arrow since they were shown.
    const std::vector<std::string> shown = watched.oracle.setVisible(neighbours, true);
    if (!shown.empty())
        watched.toTell = '+' + joined(shown) + ';';
    const QPoint pos = arrow.pos - QPoint(watched.view.horizontalScrollBar()->value(),
                                          watched.view.verticalScrollBar()->value());
    QMouseEvent release(QEvent::MouseButtonRelease, pos, watched.view.viewport()->mapToGlobal(pos),
                        Qt::LeftButton, Qt::NoButton, {});
    QCoreApplication::sendEvent(watched.view.viewport(), &release);
}

void GraphProgram::layout(Dice &dice)
{
    Watched &watched = anyView(dice);
    say(viewName(watched) + "layout");
    watched.view.layout();
    watched.oracle.layout(dumpLinks(watched.view));
}

void GraphProgram::addRule(Watched &watched, bool out, char const *className, char const *name)
{
    watched.oracle.addRule(out, className, name);
    if (out)
        watched.view.addOutLinkField(className, name);
    else
        watched.view.addInLinkField(className, name);
}

constexpr auto classNames = {"", "", "Thing", "Special", "Stranger", "ZR::VOM::Object", "Nobody"};
constexpr auto fieldNames = {"f", "g", "h"};

void GraphProgram::addRule(Dice &dice)
{
    Watched &watched = anyView(dice);
    const bool out = dice.oneIn(2);
    char const *const className = dice.oneOf(classNames);
    char const *const name = dice.oneIn(8) ? dice.oneOf({"", "label"}) : dice.oneOf(fieldNames);
    say(viewName(watched) + (out ? "add out rule " : "add in rule ") + className + '.' + name);
    addRule(watched, out, className, name);
}

void GraphProgram::removeRule(Dice &dice)
{
    Watched &watched = anyView(dice);
    const bool out = dice.oneIn(2);
    LinkOracle::Rules const &rules = watched.oracle.getRules(out);
    std::string className = "Nobody", name = "f";
    if (!rules.empty() && !dice.oneIn(8))
        std::tie(className, name) = *std::next(rules.begin(), dice.below(unsigned(rules.size())));
    say(viewName(watched) + (out ? "remove out rule " : "remove in rule ") + className + '.' +
        name);
    watched.oracle.removeRule(out, className, name);
    if (out)
        watched.view.removeOutLinkField(className, name);
    else
        watched.view.removeInLinkField(className, name);
}

void GraphProgram::label(Dice &dice)
{
    Watched &watched = anyView(dice);
    if (dice.oneIn(3)) {
        say(viewName(watched) + "switch class names");
        return watched.view.setTypeName(!watched.view.isTypeName());
    }
    char const *const name = dice.oneOf({"label", "label", "name", "nothing", ""});
    say(viewName(watched) + "label by " + name);
    watched.view.setFieldName(name);
}

void GraphProgram::tickOnce(Dice &dice)
{
    Watched &watched = anyView(dice);
    const double seconds = 0.3 * dice.below(8);
    say(viewName(watched) + "tick after " + std::to_string(seconds));
    if (!GraphViewAccess::animTimer(watched.view).isActive())
        return;
    letPass(GraphViewAccess::animStart(watched.view), seconds);
    tick(GraphViewAccess::animTimer(watched.view));
}

void GraphProgram::finish(Dice &dice)
{
    Watched &watched = anyView(dice);
    say(viewName(watched) + "end of the animation");
    const std::string faults = faultsAtRest(watched.view);
    // Told as what a signal says: the check after the step shows it.
    if (!faults.empty())
        watched.told += "at rest: " + faults;
}

void GraphProgram::paint(Dice &dice)
{
    Watched &watched = anyView(dice);
    say(viewName(watched) + "paint");
    watched.view.viewport()->grab();
}

void GraphProgram::resize(Dice &dice)
{
    Watched &watched = anyView(dice);
    const int width = int(dice.below(4)) * 150;
    say(viewName(watched) + "resize to " + std::to_string(width));
    watched.view.resize(width, int(dice.below(3)) * 100);
    watched.view.setVisible(dice.oneIn(4));
    QCoreApplication::sendPostedEvents(&watched.view);
}

void GraphProgram::place(Dice &dice)
{
    Watched &watched = anyView(dice);
    const RefT<Object> obj = anyObject(dice);
    const int x = int(dice.below(4000)) - 2000;
    const int y = int(dice.below(4000)) - 2000;
    say(viewName(watched) + "place" + describe({obj}));
    watched.view.setPos(obj, x, y, dice.oneIn(2));
}

void GraphProgram::scroll(Dice &dice)
{
    Watched &watched = anyView(dice);
    say(viewName(watched) + "show the selection");
    watched.view.showSel();
}

void GraphProgram::holdRefresh(Dice &dice)
{
    Watched &watched = anyView(dice);
    say(viewName(watched) + "switch refresh");
    watched.view.setRefresh(!watched.view.canRefresh());
}

void GraphProgram::replaceLinks(Field &field, std::size_t index, std::size_t numRemoved,
                                Things values)
{
    for (auto const &watched : both)
        watched->oracle.changing(field, index, numRemoved, values);
    // The old values, and what they own, may die in here: the field's object, too.
    storeLinks(field, index, numRemoved, std::move(values));
}

void GraphProgram::setSingle(Dice &dice)
{
    const PtrT<Field> field = anyField(dice, [](int type) { return type == 5 || type == 6; });
    if (!field)
        return addField(dice);
    const RefT<Object> value = dice.oneIn(6) ? RefT<Object>() : anyObject(dice);
    say(describe(*field) + " =" + describe({value}));
    replaceLinks(*field, 0, 1, {value});
}

void GraphProgram::editList(Dice &dice)
{
    const PtrT<Field> field = anyField(dice, [](int type) { return type == 11 || type == 12; });
    if (!field)
        return addField(dice);
    const auto num = unsigned(valuesOf(*field).size());
    const unsigned index = dice.below(num + 1);
    const unsigned numRemoved = dice.below(num - index + 1);
    Things values = someObjects(dice, num > 4 ? 1 : 3);
    say(describe(*field) + " replaces " + std::to_string(numRemoved) + " from " +
        std::to_string(index) + " by" + describe(values));
    replaceLinks(*field, index, numRemoved, std::move(values));
}

void GraphProgram::addField(Dice &dice)
{
    const RefT<Object> obj = anyObject(dice);
    if (obj && obj->getNumFields() < 7)
        addRandomField(dice, obj);
}

void GraphProgram::addRandomField(Dice &dice, RefT<Object> const &obj)
{
    char const *const name = dice.oneOf(fieldNames);
    const int type = std::array{2, 4, 5, 5, 6, 11, 11, 12}[dice.below(8)];
    const Things values = someObjects(dice, 3);
    say("add field " + nameOf(obj) + '.' + name + " (type " + std::to_string(type) +
        "):" + describe(values));
    Field &field = type == 2   ? VOM::addField<FieldInt>(*obj, name)
                   : type == 4 ? VOM::addField<FieldString>(*obj, name)
                               : addLinkField(obj, name, type, values);
    for (auto const &watched : both)
        if (watched)
            watched->oracle.fieldAdded(field);
}

void GraphProgram::removeField(Dice &dice)
{
    const PtrT<Field> field = anyField(dice, [](int) { return true; });
    if (!field)
        return;
    say("remove field " + describe(*field));
    for (auto const &watched : both)
        watched->oracle.removingField(*field);
    VOM::removeField(*field->owner, *field);
}

/// An object has one label field at most, which may be of a type that gives no label.
void GraphProgram::changeLabelField(Dice &dice)
{
    const RefT<Object> obj = anyObject(dice);
    if (!obj)
        return;
    const std::string text(1, char('0' + dice.below(10)));
    const PtrT<Field> field = obj->findField("label");
    if (!field) {
        say("add label of" + describe({obj}));
        if (dice.oneIn(4))
            VOM::addField<FieldInt>(*obj, "label", 5);
        else
            VOM::addField<FieldString>(*obj, "label", text);
    } else if (dice.oneIn(3) || field->getType() != 4) {
        say("remove label of" + describe({obj}));
        VOM::removeField(*obj, *field);
    } else {
        say("change label of" + describe({obj}));
        fieldOf<FieldString>(obj, "label").set(text);
    }
}

/// The object dies, unless others own it.
void GraphProgram::letGo(Dice &dice)
{
    if (held.empty())
        return;
    const auto place = held.begin() + std::ptrdiff_t(dice.below(unsigned(held.size())));
    say("let go of" + describe({*place}));
    held.erase(place);
}

void GraphProgram::bear(Dice &)
{
    if (objs.size() == 52)
        return;
    makeObject();
    say("new object" + describe({held.back()}));
}

} // namespace ZR::VOM::GUI
