#include "support/QtStrings.h"
#include "support/ViewPicture.h"

#include <QElapsedTimer>
#include <QPainter>
#include <QTest>

#include <random>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Node = Graph::Node;

namespace {

constexpr QRgb background = PaintScene::background;
constexpr QRgb black = 0xff000000;

/// Labels that make a node 60 x 76 and 60 x 126. With icons of 24, their upper bands begin 38 and
/// 63 above their centres, and their lower bands 14 and 39 below them.
constexpr QSize usual(30, 15), tall(30, 74);

/// The points of a route, such as "100,64 160,186".
std::string routeText(PaintScene &scene, char from, char to)
{
    std::string text;
    for (QPoint const &point :
         Access::route(scene.view, scene.scroll, scene.node(from), scene.node(to)))
        text +=
            (text.empty() ? "" : " ") + std::to_string(point.x()) + ',' + std::to_string(point.y());
    return text;
}

/// Cuts a link by stations, which are put at these places from the side of `from`.
void splitAt(PaintScene &scene, char from, char to, std::vector<QPoint> const &places)
{
    const std::vector<RefT<Node>> chain = Access::split(
        scene.view, scene.node(from), scene.node(to), static_cast<unsigned>(places.size()));
    QCOMPARE(chain.size(), places.size());
    for (std::size_t i = 0; i < chain.size(); ++i) {
        Access::updateSize(scene.view, *chain[i]);
        chain[i]->x = places[i].x();
        chain[i]->y = places[i].y();
    }
}

/// Links alone, as the view paints them.
QImage linksOf(PaintScene &scene)
{
    QImage picture(scene.view.size(), QImage::Format_RGB32);
    picture.fill(background);
    QPainter painter(&picture);
    Access::paintLinks(scene.view, painter, scene.scroll);
    return picture;
}

/// The same, of the routes of all links, wherever they are.
QImage routesOf(PaintScene &scene)
{
    QImage picture(scene.view.size(), QImage::Format_RGB32);
    picture.fill(background);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(0.5, 0.5);
    for (RefT<Node> const &node : Access::nodes(scene.view))
        for (auto const &[far, entry] : node->linkedOut)
            if (node->visible && far->visible)
                painter.drawPolyline(Access::route(scene.view, scene.scroll, *node, *far));
    return picture;
}

/// What all nodes and stations take.
QRect drawingOf(PaintScene &scene)
{
    QRect rect;
    for (RefT<Node> const &node : Access::nodes(scene.view)) {
        rect |=
            QRect(node->x - node->width / 2, node->y - node->height / 2, node->width, node->height);
        for (auto const &[far, entry] : node->linkedOut)
            for (QPoint const &point : Access::route(scene.view, {}, *node, *far))
                rect |= QRect(point, QSize(1, 1));
    }
    return rect;
}

/// Whether all lines of an area of `a` are in `b`, `offset` away. Qt moves slanted lines that it
/// clips by up to a pixel, and paints their ends a little lighter or darker.
bool hasLinesOf(QImage const &b, QImage const &a, QRect const &area, QPoint const &offset)
{
    const auto isLine = [&](QPoint pos) { return b.valid(pos) && qGray(b.pixel(pos)) < 170; };
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (qGray(a.pixel(x, y)) > 100)
                continue;
            bool found = false;
            for (int i = 0; i < 9 && !found; ++i)
                found = isLine(QPoint(x + i % 3 - 1, y + i / 3 - 1) + offset);
            if (!found)
                return false;
        }
    }
    return true;
}

/// Links at random: long ones, cycles, loops, opposed pairs and several components come about. It's
/// laid out, and stands still.
void linkAtRandom(PaintScene &scene, unsigned seed)
{
    std::mt19937 generator(seed);
    const auto draw = [&] { return scene.names[generator() % scene.names.size()]; };
    for (std::size_t i = 0; i < scene.names.size() * 3 / 2; ++i) {
        const char from = draw(), to = draw();
        scene.link(from, to);
    }
    for (char name : scene.names) {
        const int width = int(generator() % 60), height = int(generator() % 60);
        scene.place(name, {0, 0}, {width, height});
    }
    scene.view.layout();
    finishAnimation(scene.view);
}

} // namespace

