#include "trees/v1/ModelScene.h"
#include "zrVOMGUI/foundation/util/text.h"

#include <QPixmap>

#include <stdexcept>

using namespace model_test;

namespace {

class BadIcons : public GUI::ObjectIconDB {
public:
    QIcon find(RefT<Object> const &) const override { throw std::runtime_error("no icon"); }
};

} // namespace

/// The operations of an item model, and what rows show.
class tst_ObjectTreeModelItems : public QObject {
    Q_OBJECT

private slots:
    void topIsAnsweredForEveryRow();
    void topIsARow();
    void otherColumnsAreInvalid();
    void childrenAreFoundByRow();
    void parentsLeadToTheTop();
    void invalidIndexHasOneRow();
    void unfetchedRowsHaveChildrenAndNoRows();
    void unfetchedMillionIsANumber();
    void fetchMakesOneLevel();
    void emptyRowsHaveNothingToFetch();
    void fetchedRowsKeepNothingToFetch();
    void indexFindsRowsWhereverTheyAre();
    void objRowTellsObjectRowsOnly();

    void flagsFollowTheKindOfRow();
    void objectsAreLabelled();
    void voidIsLabelledAndTranslated();
    void fieldsShowTheirNames();
    void iconsComeFromTheDatabase();
    void databaseThatRaisesGivesNoIcon();
    void tooltipIsAStringField();
    void otherRolesAreInvalid();

    void indexesOfRemovedRowsAreHarmless();
    void indexesOfOtherModelsAreHarmless();
    void absurdRowsAreInvalid();
};

