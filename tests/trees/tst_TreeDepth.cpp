#include "trees/Generations.h"

using namespace tree_test;

namespace {

constexpr std::size_t depth = 100000;

/// Objects without names, each of which links to the next one.
Things makeChain()
{
    Things chain;
    for (std::size_t i = 0; i <= depth; ++i)
        chain.emplace_back(new Thing);
    for (std::size_t i = 0; i < depth; ++i)
        setLink(chain[i], "next", chain[i + 1]);
    return chain;
}

Path pathThrough(Things const &chain)
{
    Path path(*chain.front());
    for (std::size_t i = 0; i < depth; ++i)
        path.pushValue(*chain[i]->findField("next"));
    return path;
}

template <class View>
void selectsTheEnd()
{
    const Things chain = makeChain();
    TreeT<View> view;
    view.addRow(chain.front(), 0);
    view.resize(300, 400);
    view.show();
    const Path path = pathThrough(chain);
    view.setSel({path});
    std::vector<Path> paths;
    view.getSel(paths);
    QCOMPARE(paths.size(), std::size_t(1));
    QCOMPARE(paths[0].getNum(), depth);
    QCOMPARE(paths[0].getObj().get(), chain.back().get());
    QVERIFY(!view.makeRow(Path(*chain.front()), false)->isOpen());
    // The same with all of it open.
    const auto row = view.makeRow(path, true);
    QCOMPARE(view.getRowObj(row), chain.back().get());
    QVERIFY(view.makeRow(Path(*chain.front()), false)->isOpen());
    QVERIFY(row->getParent()->isOpen());
}

} // namespace

/// Models that are deeper than a stack, in both generations.
class tst_TreeDepth : public QObject {
    Q_OBJECT

private slots:
    void initTestCase_data() { addGenerations(); }

    void pathsMayBeLong();
};

void tst_TreeDepth::pathsMayBeLong()
{
    QFETCH_GLOBAL(bool, second);
    if (second)
        selectsTheEnd<GUI::V2::ObjectTreeView>();
    else
        selectsTheEnd<ObjectTreeView>();
}

QTEST_MAIN(tst_TreeDepth)
#include "tst_TreeDepth.moc"
