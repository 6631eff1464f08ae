#include "support/Things.h"

#include "zrVOMGUI/foundation/vom/Copy.h"
#include "zrVOMGUI/transfer/ClipboardObject.h"

#include <QTest>

using namespace ZR;
using VOM::Clipboard;
using Model = VOM::Object;

class tst_ClipboardObject : public QObject {
    Q_OBJECT

private slots:
    void hasOneOwningList();
    void isEmptyAtFirst();
    void startsWithTheGivenObjects();
    void ownsItsObjects();
    void copiesShareTheObjects();
    void clonesArePlainObjects();
    void itsFieldMayGo();
};

void tst_ClipboardObject::hasOneOwningList()
{
    const Clipboard clipboard;
    QCOMPARE(clipboard.getNumFields(), std::size_t(1));
    VOM::Field const &field = *clipboard.getField(0);
    QCOMPARE(field.name.c_str(), "objects");
    QCOMPARE(Clipboard::FieldObjects, "objects");
    QCOMPARE(field.getType(), 12);
    QCOMPARE(clipboard.findFieldIndex("objects"), std::size_t(0));
    QCOMPARE(clipboard.getFlags(), 0u);
    QVERIFY(!clipboard.isSharable());

    VOM::ClassInfo const &info = clipboard.getClassInfo();
    QCOMPARE(&info, &Clipboard::classInfo);
    QCOMPARE(info.name, "Clipboard");
    QCOMPARE(info.base, &Model::classInfo);
}

void tst_ClipboardObject::isEmptyAtFirst()
{
    QVERIFY(Clipboard().getObjects().empty());
}

void tst_ClipboardObject::startsWithTheGivenObjects()
{
    Things things = makeThings("ab");
    things.emplace_back();
    QVERIFY(Clipboard(things).getObjects() == things);
}

void tst_ClipboardObject::ownsItsObjects()
{
    PtrT<Model> watched;
    {
        const Clipboard clipboard(makeThings("a"));
        watched = clipboard.getObjects().front();
        QVERIFY(watched);
    }
    QVERIFY(!watched);
}

void tst_ClipboardObject::copiesShareTheObjects()
{
    const Things things = makeThings("ab");
    const RefT<Clipboard> original(new Clipboard(things));
    const Clipboard copy(*original);
    QVERIFY(copy.getObjects() == things);
    setLinks<VOM::MFieldRef>(original, "objects", {});
    QVERIFY(copy.getObjects() == things);
    QCOMPARE(copy.getClassInfo().name, "Clipboard");
}

void tst_ClipboardObject::clonesArePlainObjects()
{
    const Things things = makeThings("a");
    const RefT<Model> clone = Clipboard(things).clone();
    QCOMPARE(&clone->getClassInfo(), &Model::classInfo);
    QVERIFY(fieldOf<VOM::MFieldRef>(clone, "objects").getAll() == things);
}

void tst_ClipboardObject::itsFieldMayGo()
{
    Clipboard clipboard(makeThings("a"));
    QVERIFY(removeField(clipboard, *clipboard.getField(0)));
    QVERIFY(clipboard.getObjects().empty());
    VOM::addField<VOM::FieldInt>(clipboard, "objects", 3);
    QVERIFY(clipboard.getObjects().empty());
}

QTEST_GUILESS_MAIN(tst_ClipboardObject)

#include "tst_ClipboardObject.moc"
