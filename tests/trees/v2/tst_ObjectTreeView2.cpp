#include "support/PaintCounter.h"
#include "trees/TreeScene.h"
#include "zrVOMGUI/trees/v2/ObjectTreeView.h"

#include <QLineEdit>
#include <QMimeData>

#include <type_traits>

using namespace tree_test;

namespace {

using View2 = GUI::V2::ObjectTreeView;
using Traits2 = GUI::V2::ObjectTreeTraits;
using Scene2 = SceneT<View2>;
using Row2 = View2::Row;

template <class View, class = void>
struct HasAddressOption : std::false_type {
};
template <class View>
struct HasAddressOption<View, std::void_t<decltype(std::declval<View &>().setAddress(true))>>
    : std::true_type {
};

} // namespace

/// What the second generation does its own way.
class tst_ObjectTreeView2 : public QObject {
    Q_OBJECT

private slots:
    void defaults();
    void rowsKnowTheirViewAndParent();
    void rootIsNotMarkedHidden();
    void menuSignalStandsBeforeClear();
    void labelsHaveNoAddressOption();
    void baseClassAcceptsForDerivedOnes();
    void anyLevelAcceptsAndNoneRefuses();
    void emptyClassNameAcceptsOnEveryClass();
    void emptySetAcceptsAllFieldsOfItsClass();
    void fieldWithoutOwnerIsAcceptedByTheEmptyClassName();
    void valuesAreNeverAccepted();
    void lastNameRemovedRemovesTheClass();
    void pairThatIsThereTouchesNoRow();
    void pairThatIsNotThereTouchesNoRow();
    void clearedFilterTouchesNoRow();
    void lostRowsStillHaveAPath();
    void rowsOfLostFieldsStillHaveAPath();
    void deathOfAFieldIsLookedUp();
    void topRowsAreMadeAnewOnEachChange();
    void listKeepsItsOpenRowsOverAReorder();
    void currentRowOfAConstantView();
    void rowThatDiesWhileOthersAreLookedUpIsNotSelected();
    void refusedEditOfADeadRowIsNotTold();
    void listenersMayDestroyTheView_data();
    void listenersMayDestroyTheView();
    void lastDragMayDieWithTheView();
};

void tst_ObjectTreeView2::defaults()
{
    const View2 view;
    QVERIFY(view.isTypeName());
    QVERIFY(!view.isHideFields());
    QVERIFY(view.getNameField().empty());
    QVERIFY(view.getTooltipField().empty());
    QVERIFY(!view.getXmlExporter());
    QVERIFY(!view.getXmlImporter());
    QVERIFY(!view.getObjIconDB());
    QCOMPARE(view.getMimeTypes(),
             (std::vector<QString>{"ZR::VOM::Object::Ref", "ZR::VOM::Object::Copy::Ref",
                                   "ZR::VOM::Object::XML"}));
}

void tst_ObjectTreeView2::rowsKnowTheirViewAndParent()
{
    Scene2 scene;
    scene.show();
    static_assert(std::is_same_v<View2::RowHandle, Row2 *>);
    static_assert(std::is_same_v<Traits2::OwnedRow, std::unique_ptr<Row2>>);
    Row2 *const row = scene.row(scene.path("own", 1));
    QCOMPARE(row->getTreeView(), scene.view.get());
    QCOMPARE(row->getParent(), scene.row(scene.path("own")));
    QCOMPARE(scene.view->getRowObj(row), scene.e().get());
    QCOMPARE(scene.view->getRowField(row->getParent()), &scene.field("own"));
    QVERIFY(!scene.view->getRowObj(nullptr) && !scene.view->getRowField(nullptr));
    QVERIFY(!scene.view->getRowPath(nullptr).getObj());
}

void tst_ObjectTreeView2::rootIsNotMarkedHidden()
{
    Scene2 second;
    second.show();
    QVERIFY(!second.row(second.path())->getParent()->isHidden());
    QCOMPARE(second.dump(), std::string("'a'"));
    Scene first;
    first.show();
    QVERIFY(first.row(first.path())->getParent()->isHidden());
}

