#include "support/ViewPicture.h"
#include "zrVOMGUI/presentation/ItemLabel.h"
#include "zrVOMGUI/presentation/ObjectIconDB.h"

#include <QFontMetrics>
#include <QPainter>
#include <QTest>

#include <algorithm>
#include <memory>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;

// The picture that hangs on the pointer during a drag.

namespace {

constexpr int iconEdge = 24, margin = 2;
constexpr int rowHeight = iconEdge + 2 * margin; // Of one line of the tests' font.

/// A view on a screen with so many device pixels to a pixel.
class ScaledView : public ObjectGraphView {
public:
    double scale = 1;

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        if (metric == PdmDevicePixelRatioScaled)
            return int(scale * devicePixelRatioFScale());
        return ObjectGraphView::metric(metric);
    }
};

struct Scene {
    Scene()
    {
        QFont font("DejaVu Sans");
        font.setPixelSize(12);
        view.setFont(font);
        view.setFieldName("name");
        view.setTypeName(false);
    }
    QPixmap pixmap(Things const &objs)
    {
        Access::dragObjs(view) = objs;
        return Access::makeDragPixmap(view);
    }
    QImage picture(Things const &objs)
    {
        return pixmap(objs).toImage().convertToFormat(QImage::Format_ARGB32);
    }
    QSize listSize(Things const &objs, bool typeName = false) const
    {
        return layoutItemList(objs, "name", typeName, false, view.font(), margin, margin, iconEdge);
    }

    ScaledView view;
};

Things makeMany(std::size_t num)
{
    Things things;
    while (things.size() < num)
        things.push_back(makeThing("thing " + std::to_string(things.size())));
    return things;
}

RefT<ObjectIconDB> iconsOf(QColor const &color)
{
    QPixmap pixmap(iconEdge, iconEdge);
    pixmap.fill(color);
    const RefT<ObjectClassIconDB> icons(new ObjectClassIconDB);
    icons->add("Thing", QIcon(pixmap));
    return icons;
}

/// Where the picture isn't as at its left top.
QRect paintedOn(QImage const &picture)
{
    const QImage opaque = picture.convertToFormat(QImage::Format_RGB32);
    return otherThan(opaque.pixel(0, 0), opaque);
}

/// All pixels of that colour.
int count(QImage const &picture, QColor const &color)
{
    int num = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            num += picture.pixel(x, y) == color.rgba();
    return num;
}

/// A picture without anything finer than squares of `edge` pixels.
bool isCoarse(QImage const &picture, int edge)
{
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (picture.pixel(x, y) != picture.pixel(x - x % edge, y - y % edge))
                return false;
    return true;
}

} // namespace

class tst_DragPixmap : public QObject {
    Q_OBJECT

private slots:
    void init() { QApplication::setStyle(new MeasuredStyle(iconEdge)); }

    void nothingMakesNoPicture();
    void sizeIsThatOfTheList();
    void groundIsTheSelectionAtHalfOpacity();
    void iconsAndLabelsAreInTheirRows();
    void labelIsInTheTextColour();
    void labelIsInTheViewsFont();
    void classNamesAreShownOnWish();
    void sixteenRowsAreShownAndNoMarkOfTheRest();
    void rowsAreInTheOrderOfTheObjects();
    void endlessLabelsAreCut();
    void pictureIsSharp();
};

void tst_DragPixmap::nothingMakesNoPicture()
{
    QVERIFY(Scene().pixmap({}).isNull());
}

void tst_DragPixmap::sizeIsThatOfTheList()
{
    Scene scene;
    const Things things = makeMany(3);
    const QPixmap pixmap = scene.pixmap(things);
    QCOMPARE(pixmap.size(), scene.listSize(things));
    QCOMPARE(pixmap.height(), 3 * rowHeight);
    QCOMPARE(pixmap.devicePixelRatio(), 1.0);
}

void tst_DragPixmap::groundIsTheSelectionAtHalfOpacity()
{
    Scene scene;
    QColor color = scene.view.property("colorSelNode").value<QColor>();
    QCOMPARE(color.rgb(), qRgb(0xc0, 0xe0, 0xff));
    const auto isGround = [&](QRgb pixel) {
        // Stored premultiplied, which rounds.
        return qAlpha(pixel) == 0x80 && std::abs(qRed(pixel) - color.red()) <= 1 &&
               std::abs(qGreen(pixel) - color.green()) <= 1 &&
               std::abs(qBlue(pixel) - color.blue()) <= 1;
    };
    QImage picture = scene.picture(makeThings("ab"));
    for (QPoint const &corner : {picture.rect().topLeft(), picture.rect().topRight(),
                                 picture.rect().bottomLeft(), picture.rect().bottomRight()})
        QVERIFY(isGround(picture.pixel(corner)));
    // Of the default, whatever colours the host has chosen.
    setColor(scene.view, "colorSelNode", Qt::red);
    picture = scene.picture(makeThings("ab"));
    QVERIFY(isGround(picture.pixel(0, 0)));
}

