#include "foundation/gui/DragScene.h"
#include "support/ErrorReports.h"
#include "support/Things.h"
#include "zrVOMGUI/foundation/vom/Exporter.h"
#include "zrVOMGUI/foundation/vom/XmlExporter.h"
#include "zrVOMGUI/foundation/vom/XmlImporter.h"
#include "zrVOMGUI/transfer/MimeData.h"
#include "zrVOMGUI/transfer/MimeTypes.h"
#include "zrVOMGUI/widgets/ObjectView.h"

#include <QDrag>
#include <QHBoxLayout>
#include <QLabel>
#include <QMimeData>
#include <QPointer>
#include <QStyle>

#include <functional>
#include <iostream>
#include <memory>
#include <sstream>

using namespace ZR::VOM;
using namespace ZR::VOM::GUI;
using ZR::PtrT;
using ZR::RefT;
using Objects = std::vector<RefT<Object>>;

namespace {

/// A slot that tells what it is asked.
class Slot : public ObjectView {
public:
    explicit Slot(QWidget *parent = nullptr, RefT<Xml::Importer> const &reader = {})
        : ObjectView(RefT<Exporter>(new XmlExporter), reader, parent)
    {
        setFieldName("name");
        sigConfirm.connect([this](auto const &) { log += "sigConfirm"; });
    }

    QString text() const { return labels().at(1)->text(); }
    bool hasIcon() const { return !labels().at(0)->pixmap(Qt::ReturnByValue).isNull(); }
    /// Even one that was refused before, which no application gets.
    void takeDrop(QDropEvent &event) { dropEvent(&event); }
    void takeEnter(QDragEnterEvent &event) { dragEnterEvent(&event); }
    QString take() { return std::exchange(log, {}).join(' '); }

    QStringList log;

protected:
    void onConfirm() override { log += "onConfirm"; }

private:
    QList<QLabel *> labels() const { return findChildren<QLabel *>(); }
};

/// Catches what is written to the standard output.
class Output {
public:
    Output()
        : before(std::cout.rdbuf(text.rdbuf()))
    {
    }
    ~Output() { std::cout.rdbuf(before); }
    QString take()
    {
        const std::string taken = text.str();
        text.str({});
        return QString::fromStdString(taken);
    }

private:
    std::ostringstream text;
    std::streambuf *const before;
};

class RedDB : public ObjectIconDB {
public:
    QIcon find(RefT<Object> const &) const override
    {
        QPixmap pixmap(16, 16);
        pixmap.fill(Qt::red);
        return pixmap;
    }
};

RefT<XmlImporter> makeImporter()
{
    const RefT<ClassRegistry> registry(new ClassRegistry);
    registry->add<Thing>(ClassRegistry::Fields::Open);
    return new XmlImporter(registry);
}

/// What a drag over the widget, and then a drop on it, come to.
struct DropResult {
    bool accepted;
    Qt::DropAction action;
};
DropResult dragOver(QWidget &widget, QMimeData const &payload, Qt::KeyboardModifiers modifiers = {},
                    Qt::DropActions possible = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction)
{
    QDragEnterEvent enter(QPoint(1, 1), possible, &payload, Qt::LeftButton, modifiers);
    enter.setAccepted(false);
    QApplication::sendEvent(&widget, &enter);
    return {enter.isAccepted(), enter.isAccepted() ? enter.dropAction() : Qt::IgnoreAction};
}
void drop(Slot &slot, QMimeData const &payload)
{
    QDropEvent event(QPointF(1, 1), Qt::CopyAction, &payload, Qt::LeftButton, {});
    event.setAccepted(false);
    slot.takeDrop(event);
    QVERIFY(event.isAccepted());
}

} // namespace

class tst_ObjectView : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void newSlotIsEmptyAndTakesEverything();
    void backgroundFollowsThePalette();
    void backgroundOfOtherStatesFollowsThePalette_data();
    void backgroundOfOtherStatesFollowsThePalette();
    void textStandsNextToTheIcon();
    void valueShowsIconAndLabel();
    void clearedSlotShowsNothing();
    void settersUpdateOnlyAValue();
    void labelFollowsTheNameField();
    void clearedSlotFollowsNothing();
    void labelMayBeInAnyScript();
    void iconFollowsTheStyle();
    void valueIsNotKeptAlive();
    void pictureOfADeadObjectStays();
    void labelIsNoMarkup();
    void confirmTellsTheClassAndThenTheHost();
    void slotShowsTheNewValueWhenItConfirms_data();
    void slotShowsTheNewValueWhenItConfirms();

    void dropTakesOneObject();
    void dropOfNoneOrSeveralIsRefused();
    void modifiersDecide_data();
    void modifiersDecide();
    void acceptedStepIsTraced();
    void moveIsJudgedByTheModifiersOfItsTime();
    void everyDropIsAccepted();
    void eventWithoutPayloadIsIgnored();
    void refusedStepIsNotTraced();
    void xmlIsTakenWithAnImporterOnly();
    void xmlThatDoesNotParseIsRefused();
    void referenceOfAnotherProcessIsRefused();

    void dragCarriesTheObject_data();
    void dragCarriesTheObject();
    void emptySlotCarriesAnEmptyReference_data();
    void emptySlotCarriesAnEmptyReference();
    void disabledSlotIsNotDragged();
    void shortMoveIsNoDrag();
    void moveAwayLeavesASetButEmptySlot_data();
    void moveAwayLeavesASetButEmptySlot();
    void copyAndLinkLeaveTheValue_data();
    void copyAndLinkLeaveTheValue();
    void dropOnItselfLeavesTheValue_data();
    void dropOnItselfLeavesTheValue();
    void slotMayDieDuringItsDrag_data();
    void slotMayDieDuringItsDrag();
    void slotThatDiesInItsDropLeavesAnEmptyPayload_data();
    void slotThatDiesInItsDropLeavesAnEmptyPayload();
    void secondStartDuringADragIsIgnored_data();
    void secondStartDuringADragIsIgnored();
    void derivedClassHearsTheEndOfADrag_data();
    void derivedClassHearsTheEndOfADrag();
    void mimeTypesAreKept();
    void mimeTypesJudgeNoDrop();
    void objectTakenByAnotherProgramIsGone();
    void dragWithoutAnExporterHasNoXml_data();
    void dragWithoutAnExporterHasNoXml();

    void derivedClassDecidesPictureTextAndDrop();
    void iconIsAsLargeAsThatOfButtons();
    void moveCountsBothWays();
    void otherButtonsDontDrag();
    void dragShowsTheObjectOnAPaleGround_data();
    void dragShowsTheObjectOnAPaleGround();
    void xmlComesInWhereTheReferenceMeansNothing();
    void brokenReferencesAreRefused_data();
    void brokenReferencesAreRefused();
    void deadValueIsHarmless();
    void objectThatIsDraggedLivesUntilTheEnd_data();
    void objectThatIsDraggedLivesUntilTheEnd();
    void databaseMayChangeTheDatabase();
    void databaseMayChangeTheValue_data();
    void databaseMayChangeTheValue();
    void importerMayDestroyTheSlot_data();
    void importerMayDestroyTheSlot();
    void hooksThatRaiseAreReported_data();
    void hooksThatRaiseAreReported();
    void slotIsDraggedAgainAfterAHookThatRaised_data();
    void slotIsDraggedAgainAfterAHookThatRaised();
    void databaseMayDestroyTheSlot_data();
    void databaseMayDestroyTheSlot();
    void listenerMayDestroyTheSlot_data();
    void listenerMayDestroyTheSlot();

