#include "NameLists.h"
#include "Payloads.h"

#include "support/QtStrings.h"

#include "zrVOMGUI/transfer/Clipboard.h"
#include "zrVOMGUI/transfer/MimeData.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTest>

#include <cstring>

using namespace ZR;
namespace Board = ZR::VOM::GUI::Clipboard;
using Model = VOM::Object;

using Action = std::function<void()>;
Q_DECLARE_METATYPE(Action)

class tst_ClipboardHolder : public QObject {
    Q_OBJECT

private slots:
    void init();

    void copiedObjectsOutliveTheCallersList();
    void secondCopiesReplaceTheFirst();
    void listsKeepTheirPlace();
    void anythingElseReleasesTheObjects_data();
    void anythingElseReleasesTheObjects();
    void anyOwnReferenceKeepsTheObjects();
    void changesOfTheSelectionKeepTheObjects();
    void releasedObjectsAreNotPasted();
    void objectsAreHeldAgainAfterARelease();
    void clipboardIsWatchedOnlyWhileObjectsAreHeld();
    void listsOfTheHolderMayBeCopied();
    void deathsByAReleaseMayCopyOthers();
    void deathsByACopyMayCopyOthers();
    void exportersMayCopyOthers();
};

namespace {

const char ref[] = "ZR::VOM::Object::Ref";

QClipboard &system()
{
    return *QGuiApplication::clipboard();
}

/// Copies a new object and watches it.
PtrT<Model> copyOne(std::string const &name)
{
    const Things things{makeThing(name)};
    Board::copyObjs({}, things);
    return {things.front()};
}

/// The list that the clipboard's reference names.
Things const &heldList()
{
    Things const *list = nullptr;
    std::memcpy(&list, system().mimeData()->data(ref).constData() + 8, sizeof list);
    return *list;
}

/// How many listen to changes of the clipboard.
int numListeners()
{
    struct Access : QObject {
        static int count(QObject const &object)
        {
            return (object.*(&Access::receivers))(SIGNAL(changed(QClipboard::Mode)));
        }
    };
    return Access::count(system());
}

QString pastedNames()
{
    Things read;
    return Board::pasteObjs(read) ? QString::fromStdString(namesOf(read)) : "nothing";
}

/// A reference of this process, with its process number changed by `offset`, cut to `size` bytes.
QByteArray someReference(int offset, int size)
{
    static const Things list = makeThings("z");
    QByteArray bytes = MimeData(VOM::GUI::createMimeData({}, &list, nullptr))->data(ref);
    qint32 id = 0;
    std::memcpy(&id, bytes.constData(), sizeof id);
    id += offset;
    std::memcpy(bytes.data(), &id, sizeof id);
    return bytes.left(size);
}

} // namespace

void tst_ClipboardHolder::init()
{
    system().clear();
}

void tst_ClipboardHolder::copiedObjectsOutliveTheCallersList()
{
    const PtrT<Model> object = copyOne("a");
    QVERIFY(object);
    QCOMPARE(pastedNames(), "a ");
}

void tst_ClipboardHolder::secondCopiesReplaceTheFirst()
{
    const PtrT<Model> first = copyOne("a");
    const PtrT<Model> second = copyOne("b");
    QVERIFY(!first);
    QVERIFY(second);
    QCOMPARE(pastedNames(), "b ");
}

void tst_ClipboardHolder::listsKeepTheirPlace()
{
    copyOne("a");
    Things const *const first = &heldList();
    copyOne("b");
    QCOMPARE(&heldList(), first);
    Board::copy(1);
    copyOne("c");
    QCOMPARE(&heldList(), first);
}

