#include "zrVOMGUI/foundation/vom/canMove.h"

#include <QTest>

#include <stdexcept>
#include <string>
#include <vector>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;
using Refs = std::vector<RefT<Object>>;
using Ptrs = std::vector<PtrT<Object>>;

// The model of these tests; => owns, -> watches.
//
//     house => room => chair => leg      (by an owning list, an owning list, an owning link)
//     house -> guest
//     guest, apart from all
class tst_canMove : public QObject {
    Q_OBJECT

private slots:
    void init();

    void answersByOwnership_data();
    void answersByOwnership();
    void severalObjects_data();
    void severalObjects();
    void listIsAsked();
    void listThatRefusesDecides();
    void positionOutsideTheListIsRefused();
    void moveInsideItsOwnListIsAllowed();
    void noObjectsAreAllowed();
    void nullAmongTheObjectsIsPassedOver();
    void cycleOfOwnersEnds();
    void longChainOfOwnersEnds();
    void listWithoutOwnerIsOnlyAsked();
    void askingChangesNothing();

private:
    Object &object(QString const &name) { return *objects.at(name); }
    template <class ListField>
    ListField &list(QString const &name)
    {
        Object &owner = object(name);
        const bool isOwning = std::is_same_v<ListField, MFieldRef>;
        return static_cast<ListField &>(*owner.findField(isOwning ? "parts" : "seen"));
    }

    std::map<QString, RefT<Object>> objects;
};

void tst_canMove::init()
{
    objects.clear();
    for (char const *name : {"house", "room", "chair", "leg", "guest"}) {
        const RefT<Object> created(new Object(0));
        addField<MFieldRef>(*created, "parts");
        addField<MFieldPtr>(*created, "seen");
        addField<FieldRef>(*created, "part");
        objects[name] = created;
    }
    list<MFieldRef>("house").replace(0, 0, {objects["room"]});
    list<MFieldPtr>("house").replace(0, 0, {objects["guest"]});
    list<MFieldRef>("room").replace(0, 0, {objects["chair"]});
    static_cast<FieldRef &>(*object("chair").findField("part")).set(objects["leg"]);
}

void tst_canMove::answersByOwnership_data()
{
    QTest::addColumn<QString>("moved");
    QTest::addColumn<QString>("into");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("object into itself") << "room"
                                        << "room" << false;
    QTest::newRow("into what it owns by a list") << "house"
                                                 << "room" << false;
    QTest::newRow("into what it owns by a link") << "chair"
                                                 << "leg" << false;
    QTest::newRow("into what it owns indirectly") << "house"
                                                  << "leg" << false;
    QTest::newRow("into its owner, where it is already") << "room"
                                                         << "house" << true;
    QTest::newRow("into the owner of its owner") << "chair"
                                                 << "house" << true;
    QTest::newRow("into what it only watches") << "house"
                                               << "guest" << true;
    QTest::newRow("into another object") << "leg"
                                         << "guest" << true;
    QTest::newRow("into what watches it") << "guest"
                                          << "house" << true;
}

void tst_canMove::answersByOwnership()
{
    QFETCH(QString, moved);
    QFETCH(QString, into);
    QTEST(canMove({objects[moved]}, list<MFieldRef>(into), 0), "allowed");
    QTEST(canMove({objects[moved]}, list<MFieldPtr>(into), 0), "allowed");
}

void tst_canMove::severalObjects_data()
{
    QTest::addColumn<QStringList>("moved");
    QTest::addColumn<QString>("into");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("none of them owns the place")
        << QStringList{"chair", "guest"} << "house" << true;
    QTest::newRow("the first one owns it") << QStringList{"room", "guest"} << "chair" << false;
    QTest::newRow("the last one owns it") << QStringList{"guest", "room"} << "leg" << false;
    QTest::newRow("one object twice") << QStringList{"guest", "guest"} << "house" << true;
}

void tst_canMove::severalObjects()
{
    QFETCH(QStringList, moved);
    QFETCH(QString, into);
    Refs refs;
    for (QString const &name : moved)
        refs.push_back(objects[name]);
    QTEST(canMove(refs, list<MFieldRef>(into), 0), "allowed");
    QTEST(canMove(refs, list<MFieldPtr>(into), 0), "allowed");
}

