#include "support/QtStrings.h"
#include "support/ViewPicture.h"

#include <QPainter>
#include <QStyleOption>
#include <QTest>

#include <functional>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Node = Graph::Node;

namespace {

constexpr QRgb background = PaintScene::background;

QIcon squareIcon(int edge, QColor const &color)
{
    QPixmap pixmap(edge, edge);
    pixmap.fill(color);
    return QIcon(pixmap);
}

/// Lets a test paint over icons as a derived class would.
class HookedView : public ObjectGraphView {
public:
    std::function<void(PtrT<Object> const &, QPainter &, QRect)> hook;

protected:
    void onPaintNodeIcon(PtrT<Object> const &obj, QPainter &painter, int x, int y, int w,
                         int h) override
    {
        if (hook)
            hook(obj, painter, QRect(x, y, w, h));
    }
};

/// Notes how arrows are asked for.
class ArrowNotes : public QProxyStyle {
public:
    struct Note {
        QRect rect;
        QStyle::State state;
        int version, type;
        QTransform transform;
        QWidget const *widget;
        QPalette palette;
    };
    ArrowNotes()
        : QProxyStyle("fusion")
    {
    }
    void drawPrimitive(PrimitiveElement element, QStyleOption const *option, QPainter *painter,
                       QWidget const *widget) const override
    {
        if (element == PE_IndicatorArrowRight)
            notes.push_back({option->rect, option->state, option->version, option->type,
                             painter->transform(), widget, option->palette});
        else
            QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
    mutable std::vector<Note> notes;
};

} // namespace

class tst_Painting : public QObject {
    Q_OBJECT

private slots:
    void init() { QApplication::setStyle(new MeasuredStyle); }

    void backgroundRunsFromTopToBottomOfTheWidget_data();
    void backgroundRunsFromTopToBottomOfTheWidget();
    void backgroundDoesNotScroll();
    void disabledViewTakesTheFirstColourFromThePalette();

    void boxLiesBetweenTheBands_data();
    void boxLiesBetweenTheBands();
    void boxHasTheColoursOfItsSelection_data();
    void boxHasTheColoursOfItsSelection();
    void textStandsBesideTheIcon();
    void enormousLabelsArePainted();
    void laterNodesCoverEarlierOnes();

    void iconFillsItsSquare_data();
    void iconFillsItsSquare();
    void iconIsPaintedNormalInADisabledView();
    void hookAndListenersPaintOverTheIcon();
    void hookIsCalledWithoutAnIcon();
    void hookDoesNotChangeTheRestOfTheNode();
    void hookIsLeftOutWithItsSquareOffScreen_data();
    void hookIsLeftOutWithItsSquareOffScreen();

    void arrowsTellOfHiddenNeighbours_data();
    void arrowsTellOfHiddenNeighbours();
    void arrowsPointAwayFromTheBox();
    void arrowsAreTheStyles();
    void arrowsComeAndGoWithTheNeighbours();