class tst_LinkPainting : public QObject {
    Q_OBJECT

private slots:
    void init() { QApplication::setStyle(new MeasuredStyle); }

    void routesRunLikeThis_data();
    void routesRunLikeThis();
    void routesHangOnTheIconSize();
    void backLinkClimbsAroundItsTargetAtTheHeightsOfItsSource();
    void routesPassThroughTheirStations();
    void backLinksPassThroughTheirStationsUpwards();
    void stationsOfATurnedLinkArePassedFromItsSource();

    void linksAreDrawnAlongTheirRoutes_data();
    void linksAreDrawnAlongTheirRoutes();
    void uprightAndLevelPiecesAreSharp();
    void slantedPiecesAreSmooth();
    void loopGoesAroundTheRightSide();
    void linksHaveTheColourOfTheViewportsText();
    void linksWithHiddenEndsAreNotDrawn_data();
    void linksWithHiddenEndsAreNotDrawn();
    void parallelLinksAreOneLine();
    void nodesCoverLinks();

    void linksOffScreenMakeNoDifference_data();
    void linksOffScreenMakeNoDifference();
    void smallViewportShowsAPartOfTheLargeOne_data();
    void smallViewportShowsAPartOfTheLargeOne();
    void linksThatTouchTheEdgeAreDrawn();
    void stationsFarAwayDoNoHarm_data();
    void stationsFarAwayDoNoHarm();
};

void tst_LinkPainting::routesRunLikeThis_data()
{
    QTest::addColumn<QPoint>("from");
    QTest::addColumn<QPoint>("to");
    QTest::addColumn<QSize>("text");
    QTest::addColumn<QPoint>("scroll");
    QTest::addColumn<std::string>("route");
    const auto row = [](char const *name, QPoint const &from, QPoint const &to, QSize const &text,
                        QPoint const &scroll, char const *route) {
        QTest::newRow(name) << from << to << text << scroll << std::string(route);
    };
    row("straight down", {100, 50}, {100, 200}, usual, {}, "100,64 100,186");
    row("aslant", {100, 50}, {160, 200}, usual, {}, "100,64 160,186");
    row("between high nodes", {100, 50}, {160, 300}, tall, {}, "100,89 160,261");
    row("scrolled", {100, 50}, {160, 200}, usual, {-30, 20}, "130,44 190,166");
    row("end as high as the start", {100, 50}, {300, 78}, usual, {}, "100,64 300,64");
    row("end one point higher", {100, 50}, {300, 77}, usual, {},
        "100,64 88,76 68,76 68,24 332,103 332,51 312,51 300,63");
    row("on the same layer", {100, 50}, {300, 50}, usual, {},
        "100,64 88,76 68,76 68,24 332,76 332,24 312,24 300,36");
    row("to the left on the same layer", {300, 50}, {100, 50}, usual, {},
        "300,64 288,76 268,76 268,24 132,76 132,24 112,24 100,36");
    row("up", {100, 50}, {300, -400}, usual, {},
        "100,64 88,76 68,76 68,24 332,-374 332,-426 312,-426 300,-414");
    row("up, scrolled", {100, 50}, {300, -400}, usual, {10, -100},
        "90,164 78,176 58,176 58,124 322,-274 322,-326 302,-326 290,-314");
    row("up, between nodes of odd width", {100, 50}, {300, 50}, {31, 15}, {},
        "100,64 88,76 68,76 68,24 332,76 332,24 312,24 300,36");
    row("up, between high nodes", {100, 50}, {300, 50}, tall, {},
        "100,89 88,101 68,101 68,-1 332,101 332,-1 312,-1 300,11");
}

void tst_LinkPainting::routesRunLikeThis()
{
    QFETCH(QPoint, from);
    QFETCH(QPoint, to);
    QFETCH(QSize, text);
    QFETCH(QPoint, scroll);
    PaintScene scene("ab");
    scene.place('a', from, text);
    scene.place('b', to, text);
    scene.link('a', 'b');
    scene.scrollTo(scroll);
    QTEST(routeText(scene, 'a', 'b'), "route");
    QCOMPARE(routeText(scene, 'b', 'a'), ""s);
}