private:
    /// Good until the next one is made: the list is named by its address.
    std::unique_ptr<QMimeData> payloadOf(Objects const &objs)
    {
        offeredObjs = objs;
        return std::unique_ptr<QMimeData>(createMimeData({}, &offeredObjs, nullptr));
    }
    void dragOut(std::vector<gui_test::Hand::Step> steps);

    std::unique_ptr<QWidget> window;
    QPointer<Slot> slot;
    QPointer<gui_test::Site> site;
    Objects things, offeredObjs;
};

/// A slot on the left, and a site that takes drops on the right.
void tst_ObjectView::init()
{
    things = makeThings("ab");
    window = std::make_unique<QWidget>();
    window->setGeometry(0, 0, 200, 60);
    slot = new Slot(window.get());
    slot->setGeometry(0, 0, 100, 60);
    site = new gui_test::Site(window.get());
    site->setGeometry(100, 0, 100, 60);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void tst_ObjectView::cleanup()
{
    window.reset();
}

/// Presses in the slot and moves while it drags; the steps begin when the drag runs.
void tst_ObjectView::dragOut(std::vector<gui_test::Hand::Step> steps)
{
    gui_test::press(*slot);
    const gui_test::Hand hand(std::move(steps));
    // The drag begins in here, and is over when it returns.
    const QPoint from = gui_test::centerOf(*slot);
    gui_test::sendMouse(*window, QEvent::MouseMove,
                        from + QPoint(QApplication::startDragDistance(), 0));
    QTRY_VERIFY(hand.isDone());
    if (window)
        gui_test::release(*window);
}

void tst_ObjectView::newSlotIsEmptyAndTakesEverything()
{
    QVERIFY(!slot->getValue());
    QVERIFY(!slot->isSet());
    QVERIFY(!slot->isTypeName());
    QVERIFY(!slot->isDragEnabled());
    QVERIFY(!slot->isDragIntern());
    const Qt::DropActions all = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    QCOMPARE(slot->getDragActions(), all);
    QCOMPARE(slot->getDropActions(), all);
    QCOMPARE(slot->getDefaultDragAction(), Qt::CopyAction);
    QCOMPARE(slot->getDefaultDropAction(), Qt::CopyAction);
    QVERIFY(slot->acceptDrops());
    QCOMPARE(slot->frameStyle(), 0x31);
    QVERIFY(slot->autoFillBackground());
    QCOMPARE(slot->palette().color(QPalette::Active, QPalette::Window),
             slot->palette().color(QPalette::Active, QPalette::Base));
    QCOMPARE(slot->layout()->contentsMargins(), QMargins(4, 4, 4, 4));
    auto const *const row = qobject_cast<QHBoxLayout *>(slot->layout());
    QVERIFY(row);
    QCOMPARE(row->stretch(0), 0);
    QCOMPARE(row->stretch(1), 1);
}

void tst_ObjectView::backgroundFollowsThePalette()
{
    const auto background = [&] {
        return slot->palette().color(QPalette::Active, QPalette::Window);
    };
    QPalette dark(Qt::darkGray, Qt::black);
    dark.setColor(QPalette::Base, Qt::darkBlue);
    window->setPalette(dark);
    QCOMPARE(background(), QColor(Qt::darkBlue));
    // The host's own choice stays.
    QPalette own = slot->palette();
    own.setColor(QPalette::Active, QPalette::Window, Qt::red);
    slot->setPalette(own);
    dark.setColor(QPalette::Base, Qt::darkGreen);
    window->setPalette(dark);
    QCOMPARE(background(), QColor(Qt::red));
}

void tst_ObjectView::backgroundOfOtherStatesFollowsThePalette_data()
{
    QTest::addColumn<int>("group");
    QTest::newRow("inactive") << int(QPalette::Inactive);
    QTest::newRow("disabled") << int(QPalette::Disabled);
}

void tst_ObjectView::backgroundOfOtherStatesFollowsThePalette()
{
    QFETCH(int, group);
    const auto background = [&](QWidget const &widget) {
        return widget.palette().color(QPalette::ColorGroup(group), QPalette::Window);
    };
    for (QColor const &color : {QColor(Qt::black), QColor(Qt::darkGreen)}) {
        QPalette dark(Qt::darkGray, color);
        dark.setColor(QPalette::Base, color.lighter());
        window->setPalette(dark);
        QCOMPARE(background(*slot), background(*window));
    }
    // The host's own choice stays.
    QPalette own = slot->palette();
    own.setColor(QPalette::ColorGroup(group), QPalette::Window, Qt::red);
    slot->setPalette(own);
    window->setPalette(QPalette(Qt::darkGray, Qt::darkBlue));
    QCOMPARE(background(*slot), QColor(Qt::red));
    QCOMPARE(slot->palette().color(QPalette::Active, QPalette::Window),
             slot->palette().color(QPalette::Active, QPalette::Base));
}

void tst_ObjectView::textStandsNextToTheIcon()
{
    QLabel const *const text = slot->findChildren<QLabel *>().last();
    QVERIFY(text->alignment() & Qt::AlignLeft);
    window->setLayoutDirection(Qt::RightToLeft);
    QVERIFY(text->alignment() & Qt::AlignRight);
    QVERIFY(text->alignment() & Qt::AlignAbsolute);
    window->setLayoutDirection(Qt::LeftToRight);
    QVERIFY(text->alignment() & Qt::AlignLeft);
}

void tst_ObjectView::valueShowsIconAndLabel()
{
    slot->setObjIconDB(RefT<ObjectIconDB>(new RedDB));
    QVERIFY(!slot->hasIcon());
    slot->setValue(things[0]);
    QCOMPARE(slot->text(), QString("'a'"));
    QVERIFY(slot->hasIcon());
    QVERIFY(slot->isSet());
    slot->setTypeName(true);
    QCOMPARE(slot->text(), QString("Thing 'a'"));
    slot->setObjIconDB({});
    QVERIFY(!slot->hasIcon());
    QCOMPARE(slot->take(), QString());
}

void tst_ObjectView::clearedSlotShowsNothing()
{
    slot->setObjIconDB(RefT<ObjectIconDB>(new RedDB));
    slot->setValue(things[0]);
    slot->clear();
    QCOMPARE(slot->text(), QString());
    QVERIFY(!slot->hasIcon());
    QVERIFY(!slot->isSet());
    QVERIFY(!slot->getValue());
    QCOMPARE(slot->take(), QString());
}

void tst_ObjectView::settersUpdateOnlyAValue()
{
    slot->setTypeName(true);
    slot->setObjIconDB(RefT<ObjectIconDB>(new RedDB));
    QCOMPARE(slot->text(), QString());
    QVERIFY(!slot->hasIcon());
}

void tst_ObjectView::labelFollowsTheNameField()
{
    slot->setValue(things[0]);
    fieldOf<FieldString>(things[0], "name").set("new");
    QCOMPARE(slot->text(), QString("'new'"));
    // No longer once another object is there.
    slot->setValue(things[1]);
    fieldOf<FieldString>(things[0], "name").set("newer");
    QCOMPARE(slot->text(), QString("'b'"));
    slot->setFieldName("other");
    fieldOf<FieldString>(things[1], "name").set("c");
    QVERIFY(!slot->text().contains('c'));
}

void tst_ObjectView::clearedSlotFollowsNothing()
{
    slot->setValue(things[0]);
    slot->clear();
    QVERIFY(!fieldOf<FieldString>(things[0], "name").sigSet.hasSlots());
    slot->setValue(things[0]);
    fieldOf<FieldString>(things[0], "name").set("new");
    QCOMPARE(slot->text(), QString("'new'"));
}

void tst_ObjectView::labelMayBeInAnyScript()
{
    const QString name = QString::fromUtf8("\xc3\xa4\xe6\xbc\xa2\xf0\x9f\x99\x82");
    slot->setValue(makeThing(name.toStdString()));
    QCOMPARE(slot->text(), "'" + name + "'");
}

void tst_ObjectView::iconFollowsTheStyle()
{
    slot->setObjIconDB(RefT<ObjectIconDB>(new RedDB));
    const auto changeStyle = [&] {
        QEvent event(QEvent::StyleChange);
        QApplication::sendEvent(slot, &event);
    };
    changeStyle();
    QVERIFY(!slot->hasIcon());
    slot->setValue(things[0]);
    slot->findChildren<QLabel *>().first()->clear();
    changeStyle();
    QVERIFY(slot->hasIcon());
}

/// KEPT: until the next value.
void tst_ObjectView::pictureOfADeadObjectStays()
{
    slot->setObjIconDB(RefT<ObjectIconDB>(new RedDB));
    slot->setValue(things[0]);
    things[0] = {};
    slot->setTypeName(true);
    slot->setFieldName("other");
    slot->setObjIconDB({});
    QCOMPARE(slot->text(), QString("'a'"));
    QVERIFY(slot->hasIcon());
    slot->setValue({});
    QCOMPARE(slot->text(), QString());
    QVERIFY(!slot->hasIcon());
}

void tst_ObjectView::valueIsNotKeptAlive()
{
    slot->setValue(things[0]);
    things[0] = {};
    QVERIFY(!slot->getValue());
    QVERIFY(slot->isSet());
    slot->setTypeName(true);
    slot->confirm();
}

void tst_ObjectView::labelIsNoMarkup()
{
    slot->setValue(makeThing("<b>bold</b>"));
    QCOMPARE(slot->findChildren<QLabel *>().at(1)->textFormat(), Qt::PlainText);
}

void tst_ObjectView::confirmTellsTheClassAndThenTheHost()
{
    slot->confirm();
    QCOMPARE(slot->take(), QString("onConfirm sigConfirm"));
}

void tst_ObjectView::slotShowsTheNewValueWhenItConfirms_data()
{
    QTest::addColumn<bool>("drops");
    QTest::newRow("after a drop") << true;
    QTest::newRow("when the object has moved away") << false;
}

void tst_ObjectView::slotShowsTheNewValueWhenItConfirms()
{
    QFETCH(bool, drops);
    class Own : public Slot {
    public:
        using Slot::onDragDrop;
        using Slot::Slot;
        void note(QString const &hook)
        {
            seen << QString("%1 %2 %3 %4")
                        .arg(hook, text(), hasIcon() ? "icon" : "none",
                             isSet() && getValue() ? "value" : "null");
        }
        QStringList seen;

    protected:
        void onConfirm() override { note("hook"); }
    };
    class NamedDB : public RedDB {
    public:
        QIcon find(RefT<Object> const &object) const override
        {
            return object && fieldOf<FieldString>(object, "name").get() == "b" ? RedDB::find(object)
                                                                               : QIcon();
        }
    };
    Own own;
    own.setObjIconDB(RefT<ObjectIconDB>(new NamedDB));
    own.setValue(things[drops ? 0 : 1]);
    own.sigConfirm.connect([&](auto const &) { own.note("signal"); });
    if (drops) {
        drop(own, *payloadOf({things[1]}));
        QCOMPARE(own.seen, (QStringList{"hook 'b' icon value", "signal 'b' icon value"}));
    } else {
        ZR::GUI::Drag drag(&own);
        own.onDragDrop(drag, Qt::MoveAction);
        QCOMPARE(own.seen, (QStringList{"hook  none null", "signal  none null"}));
    }
}

void tst_ObjectView::dropTakesOneObject()
{
    Output output;
    const auto payload = payloadOf({things[0]});
    const DropResult result = dragOver(*slot, *payload);
    QVERIFY(result.accepted);
    QCOMPARE(result.action, Qt::CopyAction);
    QVERIFY(!slot->getValue());
    drop(*slot, *payload);
    QCOMPARE(slot->getValue().get(), things[0].get());
    QCOMPARE(slot->take(), QString("onConfirm sigConfirm"));
}

void tst_ObjectView::dropOfNoneOrSeveralIsRefused()
{
    slot->setValue(things[0]);
    for (Objects const &objs : {Objects(), things}) {
        const auto payload = payloadOf(objs);
        QVERIFY(!dragOver(*slot, *payload).accepted);
        drop(*slot, *payload);
    }
    QMimeData text;
    text.setText("a");
    QVERIFY(!dragOver(*slot, text).accepted);
    drop(*slot, text);
    QCOMPARE(slot->getValue().get(), things[0].get());
    QCOMPARE(slot->take(), QString());
}

void tst_ObjectView::modifiersDecide_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<Qt::DropActions>("accepted");
    QTest::addColumn<Qt::DropActions>("offered");
    QTest::addColumn<Qt::DropAction>("action");
    const Qt::DropActions all = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    const auto row = [](char const *name, Qt::KeyboardModifiers modifiers, Qt::DropActions accepted,
                        Qt::DropActions offered, Qt::DropAction action) {
        QTest::newRow(name) << modifiers << accepted << offered << action;
    };
    row("none", {}, all, all, Qt::LinkAction);
    row("Shift moves", Qt::ShiftModifier, all, all, Qt::MoveAction);
    row("Control copies", Qt::ControlModifier, all, all, Qt::CopyAction);
    row("Alt links", Qt::AltModifier, all, all, Qt::LinkAction);
    row("Shift and Control fall to the default", Qt::ShiftModifier | Qt::ControlModifier, all, all,
        Qt::LinkAction);
    row("Meta falls to the default", Qt::MetaModifier, all, all, Qt::LinkAction);
    row("Shift where no move is accepted", Qt::ShiftModifier, Qt::CopyAction | Qt::LinkAction, all,
        Qt::IgnoreAction);
    row("Shift where no move is offered", Qt::ShiftModifier, all, Qt::CopyAction | Qt::LinkAction,
        Qt::IgnoreAction);
    row("default that isn't offered", {}, all, Qt::CopyAction, Qt::IgnoreAction);
    row("nothing in common", {}, Qt::LinkAction, Qt::MoveAction, Qt::IgnoreAction);
}

