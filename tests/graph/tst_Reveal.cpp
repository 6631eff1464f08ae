#include "support/QtStrings.h"
#include "support/ViewCheck.h"
#include "support/ViewGraph.h"
#include "support/ViewProbe.h"

#include <QScrollBar>
#include <QTest>

#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Node = Graph::Node;
using Links = std::vector<NumberedGraph::Link>;
using Numbers = std::vector<unsigned>;

namespace {

constexpr int spacing = 8;

/// A graph whose nodes are put by the test. Rows hold them in the order of their numbers. Nothing
/// is animated, and the scroll range reaches everywhere.
struct Scene : ViewGraph {
    explicit Scene(unsigned numNodes, Links const &links = {})
        : ViewGraph(numNodes, links)
    {
        for (unsigned i = 0; i < numNodes; ++i)
            VOM::addField<VOM::FieldString>(*obj(i), "name", std::to_string(i));
        view.animDuration.set(0);
        view.setFrameShape(QFrame::NoFrame);
        view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.resize(300, 200);
        view.setRefresh(false);
        scroll(0, 0);
    }

    /// Makes the node visible, with its centre at (x, y).
    Node &put(unsigned index, int x, int y, QSize size = {40, 20})
    {
        node(index).visible = true;
        node(index).width = size.width();
        node(index).height = size.height();
        view.setPos(obj(index), x, y, false);
        return node(index);
    }
    /// Gives a hidden node the label that makes it this large.
    void setHiddenSize(unsigned index, QSize size)
    {
        const int icon = Access::iconSize(view), margin = Access::margin(view);
        setTextSize(index, size.width() - icon - 3 * margin, size.height() - 2 * (icon + margin));
    }
    void scroll(int x, int y)
    {
        view.horizontalScrollBar()->setRange(-100000, 100000);
        view.verticalScrollBar()->setRange(-100000, 100000);
        view.horizontalScrollBar()->setValue(x);
        view.verticalScrollBar()->setValue(y);
    }
    void showLinked(unsigned index, bool in)
    {
        (in ? Access::showLinkedIn : Access::showLinkedOut)(view, ref(index));
    }

    /// Where nodes stand, such as "1 52,167; 2 105,167"; where they go to, after a ">".
    std::string places(Numbers const &numbers) const
    {
        std::string text;
        for (unsigned i : numbers) {
            Node const &at = node(i);
            text += (text.empty() ? "" : "; ") + std::to_string(i) + ' ' + point(at.x, at.y);
            if (at.x != at.toX || at.y != at.toY)
                text += '>' + point(at.toX, at.toY);
        }
        return text;
    }
    /// Where the view scrolls to, or "-".
    std::string scrolling()
    {
        if (!Access::scrollTimer(view).isActive())
            return "-";
        const QPoint now(view.horizontalScrollBar()->value(), view.verticalScrollBar()->value());
        if (Access::scrollFrom(view) != now)
            return "doesn't start where it stands";
        const QPoint to = Access::scrollTo(view);
        return point(to.x(), to.y());
    }

private:
    static std::string point(int x, int y) { return std::to_string(x) + ',' + std::to_string(y); }
};

/// Node 0 with links from all others, or to all others.
Links fan(bool in, unsigned numNodes)
{
    Links links;
    for (unsigned i = 1; i < numNodes; ++i)
        links.emplace_back(in ? i : 0, in ? 0 : i);
    return links;
}

/// Two rows, one for each side.
void addSides()
{
    QTest::addColumn<bool>("in");
    QTest::newRow("above") << true;
    QTest::newRow("below") << false;
}

} // namespace

class tst_Reveal : public QObject {
    Q_OBJECT

private slots:
    void rowStandsBesideTheNode_data();
    void rowStandsBesideTheNode();
    void oneNeighbourStandsCentred_data() { addSides(); }
    void oneNeighbourStandsCentred();
    void boxesKeepTheGapForAllHeights_data() { addSides(); }
    void boxesKeepTheGapForAllHeights();
    void highestNeighbourDecidesTheRow();
    void rowWithoutMeasureHasNoGapBefore();
    void rowsAnchorToDifferentPlacesWhileTheNodeMoves();
    void onlyOneSideIsShown();