void tst_LinkPainting::routesHangOnTheIconSize()
{
    QApplication::setStyle(new MeasuredStyle(25));
    PaintScene scene("ab");
    scene.link('a', 'b');
    // 61 x 79, with bands 39 above and 15 below the centre.
    scene.place('a', {100, 50}, usual);
    scene.place('b', {300, 200}, usual);
    QCOMPARE(routeText(scene, 'a', 'b'), "100,65 300,186"s);
    scene.place('b', {300, 50}, usual);
    QCOMPARE(routeText(scene, 'a', 'b'), "100,65 88,77 68,77 68,23 332,77 332,23 312,23 300,36"s);
}

void tst_LinkPainting::backLinkClimbsAroundItsTargetAtTheHeightsOfItsSource()
{
    PaintScene scene("ab");
    scene.link('a', 'b');
    scene.place('a', {100, 300}, tall);
    scene.place('b', {300, 100}, usual);
    QCOMPARE(routeText(scene, 'a', 'b'),
             "100,339 88,351 68,351 68,249 332,151 332,49 312,49 300,86"s);
    scene.place('a', {100, 300}, usual);
    scene.place('b', {300, 100}, tall);
    QCOMPARE(routeText(scene, 'a', 'b'),
             "100,314 88,326 68,326 68,274 332,126 332,74 312,74 300,61"s);
}

void tst_LinkPainting::routesPassThroughTheirStations()
{
    PaintScene scene("ab");
    scene.link('a', 'b');
    scene.place('a', {100, 0}, usual);
    scene.place('b', {100, 400}, tall);
    splitAt(scene, 'a', 'b', {{150, 150}, {50, 260}});
    QCOMPARE(routeText(scene, 'a', 'b'), "100,14 150,136 150,164 50,246 50,274 100,361"s);
    scene.scrollTo({50, -10});
    QCOMPARE(routeText(scene, 'a', 'b'), "50,24 100,146 100,174 0,256 0,284 50,371"s);
}

void tst_LinkPainting::backLinksPassThroughTheirStationsUpwards()
{
    PaintScene scene("ab");
    scene.link('a', 'b');
    scene.place('a', {100, 400}, usual);
    scene.place('b', {200, 0}, tall);
    splitAt(scene, 'a', 'b', {{150, 260}, {120, 130}});
    QCOMPARE(routeText(scene, 'a', 'b'),
             "100,414 88,426 68,426 68,374 150,274 150,246 120,144 120,116 "
             "232,26 232,-26 212,-26 200,-39"s);
}

void tst_LinkPainting::stationsOfATurnedLinkArePassedFromItsSource()
{
    // A circle, in which some link runs up over two layers.
    PaintScene scene("abcd");
    for (std::string const &link : {"ab"s, "bc"s, "cd"s, "da"s})
        scene.link(link[0], link[1]);
    for (char name : scene.names)
        scene.place(name, {0, 0}, usual);
    scene.view.layout();
    finishAnimation(scene.view);
    int numBackLinks = 0;
    for (std::string const &link : {"ab"s, "bc"s, "cd"s, "da"s}) {
        const QPolygon route =
            Access::route(scene.view, {}, scene.node(link[0]), scene.node(link[1]));
        QVERIFY(route.size() >= 2);
        if (route.last().y() > route.first().y()) {
            QCOMPARE(route.size(), 2);
            continue;
        }
        ++numBackLinks;
        QCOMPARE(route.size(), 4 + 2 * 2 + 4);
        // Up through both, from the lower one's lower end to the upper one's upper end.
        for (int i = 4; i < 8; ++i)
            QVERIFY(route[i].y() < route[i - 1].y());
        QCOMPARE(route[4].x(), route[5].x());
        QCOMPARE(route[4].y() - route[5].y(), 28);
        QCOMPARE(route[6].y() - route[7].y(), 28);
    }
    QCOMPARE(numBackLinks, 1);
}