void tst_ObjectTreeView2::menuSignalStandsBeforeClear()
{
    View2 second;
    ObjectTreeView first;
    const auto at = [](auto const &signal) { return reinterpret_cast<std::uintptr_t>(&signal); };
    QVERIFY(at(second.sigRow) < at(second.sigRowMenu));
    QVERIFY(at(second.sigRowMenu) < at(second.sigClear));
    QVERIFY(at(second.sigClear) < at(second.sigEditRowError));
    QVERIFY(at(second.sigEditRowError) < at(second.sigDrop));
    QVERIFY(at(second.sigDrop) < at(second.sigCanDrop));
    QVERIFY(at(first.sigRow) < at(first.sigClear));
    QVERIFY(at(first.sigClear) < at(first.sigRowMenu));
}

void tst_ObjectTreeView2::labelsHaveNoAddressOption()
{
    static_assert(HasAddressOption<ObjectTreeView>::value);
    static_assert(!HasAddressOption<View2>::value);
    Scene2 scene;
    scene.view->setTypeName(true);
    scene.show();
    QCOMPARE(scene.dump(), std::string("Thing 'a'"));
}

void tst_ObjectTreeView2::baseClassAcceptsForDerivedOnes()
{
    Scene2 scene;
    const RefT<Object> special = makeThing<Special>("s"), stranger = makeThing<Stranger>("x");
    for (RefT<Object> const &object : {special, stranger}) {
        addField<FieldPtr>(*object, "part");
        addField<FieldPtr>(*object, "next");
    }
    scene.view->addAcceptedField("Thing", "part");
    scene.view->addRows({special, stranger}, 0);
    for (RefT<Object> const &object : {special, stranger})
        scene.open(Path(PtrT<Object>(object)));
    QCOMPARE(scene.dump(), std::string("'s' .part 'x'"));
}

void tst_ObjectTreeView2::anyLevelAcceptsAndNoneRefuses()
{
    Scene2 scene;
    const RefT<Object> special = makeThing<Special>("s");
    Field &part = addField<FieldPtr>(*special, "part"),
          &next = addField<FieldPtr>(*special, "next");
    Field &all = addField<MFieldPtr>(*special, "all"), &own = addField<MFieldRef>(*special, "own");
    scene.view->addAcceptedField("Special", "part");
    scene.view->addAcceptedField("Thing", "next");
    scene.view->addAcceptedField("", "all");
    QVERIFY(scene.view->isAccepted(part));
    QVERIFY(scene.view->isAccepted(next));
    QVERIFY(scene.view->isAccepted(all));
    QVERIFY(!scene.view->isAccepted(own));
    QVERIFY(!scene.view->isAccepted(scene.field("part")));
}

void tst_ObjectTreeView2::emptyClassNameAcceptsOnEveryClass()
{
    Scene2 scene;
    const RefT<Object> stranger = makeThing<Stranger>("x");
    Field &part = addField<FieldPtr>(*stranger, "part"),
          &next = addField<FieldPtr>(*stranger, "next");
    scene.view->addAcceptedField("", "part");
    QVERIFY(scene.view->isAccepted(part));
    QVERIFY(scene.view->isAccepted(scene.field("part")));
    QVERIFY(!scene.view->isAccepted(next));
}

void tst_ObjectTreeView2::emptySetAcceptsAllFieldsOfItsClass()
{
    Scene2 scene;
    const RefT<Object> special = makeThing<Special>("s"), stranger = makeThing<Stranger>("x");
    Field &part = addField<FieldPtr>(*special, "part"), &other = addField<FieldPtr>(*stranger, "p");
    const Traits2::AcceptedFields things{{"Thing", {}}, {"Special", {"next"}}};
    QVERIFY(Traits2::matches(things, part));
    QVERIFY(!Traits2::matches(things, other));
    const Traits2::AcceptedFields any{{"", {}}};
    QVERIFY(Traits2::matches(any, part));
    QVERIFY(Traits2::matches(any, other));
}

