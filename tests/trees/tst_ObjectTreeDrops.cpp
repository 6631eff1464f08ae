#include "support/ErrorReports.h"
#include "support/QtVersion.h"
#include "support/SentDrag.h"
#include "trees/TreeScene.h"
#include "zrVOMGUI/foundation/vom/XmlExporter.h"
#include "zrVOMGUI/foundation/vom/XmlImporter.h"
#include "zrVOMGUI/transfer/MimeData.h"
#include "zrVOMGUI/transfer/MimeTypes.h"

#include <QDropEvent>
#include <QMimeData>

#include <stdexcept>

using namespace tree_test;
namespace MimeType = ZR::VOM::GUI::MimeType;

namespace {

constexpr auto noPosition = static_cast<std::size_t>(-1);

/// What a host is told of a drop.
struct Told {
    explicit Told(ObjectTreeView &view)
    {
        view.sigDrop.connect([this](auto const &sigData) {
            ++num;
            action = sigData.action;
            objs = sigData.objs;
            copies = sigData.copyObjs;
            fromXml = sigData.fromXml;
            rowPath = sigData.rowPath;
            rowIndex = sigData.rowIndex;
            path = sigData.path;
            index = sigData.index;
        });
    }
    int num = 0;
    Qt::DropAction action = Qt::IgnoreAction;
    Things objs, copies;
    bool fromXml = false;
    Path rowPath{PtrT<Object>()}, path{PtrT<Object>()};
    std::size_t rowIndex = 0, index = 0;
};

/// A payload, and the lists that it names.
struct Payload {
    explicit Payload(Things const &dropped, Things const &copied = {},
                     RefT<Exporter> const &exporter = {})
        : objs(dropped)
        , copies(copied)
        , mime(GUI::createMimeData(exporter, &objs, copied.empty() ? nullptr : &copies))
    {
    }
    Things objs, copies;
    std::unique_ptr<QMimeData> mime;
};

/// Counts what is read of it.
class CountedMimeData : public QMimeData {
public:
    mutable int numReads = 0;

protected:
    QVariant retrieveData(QString const &type, MimeValueType kind) const override
    {
        ++numReads;
        return QMimeData::retrieveData(type, kind);
    }
};

QDropEvent eventOf(QMimeData const *mime, Qt::DropAction action = Qt::CopyAction)
{
    // The proposed action follows the modifiers.
    const Qt::KeyboardModifiers modifiers = action == Qt::MoveAction   ? Qt::ShiftModifier
                                            : action == Qt::LinkAction ? Qt::AltModifier
                                                                       : Qt::NoModifier;
    return QDropEvent(QPointF(1, 1), Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, mime,
                      Qt::LeftButton, modifiers);
}

bool canDrop(Scene &scene, Payload const &payload, RowHandle const &row,
             std::size_t index = noPosition, Qt::DropAction action = Qt::CopyAction)
{
    QDropEvent event = eventOf(payload.mime.get(), action);
    return scene.view->onCanDrop(event, row, index);
}

void drop(Scene &scene, Payload const &payload, RowHandle const &row,
          std::size_t index = noPosition, Qt::DropAction action = Qt::CopyAction)
{
    QDropEvent event = eventOf(payload.mime.get(), action);
    scene.view->onDrop(event, row, index);
}

} // namespace

