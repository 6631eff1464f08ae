#include "trees/v1/ViewScene.h"
#include "zrVOMGUI/foundation/vom/XmlExporter.h"
#include "zrVOMGUI/foundation/vom/XmlImporter.h"

#include <QStandardItemModel>

#include <algorithm>
#include <cstdint>
#include <utility>

using namespace view_test;

namespace {

void countSelections(ViewScene &scene, int &num)
{
    scene.view->sigSelChange.connect([&num](auto const &) { ++num; });
}

} // namespace

/// The view around V1's model: when rows follow, what is selected, and what Qt's own doors lead to.
class tst_ObjectTreeView1 : public QObject {
    Q_OBJECT

private slots:
    void defaults();
    void givenTransfersAreTheModels();
    void settingsAreTheModels();
    void topOfTheModelIsTheRoot();
    void topRowsOfAllKinds();
    void clearShowsTheTopAgain();
    void clearInASlotShowsTheTopAgain();
    void selectionIsPaths();
    void selectionOfManyRowsInOneRange();
    void selectionAppendsAndPassesOver();
    void emptySelectionDeselects();
    void pathsOfOthersSelectNothing();
    void pathThatIsThereTwiceIsSelectedOnce();
    void selectionIsToldAtOnce();
    void selectionInTheNewsOfALeavingRowFetchesNothing_data();
    void selectionInTheNewsOfALeavingRowFetchesNothing();
    void showSelScrollsToTheLastOne();
    void selectableClassesLimitNothing();
    void signalsAreTheModels();
    void signalsStandInOrder();
    void foreignModelIsHarmless();
    void nullModelsAreHarmless();
    void selectionModelOfTheHostStaysItsOwn();
    void deathTellsOfNoSelection();
    void listenersMayDestroyTheView_data();
    void listenersMayDestroyTheView();
    void listenersMayDeferTheDeathOfTheView();
    void deadObjectsUnderASelection();
};

void tst_ObjectTreeView1::defaults()
{
    View1 view;
    QVERIFY(view.isTypeName());
    QVERIFY(!view.isHideFields());
    QVERIFY(view.getFieldName().empty() && view.getFieldTooltip().empty());
    QVERIFY(!view.getXmlExporter() && !view.getXmlImporter() && !view.getObjIconDB());
    QCOMPARE(view.getDropActions(), Qt::CopyAction | Qt::MoveAction | Qt::LinkAction);
    QVERIFY(view.selectionModel());
    QCOMPARE(view.findChildren<QItemSelectionModel *>(QString(), Qt::FindDirectChildrenOnly).size(),
             1);
}

void tst_ObjectTreeView1::givenTransfersAreTheModels()
{
    const RefT<Exporter> exporter(new XmlExporter);
    const RefT<Xml::Importer> importer(new XmlImporter({}));
    QWidget parent;
    const View1 view(exporter, importer, &parent);
    QCOMPARE(view.getXmlExporter(), exporter);
    QCOMPARE(view.getXmlImporter(), importer);
    QCOMPARE(view.parentWidget(), &parent);
}

void tst_ObjectTreeView1::settingsAreTheModels()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    QCOMPARE(scene.dump(), std::string("'a' .part .next .all .own"));
    scene.view->setTypeName(true);
    QCOMPARE(scene.dump(), std::string("Thing 'a' .part .next .all .own"));
    scene.view->setFieldName("other");
    QCOMPARE(scene.dump(), std::string("Thing .part .next .all .own"));
    QCOMPARE(scene.view->getFieldName(), std::string("other"));
    scene.view->addAcceptedField("", "own");
    QCOMPARE(scene.dump(), std::string("Thing .own"));
    QVERIFY(!scene.view->isAccepted(PtrT<Field>(scene.field("part"))));
    scene.view->addAcceptedField("Thing", "part");
    scene.view->removeAcceptedField("", "own");
    QCOMPARE(scene.dump(), std::string("Thing .part"));
    scene.view->clearAcceptedFields();
    QVERIFY(scene.view->isAccepted(PtrT<Field>(scene.field("own"))));
    scene.view->hideFields(true);
    QVERIFY(scene.view->isHideFields());
    scene.view->setFieldTooltip("name");
    QCOMPARE(scene.row(scene.path()).data(Qt::ToolTipRole).toString(), QString("a"));
    scene.view->setDropActions(Qt::LinkAction);
    QCOMPARE(scene.view->getDropActions(), Qt::DropActions(Qt::LinkAction));
    scene.view->addMimeType("x/y");
    QVERIFY(scene.view->items().mimeTypes().isEmpty());
    scene.view->removeMimeType("x/y");
    scene.view->clearMimeTypes();
}

