#include "foundation/gui/TreeScene.h"

#include <QProxyStyle>
#include <QStyleOptionViewItem>

#include <set>

using namespace TreeTest;

namespace {

std::vector<ItemPtr> letters()
{
    return {opened(item("a", {item("b"), item("c", {item("d")})})), item("e")};
}

/// Writes down what it is asked to draw, and draws it.
class Listener : public QProxyStyle {
public:
    Listener()
        : QProxyStyle("fusion")
    {
    }
    struct Drawn {
        QString text;
        QRect rect;
        State state;
        Qt::LayoutDirection direction;
        QPalette::ColorGroup group;
    };
    void drawControl(ControlElement element, QStyleOption const *option, QPainter *painter,
                     QWidget const *widget) const override
    {
        auto const *const itemOption = qstyleoption_cast<QStyleOptionViewItem const *>(option);
        if (element == CE_ItemViewItem && itemOption)
            drawn.push_back({itemOption->text, option->rect, option->state, option->direction,
                             option->palette.currentColorGroup()});
        QProxyStyle::drawControl(element, option, painter, widget);
    }
    void drawPrimitive(PrimitiveElement element, QStyleOption const *option, QPainter *painter,
                       QWidget const *widget) const override
    {
        if (element == PE_IndicatorBranch)
            branches.push_back({QString(), option->rect, option->state, option->direction, {}});
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
    Drawn item(QString const &text) const
    {
        for (Drawn const &one : drawn)
            if (one.text == text)
                return one;
        return {};
    }
    Drawn branch(QPoint const &at) const
    {
        for (Drawn const &one : branches)
            if (one.rect.contains(at))
                return one;
        return {};
    }
    void clear()
    {
        drawn.clear();
        branches.clear();
    }
    mutable std::vector<Drawn> drawn, branches;
};

QImage grab(Scene &scene)
{
    return scene.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

std::set<QRgb> colorsIn(QImage const &image, QRect const &rect)
{
    std::set<QRgb> colors;
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        for (int x = rect.left(); x <= rect.right(); ++x)
            colors.insert(image.pixel(x, y));
    return colors;
}

} // namespace

/// What the style is asked to draw, where, and that it can be seen.
class tst_TreePainting : public QObject {
    Q_OBJECT

private slots:
    void initTestCase_data() { addGenerations(); }
    void init() { listener = std::make_unique<Listener>(); }