void tst_ObjectView::modifiersDecide()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(Qt::DropActions, accepted);
    QFETCH(Qt::DropActions, offered);
    QFETCH(Qt::DropAction, action);
    Output output;
    slot->setDropActions(accepted);
    slot->setDefaultDropAction(Qt::LinkAction);
    const DropResult result = dragOver(*slot, *payloadOf({things[0]}), modifiers, offered);
    QCOMPARE(result.accepted, action != Qt::IgnoreAction);
    QCOMPARE(result.action, action);
}

/// KEPT: each accepted step is told on the standard output.
void tst_ObjectView::acceptedStepIsTraced()
{
    Output output;
    dragOver(*slot, *payloadOf({things[0]}), Qt::ShiftModifier, Qt::CopyAction | Qt::MoveAction);
    QCOMPARE(output.take(), QString("ZR::VOM::GUI::ObjectView::onCanDrop()\n"
                                    "  dropActions: 3\n"
                                    "  dropAction: 2\n"));
}

/// KEPT: each accepted step is told on the standard output, also where it says the same again.
void tst_ObjectView::moveIsJudgedByTheModifiersOfItsTime()
{
    Output output;
    const auto payload = payloadOf({things[0]});
    slot->setDropActions(Qt::CopyAction | Qt::LinkAction);
    QVERIFY(dragOver(*slot, *payload).accepted);
    output.take();
    const auto moveOver = [&](Qt::KeyboardModifiers modifiers) {
        QDragMoveEvent move(QPoint(1, 1), Qt::CopyAction | Qt::MoveAction | Qt::LinkAction,
                            payload.get(), Qt::LeftButton, modifiers);
        move.setAccepted(modifiers == Qt::ShiftModifier); // The contrary of what it comes to.
        QApplication::sendEvent(slot, &move);
        return move.isAccepted() ? gui_test::nameOf(move.dropAction()) : QString("refused");
    };
    const QString told = "ZR::VOM::GUI::ObjectView::onCanDrop()\n"
                         "  dropActions: 5\n"
                         "  dropAction: %1\n";
    QCOMPARE(moveOver(Qt::AltModifier), QString("link"));
    QCOMPARE(output.take(), told.arg(4));
    QCOMPARE(moveOver(Qt::ShiftModifier), QString("refused"));
    QCOMPARE(output.take(), QString());
    QCOMPARE(moveOver({}), QString("copy"));
    QCOMPARE(moveOver({}), QString("copy"));
    QCOMPARE(output.take(), told.arg(1) + told.arg(1));
}