    void hiddenNeighboursAreMeasured_data() { addSides(); }
    void hiddenNeighboursAreMeasured();
    void visibleNeighboursKeepTheirMeasures();
    void hiddenNeighboursAppearInTheRow();
    void visibleNeighboursMoveByAnimation();
    void visibleNeighboursJumpWithoutAnimation();
    void othersStayWhereTheyAre();
    void nodeLinkedToItselfJoinsItsRow_data() { addSides(); }
    void nodeLinkedToItselfJoinsItsRow();
    void linksOfShownNodesAreDirect();
    void shownNodesTakePartInTheNextLayout();
    void hiddenNodeRevealsAsWell();

    void shownOnesAreTold();
    void asksForRepaintAndBounds_data();
    void asksForRepaintAndBounds();
    void noNeighbourMovesNothing_data() { addSides(); }
    void noNeighbourMovesNothing();
    void listenersSeeItDone();
    void listenersMayDoAnything_data();
    void listenersMayDoAnything();
    void rowsBeyondAllMeasureStayInts_data() { addSides(); }
    void rowsBeyondAllMeasureStayInts();

    void scrollsToTheRow();
    void scrollsToWhereNodesStandNow();
    void scrollToMovesAsLittleAsItMust_data();
    void scrollToMovesAsLittleAsItMust();
    void scrollToMovesBothWays();
    void scrollToBringsAllIntoView();
    void scrollToPassesOverWhatIsNotVisible();
    void scrollToCountsTheWholeWidget();
    void scrollToStartsTheClock();
    void scrollToReachesExtremePlaces();
};

void tst_Reveal::rowStandsBesideTheNode_data()
{
    QTest::addColumn<bool>("in");
    QTest::addColumn<QPoint>("centre");
    QTest::addColumn<int>("nodeHeight");
    QTest::addColumn<int>("rowHeight");
    QTest::addColumn<std::string>("wanted");
    // Widths 40, 51 and 30 with two gaps of 8 are 137: the row begins 68 left of the centre.
    const QPoint at(100, 200);
    QTest::newRow("above, both even")
        << true << at << 20 << 30 << "1 52,167; 2 105,167; 3 154,167"s;
    QTest::newRow("above, odd node") << true << at << 21 << 30 << "1 52,167; 2 105,167; 3 154,167"s;
    QTest::newRow("above, odd row") << true << at << 20 << 31 << "1 52,166; 2 105,166; 3 154,166"s;
    QTest::newRow("above, both odd") << true << at << 21 << 31 << "1 52,166; 2 105,166; 3 154,166"s;
    QTest::newRow("below, both even")
        << false << at << 20 << 30 << "1 52,233; 2 105,233; 3 154,233"s;
    QTest::newRow("below, odd node")
        << false << at << 21 << 30 << "1 52,234; 2 105,234; 3 154,234"s;
    QTest::newRow("below, odd row") << false << at << 20 << 31 << "1 52,233; 2 105,233; 3 154,233"s;
    QTest::newRow("below, both odd")
        << false << at << 21 << 31 << "1 52,234; 2 105,234; 3 154,234"s;
    QTest::newRow("above, negative place")
        << true << QPoint(-101, -201) << 21 << 31 << "1 -149,-235; 2 -96,-235; 3 -47,-235"s;
    QTest::newRow("below, negative place")
        << false << QPoint(-101, -201) << 21 << 31 << "1 -149,-167; 2 -96,-167; 3 -47,-167"s;
}

void tst_Reveal::rowStandsBesideTheNode()
{
    QFETCH(bool, in);
    QFETCH(QPoint, centre);
    QFETCH(int, nodeHeight);
    QFETCH(int, rowHeight);
    QFETCH(std::string, wanted);
    Scene scene(4, fan(in, 4));
    scene.put(0, centre.x(), centre.y(), {70, nodeHeight});
    const int widths[] = {40, 51, 30};
    for (unsigned i = 1; i < 4; ++i)
        scene.put(i, 1000, 1000, {widths[i - 1], rowHeight});
    scene.showLinked(0, in);
    QCOMPARE(scene.places({1, 2, 3}), wanted);
}

void tst_Reveal::oneNeighbourStandsCentred()
{
    QFETCH(bool, in);
    for (int width : {40, 41}) {
        Scene scene(2, fan(in, 2));
        scene.put(0, 100, 200, {width, 20});
        scene.put(1, 1000, 1000, {width, 20});
        scene.showLinked(0, in);
        QCOMPARE(scene.node(1).x, 100);
    }
}

