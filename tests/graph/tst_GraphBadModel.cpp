#include "support/LongLinkScene.h"
#include "zrVOMGUI/presentation/ObjectIconDB.h"

#include <QTest>

#include <limits>
#include <stdexcept>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using VOM::FieldPtr;
using VOM::FieldString;
using VOM::MFieldPtr;
using Access = GraphViewAccess;
using Scene = LongLinkScene;

// Models that hold what no view can show well, or that don't keep to what they promise.

class tst_GraphBadModel : public QObject {
    Q_OBJECT

private slots:
    void labelsMayBeOfAnyText_data();
    void labelsMayBeOfAnyText();
    void enormousFontsMakeNodesThatFit_data();
    void enormousFontsMakeNodesThatFit();
    void iconDatabasesMayGoInCircles();
    void modelClassesMayLie();
    void modelListenersMayThrow_data();
    void modelListenersMayThrow();
    void longListsMayHoldOneObject();
};

void tst_GraphBadModel::labelsMayBeOfAnyText_data()
{
    QTest::addColumn<std::string>("label");
    QTest::addColumn<bool>("wide"); // At least as wide as one of its letters would be.
    const std::size_t mega = 1 << 20;
    const auto repeated = [mega](std::string const &text) {
        std::string all;
        while (all.size() < mega)
            all += text;
        return all;
    };
    QTest::newRow("empty") << ""s << false;
    QTest::newRow("a megabyte of letters") << std::string(mega, 'W') << true;
    QTest::newRow("a megabyte of words") << repeated("many words ") << true;
    QTest::newRow("a megabyte of lines") << std::string(mega, '\n') << false;
    QTest::newRow("a megabyte of short lines") << repeated("line\r\n") << true;
    QTest::newRow("a megabyte of tabs") << std::string(mega, '\t') << false;
    QTest::newRow("a megabyte of combining marks") << repeated("a\xcc\x81\xcc\xa3") << true;
    QTest::newRow("a megabyte of other planes") << repeated("\xf0\x9f\x98\x80") << true;
    QTest::newRow("a megabyte from right to left") << repeated("\xd7\x90\xd7\x91 a") << true;
    QTest::newRow("a megabyte of invalid bytes") << std::string(mega, '\xff') << true;
    QTest::newRow("a megabyte of NULs") << std::string(mega, '\0') << false;
    QTest::newRow("NUL in the midst") << "before\0after"s << true;
    QTest::newRow("cut UTF-8") << "caf\xc3"s << true;
    QTest::newRow("overlong UTF-8") << "\xc0\xaf\xe0\x80\xaf"s << true;
    QTest::newRow("surrogates in UTF-8") << "\xed\xa0\x80\xed\xb0\x80"s << true;
    QTest::newRow("beyond Unicode") << "\xf7\xbf\xbf\xbf\xf4\x90\x80\x80"s << true;
    QTest::newRow("a lone continuation") << "\x80\xbf"s << true;
    QTest::newRow("byte order marks") << "\xef\xbb\xbf\xef\xbf\xbe"s << false;
    QTest::newRow("directions that never end") << "\xe2\x80\xae\xe2\x80\xab"
                                                  "abc"s
                                               << true;
    QTest::newRow("separators of lines") << "a\xe2\x80\xa8"
                                            "b\xe2\x80\xa9"
                                            "c\xc2\x9c"
                                            "d"s
                                         << true;
    QTest::newRow("places of arguments") << "%1 %2 %3 %% %"s << true;
    QTest::newRow("mark-up") << "<b>&amp;&x</b>"s << true;
}

void tst_GraphBadModel::labelsMayBeOfAnyText()
{
    QFETCH(std::string, label);
    QFETCH(bool, wide);
    Scene scene;
    ObjectGraphView &view = scene.view;
    auto &field = VOM::addField<FieldString>(*scene.things[1], "label", label);
    VOM::addField<FieldString>(*scene.things[2], "label", "short"s);
    useAll(scene);
    Graph::Node const &node = *Access::node(view, scene.things[1]);
    QVERIFY(node.watch->label.isValidUtf16());
    QVERIFY(node.watch->label.size() <= 0x10000);
    QVERIFY(node.watch->label.startsWith("Thing"));
    const int width = node.width;
    field.set("");
    view.viewport()->grab();
    if (wide)
        QVERIFY(node.width < width);
    field.set(label);
    view.viewport()->grab();
    QCOMPARE(node.width, width);
    // Other names are read, and no label at all.
    view.setTypeName(false);
    view.setFieldName(label);
    useAll(scene);
}

void tst_GraphBadModel::enormousFontsMakeNodesThatFit_data()
{
    QTest::addColumn<int>("pixelSize");
    QTest::addColumn<int>("numNodes");
    QTest::newRow("labels as long as lines can be") << 450 << 3;
    QTest::newRow("a drawing higher than coordinates reach") << 65535 << 30;
}

void tst_GraphBadModel::enormousFontsMakeNodesThatFit()
{
    QFETCH(int, pixelSize);
    QFETCH(int, numNodes);
    Scene scene;
    ObjectGraphView &view = scene.view;
    for (int i = 0; i < numNodes; ++i) {
        scene.things.push_back(makeThing("n" + std::to_string(i)));
        VOM::addField<FieldString>(*scene.things.back(), "label", std::string(1 << 16, 'W'));
        setLink(scene.things.back(), "next", scene.things[scene.things.size() - 2]);
    }
    QFont font("DejaVu Sans");
    font.setPixelSize(pixelSize);
    view.setFont(font);
    view.add(scene.things, false);
    view.setVisible(scene.things, true);
    view.viewport()->grab();
    QCOMPARE(faultsAtRest(view), ""s);
    for (RefT<VOM::Object> const &thing : scene.things) {
        Graph::Node const &node = *Access::node(view, thing);
        for (int size : {node.width, node.height})
            QVERIFY2(size > 0 && size <= farthest, qPrintable(QString::number(size)));
        for (int place : {node.x, node.y})
            QVERIFY2(std::abs(place) <= farthest, qPrintable(QString::number(place)));
    }
    useAll(scene);
}