/// What leaves the tree, and where drops may land.
class tst_ObjectTreeDrops : public QObject {
    Q_OBJECT

private slots:
    void dragCarriesObjectsAndCopies();
    void rowsWithoutObjectsCarryNothing();
    void copiesThatFailAreLeftOut();
    void fieldRowsTakeDrops();
    void listTakesAtItsPosition();
    void objectRowsRefuseWhileFieldsShow();
    void objectRowStandsForItsFirstFieldThatTakes();
    void topPositionMeansTheLowerRow();
    void topPositionZeroMeansTheFirstRow();
    void hiddenFieldsGiveNoPositionBetweenValues();
    void placesThatAreNoneRefuse();
    void nothingAndIgnoreRefuse();
    void moveFollowsTheRule();
    void dragIsJudgedByTheProposedActionAndTheDropByTheAgreedOne();
    void unknownPayloadReachesTheRule();
    void xmlIsReadWithAnImporter();
    void badXmlRefuses();
    void copiesAloneAreReadButNotJudged();
    void listenersAloneDecide();
    void listenersAreToldAllOfIt();
    void listenersAreAskedAboutEachHiddenField();
    void throwingListenerIsReported();
    void dropWithoutListenersChangesNothing();
    void dropThatIsRefusedAtLastIsNotAccepted();
    void hiddenPositionsAreNone();
};

void tst_ObjectTreeDrops::dragCarriesObjectsAndCopies()
{
    Scene scene(RefT<Exporter>(new XmlExporter));
    scene.show();
    const std::unique_ptr<QMimeData> mime(scene.view->makeMimeData(
        {scene.row(scene.path("own", 1)), scene.row(scene.path("own")), scene.row(scene.path())}));
    Things objs, copies;
    QVERIFY(GUI::getFromMimeData(*mime, objs));
    QCOMPARE(objs, (Things{scene.e(), scene.a()}));
    QVERIFY(GUI::getCopyFromMimeData(*mime, copies));
    QCOMPARE(copies.size(), std::size_t(2));
    QVERIFY(copies[0] && copies[0] != scene.e());
    QVERIFY(mime->hasFormat(MimeType::objectsXml));
}

void tst_ObjectTreeDrops::rowsWithoutObjectsCarryNothing()
{
    Scene scene;
    scene.show();
    fieldOf<FieldPtr>(scene.a(), "next").set({});
    const std::unique_ptr<QMimeData> mime(
        scene.view->makeMimeData({scene.row(scene.path("own")), scene.row(scene.path("next", 0))}));
    Things objs = scene.things;
    QVERIFY(GUI::getFromMimeData(*mime, objs));
    QVERIFY(objs.empty());
}

void tst_ObjectTreeDrops::copiesThatFailAreLeftOut()
{
    class Unique : public Thing {
    public:
        RefT<Object> clone() override { throw std::runtime_error("unique"); }
    };
    ZR::VOM::GUI::Reports reports;
    Scene scene;
    const RefT<Object> unique = makeThing<Unique>("u");
    scene.view->addRow(unique, 0);
    const std::unique_ptr<QMimeData> mime(
        scene.view->makeMimeData({scene.row(Path(PtrT<Object>(unique)))}));
    QVERIFY(mime->hasFormat(MimeType::objects));
    QCOMPARE(reports.texts,
             std::vector<std::string>{"ZR::VOM::GUI::ObjectTreeView::makeMimeData: unique"});
}

void tst_ObjectTreeDrops::fieldRowsTakeDrops()
{
    Scene scene;
    scene.show();
    Told told(*scene.view);
    const Payload payload({scene.e()}, {makeThing("copy")});
    const RowHandle row = scene.row(scene.path("part"));
    QVERIFY(canDrop(scene, payload, row));
    drop(scene, payload, row, noPosition, Qt::LinkAction);
    QCOMPARE(told.num, 1);
    QCOMPARE(told.action, Qt::LinkAction);
    QCOMPARE(told.objs, payload.objs);
    QCOMPARE(told.copies, payload.copies);
    QVERIFY(!told.fromXml);
    QCOMPARE(told.path.getLast().field.get(), &scene.field("part"));
    QCOMPARE(told.rowPath.getLast().field.get(), &scene.field("part"));
    QCOMPARE(told.index, noPosition);
    QVERIFY(!canDrop(scene, Payload({scene.d(), scene.e()}), row));
}

