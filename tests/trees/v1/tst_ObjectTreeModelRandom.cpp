#include "support/RandomModel.h"
#include "support/itemModelDump.h"
#include "zrVOMGUI/trees/v1/ObjectTreeModel.h"

#include <QAbstractItemModelTester>
#include <QtTest>

#include <memory>

using namespace ZR::VOM;
using namespace ZR::VOM::GUI;
using ZR::PtrT;
using ZR::RefT;
using Model = V1::ObjectTreeModel;

namespace {

constexpr int maxDepth = 4;

/// Lets nobody fetch rows deeper than the tests look. The tester fetches whatever can be fetched,
/// and objects that link in circles have no end.
class ShallowModel : public Model {
public:
    bool canFetchMore(QModelIndex const &parent) const override
    {
        int depth = 0;
        for (QModelIndex above = parent; above.isValid(); above = above.parent())
            ++depth;
        return depth <= maxDepth && Model::canFetchMore(parent);
    }
};

std::unique_ptr<Model> makeModel(Things const &tops, bool hideFields)
{
    auto model = std::make_unique<ShallowModel>();
    model->setTypeName(false);
    model->setFieldName("name");
    model->hideFields(hideFields);
    model->addRows({tops.begin(), tops.end()}, 0);
    return model;
}

std::string dumpFetched(Model &model)
{
    fetchRows(model, model.index(0, 0), maxDepth);
    return dumpRows(model, model.index(0, 0), maxDepth);
}

/// Fetches rows, changes how they are shown, or leaves the model marked; in words.
std::string use(Model &model, RandomModel &objects)
{
    switch (objects.below(6)) {
    case 0:
        model.hideFields(!model.isHideFields());
        return "toggle hide mode";
    case 1:
        fetchRows(model, model.index(0, 0), int(objects.below(5)));
        return "fetch";
    case 2:
        return "leave marked";
    default:
        model.update();
        return "update";
    }
}

} // namespace

/// Random edits of objects, fetches and updates, held against a model built anew.
class tst_ObjectTreeModelRandom : public QObject {
    Q_OBJECT

private slots:
    void modelFollowsItsObjects_data();
    void modelFollowsItsObjects();
};

void tst_ObjectTreeModelRandom::modelFollowsItsObjects_data()
{
    QTest::addColumn<unsigned>("seed");
    // Without it branches stay closed.
    QTest::addColumn<bool>("tested");
    for (unsigned seed = 1; seed <= 30; ++seed) {
        QTest::addRow("%u", seed) << seed << false;
        QTest::addRow("%u, under the tester", seed) << seed << true;
    }
}

void tst_ObjectTreeModelRandom::modelFollowsItsObjects()
{
    QFETCH(unsigned, seed);
    QFETCH(bool, tested);
    RandomModel objects(seed);
    // What is shown at the top lives as long as the test.
    const Things tops{objects.objs[0], objects.objs[1]};
    const auto model = makeModel(tops, seed % 2 == 0);
    using Tester = QAbstractItemModelTester;
    const auto tester =
        tested ? std::make_unique<Tester>(model.get(), Tester::FailureReportingMode::Fatal)
               : nullptr;
    for (int step = 0; step < 25; ++step) {
        const std::string done = objects.edit() + ", " + use(*model, objects);
        if (objects.below(3) != 0)
            continue;
        model->update();
        const std::string is = dumpFetched(*model);
        const std::string shouldBe = dumpFetched(*makeModel(tops, model->isHideFields()));
        QVERIFY2(
            is == shouldBe,
            (std::to_string(step) + ", " + done + ":\n" + is + "instead of\n" + shouldBe).c_str());
    }
    for (RefT<Object> const &top : tops)
        RandomModel::removeFields(top);
}

QTEST_GUILESS_MAIN(tst_ObjectTreeModelRandom)
#include "tst_ObjectTreeModelRandom.moc"
