#include "trees/v1/ModelDropScene.h"
#include "zrVOMGUI/foundation/vom/XmlExporter.h"
#include "zrVOMGUI/foundation/vom/XmlImporter.h"
#include "zrVOMGUI/transfer/MimeTypes.h"

#include <limits>
#include <stdexcept>

using namespace model_test;
namespace MimeType = ZR::VOM::GUI::MimeType;

namespace {

class NoDeepCopy : public Object {
public:
    RefT<Object> clone() override { throw std::runtime_error("no copy"); }
};

RefT<Xml::Importer> importerOfThings()
{
    const RefT<ClassRegistry> registry(new ClassRegistry);
    registry->add<Thing>(ClassRegistry::Fields::Open);
    return new XmlImporter(registry);
}

} // namespace

/// What a drag from the model carries, and where drops may land.
class tst_ObjectTreeModelDrops : public QObject {
    Q_OBJECT

private slots:
    void dragCarriesObjectsInOrder();
    void dragCarriesXmlWithAnExporter();
    void deadObjectsAreCarriedAsNothing();
    void fieldRowsCarryNothing();
    void badIndexesCarryNothing();
    void copiesThatFailAreLeftOut();
    void copiesAreMadeAtEachDragStart();
    void dragListsStayUntilTheNextDrag();

    void nullPayloadIsRefused();
    void fieldRowsTakeDrops_data();
    void fieldRowsTakeDrops();
    void otherRowsRefuse();
    void dropIsToldInFull();
    void columnPlaysNoPart();
    void payloadWithoutObjectsReachesTheRule();
    void xmlIsReadWhereNoReferenceIs();
    void copiesAloneKeepTheImporterOut();
    void badXmlRefuses();
    void dropOfAnotherProcessNeedsAnImporter();

    void hostAloneDecides();
    void hostMayDestroyTheModelItAllows_data();
    void hostMayDestroyTheModelItAllows();
    void hostThatRaisesLeavesItsAnswer();
    void dropIsTrueWhenTheHostRaises();
    void nobodyCarriesADropOut();

    void absurdRowsAreJudged();
};

void tst_ObjectTreeModelDrops::dragCarriesObjectsInOrder()
{
    DropScene scene;
    const std::unique_ptr<QMimeData> mime(scene.model->mimeData(
        {scene.at({0, 3, 1}), scene.at({0, 3}), scene.at({0}), scene.at({0, 3, 1})}));
    Things objs, copies;
    QVERIFY(GUI::getFromMimeData(*mime, objs));
    QCOMPARE(objs, (Things{scene.e(), scene.a(), scene.e()}));
    QVERIFY(GUI::getCopyFromMimeData(*mime, copies));
    QCOMPARE(copies.size(), std::size_t(3));
    QVERIFY(copies[0] && copies[0] != scene.e());
    QVERIFY(copies[0] == copies[2]);
    QVERIFY(!mime->hasFormat(MimeType::objectsXml));
}

void tst_ObjectTreeModelDrops::dragCarriesXmlWithAnExporter()
{
    Scene scene(RefT<Exporter>(new XmlExporter));
    scene.show();
    const std::unique_ptr<QMimeData> mime(scene.model->mimeData({scene.at({0})}));
    QVERIFY(mime->hasFormat(MimeType::objects));
    QVERIFY(mime->hasFormat(MimeType::objectCopies));
    QVERIFY(mime->hasFormat(MimeType::objectsXml));
}

void tst_ObjectTreeModelDrops::deadObjectsAreCarriedAsNothing()
{
    DropScene scene;
    const QModelIndex c = scene.at({0, 1, 0});
    scene.c().reset();
    const std::unique_ptr<QMimeData> mime(scene.model->mimeData({c, scene.at({0})}));
    Things objs, copies;
    QVERIFY(GUI::getFromMimeData(*mime, objs));
    QCOMPARE(objs, (Things{{}, scene.a()}));
    QVERIFY(GUI::getCopyFromMimeData(*mime, copies));
    QVERIFY(copies.size() == 2 && !copies[0]);
}

void tst_ObjectTreeModelDrops::fieldRowsCarryNothing()
{
    DropScene scene;
    const std::unique_ptr<QMimeData> mime(
        scene.model->mimeData({scene.at({0, 3}), scene.at({0, 0})}));
    Things objs{scene.a()};
    QVERIFY(GUI::getFromMimeData(*mime, objs));
    QVERIFY(objs.empty());
}

