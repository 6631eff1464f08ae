#include "Project.h"
#include "Views.h"

#include <QTest>

using namespace ZR::VOM;
using Example::Objects;
using Example::Person;
using ZR::cast;
using ZR::RefT;

/// What docs/hosting.md says of the code that the examples share.
class tst_HostingPage : public QObject {
    Q_OBJECT

private slots:
    void topRowsAreThoseOfAList_data();
    void topRowsAreThoseOfAList();
};

namespace {

QStringList topRowsOf(GUI::ObjectTreeView &tree)
{
    tree.viewport()->grab(); // Rows are made up when they come into sight.
    QStringList texts;
    const int height = tree.getRowHeight();
    for (int y = height / 2; auto const row = tree.findRow({height, y}); y += height)
        texts << row->getText();
    return texts;
}

} // namespace

void tst_HostingPage::topRowsAreThoseOfAList_data()
{
    QTest::addColumn<std::size_t>("index");
    QTest::addColumn<std::size_t>("numRemoved");
    QTest::addColumn<int>("numAdded");
    QTest::addColumn<QStringList>("rows");
    const auto row = [](char const *name, std::size_t index, std::size_t numRemoved, int numAdded,
                        QStringList const &rows) {
        QTest::newRow(name) << index << numRemoved << numAdded << rows;
    };
    row("one more at the end", 2, 0, 1, {"'Kim'", "'Noor'", "'new 0'"});
    row("one more in front", 0, 0, 1, {"'new 0'", "'Kim'", "'Noor'"});
    row("another in the place of one", 0, 1, 1, {"'new 0'", "'Noor'"});
    row("one less", 0, 1, 0, {"'Noor'"});
    row("others", 0, 2, 3, {"'new 0'", "'new 1'", "'new 2'"});
    row("none any more", 0, 2, 0, {});
}

void tst_HostingPage::topRowsAreThoseOfAList()
{
    QFETCH(std::size_t, index);
    QFETCH(std::size_t, numRemoved);
    QFETCH(int, numAdded);
    QFETCH(QStringList, rows);
    const RefT<Object> project = Example::makeProject();
    auto &people = *cast<MFieldRef>(project->findField("people"));
    GUI::ObjectTreeView tree;
    tree.setNameField("name");
    tree.setTypeName(false);
    Example::showList(tree, people);
    QCOMPARE(topRowsOf(tree), (QStringList{"'Kim'", "'Noor'"}));

    Objects added;
    for (int i = 0; i < numAdded; ++i)
        added.emplace_back(new Person("new " + std::to_string(i)));
    people.replace(index, numRemoved, added);
    QCOMPARE(topRowsOf(tree), rows);

    // What place() inserts replaces the whole list.
    Example::place(people, std::size_t(-1), {new Person("last")});
    QCOMPARE(topRowsOf(tree), rows << "'last'");
}

QTEST_MAIN(tst_HostingPage)

#include "tst_HostingPage.moc"