void tst_ObjectTreeDrops::listTakesAtItsPosition()
{
    Scene scene;
    scene.show();
    Told told(*scene.view);
    const Payload payload({scene.b(), scene.c()});
    drop(scene, payload, scene.row(scene.path("own")), 1);
    QCOMPARE(told.rowIndex, std::size_t(1));
    QCOMPARE(told.index, std::size_t(1));
    QCOMPARE(scene.own().getNum(), std::size_t(2));
}

void tst_ObjectTreeDrops::objectRowsRefuseWhileFieldsShow()
{
    Scene scene;
    scene.show();
    const Payload payload({scene.e()});
    QVERIFY(!canDrop(scene, payload, scene.row(scene.path())));
    scene.view->setHideFields(true);
    QVERIFY(canDrop(scene, payload, scene.row(scene.path())));
}

void tst_ObjectTreeDrops::objectRowStandsForItsFirstFieldThatTakes()
{
    Scene scene;
    scene.view->setHideFields(true);
    scene.show();
    Told told(*scene.view);
    drop(scene, Payload({scene.e()}), scene.row(scene.path()));
    QCOMPARE(told.path.getLast().field.get(), &scene.field("part"));
    QCOMPARE(told.rowPath.getObj().get(), scene.a().get());
    // Two objects fit into a list only.
    drop(scene, Payload({scene.d(), scene.e()}), scene.row(scene.path()));
    QCOMPARE(told.path.getLast().field.get(), &scene.field("all"));
    scene.view->addAcceptedField("", "own");
    drop(scene, Payload({scene.d(), scene.e()}), scene.row(scene.path()));
    QCOMPARE(told.path.getLast().field.get(), &scene.field("own"));
}

void tst_ObjectTreeDrops::topPositionMeansTheLowerRow()
{
    Scene scene;
    scene.view->addRow(scene.own(), 0);
    scene.show();
    scene.dump();
    Told told(*scene.view);
    const RowHandle root = scene.row(scene.path())->getParent();
    const Payload payload({scene.b()});
    QVERIFY(!canDrop(scene, payload, root, 0));
    QVERIFY(canDrop(scene, payload, root, 1));
    QVERIFY(!canDrop(scene, payload, root, 2));
    QVERIFY(!canDrop(scene, payload, root));
    drop(scene, payload, root, 1);
    QCOMPARE(told.path.getLast().field.get(), &scene.field("own"));
    QCOMPARE(told.index, noPosition);
    QCOMPARE(told.rowIndex, noPosition);
}

void tst_ObjectTreeDrops::topPositionZeroMeansTheFirstRow()
{
    Scene scene;
    scene.show();
    scene.view->addRow(scene.own(), 0);
    scene.dump();
    Told told(*scene.view);
    const RowHandle root = scene.row(scene.path())->getParent();
    drop(scene, Payload({scene.b()}), root, 0);
    QCOMPARE(told.num, 1);
    QCOMPARE(told.path.getLast().field.get(), &scene.field("own"));
    QCOMPARE(told.rowIndex, noPosition);
}

/// A whole drop between two values, whose row of the field isn't seen.
void tst_ObjectTreeDrops::hiddenFieldsGiveNoPositionBetweenValues()
{
    Scene scene;
    scene.view->setHideFields(true);
    scene.view->addAcceptedField("", "own");
    scene.show();
    scene.open(scene.path());
    QCOMPARE(scene.dump(), std::string("'a' ..'d' ..'e'"));
    Told told(*scene.view);
    const Payload payload({scene.b()});
    const int height = scene.view->getRowHeight();
    SentDrag drag(*scene.view);
    QVERIFY(drag.run({60, 2 * height + 1}, payload.mime.get()));
    QCOMPARE(told.num, 1);
    QCOMPARE(told.path.getLast().field.get(), &scene.field("own"));
    QCOMPARE(told.index, noPosition);
}

