#include "support/QtStrings.h"
#include "support/ViewPicture.h"

#include <QFontMetrics>
#include <QLayout>
#include <QTest>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Node = Graph::Node;

namespace {

constexpr QRgb background = PaintScene::background;

QColor colorOf(QObject const &view, char const *name)
{
    return view.property(name).value<QColor>();
}

constexpr char const *colorNames[] = {"colorBg0",        "colorBg1",     "colorBaseNode",
                                      "colorTextNode",   "colorSelNode", "colorRectNode",
                                      "colorRectSelNode"};
constexpr QRgb defaultColors[] = {0xfffff8c8, 0xffffffff, 0xffffffff, 0xff000000,
                                  0xffc0e0ff, 0xff000000, 0xff000000};

/// A sheet that sets one colour, or all of them to the same.
QString sheetOf(QString const &color, QStringList const &names)
{
    QString text = "ZR--VOM--GUI--ObjectGraphView {";
    for (QString const &name : names)
        text += QString(" qproperty-%1: %2;").arg(name, color);
    return text + " }";
}

QStringList allColorNames()
{
    return QStringList(std::begin(colorNames), std::end(colorNames));
}

bool hasDefaultColors(ObjectGraphView const &view)
{
    for (std::size_t i = 0; i < std::size(colorNames); ++i)
        if (colorOf(view, colorNames[i]).rgba() != defaultColors[i])
            return false;
    return true;
}

} // namespace

class tst_GraphStyle : public QObject {
    Q_OBJECT

private slots:
    void init() { QApplication::setStyle(new MeasuredStyle); }
    void cleanup() { qApp->setStyleSheet({}); }

    void styleSheetSetsColours_data();
    void styleSheetSetsColours();
    void styleSheetOfTheViewSetsColours();
    void clearedStyleSheetGivesTheDefaultsBack();
    void styleChangeWithoutASheetGivesTheDefaultsBack();
    void darkStyleSheetMakesADarkPicture();
    void styleChangeDoesNotReachTheBase();
    void fontChangeMeasuresAllNodesAgain();
    void rightToLeftLeavesXToTheRight();
};

void tst_GraphStyle::styleSheetSetsColours_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("before");
    for (std::size_t i = 0; i < std::size(colorNames); ++i)
        for (bool before : {true, false})
            QTest::addRow("%s, set %s the view is made", colorNames[i], before ? "before" : "after")
                << int(i) << before;
}

void tst_GraphStyle::styleSheetSetsColours()
{
    QFETCH(int, index);
    QFETCH(bool, before);
    char const *const name = colorNames[index];
    const QString sheet = sheetOf("#123456", {name});
    if (before)
        qApp->setStyleSheet(sheet);
    ObjectGraphView view;
    view.ensurePolished();
    if (!before)
        qApp->setStyleSheet(sheet);
    for (std::size_t i = 0; i < std::size(colorNames); ++i)
        QCOMPARE(colorOf(view, colorNames[i]).rgba(),
                 int(i) == index ? 0xff123456 : defaultColors[i]);
    // A sheet that comes after it holds instead.
    qApp->setStyleSheet(sheetOf("#654321", {name}));
    QCOMPARE(colorOf(view, name).rgba(), 0xff654321);
}

void tst_GraphStyle::styleSheetOfTheViewSetsColours()
{
    ObjectGraphView view;
    view.setStyleSheet(sheetOf("#123456", allColorNames()));
    view.ensurePolished();
    for (char const *name : colorNames)
        QCOMPARE(colorOf(view, name).rgba(), 0xff123456);
}

void tst_GraphStyle::clearedStyleSheetGivesTheDefaultsBack()
{
    ObjectGraphView view;
    view.ensurePolished();
    qApp->setStyleSheet(sheetOf("#123456", allColorNames()));
    QVERIFY(!hasDefaultColors(view));
    // A sheet that says nothing of the colours leaves them.
    qApp->setStyleSheet("QLabel { color: red }");
    QCOMPARE(colorOf(view, "colorBg0").rgba(), 0xff123456);
    qApp->setStyleSheet({});
    QVERIFY(hasDefaultColors(view));
}

void tst_GraphStyle::styleChangeWithoutASheetGivesTheDefaultsBack()
{
    ObjectGraphView view;
    for (char const *name : colorNames)
        setColor(view, name, Qt::red);
    QEvent other(QEvent::PaletteChange);
    QApplication::sendEvent(&view, &other);
    QCOMPARE(colorOf(view, "colorBg1"), QColor(Qt::red));

    QEvent event(QEvent::StyleChange);
    qApp->setStyleSheet("QLabel { color: red }");
    for (char const *name : colorNames)
        setColor(view, name, Qt::red);
    QApplication::sendEvent(&view, &event);
    for (char const *name : colorNames)
        QCOMPARE(colorOf(view, name), QColor(Qt::red));

    qApp->setStyleSheet({});
    for (char const *name : colorNames)
        setColor(view, name, Qt::red);
    QApplication::sendEvent(&view, &event);
    QVERIFY(hasDefaultColors(view));
}

