#include "support/MouseScene.h"
#include "support/QtStrings.h"
#include "support/ViewPicture.h"

#include <QTest>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Node = Graph::Node;

// On a screen with two device pixels for each pixel, everything stands where it stands on others,
// and the picture has twice as many pixels each way.

namespace {

constexpr int scale = 2;
constexpr QRgb background = PaintScene::background;

QRect onDevice(QRect const &rect)
{
    return {scale * rect.topLeft(), scale * rect.size()};
}

/// Without the outline, which may lie half a pixel to either side.
QRect inside(QRect const &rect)
{
    return onDevice(rect.adjusted(1, 1, -1, -1));
}

} // namespace

class tst_GraphScale : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { QApplication::setStyle(new MeasuredStyle); }

    void pictureHasTwiceTheSize();
    void measuresAndScrollRangeAreInPixels();
    void boxesStandWhereTheyStand();
    void gradientFillsTheWholeWidget();
    void uprightLinksAreSharp();
    void arrowsLieInTheirBands();
    void listenersPaintInPixels();
    void mouseMeetsWhereBoxesStand();
};

void tst_GraphScale::initTestCase()
{
    QCOMPARE(qApp->devicePixelRatio(), double(scale));
}

void tst_GraphScale::pictureHasTwiceTheSize()
{
    PaintScene scene("", {301, 203});
    QCOMPARE(scene.view.viewport()->size(), QSize(301, 203));
    QCOMPARE(scene.paint().size(), scale * QSize(301, 203));
}

void tst_GraphScale::measuresAndScrollRangeAreInPixels()
{
    PaintScene scene("a");
    scene.setLabel('a', "label");
    Node &node = scene.place('a', {1000, -1000});
    const QSize text = QFontMetrics(scene.view.font()).size(0, "label");
    QCOMPARE(node.width, 3 * 2 + text.width() + 24);
    QCOMPARE(node.height, std::max(24, text.height()) + 2 * (24 + 2));
    Access::updateScrollbars(scene.view);
    QCOMPARE(scene.view.horizontalScrollBar()->minimum(), 1000 - node.width / 2 - 8);
    QCOMPARE(scene.view.verticalScrollBar()->minimum(), -1000 - node.height / 2 - 8);
    QCOMPARE(scene.view.horizontalScrollBar()->pageStep(), 300);
}

void tst_GraphScale::boxesStandWhereTheyStand()
{
    PaintScene scene("a");
    setColor(scene.view, "colorBaseNode", Qt::green);
    setColor(scene.view, "colorRectNode", Qt::red);
    Node &node = scene.place('a', {150, 140}, {30, 15});
    for (QPoint const &scroll : {QPoint(0, 0), QPoint(-37, 55)}) {
        scene.scrollTo(scroll);
        const QRect box = boxOf(scene.view, node).translated(-scroll);
        const QImage picture = scene.paint();
        QVERIFY(isAll(picture, inside(box), QColor(Qt::green).rgb()));
        const QRect painted = otherThan(background, picture);
        QVERIFY2(onDevice(box.adjusted(-1, -1, 1, 1)).contains(painted), "outside of the box");
        QVERIFY2(painted.contains(onDevice(box.adjusted(1, 1, -1, -1))), "not the whole box");
    }
}

void tst_GraphScale::gradientFillsTheWholeWidget()
{
    PaintScene scene("", {40, 100});
    setColor(scene.view, "colorBg0", Qt::black);
    setColor(scene.view, "colorBg1", Qt::white);
    const QImage picture = scene.paint();
    QCOMPARE(picture.height(), 200);
    int before = -1;
    for (int y = 0; y < picture.height(); ++y) {
        const int gray = qRed(picture.pixel(0, y));
        QVERIFY(gray >= before);
        QCOMPARE(picture.pixel(79, y), picture.pixel(0, y));
        before = gray;
    }
    QVERIFY(qRed(picture.pixel(0, 0)) < 5);
    QVERIFY(qRed(picture.pixel(0, 199)) > 250);
}