void tst_GraphBadModel::iconDatabasesMayGoInCircles()
{
    const RefT<ObjectClassIconDB> first(new ObjectClassIconDB);
    const RefT<ObjectFieldIntIconDB> second(new ObjectFieldIntIconDB);
    for (int length : {1, 2}) {
        Scene scene;
        ObjectGraphView &view = scene.view;
        first->setObjIconDB(length == 1 ? RefT<ObjectIconDB>(first) : second);
        second->setObjIconDB(first);
        view.setObjIconDB(first);
        scene.things.push_back(makeThing("x"));
        view.add(scene.things, false);
        view.setVisible(scene.things, true);
        QVERIFY(Access::node(view, scene.things.back())->watch->icon.isNull());
        useAll(scene);
    }
    first->setObjIconDB({});
    second->setObjIconDB({});
}

namespace {

/// Says that it has more and other fields than it has.
class Liar : public Thing {
public:
    std::size_t findFieldIndex(std::string const &name) const override
    {
        return name == "next" ? shift + Thing::findFieldIndex(name) : Thing::findFieldIndex(name);
    }
    VOM::ClassInfo const &getClassInfo() const override { return liarInfo; }
    inline static VOM::ClassInfo const liarInfo = {&Thing::info, ""};
    std::size_t shift = 0;
};

} // namespace

void tst_GraphBadModel::modelClassesMayLie()
{
    for (std::size_t shift : {std::size_t(1), std::size_t(2), ~std::size_t(0)}) {
        Scene scene;
        const RefT<Liar> liar(new Liar);
        VOM::addField<FieldString>(*liar, "name", "liar");
        setLink(liar, "next", scene.things[0]);
        VOM::addField<FieldPtr>(*liar, "other", PtrT<VOM::Object>(scene.things[1]));
        liar->shift = shift;
        scene.things.push_back(liar);
        scene.view.add(scene.things, false);
        scene.view.setVisible(scene.things, true);
        scene.view.removeOutLinkField("", "next");
        // The class without a name is every class's rule.
        scene.view.addOutLinkField("", "next");
        scene.view.addInLinkField("Thing", "next");
        scene.view.setFieldName("next");
        scene.view.viewport()->grab();
        finishAnimation(scene.view);
        QVERIFY2(dumpLinks(scene.view).find('!') == std::string::npos,
                 dumpLinks(scene.view).c_str());
    }
}

void tst_GraphBadModel::modelListenersMayThrow_data()
{
    QTest::addColumn<bool>("first");
    QTest::newRow("before the view hears") << true;
    QTest::newRow("after the view has heard") << false;
}

/// A change that a listener breaks off may stay unknown to the view until links are rebuilt.
void tst_GraphBadModel::modelListenersMayThrow()
{
    QFETCH(bool, first);
    Scene scene;
    ObjectGraphView &view = scene.view;
    const RefT<VOM::Object> a = scene.things[0];
    auto &next = fieldOf<FieldPtr>(a, "next");
    auto &list = fieldOf<MFieldPtr>(a, "list");
    const auto throws = [](auto const &) { throw std::runtime_error("listener"); };
    if (first)
        view.clear();
    next.sigSet.connect(throws);
    list.sigReplace.connect(throws);
    a->sigAddField.connect(throws);
    a->sigRemoveField.connect(throws);
    if (first) {
        view.add(scene.things, false);
        view.setVisible(scene.things, true);
    }
    const auto change = [&] {
        QVERIFY_EXCEPTION_THROWN(next.set(scene.things[2]), std::runtime_error);
        QVERIFY_EXCEPTION_THROWN(list.replace(0, 1, {}), std::runtime_error);
        QVERIFY_EXCEPTION_THROWN(VOM::addField<FieldPtr>(*a, "more"), std::runtime_error);
        QVERIFY_EXCEPTION_THROWN(VOM::removeField(*a, list), std::runtime_error);
    };
    change();
    QCOMPARE(faultsOf(view), ""s);
    change();
    QCOMPARE(faultsOf(view), ""s);
    useAll(scene);
    view.add({makeThing("x")}, false);
    QCOMPARE(dumpLinks(view), "a>c b>c c>d"s);
}

void tst_GraphBadModel::longListsMayHoldOneObject()
{
    Scene scene;
    Things many(100000, scene.things[3]);
    setLinks(scene.things[0], "list", many);
    QCOMPARE(dumpLinks(scene.view), "a>b a>d:100000 b>c c>d"s);
    useAll(scene);
    setLinks(scene.things[0], "list", Things(100000));
    QCOMPARE(dumpLinks(scene.view), "a>b b>c c>d"s);
    setLinks(scene.things[0], "list", many);
    useAll(scene);
    many.clear();
    scene.things.pop_back();
    QCOMPARE(dumpLinks(scene.view), "a>b b>c"s);
    useAll(scene);
}

QTEST_MAIN(tst_GraphBadModel)
#include "tst_GraphBadModel.moc"
