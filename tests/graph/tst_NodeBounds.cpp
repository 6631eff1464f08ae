#include "support/QtStrings.h"
#include "support/ViewPicture.h"

#include <QFontMetrics>
#include <QTest>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Node = Graph::Node;

class tst_NodeBounds : public QObject {
    Q_OBJECT

private slots:
    void init() { QApplication::setStyle(new MeasuredStyle); }

    void objectNodesHaveTheseMeasures_data();
    void objectNodesHaveTheseMeasures();
    void intermediateNodesHaveTheseMeasures_data();
    void intermediateNodesHaveTheseMeasures();
    void labelsAreMeasuredWhenTheyAreDirtyOnly();
    void labelsAreMeasuredInTheFontOfTheView();

    void scrollRangeHoldsTheDrawing_data();
    void scrollRangeHoldsTheDrawing();
    void scrollRangeWithoutNodes_data();
    void scrollRangeWithoutNodes();
    void scrollRangeOfAnEmptyWidget();
    void resizeUpdatesTheScrollRangeAndNothingElse();
    void visibleBoundPassesOverHiddenNodes();
    void visibleBoundOfNobodyIsTheCallersShifted();

    void paintMeasuresWhatIsStale();
    void paintMeasuresNothingElse();
    void paintIsCarriedOutWhileRefreshIsOff();
};

void tst_NodeBounds::objectNodesHaveTheseMeasures_data()
{
    QTest::addColumn<int>("icon");
    QTest::addColumn<QSize>("text");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPoint>("iconPos");
    QTest::addColumn<QPoint>("textPos");
    QTest::addColumn<int>("arrowX");
    QTest::addColumn<int>("topY");
    QTest::addColumn<int>("bottomY");
    const auto row = [](char const *name, int icon, QSize const &text, QSize const &size,
                        QPoint const &iconPos, QPoint const &textPos, int arrowX, int topY,
                        int bottomY) {
        QTest::newRow(name) << icon << text << size << iconPos << textPos << arrowX << topY
                            << bottomY;
    };
    row("text lower than the icon", 24, {30, 15}, {60, 76}, {-28, -12}, {-2, -7}, -14, -38, 14);
    row("text as high as the icon", 24, {30, 24}, {60, 76}, {-28, -12}, {-2, -12}, -14, -38, 14);
    row("text higher than the icon", 24, {30, 25}, {60, 77}, {-28, -12}, {-2, -12}, -14, -38, 15);
    row("odd width", 24, {31, 15}, {61, 76}, {-28, -12}, {-2, -7}, -14, -38, 14);
    row("empty label", 24, {0, 15}, {30, 76}, {-13, -12}, {13, -7}, -14, -38, 14);
    row("no text at all", 24, {0, 0}, {30, 76}, {-13, -12}, {13, 0}, -14, -38, 14);
    row("odd icon", 25, {30, 15}, {61, 79}, {-28, -12}, {-1, -7}, -14, -39, 15);
    row("icon of one point", 1, {30, 15}, {37, 21}, {-16, 0}, {-13, -7}, -2, -10, 10);
}

void tst_NodeBounds::objectNodesHaveTheseMeasures()
{
    QFETCH(int, icon);
    QFETCH(QSize, text);
    QApplication::setStyle(new MeasuredStyle(icon));
    PaintScene scene("a");
    QCOMPARE(Access::iconSize(scene.view), icon);
    Node const &node = scene.place('a', {1000, -1000}, text);
    QCOMPARE(QSize(node.textWidth, node.textHeight), text);
    QTEST(QSize(node.width, node.height), "size");
    QTEST(QPoint(node.iconX, node.iconY), "iconPos");
    QTEST(QPoint(node.textX, node.textY), "textPos");
    QTEST(node.arrowX, "arrowX");
    QTEST(node.topY, "topY");
    QTEST(node.bottomY, "bottomY");
    // Bands of the icon's height lie over and under the box.
    QCOMPARE(node.topY + node.height, node.bottomY + icon);
}

void tst_NodeBounds::intermediateNodesHaveTheseMeasures_data()
{
    QTest::addColumn<int>("icon");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("topY");
    QTest::addColumn<int>("bottomY");
    QTest::newRow("even icon") << 24 << 76 << -38 << 14;
    QTest::newRow("odd icon") << 25 << 79 << -39 << 15;
}