/// KEPT: also one that was refused before and changes nothing.
void tst_ObjectView::everyDropIsAccepted()
{
    const auto payload = payloadOf(things);
    QVERIFY(!dragOver(*slot, *payload).accepted);
    QDropEvent event(QPointF(1, 1), Qt::CopyAction, payload.get(), Qt::LeftButton, {});
    event.setAccepted(false);
    slot->takeDrop(event);
    QVERIFY(event.isAccepted());
    QVERIFY(!slot->isSet());
}

void tst_ObjectView::eventWithoutPayloadIsIgnored()
{
    slot->setValue(things[0]);
    for (bool before : {false, true}) {
        QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, nullptr, Qt::LeftButton, {});
        enter.setAccepted(before);
        QApplication::sendEvent(slot, &enter);
        QCOMPARE(enter.isAccepted(), before);
        QDropEvent event(QPointF(1, 1), Qt::CopyAction, nullptr, Qt::LeftButton, {});
        event.setAccepted(before);
        slot->takeDrop(event);
        QVERIFY(event.isAccepted());
    }
    QCOMPARE(slot->getValue().get(), things[0].get());
    QCOMPARE(slot->take(), QString());
}

void tst_ObjectView::refusedStepIsNotTraced()
{
    Output output;
    dragOver(*slot, *payloadOf({things[0]}), Qt::ShiftModifier, Qt::CopyAction);
    dragOver(*slot, *payloadOf(things));
    QCOMPARE(output.take(), QString());
}

void tst_ObjectView::xmlIsTakenWithAnImporterOnly()
{
    Output output;
    const RefT<Exporter> exporter(new XmlExporter);
    const Objects one{things[0]};
    const std::unique_ptr<QMimeData> payload(createMimeData(exporter, &one, nullptr));
    payload->removeFormat(MimeType::objects);
    QVERIFY(!dragOver(*slot, *payload).accepted);
    Slot other(nullptr, makeImporter());
    QVERIFY(dragOver(other, *payload).accepted);
    Objects dropped;
    other.sigConfirm.connect([&](auto const &) { dropped.emplace_back(other.getValue()); });
    drop(other, *payload);
    // The slot doesn't own what nobody else does: a host takes it when it is confirmed.
    QCOMPARE(dropped.size(), std::size_t(1));
    QVERIFY(dropped[0]);
    QVERIFY(dropped[0].get() != things[0].get());
    QCOMPARE(other.text(), QString("'a'"));
}

void tst_ObjectView::xmlThatDoesNotParseIsRefused()
{
    Slot other(nullptr, makeImporter());
    QMimeData payload;
    payload.setData(MimeType::objectsXml, "<model");
    QVERIFY(!dragOver(other, payload).accepted);
    drop(other, payload);
    QVERIFY(!other.isSet());
}

void tst_ObjectView::referenceOfAnotherProcessIsRefused()
{
    const auto payload = payloadOf({things[0]});
    QByteArray bytes = payload->data(MimeType::objects);
    bytes[0] = char(bytes[0] + 1);
    payload->setData(MimeType::objects, bytes);
    QVERIFY(!dragOver(*slot, *payload).accepted);
}

void tst_ObjectView::dragCarriesTheObject_data()
{
    QTest::addColumn<bool>("intern");
    QTest::newRow("to other programs, too") << false;
    QTest::newRow("within the process") << true;
}

void tst_ObjectView::dragCarriesTheObject()
{
    QFETCH(bool, intern);
    slot->setDragEnabled(true, intern);
    slot->setValue(things[0]);
    slot->setDragActions(Qt::CopyAction | Qt::LinkAction);
    slot->setDefaultDragAction(Qt::LinkAction);
    Objects carried;
    Qt::DropActions offered;
    bool hasXml = false;
    QString proposed;
    site->onEvent = [&](QDropEvent &event) {
        getFromMimeData(*event.mimeData(), carried);
        hasXml = event.mimeData()->hasFormat(MimeType::objectsXml);
        offered = event.possibleActions();
        proposed = gui_test::nameOf(event.proposedAction());
        event.accept();
    };
    dragOut({[&] { gui_test::moveTo(*site); }, [&] { gui_test::release(*site); }});
    QVERIFY(site->text().contains("drop"));
    QCOMPARE(carried, Objects{things[0]});
    QVERIFY(hasXml);
    QCOMPARE(offered, Qt::CopyAction | Qt::LinkAction);
    QCOMPARE(proposed, QString("link"));
}

void tst_ObjectView::emptySlotCarriesAnEmptyReference_data()
{
    dragCarriesTheObject_data();
}

void tst_ObjectView::emptySlotCarriesAnEmptyReference()
{
    QFETCH(bool, intern);
    slot->setDragEnabled(true, intern);
    Objects carried;
    site->onEvent = [&](QDropEvent &event) {
        getFromMimeData(*event.mimeData(), carried);
        event.accept();
    };
    dragOut({[&] { gui_test::moveTo(*site); }, [&] { gui_test::release(*site); }});
    QCOMPARE(carried, Objects{RefT<Object>()});
}

