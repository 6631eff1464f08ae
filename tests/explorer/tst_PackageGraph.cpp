#include "PackageGraph.h"

#include <QTest>

using namespace Explorer;
using ZR::cast;
using ZR::RefT;

namespace {

std::string stanza(std::string const &name, std::string const &lines = "")
{
    return "Package: " + name +
           "\nStatus: install ok installed\nSection: s\nMaintainer: m\nDescription: about " + name +
           "\n" + lines + "\n";
}

//  x   y          x and y need a, a needs b and c, and b and c need each other
//   \ /
//    a            d stands alone
//   / \           .
//  b = c
PackageModel makeModel()
{
    return PackageModel(readStatus(stanza("x", "Depends: a\n") + stanza("y", "Depends: a\n") +
                                   stanza("a", "Depends: b, c\n") + stanza("b", "Depends: c\n") +
                                   stanza("c", "Depends: b\n") + stanza("d")));
}

/// By name; packages, and what is about them, bear different names.
QString names(Objects const &objects)
{
    QStringList list;
    for (auto const &object : objects)
        list << QString::fromStdString(cast<Item>(object)->getName());
    list.sort();
    return list.join(", ");
}

} // namespace

class tst_PackageGraph : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void knowsEverythingAndShowsNothingAtFirst();
    void packageComesWithItsSurroundings();
    void anotherPackageReplacesTheFirst();
    void limitHoldsNeighboursBack();
    void moreMeansNeighboursOfTheSelected();
    void moreMeansNeighboursOfAllWithoutSelection();
    void moreFollowsTheLinkRules();
    void moreStopsAtTheLimit();
    void moreOfNothingIsNothing();
    void neighboursComeOutOfWhatTheyAreLinkedTo();
    void shownPackageBeginsInTheViewport();
    void hidingTheSelectedLeavesTheRest();
    void hidingAllLeavesNoFigures();
    void newIconsKeepEverythingElse();
    void eachPairOfLinkedObjectsCountsOnce();
    void inLinksAreLinks();

private:
    RefT<Package> package(char const *name) const { return model->findPackage(name); }
    QString visible() const { return names(graph->getVisibleObjs()); }

    std::unique_ptr<PackageModel> model;
    std::unique_ptr<PackageGraph> graph;
};

void tst_PackageGraph::init()
{
    model = std::make_unique<PackageModel>(makeModel());
    graph = std::make_unique<PackageGraph>(*model);
}

void tst_PackageGraph::cleanup()
{
    graph.reset();
    model.reset();
}

void tst_PackageGraph::knowsEverythingAndShowsNothingAtFirst()
{
    const PackageGraph::Counts counts = graph->count();
    QCOMPARE(counts.known, std::size_t(1 + 1 + 6 * 2));
    QCOMPARE(counts.visible, std::size_t(0));
    QCOMPARE(counts.links, std::size_t(0));
}

void tst_PackageGraph::packageComesWithItsSurroundings()
{
    const PackageGraph::Revealed revealed = graph->showPackage(package("a"));
    QCOMPARE(visible(), QString("a, b, c, x, y"));
    QCOMPARE(names(graph->getSel()), QString("a"));
    QCOMPARE(revealed.shown, std::size_t(4));
    QCOMPARE(revealed.left, std::size_t(0));
}

void tst_PackageGraph::anotherPackageReplacesTheFirst()
{
    graph->showPackage(package("a"));
    graph->showPackage(package("x"));
    QCOMPARE(visible(), QString("a, x"));
    QCOMPARE(names(graph->getSel()), QString("x"));
    graph->showPackage(package("d"));
    QCOMPARE(visible(), QString("d"));
}

void tst_PackageGraph::limitHoldsNeighboursBack()
{
    graph->setNeighbourLimit(3);
    QCOMPARE(graph->getNeighbourLimit(), 3u);
    const PackageGraph::Revealed revealed = graph->showPackage(package("a"));
    // Its dependencies first, then those that need it.
    QCOMPARE(visible(), QString("a, b, c, x"));
    QCOMPARE(revealed.shown, std::size_t(3));
    QCOMPARE(revealed.left, std::size_t(1));
}

void tst_PackageGraph::moreMeansNeighboursOfTheSelected()
{
    graph->showPackage(package("x"));
    QCOMPARE(graph->showMore().shown, std::size_t(0));
    graph->setSel({package("a")});
    const PackageGraph::Revealed revealed = graph->showMore();
    QCOMPARE(visible(), QString("a, b, c, x, y"));
    QCOMPARE(revealed.shown, std::size_t(3));
}

void tst_PackageGraph::moreMeansNeighboursOfAllWithoutSelection()
{
    graph->showPackage(package("x"));
    graph->setSel({});
    graph->showMore();
    QCOMPARE(visible(), QString("a, b, c, x, y"));
}