void tst_NodeBounds::intermediateNodesHaveTheseMeasures()
{
    QFETCH(int, icon);
    QApplication::setStyle(new MeasuredStyle(icon));
    ObjectGraphView view;
    const RefT<Node> node(new Node(view, {}));
    Access::updateSize(view, *node);
    QCOMPARE(node->width, 0);
    QTEST(node->height, "height");
    QTEST(node->topY, "topY");
    QTEST(node->bottomY, "bottomY");
    for (int measure : {node->textWidth, node->textHeight, node->iconX, node->iconY, node->textX,
                        node->textY, node->arrowX})
        QCOMPARE(measure, 0);
    QVERIFY(!node->sizeDirty);
}

void tst_NodeBounds::labelsAreMeasuredWhenTheyAreDirtyOnly()
{
    PaintScene scene("a");
    Node &node = scene.place('a', {0, 0});
    const QSize size = QFontMetrics(scene.view.font()).size(0, node.watch->label);
    QVERIFY(size.width() > 0);
    QVERIFY(!node.sizeDirty);
    QCOMPARE(QSize(node.textWidth, node.textHeight), size);

    node.textWidth = 500;
    Access::updateSize(scene.view, node);
    QCOMPARE(node.textWidth, 500);
    node.sizeDirty = true;
    Access::updateSize(scene.view, node);
    QCOMPARE(node.textWidth, size.width());
    QVERIFY(!node.sizeDirty);

    // Lines and an ampersand count as they are painted.
    scene.setLabel('a', "a&b\nc");
    QVERIFY(node.sizeDirty);
    Access::updateSize(scene.view, node);
    QVERIFY(node.watch->label.contains("a&b\nc"));
    QCOMPARE(QSize(node.textWidth, node.textHeight),
             QFontMetrics(scene.view.font()).size(0, node.watch->label));
    scene.setLabel('a', "");
    Access::updateSize(scene.view, node);
    QCOMPARE(node.width, 24 + 3 * 2);
}

void tst_NodeBounds::labelsAreMeasuredInTheFontOfTheView()
{
    PaintScene scene("a");
    QFont font = scene.view.font();
    font.setPixelSize(60);
    scene.view.setFont(font);
    Node const &node = scene.place('a', {0, 0});
    QCOMPARE(QSize(node.textWidth, node.textHeight), QFontMetrics(font).size(0, node.watch->label));
    QCOMPARE(node.height, node.textHeight + 2 * (24 + 2));
}

void tst_NodeBounds::scrollRangeHoldsTheDrawing_data()
{
    QTest::addColumn<QRect>("drawing"); // With its margins.
    QTest::addColumn<QRect>("range");   // Of the scroll values, and
    QTest::addColumn<QSize>("page");    // what is seen. Bars are 10 thick.
    const auto row = [](char const *name, QRect const &drawing, QRect const &range,
                        QSize const &page) { QTest::newRow(name) << drawing << range << page; };
    // The widget is 300 x 200.
    row("fits", {40, 70, 200, 150}, {40, 70, 0, 0}, {300, 200});
    row("fits exactly", {40, 70, 300, 200}, {40, 70, 0, 0}, {300, 200});
    row("too wide", {40, 70, 301, 150}, {40, 70, 1, 0}, {300, 190});
    row("too high", {40, 70, 200, 201}, {40, 70, 0, 1}, {290, 200});
    row("both", {40, 70, 1000, 500}, {40, 70, 710, 310}, {290, 190});
    row("too wide, room for the bar left", {40, 70, 301, 190}, {40, 70, 1, 0}, {300, 190});
    row("too wide, too high with the bar", {40, 70, 301, 191}, {40, 70, 11, 1}, {290, 190});
    row("too high, room for the bar left", {40, 70, 290, 201}, {40, 70, 0, 1}, {290, 200});
    row("too high, too wide with the bar", {40, 70, 291, 201}, {40, 70, 1, 11}, {290, 190});
    row("negative", {-5000, -3001, 1000, 501}, {-5000, -3001, 710, 311}, {290, 190});
}