void tst_ObjectView::disabledSlotIsNotDragged()
{
    slot->setValue(things[0]);
    dragOut({[&] { gui_test::moveTo(*site); }, [&] { gui_test::release(*site); }});
    QCOMPARE(site->text(), QString());
}

void tst_ObjectView::shortMoveIsNoDrag()
{
    slot->setDragEnabled(true, true);
    slot->setValue(things[0]);
    gui_test::press(*slot);
    gui_test::sendMouse(*window, QEvent::MouseMove,
                        gui_test::centerOf(*slot) +
                            QPoint(QApplication::startDragDistance() - 1, 0));
    gui_test::release(*slot);
    QVERIFY(!slot->findChild<ZR::GUI::Drag *>());
}

void tst_ObjectView::moveAwayLeavesASetButEmptySlot_data()
{
    dragCarriesTheObject_data();
}

/// KEPT: a slot whose object was moved away is set, to nothing.
void tst_ObjectView::moveAwayLeavesASetButEmptySlot()
{
    QFETCH(bool, intern);
    slot->setDragEnabled(true, intern);
    slot->setValue(things[0]);
    site->onEvent = [](QDropEvent &event) {
        event.setDropAction(Qt::MoveAction);
        event.accept();
    };
    dragOut({[&] { gui_test::moveTo(*site); }, [&] { gui_test::release(*site); }});
    QVERIFY(!slot->getValue());
    QVERIFY(slot->isSet());
    QCOMPARE(slot->text(), QString());
    QCOMPARE(slot->take(), QString("onConfirm sigConfirm"));
}

void tst_ObjectView::copyAndLinkLeaveTheValue_data()
{
    dragCarriesTheObject_data();
}

void tst_ObjectView::copyAndLinkLeaveTheValue()
{
    QFETCH(bool, intern);
    slot->setDragEnabled(true, intern);
    slot->setValue(things[0]);
    for (Qt::DropAction action : {Qt::CopyAction, Qt::LinkAction, Qt::IgnoreAction}) {
        site->onEvent = [&](QDropEvent &event) {
            event.setDropAction(action);
            event.setAccepted(action != Qt::IgnoreAction);
        };
        dragOut({[&] { gui_test::moveTo(*site); }, [&] { gui_test::release(*site); }});
    }
    QCOMPARE(slot->getValue().get(), things[0].get());
    QCOMPARE(slot->take(), QString());
}

void tst_ObjectView::dropOnItselfLeavesTheValue_data()
{
    dragCarriesTheObject_data();
}

void tst_ObjectView::dropOnItselfLeavesTheValue()
{
    QFETCH(bool, intern);
    Output output;
    slot->setDragEnabled(true, intern);
    slot->setDefaultDropAction(Qt::MoveAction);
    slot->setValue(things[0]);
    dragOut({[&] { gui_test::moveTo(*slot); }, [&] { gui_test::release(*slot); }});
    QCOMPARE(slot->getValue().get(), things[0].get());
    // It was dropped here all the same.
    QCOMPARE(slot->take(), QString("onConfirm sigConfirm"));
}

void tst_ObjectView::slotMayDieDuringItsDrag_data()
{
    dragCarriesTheObject_data();
}

void tst_ObjectView::slotMayDieDuringItsDrag()
{
    QFETCH(bool, intern);
    slot->setDragEnabled(true, intern);
    slot->setValue(things[0]);
    dragOut({[&] { gui_test::moveTo(*site); }, [&] { delete slot.data(); }});
    QVERIFY(!slot);
}

void tst_ObjectView::slotThatDiesInItsDropLeavesAnEmptyPayload_data()
{
    dragCarriesTheObject_data();
}

void tst_ObjectView::slotThatDiesInItsDropLeavesAnEmptyPayload()
{
    QFETCH(bool, intern);
    slot->setDragEnabled(true, intern);
    slot->setValue(things[0]);
    QStringList formats{"not dropped"};
    site->onEvent = [&](QDropEvent &event) {
        event.accept();
        if (event.type() != QEvent::Drop)
            return;
        delete slot.data();
        formats = event.mimeData()->formats();
    };
    dragOut({[&] { gui_test::moveTo(*site); }, [&] { gui_test::release(*site); }});
    QVERIFY(!slot);
    QCOMPARE(formats, QStringList());
}

void tst_ObjectView::secondStartDuringADragIsIgnored_data()
{
    dragCarriesTheObject_data();
}