void tst_ClipboardHolder::anythingElseReleasesTheObjects_data()
{
    QTest::addColumn<Action>("change");
    const auto row = [](char const *name, Action const &change) { QTest::newRow(name) << change; };
    const auto put = [](QByteArray const &bytes, char const *type = ref) {
        return [=] { system().setMimeData(payload(type, bytes).release()); };
    };
    row("an int", [] { Board::copy(1); });
    row("a string", [] { Board::copy(std::string("word")); });
    row("a text of another library", [] { system().setText("theirs"); });
    row("nothing at all", [] { system().clear(); });
    row("no format", [] { system().setMimeData(new QMimeData); });
    row("a reference of another process", put(someReference(1, 16)));
    row("a reference that is cut", put(someReference(0, 15)));
    row("a reference with a tail", put(someReference(0, 16) + '\0'));
    row("an empty reference", put({}));
    row("a reference to copies", put(someReference(0, 16), "ZR::VOM::Object::Copy::Ref"));
    row("XML", put("Clipboard a ", "ZR::VOM::Object::XML"));
}

void tst_ClipboardHolder::anythingElseReleasesTheObjects()
{
    QFETCH(Action, change);
    const PtrT<Model> object = copyOne("a");
    change();
    QVERIFY(!object);
}

void tst_ClipboardHolder::anyOwnReferenceKeepsTheObjects()
{
    const PtrT<Model> object = copyOne("a");
    system().setMimeData(payload(ref, someReference(0, 16)).release());
    QVERIFY(object);
    QCOMPARE(pastedNames(), "z ");
    // And they are watched on.
    system().setText("theirs");
    QVERIFY(!object);
}

void tst_ClipboardHolder::changesOfTheSelectionKeepTheObjects()
{
    const PtrT<Model> object = copyOne("a");
    system().changed(QClipboard::Selection);
    system().changed(QClipboard::Clipboard);
    QVERIFY(object);
}

void tst_ClipboardHolder::releasedObjectsAreNotPasted()
{
    const Things things = makeThings("a"); // Alive, and still gone from the clipboard.
    Board::copyObjs({}, things);
    Board::copy(1);
    QCOMPARE(pastedNames(), "nothing");
}

void tst_ClipboardHolder::objectsAreHeldAgainAfterARelease()
{
    copyOne("a");
    Board::copy(1);
    const PtrT<Model> object = copyOne("b");
    QVERIFY(object);
    QCOMPARE(pastedNames(), "b ");
    Board::copy(2);
    QVERIFY(!object);
}

void tst_ClipboardHolder::clipboardIsWatchedOnlyWhileObjectsAreHeld()
{
    const int before = numListeners();
    copyOne("a");
    QCOMPARE(numListeners(), before + 1);
    copyOne("b");
    QCOMPARE(numListeners(), before + 1);
    Board::copy(1);
    QCOMPARE(numListeners(), before);
}

void tst_ClipboardHolder::listsOfTheHolderMayBeCopied()
{
    const PtrT<Model> object = copyOne("a");
    Board::copyObjs({}, heldList());
    QVERIFY(object);
    QCOMPARE(pastedNames(), "a ");
}

void tst_ClipboardHolder::deathsByAReleaseMayCopyOthers()
{
    const PtrT<Model> object = copyOne("a");
    object->sigDelete.connect([](SigVoidData const &) { copyOne("b"); });
    Board::copy(1);
    QVERIFY(!object);
    QCOMPARE(pastedNames(), "b ");
}

void tst_ClipboardHolder::deathsByACopyMayCopyOthers()
{
    const PtrT<Model> object = copyOne("a");
    object->sigDelete.connect([](SigVoidData const &) { copyOne("c"); });
    const PtrT<Model> second = copyOne("b");
    QVERIFY(!object);
    QVERIFY(!second);
    QCOMPARE(pastedNames(), "c ");
}

void tst_ClipboardHolder::exportersMayCopyOthers()
{
    const RefT<NameExporter> exporter(new NameExporter);
    exporter->whileExporting = [] { copyOne("b"); };
    Board::copyObjs(exporter, makeThings("a"));
    QCOMPARE(pastedNames(), "a ");
    QCOMPARE(system().mimeData()->data("ZR::VOM::Object::XML"), "Clipboard a ");
}

QTEST_MAIN(tst_ClipboardHolder)

#include "tst_ClipboardHolder.moc"
