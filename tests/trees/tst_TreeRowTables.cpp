#include "support/slotOf.h"
#include "trees/TreeScene.h"
#include "zrVOMGUI/trees/private/ObjectTreeRows.h"

#include <functional>
#include <map>

using namespace tree_test;
using ZR::GUI::TreeRow;

namespace {

/// The same icon for every object.
class OneIconDB : public GUI::ObjectIconDB {
public:
    QIcon find(RefT<Object> const &) const override
    {
        QPixmap pixmap(8, 8);
        pixmap.fill(Qt::red);
        return pixmap;
    }
};

enum class Kind { Root, Void, Object, SingleWatching, SingleOwning, ListWatching, ListOwning };

/// What a row shows, a word for each part.
struct Look {
    explicit Look(TreeRow const &row)
        : text(row.getText())
        , hasIcon(!row.getIcon().isNull())
        , hidden(row.isHidden())
        , numChildren(row.getNumChildRows())
    {
    }
    /// The parts in which it differs from another: "text", "icon", "hidden", "children".
    QString differences(Look const &other) const
    {
        QStringList parts;
        if (text != other.text)
            parts << "text";
        if (hasIcon != other.hasIcon)
            parts << "icon";
        if (hidden != other.hidden)
            parts << "hidden";
        if (numChildren != other.numChildren)
            parts << "children";
        return parts.join(' ');
    }

    QString text;
    bool hasIcon;
    bool hidden;
    std::size_t numChildren;
};

struct KindName {
    Kind kind;
    char const *name;
    char const *field; ///< Of the row, or the one whose value it shows.
};

constexpr KindName kinds[] = {
    {Kind::Root, "root", "own"},
    {Kind::Void, "void row", "gap"},
    {Kind::Object, "object row", "own"},
    {Kind::SingleWatching, "single watching field", "next"},
    {Kind::SingleOwning, "single owning field", "part"},
    {Kind::ListWatching, "watching list", "all"},
    {Kind::ListOwning, "owning list", "own"},
};

} // namespace

Q_DECLARE_METATYPE(Kind)

/// What each setter of the view does to each kind of row.
class tst_TreeRowTables : public QObject {
    Q_OBJECT

private slots:
    void setterChangesRows_data();
    void setterChangesRows();
    void operationsOfRowsKeepTheirSlots();
    void rowsAreToldBeforeTheyAreShown();
    void plainFieldsHaveNoRow();
};

void tst_TreeRowTables::setterChangesRows_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("setter");
    QTest::addColumn<QString>("changes");
    for (auto const &[kind, name, field] : kinds) {
        const bool isObject = kind == Kind::Object;
        const bool isField = kind > Kind::Object;
        const auto add = [&](char const *setter, char const *changes) {
            QTest::addRow("%s, %s", name, setter) << kind << field << setter << changes;
        };
        add("icon database", isObject ? "icon" : "");
        add("class names", isObject ? "text" : "");
        add("address", isObject ? "text" : "");
        add("name field", isObject ? "text" : "");
        add("hide fields", isField ? "hidden" : "");
        add("accepted fields", isObject ? "children" : "");
    }
}

void tst_TreeRowTables::setterChangesRows()
{
    QFETCH(Kind, kind);
    QFETCH(QString, field);
    QFETCH(QString, setter);
    QFETCH(QString, changes);
    Scene scene;
    addField<FieldPtr>(*scene.a(), "gap");
    addField<FieldString>(*scene.a(), "other", "another name");
    scene.show();
    const std::string fieldName = field.toStdString();
    RowHandle row = scene.row(scene.path(fieldName.c_str()));
    scene.open(scene.path());
    if (kind == Kind::Root)
        row = scene.row(scene.path())->getParent();
    else if (kind == Kind::Object)
        row = scene.row(scene.path());
    else if (kind == Kind::Void)
        row = scene.row(scene.path("gap", 0));
    QVERIFY(row);
    scene.dump();
    const Look before(*row);

    std::map<QString, std::function<void()>> const setters = {
        {"icon database",
         [&] { scene.view->setObjIconDB(RefT<GUI::ObjectIconDB>(new OneIconDB)); }},
        {"class names", [&] { scene.view->setTypeName(true); }},
        {"address", [&] { scene.view->setAddress(true); }},
        {"name field", [&] { scene.view->setNameField("other"); }},
        {"hide fields", [&] { scene.view->setHideFields(true); }},
        {"accepted fields", [&] { scene.view->addAcceptedField("", fieldName); }},
    };
    setters.at(setter)();
    scene.dump();
    QCOMPARE(Look(*row).differences(before), changes);
}

namespace {

struct Slots : ObjectTreeView {
    static std::vector<std::ptrdiff_t> inOrder()
    {
        return {slotOf(&VoidRow::onUpdate),
                slotOf(&VoidRow::getPath),
                slotOf(&VoidRow::makeRow),
                slotOf(&VoidRow::onObjIconDBChanged),
                slotOf(&VoidRow::onTypeNameChanged),
                slotOf(&VoidRow::onAddressChanged),
                slotOf(&VoidRow::onNameFieldChanged),
                slotOf(&VoidRow::onHideFieldsChanged),
                slotOf(&VoidRow::onAcceptedFieldsChanged)};
    }
};

} // namespace

void tst_TreeRowTables::operationsOfRowsKeepTheirSlots()
{
    // Behind the two entries of the destructor.
    std::ptrdiff_t slot = 2;
    for (std::ptrdiff_t is : Slots::inOrder())
        QCOMPARE(is, slot++);
}

namespace {

/// Makes rows as their parents do.
struct MakerView : ObjectTreeView {
    using ObjectTreeView::makeRow;
    RowHandle makeFieldRow(Field &field)
    {
        return makeRow(static_cast<VoidRow &>(*ZR::GUI::TreeView::getRoot()), field);
    }
};

} // namespace

void tst_TreeRowTables::rowsAreToldBeforeTheyAreShown()
{
    Scene scene;
    addField<FieldPtr>(*scene.a(), "gap");
    scene.view->addAcceptedField("", "gap");
    scene.view->setHideFields(true);
    scene.show();
    std::vector<std::string> told;
    scene.view->sigRow.connect([&](auto const &sigData) {
        TreeRow const &row = *sigData.row;
        told.push_back(row.getText().toStdString() + (row.isHidden() ? " hidden" : ""));
        QCOMPARE(row.getPos(), TreeRow::npos);
    });
    QVERIFY(scene.row(scene.path("gap", 0)));
    // The object's has no text yet.
    QCOMPARE(told, (std::vector<std::string>{"", "gap hidden", "void"}));
}

void tst_TreeRowTables::plainFieldsHaveNoRow()
{
    Scene scene;
    MakerView view;
    int numTold = 0;
    view.sigRow.connect([&](auto const &) { ++numTold; });
    QVERIFY(!view.makeFieldRow(scene.field("name")));
    QCOMPARE(numTold, 0);
    QVERIFY(view.makeFieldRow(scene.field("own")));
    QCOMPARE(numTold, 1);
}

QTEST_MAIN(tst_TreeRowTables)
#include "tst_TreeRowTables.moc"
