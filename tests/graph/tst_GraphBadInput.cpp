#include "support/LongLinkScene.h"

#include <QScrollBar>
#include <QTest>

#include <limits>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Scene = LongLinkScene;

// Arguments and settings that make no sense, or are out of all bounds.

Q_DECLARE_METATYPE(Things)

namespace {

constexpr int intMax = std::numeric_limits<int>::max();
constexpr int intMin = std::numeric_limits<int>::min();

} // namespace

class tst_GraphBadInput : public QObject {
    Q_OBJECT

private slots:
    void emptyAndUnknownObjectsArePassedOver_data();
    void emptyAndUnknownObjectsArePassedOver();
    void objectsMayBeNamedTwice();
    void listsOfTheViewItselfMayBePassed();
    void rulesMayBeOfAnyText_data();
    void rulesMayBeOfAnyText();
    void widgetMayBeOfAnySize_data();
    void widgetMayBeOfAnySize();
    void nodesMayBePutAnywhere_data();
    void nodesMayBePutAnywhere();
    void nodesFarAwayStayInReach();
    void animationMayTakeAnyTime_data();
    void animationMayTakeAnyTime();
};

void tst_GraphBadInput::emptyAndUnknownObjectsArePassedOver_data()
{
    QTest::addColumn<Things>("list");
    const RefT<VOM::Object> none;
    QTest::newRow("nobody") << Things{};
    QTest::newRow("a null reference") << Things{none};
    QTest::newRow("null references") << Things(1000, none);
    QTest::newRow("an unknown object") << Things{makeThing("x")};
    QTest::newRow("unknown objects and null references")
        << Things{makeThing("x"), none, makeThing<Stranger>("y"), none};
}

void tst_GraphBadInput::emptyAndUnknownObjectsArePassedOver()
{
    QFETCH(Things, list);
    Scene scene;
    ObjectGraphView &view = scene.view;
    int numSignals = 0;
    const auto counts = [&](auto const &) { ++numSignals; };
    view.sigInsertNode.connect(counts);
    view.sigRemoveNode.connect(counts);
    view.sigSel.connect(counts);
    const std::string links = dumpLinks(view);

    view.setVisible(list, true);
    view.setVisible(list, false);
    view.remove(list);
    view.remove(0, nullptr);
    view.setVisible(0, nullptr, true);
    QVERIFY(view.add(0, nullptr, true).hidden.empty());
    for (RefT<VOM::Object> const &obj : list) {
        int x = 17, y = 4;
        QVERIFY(!view.getPos(obj, x, y));
        QCOMPARE(x, 17);
        QCOMPARE(y, 4);
        QVERIFY(!view.setPos(obj, 1, 1, true));
        QVERIFY(!view.isVisible(obj));
    }
    QCOMPARE(dumpNodes(view), "a+* b+ c+ d+*"s);
    QCOMPARE(dumpLinks(view), links);
    QCOMPARE(numSignals, 0);
    view.setSel(list);
    QCOMPARE(dumpNodes(view), "a+ b+ c+ d+"s);
    QCOMPARE(numSignals, 0);
    QVERIFY(!view.isOutLinkField({}));
    QVERIFY(!view.isInLinkField({}));
    view.showSel();
    useAll(scene);
}

void tst_GraphBadInput::objectsMayBeNamedTwice()
{
    Scene scene;
    ObjectGraphView &view = scene.view;
    const RefT<VOM::Object> a = scene.things[0];
    std::string told;
    view.sigRemoveNode.connect([&](auto const &data) { told += '-' + namesInOrder(*data.objs); });
    view.sigInsertNode.connect([&](auto const &data) { told += '+' + namesInOrder(*data.objs); });
    view.setVisible({a, a, {}, a}, false);
    view.setVisible({a, a, {}, a}, true);
    view.setSel({a, a});
    QCOMPARE(dumpNodes(view), "a+* b+ c+ d+"s);
    view.remove({a, {}, a, a});
    QCOMPARE(told, "-a+a-a"s);
    const ObjectGraphView::AddedNodes added = view.add({a, a, a}, true);
    QCOMPARE(added.hidden.size(), std::size_t(1));
    QCOMPARE(dumpNodes(view), "a b+ c+ d+"s);
    useAll(scene);
}