void tst_Reveal::boxesKeepTheGapForAllHeights()
{
    QFETCH(bool, in);
    for (int nodeHeight : {20, 21}) {
        for (int farHeight : {30, 31}) {
            Scene scene(2, fan(in, 2));
            const Graph::Bounds box = boundsOf(scene.put(0, 100, 200, {40, nodeHeight}));
            scene.put(1, 1000, 1000, {40, farHeight});
            scene.showLinked(0, in);
            const Graph::Bounds far = boundsOf(scene.node(1));
            QCOMPARE(in ? box.top - far.bottom : far.top - box.bottom, spacing);
        }
    }
}

void tst_Reveal::highestNeighbourDecidesTheRow()
{
    Scene scene(4, {{1, 0}, {2, 0}, {0, 3}, {0, 2}});
    scene.put(0, 0, 0);
    scene.put(1, 1000, 1000, {40, 10});
    scene.put(2, 1000, 1000, {40, 50});
    scene.put(3, 1000, 1000, {40, 20});
    scene.showLinked(0, true);
    QCOMPARE(scene.places({1, 2}), "1 -24,-43; 2 24,-43"s);
    scene.showLinked(0, false);
    QCOMPARE(scene.places({2, 3}), "2 -24,43; 3 24,43"s);
}

void tst_Reveal::rowWithoutMeasureHasNoGapBefore()
{
    Scene scene(3, fan(true, 3));
    scene.put(0, 100, 0);
    // Not painted yet, and so of no width: the row counts 40, and its nodes are a gap apart.
    scene.put(1, 1000, 1000, {0, 0});
    scene.put(2, 1000, 1000);
    scene.showLinked(0, true);
    QCOMPARE(scene.places({1, 2}), "1 80,-28; 2 108,-28"s);
}

void tst_Reveal::rowsAnchorToDifferentPlacesWhileTheNodeMoves()
{
    Scene scene(3, {{1, 0}, {0, 2}});
    for (unsigned i = 0; i < 3; ++i)
        scene.put(i, 100, 200);
    scene.view.animDuration.set(60);
    scene.view.setPos(scene.obj(0), 1000, 2000, true);
    scene.showLinked(0, true);
    scene.showLinked(0, false);
    QCOMPARE(scene.places({0, 1, 2}), "0 100,200>1000,2000; 1 100,200>100,172; "
                                      "2 100,200>1000,2028"s);
}

void tst_Reveal::onlyOneSideIsShown()
{
    Scene scene(3, {{1, 0}, {0, 2}});
    scene.put(0, 100, 200);
    scene.showLinked(0, true);
    QVERIFY(scene.node(1).visible && !scene.node(2).visible);
    scene.showLinked(0, false);
    QVERIFY(scene.node(2).visible);
}

void tst_Reveal::hiddenNeighboursAreMeasured()
{
    QFETCH(bool, in);
    Scene scene(3, fan(in, 3));
    scene.put(0, 100, 200);
    scene.setHiddenSize(1, {200, 101});
    scene.node(2).sizeDirty = true;
    scene.node(2).textWidth = 0;
    scene.showLinked(0, in);
    QCOMPARE(scene.node(1).width, 200);
    QCOMPARE(scene.node(1).height, 101);
    QVERIFY(scene.node(2).textWidth > 0);
    QVERIFY(!scene.node(2).sizeDirty);
    // The row has gone by the new sizes.
    const int left = 100 - (200 + spacing + scene.node(2).width) / 2;
    QCOMPARE(scene.node(1).x, left + 100);
    QCOMPARE(scene.node(1).y, in ? 200 - 10 - 51 - spacing : 200 + 10 + spacing + 50);
}

void tst_Reveal::visibleNeighboursKeepTheirMeasures()
{
    Scene scene(2, fan(true, 2));
    scene.put(0, 100, 200);
    scene.put(1, 0, 0, {77, 33}).sizeDirty = true;
    scene.showLinked(0, true);
    QCOMPARE(scene.node(1).width, 77);
    QCOMPARE(scene.node(1).height, 33);
    QVERIFY(scene.node(1).sizeDirty);
}