    void nodesOffScreenAreLeftAlone_data();
    void nodesOffScreenAreLeftAlone();
    void nodesUnderTheFrameAreNotOffScreen();
    void nodesOffScreenKeepStaleArrows();
    void hiddenNodesAreNotPainted();
    void intermediateNodeByItselfIsPaintedHalfANodeHeightTooHigh_data();
    void intermediateNodeByItselfIsPaintedHalfANodeHeightTooHigh();
};

void tst_Painting::backgroundRunsFromTopToBottomOfTheWidget_data()
{
    QTest::addColumn<QColor>("top");
    QTest::addColumn<QColor>("bottom");
    QTest::addColumn<int>("frame");
    QTest::newRow("black to white") << QColor(Qt::black) << QColor(Qt::white) << 0;
    QTest::newRow("white to black") << QColor(Qt::white) << QColor(Qt::black) << 0;
    QTest::newRow("mixed") << QColor(200, 0, 50) << QColor(0, 255, 50) << 0;
    // The gradient's length is the height of the widget, and not of the viewport in its frame.
    QTest::newRow("in a frame") << QColor(Qt::black) << QColor(Qt::white) << 20;
}

void tst_Painting::backgroundRunsFromTopToBottomOfTheWidget()
{
    QFETCH(QColor, top);
    QFETCH(QColor, bottom);
    QFETCH(int, frame);
    ObjectGraphView view;
    view.setFrameStyle(frame == 0 ? int(QFrame::NoFrame) : QFrame::Box | QFrame::Plain);
    view.setLineWidth(frame);
    view.resize(90, 240);
    setColor(view, "colorBg0", top);
    setColor(view, "colorBg1", bottom);
    const QImage picture = pictureOf(view);
    QCOMPARE(picture.size(), QSize(90 - 2 * frame, 240 - 2 * frame));
    for (int y = 0; y < picture.height(); ++y) {
        const double way = (y + 0.5) / 240;
        const QColor found(picture.pixel(0, y));
        const auto isNear = [&](int a, int b, int value) {
            return std::abs(a + (b - a) * way - value) <= 2;
        };
        QVERIFY2(isNear(top.red(), bottom.red(), found.red()) &&
                     isNear(top.green(), bottom.green(), found.green()) &&
                     isNear(top.blue(), bottom.blue(), found.blue()),
                 qPrintable(QString("%1 in row %2").arg(found.name()).arg(y)));
        QVERIFY(isAll(picture, QRect(0, y, picture.width(), 1), found.rgb()));
    }
}

void tst_Painting::backgroundDoesNotScroll()
{
    PaintScene scene("");
    setColor(scene.view, "colorBg0", Qt::black);
    const QImage before = scene.paint();
    scene.scrollTo({1234, -567});
    QCOMPARE(scene.paint(), before);
}

void tst_Painting::disabledViewTakesTheFirstColourFromThePalette()
{
    PaintScene scene("");
    setColor(scene.view, "colorBg0", Qt::black);
    setColor(scene.view, "colorBg1", Qt::blue);
    QPalette palette = scene.view.palette();
    palette.setColor(QPalette::Active, QPalette::Window, Qt::white);
    palette.setColor(QPalette::Inactive, QPalette::Window, Qt::white);
    palette.setColor(QPalette::Disabled, QPalette::Window, Qt::green);
    scene.view.setPalette(palette);
    const QImage enabled = scene.paint();
    scene.view.setEnabled(false);
    const QImage disabled = scene.paint();

    PaintScene expected("");
    setColor(expected.view, "colorBg0", Qt::green);
    setColor(expected.view, "colorBg1", Qt::blue);
    QCOMPARE(disabled, expected.paint());
    scene.view.setEnabled(true);
    QCOMPARE(scene.paint(), enabled);
    setColor(expected.view, "colorBg0", Qt::black);
    QCOMPARE(enabled, expected.paint());
}

void tst_Painting::boxLiesBetweenTheBands_data()
{
    QTest::addColumn<QPoint>("pos");
    QTest::addColumn<QSize>("text");
    QTest::addColumn<QPoint>("scroll");
    QTest::addColumn<QRect>("box"); // On the viewport.
    const auto row = [](char const *name, QPoint const &pos, QSize const &text,
                        QPoint const &scroll,
                        QRect const &box) { QTest::newRow(name) << pos << text << scroll << box; };
    row("even", {100, 100}, {30, 15}, {}, {70, 86, 60, 28});
    row("odd width", {100, 100}, {31, 15}, {}, {70, 86, 61, 28});
    row("odd height", {100, 100}, {30, 41}, {}, {70, 78, 60, 45});
    row("scrolled", {100, 100}, {30, 15}, {-20, 33}, {90, 53, 60, 28});
    row("at negative coordinates", {-100, -201}, {31, 15}, {-200, -300}, {70, 85, 61, 28});
    row("no text", {100, 100}, {0, 0}, {}, {85, 86, 30, 28});
}

void tst_Painting::boxLiesBetweenTheBands()
{
    QFETCH(QPoint, pos);
    QFETCH(QSize, text);
    QFETCH(QPoint, scroll);
    QFETCH(QRect, box);
    PaintScene scene("a");
    scene.place('a', pos, text);
    scene.scrollTo(scroll);
    const QImage picture = scene.paint();
    // The outline's right and lower lines lie just outside of the box.
    const QRect outline = box.adjusted(0, 0, 1, 1);
    QCOMPARE(otherThan(background, picture), outline);
    const QRgb black = QColor(Qt::black).rgb();
    QVERIFY(isAll(picture, QRect(outline.left(), outline.top(), outline.width(), 1), black));
    QVERIFY(isAll(picture, QRect(outline.left(), outline.bottom(), outline.width(), 1), black));
    QVERIFY(isAll(picture, QRect(outline.left(), outline.top(), 1, outline.height()), black));
    QVERIFY(isAll(picture, QRect(outline.right(), outline.top(), 1, outline.height()), black));
    QVERIFY(isAll(picture, outline.adjusted(1, 1, -1, -1), QColor(Qt::white).rgb()));
}

void tst_Painting::boxHasTheColoursOfItsSelection_data()
{
    QTest::addColumn<bool>("selected");
    QTest::addColumn<QColor>("inner");
    QTest::addColumn<QColor>("outline");
    QTest::newRow("not selected") << false << QColor(1, 2, 3) << QColor(0, 250, 0);
    QTest::newRow("selected") << true << QColor(4, 5, 6) << QColor(0, 0, 250);
}

void tst_Painting::boxHasTheColoursOfItsSelection()
{
    QFETCH(bool, selected);
    QFETCH(QColor, inner);
    QFETCH(QColor, outline);
    PaintScene scene("W");
    setColor(scene.view, "colorBaseNode", QColor(1, 2, 3));
    setColor(scene.view, "colorSelNode", QColor(4, 5, 6));
    setColor(scene.view, "colorRectNode", QColor(0, 250, 0));
    setColor(scene.view, "colorRectSelNode", QColor(0, 0, 250));
    setColor(scene.view, "colorTextNode", QColor(250, 5, 5));
    Node const &node = scene.place('W', {100, 100});
    if (selected)
        scene.view.setSel({scene.obj('W')});
    const QImage picture = scene.paint();
    const QRect box = boxOf(scene.view, node);
    QCOMPARE(picture.pixel(box.topLeft()), outline.rgb());
    QCOMPARE(picture.pixel(box.bottomRight() + QPoint(1, 1)), outline.rgb());
    const QRect inside = box.adjusted(1, 1, 0, 0);
    QCOMPARE(picture.pixel(inside.topLeft()), inner.rgb());
    QCOMPARE(picture.pixel(inside.bottomRight()), inner.rgb());

    const QRect text = otherThan(inner.rgb(), picture.copy(inside)).translated(inside.topLeft());
    QVERIFY(text.isValid());
    QVERIFY(
        QRect(100 + node.textX, 100 + node.textY, node.textWidth, node.textHeight).contains(text));
    int mostRed = 0;
    for (int y = text.top(); y <= text.bottom(); ++y) {
        for (int x = text.left(); x <= text.right(); ++x) {
            mostRed = std::max(mostRed, qRed(picture.pixel(x, y)));
            QVERIFY(qGreen(picture.pixel(x, y)) <= 5 && qBlue(picture.pixel(x, y)) <= 6);
        }
    }
    QVERIFY(mostRed > 150);
}

void tst_Painting::textStandsBesideTheIcon()
{
    PaintScene scene("W");
    scene.setLabel('W', "Wg&W\ng");
    setColor(scene.view, "colorTextNode", Qt::red);
    Node const &node = scene.place('W', {150, 100});
    const QImage picture = scene.paint();
    const QString label = node.watch->label;

    QSize const text(node.textWidth, node.textHeight);
    scene.place('W', {150, 100}, text);
    QImage expected = scene.paint();
    {
        QPainter painter(&expected);
        painter.setFont(scene.view.font());
        painter.setPen(Qt::red);
        painter.drawText(QRect(QPoint(150 + node.textX, 100 + node.textY), text), 0, label);
    }
    QVERIFY(differenceOf(picture, scene.paint()).isValid());
    QCOMPARE(differenceOf(picture, expected), QRect());
}

void tst_Painting::enormousLabelsArePainted()
{
    PaintScene scene("ab");
    scene.setLabel('a', std::string(1000000, 'W'));
    Node const &node = scene.place('a', {150, 100});
    scene.place('b', {150, 220});
    QVERIFY(node.width > 100000);
    for (int x : {node.x - node.width / 2 - 20, 0, node.x + node.width / 2 - 100}) {
        scene.scrollTo({x, 0});
        const QImage picture = scene.paint();
        const QRect box = boxOf(scene.view, node).translated(-scene.scroll);
        const QRect inside = box.adjusted(1, 1, 0, 0).intersected(picture.rect());
        QVERIFY(otherThan(QColor(Qt::white).rgb(), picture.copy(inside)).width() >
                inside.width() / 2);
        QCOMPARE(otherThan(background, picture.copy(0, 0, 300, 180)),
                 box.adjusted(0, 0, 1, 1).intersected(picture.rect()));
    }
    // It's measured again at each change, and the scroll range holds it.
    Access::boundsStale(scene.view) = true;
    pictureOf(scene.view);
    QCOMPARE(scene.view.horizontalScrollBar()->minimum(), node.x - node.width / 2 - 8);
}

void tst_Painting::laterNodesCoverEarlierOnes()
{
    PaintScene scene("ab");
    scene.place('a', {100, 100}, {80, 15});
    scene.place('b', {120, 110}, {80, 15});
    const std::vector<RefT<Node>> nodes = Access::nodes(scene.view);
    QRect under = boxOf(scene.view, *nodes[0]);
    QRect over = boxOf(scene.view, *nodes[1]);
    setColor(scene.view, "colorBaseNode", Qt::green);
    setColor(scene.view, "colorSelNode", Qt::blue);
    nodes[1]->selected = true;
    const QImage picture = scene.paint();
    // Where both boxes are, away from icons' places and text.
    const QRect both = under.adjusted(2, 2, -2, -2) & over.adjusted(2, 2, -2, -2);
    QVERIFY(both.isValid());
    QCOMPARE(picture.pixel(both.topLeft()), QColor(Qt::blue).rgb());
    QCOMPARE(picture.pixel(both.bottomRight()), QColor(Qt::blue).rgb());
}

void tst_Painting::iconFillsItsSquare_data()
{
    QTest::addColumn<int>("edge");
    QTest::addColumn<QRect>("painted");
    // A node at (100, 100) with a text 30 wide.
    QTest::newRow("of the right size") << 24 << QRect(72, 88, 24, 24);
    QTest::newRow("larger") << 64 << QRect(72, 88, 24, 24);
    QTest::newRow("smaller, in the middle") << 8 << QRect(80, 96, 8, 8);
}

void tst_Painting::iconFillsItsSquare()
{
    QFETCH(int, edge);
    QFETCH(QRect, painted);
    PaintScene scene("a");
    Node const &node = scene.place('a', {100, 100}, {30, 15});
    node.watch->icon = squareIcon(edge, Qt::red);
    const QImage picture = scene.paint();
    QVERIFY(isAll(picture, painted, QColor(Qt::red).rgb()));
    const QRect inside = boxOf(scene.view, node).adjusted(1, 1, 0, 0);
    QCOMPARE(otherThan(QColor(Qt::white).rgb(), picture.copy(inside)).translated(inside.topLeft()),
             painted);
}

void tst_Painting::iconIsPaintedNormalInADisabledView()
{
    PaintScene scene("a");
    scene.place('a', {100, 100}, {30, 15}).watch->icon = squareIcon(24, Qt::red);
    scene.view.setEnabled(false);
    QVERIFY(isAll(scene.paint(), QRect(72, 88, 24, 24), QColor(Qt::red).rgb()));
}

void tst_Painting::hookAndListenersPaintOverTheIcon()
{
    HookedView view;
    const Things a = makeThings("a");
    view.add(a, false);
    view.resize(300, 300);
    Node &node = *Access::node(view, a[0]);
    node.watch->icon = squareIcon(24, Qt::red);
    view.setVisible(a, true);
    view.setPos(a[0], 100, 100, false);
    pictureOf(view);
    const QPoint corner =
        QPoint(100 + node.iconX, 100 + node.iconY) -
        QPoint(view.horizontalScrollBar()->value(), view.verticalScrollBar()->value());
    const QRect square(corner, QSize(24, 24));

    // Each paints over what came before, and leaves a stripe of it.
    std::string order;
    view.hook = [&](PtrT<VOM::Object> const &obj, QPainter &painter, QRect rect) {
        order += "hook ";
        QCOMPARE(obj.get(), a[0].get());
        QCOMPARE(rect, square);
        painter.fillRect(rect.adjusted(8, 0, 0, 0), Qt::green);
    };
    view.sigPaintNodeIcon.connect([&](ObjectGraphView::SigPaintNodeIconData const &data) {
        order += "listener ";
        QCOMPARE(data.obj->get(), a[0].get());
        QCOMPARE(QRect(data.x, data.y, data.w, data.h), square);
        data.painter->fillRect(square.adjusted(16, 0, 0, 0), Qt::blue);
    });
    const QImage picture = pictureOf(view);
    QCOMPARE(order, "hook listener "s);
    QVERIFY(isAll(picture, QRect(corner, QSize(8, 24)), QColor(Qt::red).rgb()));
    QVERIFY(isAll(picture, QRect(corner + QPoint(8, 0), QSize(8, 24)), QColor(Qt::green).rgb()));
    QVERIFY(isAll(picture, QRect(corner + QPoint(16, 0), QSize(8, 24)), QColor(Qt::blue).rgb()));
}

void tst_Painting::hookIsCalledWithoutAnIcon()
{
    PaintScene scene("ab");
    scene.place('a', {100, 100});
    scene.place('b', {100, 200});
    scene.node('b').visible = false;
    std::vector<QRect> squares;
    scene.view.sigPaintNodeIcon.connect([&](ObjectGraphView::SigPaintNodeIconData const &data) {
        QCOMPARE(data.obj->get(), scene.obj('a').get());
        squares.emplace_back(data.x, data.y, data.w, data.h);
    });
    scene.paint();
    Node const &a = scene.node('a');
    QVERIFY(a.watch->icon.isNull());
    QCOMPARE(squares, (std::vector<QRect>{{100 + a.iconX, 100 + a.iconY, 24, 24}}));
}

void tst_Painting::hookDoesNotChangeTheRestOfTheNode()
{
    PaintScene scene("abc");
    scene.place('a', {100, 100});
    scene.place('b', {100, 200});
    scene.link('a', 'c');
    scene.link('c', 'b');
    scene.node('c').visible = false;
    const QImage before = scene.paint();
    scene.view.sigPaintNodeIcon.connect([&](ObjectGraphView::SigPaintNodeIconData const &data) {
        data.painter->setPen(QPen(Qt::red, 5));
        data.painter->setClipRect(0, 0, 1, 1);
        data.painter->translate(7, 7);
        data.painter->setOpacity(0.5);
        data.painter->setFont(QFont("DejaVu Sans", 40));
    });
    QCOMPARE(differenceOf(scene.paint(), before), QRect());
}

void tst_Painting::hookIsLeftOutWithItsSquareOffScreen_data()
{
    QTest::addColumn<QPoint>("pos");
    QTest::addColumn<bool>("called");
    const auto row = [](char const *name, QPoint const &pos, bool called) {
        QTest::newRow(name) << pos << called;
    };
    // A node 60 x 76 in a view 200 x 150; the square's corner stands at (-28, -12) of the centre.
    row("touching on the left", {4, 75}, true);
    row("left", {3, 75}, false);
    row("touching at the top", {100, -12}, true);
    row("above", {100, -13}, false);
    row("last column", {227, 75}, true);
    row("right", {228, 75}, false);
    row("last row", {100, 161}, true);
    row("below", {100, 162}, false);
}

void tst_Painting::hookIsLeftOutWithItsSquareOffScreen()
{
    QFETCH(QPoint, pos);
    QFETCH(bool, called);
    PaintScene scene("a", {200, 150});
    scene.place('a', pos, {30, 15});
    int numCalls = 0;
    scene.view.sigPaintNodeIcon.connect([&](auto const &) { ++numCalls; });
    scene.paint();
    QCOMPARE(numCalls, called ? 1 : 0);
    // The same, scrolled.
    scene.place('a', pos + QPoint(-1000, 300), {30, 15});
    scene.scrollTo({-1000, 300});
    scene.paint();
    QCOMPARE(numCalls, called ? 2 : 0);
}

void tst_Painting::arrowsTellOfHiddenNeighbours_data()
{
    QTest::addColumn<std::string>("links"); // a stands in the view, v is visible, h and i hidden.
    QTest::addColumn<bool>("up");
    QTest::addColumn<bool>("down");
    const auto row = [](char const *name, std::string const &links, bool up, bool down) {
        QTest::newRow(name) << links << up << down;
    };
    row("no links", "", false, false);
    row("links with visible ones", "va av", false, false);
    row("link from a hidden one", "ha", true, false);
    row("link to a hidden one", "ah", false, true);
    row("both ways with one hidden", "ha ah", true, true);
    row("from one and to another", "ha ai", true, true);
    row("some of them visible", "va ha av", true, false);
    row("self-link", "aa", false, false);
    row("hidden ones beyond the neighbours", "vh hv hi", false, false);
}

void tst_Painting::arrowsTellOfHiddenNeighbours()
{
    QFETCH(std::string, links);
    QFETCH(bool, up);
    QFETCH(bool, down);
    PaintScene scene("avhi");
    Node const &a = scene.place('a', {100, 100});
    for (char far : {'v', 'h', 'i'})
        scene.place(far, {3000, 3000}); // Out of sight.
    for (QString const &link : QString::fromStdString(links).split(' ', Qt::SkipEmptyParts))
        scene.link(link[0].toLatin1(), link[1].toLatin1());
    // Lines have the colour of the background here.
    QPalette palette = scene.view.palette();
    palette.setColor(QPalette::WindowText, QColor(background));
    palette.setColor(QPalette::Text, QColor(background));
    scene.view.viewport()->setPalette(palette);
    const QImage before = scene.paint();
    QVERIFY(!a.hiddenIn && !a.hiddenOut);
    scene.node('h').visible = scene.node('i').visible = false;
    const QImage picture = scene.paint();
    QCOMPARE(a.hiddenIn, up);
    QCOMPARE(a.hiddenOut, down);

    const QRect upper(100 - 14, 100 - 38, 24, 24);
    const QRect lower(100 - 14, 100 + 14, 24, 24);
    const int border = boxOf(scene.view, a).center().y();
    const QRect above(0, 0, 300, border);
    const QRect below(0, border, 300, 300 - border);
    const QRect upArrow = differenceOf(picture.copy(above), before.copy(above));
    const QRect downArrow =
        differenceOf(picture.copy(below), before.copy(below)).translated(below.topLeft());
    QCOMPARE(upArrow.isValid(), up);
    QCOMPARE(downArrow.isValid(), down);
    QVERIFY(!up || upper.contains(upArrow));
    QVERIFY(!down || lower.contains(downArrow));
}

void tst_Painting::arrowsPointAwayFromTheBox()
{
    PaintScene scene("ah");
    scene.place('a', {100, 100});
    scene.link('a', 'h');
    scene.link('h', 'a');
    scene.node('h').visible = false;
    const QImage picture = scene.paint();
    const auto widthOfRow = [&](int y) {
        return otherThan(background, picture.copy(0, y, 300, 1)).width();
    };
    std::vector<int> upper, lower;
    for (int y = 0; y < 24; ++y) {
        if (widthOfRow(100 - 38 + y) > 0)
            upper.push_back(widthOfRow(100 - 38 + y));
        if (y > 0 && widthOfRow(100 + 14 + y) > 0) // The outline's lower line is in the first row.
            lower.push_back(widthOfRow(100 + 14 + y));
    }
    QVERIFY(upper.size() > 2 && lower.size() > 2);
    QVERIFY(std::is_sorted(upper.begin(), upper.end()) && upper.front() < upper.back());
    QVERIFY(std::is_sorted(lower.rbegin(), lower.rend()) && lower.front() > lower.back());
}

void tst_Painting::arrowsAreTheStyles()
{
    PaintScene scene("ah");
    Node const &a = scene.place('a', {100, 100});
    scene.link('a', 'h');
    scene.link('h', 'a');
    scene.node('h').visible = false;
    ArrowNotes style;
    scene.view.setStyle(&style);
    scene.scrollTo({-20, 5});
    scene.paint();
    QCOMPARE(style.notes.size(), std::size_t(2));
    const auto turned = [](QPoint pos, double degrees) {
        return QTransform().translate(pos.x(), pos.y()).rotate(degrees);
    };
    QCOMPARE(style.notes[0].transform, turned({120 - 14, 95 + a.topY + 24}, -90));
    QCOMPARE(style.notes[1].transform, turned({120 - 14 + 24, 95 + a.bottomY}, 90));
    for (ArrowNotes::Note const &note : style.notes) {
        QCOMPARE(note.rect.topLeft(), QPoint(0, 0));
        QCOMPARE(note.rect.bottomRight(), QPoint(23, 23));
        QCOMPARE(note.state, QStyle::State(QStyle::State_Children));
        QCOMPARE(note.version, 1);
        QCOMPARE(note.type, int(QStyleOption::SO_Default));
        QCOMPARE(note.widget, nullptr);
        QCOMPARE(note.palette, scene.view.palette());
    }
    scene.view.setStyle(nullptr);
}

void tst_Painting::arrowsComeAndGoWithTheNeighbours()
{
    PaintScene scene("ah");
    Node const &a = scene.place('a', {100, 100});
    scene.place('h', {3000, 100});
    const QImage alone = scene.paint();
    scene.link('h', 'a');
    const QImage without = scene.paint();
    scene.view.setVisible({scene.obj('h')}, false);
    const QImage with = scene.paint();
    QVERIFY(a.hiddenIn);
    QVERIFY(differenceOf(with, without).isValid());
    scene.node('h').visible = true;
    QVERIFY(a.hiddenIn); // Worked out at the next paint.
    QCOMPARE(differenceOf(scene.paint(), without), QRect());
    QVERIFY(!a.hiddenIn);
    scene.view.setVisible({scene.obj('h')}, false);
    scene.paint();
    QVERIFY(a.hiddenIn);
    scene.view.remove({scene.obj('h')});
    QCOMPARE(differenceOf(scene.paint(), alone), QRect());
    QVERIFY(!a.hiddenIn);
}

void tst_Painting::nodesOffScreenAreLeftAlone_data()
{
    QTest::addColumn<QPoint>("pos");
    QTest::addColumn<bool>("painted");
    const auto row = [](char const *name, QPoint const &pos, bool painted) {
        QTest::newRow(name) << pos << painted;
    };
    // A node 60 x 76 in a view 200 x 150, bands included.
    row("in the middle", {100, 75}, true);
    row("touching on the left", {-30, 75}, true);
    row("left", {-31, 75}, false);
    row("touching at the top", {100, -38}, true);
    row("above", {100, -39}, false);
    row("last column", {229, 75}, true);
    row("right", {230, 75}, false);
    row("last row", {100, 187}, true);
    row("below", {100, 188}, false);
    row("far away", {ObjectGraphView::maxPos, -ObjectGraphView::maxPos}, false);
}

void tst_Painting::nodesOffScreenAreLeftAlone()
{
    QFETCH(QPoint, pos);
    QFETCH(bool, painted);
    PaintScene scene("ah", {200, 150});
    Node const &a = scene.place('a', pos, {30, 15});
    scene.link('a', 'h');
    scene.node('h').visible = false;
    scene.paint();
    QCOMPARE(a.hiddenOut, painted);
}

void tst_Painting::nodesUnderTheFrameAreNotOffScreen()
{
    // What counts is the size of the widget, which the viewport is smaller than.
    PaintScene scene("ah", {200, 150});
    scene.view.setFrameStyle(QFrame::Box | QFrame::Plain);
    scene.view.setLineWidth(30);
    pictureOf(scene.view);
    QCOMPARE(scene.view.viewport()->size(), QSize(140, 90));
    Node const &a = scene.place('a', {229, 187}, {30, 15});
    scene.link('a', 'h');
    scene.node('h').visible = false;
    scene.paint();
    QVERIFY(a.hiddenOut);
}

void tst_Painting::nodesOffScreenKeepStaleArrows()
{
    PaintScene scene("ahi");
    Node const &a = scene.place('a', {100, 100});
    scene.place('h', {3000, 3000});
    scene.place('i', {3000, 3000});
    scene.link('h', 'a');
    scene.link('a', 'i');
    scene.node('h').visible = false;
    scene.paint();
    QVERIFY(a.hiddenIn && !a.hiddenOut);
    std::swap(scene.node('h').visible, scene.node('i').visible);
    scene.scrollTo({1000, 0});
    scene.paint();
    QVERIFY(a.hiddenIn && !a.hiddenOut);
    scene.scrollTo({0, 0});
    scene.paint();
    QVERIFY(!a.hiddenIn && a.hiddenOut);
}

void tst_Painting::hiddenNodesAreNotPainted()
{
    PaintScene scene("ab");
    scene.place('a', {100, 100});
    scene.place('b', {100, 200});
    QVERIFY(otherThan(background, scene.paint()).isValid());
    scene.view.setVisible({scene.obj('a'), scene.obj('b')}, false);
    QCOMPARE(otherThan(background, scene.paint()), QRect());
}

void tst_Painting::intermediateNodeByItselfIsPaintedHalfANodeHeightTooHigh_data()
{
    QTest::addColumn<QPoint>("pos");
    QTest::addColumn<QRect>("line");
    const auto row = [](char const *name, QPoint const &pos, QRect const &line) {
        QTest::newRow(name) << pos << line;
    };
    // Height 76, half of it 38, the bands' inner ends at -14 and 14 of the centre.
    row("in the middle", {100, 100}, {100, 100 - 38 - 14, 1, 29});
    row("scrolled", {1100, -900}, {1100, -900 - 38 - 14, 1, 29});
    row("off screen", {-1, 100}, {});
    row("above", {100, -39}, {});
}

void tst_Painting::intermediateNodeByItselfIsPaintedHalfANodeHeightTooHigh()
{
    QFETCH(QPoint, pos);
    QFETCH(QRect, line);
    PaintScene scene("");
    const RefT<Node> node(new Node(scene.view, {}));
    Access::updateSize(scene.view, *node);
    node->x = pos.x();
    node->y = pos.y();
    const QPoint scroll = pos.x() > 300 ? QPoint(1000, -1000) : QPoint();
    QImage picture(scene.view.size(), QImage::Format_RGB32);
    picture.fill(background);
    {
        QPainter painter(&picture);
        Access::paintNode(scene.view, painter, scroll, *node);
    }
    QCOMPARE(otherThan(background, picture), line.isNull() ? line : line.translated(-scroll));
    QVERIFY(line.isNull() || isAll(picture, line.translated(-scroll), QColor(Qt::black).rgb()));
}

QTEST_MAIN(tst_Painting)
#include "tst_Painting.moc"
