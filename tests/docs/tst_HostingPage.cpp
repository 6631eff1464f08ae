#include "Project.h"
#include "Views.h"

#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/trees/v1/ObjectTreeView.h"
#include "zrVOMGUI/trees/v2/ObjectTreeView.h"
#include "zrVOMGUI/widgets/FieldRealLineEdit.h"
#include "zrVOMGUI/widgets/ObjectView.h"
#include "zrVOMGUI/widgets/PathListView.h"

#include <QFile>
#include <QMetaProperty>
#include <QRegularExpression>
#include <QTest>

#include <memory>

using namespace ZR::VOM;
using Example::Objects;
using Example::Person;
using ZR::cast;
using ZR::RefT;

/// What docs/hosting.md says of the code that the examples share, and of properties.
class tst_HostingPage : public QObject {
    Q_OBJECT

private slots:
    void topRowsAreThoseOfAList_data();
    void topRowsAreThoseOfAList();
    void propertiesAreAsTheTableTells_data();
    void propertiesAreAsTheTableTells();
    void tableHasEveryWidget();
    void styleSheetSetsWhatItSays();
};

namespace {

QString page()
{
    QFile file(ZRVOMGUI_SOURCE_DIR "/docs/hosting.md");
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

std::vector<std::unique_ptr<QWidget>> everyWidget()
{
    std::vector<std::unique_ptr<QWidget>> widgets;
    widgets.push_back(std::make_unique<GUI::ObjectGraphView>());
    widgets.push_back(std::make_unique<GUI::ObjectTreeView>());
    widgets.push_back(std::make_unique<GUI::V2::ObjectTreeView>());
    widgets.push_back(std::make_unique<GUI::V1::ObjectTreeView>());
    widgets.push_back(std::make_unique<GUI::ObjectView>());
    widgets.push_back(std::make_unique<GUI::PathListView>());
    widgets.push_back(std::make_unique<GUI::FieldRealLineEdit>());
    return widgets;
}

QString nameOf(QWidget const &widget)
{
    return QString(widget.metaObject()->className()).remove("ZR::VOM::GUI::");
}

/// The lines of the page's table by widgets, each such as "typeName bool true".
QMap<QString, QStringList> toldProperties()
{
    QMap<QString, QStringList> properties;
    QString widget;
    const QString table = page().section("| Widget | Property | Type | Default |", 1);
    for (QString const &line : table.section("\n\n", 0, 0).split('\n').mid(2)) {
        const QStringList cells = QString(line).remove('`').split('|');
        if (!cells.value(1).trimmed().isEmpty())
            widget = cells[1].trimmed();
        properties[widget] << QString("%1 %2 %3")
                                  .arg(cells.value(2).trimmed(), cells.value(3).trimmed(),
                                       cells.value(4).trimmed());
    }
    return properties;
}

QString typeOf(QMetaProperty const &property)
{
    return property.isEnumType() ? QString("Qt::") + property.enumerator().name()
                                 : QString(property.typeName());
}

QString valueOf(QMetaProperty const &property, QWidget const &widget)
{
    const QVariant value = property.read(&widget);
    if (property.isEnumType()) {
        QStringList keys;
        const QMetaEnum actions = QMetaEnum::fromType<Qt::DropAction>();
        for (Qt::DropAction action : {Qt::CopyAction, Qt::MoveAction, Qt::LinkAction})
            if (value.toInt() & action)
                keys << actions.valueToKey(action);
        return keys.join(", ");
    }
    return value.toString().isEmpty() ? QString("empty") : value.toString();
}

/// The same of a widget itself, of the properties that its class has and those of Qt haven't.
QStringList propertiesOf(QWidget const &widget)
{
    QStringList lines;
    for (QMetaObject const *meta = widget.metaObject();
         QByteArray(meta->className()).startsWith("ZR::"); meta = meta->superClass()) {
        for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
            const QMetaProperty property = meta->property(i);
            lines << QString("%1 %2 %3")
                         .arg(property.name(), typeOf(property), valueOf(property, widget));
        }
    }
    return lines;
}

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

void tst_HostingPage::propertiesAreAsTheTableTells_data()
{
    QTest::addColumn<int>("index");
    const auto widgets = everyWidget();
    for (std::size_t i = 0; i < widgets.size(); ++i)
        QTest::newRow(qPrintable(nameOf(*widgets[i]))) << static_cast<int>(i);
}

void tst_HostingPage::propertiesAreAsTheTableTells()
{
    QFETCH(int, index);
    const auto widgets = everyWidget();
    QWidget const &widget = *widgets[static_cast<std::size_t>(index)];
    QCOMPARE(toldProperties()[nameOf(widget)].join('\n'), propertiesOf(widget).join('\n'));
}

void tst_HostingPage::tableHasEveryWidget()
{
    QStringList names;
    for (auto const &widget : everyWidget())
        names << nameOf(*widget);
    names.sort();
    QCOMPARE(QStringList(toldProperties().keys()), names);
}

void tst_HostingPage::styleSheetSetsWhatItSays()
{
    static const QRegularExpression block("^```css\n(.*?)^```$",
                                          QRegularExpression::MultilineOption |
                                              QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression line("qproperty-(\\w+): \"?([^\";]+)\"?;");
    const QString sheet = block.match(page()).captured(1);
    GUI::ObjectGraphView graph;
    graph.setStyleSheet(sheet);
    graph.ensurePolished();
    QRegularExpressionMatchIterator match = line.globalMatch(sheet);
    QVERIFY(match.hasNext());
    while (match.hasNext()) {
        const QRegularExpressionMatch setting = match.next();
        QCOMPARE(graph.property(setting.captured(1).toLatin1().constData()).toString(),
                 setting.captured(2));
    }
}

QTEST_MAIN(tst_HostingPage)

#include "tst_HostingPage.moc"
