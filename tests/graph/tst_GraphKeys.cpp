#include "support/MouseScene.h"
#include "support/QtStrings.h"

using namespace ZR;
using namespace ZR::VOM::GUI;
using Scene = MouseScene;

/// The keyboard on a graph.
class tst_GraphKeys : public QObject {
    Q_OBJECT

private slots:
    void controlASelectsAllThatIsVisible();
    void controlShiftAClears();
    void otherModifiersBesideControlDoNotMatter_data();
    void otherModifiersBesideControlDoNotMatter();
    void nothingToSelectStillTells();
    void selectingAcceptsTheEvent();
    void plainAGoesNoFurther_data();
    void plainAGoesNoFurther();
    void otherKeysAreTheScrollAreas();
    void tenThousandNodesAreSelectedAtOnce();
};

void tst_GraphKeys::controlASelectsAllThatIsVisible()
{
    Scene scene(4);
    scene.graph->hide(2);
    scene.select({2});
    const Asked asked = askedBy(scene.view(), [&] { scene.key(Qt::Key_A, Qt::ControlModifier); });
    QCOMPARE(scene.selected(), QString("0 1 3"));
    QCOMPARE(scene.numSel, 1);
    QVERIFY(asked.repaint);
    QVERIFY(!asked.bounds);
}

void tst_GraphKeys::controlShiftAClears()
{
    Scene scene(2);
    scene.select({0, 1});
    scene.key(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(scene.selected(), QString());
    QCOMPARE(scene.numSel, 1);
}

void tst_GraphKeys::otherModifiersBesideControlDoNotMatter_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QString>("selected");
    const Qt::KeyboardModifiers others = Qt::AltModifier | Qt::MetaModifier | Qt::KeypadModifier;
    QTest::newRow("select all") << (others | Qt::ControlModifier) << "0 1 2";
    QTest::newRow("clear") << (others | Qt::ControlModifier | Qt::ShiftModifier) << "";
}

void tst_GraphKeys::otherModifiersBesideControlDoNotMatter()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    Scene scene(3);
    scene.select({1});
    scene.key(Qt::Key_A, modifiers);
    QTEST(scene.selected(), "selected");
    QCOMPARE(scene.numSel, 1);
}

void tst_GraphKeys::nothingToSelectStillTells()
{
    Scene scene(0);
    scene.key(Qt::Key_A, Qt::ControlModifier);
    scene.key(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(scene.numSel, 2);
}

void tst_GraphKeys::selectingAcceptsTheEvent()
{
    Scene scene(2);
    for (const bool clears : {false, true}) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_A,
                        clears ? Qt::ControlModifier | Qt::ShiftModifier : Qt::ControlModifier);
        event.setAccepted(false);
        QApplication::sendEvent(&scene.view(), &event);
        QVERIFY(event.isAccepted());
    }
}

void tst_GraphKeys::plainAGoesNoFurther_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("alone") << Qt::KeyboardModifiers();
    QTest::newRow("Shift") << Qt::KeyboardModifiers(Qt::ShiftModifier);
    QTest::newRow("Alt") << Qt::KeyboardModifiers(Qt::AltModifier);
    QTest::newRow("Meta") << Qt::KeyboardModifiers(Qt::MetaModifier);
}

/// KEPT: A without Control goes no further, neither accepted nor ignored.
void tst_GraphKeys::plainAGoesNoFurther()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    Scene scene(2);
    scene.select({1});
    for (const bool accepted : {true, false}) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_A, modifiers);
        event.setAccepted(accepted);
        // The scroll area would ignore it.
        QApplication::sendEvent(&scene.view(), &event);
        QCOMPARE(event.isAccepted(), accepted);
    }
    QCOMPARE(scene.selected(), QString("1"));
    QCOMPARE(scene.numSel, 0);
}

void tst_GraphKeys::otherKeysAreTheScrollAreas()
{
    Scene scene(12);
    const int before = scene.scroll().x();
    scene.key(Qt::Key_Right);
    QVERIFY(scene.scroll().x() > before);
    scene.key(Qt::Key_Left);
    QCOMPARE(scene.scroll().x(), before);
    // Also those of which the scroll area makes nothing, with Control too.
    scene.select({1});
    for (Qt::KeyboardModifiers modifiers : {Qt::NoModifier, Qt::ControlModifier}) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_B, modifiers);
        event.setAccepted(true);
        QApplication::sendEvent(&scene.view(), &event);
        QVERIFY(!event.isAccepted());
    }
    QCOMPARE(scene.selected(), QString("1"));
    QCOMPARE(scene.numSel, 0);
}

void tst_GraphKeys::tenThousandNodesAreSelectedAtOnce()
{
    Scene scene(10000);
    scene.key(Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(scene.view().getSel().size(), std::size_t(10000));
    QCOMPARE(scene.numSel, 1);
}

QTEST_MAIN(tst_GraphKeys)
#include "tst_GraphKeys.moc"