void tst_DragPixmap::iconsAndLabelsAreInTheirRows()
{
    Scene scene;
    const QImage without = scene.picture(makeThings("ab"));
    scene.view.setObjIconDB(iconsOf(Qt::red));
    const QImage picture = scene.picture(makeThings("ab"));
    QCOMPARE(picture.size(), without.size());
    // One margin lower than the middle of the row.
    for (int row : {0, 1}) {
        const QRect icon(margin, 2 * margin + row * rowHeight, iconEdge, iconEdge);
        QVERIFY(isAll(picture, icon, QColor(Qt::red).rgba()));
        const QRect label(2 * margin + iconEdge, row * rowHeight,
                          picture.width() - iconEdge - 2 * margin, rowHeight);
        const QImage text = picture.copy(label);
        QVERIFY(paintedOn(text).height() > 5);
        QCOMPARE(text, without.copy(label));
    }
    QCOMPARE(count(picture, Qt::red), 2 * iconEdge * iconEdge);
    // Icons alone make the difference.
    QCOMPARE(differenceOf(picture, without),
             QRect(margin, 2 * margin, iconEdge, rowHeight + iconEdge));
}

void tst_DragPixmap::labelIsInTheTextColour()
{
    Scene scene;
    QPalette palette;
    palette.setColor(QPalette::Text, Qt::magenta);
    palette.setColor(QPalette::WindowText, Qt::green);
    palette.setColor(QPalette::Window, Qt::yellow);
    palette.setColor(QPalette::Base, Qt::cyan);
    scene.view.setPalette(palette);
    // Uprights fill whole pixels.
    const QImage picture = scene.picture({makeThing("HIIH")});
    QVERIFY(count(picture, Qt::magenta) > 5);
    for (Qt::GlobalColor color : {Qt::green, Qt::yellow, Qt::cyan, Qt::black})
        QCOMPARE(count(picture, color), 0);
}

void tst_DragPixmap::labelIsInTheViewsFont()
{
    Scene scene;
    const Things things = makeThings("W");
    const QSize before = scene.pixmap(things).size();
    QFont font = scene.view.font();
    font.setPixelSize(60);
    scene.view.setFont(font);
    const QImage picture = scene.picture(things);
    QCOMPARE(picture.size(), scene.listSize(things));
    QVERIFY(picture.height() > before.height() && picture.width() > before.width());
    // The letter is as high as it is in that font.
    const QRect painted = paintedOn(picture);
    const int height = QFontMetrics(font).tightBoundingRect("'W'").height();
    QVERIFY2(std::abs(painted.height() - height) <= 2, qPrintable(QString::number(height)));
}

void tst_DragPixmap::classNamesAreShownOnWish()
{
    Scene scene;
    scene.view.setTypeName(true);
    const Things things = makeThings("a");
    QCOMPARE(scene.pixmap(things).size(), scene.listSize(things, true));
    QVERIFY(scene.listSize(things, true).width() > scene.listSize(things).width());
}

/// KEPT: of more than 16 objects the first 16 are shown.
void tst_DragPixmap::sixteenRowsAreShownAndNoMarkOfTheRest()
{
    Scene scene;
    const Things things = makeMany(100);
    const Things first(things.begin(), things.begin() + 16);
    const QImage picture = scene.picture(things);
    QCOMPARE(picture.height(), 16 * rowHeight);
    QCOMPARE(picture, scene.picture(first));
    QCOMPARE(scene.picture({things.begin(), things.begin() + 17}), picture);
    QCOMPARE(scene.picture({things.begin(), things.begin() + 15}).height(), 15 * rowHeight);
    // All of them are dragged.
    scene.pixmap(things);
    QCOMPARE(Access::dragObjs(scene.view).size(), std::size_t(100));
}

void tst_DragPixmap::rowsAreInTheOrderOfTheObjects()
{
    Scene scene;
    const QImage ab = scene.picture(makeThings("ab")), ba = scene.picture(makeThings("ba"));
    const auto row = [](QImage const &picture, int index) {
        return picture.copy(0, index * rowHeight, 40, rowHeight);
    };
    QCOMPARE(row(ab, 0), row(ba, 1));
    QCOMPARE(row(ab, 1), row(ba, 0));
    QVERIFY(row(ab, 0) != row(ab, 1));
}

void tst_DragPixmap::endlessLabelsAreCut()
{
    Scene scene;
    const QPixmap pixmap = scene.pixmap({makeThing(std::string(100000, 'w'))});
    QCOMPARE(pixmap.size(), QSize(32767, rowHeight));
}

void tst_DragPixmap::pictureIsSharp()
{
    Scene scene;
    const Things things = makeThings("ab");
    const QImage plain = scene.picture(things);
    QVERIFY(isCoarse(plain.scaled(2 * plain.size()), 2));
    scene.view.scale = 2;
    const QPixmap pixmap = scene.pixmap(things);
    QCOMPARE(pixmap.devicePixelRatio(), 2.0);
    QCOMPARE(pixmap.size(), 2 * scene.listSize(things));
    const QImage picture = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    QVERIFY(!isCoarse(picture, 2));
    // All of it is painted, at the same places.
    const QRect painted = paintedOn(picture);
    const QRect before = paintedOn(plain);
    for (QPoint const &away : {painted.topLeft() - 2 * before.topLeft(),
                               painted.bottomRight() - 2 * before.bottomRight()})
        QVERIFY(std::abs(away.x()) <= 4 && std::abs(away.y()) <= 4);
}

QTEST_MAIN(tst_DragPixmap)
#include "tst_DragPixmap.moc"