void tst_GraphScale::uprightLinksAreSharp()
{
    PaintScene scene("ab");
    Node &a = scene.place('a', {150, 60}, {30, 15});
    Node &b = scene.place('b', {150, 240}, {30, 15});
    scene.link('a', 'b');
    const int top = a.y + a.bottomY + 1;
    const int bottom = b.y + b.topY + 24 - 1;
    const QImage picture = scene.paint();
    const QRgb line = scene.view.viewport()->palette().color(QPalette::WindowText).rgb();
    // One pixel wide, which are two of the device's, with nothing at either side.
    const auto column = [&](int x) { return onDevice({x, top, 1, bottom - top}); };
    QVERIFY(isAll(picture, column(150), line));
    QVERIFY(isAll(picture, column(149), background));
    QVERIFY(isAll(picture, column(151), background));
}

void tst_GraphScale::arrowsLieInTheirBands()
{
    PaintScene scene("abc");
    Node &node = scene.place('a', {150, 150}, {30, 15});
    scene.node('b').visible = false;
    scene.node('c').visible = false;
    const QRect square(node.x + node.arrowX, 0, 24, 24);
    scene.place('b', {-5000, -5000}, {1, 1});
    scene.place('c', {-5000, -5000}, {1, 1});
    const QImage before = scene.paint();
    scene.link('b', 'a');
    const QRect up = differenceOf(before, scene.paint());
    QVERIFY(!up.isEmpty());
    QVERIFY(onDevice(square.translated(0, node.y + node.topY)).contains(up));
    const QImage withUp = scene.paint();
    scene.link('a', 'c');
    const QRect down = differenceOf(withUp, scene.paint());
    QVERIFY(!down.isEmpty());
    QVERIFY(onDevice(square.translated(0, node.y + node.bottomY)).contains(down));
}

void tst_GraphScale::listenersPaintInPixels()
{
    PaintScene scene("a");
    Node &node = scene.place('a', {150, 150}, {30, 15});
    QRect square;
    scene.view.sigPaintNodeIcon.connect([&](auto const &data) {
        square.setRect(data.x, data.y, data.w, data.h);
        data.painter->fillRect(square, Qt::blue);
    });
    const QImage picture = scene.paint();
    QCOMPARE(square, QRect(150 + node.iconX, 150 + node.iconY, 24, 24));
    QVERIFY(isAll(picture, onDevice(square), QColor(Qt::blue).rgb()));
}

/// Driven by the window system's mouse, which counts the device's pixels.
void tst_GraphScale::mouseMeetsWhereBoxesStand()
{
    MouseScene scene(12);
    QVERIFY(QTest::qWaitForWindowExposed(&scene.view()));
    scene.view().horizontalScrollBar()->setValue(scene.scroll().x() + 400);
    QWindow *const window = scene.view().windowHandle();
    const QRect box = scene.box(5);
    int numClicks = 0;
    const auto selectedByClick = [&](QPoint const &pos) {
        QTest::mouseClick(window, Qt::LeftButton, {}, pos);
        return QTest::qWaitFor([&] { return scene.numSel > numClicks; }) &&
                       scene.numSel == ++numClicks
                   ? scene.selected()
                   : QString("no click");
    };
    for (QPoint const &corner : {box.topLeft(), box.bottomRight()})
        QCOMPARE(selectedByClick(corner), QString("5"));
    for (QPoint const &outside : {box.topLeft() - QPoint(1, 0), box.bottomRight() + QPoint(0, 1)})
        QCOMPARE(selectedByClick(outside), QString());
    QTest::mouseClick(window, Qt::RightButton, {}, {31, 43});
    QTRY_COMPARE(scene.menuPos, QPoint(31, 43));
}

// As QTEST_MAIN, on a scaled screen.
int main(int argc, char *argv[])
{
    qputenv("QT_SCALE_FACTOR", QByteArray::number(scale));
    QApplication app(argc, argv);
    QApplication::setAttribute(Qt::AA_Use96Dpi);
    tst_GraphScale test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_GraphScale.moc"
