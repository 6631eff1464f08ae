#include "support/RandomModel.h"
#include "trees/TreeScene.h"

#include <set>
#include <utility>

using namespace tree_test;

namespace {

/// So high that all rows are in sight: others are brought up to date when they are seen.
constexpr QSize allRows(300, 60000), fewRows(300, 120);

int depthOf(RowHandle const &row)
{
    int depth = 0;
    for (RowHandle up = row->getParent(); up && up->getParent(); up = up->getParent())
        ++depth;
    return depth;
}

/// The rows that have a line, from the top.
std::vector<RowHandle> shownRows(Tree &tree)
{
    std::vector<RowHandle> rows;
    const int height = tree.getRowHeight();
    for (int y = height / 2; const RowHandle row = tree.findRow({5, y}); y += height)
        rows.push_back(row);
    return rows;
}

std::string dump(Tree &tree)
{
    tree.resize(allRows);
    tree.viewport()->grab(QRect(0, 0, 1, 1));
    std::string text;
    for (RowHandle const &row : shownRows(tree))
        text += std::string(std::size_t(depthOf(row)), '.') + row->getText().toStdString() + ' ' +
                std::to_string(row->getNumChildRows()) + (row->isOpen() ? " open\n" : "\n");
    return text;
}

/// What is set on a view.
struct Settings {
    void apply(Tree &tree) const
    {
        tree.setTypeName(typeName);
        tree.setNameField(nameField);
        tree.setHideFields(hideFields);
        for (auto const &[className, fieldName] : filter)
            tree.addAcceptedField(className, fieldName);
    }

    bool typeName = false;
    bool hideFields = false;
    std::string nameField = "name";
    std::set<std::pair<std::string, std::string>> filter;
};

/// A tree, what was set on it, and random operations of a user and a host.
class Subject {
public:
    Subject(RandomModel &shownModel, Things const &topObjs)
        : model(shownModel)
        , tops(topObjs)
        , tree(make())
    {
    }

    /// What was done, in words.
    std::string act()
    {
        switch (model.below(9)) {
        case 0:
        case 1:
        case 2:
            return open();
        case 3:
            return close();
        case 4:
            settings.hideFields = !settings.hideFields;
            tree->setHideFields(settings.hideFields);
            return settings.hideFields ? "hide fields" : "show fields";
        case 5:
            settings.nameField = settings.nameField == "name" ? "title" : "name";
            tree->setNameField(settings.nameField);
            return "name field " + settings.nameField;
        case 6:
            return filter();
        case 7:
            settings.typeName = !settings.typeName;
            tree->setTypeName(settings.typeName);
            return "class names";
        default:
            tree->verticalScrollBar()->setValue(int(model.below(400)));
            tree->grab();
            return "paint";
        }
    }

    std::string is()
    {
        std::string text = dump(*tree);
        tree->resize(fewRows);
        return text;
    }

    /// The same of a view that never knew anything else.
    std::string shouldBe()
    {
        const auto fresh = make();
        tree->resize(allRows);
        for (RowHandle const &row : shownRows(*tree))
            if (row->isOpen())
                if (const RowHandle same = fresh->makeRow(tree->getRowPath(row), false))
                    same->setOpen(true);
        tree->resize(fewRows);
        return dump(*fresh);
    }

private:
    std::unique_ptr<Tree> make() const
    {
        auto made = std::make_unique<Tree>();
        settings.apply(*made);
        made->resize(fewRows);
        made->addRows({tops.begin(), tops.end()}, 0);
        return made;
    }

    RowHandle anyShown()
    {
        const std::vector<RowHandle> rows = shownRows(*tree);
        return rows.empty() ? RowHandle() : rows[model.below(unsigned(rows.size()))];
    }

    std::string open()
    {
        constexpr int maxDepth = 7;
        const RowHandle row = anyShown();
        if (!row || depthOf(row) > maxDepth)
            return "nothing";
        row->setOpen(true);
        return "open " + row->getText().toStdString();
    }

    std::string close()
    {
        const RowHandle row = anyShown();
        if (row)
            row->setOpen(false);
        return "close";
    }

    std::string filter()
    {
        const std::pair<std::string, std::string> field(model.below(2) ? "" : "Thing",
                                                        std::string(1, char('p' + model.below(5))));
        if (settings.filter.erase(field)) {
            tree->removeAcceptedField(field.first, field.second);
            return "no longer accept " + field.second;
        }
        settings.filter.insert(field);
        tree->addAcceptedField(field.first, field.second);
        return "accept " + field.second;
    }

    RandomModel &model;
    const Things tops;
    Settings settings;
    std::unique_ptr<Tree> tree;
};

} // namespace

/// Random programs of edits and of what users and hosts do with a tree, and after each step the
/// tree against one built anew.
///
/// Two things that a tree doesn't follow are left out: a filter that is cleared, and fields that
/// come and go without a name field. They have tests of their own.
class tst_TreeModelBased : public QObject {
    Q_OBJECT

private slots:
    void treeIsAsOneBuiltAnew_data();
    void treeIsAsOneBuiltAnew();
};

void tst_TreeModelBased::treeIsAsOneBuiltAnew_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 60; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void tst_TreeModelBased::treeIsAsOneBuiltAnew()
{
    QFETCH(unsigned, seed);
    RandomModel model(seed);
    // What the tree shows at the top lives as long as the test.
    const Things tops{model.objs[0], model.objs[1]};
    for (RefT<Object> const &top : tops)
        addField<FieldString>(*top, "title", "the title");
    {
        Subject subject(model, tops);
        std::string program;
        for (int step = 0; step < 60; ++step) {
            // Several changes come before one look.
            for (unsigned i = model.below(3) + 1; i-- != 0;)
                program += (model.below(2) ? model.edit() : subject.act()) + "; ";
            const std::string is = subject.is(), shouldBe = subject.shouldBe();
            QVERIFY2(is == shouldBe, (program + "\n" + is + "instead of\n" + shouldBe).c_str());
        }
    }
}

QTEST_MAIN(tst_TreeModelBased)
#include "tst_TreeModelBased.moc"