void tst_LinkPainting::linksAreDrawnAlongTheirRoutes_data()
{
    QTest::addColumn<QPoint>("to");
    QTest::addColumn<bool>("split");
    QTest::newRow("down") << QPoint(200, 250) << false;
    QTest::newRow("down through a station") << QPoint(200, 250) << true;
    QTest::newRow("up") << QPoint(200, 60) << false;
    QTest::newRow("up through a station") << QPoint(200, 60) << true;
}

void tst_LinkPainting::linksAreDrawnAlongTheirRoutes()
{
    QFETCH(QPoint, to);
    QFETCH(bool, split);
    PaintScene scene("ab");
    scene.link('a', 'b');
    scene.place('a', {100, 100}, usual);
    scene.place('b', to, usual);
    if (split)
        splitAt(scene, 'a', 'b', {{150, 160}});
    QVERIFY(otherThan(background, linksOf(scene)).isValid());
    QCOMPARE(differenceOf(linksOf(scene), routesOf(scene)), QRect());
    // The widget paints the same, and both boxes over it.
    const QImage picture = scene.paint();
    QImage expected = routesOf(scene);
    QPainter painter(&expected);
    for (char name : scene.names) {
        const QRect box = boxOf(scene.view, scene.node(name));
        painter.fillRect(box, Qt::white);
        painter.drawRect(box);
    }
    painter.end();
    QCOMPARE(differenceOf(picture, expected), QRect());
}

void tst_LinkPainting::uprightAndLevelPiecesAreSharp()
{
    PaintScene scene("ab");
    scene.link('a', 'b');
    scene.place('a', {100, 50}, usual);
    scene.place('b', {100, 200}, usual);
    QImage picture = linksOf(scene);
    QCOMPARE(otherThan(background, picture), QRect(100, 64, 1, 186 - 64 + 1));
    QVERIFY(isAll(picture, QRect(100, 64, 1, 186 - 64), black));

    scene.place('b', {220, 78}, usual);
    picture = linksOf(scene);
    QCOMPARE(otherThan(background, picture), QRect(100, 64, 121, 1));
    QVERIFY(isAll(picture, QRect(101, 64, 119, 1), black));
}

void tst_LinkPainting::slantedPiecesAreSmooth()
{
    PaintScene scene("ab");
    scene.link('a', 'b');
    scene.place('a', {100, 50}, usual);
    scene.place('b', {130, 200}, usual);
    const QImage picture = linksOf(scene);
    int numGrey = 0;
    for (int y = 64; y <= 186; ++y)
        for (int x = 95; x <= 135; ++x)
            numGrey += picture.pixel(x, y) != background && picture.pixel(x, y) != black;
    QVERIFY(numGrey > 100);
}

void tst_LinkPainting::loopGoesAroundTheRightSide()
{
    PaintScene scene("a");
    scene.link('a', 'a');
    scene.place('a', {100, 100}, usual);
    QCOMPARE(routeText(scene, 'a', 'a'), "100,114 112,126 132,126 132,74 112,74 100,86"s);
    scene.place('a', {100, 100}, tall);
    QCOMPARE(routeText(scene, 'a', 'a'), "100,139 112,151 132,151 132,49 112,49 100,61"s);

    QCOMPARE(otherThan(background, linksOf(scene)), QRect(100, 49, 33, 103));
    // It survives a layout, which has nothing to turn.
    scene.view.layout();
    finishAnimation(scene.view);
    scene.view.setPos(scene.obj('a'), 100, 100, false);
    QCOMPARE(routeText(scene, 'a', 'a'), "100,139 112,151 132,151 132,49 112,49 100,61"s);
}

