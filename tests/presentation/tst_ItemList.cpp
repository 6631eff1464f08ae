#include "Houses.h"

#include "zrVOMGUI/presentation/ItemLabel.h"

#include <QFontMetrics>
#include <QIconEngine>
#include <QPainter>
#include <QTest>

#include <memory>

using namespace ZR::VOM::GUI;
using Objects = std::vector<RefT<Model>>;

namespace {

/// How an icon was painted.
struct IconPaint {
    QRect rect;
    QIcon::Mode mode;
    QIcon::State state;
};

/// An icon engine that notes how it is painted, of a size smaller than most squares.
class NotingIconEngine : public QIconEngine {
public:
    NotingIconEngine(std::shared_ptr<std::vector<IconPaint>> noted, QSize const &ownSize)
        : paints(std::move(noted))
        , size(ownSize)
    {
    }
    void paint(QPainter *, QRect const &rect, QIcon::Mode mode, QIcon::State state) override
    {
        paints->push_back({rect, mode, state});
    }
    QSize actualSize(QSize const &wanted, QIcon::Mode, QIcon::State) override
    {
        return size.boundedTo(wanted);
    }
    QIconEngine *clone() const override { return new NotingIconEngine(*this); }

private:
    std::shared_ptr<std::vector<IconPaint>> paints;
    QSize size;
};

class NotingIconDB : public ObjectIconDB {
public:
    explicit NotingIconDB(QSize const &iconSize = QSize(1000, 1000))
        : icon(new NotingIconEngine(paints, iconSize))
    {
    }
    QIcon find(RefT<Model> const &obj) const override
    {
        asked.push_back(obj);
        return icon;
    }
    std::shared_ptr<std::vector<IconPaint>> paints = std::make_shared<std::vector<IconPaint>>();
    mutable Objects asked;

private:
    QIcon icon;
};

QFont listFont()
{
    QFont font("DejaVu Sans");
    font.setPixelSize(12);
    return font;
}

QImage blankImage()
{
    QImage image(400, 200, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

/// What paintItemList() draws on white, in listFont().
QImage painted(Objects const &objects, RefT<ObjectIconDB> const &iconDB, int marginX, int marginY,
               int iconSize)
{
    QImage image = blankImage();
    QPainter painter(&image);
    painter.setFont(listFont());
    paintItemList(painter, objects, iconDB, "name", false, false, marginX, marginY, iconSize);
    return image;
}

QSize layout(Objects const &objects, int marginX, int marginY, int iconSize)
{
    return layoutItemList(objects, "name", false, false, listFont(), marginX, marginY, iconSize);
}

QRect boundOf(std::string const &name)
{
    return QFontMetrics(listFont()).boundingRect(QString::fromStdString("'" + name + "'"));
}

} // namespace

class tst_ItemList : public QObject {
    Q_OBJECT

private slots:
    void emptyListHasNoSize();
    void emptyReferencesTakeNoRow();
    void widestRowSetsTheWidth();
    void rowIsAsHighAsItsTallerPart_data();
    void rowIsAsHighAsItsTallerPart();
    void emptyLabelTakesARow();
    void layoutMeasuresTheGivenFont();
    void layoutShowsTheWantedParts();
    void keepsSecondSubtractionOfLeft_data();
    void keepsSecondSubtractionOfLeft();
    void emptyListPaintsNothing();
    void iconLiesInItsSquare();
    void smallIconIsCentredInItsSquare();
    void iconsStandInRows();
    void rowWithoutIconKeepsItsRoom();
    void textLiesBesideTheIcon_data();
    void textLiesBesideTheIcon();
    void rowsFollowEachOther();
    void paintUsesThePaintersFontAndOrigin();
    void paintLeavesThePainterAsItWas();
    void keepsMarginYTwiceAboveTheContent();
    void keepsLastRowNearerTheBottomEdge();
};

void tst_ItemList::emptyListHasNoSize()
{
    QCOMPARE(layout({}, 3, 4, 16), QSize(0, 0));
    QCOMPARE(layout({nullptr, nullptr}, 3, 4, 16), QSize(0, 0));
}

void tst_ItemList::emptyReferencesTakeNoRow()
{
    const RefT<Model> a = named("villa"), b = named("castle");
    QCOMPARE(layout({nullptr, a, nullptr, b}, 3, 4, 16), layout({a, b}, 3, 4, 16));
}

void tst_ItemList::widestRowSetsTheWidth()
{
    const RefT<Model> narrow = named("o"), wide = named("the widest of all");
    const int width = layout({wide}, 3, 4, 16).width();
    QVERIFY(width > layout({narrow}, 3, 4, 16).width());
    QCOMPARE(layout({narrow, wide, narrow}, 3, 4, 16).width(), width);
    QCOMPARE(layout({wide, narrow}, 3, 4, 16).width(), width);
}

void tst_ItemList::rowIsAsHighAsItsTallerPart_data()
{
    QTest::addColumn<int>("iconSize");
    QTest::addColumn<int>("marginY");
    QTest::newRow("icon taller") << 40 << 3;
    QTest::newRow("text taller") << 2 << 3;
    QTest::newRow("no icon") << 0 << 3;
    QTest::newRow("no margin") << 40 << 0;
}

void tst_ItemList::rowIsAsHighAsItsTallerPart()
{
    QFETCH(int, iconSize);
    QFETCH(int, marginY);
    const RefT<Model> silent(new House), speaking = named("villa");
    const int silentHeight = iconSize + 2 * marginY;
    const int speakingHeight = std::max(boundOf("villa").height(), iconSize) + 2 * marginY;
    QCOMPARE(layout({silent}, 5, marginY, iconSize).height(), silentHeight);
    QCOMPARE(layout({speaking}, 5, marginY, iconSize).height(), speakingHeight);
    QCOMPARE(layout({silent, speaking}, 5, marginY, iconSize).height(),
             silentHeight + speakingHeight);
}

void tst_ItemList::emptyLabelTakesARow()
{
    const RefT<Model> object(new House);
    QCOMPARE(layoutItemList({object}, "", false, false, listFont(), 3, 4, 16),
             QSize(3 * 3 + 16, 16 + 2 * 4));
    QCOMPARE(layoutItemList({object}, "", false, false, listFont(), 3, 4, 0), QSize(9, 8));
}

void tst_ItemList::layoutMeasuresTheGivenFont()
{
    QFont font = listFont();
    font.setPixelSize(30);
    const RefT<Model> object = named("villa");
    const QRect bound = QFontMetrics(font).boundingRect("'villa'");
    QVERIFY(bound.height() > boundOf("villa").height());
    QCOMPARE(layoutItemList({object}, "name", false, false, font, 0, 0, 0).height(),
             bound.height());
}

void tst_ItemList::layoutShowsTheWantedParts()
{
    const RefT<Model> object = named("villa");
    const auto width = [&](std::string const &fieldName, bool typeName, bool address) {
        return layoutItemList({object}, fieldName, typeName, address, listFont(), 0, 0, 0).width();
    };
    const auto formula = [](std::string const &label) {
        const QRect bound = QFontMetrics(listFont()).boundingRect(QString::fromStdString(label));
        return bound.width() - bound.left();
    };
    QCOMPARE(width("name", true, false), formula("Estate::House 'villa'"));
    QCOMPARE(width("", false, true), formula("@" + streamed(object)));
    QCOMPARE(width("name", true, true), formula("Estate::House 'villa' @" + streamed(object)));
}

void tst_ItemList::keepsSecondSubtractionOfLeft_data()
{
    QTest::addColumn<QString>("typeName");
    QTest::addColumn<int>("side");
    QTest::newRow("text that begins left of its origin") << "jam" << -1;
    QTest::newRow("text that begins right of its origin") << "Hall" << 1;
}

void tst_ItemList::keepsSecondSubtractionOfLeft()
{
    // The class name is the one part that begins a label without a quote before it.
    class Titled : public Model {
    public:
        explicit Titled(QByteArray const &title)
            : name(title)
            , info{&Model::classInfo, name}
        {
        }
        ClassInfo const &getClassInfo() const override { return info; }

    private:
        QByteArray name;
        ClassInfo info;
    };
    QFETCH(QString, typeName);
    QFETCH(int, side);
    QFont font = listFont();
    font.setPixelSize(40);
    const QRect bound = QFontMetrics(font).boundingRect(typeName);
    QVERIFY2(bound.left() * side > 0, "the font leaves nothing to test here");
    const RefT<Model> object(new Titled(typeName.toUtf8()));
    QCOMPARE(layoutItemList({object}, "", true, false, font, 5, 2, 16).width(),
             (bound.right() - bound.left() + 1) - bound.left() + 3 * 5 + 16);
}

void tst_ItemList::emptyListPaintsNothing()
{
    const RefT<NotingIconDB> icons(new NotingIconDB);
    QCOMPARE(painted({}, icons, 3, 4, 16), blankImage());
    QCOMPARE(painted({nullptr, nullptr}, icons, 3, 4, 16), blankImage());
    QVERIFY(icons->asked.empty());
}

void tst_ItemList::iconLiesInItsSquare()
{
    const RefT<NotingIconDB> icons(new NotingIconDB);
    const RefT<Model> object = named("villa");
    painted({object}, icons, 3, 4, 40);
    QVERIFY(icons->asked == Objects{object});
    QCOMPARE(icons->paints->size(), std::size_t(1));
    IconPaint const &paint = icons->paints->front();
    // The row is 48 high: the icon is centred in it at 4, and moved down by 4.
    QCOMPARE(paint.rect, QRect(3, 8, 40, 40));
    QCOMPARE(paint.mode, QIcon::Normal);
    QCOMPARE(paint.state, QIcon::Off);
}

void tst_ItemList::smallIconIsCentredInItsSquare()
{
    const RefT<NotingIconDB> icons(new NotingIconDB(QSize(10, 20)));
    painted({named("villa")}, icons, 3, 4, 40);
    QCOMPARE(icons->paints->at(0).rect, QRect(3 + 15, 8 + 10, 10, 20));
}

void tst_ItemList::iconsStandInRows()
{
    const RefT<NotingIconDB> icons(new NotingIconDB);
    const RefT<Model> a(new House), b = named("villa");
    painted({a, nullptr, b, a}, icons, 3, 5, 2);
    const int heightA = 2 + 10, heightB = boundOf("villa").height() + 10;
    QVERIFY(heightA < heightB);
    QCOMPARE(icons->paints->size(), std::size_t(3));
    QCOMPARE(icons->paints->at(0).rect, QRect(3, 5 + (heightA - 2) / 2, 2, 2));
    QCOMPARE(icons->paints->at(1).rect, QRect(3, 5 + (heightB - 2) / 2 + heightA, 2, 2));
    QCOMPARE(icons->paints->at(2).rect, QRect(3, 5 + (heightA - 2) / 2 + heightA + heightB, 2, 2));
}

void tst_ItemList::rowWithoutIconKeepsItsRoom()
{
    const RefT<Model> object = named("villa");
    const QImage withoutDB = painted({object, object}, nullptr, 3, 4, 40);
    QCOMPARE(painted({object, object}, new ObjectIconDB, 3, 4, 40), withoutDB);
    QCOMPARE(painted({object, object}, new NotingIconDB, 3, 4, 40), withoutDB);
    QVERIFY(withoutDB != blankImage());
    QCOMPARE(withoutDB.copy(0, 0, 40 + 2 * 3, 200), blankImage().copy(0, 0, 40 + 2 * 3, 200));
}

void tst_ItemList::textLiesBesideTheIcon_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("iconSize");
    QTest::newRow("icon taller") << "villa" << 40;
    QTest::newRow("text taller") << "villa" << 3;
    QTest::newRow("odd difference") << "villa" << 41;
    QTest::newRow("text below the line only") << "__" << 40;
    QTest::newRow("beyond Latin") << QString::fromUtf8("дом") << 16;
}

void tst_ItemList::textLiesBesideTheIcon()
{
    QFETCH(QString, name);
    QFETCH(int, iconSize);
    const int marginX = 7, marginY = 4;
    const QRect bound = boundOf(name.toStdString());
    const int rowHeight = std::max(bound.height(), iconSize) + 2 * marginY;
    QImage expected = blankImage();
    QPainter painter(&expected);
    painter.setFont(listFont());
    painter.drawText(iconSize + 2 * marginX,
                     (rowHeight - bound.height()) / 2 - bound.top() + marginY, "'" + name + "'");
    painter.end();
    QVERIFY(expected != blankImage());
    QCOMPARE(painted({named(name.toStdString())}, nullptr, marginX, marginY, iconSize), expected);
}

void tst_ItemList::rowsFollowEachOther()
{
    const RefT<Model> a = named("villa"), b = named("castle");
    const int rowTop = layout({a}, 3, 4, 30).height();
    const QImage both = painted({a, nullptr, b}, nullptr, 3, 4, 30);
    QCOMPARE(both.copy(0, 0, 400, rowTop), painted({a}, nullptr, 3, 4, 30).copy(0, 0, 400, rowTop));
    QCOMPARE(both.copy(0, rowTop, 400, 100), painted({b}, nullptr, 3, 4, 30).copy(0, 0, 400, 100));
}

void tst_ItemList::paintUsesThePaintersFontAndOrigin()
{
    QFont font = listFont();
    font.setPixelSize(30);
    const RefT<Model> object = named("villa");
    const QRect bound = QFontMetrics(font).boundingRect("'villa'");
    QImage expected = blankImage(), actual = blankImage();
    {
        QPainter painter(&expected);
        painter.setFont(font);
        painter.drawText(100 + 2 * 3, 50 + 4 - bound.top() + 4, "'villa'");
    }
    {
        QPainter painter(&actual);
        painter.setFont(font);
        painter.translate(100, 50);
        paintItemList(painter, {object}, nullptr, "name", false, false, 3, 4, 0);
    }
    QVERIFY(expected != blankImage());
    QCOMPARE(actual, expected);
}

void tst_ItemList::paintLeavesThePainterAsItWas()
{
    QImage image = blankImage();
    QPainter painter(&image);
    painter.setFont(listFont());
    painter.setPen(Qt::red);
    painter.translate(5, 6);
    const QFont font = painter.font();
    paintItemList(painter, {named("villa")}, new NotingIconDB, "name", true, true, 3, 4, 16);
    QCOMPARE(painter.font(), font);
    QCOMPARE(painter.pen().color(), QColor(Qt::red));
    QCOMPARE(painter.transform(), QTransform::fromTranslate(5, 6));
    QVERIFY(!painter.hasClipping());
}

void tst_ItemList::keepsMarginYTwiceAboveTheContent()
{
    const RefT<NotingIconDB> icons(new NotingIconDB);
    const RefT<Model> object = named("villa");
    for (const int marginY : {0, 1, 10}) {
        icons->paints->clear();
        painted({object}, icons, 3, marginY, 40);
        const int rowHeight = layout({object}, 3, marginY, 40).height();
        QCOMPARE(icons->paints->at(0).rect.top(), (rowHeight - 40) / 2 + marginY);
        QCOMPARE(icons->paints->at(0).rect.top(), 2 * marginY);
    }
}

void tst_ItemList::keepsLastRowNearerTheBottomEdge()
{
    const RefT<NotingIconDB> icons(new NotingIconDB);
    const Objects objects = {named("villa"), named("castle")};
    painted(objects, icons, 3, 4, 40);
    const int height = layout(objects, 3, 4, 40).height();
    QCOMPARE(height, 2 * (40 + 2 * 4));
    QCOMPARE(icons->paints->at(0).rect.top(), 2 * 4);
    QCOMPARE(height - (icons->paints->at(1).rect.bottom() + 1), 0);
}

QTEST_MAIN(tst_ItemList)
#include "tst_ItemList.moc"