void tst_Reveal::hiddenNeighboursAppearInTheRow()
{
    Scene scene(2, fan(true, 2));
    scene.view.animDuration.set(60);
    scene.put(0, 100, 200);
    scene.setHiddenSize(1, {100, 100});
    scene.view.setPos(scene.obj(1), 5000, 5000, true);
    Access::animTimer(scene.view).stop();
    scene.showLinked(0, true);
    Node const &shown = scene.node(1);
    QVERIFY(shown.visible);
    QCOMPARE(scene.places({1}), "1 100,132"s);
    QCOMPARE(QPoint(shown.fromX, shown.fromY), QPoint(100, 132));
    QVERIFY(!Access::animTimer(scene.view).isActive());
}

void tst_Reveal::visibleNeighboursMoveByAnimation()
{
    Scene scene(2, fan(false, 2));
    scene.put(0, 100, 200);
    scene.put(1, 5000, 5000);
    scene.view.animDuration.set(10);
    scene.showLinked(0, false);
    QCOMPARE(scene.places({1}), "1 5000,5000>100,228"s);
    QCOMPARE(QPoint(scene.node(1).fromX, scene.node(1).fromY), QPoint(5000, 5000));
    QVERIFY(Access::animTimer(scene.view).isActive());
    letPass(Access::animStart(scene.view), 5);
    tick(Access::animTimer(scene.view));
    QVERIFY(scene.node(1).x > 100 && scene.node(1).x < 5000);
    finishAnimation(scene.view);
    QCOMPARE(scene.places({1}), "1 100,228"s);
}

void tst_Reveal::visibleNeighboursJumpWithoutAnimation()
{
    Scene scene(2, fan(false, 2));
    scene.put(0, 100, 200);
    scene.put(1, 5000, 5000);
    scene.showLinked(0, false);
    QCOMPARE(scene.places({1}), "1 100,228"s);
    QVERIFY(!Access::animTimer(scene.view).isActive());
}

void tst_Reveal::othersStayWhereTheyAre()
{
    // 3 is linked to a neighbour, and 4 stands in the way.
    Scene scene(5, {{1, 0}, {2, 0}, {3, 1}});
    scene.put(0, 100, 200);
    scene.put(2, 900, 900);
    scene.put(3, 500, 600);
    scene.put(4, 100, 172);
    for (unsigned i : {0, 2, 3, 4}) {
        scene.node(i).rank = static_cast<int>(10 + i);
        scene.node(i).order = 20 + i;
    }
    scene.showLinked(0, true);
    QCOMPARE(scene.places({0, 3, 4}), "0 100,200; 3 500,600; 4 100,172"s);
    for (unsigned i : {0, 2, 3, 4}) {
        QCOMPARE(scene.node(i).rank, static_cast<int>(10 + i));
        QCOMPARE(scene.node(i).order, 20 + i);
    }
}

void tst_Reveal::nodeLinkedToItselfJoinsItsRow()
{
    QFETCH(bool, in);
    Scene scene(2, {{0, 0}, {in ? 1 : 0, in ? 0 : 1}});
    scene.put(0, 100, 200);
    scene.put(1, 1000, 1000);
    scene.showLinked(0, in);
    QCOMPARE(scene.places({0, 1}), in ? "0 76,172; 1 124,172"s : "0 76,228; 1 124,228"s);
}

void tst_Reveal::linksOfShownNodesAreDirect()
{
    // 0 > 1 > 2 with a long link from 0 to 2, and 3 beside it.
    Scene scene(4, {{0, 1}, {1, 2}, {0, 2}, {0, 3}});
    scene.show(0);
    scene.show(1);
    scene.show(2);
    QCOMPARE(scene.chain(0, 2).size(), std::size_t(1));
    scene.showLinked(0, false);
    QVERIFY(scene.chain(0, 3).empty());
    QCOMPARE(scene.chain(0, 2).size(), std::size_t(1));
    QCOMPARE(faultsOf(scene.view), ""s);
}

void tst_Reveal::shownNodesTakePartInTheNextLayout()
{
    Scene scene(3, fan(false, 3));
    scene.show(0);
    scene.showLinked(0, false);
    scene.view.layout();
    QCOMPARE(scene.layers(), QString("0|1 2"));
}

void tst_Reveal::hiddenNodeRevealsAsWell()
{
    Scene scene(2, fan(true, 2));
    scene.put(0, 100, 200).visible = false;
    scene.put(1, 0, 0);
    scene.showLinked(0, true);
    QVERIFY(!scene.node(0).visible);
    QCOMPARE(scene.places({1}), "1 100,172"s);
}