void tst_ObjectTreeModelDrops::badIndexesCarryNothing()
{
    DropScene scene, other;
    const QModelIndex gone = scene.at({0, 3, 1});
    scene.own().replace(0, 2, {});
    scene.model->update();
    const std::unique_ptr<QMimeData> mime(
        scene.model->mimeData({QModelIndex(), gone, other.at({0}), scene.top()}));
    Things objs{scene.a()};
    QVERIFY(GUI::getFromMimeData(*mime, objs));
    QVERIFY(objs.empty());
}

void tst_ObjectTreeModelDrops::copiesThatFailAreLeftOut()
{
    DropScene scene;
    const RefT<Object> bad(new NoDeepCopy);
    scene.model->addRow(PtrT<Object>(bad), 0);
    const GUI::Reports reports;
    const std::unique_ptr<QMimeData> mime(scene.model->mimeData({scene.at({0})}));
    QCOMPARE(reports.texts,
             std::vector<std::string>{"ZR::VOM::GUI::V1::ObjectTreeModel::mimeData: no copy"});
    Things objs, copies{bad};
    QVERIFY(GUI::getFromMimeData(*mime, objs));
    QCOMPARE(objs, Things{bad});
    QVERIFY(GUI::getCopyFromMimeData(*mime, copies));
    QVERIFY(copies.empty());
}

void tst_ObjectTreeModelDrops::copiesAreMadeAtEachDragStart()
{
    DropScene scene;
    Things copies[2];
    for (Things &made : copies) {
        const std::unique_ptr<QMimeData> mime(scene.model->mimeData({scene.at({0, 3, 1})}));
        QVERIFY(GUI::getCopyFromMimeData(*mime, made));
    }
    QVERIFY(copies[0].at(0) && copies[1].at(0) && copies[0][0] != copies[1][0]);
}

void tst_ObjectTreeModelDrops::dragListsStayUntilTheNextDrag()
{
    DropScene scene;
    const std::unique_ptr<QMimeData> mime(scene.model->mimeData({scene.at({0, 3, 0})}));
    const PtrT<Object> d(scene.d());
    scene.d().reset();
    scene.own().replace(0, 2, {});
    QVERIFY(d);
    delete scene.model->mimeData({});
    QVERIFY(!d);
}

void tst_ObjectTreeModelDrops::nullPayloadIsRefused()
{
    DropScene scene;
    QVERIFY(!scene.canDrop(nullptr, scene.at({0, 3})));
    QVERIFY(!scene.drop(nullptr, scene.at({0, 3})));
}

void tst_ObjectTreeModelDrops::fieldRowsTakeDrops_data()
{
    QTest::addColumn<int>("fieldRow");
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("action");
    QTest::addColumn<std::string>("place"); // Empty when refused.
    const auto copy = int(Qt::CopyAction), move = int(Qt::MoveAction), ignore = 0;
    QTest::newRow("onto an owning link") << 0 << -1 << copy << std::string("a/part -1: a/part -1");
    QTest::newRow("onto a watching link, whatever the action")
        << 1 << -1 << ignore << std::string("a/next -1: a/next -1");
    QTest::newRow("onto a list") << 3 << -1 << copy << std::string("a/own -1: a/own -1");
    QTest::newRow("into a list") << 3 << 2 << copy << std::string("a/own 2: a/own 2");
    QTest::newRow("beyond a list") << 2 << 77 << copy << std::string("a/all 77: a/all 77");
    QTest::newRow("moved beyond a list") << 3 << 77 << move << std::string();
    QTest::newRow("moved into a list") << 3 << 1 << move << std::string("a/own 1: a/own 1");
    QTest::newRow("ignored by a list") << 3 << 1 << ignore << std::string();
}

void tst_ObjectTreeModelDrops::fieldRowsTakeDrops()
{
    QFETCH(int, fieldRow);
    QFETCH(int, row);
    QFETCH(int, action);
    QFETCH(std::string, place);
    DropScene scene;
    const Payload payload(makeThings("x"));
    const QModelIndex parent = scene.at({0, fieldRow});
    QCOMPARE(scene.canDrop(payload.mime.get(), parent, row, Qt::DropAction(action)),
             !place.empty());
    QVERIFY(scene.drops.empty());
    QCOMPARE(scene.drop(payload.mime.get(), parent, row, Qt::DropAction(action)), !place.empty());
    QCOMPARE(scene.drops.size(), std::size_t(place.empty() ? 0 : 1));
    if (!place.empty())
        QCOMPARE(scene.drops[0].place(), place);
}