void tst_ObjectTreeView2::fieldWithoutOwnerIsAcceptedByTheEmptyClassName()
{
    Scene2 scene;
    const RefT<Field> field(scene.field("part"));
    scene.things.clear();
    QVERIFY(!field->owner);
    scene.view->addAcceptedField("Thing", "part");
    QVERIFY(!scene.view->isAccepted(*field));
    scene.view->addAcceptedField("", "part");
    QVERIFY(scene.view->isAccepted(*field));
}

void tst_ObjectTreeView2::valuesAreNeverAccepted()
{
    Scene2 scene;
    QVERIFY(!scene.view->isAccepted(scene.field("name")));
    scene.view->addAcceptedField("Thing", "name");
    QVERIFY(!scene.view->isAccepted(scene.field("name")));
}

void tst_ObjectTreeView2::lastNameRemovedRemovesTheClass()
{
    Scene2 scene;
    scene.view->addAcceptedField("Thing", "part");
    scene.view->addAcceptedField("Thing", "own");
    scene.show();
    scene.open(scene.path());
    QCOMPARE(scene.dump(), std::string("'a' .part .own"));
    scene.view->removeAcceptedField("Thing", "own");
    QCOMPARE(scene.dump(), std::string("'a' .part"));
    scene.view->removeAcceptedField("Thing", "part");
    QCOMPARE(scene.dump(), std::string("'a' .part .next .all .own"));
}

void tst_ObjectTreeView2::pairThatIsThereTouchesNoRow()
{
    Scene2 scene;
    scene.view->addAcceptedField("", "part");
    scene.show();
    scene.dump();
    PaintCounter paints(*scene.view->viewport());
    scene.view->addAcceptedField("", "part");
    QCOMPARE(paints.take(), 0);
    scene.view->addAcceptedField("", "own");
    QCOMPARE(paints.take(), 1);
}

void tst_ObjectTreeView2::pairThatIsNotThereTouchesNoRow()
{
    Scene2 scene;
    scene.view->addAcceptedField("", "part");
    scene.show();
    scene.dump();
    PaintCounter paints(*scene.view->viewport());
    scene.view->removeAcceptedField("Thing", "part");
    scene.view->removeAcceptedField("", "own");
    QCOMPARE(paints.take(), 0);
    scene.view->removeAcceptedField("", "part");
    QCOMPARE(paints.take(), 1);
}

/// KEPT: no row is told that the filter is empty.
void tst_ObjectTreeView2::clearedFilterTouchesNoRow()
{
    Scene2 scene;
    scene.view->addAcceptedField("", "part");
    scene.show();
    scene.open(scene.path());
    scene.dump();
    scene.view->clearAcceptedFields();
    QCOMPARE(scene.dump(), std::string("'a' .part"));
    QVERIFY(scene.view->isAccepted(scene.field("own")));
}

/// KEPT: a row whose object died still says where it stood.
void tst_ObjectTreeView2::lostRowsStillHaveAPath()
{
    Scene2 second;
    second.show();
    Row2 *const row2 = second.row(second.path("all", 1));
    Row2 *const child = second.row(second.path("all"));
    second.things[2] = {};
    const Path path = second.view->getRowPath(row2);
    QCOMPARE(path.getRoot().get(), second.a().get());
    QCOMPARE(path.getLast().index, std::size_t(1));
    QCOMPARE(path.getLast().field.get(), &second.field("all"));
    QVERIFY(!second.view->getRowObj(row2));
    QVERIFY(second.view->getRowPath(child).getRoot());
    Scene first;
    first.show();
    const RowHandle row1 = first.row(first.path("all", 1));
    first.things[2] = {};
    QVERIFY(!first.view->getRowPath(row1).getRoot());
}