void tst_Reveal::shownOnesAreTold()
{
    Scene scene(5, fan(true, 5));
    scene.put(0, 100, 200);
    scene.put(2, 0, 0);
    // That a selected node was shown is no change of the selection.
    scene.view.setSel({scene.obj(1), scene.obj(2)});
    SignalNotes notes(scene.view);
    scene.showLinked(0, true);
    QCOMPARE(notes.take(), "insert 1 3 4"s);
    scene.showLinked(0, true);
    QCOMPARE(notes.take(), ""s);
}

void tst_Reveal::asksForRepaintAndBounds_data()
{
    QTest::addColumn<bool>("in");
    QTest::addColumn<unsigned>("node");
    QTest::newRow("above") << true << 0u;
    QTest::newRow("below") << false << 1u;
    QTest::newRow("above, of none") << true << 1u;
    QTest::newRow("below, of none") << false << 0u;
}

void tst_Reveal::asksForRepaintAndBounds()
{
    QFETCH(bool, in);
    QFETCH(unsigned, node);
    Scene scene(2, {{1, 0}});
    scene.put(0, 100, 200);
    scene.put(1, 100, 200);
    const Asked asked = askedBy(scene.view, [&] { scene.showLinked(node, in); });
    QVERIFY(asked.repaint);
    QVERIFY(asked.bounds);
}

void tst_Reveal::noNeighbourMovesNothing()
{
    QFETCH(bool, in);
    Scene scene(2, fan(!in, 2));
    scene.put(0, 9000, 9000);
    scene.put(1, 500, 500);
    SignalNotes notes(scene.view);
    scene.showLinked(0, in);
    QCOMPARE(scene.places({0, 1}), "0 9000,9000; 1 500,500"s);
    QCOMPARE(scene.scrolling(), "-"s);
    QCOMPARE(notes.take(), ""s);
}

void tst_Reveal::listenersSeeItDone()
{
    Scene scene(3, fan(true, 3));
    scene.put(0, 1000, 2000);
    scene.put(2, 0, 0);
    for (unsigned i : {1, 2})
        scene.setHiddenSize(i, {100, 100});
    std::string seen;
    scene.view.sigInsertNode.connect([&](auto const &) {
        seen = scene.places({1, 2}) + " to " + scene.scrolling() +
               (Access::boundsStale(scene.view) ? "" : " without new bounds");
    });
    scene.showLinked(0, true);
    QCOMPARE(seen, scene.places({1, 2}) + " to " + scene.scrolling());
    QVERIFY(scene.scrolling() != "-");
}

using Act = std::function<void(std::unique_ptr<Scene> &)>;
Q_DECLARE_METATYPE(Act)

void tst_Reveal::listenersMayDoAnything_data()
{
    QTest::addColumn<Act>("act");
    const auto row = [](char const *name, Act const &act) { QTest::newRow(name) << act; };
    row("destroy the view", [](auto &scene) { scene.reset(); });
    row("forget the node", [](auto &scene) { scene->view.remove({scene->obj(0)}); });
    row("forget a neighbour", [](auto &scene) { scene->view.remove({scene->obj(1)}); });
    row("forget all", [](auto &scene) { scene->view.clear(); });
    row("kill a neighbour", [](auto &scene) { scene->model.objs[1].reset(); });
    row("kill the node", [](auto &scene) { scene->model.objs[0].reset(); });
    row("kill all", [](auto &scene) { scene->model.objs.clear(); });
    row("hide all", [](auto &scene) { scene->view.setVisible(scene->model.objs, false); });
    row("lay out", [](auto &scene) { scene->view.layout(); });
    row("drop the links", [](auto &scene) { scene->fill({}); });
    row("reveal the other side", [](auto &scene) { scene->showLinked(0, false); });
    row("throw", [](auto &) { throw std::runtime_error("listener"); });
}

void tst_Reveal::listenersMayDoAnything()
{
    QFETCH(Act, act);
    auto scene = std::make_unique<Scene>(4, Links{{1, 0}, {2, 0}, {0, 3}});
    scene->put(0, 100, 200);
    const Reports reports;
    int numTold = 0;
    scene->view.sigInsertNode.connect([&](auto const &) {
        ++numTold;
        if (numTold == 1)
            act(scene);
    });
    scene->showLinked(0, true);
    QVERIFY(numTold >= 1);
    if (!scene)
        return;
    QCOMPARE(faultsOf(scene->view), ""s);
    scene->view.viewport()->grab();
    finishAnimation(scene->view);
}

