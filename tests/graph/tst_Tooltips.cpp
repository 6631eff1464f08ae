#include "support/MouseScene.h"
#include "support/QtStrings.h"

#include <QHelpEvent>
#include <QToolTip>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Scene = MouseScene;

namespace {

VOM::FieldString &addTip(Scene &scene, unsigned index, std::string const &text)
{
    return VOM::addField<VOM::FieldString>(*scene.graph->obj(index), "tip", text);
}

/// Tooltips are on, and node 0 has "text".
struct TipScene : Scene {
    explicit TipScene(unsigned numNodes, std::vector<NumberedGraph::Link> const &links = {})
        : Scene(numNodes, links)
    {
        addTip(*this, 0, "text");
        view().setFieldTooltip("tip");
        view().tooltip.set(true);
    }
    QString tip() { return view().toolTip(); }
    /// Moves there without buttons, and returns the tooltip.
    QString tipAt(QPoint const &pos)
    {
        move(pos);
        return tip();
    }
};

} // namespace

/// Tooltips of nodes.
class tst_Tooltips : public QObject {
    Q_OBJECT

private slots:
    void tooltipIsTheFieldOfTheNodeUnderTheMouse();
    void textIsReadAsUtf8_data();
    void textIsReadAsUtf8();
    void textFollowsTheModelAtTheNextMove();
    void onlyBoxesWithAStringFieldHaveTooltips();
    void hiddenNodesHaveNoTooltip();
    void tooltipsAreThoseOfTheScrolledContent();
    void tooltipsAreOffAtFirst();
    void switchingTooltipsOffClearsTheCurrentOne();
    void moveThatMayBeADragLeavesTheTooltip();
    void moveThatBeginsADragLeavesTheTooltip();
    void movesAfterAReleaseUpdateTheTooltip();
    void pressOnNothingLeavesTooltipsAtWork();
    void tooltipIsShownOverTheViewport();
};

void tst_Tooltips::tooltipIsTheFieldOfTheNodeUnderTheMouse()
{
    TipScene scene(3);
    addTip(scene, 1, "other");
    QCOMPARE(scene.tipAt(scene.centre(0)), QString("text"));
    QCOMPARE(scene.tipAt(scene.centre(1)), QString("other"));
    QCOMPARE(scene.tipAt(scene.nowhere()), QString());
    scene.view().setFieldTooltip("name");
    QCOMPARE(scene.tipAt(scene.centre(2)), QString("2"));
}

void tst_Tooltips::textIsReadAsUtf8_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("two bytes") << QByteArray("Gr\xc3\xb6\xc3\x9f"
                                             "e")
                               << QString::fromUtf16(u"Gr\u00f6\u00dfe");
    QTest::newRow("four bytes") << QByteArray("\xf0\x9f\x98\x80")
                                << QString::fromUtf16(u"\U0001f600");
    QTest::newRow("not UTF-8") << QByteArray("a\xff"
                                             "b")
                               << QString::fromUtf16(u"a\ufffdb");
    QTest::newRow("a zero byte inside") << QByteArray("a\0b", 3) << QString("a%1b").arg(QChar(0));
    QTest::newRow("empty") << QByteArray("") << QString();
}

void tst_Tooltips::textIsReadAsUtf8()
{
    QFETCH(QByteArray, bytes);
    TipScene scene(2);
    addTip(scene, 1, bytes.toStdString());
    scene.move(scene.centre(0));
    QTEST(scene.tipAt(scene.centre(1)), "text");
}

void tst_Tooltips::textFollowsTheModelAtTheNextMove()
{
    TipScene scene(2);
    VOM::FieldString &field = addTip(scene, 1, "before");
    QCOMPARE(scene.tipAt(scene.centre(1)), QString("before"));
    field.set("after");
    QCOMPARE(scene.tip(), QString("before"));
    QCOMPARE(scene.tipAt(scene.centre(1)), QString("after"));
    VOM::removeField(*scene.graph->obj(1), field);
    QCOMPARE(scene.tipAt(scene.centre(1)), QString());
}