void tst_ObjectTreeView1::topOfTheModelIsTheRoot()
{
    ViewScene scene;
    QVERIFY(scene.view->rootIndex().isValid());
    QCOMPARE(scene.view->rootIndex(), scene.view->items().index(0, 0));
    scene.show();
    QCOMPARE(scene.dump(), std::string("'a'"));
}

void tst_ObjectTreeView1::topRowsOfAllKinds()
{
    ViewScene scene;
    QCOMPARE(scene.view->addRow(PtrT<Object>(scene.a()), 9), std::size_t(0));
    QCOMPARE(scene.view->addRow(fieldOf<FieldRef>(scene.a(), "part"), 9), std::size_t(1));
    QCOMPARE(scene.view->addRow(fieldOf<FieldPtr>(scene.a(), "next"), 0), std::size_t(0));
    QCOMPARE(scene.view->addRow(scene.all(), 1), std::size_t(1));
    QCOMPARE(scene.view->addRow(scene.own(), 99), std::size_t(4));
    scene.view->addRows({scene.b(), scene.c()}, 1);
    QCOMPARE(scene.dump(), std::string("next 'b' 'c' all 'a' part own"));
}

void tst_ObjectTreeView1::clearShowsTheTopAgain()
{
    ViewScene scene;
    int numClears = 0;
    scene.view->sigClear.connect([&](auto const &) { ++numClears; });
    scene.show();
    scene.view->clear();
    QCOMPARE(numClears, 1);
    QVERIFY(scene.view->rootIndex().isValid());
    QCOMPARE(scene.view->rootIndex(), scene.view->items().index(0, 0));
    scene.show();
    QCOMPARE(scene.dump(), std::string("'a'"));
}

void tst_ObjectTreeView1::clearInASlotShowsTheTopAgain()
{
    ViewScene scene;
    scene.show();
    scene.view->sigRowsAdded.connect([&](auto const &) { scene.view->clear(); });
    bool isTop = false;
    scene.view->sigClear.connect(
        [&](auto const &) { isTop = scene.view->rootIndex() == scene.view->items().index(0, 0); });
    scene.view->addRow(PtrT<Object>(scene.b()), 0);
    QVERIFY(isTop);
    QCOMPARE(scene.view->rootIndex(), scene.view->items().index(0, 0));
    QCOMPARE(scene.dump(), std::string());
}

void tst_ObjectTreeView1::selectionIsPaths()
{
    ViewScene scene;
    scene.view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    scene.show();
    scene.view->setSel({scene.path("own", 1), scene.path("part")});
    std::vector<Path> paths;
    scene.view->getSel(paths);
    QCOMPARE(paths.size(), std::size_t(2));
    QCOMPARE(paths[0].getLast().index, std::size_t(1));
    QCOMPARE(paths[1].getLast().field.get(), &scene.field("part"));
    QCOMPARE(paths[1].getType(), Path::Field);
}

void tst_ObjectTreeView1::selectionOfManyRowsInOneRange()
{
    ViewScene scene;
    scene.view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    scene.show();
    scene.open(scene.path());
    scene.dump();
    const QModelIndex a = scene.row(scene.path());
    QAbstractItemModel &items = scene.view->items();
    scene.view->selectionModel()->select(QItemSelection(items.index(1, 0, a), items.index(3, 0, a)),
                                         QItemSelectionModel::ClearAndSelect);
    std::vector<Path> paths;
    scene.view->getSel(paths);
    QCOMPARE(paths.size(), std::size_t(3));
    QCOMPARE(paths[0].getLast().field.get(), &scene.field("next"));
    QCOMPARE(paths[2].getLast().field.get(), &scene.field("own"));
}