void tst_ObjectTreeModelDrops::otherRowsRefuse()
{
    DropScene scene;
    scene.askHost("own");
    const Payload payload(makeThings("x"));
    const QModelIndex gone = scene.at({0, 3, 1});
    scene.own().replace(0, 2, {});
    scene.model->update();
    for (QModelIndex const &parent : {QModelIndex(), scene.top(), scene.at({0}), gone}) {
        QVERIFY(!scene.canDrop(payload.mime.get(), parent));
        QVERIFY(!scene.drop(payload.mime.get(), parent));
    }
    QVERIFY(scene.asked.empty());
}

void tst_ObjectTreeModelDrops::dropIsToldInFull()
{
    DropScene scene;
    const Payload payload(makeThings("xy"), makeThings("zw"));
    QVERIFY(scene.drop(payload.mime.get(), scene.at({0, 3}), 1, Qt::LinkAction));
    DropTold const &told = scene.drops.at(0);
    QCOMPARE(told.action, Qt::LinkAction);
    QCOMPARE(told.objs, payload.objs);
    QCOMPARE(told.copies, payload.copies);
    QVERIFY(!told.fromXml);
    QCOMPARE(told.place(), std::string("a/own 1: a/own 1"));
}

void tst_ObjectTreeModelDrops::columnPlaysNoPart()
{
    DropScene scene;
    const Payload payload(makeThings("x"));
    for (int column : {-1, 0, 7}) {
        QVERIFY(scene.canDrop(payload.mime.get(), scene.at({0, 3}), 1, Qt::CopyAction, column));
        QVERIFY(scene.drop(payload.mime.get(), scene.at({0, 3}), 1, Qt::CopyAction, column));
    }
}

void tst_ObjectTreeModelDrops::payloadWithoutObjectsReachesTheRule()
{
    DropScene scene;
    QMimeData text;
    text.setText("x");
    // No importer: a list takes no objects, and a single link wants one.
    QVERIFY(scene.drop(&text, scene.at({0, 3}), 0));
    QVERIFY(scene.drops.at(0).objs.empty());
    QVERIFY(!scene.drop(&text, scene.at({0, 1})));
}

void tst_ObjectTreeModelDrops::xmlIsReadWhereNoReferenceIs()
{
    DropScene scene(importerOfThings());
    const Payload payload(makeThings("x"), {}, RefT<Exporter>(new XmlExporter));
    QVERIFY(scene.drop(payload.mime.get(), scene.at({0, 3}), 0));
    QVERIFY(!scene.drops.at(0).fromXml);
    QMimeData foreign;
    foreign.setData(MimeType::objectsXml, payload.mime->data(MimeType::objectsXml));
    QVERIFY(scene.canDrop(&foreign, scene.at({0, 3}), 0));
    QVERIFY(scene.drop(&foreign, scene.at({0, 3}), 0));
    QVERIFY(scene.drops.at(1).fromXml);
    QCOMPARE(scene.drops[1].objs.size(), std::size_t(1));
    QVERIFY(scene.drops[1].objs[0] != payload.objs[0]);
    QVERIFY(scene.drops[1].copies.empty());
}

/// A payload of copies alone is one of this process, whatever XML lies beside them.
void tst_ObjectTreeModelDrops::copiesAloneKeepTheImporterOut()
{
    DropScene scene(importerOfThings());
    const Payload payload(makeThings("x"), makeThings("y"), RefT<Exporter>(new XmlExporter));
    payload.mime->removeFormat(MimeType::objects);
    QVERIFY(payload.mime->hasFormat(MimeType::objectsXml));
    QVERIFY(scene.drop(payload.mime.get(), scene.at({0, 3}), 0));
    QVERIFY(!scene.drops.at(0).fromXml);
    QVERIFY(scene.drops[0].objs.empty());
    QCOMPARE(scene.drops[0].copies, payload.copies);
    // A single link wants an object.
    QVERIFY(!scene.canDrop(payload.mime.get(), scene.at({0, 1})));
}

void tst_ObjectTreeModelDrops::badXmlRefuses()
{
    DropScene scene(importerOfThings());
    scene.askHost("own");
    QMimeData foreign;
    foreign.setData(MimeType::objectsXml, "<nonsense");
    QVERIFY(!scene.canDrop(&foreign, scene.at({0, 3}), 0));
    QVERIFY(!scene.drop(&foreign, scene.at({0, 3}), 0));
    QMimeData text;
    text.setText("x");
    QVERIFY(!scene.canDrop(&text, scene.at({0, 3}), 0));
    QVERIFY(scene.asked.empty());
}

