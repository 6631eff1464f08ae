#include "Language.h"

#include "zrVOMGUI/foundation/util/text.h"
#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/trees/ObjectTreeView.h"
#include "zrVOMGUI/trees/v1/ObjectTreeView.h"
#include "zrVOMGUI/trees/v2/ObjectTreeView.h"
#include "zrVOMGUI/widgets/ObjectView.h"
#include "zrVOMGUI/widgets/PathListView.h"

#include <QApplication>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <memory>

using namespace ZR::VOM;
using ZR::RefT;

/// The catalogue of the library's texts, and the explorer's switch.
class tst_Language : public QObject {
    Q_OBJECT

private slots:
    void catalogueHasEveryText_data();
    void catalogueHasEveryText();
    void catalogueHasNothingElse();
    void otherContextsAreNotItsAffair();
    void libraryReadsInGerman();
    void shownLabelsFollow_data();
    void shownLabelsFollow();
    void openRowsStayOpen_data();
    void openRowsStayOpen();
};

namespace {

/// The texts of the library and of the plugin for Qt Designer: default texts by their keys.
QMap<QString, QString> libraryTexts()
{
    static const QRegularExpression text("\"\\[(\\w+(?:::\\w+)+)\\]([^\"]*)\"");
    static const QRegularExpression lineBreak("\"\\s*\\n\\s*\"");
    QMap<QString, QString> texts;
    QDirIterator iterator(ZRVOMGUI_SOURCE_DIR "/src", {"*.h", "*.cpp"}, QDir::Files,
                          QDirIterator::Subdirectories);
    while (iterator.hasNext()) {
        QFile file(iterator.next());
        file.open(QIODevice::ReadOnly);
        const QString source = QString::fromUtf8(file.readAll()).remove(lineBreak);
        QRegularExpressionMatchIterator match = text.globalMatch(source);
        while (match.hasNext()) {
            const QRegularExpressionMatch found = match.next();
            texts[found.captured(1)] = found.captured(2);
        }
    }
    return texts;
}

/// %1, %2 and so on, sorted.
QStringList placesIn(QString const &text)
{
    static const QRegularExpression place("%\\d+");
    QStringList places;
    QRegularExpressionMatchIterator match = place.globalMatch(text);
    while (match.hasNext())
        places << match.next().captured();
    places.sort();
    return places;
}

/// A house with a door.
RefT<Object> makeHouse()
{
    const RefT<Object> house(new Object), door(new Object);
    addField<FieldString>(*house, "name", "house");
    addField<FieldRef>(*house, "part", door);
    addField<FieldString>(*door, "name", "door");
    return house;
}

template <class Tree>
std::unique_ptr<QAbstractScrollArea> makeTree(RefT<Object> const &house)
{
    auto tree = std::make_unique<Tree>();
    if constexpr (std::is_same_v<Tree, GUI::V1::ObjectTreeView>)
        tree->setFieldName("name");
    else
        tree->setNameField("name");
    tree->addRow(house, 0);
    return tree;
}

/// What shows the house, by its class.
std::unique_ptr<QWidget> makeWidget(QByteArray const &name, RefT<Object> const &house)
{
    if (name == "ObjectTreeView")
        return makeTree<GUI::ObjectTreeView>(house);
    if (name == "V2::ObjectTreeView")
        return makeTree<GUI::V2::ObjectTreeView>(house);
    if (name == "V1::ObjectTreeView")
        return makeTree<GUI::V1::ObjectTreeView>(house);
    if (name == "ObjectGraphView") {
        auto graph = std::make_unique<GUI::ObjectGraphView>();
        graph->animDuration.set(0);
        graph->setFieldName("name");
        graph->add({house}, false);
        graph->setVisible({house}, true);
        return graph;
    }
    if (name == "ObjectView") {
        auto slot = std::make_unique<GUI::ObjectView>();
        slot->setFieldName("name");
        slot->setValue(house);
        return slot;
    }
    auto list = std::make_unique<GUI::PathListView>();
    list->setFieldName("name");
    list->set({Path(*house)});
    return list;
}

/// Once nothing moves any more.
QImage pictureOf(QWidget &widget)
{
    widget.resize(300, 100);
    QImage last, now = widget.grab().toImage();
    while (last != now) {
        QTest::qWait(40);
        last = now;
        now = widget.grab().toImage();
    }
    return now;
}

constexpr char germanFile[] = ZRVOMGUI_SOURCE_DIR "/examples/translations/zrVOMGUI_de.ts";

} // namespace