void tst_canMove::listIsAsked()
{
    std::string asked;
    list<MFieldRef>("house").sigCanReplace.connect([&](MFieldRef::SigCanReplaceData const &data) {
        asked += "owning " + std::to_string(data.index) + ' ' + std::to_string(data.numRemoved);
        QCOMPARE(*data.values, (Refs{objects["leg"], objects["guest"]}));
    });
    list<MFieldPtr>("house").sigCanReplace.connect([&](MFieldPtr::SigCanReplaceData const &data) {
        asked += " watching " + std::to_string(data.index) + ' ' + std::to_string(data.numRemoved);
        QCOMPARE(*data.values, (Ptrs{objects["leg"], objects["guest"]}));
    });
    QVERIFY(canMove({objects["leg"], objects["guest"]}, list<MFieldRef>("house"), 1));
    QVERIFY(canMove({objects["leg"], objects["guest"]}, list<MFieldPtr>("house"), 0));
    QCOMPARE(asked, std::string("owning 1 0 watching 0 0"));
}

void tst_canMove::listThatRefusesDecides()
{
    list<MFieldRef>("house").sigCanReplace.connect([](auto const &) { throw VOM::Error("full"); });
    QVERIFY(!canMove({objects["guest"]}, list<MFieldRef>("house"), 0));
    QVERIFY(canMove({objects["guest"]}, list<MFieldPtr>("house"), 0));
}

void tst_canMove::positionOutsideTheListIsRefused()
{
    QVERIFY(canMove({objects["guest"]}, list<MFieldRef>("house"), 1));
    QVERIFY(!canMove({objects["guest"]}, list<MFieldRef>("house"), 2));
    QVERIFY(!canMove({objects["guest"]}, list<MFieldPtr>("house"), std::size_t(-1)));
}

void tst_canMove::moveInsideItsOwnListIsAllowed()
{
    MFieldRef &rooms = list<MFieldRef>("house");
    rooms.replace(1, 0, {objects["guest"]});
    for (std::size_t i = 0; i <= 2; ++i)
        QVERIFY(canMove({objects["guest"]}, rooms, i));
}

void tst_canMove::noObjectsAreAllowed()
{
    QVERIFY(canMove({}, list<MFieldRef>("house"), 0));
    QVERIFY(canMove({}, list<MFieldPtr>("house"), 0));
}

void tst_canMove::nullAmongTheObjectsIsPassedOver()
{
    QVERIFY(canMove({nullptr, objects["guest"]}, list<MFieldRef>("house"), 0));
    QVERIFY(!canMove({nullptr, objects["house"]}, list<MFieldRef>("house"), 0));
}

void tst_canMove::cycleOfOwnersEnds()
{
    list<MFieldRef>("leg").replace(0, 0, {objects["house"]});
    QVERIFY(canMove({objects["leg"]}, list<MFieldRef>("guest"), 0));
    QVERIFY(!canMove({objects["leg"]}, list<MFieldRef>("chair"), 0));
    list<MFieldRef>("leg").replace(0, 1, {});
}

void tst_canMove::longChainOfOwnersEnds()
{
    RefT<Object> chain(new Object(0));
    const RefT<Object> last = chain;
    auto &place = addField<MFieldRef>(*last, "parts");
    for (int i = 0; i < 200000; ++i) {
        RefT<Object> owner(new Object(0));
        addField<FieldRef>(*owner, "part", chain);
        chain = std::move(owner);
    }
    QVERIFY(!canMove({chain}, place, 0));
    QVERIFY(canMove({chain}, list<MFieldRef>("guest"), 0));
}

void tst_canMove::listWithoutOwnerIsOnlyAsked()
{
    MFieldRef &parts = list<MFieldRef>("house");
    const RefT<Field> kept(parts);
    removeField(object("house"), parts);
    QVERIFY(canMove({objects["house"]}, parts, 0));
}

void tst_canMove::askingChangesNothing()
{
    int calls = 0;
    list<MFieldRef>("house").sigReplace.connect([&](auto const &) { ++calls; });
    QVERIFY(canMove({objects["guest"]}, list<MFieldRef>("house"), 0));
    QCOMPARE(list<MFieldRef>("house").getNum(), std::size_t(1));
    QCOMPARE(calls, 0);
}

QTEST_APPLESS_MAIN(tst_canMove)

#include "tst_canMove.moc"