void tst_GraphStyle::darkStyleSheetMakesADarkPicture()
{
    qApp->setStyleSheet("* { background-color: #202020; color: #f0f0f0 }"
                        "ZR--VOM--GUI--ObjectGraphView { qproperty-colorBg0: #303030;"
                        " qproperty-colorBg1: #303030; qproperty-colorBaseNode: #101010;"
                        " qproperty-colorTextNode: #f0f0f0; qproperty-colorRectNode: #808080 }");
    ObjectGraphView view;
    const Things ab = makeThings("ab");
    view.add(ab, false);
    view.setVisible(ab, true);
    view.setPos(ab[0], 100, 100, false);
    view.setPos(ab[1], 250, 200, false);
    Access::link(view, *Access::node(view, ab[0]), *Access::node(view, ab[1]), 1);
    view.resize(400, 400);
    const QImage picture = pictureOf(view);
    const QPoint scroll(view.horizontalScrollBar()->value(), view.verticalScrollBar()->value());
    Node const &a = *Access::node(view, ab[0]);
    const QRect box = boxOf(view, a).translated(-scroll);
    QCOMPARE(picture.pixel(1, 1), 0xff303030);
    QCOMPARE(picture.pixel(picture.width() - 2, picture.height() - 2), 0xff303030);
    QCOMPARE(picture.pixel(box.topLeft()), 0xff808080);
    QCOMPARE(picture.pixel(box.topLeft() + QPoint(1, 1)), 0xff101010);
    // Text and the link are light, and nothing else is.
    const auto numLight = [&](QRect const &area) {
        int num = 0;
        for (int y = area.top(); y <= area.bottom(); ++y)
            for (int x = area.left(); x <= area.right(); ++x)
                num += qGray(picture.pixel(x, y)) > 0x90;
        return num;
    };
    const QRect text =
        QRect(a.x + a.textX, a.y + a.textY, a.textWidth, a.textHeight).translated(-scroll);
    QVERIFY(numLight(text) > 5);
    QCOMPARE(numLight(box), numLight(text));
    QVERIFY(numLight(picture.rect()) > 2 * numLight(text) + 50);
    QVERIFY(numLight(picture.rect()) < 2000);
}

void tst_GraphStyle::styleChangeDoesNotReachTheBase()
{
    /// Counts what its child asks of its layout.
    class Parent : public QWidget {
    public:
        Parent()
        {
            setLayout(new QHBoxLayout);
            show();
        }
        /// How often the child asks for another layout when it gets an event.
        int numRequests(QWidget &child, QEvent::Type type)
        {
            QCoreApplication::sendPostedEvents(this, QEvent::LayoutRequest);
            num = 0;
            QEvent event(type);
            QApplication::sendEvent(&child, &event);
            QCoreApplication::sendPostedEvents(this, QEvent::LayoutRequest);
            return num;
        }

    protected:
        bool event(QEvent *event) override
        {
            num += event->type() == QEvent::LayoutRequest;
            return QWidget::event(event);
        }

    private:
        int num = 0;
    };
    Parent parent;
    auto *const view = new ObjectGraphView;
    auto *const other = new QAbstractScrollArea;
    for (QWidget *child : std::initializer_list<QWidget *>{view, other})
        parent.layout()->addWidget(child);
    QVERIFY(QTest::qWaitForWindowExposed(&parent));
    QVERIFY(parent.numRequests(*other, QEvent::StyleChange) > 0);
    QCOMPARE(parent.numRequests(*view, QEvent::StyleChange), 0);
    // Other types do reach it.
    QVERIFY(parent.numRequests(*view, QEvent::FontChange) > 0);
}

void tst_GraphStyle::fontChangeMeasuresAllNodesAgain()
{
    PaintScene scene("ab");
    scene.place('a', {100, 100});
    scene.place('b', {100, 200});
    scene.node('b').visible = false;
    const int before = scene.node('a').textWidth;
    QFont font = scene.view.font();
    font.setPixelSize(50);
    const Asked asked = askedBy(scene.view, [&] { scene.view.setFont(font); });
    QVERIFY(asked.repaint && asked.bounds);
    QVERIFY(scene.node('a').sizeDirty && scene.node('b').sizeDirty);
    Access::boundsStale(scene.view) = true;
    pictureOf(scene.view);
    QCOMPARE(scene.node('a').textWidth,
             QFontMetrics(font).size(0, scene.node('a').watch->label).width());
    QVERIFY(scene.node('a').textWidth > before);
    QVERIFY(scene.node('b').sizeDirty);

    // A font may also come from outside.
    QWidget parent;
    scene.view.setFont(QFont());
    scene.view.setParent(&parent);
    font.setPixelSize(70);
    parent.setFont(font);
    QVERIFY(scene.node('a').sizeDirty);
    scene.view.setParent(nullptr);
}

void tst_GraphStyle::rightToLeftLeavesXToTheRight()
{
    PaintScene scene("ab");
    scene.place('a', {100, 100});
    scene.place('b', {600, 220});
    scene.link('a', 'b');
    const QImage leftToRight = scene.paint();
    scene.view.setLayoutDirection(Qt::RightToLeft);
    QCOMPARE(differenceOf(scene.paint(), leftToRight), QRect());

    // Bars, too: theirs runs from the left, and scrolling to the right moves the drawing left.
    scene.view.setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    Access::boundsStale(scene.view) = true;
    pictureOf(scene.view);
    QScrollBar &bar = *scene.view.horizontalScrollBar();
    QVERIFY(bar.maximum() > bar.minimum());
    QVERIFY(!bar.isRightToLeft());
    bar.setValue(bar.minimum());
    QCOMPARE(otherThan(background, pictureOf(scene.view)).left(), 8);
}

QTEST_MAIN(tst_GraphStyle)
#include "tst_GraphStyle.moc"