void tst_Language::catalogueHasEveryText_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");
    const QMap<QString, QString> texts = libraryTexts();
    for (QString const &key : texts.keys())
        QTest::newRow(qPrintable(key)) << key << texts[key];
}

void tst_Language::catalogueHasEveryText()
{
    QFETCH(QString, key);
    QFETCH(QString, text);
    const Explorer::Catalogue catalogue(germanFile);
    const QString german = catalogue.translate("zrVOMGUI", key.toUtf8().constData(), nullptr, -1);
    QVERIFY(!german.isEmpty());
    QCOMPARE(placesIn(german), placesIn(text));
}

void tst_Language::catalogueHasNothingElse()
{
    QFile file(germanFile);
    QVERIFY(file.open(QIODevice::ReadOnly));
    static const QRegularExpression source("<source>(.*)</source>");
    QStringList keys;
    QRegularExpressionMatchIterator match = source.globalMatch(QString::fromUtf8(file.readAll()));
    while (match.hasNext())
        keys << match.next().captured(1);
    QCOMPARE(keys, QStringList(libraryTexts().keys()));
}

void tst_Language::otherContextsAreNotItsAffair()
{
    const Explorer::Catalogue catalogue(germanFile);
    QVERIFY(catalogue.translate("other", "ZR::GUI::TreeRowLevel", nullptr, -1).isNull());
    QVERIFY(catalogue.translate("zrVOMGUI", "other", nullptr, -1).isNull());
}

void tst_Language::libraryReadsInGerman()
{
    char const *const text = "[ZR::VOM::GUI::ObjectTreeViewVoidRowLabel]void";
    Explorer::setGerman(true);
    QCOMPARE(ZR::getLocText(text), "leer");
    Explorer::setGerman(false);
    QCOMPARE(ZR::getLocText(text), "void");
}

void tst_Language::shownLabelsFollow_data()
{
    QTest::addColumn<QByteArray>("name");
    for (char const *name : {"ObjectGraphView", "ObjectTreeView", "V2::ObjectTreeView",
                             "V1::ObjectTreeView", "ObjectView", "PathListView"})
        QTest::newRow(name) << QByteArray(name);
}

void tst_Language::shownLabelsFollow()
{
    QFETCH(QByteArray, name);
    const RefT<Object> house = makeHouse();
    const std::unique_ptr<QWidget> widget = makeWidget(name, house);
    const bool typeName = widget->property("typeName").toBool();
    const QImage english = pictureOf(*widget);
    Explorer::setGerman(true);
    const QImage german = pictureOf(*widget);
    const QImage ofGermanOne = pictureOf(*makeWidget(name, house));
    Explorer::setGerman(false);
    QVERIFY(german != english);
    QVERIFY(german == ofGermanOne);
    QVERIFY(pictureOf(*widget) == english);
    QCOMPARE(widget->property("typeName").toBool(), typeName);
}

void tst_Language::openRowsStayOpen_data()
{
    QTest::addColumn<QByteArray>("name");
    for (char const *name : {"ObjectTreeView", "V2::ObjectTreeView", "V1::ObjectTreeView"})
        QTest::newRow(name) << QByteArray(name);
}

void tst_Language::openRowsStayOpen()
{
    QFETCH(QByteArray, name);
    const RefT<Object> house = makeHouse();
    const std::unique_ptr<QWidget> tree = makeWidget(name, house);
    const QImage closed = pictureOf(*tree);
    for (Qt::Key key : {Qt::Key_Home, Qt::Key_Right, Qt::Key_Down, Qt::Key_Right})
        QTest::keyClick(tree.get(), key);
    const QImage open = pictureOf(*tree);
    QVERIFY(open != closed);
    for (bool german : {true, false})
        Explorer::setGerman(german);
    QVERIFY(pictureOf(*tree) == open);
}

QTEST_MAIN(tst_Language)

#include "tst_Language.moc"