/// KEPT: the place where the field stood.
void tst_ObjectTreeView2::rowsOfLostFieldsStillHaveAPath()
{
    Scene2 scene;
    addField<MFieldRef>(*scene.d(), "inner", makeThings("x"));
    scene.show();
    Path inner = scene.path("own", 0);
    inner.pushField(*scene.d()->findField("inner"));
    Path value = scene.path("own", 0);
    value.pushValue(fieldOf<MFieldRef>(scene.d(), "inner"), 0);
    Row2 *const valueRow = scene.row(value);
    Row2 *const fieldRow = scene.row(inner);
    QVERIFY(valueRow && fieldRow);
    removeField(*scene.d(), fieldOf<MFieldRef>(scene.d(), "inner"));
    QVERIFY(!scene.view->getRowField(fieldRow));
    for (Row2 *const row : {fieldRow, valueRow}) {
        const Path path = scene.view->getRowPath(row);
        QCOMPARE(path.getRoot().get(), scene.a().get());
        QCOMPARE(path.getNum(), std::size_t(1));
        QCOMPARE(path.getObj().get(), scene.d().get());
    }
}

void tst_ObjectTreeView2::deathOfAFieldIsLookedUp()
{
    Scene2 scene;
    scene.show();
    Row2 *const row = scene.row(scene.path("own"));
    Field const *const own = &scene.own();
    bool isTold = false;
    scene.own().sigDelete.connect([&](auto const &) {
        isTold = true;
        const Path path = scene.view->getRowPath(row);
        QCOMPARE(path.getRoot().get(), scene.a().get());
        QCOMPARE(path.getType(), Path::Field);
        QCOMPARE(path.getLast().field.get(), own);
    });
    removeField(*scene.a(), scene.own());
    QVERIFY(isTold);
}

/// KEPT: all top rows are new, and closed, when one comes or goes.
void tst_ObjectTreeView2::topRowsAreMadeAnewOnEachChange()
{
    Scene2 scene;
    scene.view->addAcceptedField("", "part");
    scene.show();
    scene.view->addRow(scene.b(), 1);
    scene.open(scene.path());
    QCOMPARE(scene.dump(), std::string("'a' .part 'b'"));
    int numMade = 0;
    scene.view->sigRow.connect([&](auto const &) { ++numMade; });
    scene.view->addRow(scene.c(), 2);
    QCOMPARE(scene.dump(), std::string("'a' 'b' 'c'"));
    QCOMPARE(numMade, 3);
    scene.open(scene.path());
    scene.dump();
    scene.view->removeRow(2);
    QCOMPARE(scene.dump(), std::string("'a' 'b'"));
    Scene first;
    first.view->addAcceptedField("", "part");
    first.show();
    first.open(first.path());
    first.dump();
    first.view->addRow(first.c(), 2);
    QCOMPARE(first.dump(), std::string("'a' .part 'c'"));
}

void tst_ObjectTreeView2::listKeepsItsOpenRowsOverAReorder()
{
    Scene2 scene;
    addField<FieldPtr>(*scene.e(), "more");
    scene.view->addAcceptedField("", "own");
    scene.view->addAcceptedField("", "more");
    scene.show();
    for (Path const &path : {scene.path(), scene.path("own"), scene.path("own", 1)})
        scene.open(path);
    QCOMPARE(scene.dump(), std::string("'a' .own ..'d' ..'e' ...more"));
    Row2 *const row = scene.row(scene.path("own", 1));
    scene.own().replace(0, 2, {scene.e(), scene.d()});
    QCOMPARE(scene.dump(), std::string("'a' .own ..'e' ...more ..'d'"));
    QCOMPARE(scene.row(scene.path("own", 0)), row);
}

void tst_ObjectTreeView2::currentRowOfAConstantView()
{
    Scene2 scene;
    scene.show();
    scene.dump();
    View2 const &view = *scene.view;
    QVERIFY(!view.getCurrent().getObj());
    QTest::mouseClick(scene.view->viewport(), Qt::LeftButton, {},
                      {60, scene.view->getRowHeight() / 2});
    QCOMPARE(view.getCurrent().getObj().get(), scene.a().get());
}

