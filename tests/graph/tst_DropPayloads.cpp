#include "support/DropScene.h"
#include "support/QtStrings.h"
#include "support/dump.h"
#include "zrVOMGUI/transfer/MimeTypes.h"

#include <QMimeData>
#include <QTest>

#include <cstring>
#include <functional>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Scene = DropScene;

// Which drags the view takes.

namespace {

using MakeData = std::function<Data(Scene const &)>;

Data makeData(char const *type, QByteArray const &bytes)
{
    auto data = std::make_unique<QMimeData>();
    data->setData(type, bytes);
    return data;
}

/// A reference to a list of "a", changed by `change`.
template <class Change>
Data forged(Scene const &scene, Change const &change)
{
    QByteArray bytes = offer(scene.these("a"))->data(MimeType::objects);
    change(bytes);
    return makeData(MimeType::objects, bytes);
}

void addPayload(char const *row, bool isTaken, MakeData const &make)
{
    QTest::newRow(row) << isTaken << make;
}

} // namespace

Q_DECLARE_METATYPE(MakeData)

class tst_DropPayloads : public QObject {
    Q_OBJECT

private slots:
    void knownObjectsOfThisProcessAreTaken_data();
    void knownObjectsOfThisProcessAreTaken();
    void moveLooksAgain();
    void eventsWithoutDataAreRefused();
    void placeDoesNotMatter_data();
    void placeDoesNotMatter();
    void modifiersDoNotMatter_data();
    void modifiersDoNotMatter();
    void actionIsLink_data();
    void actionIsLink();
    void knownOnesAreTakenInTheirOrder();
    void dropOfNothingKnownDoesNothing_data();
    void dropOfNothingKnownDoesNothing();
};

void tst_DropPayloads::knownObjectsOfThisProcessAreTaken_data()
{
    QTest::addColumn<bool>("isTaken");
    QTest::addColumn<MakeData>("make");
    addPayload("hidden one", true, [](auto &s) { return offer(s.these("b")); });
    addPayload("visible one", true, [](auto &s) { return offer(s.these("a")); });
    addPayload("known and unknown ones", true, [](auto &s) {
        return offer({makeThing("x"), s['b'], makeThing("y")});
    });
    addPayload("known ones and null", true, [](auto &s) { return offer({{}, s['b'], {}}); });
    addPayload("nothing", false, [](auto &) { return std::make_unique<QMimeData>(); });
    addPayload("text", false, [](auto &) {
        auto data = std::make_unique<QMimeData>();
        data->setText("b");
        return data;
    });
    addPayload("empty list", false, [](auto &) { return offer({}); });
    addPayload("only null", false, [](auto &) { return offer({{}, {}}); });
    addPayload("only unknown ones", false, [](auto &) {
        return offer({makeThing("x"), makeThing("y")});
    });
    addPayload("reference of another process", false,
               [](auto &s) { return forged(s, [](auto &bytes) { bytes[0] = char(~bytes[0]); }); });
    addPayload("reference that is too short", false,
               [](auto &s) { return forged(s, [](auto &bytes) { bytes.chop(1); }); });
    addPayload("reference that is too long", false,
               [](auto &s) { return forged(s, [](auto &bytes) { bytes.append('\0'); }); });
    addPayload("reference to nowhere", false, [](auto &s) {
        return forged(s, [](auto &bytes) { std::memset(bytes.data() + 8, 0, 8); });
    });
    addPayload("empty reference", false, [](auto &) { return makeData(MimeType::objects, {}); });
    addPayload("reference to copies alone", false, [](auto &s) {
        return makeData(MimeType::objectCopies, offer(s.these("b"))->data(MimeType::objects));
    });
    addPayload("XML alone", false, [](auto &s) {
        return makeData(MimeType::objectsXml, QByteArray::fromStdString(xmlOf(s.these("b"))));
    });
    addPayload("unknown ones, known copies and XML", false, [](auto &s) {
        const Data copies = offer(s.these("b"));
        Data data = offer({makeThing("x")});
        data->setData(MimeType::objectCopies, copies->data(MimeType::objects));
        data->setData(MimeType::objectsXml, QByteArray::fromStdString(xmlOf(s.these("b"))));
        return data;
    });
}

void tst_DropPayloads::knownObjectsOfThisProcessAreTaken()
{
    QFETCH(bool, isTaken);
    QFETCH(MakeData, make);
    const Scene scene("ab");
    const Data data = make(scene);
    SentDrag drag(*scene.view);
    QCOMPARE(drag.enter({10, 10}, data.get()), isTaken);
    QCOMPARE(drag.action == Qt::LinkAction, isTaken);
    // A look changes nothing.
    QCOMPARE(dumpNodes(*scene.view), "a+ b"s);
}

void tst_DropPayloads::moveLooksAgain()
{
    const Scene scene("ab");
    Things offered = scene.these("b");
    const Data data(createMimeData({}, &offered, nullptr));
    SentDrag drag(*scene.view);
    QVERIFY(drag.enter({10, 10}, data.get()));
    QVERIFY(drag.move({20, 20}, data.get()));
    scene.view->remove(scene.these("b"));
    QVERIFY(!drag.move({30, 30}, data.get()));
    scene.view->add(scene.these("b"), false);
    QVERIFY(drag.move({40, 40}, data.get()));
    QCOMPARE(drag.action, Qt::LinkAction);
    offered.clear();
    QVERIFY(!drag.move({40, 40}, data.get()));
}