void tst_Tooltips::onlyBoxesWithAStringFieldHaveTooltips()
{
    TipScene scene(4, {{3, 0}, {0, 3}});
    VOM::addField<VOM::FieldInt>(*scene.graph->obj(1), "tip", 7);
    scene.graph->hide(3);
    scene.view().grab();
    for (QPoint const &pos : {scene.centre(1), scene.centre(2), scene.band(0), scene.upperArrow(0),
                              scene.lowerArrow(0), scene.nowhere()}) {
        QCOMPARE(scene.tipAt(scene.centre(0)), QString("text"));
        QCOMPARE(scene.tipAt(pos), QString());
    }
}

void tst_Tooltips::hiddenNodesHaveNoTooltip()
{
    TipScene scene(2);
    QCOMPARE(scene.tipAt(scene.centre(0)), QString("text"));
    scene.graph->hide(0);
    QCOMPARE(scene.tipAt(scene.centre(0)), QString());
}

void tst_Tooltips::tooltipsAreThoseOfTheScrolledContent()
{
    TipScene scene(12);
    addTip(scene, 4, "far");
    const QPoint pos = scene.centre(0);
    scene.view().horizontalScrollBar()->setValue(scene.scroll().x() + 400);
    QCOMPARE(scene.tipAt(pos), QString("far"));
}

void tst_Tooltips::tooltipsAreOffAtFirst()
{
    Scene scene(1);
    addTip(scene, 0, "text");
    scene.view().setFieldTooltip("tip");
    scene.view().setToolTip("the host's own");
    scene.move(scene.centre(0));
    QCOMPARE(scene.view().toolTip(), QString("the host's own"));
}

void tst_Tooltips::switchingTooltipsOffClearsTheCurrentOne()
{
    TipScene scene(1);
    QCOMPARE(scene.tipAt(scene.centre(0)), QString("text"));
    scene.view().tooltip.set(false);
    QCOMPARE(scene.tip(), QString());
    QCOMPARE(scene.tipAt(scene.centre(0) + QPoint(1, 0)), QString());
}

void tst_Tooltips::moveThatMayBeADragLeavesTheTooltip()
{
    TipScene scene(1);
    const QRect box = scene.box(0);
    scene.press(box.topLeft());
    QCOMPARE(scene.tipAt(box.topLeft()), QString("text"));
    scene.move(box.topLeft() - QPoint(1, 1), Qt::LeftButton);
    QCOMPARE(scene.tip(), QString("text"));
    // Any button that is held keeps the drag in question.
    scene.release(box.topLeft());
    scene.move(box.topLeft() - QPoint(1, 1), Qt::MiddleButton);
    QCOMPARE(scene.tip(), QString("text"));
    QCOMPARE(scene.tipAt(box.topLeft() - QPoint(1, 1)), QString());
}

void tst_Tooltips::moveThatBeginsADragLeavesTheTooltip()
{
    TipScene scene(2);
    scene.move(scene.centre(0));
    scene.press(scene.centre(0));
    scene.move(scene.centre(1), Qt::LeftButton);
    QCOMPARE(scene.takeDragged(), QString("0"));
    QCOMPARE(scene.tip(), QString("text"));
}

void tst_Tooltips::movesAfterAReleaseUpdateTheTooltip()
{
    TipScene scene(2);
    scene.click(scene.centre(1));
    QCOMPARE(scene.tipAt(scene.centre(0)), QString("text"));
    QCOMPARE(scene.tipAt(scene.centre(1)), QString());
}

void tst_Tooltips::pressOnNothingLeavesTooltipsAtWork()
{
    TipScene scene(2);
    scene.press(scene.nowhere());
    scene.move(scene.centre(0), Qt::LeftButton);
    QCOMPARE(scene.tip(), QString("text"));
}

void tst_Tooltips::tooltipIsShownOverTheViewport()
{
    TipScene scene(1);
    const QPoint pos = scene.centre(0);
    scene.move(pos);
    QHelpEvent event(QEvent::ToolTip, pos, scene.viewport()->mapToGlobal(pos));
    QApplication::sendEvent(scene.viewport(), &event);
    QCOMPARE(QToolTip::text(), QString("text"));
    QToolTip::hideText();
}

QTEST_MAIN(tst_Tooltips)
#include "tst_Tooltips.moc"