void tst_NodeBounds::scrollRangeHoldsTheDrawing()
{
    QFETCH(QRect, drawing);
    QFETCH(QRect, range);
    QFETCH(QSize, page);
    PaintScene scene("ab", {300, 200});
    scene.view.setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    scene.view.setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    scene.node('b').visible = false;
    scene.place('b', {100000, 100000});
    const QRect box = drawing.adjusted(8, 8, -8, -8);
    scene.place('a', box.topLeft() + QPoint(box.width() / 2, box.height() / 2),
                {box.width() - 30, box.height() - 52});
    Access::boundsStale(scene.view) = true;
    pictureOf(scene.view);
    QScrollBar const &h = *scene.view.horizontalScrollBar();
    QScrollBar const &v = *scene.view.verticalScrollBar();
    QTRY_COMPARE(scene.view.viewport()->size(), page); // Bars come and go a little later.
    QCOMPARE(QSize(h.pageStep(), v.pageStep()), page);
    QCOMPARE(QPoint(h.minimum(), v.minimum()), range.topLeft());
    QCOMPARE(QPoint(h.maximum(), v.maximum()),
             range.topLeft() + QPoint(range.width(), range.height()));
}

void tst_NodeBounds::scrollRangeWithoutNodes_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPoint>("most");
    QTest::newRow("usual size") << QSize(300, 200) << QPoint(-8, -8);
    QTest::newRow("as large as the margins") << QSize(16, 16) << QPoint(-8, -8);
    QTest::newRow("narrow") << QSize(15, 200) << QPoint(-7, -8);
    QTest::newRow("low") << QSize(200, 15) << QPoint(-8, -7);
}

void tst_NodeBounds::scrollRangeWithoutNodes()
{
    QFETCH(QSize, size);
    QFETCH(QPoint, most);
    PaintScene scene("a", {100, 100});
    scene.node('a').visible = false;
    scene.place('a', {5000, 5000});
    // Bars without a thickness of their own.
    scene.view.horizontalScrollBar()->resize(0, 0);
    scene.view.verticalScrollBar()->resize(0, 0);
    scene.view.resize(size);
    Access::updateScrollbars(scene.view);
    QScrollBar const &h = *scene.view.horizontalScrollBar();
    QScrollBar const &v = *scene.view.verticalScrollBar();
    QCOMPARE(QPoint(h.minimum(), v.minimum()), QPoint(-8, -8));
    QCOMPARE(QPoint(h.maximum(), v.maximum()), most);
    QCOMPARE(QSize(h.pageStep(), v.pageStep()), size);
}

void tst_NodeBounds::scrollRangeOfAnEmptyWidget()
{
    PaintScene scene("a", {100, 100});
    Node const &a = scene.place('a', {200, 300}, {30, 15});
    scene.view.horizontalScrollBar()->resize(0, 0);
    scene.view.verticalScrollBar()->resize(0, 0);
    scene.view.resize(0, 0);
    Access::updateScrollbars(scene.view);
    QScrollBar const &h = *scene.view.horizontalScrollBar();
    QScrollBar const &v = *scene.view.verticalScrollBar();
    QCOMPARE(QPoint(h.minimum(), v.minimum()), QPoint(200 - 30 - 8, 300 - 38 - 8));
    QCOMPARE(QPoint(h.maximum(), v.maximum()), QPoint(200 + 30 + 8, 300 + 38 + 8));
    QCOMPARE(QSize(h.pageStep(), v.pageStep()), QSize(0, 0));
    QCOMPARE(a.width, 60);
    pictureOf(scene.view);
    scene.view.layout();
    scene.view.showSel();
}

void tst_NodeBounds::resizeUpdatesTheScrollRangeAndNothingElse()
{
    PaintScene scene("a", {300, 300});
    Node &a = scene.place('a', {100, 100}, {30, 15});
    a.sizeDirty = true;
    const Asked asked = askedBy(scene.view, [&] {
        scene.view.resize(50, 50);
        QResizeEvent event(QSize(50, 50), QSize(300, 300));
        QApplication::sendEvent(scene.view.viewport(), &event);
    });
    QVERIFY(!asked.repaint && !asked.bounds);
    QVERIFY(a.sizeDirty);
    QCOMPARE(scene.view.horizontalScrollBar()->minimum(), 100 - 30 - 8);
    QCOMPARE(scene.view.verticalScrollBar()->minimum(), 100 - 38 - 8);
}