void tst_ObjectTreeModelItems::topIsAnsweredForEveryRow()
{
    const ObjectTreeModel model;
    const QModelIndex top = model.index(0, 0);
    QVERIFY(top.isValid());
    for (int row : {1, 5, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
        QCOMPARE(model.index(row, 0, QModelIndex()), top);
    QCOMPARE(top.row(), 0);
    QCOMPARE(top.column(), 0);
}

void tst_ObjectTreeModelItems::topIsARow()
{
    Scene scene;
    scene.show();
    QCOMPARE(textOf(scene.top()), std::string());
    QVERIFY(scene.top().data(Qt::DisplayRole).isValid());
    QVERIFY(!scene.top().data(Qt::DecorationRole).isValid());
    QCOMPARE(scene.top().data(Qt::ToolTipRole).toString(), QString());
    QVERIFY(!scene.top().parent().isValid());
    QCOMPARE(scene.model->rowCount(scene.top()), 1);
}

void tst_ObjectTreeModelItems::otherColumnsAreInvalid()
{
    Scene scene;
    scene.showFetched(2);
    for (int column : {1, -1}) {
        QVERIFY(!scene.model->index(0, column).isValid());
        QVERIFY(!scene.model->index(0, column, scene.top()).isValid());
    }
    QCOMPARE(scene.model->columnCount(), 1);
    QCOMPARE(scene.model->columnCount(scene.at({0})), 1);
}

void tst_ObjectTreeModelItems::childrenAreFoundByRow()
{
    Scene scene;
    scene.showFetched(4);
    QCOMPARE(scene.dump(), std::string("'a'+\n"
                                       ".part+\n..'b'+\n...back+\n"
                                       ".next+\n..'c'\n"
                                       ".all+\n..'b'+\n...back+\n..'c'\n"
                                       ".own+\n..'d'\n..'e'\n"));
}

void tst_ObjectTreeModelItems::parentsLeadToTheTop()
{
    Scene scene;
    scene.showFetched(4);
    const QModelIndex e = scene.at({0, 3, 1});
    QCOMPARE(textOf(e), std::string("'e'"));
    QCOMPARE(e.parent(), scene.at({0, 3}));
    QCOMPARE(e.parent().parent(), scene.at({0}));
    QCOMPARE(e.parent().parent().parent(), scene.top());
    QVERIFY(!scene.model->parent(scene.top()).isValid());
    QVERIFY(!scene.model->parent(QModelIndex()).isValid());
}

void tst_ObjectTreeModelItems::invalidIndexHasOneRow()
{
    ObjectTreeModel model;
    QCOMPARE(model.rowCount(), 1);
    QVERIFY(model.hasChildren());
    QVERIFY(!model.canFetchMore(QModelIndex()));
    QVERIFY(!model.data(QModelIndex()).isValid());
    QCOMPARE(int(model.flags(QModelIndex())), 0);
    // Asks the top to look after its rows, which are there already.
    Told told(model);
    model.fetchMore(QModelIndex());
    QCOMPARE(told.take(), std::string());
}

void tst_ObjectTreeModelItems::unfetchedMillionIsANumber()
{
    Scene scene;
    scene.all().replace(0, 2, MFieldPtr::Values(1000000, PtrT<Object>(scene.b())));
    Told told(*scene.model);
    scene.showFetched(2);
    QCOMPARE(told.take(),
             std::string("insert top 0, added a, changed 'a', insert 'a' 0, changed part, "
                         "insert 'a' 1, changed next, insert 'a' 2, changed all, insert "
                         "'a' 3, changed own"));
    const QModelIndex all = scene.at({0, 2});
    QCOMPARE(scene.model->rowCount(all), 0);
    QVERIFY(scene.model->hasChildren(all));
    // Nor does it make one that it is one value more.
    scene.all().replace(0, 0, {PtrT<Object>(scene.c())});
    scene.model->update();
    QCOMPARE(told.take(), std::string("update, changed all"));
    QVERIFY(scene.model->hasChildren(all) && scene.model->canFetchMore(all));
}

void tst_ObjectTreeModelItems::unfetchedRowsHaveChildrenAndNoRows()
{
    Scene scene;
    scene.show();
    const QModelIndex a = scene.at({0});
    QCOMPARE(scene.model->rowCount(a), 0);
    QVERIFY(scene.model->hasChildren(a));
    QVERIFY(scene.model->canFetchMore(a));
}

void tst_ObjectTreeModelItems::fetchMakesOneLevel()
{
    Scene scene;
    scene.show();
    Told told(*scene.model);
    scene.model->fetchMore(scene.at({0}));
    QCOMPARE(told.take(), std::string("insert 'a' 0, changed part, insert 'a' 1, changed next, "
                                      "insert 'a' 2, changed all, insert 'a' 3, changed own"));
    scene.model->fetchMore(scene.at({0, 3}));
    QCOMPARE(told.take(), std::string("insert own 0-1, added d e"));
    scene.model->fetchMore(scene.at({0, 1}));
    QCOMPARE(told.take(), std::string("insert next 0, added c"));
    scene.model->fetchMore(scene.at({0, 0}));
    QCOMPARE(told.take(), std::string("insert part 0, added b, changed 'b'"));
}

void tst_ObjectTreeModelItems::emptyRowsHaveNothingToFetch()
{
    Scene scene;
    scene.model->addRow(PtrT<Object>(scene.c()), 0);
    QVERIFY(!scene.model->hasChildren(scene.at({0})));
    QVERIFY(!scene.model->canFetchMore(scene.at({0})));
    scene.model->fetchMore(scene.at({0}));
    QCOMPARE(scene.model->rowCount(scene.at({0})), 0);
}

void tst_ObjectTreeModelItems::fetchedRowsKeepNothingToFetch()
{
    Scene scene;
    scene.showFetched(2);
    QVERIFY(!scene.model->canFetchMore(scene.at({0})));
    Told told(*scene.model);
    scene.model->fetchMore(scene.at({0}));
    QCOMPARE(told.take(), std::string());
}

void tst_ObjectTreeModelItems::indexFindsRowsWhereverTheyAre()
{
    Scene scene;
    scene.own().replace(0, 2, makeThings("0123456789"));
    scene.showFetched(3);
    std::vector<ObjectTreeModel::ObjectRow *> rows;
    for (int i = 0; i < 10; ++i)
        rows.push_back(scene.model->getObjRow(scene.at({0, 3, i})).row);
    const auto areAt = [&](std::vector<int> const &positions) {
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (scene.model->getIndex(rows[i]).row() != positions[i])
                return false;
        return true;
    };
    QVERIFY(areAt({0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    scene.own().replace(0, 0, makeThings("abcd"));
    scene.model->update();
    QVERIFY(areAt({4, 5, 6, 7, 8, 9, 10, 11, 12, 13}));
    const Things front(scene.own().getAll().begin() + 4, scene.own().getAll().begin() + 8);
    scene.own().replace(4, 4, {});
    scene.own().replace(10, 0, front);
    // Their objects may come back before the update.
    scene.model->update();
    QVERIFY(areAt({10, 11, 12, 13, 4, 5, 6, 7, 8, 9}));
    scene.own().replace(0, 4, {});
    scene.model->update();
    QVERIFY(areAt({6, 7, 8, 9, 0, 1, 2, 3, 4, 5}));
    QVERIFY(!scene.model->getIndex(nullptr).isValid());
}

void tst_ObjectTreeModelItems::objRowTellsObjectRowsOnly()
{
    Scene scene;
    scene.showFetched(3);
    const ObjectTreeModel::ObjRow a = scene.model->getObjRow(scene.at({0}));
    QVERIFY(a.row);
    QVERIFY(a.obj == PtrT<Object>(scene.a()));
    QCOMPARE(scene.model->getIndex(a.row), scene.at({0}));
    for (QModelIndex const &index : {QModelIndex(), scene.top(), scene.at({0, 1})}) {
        const ObjectTreeModel::ObjRow none = scene.model->getObjRow(index);
        QVERIFY(!none.row);
        QVERIFY(!none.obj);
    }
}

void tst_ObjectTreeModelItems::flagsFollowTheKindOfRow()
{
    Scene scene;
    scene.showFetched(2);
    QCOMPARE(int(scene.model->flags(scene.top())), 0);
    QCOMPARE(int(scene.model->flags(scene.at({0}))), 37);
    for (int field = 0; field < 4; ++field)
        QCOMPARE(int(scene.model->flags(scene.at({0, field}))), 41);
    scene.model->hideFields(true);
    QCOMPARE(int(scene.model->flags(scene.at({0}))), 45);
}

void tst_ObjectTreeModelItems::objectsAreLabelled()
{
    Scene scene;
    scene.show();
    const QModelIndex a = scene.at({0});
    QCOMPARE(textOf(a), std::string("'a'"));
    scene.model->setTypeName(true);
    QCOMPARE(textOf(a), std::string("Thing 'a'"));
    scene.model->setFieldName("");
    QCOMPARE(textOf(a), std::string("Thing"));
    fieldOf<FieldString>(scene.a(), "name").set("\xC3\xA4");
    scene.model->setFieldName("name");
    QCOMPARE(a.data().toString(), QString::fromUtf8("Thing '\xC3\xA4'"));
}

void tst_ObjectTreeModelItems::voidIsLabelledAndTranslated()
{
    Scene scene;
    scene.model->addRow(PtrT<Object>(), 0);
    QCOMPARE(textOf(scene.at({0})), std::string("void"));
    ZR::setTextTranslation([](char const *text) {
        return std::string(text) == "[ZR::VOM::GUI::ObjectTreeModelRowLabelObj0]void" ? "leer"
                                                                                      : nullptr;
    });
    const std::string translated = textOf(scene.at({0}));
    ZR::setTextTranslation({});
    QCOMPARE(translated, std::string("leer"));
    QVERIFY(!scene.at({0}).data(Qt::DecorationRole).isValid());
    QCOMPARE(scene.at({0}).data(Qt::ToolTipRole).toString(), QString());
}

void tst_ObjectTreeModelItems::fieldsShowTheirNames()
{
    Scene scene;
    scene.showFetched(2);
    const QModelIndex part = scene.at({0, 0});
    QCOMPARE(textOf(part), std::string("part"));
    QVERIFY(!part.data(Qt::DecorationRole).isValid());
    scene.model->setFieldTooltip("name");
    QCOMPARE(part.data(Qt::ToolTipRole).toString(), QString());
    removeField(*scene.a(), scene.part());
    QCOMPARE(textOf(part), std::string());
}

void tst_ObjectTreeModelItems::iconsComeFromTheDatabase()
{
    Scene scene;
    scene.show();
    QVERIFY(!scene.at({0}).data(Qt::DecorationRole).isValid());
    const RefT<GUI::ObjectClassIconDB> db(new GUI::ObjectClassIconDB);
    scene.model->setObjIconDB(db);
    // A null icon is an answer, too.
    QVERIFY(scene.at({0}).data(Qt::DecorationRole).isValid());
    QPixmap pixmap(3, 3);
    pixmap.fill(Qt::blue);
    db->add("Thing", QIcon(pixmap));
    QCOMPARE(scene.at({0}).data(Qt::DecorationRole).value<QIcon>().availableSizes(),
             QList<QSize>{QSize(3, 3)});
}

void tst_ObjectTreeModelItems::databaseThatRaisesGivesNoIcon()
{
    Scene scene;
    scene.show();
    scene.model->setObjIconDB(RefT<GUI::ObjectIconDB>(new BadIcons));
    const GUI::Reports reports;
    QVERIFY(scene.at({0}).data(Qt::DecorationRole).value<QIcon>().isNull());
    QCOMPARE(reports.texts,
             std::vector<std::string>{"ZR::VOM::GUI::V1::ObjectTreeModel::data: no icon"});
}

void tst_ObjectTreeModelItems::tooltipIsAStringField()
{
    Scene scene;
    scene.show();
    addField<FieldInt>(*scene.a(), "number", 1);
    const QModelIndex a = scene.at({0});
    QCOMPARE(a.data(Qt::ToolTipRole).toString(), QString());
    scene.model->setFieldTooltip("name");
    QCOMPARE(a.data(Qt::ToolTipRole).toString(), QString("a"));
    scene.model->setFieldTooltip("number");
    QCOMPARE(a.data(Qt::ToolTipRole).toString(), QString());
    scene.model->setFieldTooltip("none");
    QCOMPARE(a.data(Qt::ToolTipRole).toString(), QString());
}

void tst_ObjectTreeModelItems::otherRolesAreInvalid()
{
    Scene scene;
    scene.show();
    for (int role : {int(Qt::EditRole), int(Qt::SizeHintRole), int(Qt::UserRole), -1})
        QVERIFY(!scene.at({0}).data(role).isValid());
}

void tst_ObjectTreeModelItems::indexesOfRemovedRowsAreHarmless()
{
    Scene scene;
    scene.showFetched(3);
    const QModelIndex gone = scene.at({0, 3, 1});
    ObjectTreeModel::ObjectRow *const row = scene.model->getObjRow(gone).row;
    scene.own().replace(1, 1, {});
    scene.model->update();
    ObjectTreeModel &model = *scene.model;
    QCOMPARE(int(model.flags(gone)), 0);
    QVERIFY(!model.data(gone).isValid());
    QCOMPARE(model.rowCount(gone), 0);
    QVERIFY(!model.hasChildren(gone));
    QVERIFY(!model.canFetchMore(gone));
    QVERIFY(!model.index(0, 0, gone).isValid());
    QVERIFY(!model.parent(gone).isValid());
    QVERIFY(!model.getObjRow(gone).row);
    QVERIFY(!model.getIndex(row).isValid());
    Path path = scene.path("own", 0);
    QVERIFY(!model.getPath(gone, path));
    QCOMPARE(path.getNum(), std::size_t(0));
    Told told(model);
    model.fetchMore(gone);
    QCOMPARE(told.take(), std::string());
}

void tst_ObjectTreeModelItems::indexesOfOtherModelsAreHarmless()
{
    Scene scene, other;
    scene.showFetched(3);
    other.showFetched(3);
    const QModelIndex foreign = other.at({0, 3});
    QCOMPARE(int(scene.model->flags(foreign)), 0);
    QVERIFY(!scene.model->data(foreign).isValid());
    QCOMPARE(scene.model->rowCount(foreign), 0);
    QVERIFY(!scene.model->parent(foreign).isValid());
    QVERIFY(!scene.model->index(0, 0, foreign).isValid());
    QVERIFY(!scene.model->getIndex(other.model->getObjRow(other.at({0})).row).isValid());
}

void tst_ObjectTreeModelItems::absurdRowsAreInvalid()
{
    Scene scene;
    scene.showFetched(3);
    for (int row :
         {-1, 1, 1000000, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
        QVERIFY(!scene.model->index(row, 0, scene.top()).isValid());
}

QTEST_MAIN(tst_ObjectTreeModelItems)
#include "tst_ObjectTreeModelItems.moc"