void tst_GraphBadInput::listsOfTheViewItselfMayBePassed()
{
    Scene scene;
    ObjectGraphView &view = scene.view;
    int numCalls = 0;
    view.sigRemoveNode.connect([&](ObjectGraphView::SigNodeData const &data) {
        ++numCalls;
        view.add(*data.objs, true);
        view.setSel(*data.objs);
        if (numCalls < 3)
            view.setVisible(*data.objs, true);
        view.remove(*data.objs);
    });
    view.remove(view.getObjs());
    QCOMPARE(numCalls, 3);
    QCOMPARE(dumpNodes(view), ""s);
    view.add(scene.things, false);
    view.setVisible(scene.things, true);
    useAll(scene);
}

void tst_GraphBadInput::rulesMayBeOfAnyText_data()
{
    QTest::addColumn<std::string>("className");
    QTest::addColumn<std::string>("fieldName");
    QTest::newRow("no such class") << "Nobody"s
                                   << "next"s;
    QTest::newRow("no such field") << ""s
                                   << "nothing"s;
    QTest::newRow("neither") << "Nobody"s
                             << "nothing"s;
    QTest::newRow("no field name") << "Thing"s
                                   << ""s;
    QTest::newRow("a field that holds no links") << ""s
                                                 << "name"s;
    QTest::newRow("a NUL in the field name") << ""s
                                             << "next\0more"s;
    QTest::newRow("a NUL in the class name") << "Thing\0more"s
                                             << "next"s;
    QTest::newRow("NULs alone") << "\0"s
                                << "\0"s;
    QTest::newRow("invalid UTF-8") << "\xff\xfe"s
                                   << "\xc3"s;
    QTest::newRow("enormous names") << std::string(1 << 20, 'T') << std::string(1 << 20, 'n');
    QTest::newRow("blanks") << " Thing"s
                            << "next "s;
}

void tst_GraphBadInput::rulesMayBeOfAnyText()
{
    QFETCH(std::string, className);
    QFETCH(std::string, fieldName);
    Scene scene;
    ObjectGraphView &view = scene.view;
    const std::string links = dumpLinks(view);
    const ObjectGraphView::LinkFields rules = view.getOutLinkFields();
    view.addOutLinkField(className, fieldName);
    view.addInLinkField(className, fieldName);
    QCOMPARE(view.getInLinkFields().empty(), fieldName.empty());
    QCOMPARE(dumpLinks(view), links);
    view.add({makeThing("x")}, false);
    QCOMPARE(faultsOf(view), ""s);
    view.removeOutLinkField(className, fieldName);
    view.removeInLinkField(className, fieldName);
    view.removeInLinkField(className, fieldName);
    QVERIFY(view.getOutLinkFields() == rules);
    QVERIFY(view.getInLinkFields().empty());
    view.layout();
    QCOMPARE(dumpLinks(view), links);
    useAll(scene);
}

void tst_GraphBadInput::widgetMayBeOfAnySize_data()
{
    QTest::addColumn<QSize>("size");
    for (QSize size : {QSize(0, 0), QSize(1, 1), QSize(0, 200), QSize(200, 0), QSize(5, 3000),
                       QSize(3000, 5), QSize(17, 17), QSize(-10, -10), QSize(4000, 3000)})
        QTest::addRow("%d x %d", size.width(), size.height()) << size;
}