void tst_ObjectView::secondStartDuringADragIsIgnored()
{
    QFETCH(bool, intern);
    slot->setDragEnabled(true, intern);
    slot->setValue(things[0]);
    Objects carried;
    site->onEvent = [&](QDropEvent &event) {
        event.accept();
        if (event.type() != QEvent::Drop)
            return;
        slot->setValue(things[1]);
        QMouseEvent move(QEvent::MouseMove, QPointF(90, 50), QPointF(90, 50), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(slot, &move);
        getFromMimeData(*event.mimeData(), carried);
    };
    dragOut({[&] { gui_test::moveTo(*site); }, [&] { gui_test::release(*site); }});
    QVERIFY(site->text().contains("drop"));
    QCOMPARE(carried, Objects{things[0]});
    // Another one, when it is over.
    dragOut({[&] { gui_test::moveTo(*site); }, [&] { gui_test::release(*site); }});
    QCOMPARE(carried, Objects{things[1]});
}

void tst_ObjectView::derivedClassHearsTheEndOfADrag_data()
{
    dragCarriesTheObject_data();
}

void tst_ObjectView::derivedClassHearsTheEndOfADrag()
{
    QFETCH(bool, intern);
    class Own : public Slot {
    public:
        using Slot::Slot;

    protected:
        void onDragDrop(ZR::GUI::Drag &drag, Qt::DropAction action) override
        {
            note("intern", drag.source(), drag.target(), action);
        }
        void onDragDrop(QDrag &drag, Qt::DropAction action) override
        {
            note("extern", drag.source(), drag.target(), action);
        }

    private:
        void note(QString const &kind, QObject *source, QObject *target, Qt::DropAction action)
        {
            log += kind + ' ' + gui_test::nameOf(action);
            QCOMPARE(source, static_cast<QObject *>(this));
            QVERIFY(target && target != this);
        }
    };
    delete slot.data();
    slot = new Own(window.get());
    slot->setGeometry(0, 0, 100, 60);
    slot->show();
    slot->setDragEnabled(true, intern);
    slot->setValue(things[0]);
    site->onEvent = [](QDropEvent &event) {
        event.setDropAction(Qt::MoveAction);
        event.accept();
    };
    dragOut({[&] { gui_test::moveTo(*site); }, [&] { gui_test::release(*site); }});
    QCOMPARE(slot->take(), QString(intern ? "intern move" : "extern move"));
    // What the class says in place of the slot counts.
    QCOMPARE(slot->getValue().get(), things[0].get());
}

void tst_ObjectView::mimeTypesAreKept()
{
    slot->addMimeType("b");
    slot->addMimeType("a");
    slot->addMimeType("a");
    QCOMPARE(slot->getMimeTypes(), (std::set<std::string>{"a", "b"}));
    slot->removeMimeType("b");
    QCOMPARE(slot->getMimeTypes(), (std::set<std::string>{"a"}));
    slot->clearMimeTypes();
    QVERIFY(slot->getMimeTypes().empty());
}

/// KEPT: hosts keep them with the slot, which doesn't read them.
void tst_ObjectView::mimeTypesJudgeNoDrop()
{
    Output output;
    QMimeData other;
    other.setData("other", "text");
    slot->addMimeType("other");
    QVERIFY(!dragOver(*slot, other).accepted);
    drop(*slot, other);
    QVERIFY(!slot->isSet());
    const auto payload = payloadOf({things[0]});
    QVERIFY(dragOver(*slot, *payload).accepted);
    drop(*slot, *payload);
    QCOMPARE(slot->getValue().get(), things[0].get());
}

/// Of which this process knows no target.
void tst_ObjectView::objectTakenByAnotherProgramIsGone()
{
    struct Open : Slot {
        using Slot::onDragDrop;
    };
    slot->setValue(things[0]);
    QDrag drag(slot);
    QVERIFY(!drag.target());
    (slot->*static_cast<void (Slot::*)(QDrag &, Qt::DropAction)>(&Open::onDragDrop))(
        drag, Qt::MoveAction);
    QVERIFY(!slot->getValue());
    QVERIFY(slot->isSet());
    QCOMPARE(slot->take(), QString("onConfirm sigConfirm"));
}

void tst_ObjectView::dragWithoutAnExporterHasNoXml_data()
{
    dragCarriesTheObject_data();
}

void tst_ObjectView::dragWithoutAnExporterHasNoXml()
{
    QFETCH(bool, intern);
    ObjectView plain(window.get());
    plain.setGeometry(slot->geometry());
    plain.show();
    plain.setDragEnabled(true, intern);
    plain.setValue(things[0]);
    Objects carried;
    QStringList formats;
    site->onEvent = [&](QDropEvent &event) {
        getFromMimeData(*event.mimeData(), carried);
        formats = event.mimeData()->formats();
        event.accept();
    };
    dragOut({[&] { gui_test::moveTo(*site); }, [&] { gui_test::release(*site); }});
    QCOMPARE(carried, Objects{things[0]});
    QCOMPARE(formats, QStringList{MimeType::objects});
}

// What derived classes and the mouse decide.

void tst_ObjectView::derivedClassDecidesPictureTextAndDrop()
{
    class Own : public Slot {
    public:
        using Slot::Slot;

    protected:
        QPixmap onUpdateIcon() override
        {
            QPixmap pixmap(3, 5);
            pixmap.fill(Qt::blue);
            return pixmap;
        }
        QString onUpdateText() override { return "own"; }
        bool onCanDrop(Objects const &objs, bool copied, QDropEvent &event) override
        {
            log += QString("can %1 %2").arg(objs.size()).arg(copied ? "copied" : "here");
            event.setDropAction(Qt::MoveAction);
            return true;
        }
        void onDrop(Objects const &objs, bool copied, QDropEvent &) override
        {
            log += QString("drop %1 %2").arg(objs.size()).arg(copied ? "copied" : "here");
        }
    };
    Own own(nullptr, makeImporter());
    own.setValue(things[0]);
    QCOMPARE(own.text(), QString("own"));
    QVERIFY(own.hasIcon());
    const auto payload = payloadOf(things);
    const DropResult result = dragOver(own, *payload);
    QVERIFY(result.accepted);
    QCOMPARE(result.action, Qt::MoveAction);
    drop(own, *payload);
    QCOMPARE(own.take(), QString("can 2 here drop 2 here"));
    QCOMPARE(own.getValue().get(), things[0].get());
    const std::unique_ptr<QMimeData> xml(
        createMimeData(RefT<Exporter>(new XmlExporter), &things, nullptr));
    xml->removeFormat(MimeType::objects);
    dragOver(own, *xml);
    drop(own, *xml);
    QCOMPARE(own.take(), QString("can 2 copied drop 2 copied"));
}

void tst_ObjectView::iconIsAsLargeAsThatOfButtons()
{
    class LargeDB : public ObjectIconDB {
    public:
        QIcon find(RefT<Object> const &) const override
        {
            QPixmap pixmap(200, 200);
            pixmap.fill(Qt::red);
            return pixmap;
        }
    };
    slot->setObjIconDB(RefT<ObjectIconDB>(new LargeDB));
    slot->setValue(things[0]);
    const int size = slot->style()->pixelMetric(QStyle::PM_ButtonIconSize);
    QCOMPARE(slot->findChildren<QLabel *>().first()->pixmap(Qt::ReturnByValue).size(),
             QSize(size, size));
}

void tst_ObjectView::moveCountsBothWays()
{
    slot->setDragEnabled(true, true);
    slot->setValue(things[0]);
    gui_test::press(*slot);
    const gui_test::Hand hand(
        {[&] { gui_test::moveTo(*site); }, [&] { gui_test::release(*site); }});
    const int half = (QApplication::startDragDistance() + 1) / 2;
    gui_test::sendMouse(*window, QEvent::MouseMove, gui_test::centerOf(*slot) + QPoint(half, half));
    QTRY_VERIFY(hand.isDone());
    QVERIFY(site->text().contains("drop"));
}

void tst_ObjectView::otherButtonsDontDrag()
{
    slot->setDragEnabled(true, true);
    slot->setValue(things[0]);
    gui_test::sendMouse(*window, QEvent::MouseButtonPress, gui_test::centerOf(*slot),
                        Qt::RightButton, Qt::RightButton);
    gui_test::sendMouse(*window, QEvent::MouseMove, gui_test::centerOf(*site), Qt::NoButton,
                        Qt::RightButton);
    gui_test::sendMouse(*window, QEvent::MouseButtonRelease, gui_test::centerOf(*site),
                        Qt::RightButton, Qt::NoButton);
    QCOMPARE(site->text(), QString());
}

void tst_ObjectView::dragShowsTheObjectOnAPaleGround_data()
{
    dragCarriesTheObject_data();
}

void tst_ObjectView::dragShowsTheObjectOnAPaleGround()
{
    QFETCH(bool, intern);
    slot->setObjIconDB(RefT<ObjectIconDB>(new RedDB));
    slot->setDragEnabled(true, intern);
    slot->setValue(things[0]);
    QImage shown;
    dragOut({[&] {
                 if (auto const *const drag = slot->findChild<QDrag *>())
                     shown = drag->pixmap().toImage();
                 else if (auto const *const own = slot->findChild<ZR::GUI::Drag *>())
                     shown = own->pixmap().toImage();
             },
             [&] { gui_test::release(*site); }});
    const int size = slot->style()->pixelMetric(QStyle::PM_ButtonIconSize);
    QVERIFY(shown.width() > size);
    int numRed = 0, numPale = 0;
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            const QColor color = shown.pixelColor(x, y);
            numRed += color == QColor(Qt::red);
            numPale += std::abs(color.red() - 0xc0) < 3 && std::abs(color.green() - 0xe0) < 3 &&
                       std::abs(color.blue() - 0xff) < 3 && std::abs(color.alpha() - 0x80) < 2;
        }
    }
    QCOMPARE(numRed, size * size);
    QVERIFY(numPale > 10);
}

// What comes in, and what dies.