void tst_PackageGraph::moreFollowsTheLinkRules()
{
    graph->showPackage(package("d"));
    QCOMPARE(graph->showMore().shown, std::size_t(0));
    for (LinkKind const &kind : linkKinds)
        graph->setOutLinks(kind, true);
    graph->showMore();
    QCOMPARE(visible(), QString("about d, d, m, s"));
    graph->hideAll();
    graph->showPackage(package("d"));
    for (LinkKind const &kind : linkKinds)
        graph->setOutLinks(kind, false);
    QCOMPARE(graph->showMore().shown, std::size_t(0));
    QVERIFY(graph->getOutLinkFields().empty());
}

void tst_PackageGraph::moreStopsAtTheLimit()
{
    graph->showPackage(package("x"));
    graph->setSel({package("a")});
    graph->setNeighbourLimit(2);
    const PackageGraph::Revealed revealed = graph->showMore();
    QCOMPARE(revealed.shown, std::size_t(2));
    QCOMPARE(revealed.left, std::size_t(1));
    QCOMPARE(graph->count().visible, std::size_t(4));
}

void tst_PackageGraph::moreOfNothingIsNothing()
{
    const PackageGraph::Revealed revealed = graph->showMore();
    QCOMPARE(revealed.shown + revealed.left, std::size_t(0));
    QCOMPARE(visible(), QString());
}

void tst_PackageGraph::neighboursComeOutOfWhatTheyAreLinkedTo()
{
    graph->showPackage(package("x"));
    QVERIFY(graph->setPos(package("a"), 300, 200, false));
    graph->setSel({package("a")});
    graph->animDuration.set(10);
    graph->showMore();
    for (char const *name : {"b", "c", "y"}) {
        int x = 0, y = 0;
        QVERIFY(graph->getPos(package(name), x, y));
        QCOMPARE(QPoint(x, y), QPoint(300, 200));
    }
}

void tst_PackageGraph::shownPackageBeginsInTheViewport()
{
    graph->resize(500, 400);
    graph->grab();
    graph->showPackage(package("a"));
    int x = 0, y = 0;
    QVERIFY(graph->getPos(package("a"), x, y));
    const QSize size = graph->viewport()->size();
    QVERIFY(QRect(QPoint(0, 0), size).contains(x, y));
    QVERIFY(qAbs(x - size.width() / 2) <= 10);
}

void tst_PackageGraph::hidingTheSelectedLeavesTheRest()
{
    graph->showPackage(package("a"));
    graph->hideSelected();
    QCOMPARE(visible(), QString("b, c, x, y"));
    graph->hideSelected();
    QCOMPARE(visible(), QString("b, c, x, y"));
}

void tst_PackageGraph::hidingAllLeavesNoFigures()
{
    graph->showPackage(package("a"));
    QVERIFY(graph->getLayoutFigures().layers > 0);
    graph->hideAll();
    QCOMPARE(visible(), QString());
    QCOMPARE(graph->getLayoutFigures().layers, 0u);
    QCOMPARE(graph->count().known, std::size_t(14));
}

void tst_PackageGraph::newIconsKeepEverythingElse()
{
    graph->animDuration.set(0);
    graph->showPackage(package("a"));
    graph->setPos(package("d"), 77, 88, false);
    graph->setIconRule(IconRule::ByClass);
    QVERIFY(graph->getObjIconDB());
    QCOMPARE(visible(), QString("a, b, c, x, y"));
    QCOMPARE(names(graph->getSel()), QString("a"));
    QCOMPARE(graph->count().known, std::size_t(14));
    int x = 0, y = 0;
    QVERIFY(graph->getPos(package("d"), x, y));
    QCOMPARE(QPoint(x, y), QPoint(77, 88));
    graph->setIconRule(IconRule::None);
    QVERIFY(!graph->getObjIconDB());
    QCOMPARE(visible(), QString("a, b, c, x, y"));
}

void tst_PackageGraph::eachPairOfLinkedObjectsCountsOnce()
{
    graph->showPackage(package("a"));
    // x-a, y-a, a-b, a-c, and b-c which need each other.
    QCOMPARE(graph->count().links, std::size_t(5));
    graph->setVisible({package("b")}, false);
    QCOMPARE(graph->count().links, std::size_t(3));
}

void tst_PackageGraph::inLinksAreLinks()
{
    graph->setOutLinks(linkKinds[0], false);
    graph->showPackage(package("a"));
    QCOMPARE(graph->count().links, std::size_t(0));
    graph->setInLinks(linkKinds[0], true);
    QCOMPARE(graph->count().links, std::size_t(5));
    int above = 0, below = 0, x = 0;
    graph->animDuration.set(0);
    graph->layout();
    QTest::qWait(150);
    graph->getPos(package("a"), x, above);
    graph->getPos(package("x"), x, below);
    QVERIFY(above < below);
}

QTEST_MAIN(tst_PackageGraph)
#include "tst_PackageGraph.moc"