void tst_Reveal::rowsBeyondAllMeasureStayInts()
{
    QFETCH(bool, in);
    constexpr unsigned numNodes = 4000;
    Scene scene(numNodes, fan(in, numNodes));
    for (int place : {-ObjectGraphView::maxPos, ObjectGraphView::maxPos}) {
        scene.put(0, place, place, {1 << 20, 1 << 20});
        for (unsigned i = 1; i < numNodes; ++i)
            scene.put(i, 0, 0, {1 << 20, 1 << 20});
        scene.showLinked(0, in);
        int before = -Graph::maxCoordinate;
        for (unsigned i = 1; i < numNodes; ++i) {
            const int x = scene.node(i).x;
            QVERIFY(x >= before && x <= Graph::maxCoordinate);
            before = x;
        }
        Access::updateScrollbars(scene.view);
        scene.view.viewport()->grab();
    }
}

void tst_Reveal::scrollsToTheRow()
{
    Scene scene(2, fan(true, 2));
    scene.put(0, 1000, 2000);
    scene.put(1, 0, 0);
    scene.showLinked(0, true);
    // 40 by 20 at 1000, 1972, and 8 all around it, in a view of 300 by 200.
    QCOMPARE(scene.scrolling(), "728,1790"s);
}

void tst_Reveal::scrollsToWhereNodesStandNow()
{
    Scene scene(2, fan(true, 2));
    scene.put(0, 1000, 2000);
    scene.put(1, 100, 100);
    scene.view.animDuration.set(60);
    scene.showLinked(0, true);
    QCOMPARE(scene.places({1}), "1 100,100>1000,1972"s);
    QCOMPARE(scene.scrolling(), "-"s);
}

void tst_Reveal::scrollToMovesAsLittleAsItMust_data()
{
    QTest::addColumn<int>("begin"); // Of the bound, gaps included.
    QTest::addColumn<int>("end");
    QTest::addColumn<int>("target");
    // The view shows 1000 to 1200 on either axis.
    QTest::newRow("in the middle") << 1050 << 1100 << 1000;
    QTest::newRow("all of the view but one") << 1000 << 1199 << 1000;
    QTest::newRow("at the end") << 1100 << 1200 << 1000;
    QTest::newRow("one before the beginning") << 999 << 1100 << 999;
    QTest::newRow("far before the beginning") << -500 << -400 << -500;
    QTest::newRow("one beyond the end") << 1100 << 1201 << 1001;
    QTest::newRow("far beyond the end") << 3000 << 3100 << 2900;
    QTest::newRow("one less than the view, beyond the end") << 1100 << 1299 << 1099;
    QTest::newRow("just the view") << 1000 << 1200 << 1000;
    QTest::newRow("as long as the view, beyond the end") << 1050 << 1250 << 1050;
    QTest::newRow("as long as the view, before it") << 950 << 1150 << 950;
    QTest::newRow("too long, begins in view") << 1050 << 1500 << 1050;
    QTest::newRow("too long, begins beyond the view") << 3000 << 3500 << 3000;
    QTest::newRow("too long, begins with the view, a bit left") << 1000 << 1250 << 1050;
    QTest::newRow("too long, begins with the view, more left") << 1000 << 5000 << 1200;
    QTest::newRow("too long, began before, a bit left") << 500 << 1201 << 1001;
    QTest::newRow("too long, began before, just a view left") << 500 << 1400 << 1200;
    QTest::newRow("too long, began before, more left") << 500 << 1401 << 1200;
    QTest::newRow("too long, ends with the view") << 500 << 1200 << 500;
    QTest::newRow("too long, ends in view") << 500 << 1100 << 500;
    QTest::newRow("too long, ends before the view") << 100 << 900 << 100;
}

void tst_Reveal::scrollToMovesAsLittleAsItMust()
{
    QFETCH(int, begin);
    QFETCH(int, end);
    QFETCH(int, target);
    const int middle = begin + spacing + (end - begin - 2 * spacing) / 2;
    const int extent = end - begin - 2 * spacing;
    for (bool horizontal : {true, false}) {
        Scene scene(1);
        scene.view.resize(200, 200);
        scene.scroll(1000, 1000);
        if (horizontal)
            scene.put(0, middle, 1100, {extent, 20});
        else
            scene.put(0, 1100, middle, {20, extent});
        Access::scrollTo(scene.view, {scene.ref(0)});
        const std::string along = std::to_string(target);
        QCOMPARE(scene.scrolling(), target == 1000 ? "-"
                                    : horizontal   ? along + ",1000"
                                                   : "1000," + along);
    }
}