void tst_ObjectTreeModelDrops::dropOfAnotherProcessNeedsAnImporter()
{
    DropScene scene;
    const Payload payload(makeThings("x"), {}, RefT<Exporter>(new XmlExporter));
    QMimeData foreign;
    foreign.setData(MimeType::objectsXml, payload.mime->data(MimeType::objectsXml));
    QVERIFY(!scene.canDrop(&foreign, scene.at({0, 1})));
}

void tst_ObjectTreeModelDrops::hostAloneDecides()
{
    DropScene scene;
    scene.askHost("own");
    const Payload two(makeThings("xy"));
    QVERIFY(scene.canDrop(two.mime.get(), scene.at({0, 3}), 9, Qt::IgnoreAction));
    QVERIFY(!scene.canDrop(two.mime.get(), scene.at({0, 2}), 0));
    QVERIFY(!scene.drop(two.mime.get(), scene.at({0, 2}), 0));
    QCOMPARE(scene.asked, (std::vector<std::string>{"a/own 9: a/own 9", "a/all 0: a/all 0",
                                                    "a/all 0: a/all 0"}));
}

void tst_ObjectTreeModelDrops::hostMayDestroyTheModelItAllows_data()
{
    QTest::addColumn<bool>("hideFields");
    QTest::newRow("field row") << false;
    QTest::newRow("object row") << true;
}

void tst_ObjectTreeModelDrops::hostMayDestroyTheModelItAllows()
{
    QFETCH(bool, hideFields);
    for (bool isDrop : {false, true}) {
        DropScene scene;
        scene.model->hideFields(hideFields);
        const Payload payload(makeThings("x"));
        scene.model->sigCanDrop.connect([&](auto const &sigData) {
            *sigData.result = true;
            scene.model.reset();
        });
        const QModelIndex row = hideFields ? scene.at({0}) : scene.at({0, 3});
        ObjectTreeModel &model = *scene.model;
        const QMimeData *const mime = payload.mime.get();
        QVERIFY(!(isDrop ? model.dropMimeData(mime, Qt::CopyAction, 0, 0, row)
                         : model.canDropMimeData(mime, Qt::CopyAction, 0, 0, row)));
        QVERIFY(!scene.model);
        QVERIFY(scene.drops.empty());
    }
}

void tst_ObjectTreeModelDrops::hostThatRaisesLeavesItsAnswer()
{
    for (bool answer : {false, true}) {
        DropScene scene;
        const Payload payload(makeThings("x"));
        scene.model->sigCanDrop.connect([answer](auto const &sigData) {
            if (answer)
                *sigData.result = true;
            throw std::runtime_error("no");
        });
        const GUI::Reports reports;
        QCOMPARE(scene.canDrop(payload.mime.get(), scene.at({0, 3})), answer);
        QCOMPARE(reports.texts,
                 std::vector<std::string>{"ZR::VOM::GUI::V1::ObjectTreeModel::canDrop: no"});
    }
}

void tst_ObjectTreeModelDrops::dropIsTrueWhenTheHostRaises()
{
    DropScene scene;
    const Payload payload(makeThings("x"));
    scene.model->sigDrop.connect([](auto const &) { throw std::runtime_error("no"); });
    const GUI::Reports reports;
    QVERIFY(scene.drop(payload.mime.get(), scene.at({0, 3})));
    QCOMPARE(reports.texts,
             std::vector<std::string>{"ZR::VOM::GUI::V1::ObjectTreeModel::dropMimeData: no"});
}

void tst_ObjectTreeModelDrops::nobodyCarriesADropOut()
{
    DropScene scene;
    const Payload payload(makeThings("x"));
    const std::string before = scene.dump();
    QVERIFY(scene.drop(payload.mime.get(), scene.at({0, 3}), 0, Qt::MoveAction));
    scene.model->update();
    QCOMPARE(scene.dump(), before);
}

void tst_ObjectTreeModelDrops::absurdRowsAreJudged()
{
    DropScene scene;
    const Payload payload(makeThings("x"));
    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    // An index beyond the end appends, and what is negative is huge.
    QVERIFY(scene.canDrop(payload.mime.get(), scene.at({0, 3}), lowest));
    QVERIFY(scene.canDrop(payload.mime.get(), scene.at({0, 3}), highest));
    scene.model->hideFields(true);
    scene.askHost("own");
    QVERIFY(scene.canDrop(payload.mime.get(), scene.at({0}), lowest));
    QVERIFY(!scene.canDrop(payload.mime.get(), scene.at({0}), highest));
}

QTEST_MAIN(tst_ObjectTreeModelDrops)
#include "tst_ObjectTreeModelDrops.moc"