void tst_ObjectTreeDrops::placesThatAreNoneRefuse()
{
    Scene scene;
    scene.show();
    fieldOf<FieldPtr>(scene.a(), "next").set({});
    const Payload payload({scene.e()});
    QVERIFY(!canDrop(scene, payload, scene.row(scene.path("next", 0))));
    QVERIFY(!canDrop(scene, payload, {}));
}

void tst_ObjectTreeDrops::nothingAndIgnoreRefuse()
{
    Scene scene;
    scene.show();
    const RowHandle row = scene.row(scene.path("part"));
    QDropEvent none = eventOf(nullptr);
    QVERIFY(!scene.view->onCanDrop(none, row, noPosition));
    scene.view->onDrop(none, row, noPosition);
    const Payload payload({scene.e()});
    // Refused before anything is read.
    CountedMimeData counted;
    for (QString const &type : payload.mime->formats())
        counted.setData(type, payload.mime->data(type));
    counted.numReads = 0;
    QDropEvent ignored(QPointF(1, 1), Qt::IgnoreAction, &counted, Qt::LeftButton, {});
    QVERIFY(!scene.view->onCanDrop(ignored, row, noPosition));
    scene.view->onDrop(ignored, row, noPosition);
    QCOMPARE(counted.numReads, 0);
    QDropEvent copied = eventOf(&counted);
    QVERIFY(scene.view->onCanDrop(copied, row, noPosition));
    QVERIFY(counted.numReads > 0);
}

void tst_ObjectTreeDrops::moveFollowsTheRule()
{
    Scene scene;
    scene.show();
    const RowHandle row = scene.row(scene.path("own"));
    QVERIFY(canDrop(scene, Payload({scene.b()}), row, 0, Qt::MoveAction));
    QVERIFY(!canDrop(scene, Payload({scene.a()}), row, 0, Qt::MoveAction));
    QVERIFY(canDrop(scene, Payload({scene.a()}), row, 0, Qt::LinkAction));
    // The end of a list has to be named for a move.
    QVERIFY(canDrop(scene, Payload({scene.b()}), row, 2, Qt::MoveAction));
    QVERIFY(!canDrop(scene, Payload({scene.b()}), row, noPosition, Qt::MoveAction));
    QVERIFY(canDrop(scene, Payload({scene.b()}), row, noPosition, Qt::LinkAction));
}

/// KEPT: a drag in motion is judged by its proposed action, a drop by the one agreed upon.
void tst_ObjectTreeDrops::dragIsJudgedByTheProposedActionAndTheDropByTheAgreedOne()
{
    Scene scene;
    scene.show();
    Told told(*scene.view);
    const RowHandle row = scene.row(scene.path("own"));
    // The list can't own what owns it: it may be linked there, and not moved there.
    const Payload payload({scene.a()});
    QDropEvent event = eventOf(payload.mime.get(), Qt::LinkAction);
    event.setDropAction(Qt::MoveAction);
    QCOMPARE(event.proposedAction(), Qt::LinkAction);
    QVERIFY(scene.view->onCanDrop(event, row, 0));
    scene.view->onDrop(event, row, 0);
    QCOMPARE(told.num, 0);
    QDropEvent reverse = eventOf(payload.mime.get(), Qt::MoveAction);
    reverse.setDropAction(Qt::LinkAction);
    QVERIFY(!scene.view->onCanDrop(reverse, row, 0));
    scene.view->onDrop(reverse, row, 0);
    QCOMPARE(told.num, 1);
    QCOMPARE(told.action, Qt::LinkAction);
}

void tst_ObjectTreeDrops::unknownPayloadReachesTheRule()
{
    Scene scene;
    scene.show();
    Told told(*scene.view);
    Payload payload({});
    payload.mime->removeFormat(MimeType::objects);
    // No objects are nothing that a list refuses.
    QVERIFY(canDrop(scene, payload, scene.row(scene.path("own"))));
    QVERIFY(!canDrop(scene, payload, scene.row(scene.path("part"))));
}