void tst_Reveal::scrollToMovesBothWays()
{
    Scene scene(1);
    scene.put(0, -500, 5000);
    Access::scrollTo(scene.view, {scene.ref(0)});
    QCOMPARE(scene.scrolling(), "-528,4818"s);
}

void tst_Reveal::scrollToBringsAllIntoView()
{
    Scene scene(2);
    scene.put(0, 400, 100);
    scene.put(1, 500, 150);
    Access::scrollTo(scene.view, {scene.ref(0), scene.ref(1)});
    QCOMPARE(scene.scrolling(), "228,0"s);
}

void tst_Reveal::scrollToPassesOverWhatIsNotVisible()
{
    Scene scene(2);
    scene.put(0, 400, 100);
    scene.put(1, 9000, 9000).visible = false;
    Access::scrollTo(scene.view, {});
    Access::scrollTo(scene.view, {scene.ref(1), {}});
    QCOMPARE(scene.scrolling(), "-"s);
    Access::scrollTo(scene.view, {scene.ref(1), {}, scene.ref(0)});
    QCOMPARE(scene.scrolling(), "128,0"s);
}

void tst_Reveal::scrollToCountsTheWholeWidget()
{
    Scene scene(1);
    scene.view.setFrameShape(QFrame::Box);
    scene.view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    scene.view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    scene.view.show();
    scene.scroll(0, 0);
    QVERIFY(scene.view.viewport()->width() < 300 && scene.view.viewport()->height() < 200);
    scene.put(0, 300 - 28, 200 - 18);
    Access::scrollTo(scene.view, {scene.ref(0)});
    QCOMPARE(scene.scrolling(), "-"s);
    scene.put(0, 300 - 27, 200 - 17);
    Access::scrollTo(scene.view, {scene.ref(0)});
    QCOMPARE(scene.scrolling(), "1,1"s);
}

void tst_Reveal::scrollToStartsTheClock()
{
    Scene scene(1);
    scene.put(0, 1000, 0);
    const Time before(Time::Now);
    Access::scrollTo(scene.view, {scene.ref(0)});
    QVERIFY(Access::scrollTimer(scene.view).isActive());
    const double age = (Access::scrollStart(scene.view) - before).seconds();
    QVERIFY(age >= 0 && age < 60);
    QCOMPARE(scene.view.horizontalScrollBar()->value(), 0);
}

void tst_Reveal::scrollToReachesExtremePlaces()
{
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int far = Graph::maxCoordinate;
    Scene scene(2);
    scene.view.resize(200, 200);
    for (unsigned i : {0, 1}) {
        Node &node = scene.put(i, 0, 0, {20, 20});
        node.x = node.y = i == 0 ? -far : far;
    }
    const auto targetFrom = [&](int at, std::vector<RefT<Node>> const &nodes) {
        for (QScrollBar *bar : {scene.view.horizontalScrollBar(), scene.view.verticalScrollBar()}) {
            bar->setRange(-most, most);
            bar->setValue(at);
        }
        Access::scrollTo(scene.view, nodes);
        return Access::scrollTo(scene.view);
    };
    const int begin = -far - 18, end = far + 18;
    QCOMPARE(targetFrom(-most, {scene.ref(0)}), QPoint(1, 1) * (-far + 18 - 200));
    QCOMPARE(targetFrom(most, {scene.ref(0)}), QPoint(begin, begin));
    QCOMPARE(targetFrom(-most, {scene.ref(1)}), QPoint(1, 1) * (end - 200));
    QCOMPARE(targetFrom(most, {scene.ref(1)}), QPoint(1, 1) * (far - 18));
    QCOMPARE(targetFrom(-most, {scene.ref(0), scene.ref(1)}), QPoint(begin, begin));
    QCOMPARE(targetFrom(most, {scene.ref(0), scene.ref(1)}), QPoint(begin, begin));
}

QTEST_MAIN(tst_Reveal)
#include "tst_Reveal.moc"