void tst_ObjectTreeView1::selectionAppendsAndPassesOver()
{
    ViewScene scene;
    scene.show();
    scene.view->setSel({scene.path("own", 9), scene.path()});
    std::vector<Path> paths{scene.path("own")};
    scene.view->getSel(paths);
    QCOMPARE(paths.size(), std::size_t(2));
    QCOMPARE(paths[1].getObj().get(), scene.a().get());
}

void tst_ObjectTreeView1::emptySelectionDeselects()
{
    ViewScene scene;
    scene.show();
    scene.view->setSel({scene.path()});
    scene.view->setSel({});
    QVERIFY(!scene.view->selectionModel()->hasSelection());
}

void tst_ObjectTreeView1::pathsOfOthersSelectNothing()
{
    ViewScene scene, other;
    scene.show();
    scene.view->setSel({scene.path()});
    scene.view->setSel({other.path(), other.path("own", 1), Path(PtrT<Object>())});
    std::vector<Path> paths;
    scene.view->getSel(paths);
    QVERIFY(paths.empty());
    QCOMPARE(scene.dump(), std::string("'a'"));
}

void tst_ObjectTreeView1::pathThatIsThereTwiceIsSelectedOnce()
{
    ViewScene scene;
    scene.show();
    scene.view->setSel({scene.path("own"), scene.path("own")});
    std::vector<Path> paths;
    scene.view->getSel(paths);
    QCOMPARE(paths.size(), std::size_t(1));
}

void tst_ObjectTreeView1::selectionIsToldAtOnce()
{
    ViewScene scene;
    scene.show();
    int num = 0;
    countSelections(scene, num);
    scene.view->setSel({scene.path()});
    QCOMPARE(num, 1);
    scene.view->clearSelection();
    QCOMPARE(num, 2);
    QTest::qWait(1);
    QCOMPARE(num, 2);
}

void tst_ObjectTreeView1::selectionInTheNewsOfALeavingRowFetchesNothing_data()
{
    QTest::addColumn<bool>("isFetched");
    QTest::newRow("a row that is there is selected") << true;
    QTest::newRow("a row that isn't is passed over") << false;
}

/// Which comes between two signals of Qt's.
void tst_ObjectTreeView1::selectionInTheNewsOfALeavingRowFetchesNothing()
{
    QFETCH(bool, isFetched);
    ViewScene scene;
    scene.show();
    RefT<Object> other = makeThing("x");
    scene.view->addRow(PtrT<Object>(other), 0);
    if (isFetched)
        scene.open(scene.path("own"));
    scene.view->setSel({Path(PtrT<Object>(other))});
    int num = 0;
    scene.view->sigSelChange.connect([&](auto const &) {
        if (num++ == 0)
            scene.view->setSel({scene.path("own", 1)});
    });
    other.reset();
    std::vector<Path> paths;
    scene.view->getSel(paths);
    QVERIFY(num > 0);
    QCOMPARE(paths.size(), std::size_t(isFetched));
    // Afterwards it is as ever.
    scene.view->setSel({scene.path("own", 1)});
    paths.clear();
    scene.view->getSel(paths);
    QCOMPARE(paths.size(), std::size_t(1));
}

void tst_ObjectTreeView1::showSelScrollsToTheLastOne()
{
    ViewScene scene;
    scene.view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    Things many;
    for (int i = 0; i < 100; ++i)
        many.push_back(makeThing(std::to_string(i)));
    scene.view->addRows({many.begin(), many.end()}, 0);
    scene.dump();
    scene.view->setSel({Path(PtrT<Object>(many[3])), Path(PtrT<Object>(many[90]))});
    const QRect sight = scene.view->viewport()->rect();
    const QModelIndex last = scene.row(Path(PtrT<Object>(many[90])));
    QVERIFY(!sight.contains(scene.view->visualRect(last)));
    scene.view->showSel();
    QVERIFY(sight.contains(scene.view->visualRect(last)));
    QVERIFY(!sight.intersects(scene.view->visualRect(scene.row(Path(PtrT<Object>(many[3]))))));
}