void tst_ObjectTreeDrops::xmlIsReadWithAnImporter()
{
    const RefT<ClassRegistry> registry(new ClassRegistry);
    registry->add<Thing>(ClassRegistry::Fields::Open);
    Scene scene({}, RefT<Xml::Importer>(new XmlImporter(registry)));
    scene.show();
    Told told(*scene.view);
    Payload payload({makeThing("x")}, {}, RefT<Exporter>(new XmlExporter));
    payload.mime->removeFormat(MimeType::objects);
    drop(scene, payload, scene.row(scene.path("own")));
    QCOMPARE(told.num, 1);
    QVERIFY(told.fromXml);
    QCOMPARE(told.objs.size(), std::size_t(1));
    QVERIFY(told.objs[0] != payload.objs[0]);
}

void tst_ObjectTreeDrops::badXmlRefuses()
{
    Scene scene({}, RefT<Xml::Importer>(new XmlImporter({})));
    scene.show();
    Payload payload({});
    payload.mime->removeFormat(MimeType::objects);
    payload.mime->setData(MimeType::objectsXml, "<model");
    QVERIFY(!canDrop(scene, payload, scene.row(scene.path("own"))));
}

void tst_ObjectTreeDrops::copiesAloneAreReadButNotJudged()
{
    const RefT<ClassRegistry> registry(new ClassRegistry);
    registry->add<Thing>(ClassRegistry::Fields::Open);
    Scene scene({}, RefT<Xml::Importer>(new XmlImporter(registry)));
    scene.show();
    Told told(*scene.view);
    Payload payload({makeThing("x")}, {makeThing("copy")}, RefT<Exporter>(new XmlExporter));
    payload.mime->removeFormat(MimeType::objects);
    // One object would be taken.
    QVERIFY(!canDrop(scene, payload, scene.row(scene.path("part"))));
    drop(scene, payload, scene.row(scene.path("own")));
    QCOMPARE(told.num, 1);
    QVERIFY(!told.fromXml && told.objs.empty());
    QCOMPARE(told.copies, payload.copies);
}

void tst_ObjectTreeDrops::listenersAreToldAllOfIt()
{
    Scene scene;
    scene.show();
    const Payload payload({scene.e()}, {makeThing("copy")});
    int numAsked = 0;
    scene.view->sigCanDrop.connect([&](auto const &sigData) {
        ++numAsked;
        QCOMPARE(sigData.action, Qt::MoveAction);
        QCOMPARE(sigData.objs, payload.objs);
        QCOMPARE(sigData.copyObjs, payload.copies);
        QVERIFY(!sigData.fromXml && !*sigData.result);
        for (Path const *path : {&sigData.rowPath, &sigData.path}) {
            QCOMPARE(path->getType(), Path::Field);
            QCOMPARE(path->getRoot().get(), scene.a().get());
            QCOMPARE(path->getLast().field.get(), &scene.field("own"));
        }
        QCOMPARE(sigData.rowIndex, std::size_t(1));
        QCOMPARE(sigData.index, std::size_t(1));
    });
    QVERIFY(!canDrop(scene, payload, scene.row(scene.path("own")), 1, Qt::MoveAction));
    QCOMPARE(numAsked, 1);
}

void tst_ObjectTreeDrops::listenersAreAskedAboutEachHiddenField()
{
    Scene scene;
    scene.view->setHideFields(true);
    for (char const *name : {"part", "all", "own"})
        scene.view->addAcceptedField("", name);
    scene.show();
    scene.dump();
    std::string asked;
    scene.view->sigCanDrop.connect([&](auto const &sigData) {
        asked += ' ' + sigData.path.getLast().field->name;
        QCOMPARE(sigData.path.getNum(), std::size_t(1));
        QCOMPARE(sigData.path.getRoot().get(), scene.a().get());
        QCOMPARE(sigData.rowPath.getNum(), std::size_t(0));
        QCOMPARE(sigData.rowPath.getObj().get(), scene.a().get());
        QCOMPARE(sigData.index, noPosition);
        QCOMPARE(sigData.rowIndex, std::size_t(2));
    });
    const Payload payload({scene.e()});
    QVERIFY(!canDrop(scene, payload, scene.row(scene.path()), 2));
    QCOMPARE(asked, std::string(" part all own"));
}