void tst_NodeBounds::visibleBoundPassesOverHiddenNodes()
{
    PaintScene scene("abcd");
    scene.place('a', {-100, -50}, {31, 15}); // 61 x 76.
    scene.place('b', {200, 70}, {30, 26});   // 60 x 78.
    scene.place('c', {9000, 9000});
    scene.place('d', {-9000, -9000});
    scene.node('c').visible = scene.node('d').visible = false;
    const auto ref = [&](char letter) { return RefT<Node>(scene.node(letter)); };
    int left = 5, top = 5, right = 5, bottom = 5;
    QVERIFY(Access::getVisibleBound(scene.view, {{}, ref('c'), ref('b'), {}, ref('a'), ref('d')},
                                    left, top, right, bottom));
    QCOMPARE(left, -100 - 30 - 8);
    QCOMPARE(top, -50 - 38 - 8);
    QCOMPARE(right, 200 + 30 + 8);
    QCOMPARE(bottom, 70 + 39 + 8);
    QVERIFY(Access::getVisibleBound(scene.view, {ref('a')}, left, top, right, bottom));
    // The first node taken replaces what the caller had, also where that lies farther out.
    QCOMPARE(left, -100 - 30 - 8);
    QCOMPARE(right, -100 - 30 + 61 + 8);
    QCOMPARE(top, -50 - 38 - 8);
    QCOMPARE(bottom, -50 + 38 + 8);
}

void tst_NodeBounds::visibleBoundOfNobodyIsTheCallersShifted()
{
    PaintScene scene("ab");
    scene.place('a', {100, 100});
    scene.place('b', {100, 100});
    scene.node('a').visible = scene.node('b').visible = false;
    int left = 100, top = 200, right = 300, bottom = 400;
    QVERIFY(!Access::getVisibleBound(scene.view, {}, left, top, right, bottom));
    QCOMPARE(QRect(left, top, right, bottom), QRect(92, 192, 308, 408));
    QVERIFY(!Access::getVisibleBound(scene.view,
                                     {RefT<Node>(scene.node('a')), {}, RefT<Node>(scene.node('b'))},
                                     left, top, right, bottom));
    QCOMPARE(QRect(left, top, right, bottom), QRect(84, 184, 316, 416));
}

void tst_NodeBounds::paintMeasuresWhatIsStale()
{
    PaintScene scene("ab");
    scene.node('b').visible = false;
    Access::boundsStale(scene.view) = true;
    QVERIFY(scene.node('a').sizeDirty && scene.node('b').sizeDirty);
    pictureOf(scene.view);
    QVERIFY(!Access::boundsStale(scene.view));
    QVERIFY(!scene.node('a').sizeDirty);
    QVERIFY(scene.node('a').width > 30);
    // Hidden nodes wait until they are shown.
    QVERIFY(scene.node('b').sizeDirty);
    QCOMPARE(scene.node('b').width, 0);
    QCOMPARE(scene.view.horizontalScrollBar()->minimum(), -(scene.node('a').width / 2) - 8);
}

void tst_NodeBounds::paintMeasuresNothingElse()
{
    PaintScene scene("a");
    Node &a = scene.place('a', {0, 0});
    a.width = 5;
    a.sizeDirty = true;
    Access::boundsStale(scene.view) = false;
    const int before = scene.view.horizontalScrollBar()->minimum();
    pictureOf(scene.view);
    QCOMPARE(a.width, 5);
    QVERIFY(a.sizeDirty);
    QCOMPARE(scene.view.horizontalScrollBar()->minimum(), before);
}

void tst_NodeBounds::paintIsCarriedOutWhileRefreshIsOff()
{
    PaintScene scene("a");
    scene.place('a', {100, 100});
    scene.view.setRefresh(false);
    scene.view.setFieldName("none");
    QVERIFY(Access::refreshPending(scene.view) && Access::boundsStale(scene.view));
    pictureOf(scene.view);
    QVERIFY(!Access::boundsStale(scene.view));
    // The request is still to be carried out.
    QVERIFY(Access::refreshPending(scene.view));
    scene.view.setRefresh(true);
    QVERIFY(!Access::refreshPending(scene.view));
}

QTEST_MAIN(tst_NodeBounds)
#include "tst_NodeBounds.moc"
