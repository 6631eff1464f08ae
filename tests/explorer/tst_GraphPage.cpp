#include "ExplorerWindow.h"
#include "GraphPage.h"
#include "PackageGraph.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalSpy>
#include <QTest>

using namespace Explorer;
using ZR::cast;

namespace {

PackageModel makeModel()
{
    const auto stanza = [](std::string const &name, std::string const &lines) {
        return "Package: " + name + "\nStatus: install ok installed\nMaintainer: m\n" + lines +
               "\n";
    };
    return PackageModel(readStatus(stanza("libfoo", "Depends: libbar\n") + stanza("libbar", "") +
                                   stanza("foo", "Depends: libfoo\n") + stanza("quux", "")));
}

} // namespace

class tst_GraphPage : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void cleanupTestCase();

    void fullNameShowsThePackage();
    void partOfANameShowsTheFirstOffer();
    void unknownNameIsSaid();
    void blanksAreNoName();
    void listShowsWhatTheGraphShows();
    void listSelectsInTheGraph();
    void graphSelectsInTheList();
    void activatedRowShowsThatPackage();
    void figuresFollowTheGraph();
    void hiddenRestIsSaid();
    void nothingMoreIsSaid();
    void nameFieldLabelsTheNodes();
    void linkRulesAreSwitched();
    void windowHasNoShortcutTwice();

private:
    void type(QString const &text)
    {
        auto *const search = page->findChild<QLineEdit *>();
        search->setText(text);
        QTest::keyClick(search, Qt::Key_Return);
    }
    QString visible() const
    {
        QStringList names;
        for (auto const &object : page->getGraph().getVisibleObjs())
            names << QString::fromStdString(cast<Item>(object)->getName());
        names.sort();
        return names.join(' ');
    }
    QString rows() const
    {
        QStringList names;
        for (int row = 0; row < list->count(); ++row)
            names << list->item(row)->text() + (list->item(row)->isSelected() ? "*" : "");
        return names.join(' ');
    }

    std::unique_ptr<PackageModel> model;
    std::unique_ptr<GraphPage> page;
    QListWidget *list = nullptr;
};

void tst_GraphPage::init()
{
    model = std::make_unique<PackageModel>(makeModel());
    page = std::make_unique<GraphPage>(*model);
    list = page->findChild<QListWidget *>();
    QVERIFY(list);
}

void tst_GraphPage::cleanup()
{
    page.reset();
    model.reset();
}

void tst_GraphPage::cleanupTestCase()
{
    // A line edit's clear button fades in, and the fading ends by itself, or else counts as a leak.
    constexpr int fading = 400; // Milliseconds.
    QTest::qWait(fading);
}

void tst_GraphPage::fullNameShowsThePackage()
{
    type("foo"); // Which is also part of another name.
    QCOMPARE(visible(), QString("foo libfoo"));
    type("  quux ");
    QCOMPARE(visible(), QString("quux"));
}

void tst_GraphPage::partOfANameShowsTheFirstOffer()
{
    type("IB");
    QCOMPARE(visible(), QString("libbar libfoo"));
    type("uu");
    QCOMPARE(visible(), QString("quux"));
}

void tst_GraphPage::unknownNameIsSaid()
{
    QSignalSpy said(page.get(), &GraphPage::said);
    type("nonsense");
    QCOMPARE(visible(), QString());
    QCOMPARE(said.size(), 1);
    QVERIFY(said[0][0].toString().contains("nonsense"));
}

void tst_GraphPage::blanksAreNoName()
{
    QSignalSpy said(page.get(), &GraphPage::said);
    type("   ");
    QCOMPARE(visible(), QString());
    QCOMPARE(said.size(), 0);
}

void tst_GraphPage::listShowsWhatTheGraphShows()
{
    QCOMPARE(rows(), QString());
    page->showPackage("libfoo");
    QCOMPARE(rows(), QString("foo libbar libfoo*"));
    page->hideSelected();
    QCOMPARE(rows(), QString("foo libbar"));
    page->clear();
    QCOMPARE(rows(), QString());
}