void tst_LinkPainting::linksHaveTheColourOfTheViewportsText()
{
    PaintScene scene("abc");
    scene.link('a', 'b');
    scene.place('a', {100, 50}, usual);
    scene.place('b', {100, 250}, usual);
    scene.place('c', {250, 50}, usual);
    setColor(scene.view, "colorTextNode", Qt::green);
    setColor(scene.view, "colorRectNode", Qt::green);
    for (QColor const &color : {QColor(Qt::black), QColor(Qt::red)}) {
        QPalette palette = scene.view.viewport()->palette();
        palette.setColor(QPalette::Text, color);
        scene.view.viewport()->setPalette(palette);
        QVERIFY(isAll(scene.paint(), QRect(100, 70, 1, 100), color.rgb()));
    }
}

void tst_LinkPainting::linksWithHiddenEndsAreNotDrawn_data()
{
    QTest::addColumn<std::string>("hidden");
    QTest::newRow("from node") << "a"s;
    QTest::newRow("to node") << "b"s;
    QTest::newRow("both") << "ab"s;
}

void tst_LinkPainting::linksWithHiddenEndsAreNotDrawn()
{
    QFETCH(std::string, hidden);
    PaintScene scene("ab");
    scene.link('a', 'b');
    scene.link('b', 'b');
    scene.place('a', {100, 50}, usual);
    scene.place('b', {100, 200}, usual);
    splitAt(scene, 'a', 'b', {{100, 120}});
    QVERIFY(otherThan(background, linksOf(scene)).isValid());
    for (char name : hidden)
        scene.node(name).visible = false;
    // Nothing is left above b.
    QCOMPARE(otherThan(background, linksOf(scene).copy(0, 0, 300, 150)), QRect());
    scene.node('b').visible = false;
    QCOMPARE(otherThan(background, linksOf(scene)), QRect());
}

void tst_LinkPainting::parallelLinksAreOneLine()
{
    PaintScene scene("ab");
    scene.link('a', 'b');
    scene.place('a', {100, 50}, usual);
    scene.place('b', {130, 200}, usual);
    const QImage once = linksOf(scene);
    scene.link('a', 'b');
    scene.link('a', 'b');
    QCOMPARE(differenceOf(linksOf(scene), once), QRect());
    // Opposed links are two.
    scene.link('b', 'a');
    QVERIFY(differenceOf(linksOf(scene), once).isValid());
}

void tst_LinkPainting::nodesCoverLinks()
{
    PaintScene scene("abc");
    for (char name : scene.names)
        scene.place(name, {100, 100}, usual);
    const QImage box = scene.paint();
    for (std::string const &link : {"ab"s, "bc"s, "ca"s})
        scene.link(link[0], link[1]);
    const int x = 120;
    scene.place('a', {x, -100}, usual);
    scene.place('c', {x, 400}, usual);
    const QImage picture = scene.paint();
    const QRect inside = boxOf(scene.view, scene.node('b'));
    QCOMPARE(differenceOf(picture.copy(inside), box.copy(inside)), QRect());
    QVERIFY(differenceOf(picture, box).isValid());
}

void tst_LinkPainting::linksOffScreenMakeNoDifference_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 8; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void tst_LinkPainting::linksOffScreenMakeNoDifference()
{
    QFETCH(unsigned, seed);
    PaintScene scene("abcdefghijklmnop", {150, 110});
    linkAtRandom(scene, seed);
    const QRect drawing = drawingOf(scene);
    int numPainted = 0;
    for (int y = drawing.top() - 130; y < drawing.bottom() + 30; y += 83) {
        for (int x = drawing.left() - 170; x < drawing.right() + 30; x += 97) {
            scene.scrollTo({x, y});
            const QImage links = linksOf(scene);
            QVERIFY2(differenceOf(links, routesOf(scene)).isNull(),
                     qPrintable(QString("scrolled to %1, %2").arg(x).arg(y)));
            numPainted += otherThan(background, links).isValid();
        }
    }
    QVERIFY(numPainted > 10);
}

void tst_LinkPainting::smallViewportShowsAPartOfTheLargeOne_data()
{
    linksOffScreenMakeNoDifference_data();
}

