#include "trees/TreeScene.h"

#include <random>

using namespace tree_test;

namespace {

/// A random model of a few objects with all kinds of links, and edits of it.
class Model {
public:
    explicit Model(unsigned seed)
        : generator(seed)
    {
        for (unsigned i = 0; i < 7; ++i) {
            objs.push_back(makeThing(std::string(1, char('a' + i))));
            for (int field = 0; field < 2; ++field)
                addRandomField(objs.back());
        }
    }
    ~Model()
    {
        for (RefT<Object> const &obj : objs)
            while (obj && obj->getNumFields() != 0)
                removeField(*obj, *obj->getField(obj->getNumFields() - 1));
    }

    unsigned below(unsigned n) { return unsigned(generator()) % n; }
    RefT<Object> any()
    {
        return below(6) == 0 ? RefT<Object>() : objs[below(unsigned(objs.size()))];
    }

    /// What was done, in words.
    std::string edit()
    {
        const RefT<Object> obj = objs[below(unsigned(objs.size()))];
        if (!obj)
            return "nothing";
        switch (below(8)) {
        case 0:
            addRandomField(obj);
            return "add a field";
        case 1:
            if (obj->getNumFields() > 1)
                removeField(*obj, *obj->getField(1 + below(unsigned(obj->getNumFields()) - 1)));
            return "remove a field";
        case 2:
            if (auto *const name = ZR::cast<FieldString>(obj->findField("name")))
                name->set(std::string(1, char('A' + below(26))));
            return "rename";
        case 3:
            objs[below(unsigned(objs.size()))] = makeThing("n");
            return "let go of one and make another";
        default:
            return changeLinks(obj);
        }
    }

    Things objs;

private:
    void addRandomField(RefT<Object> const &obj)
    {
        const std::string name(1, char('p' + below(5)));
        switch (below(4)) {
        case 0:
            addField<FieldPtr>(*obj, name.c_str(), PtrT<Object>(any()));
            break;
        case 1:
            addField<FieldRef>(*obj, name.c_str(), any());
            break;
        case 2:
            addField<MFieldPtr>(*obj, name.c_str(), MFieldPtr::Values{any(), any()});
            break;
        default:
            addField<MFieldRef>(*obj, name.c_str(), Things{any(), any()});
        }
    }

    std::string changeLinks(RefT<Object> const &obj)
    {
        for (std::size_t i = 0; i < obj->getNumFields(); ++i) {
            Field &field = *obj->getField((i + below(3)) % obj->getNumFields());
            if (auto *const list = dynamic_cast<MFieldPtr *>(&field)) {
                const std::size_t at = below(unsigned(list->getNum()) + 1);
                list->replace(at, std::min<std::size_t>(below(2), list->getNum() - at),
                              {any(), any()});
                return "edit a watching list";
            }
            if (auto *const list = dynamic_cast<MFieldRef *>(&field)) {
                const std::size_t at = below(unsigned(list->getNum()) + 1);
                list->replace(at, std::min<std::size_t>(below(3), list->getNum() - at), {any()});
                return "edit an owning list";
            }
            if (auto *const link = dynamic_cast<FieldPtr *>(&field)) {
                link->set(any());
                return "set a watching link";
            }
        }
        return "nothing";
    }

    std::mt19937 generator;
};

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
    Model model(seed);
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
        while (top->getNumFields() != 0)
            removeField(*top, *top->getField(top->getNumFields() - 1));
}

QTEST_MAIN(tst_TreeModelBased)
#include "tst_TreeModelBased.moc"