    void rowsAreIndentedByLevel();
    void onlyLinesInSightAreDrawn();
    void branchesTellExpandersAndSiblings();
    void selectionAndFocusAreTold();
    void selectionPalesWithoutTheFocus();
    void hoverIsTold();
    void hoverStaysUnderThePointerAsRowsScroll();
    void disabledIsTold();
    void rightToLeftIsTheMirror();
    void heightFollowsTheFont();
    void colorsFollowThePalette();
    void widthScrollsOrIsElided();
    void lineBreaksAreBlanks();
    void iconsAreDrawn();
    void everyDrawnRowIsHitWhereItIs();
    void scaleFactorKeepsThePlaces();

private:
    std::unique_ptr<Scene> scene(std::vector<ItemPtr> const &top)
    {
        auto made = makeScene(top);
        made->view()->setStyle(listener.get());
        made->findRow({0, 0});
        listener->clear();
        return made;
    }
    std::unique_ptr<Listener> listener;
};

void tst_TreePainting::rowsAreIndentedByLevel()
{
    const auto shown = scene(letters());
    grab(*shown);
    const int indent = listener->pixelMetric(QStyle::PM_TreeViewIndentation);
    QCOMPARE(listener->drawn.size(), std::size_t(4));
    QCOMPARE(listener->item("a").rect.left(), indent);
    QCOMPARE(listener->item("b").rect.left(), 2 * indent);
    QCOMPARE(listener->item("e").rect.left(), indent);
    QCOMPARE(listener->item("c").rect.top(), 2 * shown->view()->getRowHeight());
    QCOMPARE(listener->item("c").rect.right(), shown->viewport()->width() - 1);
}

void tst_TreePainting::onlyLinesInSightAreDrawn()
{
    const auto shown = scene(items("x", 100000));
    const int height = shown->view()->getRowHeight();
    shown->view()->resize(200, 10 * height + 2 * shown->view()->frameWidth());
    shown->findRow({0, 0});
    shown->view()->verticalScrollBar()->setValue(50000 * height + height / 2);
    listener->clear();
    grab(*shown);
    QVERIFY(listener->drawn.size() <= 12);
    QCOMPARE(listener->drawn.front().text, QString("x50000"));
    QCOMPARE(listener->drawn.front().rect.top(), -(height / 2));
}

void tst_TreePainting::branchesTellExpandersAndSiblings()
{
    const auto shown = scene(letters());
    grab(*shown);
    const auto stateAt = [&](std::string const &name, int level) {
        return listener->branch(shown->expander(name, level)).state &
               (QStyle::State_Children | QStyle::State_Open | QStyle::State_Sibling |
                QStyle::State_Item);
    };
    using S = QStyle;
    QCOMPARE(stateAt("a", 0), S::State_Item | S::State_Children | S::State_Open | S::State_Sibling);
    QCOMPARE(stateAt("b", 1), S::State_Item | S::State_Sibling);
    QCOMPARE(stateAt("b", 0), S::State(S::State_Sibling));
    QCOMPARE(stateAt("c", 1), S::State_Item | S::State_Children);
    QCOMPARE(stateAt("c", 0), S::State(S::State_Sibling));
    QCOMPARE(stateAt("e", 0), S::State(S::State_Item));
}

void tst_TreePainting::selectionAndFocusAreTold()
{
    const auto shown = scene(letters());
    shown->click("b");
    listener->clear();
    grab(*shown);
    QVERIFY(listener->item("b").state & QStyle::State_Selected);
    QVERIFY(listener->item("b").state & QStyle::State_HasFocus);
    QVERIFY(!(listener->item("c").state & (QStyle::State_Selected | QStyle::State_HasFocus)));
    const QColor highlight = shown->view()->palette().color(QPalette::Active, QPalette::Highlight);
    QCOMPARE(colorsIn(grab(*shown), listener->item("b").rect).count(highlight.rgb()),
             std::size_t(1));
    QCOMPARE(colorsIn(grab(*shown), listener->item("c").rect).count(highlight.rgb()),
             std::size_t(0));
}

void tst_TreePainting::selectionPalesWithoutTheFocus()
{
    const auto shown = scene(letters());
    QPalette palette = shown->view()->palette();
    palette.setColor(QPalette::Inactive, QPalette::Highlight, Qt::magenta);
    shown->view()->setPalette(palette);
    shown->click("b");
    const QRect rect = listener->item("b").rect;
    QCOMPARE(colorsIn(grab(*shown), rect).count(QColor(Qt::magenta).rgb()), std::size_t(0));
    shown->view()->clearFocus();
    listener->clear();
    const QImage image = grab(*shown);
    QVERIFY(!(listener->item("b").state & (QStyle::State_Active | QStyle::State_HasFocus)));
    QCOMPARE(colorsIn(image, listener->item("b").rect).count(QColor(Qt::magenta).rgb()),
             std::size_t(1));
}

void tst_TreePainting::hoverIsTold()
{
    const auto shown = scene(letters());
    const QPoint pos = shown->at("c");
    QMouseEvent move(QEvent::MouseMove, pos, shown->viewport()->mapToGlobal(pos), Qt::NoButton,
                     Qt::NoButton, {});
    QApplication::sendEvent(shown->viewport(), &move);
    listener->clear();
    grab(*shown);
    QVERIFY(listener->item("c").state & QStyle::State_MouseOver);
    QVERIFY(!(listener->item("b").state & QStyle::State_MouseOver));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(shown->viewport(), &leave);
    listener->clear();
    grab(*shown);
    QVERIFY(!(listener->item("c").state & QStyle::State_MouseOver));
}

void tst_TreePainting::hoverStaysUnderThePointerAsRowsScroll()
{
    const auto shown = scene(items("i", 100));
    const QPoint pos = shown->at("i2");
    QMouseEvent move(QEvent::MouseMove, pos, shown->viewport()->mapToGlobal(pos), Qt::NoButton,
                     Qt::NoButton, {});
    QApplication::sendEvent(shown->viewport(), &move);
    shown->view()->verticalScrollBar()->setValue(3 * shown->view()->getRowHeight());
    listener->clear();
    grab(*shown);
    QVERIFY(listener->item("i5").state & QStyle::State_MouseOver);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(shown->viewport(), &leave);
    shown->view()->verticalScrollBar()->setValue(0);
    listener->clear();
    grab(*shown);
    QVERIFY(!(listener->item("i2").state & QStyle::State_MouseOver));
}

void tst_TreePainting::disabledIsTold()
{
    const auto shown = scene(letters());
    shown->view()->setEnabled(false);
    listener->clear();
    grab(*shown);
    QVERIFY(!(listener->item("b").state & QStyle::State_Enabled));
    QCOMPARE(listener->item("b").group, QPalette::Disabled);
}

void tst_TreePainting::rightToLeftIsTheMirror()
{
    const auto shown = scene(letters());
    grab(*shown);
    const std::vector<Listener::Drawn> leftToRight = listener->drawn;
    const std::vector<Listener::Drawn> branches = listener->branches;
    shown->view()->setLayoutDirection(Qt::RightToLeft);
    listener->clear();
    grab(*shown);
    const int width = shown->viewport()->width();
    const auto mirrored = [&](QRect const &rect) {
        return QRect(width - rect.right() - 1, rect.top(), rect.width(), rect.height());
    };
    QCOMPARE(listener->drawn.size(), leftToRight.size());
    for (std::size_t i = 0; i < leftToRight.size(); ++i) {
        QCOMPARE(listener->drawn[i].rect, mirrored(leftToRight[i].rect));
        QCOMPARE(listener->drawn[i].direction, Qt::RightToLeft);
    }
    QCOMPARE(listener->branches.size(), branches.size());
    for (std::size_t i = 0; i < branches.size(); ++i)
        QCOMPARE(listener->branches[i].rect, mirrored(branches[i].rect));

    // Also in pixels: the text begins at the right, and nothing is left at the left.
    const QImage image = grab(*shown);
    const int height = shown->view()->getRowHeight();
    QCOMPARE(colorsIn(image, {0, 0, width / 2, height}).size(), std::size_t(1));
    QVERIFY(colorsIn(image, {width - 60, 0, 60, height}).size() > 1);
}

void tst_TreePainting::heightFollowsTheFont()
{
    const auto shown = scene(letters());
    const int before = shown->view()->getRowHeight();
    QFont font = shown->view()->font();
    font.setPixelSize(40);
    shown->view()->setFont(font);
    QVERIFY(shown->view()->getRowHeight() >= 40);
    QVERIFY(shown->view()->getRowHeight() > before);
    listener->clear();
    grab(*shown);
    QCOMPARE(listener->item("b").rect.height(), shown->view()->getRowHeight());
    QCOMPARE(listener->item("b").rect.top(), shown->view()->getRowHeight());
}

void tst_TreePainting::colorsFollowThePalette()
{
    const auto shown = scene(letters());
    QPalette dark = shown->view()->palette();
    dark.setColor(QPalette::Base, Qt::black);
    dark.setColor(QPalette::Text, Qt::white);
    shown->view()->setPalette(dark);
    const QImage image = grab(*shown);
    const QRect rect(0, 0, image.width(), shown->view()->getRowHeight());
    QCOMPARE(image.pixel(image.width() - 2, image.height() - 2), qRgb(0, 0, 0));
    int brightest = 0;
    for (const QRgb color : colorsIn(image, rect))
        brightest = std::max(brightest, qGray(color));
    QVERIFY(brightest > 200);
}

void tst_TreePainting::widthScrollsOrIsElided()
{
    const std::string wide(200, 'w');
    const auto shown = scene({item(wide), item("b")});
    QScrollBar &bar = *shown->view()->horizontalScrollBar();
    QVERIFY(bar.maximum() > 0);
    bar.setValue(bar.maximum());
    listener->clear();
    grab(*shown);
    const Listener::Drawn drawn = listener->item(QString::fromStdString(wide));
    const QFontMetrics metrics(shown->view()->font());
    QVERIFY(drawn.rect.width() >= metrics.horizontalAdvance(drawn.text));
    QVERIFY(drawn.rect.right() <= shown->viewport()->width() + 2);

    // Without a scroll bar the row ends where the view does.
    shown->view()->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    shown->view()->resize(shown->view()->width() - 1, shown->view()->height());
    shown->findRow({0, 0});
    QCOMPARE(bar.maximum(), 0);
    listener->clear();
    grab(*shown);
    QCOMPARE(listener->drawn.front().rect.right(), shown->viewport()->width() - 1);
}

void tst_TreePainting::lineBreaksAreBlanks()
{
    const auto shown = scene({item("a\nb\tc\r\xE2\x80\xA9"
                                   "d")});
    const int height = shown->view()->getRowHeight();
    grab(*shown);
    QCOMPARE(listener->drawn.front().text, QString("a b c  d"));
    QCOMPARE(listener->drawn.front().rect.height(), height);
}

void tst_TreePainting::iconsAreDrawn()
{
    const auto shown = scene({item("a"), item("b")});
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::cyan);
    shown->find("b")->showIcon(QIcon(pixmap));
    const QImage image = grab(*shown);
    const int height = shown->view()->getRowHeight();
    QCOMPARE(colorsIn(image, {0, 0, image.width(), height}).count(QColor(Qt::cyan).rgb()),
             std::size_t(0));
    QCOMPARE(colorsIn(image, {0, height, image.width(), height}).count(QColor(Qt::cyan).rgb()),
             std::size_t(1));
}

void tst_TreePainting::everyDrawnRowIsHitWhereItIs()
{
    const auto shown = scene({opened(item("a", items("x", 40))),
                              hiddenItem(item("h", {item("i"), item("j")})), item("k")});
    shown->view()->verticalScrollBar()->setValue(37);
    listener->clear();
    grab(*shown);
    QVERIFY(listener->drawn.size() > 10);
    for (Listener::Drawn const &drawn : listener->drawn) {
        const QPoint content = drawn.rect.center() + QPoint(0, 37);
        QCOMPARE(QString::fromStdString(shown->nameOf(shown->findRow(content))), drawn.text);
    }
}

void tst_TreePainting::scaleFactorKeepsThePlaces()
{
    const auto shown = scene(letters());
    shown->click("b");
    QImage twice(shown->viewport()->size() * 2, QImage::Format_RGB32);
    twice.setDevicePixelRatio(2);
    twice.fill(Qt::white);
    shown->viewport()->render(&twice);
    const int height = shown->view()->getRowHeight();
    const QRgb highlight =
        shown->view()->palette().color(QPalette::Active, QPalette::Highlight).rgb();
    const auto rowOf = [&](int line) {
        return QRect(0, 2 * line * height, twice.width(), 2 * height);
    };
    QCOMPARE(colorsIn(twice, rowOf(1)).count(highlight), std::size_t(1));
    QCOMPARE(colorsIn(twice, rowOf(2)).count(highlight), std::size_t(0));
}

QTEST_MAIN(tst_TreePainting)
#include "tst_TreePainting.moc"