void tst_LinkPainting::smallViewportShowsAPartOfTheLargeOne()
{
    QFETCH(unsigned, seed);
    PaintScene scene("abcdefghijklmnop");
    setColor(scene.view, "colorBg0", QColor(Qt::yellow)); // A gradient of the same height.
    linkAtRandom(scene, seed);
    const QRect drawing = drawingOf(scene).adjusted(-200, -20, 200, 20);
    constexpr int width = 120;
    for (int y : {drawing.top(), drawing.top() + 151, drawing.center().y()}) {
        const int height = 260;
        scene.resize({drawing.width(), height});
        scene.scrollTo({drawing.left(), y});
        const QImage large = scene.paint();
        scene.resize({width, height});
        for (int x = 0; x <= drawing.width() - width; x += 89) {
            scene.scrollTo({drawing.left() + x, y});
            const QImage small = scene.paint();
            QCOMPARE(small.size(), QSize(width, height));
            const QRect inner = small.rect().adjusted(1, 1, -1, -1);
            QVERIFY2(hasLinesOf(large, small, inner, {x, 0}) &&
                         hasLinesOf(small, large, inner.translated(x, 0), {-x, 0}),
                     qPrintable(QString("scrolled to %1, %2").arg(scene.scroll.x()).arg(y)));
        }
    }
}

void tst_LinkPainting::linksThatTouchTheEdgeAreDrawn()
{
    // Upright links in the first and the last column, and level ones in the first and last row.
    PaintScene scene("ab", {200, 150});
    scene.link('a', 'b');
    scene.place('a', {0, 0}, usual);
    scene.place('b', {0, 300}, usual);
    for (int x : {0, 199}) {
        scene.scrollTo({-x, 0});
        QCOMPARE(otherThan(background, linksOf(scene)), QRect(x, 14, 1, 136));
    }
    scene.place('b', {500, 28}, usual);
    for (int y : {0, 149}) {
        scene.scrollTo({100, 14 - y});
        QCOMPARE(otherThan(background, linksOf(scene)), QRect(0, y, 200, 1));
    }
    for (QPoint const &outside : {QPoint(100, 15), QPoint(100, 14 - 150)}) {
        scene.scrollTo(outside);
        QCOMPARE(otherThan(background, linksOf(scene)), QRect());
    }
}

void tst_LinkPainting::stationsFarAwayDoNoHarm_data()
{
    QTest::addColumn<QPoint>("station");
    QTest::addColumn<QPoint>("scroll");
    constexpr int most = ObjectGraphView::maxPos;
    // The farthest that the unsigned division sends a station, from a node at -1.
    constexpr int farthest = int(0xffffffffu / 3);
    const auto row = [](char const *name, QPoint const &station, QPoint const &scroll) {
        QTest::newRow(name) << station << scroll;
    };
    row("right and below", {farthest, farthest}, {});
    row("right", {farthest, 100}, {});
    row("below", {100, farthest}, {});
    row("left and above", {-farthest, -farthest}, {});
    row("left and below", {-farthest, farthest}, {});
    row("seen from the far left", {farthest, farthest}, {-most, -most});
    row("seen from the far right", {-farthest, -farthest}, {most, most});
}

void tst_LinkPainting::stationsFarAwayDoNoHarm()
{
    QFETCH(QPoint, station);
    QFETCH(QPoint, scroll);
    PaintScene scene("abc");
    scene.place('a', {100, 50}, usual);
    scene.place('b', {200, 250}, usual);
    scene.place('c', {100, 200}, usual);
    scene.link('a', 'c');
    for (std::string const &link : {"ab"s, "ba"s}) {
        scene.link(link[0], link[1]);
        splitAt(scene, link[0], link[1], {station, {150, 150}});
    }
    scene.scrollTo(scroll);
    QElapsedTimer timer;
    timer.start();
    const QImage picture = scene.paint();
    QVERIFY(timer.elapsed() < 2000);
    QCOMPARE(differenceOf(linksOf(scene), routesOf(scene)), QRect());
    // What else there is stands as ever.
    QCOMPARE(isAll(picture, QRect(100, 90, 1, 80), black), scroll.isNull());
}

QTEST_MAIN(tst_LinkPainting)
#include "tst_LinkPainting.moc"