void tst_DropPayloads::eventsWithoutDataAreRefused()
{
    const Scene scene("ab");
    const Data data = offer(scene.these("b"));
    SentDrag drag(*scene.view);
    QVERIFY(!drag.enter({10, 10}, nullptr));
    QVERIFY(drag.enter({10, 10}, data.get()));
    QVERIFY(!drag.move({10, 10}, nullptr));
    QVERIFY(drag.move({10, 10}, data.get()));
    QVERIFY(!drag.drop({10, 10}, nullptr));
    QCOMPARE(dumpNodes(*scene.view), "a+ b"s);
}

void tst_DropPayloads::placeDoesNotMatter_data()
{
    QTest::addColumn<QPoint>("pos");
    QTest::newRow("at the left top") << QPoint(0, 0);
    QTest::newRow("at the right bottom") << QPoint(299, 199);
    QTest::newRow("outside") << QPoint(-50, 5000);
    QTest::newRow("in the middle") << QPoint(150, 100);
}

void tst_DropPayloads::placeDoesNotMatter()
{
    QFETCH(QPoint, pos);
    const Scene scene("ab");
    const Data data = offer(scene.these("b"));
    SentDrag drag(*scene.view);
    QVERIFY(drag.enter(pos, data.get()));
    QCOMPARE(drag.action, Qt::LinkAction);
    QVERIFY(drag.move(pos, data.get()));
    QCOMPARE(drag.action, Qt::LinkAction);
}

void tst_DropPayloads::modifiersDoNotMatter_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("keys");
    QTest::newRow("none") << Qt::KeyboardModifiers(Qt::NoModifier);
    QTest::newRow("Shift") << Qt::KeyboardModifiers(Qt::ShiftModifier);
    QTest::newRow("Control") << Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("Alt") << Qt::KeyboardModifiers(Qt::AltModifier);
    QTest::newRow("Control and Shift") << (Qt::ControlModifier | Qt::ShiftModifier);
}

void tst_DropPayloads::modifiersDoNotMatter()
{
    QFETCH(Qt::KeyboardModifiers, keys);
    const Scene scene("ab");
    const Data data = offer(scene.these("b"));
    SentDrag drag(*scene.view, keys);
    QVERIFY(drag.enter({10, 10}, data.get()));
    QCOMPARE(drag.action, Qt::LinkAction);
    QVERIFY(drag.run({10, 10}, data.get()));
    QCOMPARE(dumpNodes(*scene.view), "a+ b+*"s);
}

void tst_DropPayloads::actionIsLink_data()
{
    QTest::addColumn<Qt::DropActions>("possible");
    QTest::addColumn<Qt::DropAction>("action");
    const Qt::DropActions copyOrMove = Qt::CopyAction | Qt::MoveAction;
    QTest::newRow("of all") << (copyOrMove | Qt::LinkAction) << Qt::LinkAction;
    QTest::newRow("alone") << Qt::DropActions(Qt::LinkAction) << Qt::LinkAction;
    // Qt falls back to the proposed one.
    QTest::newRow("where it isn't possible") << copyOrMove << Qt::CopyAction;
}

void tst_DropPayloads::actionIsLink()
{
    QFETCH(Qt::DropActions, possible);
    QFETCH(Qt::DropAction, action);
    const Scene scene("ab");
    const Data data = offer(scene.these("b"));
    SentDrag drag(*scene.view, Qt::NoModifier, possible);
    QVERIFY(drag.enter({10, 10}, data.get()));
    QCOMPARE(drag.action, action);
    QVERIFY(drag.move({10, 10}, data.get()));
    QCOMPARE(drag.action, action);
}

void tst_DropPayloads::knownOnesAreTakenInTheirOrder()
{
    const Scene scene("abcde");
    const RefT<VOM::Object> stranger = makeThing("x");
    const Data data = offer({scene['d'], {}, scene['b'], stranger, scene['b'], stranger, {}});
    QCOMPARE(namesInOrder(Access::getDropObjs(*scene.view, *data)), "d b b"s);
}

void tst_DropPayloads::dropOfNothingKnownDoesNothing_data()
{
    QTest::addColumn<bool>("known");
    QTest::newRow("unknown ones") << false;
    QTest::newRow("ones that were known before the last move") << true;
}

void tst_DropPayloads::dropOfNothingKnownDoesNothing()
{
    QFETCH(bool, known);
    const Scene scene("abc");
    scene.view->setSel(scene.these("a"));
    SignalNotes notes(*scene.view);
    const Data data = offer(scene.these("b"));
    const Data dropped = known ? offer(scene.these("b")) : offer({makeThing("x")});
    SentDrag drag(*scene.view);
    QVERIFY(drag.enter({10, 10}, data.get()));
    QVERIFY(drag.move({10, 10}, data.get()));
    scene.view->remove(scene.these("b"));
    const Asked asked = askedBy(*scene.view, [&] { QVERIFY(!drag.drop({10, 10}, dropped.get())); });
    QVERIFY(!asked.repaint && !asked.bounds);
    QCOMPARE(dumpNodes(*scene.view), "a+* c"s);
    QCOMPARE(notes.take(), ""s);
}

QTEST_MAIN(tst_DropPayloads)
#include "tst_DropPayloads.moc"