void tst_ObjectTreeDrops::listenersAloneDecide()
{
    Scene scene;
    scene.show();
    bool answer = false;
    scene.view->sigCanDrop.connect([&](auto const &sigData) {
        if (answer)
            *sigData.result = true;
    });
    const Payload payload({scene.d(), scene.e()});
    QVERIFY(!canDrop(scene, payload, scene.row(scene.path("own"))));
    answer = true;
    QVERIFY(canDrop(scene, payload, scene.row(scene.path("part"))));
}

void tst_ObjectTreeDrops::throwingListenerIsReported()
{
    Scene scene;
    scene.show();
    ZR::VOM::GUI::Reports reports;
    scene.view->sigCanDrop.connect([](auto const &sigData) {
        *sigData.result = true;
        throw std::runtime_error("broken");
    });
    scene.view->sigDrop.connect([](auto const &) { throw std::runtime_error("broken, too"); });
    const Payload payload({scene.e()});
    drop(scene, payload, scene.row(scene.path("part")));
    QCOMPARE(reports.texts,
             (std::vector<std::string>{"ZR::VOM::GUI::ObjectTreeView::canDrop: broken",
                                       "ZR::VOM::GUI::ObjectTreeView::onDrop: broken, too"}));
    QCOMPARE(scene.dump(), std::string("'a'"));
}

void tst_ObjectTreeDrops::dropWithoutListenersChangesNothing()
{
    Scene scene;
    scene.show();
    drop(scene, Payload({scene.e()}), scene.row(scene.path("part")));
    QCOMPARE(fieldOf<FieldRef>(scene.a(), "part").get(), scene.b());
}

void tst_ObjectTreeDrops::dropThatIsRefusedAtLastIsNotAccepted()
{
    Scene scene;
    scene.show();
    scene.open(scene.path());
    scene.dump();
    const Payload payload({scene.e()});
    int numAsked = 0, numTold = 0;
    bool refuses = true;
    scene.view->sigCanDrop.connect(
        [&](auto const &sigData) { *sigData.result = !refuses || ++numAsked == 1; });
    scene.view->sigDrop.connect([&](auto const &) { ++numTold; });
    const auto isAccepted = [&] {
        const int height = scene.view->getRowHeight();
        const QPoint pos(100, height + height / 2);
        QDragEnterEvent enter(pos, Qt::MoveAction, payload.mime.get(), Qt::LeftButton, {});
        QApplication::sendEvent(scene.view->viewport(), &enter);
        QDropEvent event(pos, Qt::MoveAction, payload.mime.get(), Qt::LeftButton, {});
        QApplication::sendEvent(scene.view->viewport(), &event);
        return event.isAccepted();
    };
    QVERIFY(!isAccepted());
    QCOMPARE(numAsked, 2);
    QCOMPARE(numTold, 0);
    refuses = false;
    QVERIFY(isAccepted());
    QCOMPARE(numTold, 1);
}

void tst_ObjectTreeDrops::hiddenPositionsAreNone()
{
    Scene scene;
    scene.view->setHideFields(true);
    scene.show();
    Told told(*scene.view);
    drop(scene, Payload({scene.e()}), scene.row(scene.path()), 2);
    QCOMPARE(told.rowIndex, std::size_t(2));
    QCOMPARE(told.index, noPosition);
}

QTEST_MAIN(tst_ObjectTreeDrops)
#include "tst_ObjectTreeDrops.moc"