void tst_GraphBadInput::widgetMayBeOfAnySize()
{
    QFETCH(QSize, size);
    for (bool shown : {false, true}) {
        for (bool bars : {false, true}) {
            Scene scene;
            for (auto set : {&QAbstractScrollArea::setHorizontalScrollBarPolicy,
                             &QAbstractScrollArea::setVerticalScrollBarPolicy})
                (scene.view.*set)(bars ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
            scene.view.setVisible(shown);
            scene.view.resize(size);
            QCoreApplication::processEvents();
            useAll(scene);
            scene.view.setVisible(!shown);
            QCoreApplication::processEvents();
            scene.view.setVisible(scene.things, false);
            scene.view.setVisible({scene.things[1]}, true);
            useAll(scene);
            QVERIFY(scene.view.horizontalScrollBar()->minimum() <=
                    scene.view.horizontalScrollBar()->maximum());
        }
    }
}

void tst_GraphBadInput::nodesMayBePutAnywhere_data()
{
    QTest::addColumn<QVector<QPoint>>("places");
    const auto row = [](char const *name, QPoint a, QPoint b, QPoint c, QPoint d) {
        QTest::newRow(name) << QVector<QPoint>{a, b, c, d};
    };
    const QPoint none(0, 0), least(intMin, intMin), most(intMax, intMax);
    row("one place", none, none, none, none);
    row("negative", {-1, -1}, {-1000, -2000}, {-7, -3000}, {-100000, -5});
    row("all at the least", least, least, least, least);
    row("all at the most", most, most, most, most);
    row("at both ends", least, most, most, least);
    row("ends of the long link far apart", least, none, none, most);
    row("ends of the long link apart the other way", most, none, none, least);
    row("corners", {intMin, intMax}, {intMax, intMin}, least, most);
    row("next to the ends", {intMin + 1, 1}, {intMax - 1, -1}, {1, intMin + 1}, {-1, intMax - 1});
    row("one far away", none, none, {intMax, 0}, none);
}

void tst_GraphBadInput::nodesMayBePutAnywhere()
{
    QFETCH(QVector<QPoint>, places);
    for (bool animated : {false, true}) {
        for (double duration : {2.0, 0.003, 0.0}) {
            Scene scene;
            finishAnimation(scene.view);
            scene.view.animDuration.set(duration);
            for (int round = 0; round < 2; ++round) {
                for (int i = 0; i < 4; ++i)
                    QVERIFY(scene.view.setPos(scene.things[std::size_t(i)], places[i].x(),
                                              places[i].y(), animated));
                scene.view.viewport()->grab();
                scene.advance(0.001);
                scene.view.viewport()->grab();
                // In the midst of links that reach out of sight.
                scene.view.horizontalScrollBar()->setValue(0);
                scene.view.verticalScrollBar()->setValue(0);
                scene.view.viewport()->grab();
                scene.view.showSel();
                useAll(scene);
            }
        }
    }
}

void tst_GraphBadInput::nodesFarAwayStayInReach()
{
    Scene scene;
    ObjectGraphView &view = scene.view;
    // Each layout holds another node in place, which was put as far away as it goes.
    for (int round = 0; round < 60; ++round) {
        const RefT<VOM::Object> held = scene.things[std::size_t(round % 4)];
        view.setPos(held, intMax, intMin, false);
        view.setVisible({held}, false);
        view.setVisible({held}, true);
        finishAnimation(view);
        for (RefT<VOM::Object> const &thing : scene.things) {
            int x = 0, y = 0;
            QVERIFY(view.getPos(thing, x, y));
            QVERIFY(std::abs(x) <= farthest && std::abs(y) <= farthest);
        }
    }
    view.setVisible(scene.things, false);
    for (RefT<VOM::Object> const &thing : scene.things)
        view.setPos(thing, 0, 0, false);
    view.setVisible(scene.things, true);
    useAll(scene);
    // Back in sight.
    view.showSel();
    scene.advance(99);
    QVERIFY(std::abs(view.horizontalScrollBar()->value()) < 10000);
}

void tst_GraphBadInput::animationMayTakeAnyTime_data()
{
    QTest::addColumn<double>("duration");
    QTest::newRow("none") << 0.0;
    QTest::newRow("negative") << -1.0;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
    QTest::newRow("infinite the other way") << -std::numeric_limits<double>::infinity();
    QTest::newRow("the least") << std::numeric_limits<double>::denorm_min();
    QTest::newRow("the most") << std::numeric_limits<double>::max();
    QTest::newRow("less than a millisecond") << 0.0001;
}

void tst_GraphBadInput::animationMayTakeAnyTime()
{
    QFETCH(double, duration);
    Scene scene;
    ObjectGraphView &view = scene.view;
    view.animDuration.set(duration);
    view.setPos(scene.things[0], 5000, 5000, true);
    scene.advance(0.00001);
    view.viewport()->grab();
    useAll(scene);
    // In mid course.
    view.animDuration.set(2);
    view.layout();
    scene.advance(1);
    view.animDuration.set(duration);
    scene.advance(61);
    QVERIFY(!Access::animTimer(view).isActive());
    QCOMPARE(faultsAtRest(view), ""s);
}

QTEST_MAIN(tst_GraphBadInput)
#include "tst_GraphBadInput.moc"