void tst_ObjectTreeView1::selectableClassesLimitNothing()
{
    ViewScene scene;
    scene.show();
    scene.view->addSelectableClass("Stranger");
    scene.view->addSelectableClass("");
    scene.view->setSel({scene.path()});
    QVERIFY(scene.view->selectionModel()->hasSelection());
    scene.view->removeSelectableClass("Stranger");
    scene.view->removeSelectableClass("nothing");
    scene.view->clearSelectableClasses();
    QVERIFY(scene.view->selectionModel()->hasSelection());
}

void tst_ObjectTreeView1::signalsAreTheModels()
{
    ViewScene scene;
    auto &model = dynamic_cast<GUI::V1::ObjectTreeModel &>(scene.view->items());
    QCOMPARE(&scene.view->sigRowsAdded, &model.sigRowsAdded);
    QCOMPARE(&scene.view->sigRowsRemoved, &model.sigRowsRemoved);
    QCOMPARE(&scene.view->sigClear, &model.sigClear);
    QCOMPARE(&scene.view->sigCanDrop, &model.sigCanDrop);
    QCOMPARE(&scene.view->sigDrop, &model.sigDrop);
}

void tst_ObjectTreeView1::signalsStandInOrder()
{
    const View1 view;
    const GUI::V1::ObjectTreeModel model;
    const auto at = [](auto const &signal) { return reinterpret_cast<std::uintptr_t>(&signal); };
    const std::uintptr_t ofModel[] = {at(model.sigRowsAdded), at(model.sigRowsRemoved),
                                      at(model.sigClear),     at(model.sigDrop),
                                      at(model.sigCanDrop),   at(model.sigUpdate)};
    QVERIFY(std::is_sorted(std::begin(ofModel), std::end(ofModel)));
    QVERIFY(at(view.sigSelChange) < at(view.sigDoubleClick));
}

void tst_ObjectTreeView1::foreignModelIsHarmless()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    scene.view->setSel({scene.path("own")});
    scene.dump();
    QStandardItemModel other(3, 1);
    QTreeView &base = *scene.view;
    base.setModel(&other);
    QCOMPARE(base.model(), &other);
    base.selectionModel()->select(other.index(1, 0), QItemSelectionModel::Select);
    std::vector<Path> paths;
    scene.view->getSel(paths);
    QVERIFY(paths.empty());
    scene.view->setSel({scene.path()});
    QVERIFY(base.selectionModel()->isSelected(other.index(1, 0)));
    std::vector<int> rows;
    scene.view->expandRows({0, 1, -1, -1});
    scene.view->getExpandedRows(rows);
    scene.view->showSel();
    scene.own().replace(0, 2, {});
    scene.paint();
    scene.view->clear();
    scene.show();
    scene.paint();
    scene.view->requestUpdate();
    QTest::qWait(5);
}

void tst_ObjectTreeView1::nullModelsAreHarmless()
{
    ViewScene scene;
    scene.show();
    QTreeView &base = *scene.view;
    base.setSelectionModel(nullptr);
    QVERIFY(base.selectionModel());
    scene.view->setSel({scene.path()});
    QVERIFY(base.selectionModel()->hasSelection());
    base.setModel(nullptr);
    std::vector<Path> paths;
    scene.view->getSel(paths);
    scene.view->setSel({scene.path("own")});
    scene.view->showSel();
    scene.view->expandRows({0, -1});
    scene.view->clear();
    scene.paint();
    QVERIFY(paths.empty());
}

void tst_ObjectTreeView1::selectionModelOfTheHostStaysItsOwn()
{
    ViewScene scene;
    scene.show();
    const QPointer<QItemSelectionModel> first = scene.view->selectionModel();
    auto ofHost = std::make_unique<QItemSelectionModel>(&scene.view->items(), this);
    const QPointer<QItemSelectionModel> watched = ofHost.get();
    QAbstractItemView &base = *scene.view;
    base.setSelectionModel(ofHost.get());
    scene.view->setSel({scene.path()});
    QVERIFY(ofHost->hasSelection());
    scene.view.reset();
    QVERIFY(watched);
    QVERIFY(!first);
    // Only now.
    ofHost.reset();
    QVERIFY(!watched);
}