void tst_GraphPage::listSelectsInTheGraph()
{
    page->showPackage("libfoo");
    list->item(0)->setSelected(true);
    QCOMPARE(page->getGraph().getSel().size(), std::size_t(2));
    list->clearSelection();
    QVERIFY(page->getGraph().getSel().empty());
}

void tst_GraphPage::graphSelectsInTheList()
{
    page->showPackage("libfoo");
    PackageGraph &graph = page->getGraph();
    graph.setSel({model->findPackage("foo")});
    ZR::SigVoidData data;
    graph.sigSel.emitCatching(data, "tst_GraphPage");
    QCOMPARE(rows(), QString("foo* libbar libfoo"));
    QCOMPARE(graph.getSel().size(), std::size_t(1));
}

void tst_GraphPage::activatedRowShowsThatPackage()
{
    page->showPackage("libfoo");
    emit list->itemActivated(list->item(1));
    QCOMPARE(rows(), QString("libbar* libfoo"));
}

void tst_GraphPage::figuresFollowTheGraph()
{
    QSignalSpy figures(page.get(), &GraphPage::figuresChanged);
    page->showPackage("libfoo");
    const QString text = figures.last()[0].toString();
    for (char const *part : {"Visible 3", "Links 2", "Layers 3", "Crossings 0", "Known 10"})
        QVERIFY2(text.contains(part), qPrintable(text));
    page->clear();
    QVERIFY(figures.last()[0].toString().contains("Visible 0"));
    QVERIFY(figures.last()[0].toString().contains("Layers 0"));
}

void tst_GraphPage::hiddenRestIsSaid()
{
    QSignalSpy said(page.get(), &GraphPage::said);
    page->getGraph().setNeighbourLimit(1);
    page->showPackage("libfoo");
    QCOMPARE(said.size(), 1);
    QVERIFY(said[0][0].toString().startsWith("1 "));
}

void tst_GraphPage::nothingMoreIsSaid()
{
    page->showPackage("quux");
    QSignalSpy said(page.get(), &GraphPage::said);
    page->showMore();
    QCOMPARE(said.size(), 1);
}

void tst_GraphPage::nameFieldLabelsTheNodes()
{
    auto *const nameField = page->findChild<QComboBox *>();
    QVERIFY(nameField);
    QCOMPARE(page->getGraph().getFieldName(), std::string("name"));
    nameField->setCurrentIndex(1);
    QCOMPARE(page->getGraph().getFieldName(), std::string("version"));
}

void tst_GraphPage::linkRulesAreSwitched()
{
    page->showPackage("libfoo");
    const auto box = [&](QString const &name) {
        for (QCheckBox *const candidate : page->findChildren<QCheckBox *>())
            if (candidate->accessibleName() == name)
                return candidate;
        return static_cast<QCheckBox *>(nullptr);
    };
    QVERIFY(box("Dependencies, out"));
    QVERIFY(box("Dependencies, out")->isChecked());
    box("Dependencies, out")->click();
    QCOMPARE(page->getGraph().count().links, std::size_t(0));
    box("Dependencies, in")->click();
    QCOMPARE(page->getGraph().count().links, std::size_t(2));
    box("Maintainers, out")->click();
    page->getGraph().setSel({});
    page->showMore();
    QCOMPARE(visible(), QString("foo libbar libfoo m"));
}

void tst_GraphPage::windowHasNoShortcutTwice()
{
    ExplorerWindow window(std::make_shared<PackageModel>(makeModel()), "test");
    QStringList keys;
    for (QAction const *action : window.findChildren<QAction *>())
        if (!action->shortcut().isEmpty())
            keys << action->shortcut().toString();
    QVERIFY(keys.size() >= 8);
    const int number = keys.size();
    keys.removeDuplicates();
    QCOMPARE(keys.size(), number);
}

QTEST_MAIN(tst_GraphPage)
#include "tst_GraphPage.moc"
