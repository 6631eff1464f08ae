#include "support/RandomModel.h"
#include "trees/TreeScene.h"

using namespace tree_test;

namespace {

std::unique_ptr<Tree> makeTree(bool hideFields)
{
    auto tree = std::make_unique<Tree>();
    tree->setTypeName(false);
    tree->setNameField("name");
    tree->setHideFields(hideFields);
    // So high that all rows are in sight: others are brought up to date when they are seen.
    tree->resize(300, 30000);
    return tree;
}

/// All rows down to a depth, opened, as text.
std::string dumpOpened(Tree &tree)
{
    constexpr int maxDepth = 3;
    const int height = tree.getRowHeight();
    const auto depthOf = [](RowHandle const &row) {
        int depth = 0;
        for (RowHandle up = row->getParent(); up && up->getParent(); up = up->getParent())
            ++depth;
        return depth;
    };
    for (int y = height / 2; const RowHandle row = tree.findRow({5, y}); y += height)
        if (depthOf(row) < maxDepth)
            row->setOpen(true);
    tree.viewport()->grab(QRect(0, 0, 1, 1));
    std::string text;
    for (int y = height / 2; const RowHandle row = tree.findRow({5, y}); y += height) {
        const int depth = depthOf(row);
        text += std::string(std::size_t(depth), '.') + row->getText().toStdString() + ' ' +
                std::to_string(row->getNumChildRows()) + '\n';
    }
    return text;
}

} // namespace

/// Random edits of a model, and after each the tree against one built anew.
class tst_TreeModelBased : public QObject {
    Q_OBJECT

private slots:
    void treeFollowsTheModel_data();
    void treeFollowsTheModel();
};

void tst_TreeModelBased::treeFollowsTheModel_data()
{
    QTest::addColumn<unsigned>("seed");
    QTest::addColumn<bool>("hideFields");
    for (unsigned seed = 1; seed <= 30; ++seed)
        QTest::addRow("%u", seed) << seed << (seed % 2 == 0);
}

void tst_TreeModelBased::treeFollowsTheModel()
{
    QFETCH(unsigned, seed);
    QFETCH(bool, hideFields);
    RandomModel model(seed);
    // What the tree shows at the top lives as long as the test.
    const Things tops{model.objs[0], model.objs[1]};
    const auto tree = makeTree(hideFields);
    tree->addRows({tops[0], tops[1]}, 0);
    for (int step = 0; step < 25; ++step) {
        const std::string done = model.edit();
        const auto fresh = makeTree(hideFields);
        fresh->addRows({tops[0], tops[1]}, 0);
        const std::string is = dumpOpened(*tree), shouldBe = dumpOpened(*fresh);
        QVERIFY2(
            is == shouldBe,
            (std::to_string(step) + ", " + done + ":\n" + is + "instead of\n" + shouldBe).c_str());
    }
    for (RefT<Object> const &top : tops)
        RandomModel::removeFields(top);
}

QTEST_MAIN(tst_TreeModelBased)
#include "tst_TreeModelBased.moc"