void tst_ObjectTreeView1::deathTellsOfNoSelection()
{
    ViewScene scene;
    scene.show();
    scene.view->setSel({scene.path()});
    int num = 0;
    countSelections(scene, num);
    scene.view.reset();
    QCOMPARE(num, 0);
    fieldOf<FieldString>(scene.a(), "name").set("new");
}

void tst_ObjectTreeView1::listenersMayDestroyTheView_data()
{
    QTest::addColumn<QString>("way");
    for (char const *way :
         {"clear", "fetched by a selection", "fetched by a list", "selection",
          "selection after a paint", "double click", "top row", "hidden fields", "accepted field"})
        QTest::newRow(way) << QString(way);
}

void tst_ObjectTreeView1::listenersMayDestroyTheView()
{
    QFETCH(QString, way);
    ViewScene scene;
    scene.show();
    scene.dump();
    Tree1 &view = *scene.view;
    const auto destroy = [&](auto const &) { scene.view.reset(); };
    if (way == "clear") {
        view.sigClear.connect(destroy);
        view.clear();
    } else if (way == "fetched by a selection") {
        view.sigRowsAdded.connect(destroy);
        view.setSel({scene.path("own", 1), scene.path("all", 0)});
    } else if (way == "fetched by a list") {
        view.sigRowsAdded.connect(destroy);
        view.expandRows({0, 0, -1, 1, -1, -1, 0});
    } else if (way == "selection") {
        view.sigSelChange.connect(destroy);
        view.setSel({scene.path()});
    } else if (way == "selection after a paint") {
        scene.open(scene.path());
        scene.open(scene.path("own"));
        view.setSel({scene.path("own", 0)});
        scene.dump();
        view.sigSelChange.connect(destroy);
        scene.own().replace(0, 1, {});
        scene.paint();
        QTest::qWait(5);
    } else if (way == "top row") {
        view.sigRowsAdded.connect(destroy);
        view.addRow(PtrT<Object>(scene.b()), 0);
    } else if (way == "hidden fields") {
        scene.open(scene.path());
        view.sigRowsAdded.connect(destroy);
        view.hideFields(true);
    } else if (way == "accepted field") {
        scene.open(scene.path());
        scene.open(scene.path("own"));
        view.sigRowsRemoved.connect(destroy);
        view.addAcceptedField("", "next");
    } else {
        view.sigDoubleClick.connect(destroy);
        QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, {30, 5});
    }
    QVERIFY(!scene.view);
}

/// Qt lays rows out before it scrolls, and goes on with the view.
void tst_ObjectTreeView1::listenersMayDeferTheDeathOfTheView()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    scene.dump();
    scene.view->setSel({scene.path("own")});
    scene.view->addRow(PtrT<Object>(scene.b()), 0);
    scene.view->expand(scene.view->makeIndex(scene.path("own"), false));
    const QPointer<Tree1> view(scene.view.release());
    int numAdded = 0;
    view->sigRowsAdded.connect([&](auto const &) {
        ++numAdded;
        view->deleteLater();
    });
    view->showSel();
    QVERIFY(view);
    QCOMPARE(numAdded, 1);
    QTRY_VERIFY(!view);
}

void tst_ObjectTreeView1::deadObjectsUnderASelection()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("next"));
    scene.view->setSel({scene.path("next", 0)});
    scene.dump();
    scene.c() = {};
    std::vector<Path> paths;
    scene.view->getSel(paths);
    scene.dump();
    scene.view->setSel(paths);
    scene.a() = {};
    QCOMPARE(scene.dump(), std::string());
    scene.view->setSel(paths);
}

QTEST_MAIN(tst_ObjectTreeView1)
#include "tst_ObjectTreeView1.moc"