void tst_ObjectView::xmlComesInWhereTheReferenceMeansNothing()
{
    Output output;
    const Objects one{things[0]};
    const std::unique_ptr<QMimeData> payload(
        createMimeData(RefT<Exporter>(new XmlExporter), &one, nullptr));
    QByteArray bytes = payload->data(MimeType::objects);
    bytes[0] = char(bytes[0] + 1);
    payload->setData(MimeType::objects, bytes);
    QVERIFY(!dragOver(*slot, *payload).accepted);
    Slot other(nullptr, makeImporter());
    QVERIFY(dragOver(other, *payload).accepted);
    RefT<Object> dropped;
    other.sigConfirm.connect([&](auto const &) { dropped = other.getValue(); });
    drop(other, *payload);
    QVERIFY(dropped && dropped != things[0]);
}

void tst_ObjectView::brokenReferencesAreRefused_data()
{
    QTest::addColumn<int>("size");
    for (int size : {0, 1, 8, 15, 17, 32})
        QTest::addRow("%d bytes", size) << size;
}

void tst_ObjectView::brokenReferencesAreRefused()
{
    QFETCH(int, size);
    const auto payload = payloadOf({things[0]});
    QByteArray bytes = payload->data(MimeType::objects);
    QCOMPARE(bytes.size(), 16);
    bytes.resize(size);
    payload->setData(MimeType::objects, bytes);
    QVERIFY(!dragOver(*slot, *payload).accepted);
    drop(*slot, *payload);
    QVERIFY(!slot->isSet());
}

void tst_ObjectView::deadValueIsHarmless()
{
    slot->setObjIconDB(RefT<ObjectIconDB>(new RedDB));
    slot->setDragEnabled(true, true);
    slot->setValue(things[0]);
    things[0] = {};
    slot->setTypeName(true);
    slot->setFieldName("other");
    slot->setObjIconDB({});
    slot->grab();
    Objects carried;
    site->onEvent = [&](QDropEvent &event) {
        getFromMimeData(*event.mimeData(), carried);
        event.accept();
    };
    dragOut({[&] { gui_test::moveTo(*site); }, [&] { gui_test::release(*site); }});
    QCOMPARE(carried, Objects{RefT<Object>()});
    Output output;
    QVERIFY(dragOver(*slot, *payloadOf({RefT<Object>()})).accepted);
    slot->setFieldName("name");
    slot->setValue(things[1]);
    fieldOf<FieldString>(things[1], "name").set("new");
    QCOMPARE(slot->text(), QString("Thing 'new'"));
}

void tst_ObjectView::objectThatIsDraggedLivesUntilTheEnd_data()
{
    dragCarriesTheObject_data();
}

void tst_ObjectView::objectThatIsDraggedLivesUntilTheEnd()
{
    QFETCH(bool, intern);
    slot->setDragEnabled(true, intern);
    slot->setValue(things[0]);
    const PtrT<Object> watch(things[0]);
    bool wasAlive = false;
    site->onEvent = [&](QDropEvent &event) {
        wasAlive = bool(watch);
        event.accept();
    };
    dragOut({[&] { things[0] = {}; }, [&] { gui_test::moveTo(*site); },
             [&] { gui_test::release(*site); }});
    QVERIFY(wasAlive);
    QVERIFY(!watch);
    QVERIFY(!slot->getValue());
}

namespace {

/// Does something whenever it is asked.
class Meddler : public ObjectIconDB {
public:
    explicit Meddler(std::function<void()> thingToDo)
        : deed(std::move(thingToDo))
    {
    }
    QIcon find(RefT<Object> const &) const override
    {
        const auto kept = deed; // This may die.
        kept();
        return {};
    }

private:
    std::function<void()> deed;
};

} // namespace

void tst_ObjectView::databaseMayChangeTheDatabase()
{
    PtrT<ObjectIconDB> db;
    bool livesOn = false;
    db = new Meddler([&] {
        slot->setObjIconDB({});
        livesOn = bool(db);
    });
    slot->setObjIconDB(RefT<ObjectIconDB>(db));
    slot->setValue(things[0]);
    QVERIFY(livesOn);
    QVERIFY(!db);
}

void tst_ObjectView::databaseMayChangeTheValue_data()
{
    QTest::addColumn<QString>("act");
    for (char const *act : {"another value", "clear", "another database"})
        QTest::newRow(act) << act;
}

/// The newer picture stays.
void tst_ObjectView::databaseMayChangeTheValue()
{
    QFETCH(QString, act);
    class DB : public Meddler {
    public:
        using Meddler::Meddler;
        QIcon find(RefT<Object> const &object) const override
        {
            Meddler::find(object);
            QPixmap pixmap(16, 16);
            pixmap.fill(object && fieldOf<FieldString>(object, "name").get() == "a" ? Qt::green
                                                                                    : Qt::red);
            return pixmap;
        }
    };
    bool isFirst = true;
    slot->setTypeName(true);
    const RefT<ObjectIconDB> db(new DB([&] {
        if (!std::exchange(isFirst, false))
            return;
        if (act == "another value")
            slot->setValue(things[1]);
        else if (act == "clear")
            slot->clear();
        else
            slot->setObjIconDB(RefT<ObjectIconDB>(new RedDB));
    }));
    slot->setObjIconDB(db);
    slot->setValue(things[0]);
    const QPixmap shown = slot->findChildren<QLabel *>().first()->pixmap(Qt::ReturnByValue);
    if (act == "clear") {
        QVERIFY(shown.isNull());
        QCOMPARE(slot->text(), QString());
    } else {
        QCOMPARE(shown.toImage().pixelColor(1, 1), QColor(Qt::red));
        QCOMPARE(slot->text(), QString(act == "another value" ? "Thing 'b'" : "Thing 'a'"));
    }
}

void tst_ObjectView::importerMayDestroyTheSlot_data()
{
    QTest::addColumn<bool>("drops");
    QTest::newRow("while something is dragged over it") << false;
    QTest::newRow("in a drop") << true;
}

void tst_ObjectView::importerMayDestroyTheSlot()
{
    QFETCH(bool, drops);
    class Importer : public XmlImporter {
    public:
        Importer(RefT<ClassRegistry> const &classes, QPointer<Slot> &destroyed)
            : XmlImporter(classes)
            , target(destroyed)
        {
        }
        RefT<Context> createContext(RefT<Object> const &root) override
        {
            delete target.data();
            return XmlImporter::createContext(root);
        }

    private:
        QPointer<Slot> &target;
    };
    const RefT<ClassRegistry> registry(new ClassRegistry);
    registry->add<Thing>(ClassRegistry::Fields::Open);
    QPointer<Slot> other;
    other = new Slot(nullptr, RefT<Xml::Importer>(new Importer(registry, other)));
    const Objects one{things[0]};
    const std::unique_ptr<QMimeData> payload(
        createMimeData(RefT<Exporter>(new XmlExporter), &one, nullptr));
    payload->removeFormat(MimeType::objects);
    if (drops) {
        QDropEvent event(QPointF(1, 1), Qt::CopyAction, payload.get(), Qt::LeftButton, {});
        other->takeDrop(event);
        QVERIFY(event.isAccepted());
    } else {
        QDragEnterEvent event(QPoint(1, 1), Qt::CopyAction, payload.get(), Qt::LeftButton, {});
        other->takeEnter(event);
        QVERIFY(!event.isAccepted());
    }
    QVERIFY(!other);
}