void tst_ObjectTreeView2::rowThatDiesWhileOthersAreLookedUpIsNotSelected()
{
    Scene2 scene;
    scene.show();
    scene.row(scene.path());
    bool isTold = false;
    scene.view->sigRow.connect([&](auto const &) {
        // Makes all top rows anew before the next path is looked up.
        if (!std::exchange(isTold, true))
            scene.view->addRow(scene.b(), 0);
    });
    const Path b(PtrT<Object>(scene.b()));
    scene.view->setSel({scene.path(), scene.path("own", 1), b});
    QVERIFY(isTold);
    std::vector<Path> paths;
    scene.view->getSel(paths);
    QCOMPARE(paths.size(), std::size_t(1));
    QCOMPARE(paths[0].getObj().get(), scene.b().get());
}

void tst_ObjectTreeView2::refusedEditOfADeadRowIsNotTold()
{
    Scene2 scene;
    scene.show();
    Row2 *const row = scene.row(scene.path());
    FieldString &name = fieldOf<FieldString>(scene.a(), "name");
    bool dies = true;
    name.sigCanSet.connect([&](auto const &) {
        if (dies) {
            scene.view->clear();
            scene.dump();
        }
        throw ErrorField(name, "no");
    });
    int numErrors = 0;
    scene.view->sigEditRowError.connect([&](auto const &) { ++numErrors; });
    scene.view->onEditRowConfirm(*row, "new");
    QCOMPARE(numErrors, 0);
    dies = false;
    scene.show();
    scene.view->onEditRowConfirm(*scene.row(scene.path()), "new");
    QCOMPARE(numErrors, 1);
}

void tst_ObjectTreeView2::listenersMayDestroyTheView_data()
{
    QTest::addColumn<QString>("signal");
    for (char const *name : {"row", "row below", "row of a selection", "clear", "menu", "error"})
        QTest::newRow(name) << QString(name);
}

void tst_ObjectTreeView2::listenersMayDestroyTheView()
{
    QFETCH(QString, signal);
    Scene2 scene;
    auto &view = *scene.view;
    const auto destroy = [&](auto const &) { scene.view.reset(); };
    if (signal == "row") {
        view.sigRow.connect(destroy);
        scene.show();
        view.findRow({5, 5});
    } else if (signal == "row below") {
        scene.show();
        scene.row(scene.path())->setOpen(true);
        view.sigRow.connect(destroy);
        view.findRow({5, 5});
    } else if (signal == "row of a selection") {
        scene.show();
        scene.row(scene.path());
        view.sigRow.connect(destroy);
        view.setSel({scene.path(), scene.path("own", 1)});
    } else if (signal == "clear") {
        view.sigClear.connect(destroy);
        view.clear();
    } else if (signal == "menu") {
        view.sigRowMenu.connect(destroy);
        view.onRequestContextMenu(nullptr, {});
    } else {
        scene.show();
        FieldString &name = fieldOf<FieldString>(scene.a(), "name");
        name.sigCanSet.connect([&](auto const &) { throw ErrorField(name, "no"); });
        view.sigEditRowError.connect(destroy);
        view.onEditRowConfirm(*scene.row(scene.path()), "new");
    }
    QVERIFY(!scene.view);
}

void tst_ObjectTreeView2::lastDragMayDieWithTheView()
{
    Scene2 scene;
    scene.show();
    scene.view->addRow(scene.e(), 0);
    fieldOf<MFieldRef>(scene.a(), "own").replace(0, 2, {});
    setLink(scene.a(), "next", scene.e());
    scene.open(scene.path());
    scene.open(scene.path("next"));
    scene.dump();
    const std::unique_ptr<QMimeData> mime(
        scene.view->makeMimeData({scene.row(scene.path("next", 0))}));
    // Only the drag holds what two rows stand for.
    const PtrT<Object> e(scene.e());
    scene.things[4] = {};
    QVERIFY(e);
    scene.view.reset();
    QVERIFY(!e);
}

QTEST_MAIN(tst_ObjectTreeView2)
#include "tst_ObjectTreeView2.moc"