namespace {

/// Raises an error in one hook.
class Raising : public Slot {
public:
    using Slot::Slot;
    QString hook;

protected:
    void onConfirm() override { raise("onConfirm"); }
    QPixmap onUpdateIcon() override
    {
        raise("onUpdateIcon");
        return Slot::onUpdateIcon();
    }
    QString onUpdateText() override
    {
        raise("onUpdateText");
        return Slot::onUpdateText();
    }
    bool onCanDrop(Objects const &objects, bool copied, QDropEvent &event) override
    {
        raise("onCanDrop");
        return Slot::onCanDrop(objects, copied, event);
    }
    void onDrop(Objects const &objects, bool copied, QDropEvent &event) override
    {
        raise("onDrop");
        Slot::onDrop(objects, copied, event);
    }
    void onDragDrop(ZR::GUI::Drag &drag, Qt::DropAction action) override
    {
        raise("onDragDrop");
        Slot::onDragDrop(drag, action);
    }
    void onDragDrop(QDrag &drag, Qt::DropAction action) override
    {
        raise("onDragDrop");
        Slot::onDragDrop(drag, action);
    }

private:
    void raise(char const *called)
    {
        if (hook == called)
            throw ZR::Error("no");
    }
};

} // namespace

void tst_ObjectView::hooksThatRaiseAreReported_data()
{
    QTest::addColumn<QString>("hook");
    QTest::addColumn<QString>("left"); // After what calls it.
    QTest::newRow("confirm") << "onConfirm"
                             << "'b' icon sigConfirm";
    QTest::newRow("icon") << "onUpdateIcon"
                          << "'b' none sigConfirm";
    QTest::newRow("text") << "onUpdateText"
                          << " icon sigConfirm";
    QTest::newRow("drag") << "onCanDrop"
                          << "'a' icon ";
    QTest::newRow("drop") << "onDrop"
                          << "'a' icon ";
}

void tst_ObjectView::hooksThatRaiseAreReported()
{
    QFETCH(QString, hook);
    Output output;
    const Reports reports;
    Raising own;
    own.setObjIconDB(RefT<ObjectIconDB>(new RedDB));
    own.setValue(things[0]);
    own.hook = hook;
    const auto payload = payloadOf({things[1]});
    if (dragOver(own, *payload).accepted)
        drop(own, *payload);
    QTEST(own.text() + (own.hasIcon() ? " icon " : " none ") + own.take(), "left");
    const std::string told = "ZR::VOM::GUI::ObjectView::" + hook.toStdString() + ": no";
    QCOMPARE(reports.texts, std::vector<std::string>{told});
    // From here a model's set would have passed it on.
    if (hook == "onUpdateText") {
        fieldOf<FieldString>(things[0], "name").set("new");
        QCOMPARE(reports.texts.size(), std::size_t(2));
        QCOMPARE(own.text(), QString());
    }
}

void tst_ObjectView::slotIsDraggedAgainAfterAHookThatRaised_data()
{
    QTest::addColumn<bool>("intern");
    QTest::addColumn<QString>("hook");
    for (char const *hook : {"onDragDrop", "onConfirm", "onUpdateText"}) {
        QTest::addRow("%s of a drag to other programs, too", hook) << false << hook;
        QTest::addRow("%s of a drag within the process", hook) << true << hook;
    }
}

void tst_ObjectView::slotIsDraggedAgainAfterAHookThatRaised()
{
    QFETCH(bool, intern);
    QFETCH(QString, hook);
    const Reports reports;
    delete slot.data();
    auto *const own = new Raising(window.get());
    slot = own;
    slot->setGeometry(0, 0, 100, 60);
    slot->show();
    slot->setDragEnabled(true, intern);
    slot->setValue(things[0]);
    own->hook = hook;
    const PtrT<Object> watch(things[0]);
    int numDrops = 0;
    site->onEvent = [&](QDropEvent &event) {
        numDrops += event.type() == QEvent::Drop;
        event.setDropAction(Qt::MoveAction);
        event.accept();
    };
    const auto drag = [&] {
        dragOut({[&] { gui_test::moveTo(*site); }, [&] { gui_test::release(*site); }});
    };
    drag();
    QCOMPARE(reports.texts.size(), std::size_t(1));
    things[0] = {};
    QVERIFY(!watch);
    slot->setValue(things[1]);
    drag();
    QCOMPARE(numDrops, 2);
}

void tst_ObjectView::databaseMayDestroyTheSlot_data()
{
    QTest::addColumn<QString>("act");
    for (char const *act : {"set", "drop", "move away", "drag", "drag within the process"})
        QTest::newRow(act) << act;
}

void tst_ObjectView::databaseMayDestroyTheSlot()
{
    QFETCH(QString, act);
    Output output;
    slot->setFieldName("a name that takes memory of its own");
    slot->setValue(things[0]);
    bool destroys = false;
    const RefT<ObjectIconDB> db(new Meddler([&] {
        if (destroys)
            delete slot.data();
    }));
    slot->setObjIconDB(db);
    destroys = true;
    if (act == "set") {
        slot->setValue(things[1]);
    } else if (act == "drop") {
        const auto payload = payloadOf({things[1]});
        QDropEvent event(QPointF(1, 1), Qt::CopyAction, payload.get(), Qt::LeftButton, {});
        slot->takeDrop(event);
    } else {
        slot->setDragEnabled(true, act.contains("process"));
        if (act == "move away") {
            destroys = false;
            site->onEvent = [&](QDropEvent &event) {
                event.setDropAction(Qt::MoveAction);
                event.accept();
                destroys = true;
            };
        }
        dragOut({[&] { gui_test::moveTo(*site); }, [&] { gui_test::release(*site); }});
    }
    QVERIFY(!slot);
    QCOMPARE(site->text().contains("drop"), act == "move away");
}

void tst_ObjectView::listenerMayDestroyTheSlot_data()
{
    QTest::addColumn<QString>("act");
    for (char const *act : {"confirm", "drop", "move away", "move away within the process"})
        QTest::newRow(act) << act;
}

void tst_ObjectView::listenerMayDestroyTheSlot()
{
    QFETCH(QString, act);
    Output output;
    slot->setValue(things[0]);
    slot->sigConfirm.connect([&](auto const &) { delete slot.data(); });
    if (act == "confirm") {
        slot->confirm();
    } else if (act == "drop") {
        const auto payload = payloadOf({things[1]});
        QDropEvent event(QPointF(1, 1), Qt::CopyAction, payload.get(), Qt::LeftButton, {});
        slot->takeDrop(event);
        QVERIFY(event.isAccepted());
    } else {
        slot->setDragEnabled(true, act.contains("process"));
        site->onEvent = [](QDropEvent &event) {
            event.setDropAction(Qt::MoveAction);
            event.accept();
        };
        dragOut({[&] { gui_test::moveTo(*site); }, [&] { gui_test::release(*site); }});
    }
    QVERIFY(!slot);
    QVERIFY(!fieldOf<FieldString>(things[0], "name").sigSet.hasSlots());
}

QTEST_MAIN(tst_ObjectView)
#include "tst_ObjectView.moc"
