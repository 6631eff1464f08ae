#include "ui_everyWidget.h"

#include <QFile>
#include <QMetaProperty>
#include <QPluginLoader>
#include <QRegularExpression>
#include <QTest>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiTools/QUiLoader>

#include <memory>

using namespace ZR::VOM::GUI;

class tst_DesignerPlugin : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void introducesEveryWidget();
    void introducesEachWidget_data();
    void introducesEachWidget();
    void makesWidgetsOfTheirSizes_data();
    void makesWidgetsOfTheirSizes();
    void listsWidgetsUnderShortNames();
    void formLoadsEveryWidget();
    void formSetsProperties_data();
    void formSetsProperties();
    void compiledFormSetsTheSame_data();
    void compiledFormSetsTheSame();
    void styleSheetSetsProperties_data();
    void styleSheetSetsProperties();
    void everySettingHasAValueInTheForm();
    void propertiesAreTheSettingsOfTheClass();
    void refusedValueLeavesTheOldOne();
    void propertiesBeginWithTheDefaults_data();
    void propertiesBeginWithTheDefaults();

private:
    using WidgetList = QList<QDesignerCustomWidgetInterface *>;

    void addSettings();
    std::unique_ptr<QWidget> loadForm();
    QDesignerCustomWidgetInterface *find(QString const &className) const;

    WidgetList widgets; // Owned by the plugin.
};

namespace {

// What the form has been given, for each of its widgets.
struct Setting {
    char const *object, *property;
    QVariant value, byDefault;
    char const *inStyleSheet; // Null for what a style sheet can't say.
};

} // namespace

Q_DECLARE_METATYPE(Setting const *)

namespace {

std::vector<Setting> const &settings()
{
    const Qt::DropActions all = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    static const std::vector<Setting> list{
        {"graph", "fieldName", "name", "", "name"},
        {"graph", "typeName", false, true, "false"},
        {"graph", "fieldTooltip", "summary", "", "summary"},
        {"graph", "tooltip", true, false, "true"},
        {"graph", "animDuration", 0.25, 2.0, "0.25"},
        {"graph", "colorBg0", QColor(1, 2, 3), {}, "#010203"},
        {"tree", "nameField", "name", "", "name"},
        {"tree", "tooltipField", "summary", "", "summary"},
        {"tree", "typeName", false, true, "false"},
        {"tree", "address", true, false, "true"},
        {"tree", "hideFields", true, false, "true"},
        {"tree2", "nameField", "name", "", "name"},
        {"tree2", "tooltipField", "summary", "", "summary"},
        {"tree2", "typeName", false, true, "false"},
        {"tree2", "hideFields", true, false, "true"},
        {"tree1", "fieldName", "name", "", "name"},
        {"tree1", "fieldTooltip", "summary", "", "summary"},
        {"tree1", "typeName", false, true, "false"},
        {"tree1", "hideFields", true, false, "true"},
        {"tree1", "dropActions", int(Qt::MoveAction), int(all), nullptr},
        {"slot", "fieldName", "name", "", "name"},
        {"slot", "typeName", true, false, "true"},
        {"slot", "dragEnabled", true, false, "true"},
        {"slot", "dragIntern", true, false, "true"},
        {"slot", "dragActions", int(Qt::CopyAction | Qt::LinkAction), int(all), nullptr},
        {"slot", "defaultDragAction", int(Qt::LinkAction), int(Qt::CopyAction), "LinkAction"},
        {"slot", "dropActions", int(Qt::MoveAction), int(all), nullptr},
        {"slot", "defaultDropAction", int(Qt::MoveAction), int(Qt::CopyAction), "MoveAction"},
        {"paths", "fieldName", "name", "", "name"},
        {"paths", "typeName", false, true, "false"},
        {"paths", "hideFields", true, false, "true"},
        {"real", "field", "size", "", "size"},
        {"real", "precision", 3u, 6u, "3"},
        {"real", "sensitive", false, true, "false"},
        {"real", "editable", false, true, "false"},
        {"real", "createOnDemand", true, false, "true"},
    };
    return list;
}

// A value of an enumeration or a set counts as its number.
QVariant plain(QVariant const &value)
{
    return value.userType() >= QMetaType::User && value.canConvert<int>() ? value.toInt() : value;
}

// The settings of the classes themselves, and not those which they have from Qt.
QSet<QString> settingsOf(QWidget const &widget)
{
    QSet<QString> names;
    for (QMetaObject const *meta = widget.metaObject();
         QByteArray(meta->className()).startsWith("ZR::"); meta = meta->superClass()) {
        for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i)
            names << meta->property(i).name();
    }
    return names;
}

} // namespace

void tst_DesignerPlugin::initTestCase()
{
    QDir folder(ZRVOMGUI_PLUGINS);
    const QStringList files = folder.entryList(QDir::Files);
    QCOMPARE(files, QStringList("zrvomgui_designer.so"));
    QPluginLoader loader(folder.filePath(files.first()));
    auto *const plugin =
        qobject_cast<QDesignerCustomWidgetCollectionInterface *>(loader.instance());
    QVERIFY2(plugin, qPrintable(loader.errorString()));
    widgets = plugin->customWidgets();
}

std::unique_ptr<QWidget> tst_DesignerPlugin::loadForm()
{
    QUiLoader loader;
    loader.clearPluginPaths();
    loader.addPluginPath(ZRVOMGUI_PLUGINS);
    QFile file(ZRVOMGUI_SOURCE_DIR "/tests/designer/everyWidget.ui");
    if (!file.open(QIODevice::ReadOnly))
        return nullptr;
    std::unique_ptr<QWidget> form(loader.load(&file));
    if (!form)
        qWarning("%s", qPrintable(loader.errorString()));
    return form;
}

QDesignerCustomWidgetInterface *tst_DesignerPlugin::find(QString const &className) const
{
    for (QDesignerCustomWidgetInterface *widget : widgets) {
        if (widget->name() == className)
            return widget;
    }
    return nullptr;
}

void tst_DesignerPlugin::addSettings()
{
    QTest::addColumn<Setting const *>("setting");
    for (Setting const &setting : settings())
        QTest::addRow("%s.%s", setting.object, setting.property) << &setting;
}

void tst_DesignerPlugin::introducesEveryWidget()
{
    QStringList names;
    for (QDesignerCustomWidgetInterface *widget : widgets)
        names << widget->name();
    QCOMPARE(names, (QStringList{"ZR::VOM::GUI::ObjectGraphView", "ZR::VOM::GUI::ObjectTreeView",
                                 "ZR::VOM::GUI::V2::ObjectTreeView",
                                 "ZR::VOM::GUI::V1::ObjectTreeView", "ZR::VOM::GUI::ObjectView",
                                 "ZR::VOM::GUI::PathListView", "ZR::VOM::GUI::FieldRealLineEdit"}));
}

void tst_DesignerPlugin::introducesEachWidget_data()
{
    QTest::addColumn<QString>("className");
    for (QDesignerCustomWidgetInterface *widget : widgets)
        QTest::newRow(qPrintable(widget->name())) << widget->name();
}

void tst_DesignerPlugin::introducesEachWidget()
{
    QFETCH(QString, className);
    QDesignerCustomWidgetInterface *const widget = find(className);
    QCOMPARE(widget->group(), QString("zrVOMGUI"));
    for (QString const &text : {widget->toolTip(), widget->whatsThis()}) {
        QVERIFY(!text.isEmpty());
        QVERIFY2(!text.startsWith('['), "The key of a text is nothing to read");
    }
    QVERIFY(widget->whatsThis().size() > widget->toolTip().size());
    QVERIFY(QFile::exists(ZRVOMGUI_SOURCE_DIR "/src/" + widget->includeFile()));
    QVERIFY(!widget->isContainer());

    // A picture of its own.
    const QImage icon = widget->icon().pixmap(22, 22).toImage();
    QVERIFY(!icon.isNull());
    for (QDesignerCustomWidgetInterface *other : widgets)
        QVERIFY(other == widget || other->icon().pixmap(22, 22).toImage() != icon);
}

void tst_DesignerPlugin::makesWidgetsOfTheirSizes_data()
{
    introducesEachWidget_data();
}

void tst_DesignerPlugin::makesWidgetsOfTheirSizes()
{
    QFETCH(QString, className);
    QDesignerCustomWidgetInterface *const description = find(className);
    QWidget parent;
    const std::unique_ptr<QWidget> widget(description->createWidget(&parent));
    QCOMPARE(widget->parentWidget(), &parent);
    QCOMPARE(QString(widget->metaObject()->className()), className);

    const QString xml = description->domXml();
    const QRegularExpressionMatch size =
        QRegularExpression("<width>(\\d+)</width><height>(\\d+)</height>").match(xml);
    QVERIFY2(size.hasMatch(), qPrintable(xml));
    QVERIFY(xml.contains("<widget class=\"" + className + "\" name=\""));
    const QSize expected(size.captured(1).toInt(), size.captured(2).toInt());
    // Big enough for its contents, and for a hand that takes hold of it.
    QCOMPARE(expected, expected.expandedTo(widget->minimumSizeHint()));
    QCOMPARE(expected, expected.expandedTo(QSize(100, 24)));
}

void tst_DesignerPlugin::listsWidgetsUnderShortNames()
{
    QStringList names;
    for (QDesignerCustomWidgetInterface *widget : widgets)
        names << QRegularExpression("^<ui [^>]*displayname=\"([^\"]*)\"")
                     .match(widget->domXml())
                     .captured(1);
    QCOMPARE(names, QStringList({"ObjectGraphView", "ObjectTreeView", "V2::ObjectTreeView",
                                 "V1::ObjectTreeView", "ObjectView", "PathListView",
                                 "FieldRealLineEdit"}));
}

void tst_DesignerPlugin::formLoadsEveryWidget()
{
    const std::unique_ptr<QWidget> form = loadForm();
    QVERIFY(form);
    QVERIFY(form->findChild<ObjectGraphView *>("graph"));
    QVERIFY(form->findChild<ObjectTreeView *>("tree"));
    QVERIFY(form->findChild<V2::ObjectTreeView *>("tree2"));
    QVERIFY(form->findChild<V1::ObjectTreeView *>("tree1"));
    QVERIFY(form->findChild<ObjectView *>("slot"));
    QVERIFY(form->findChild<PathListView *>("paths"));
    QVERIFY(form->findChild<FieldRealLineEdit *>("real"));
    for (QDesignerCustomWidgetInterface *widget : widgets) {
        QFile file(ZRVOMGUI_SOURCE_DIR "/tests/designer/everyWidget.ui");
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        QVERIFY(text.contains("<class>" + widget->name() + "</class>"));
        QVERIFY(text.contains(">" + widget->includeFile() + "</header>"));
    }
}

void tst_DesignerPlugin::formSetsProperties_data()
{
    addSettings();
}

void tst_DesignerPlugin::formSetsProperties()
{
    QFETCH(Setting const *, setting);
    const std::unique_ptr<QWidget> form = loadForm();
    QVERIFY(form);
    QObject *const object = form->findChild<QObject *>(setting->object);
    QCOMPARE(plain(object->property(setting->property)), setting->value);
}

void tst_DesignerPlugin::compiledFormSetsTheSame_data()
{
    addSettings();
}

void tst_DesignerPlugin::compiledFormSetsTheSame()
{
    QFETCH(Setting const *, setting);
    QWidget form;
    Ui::EveryWidget ui;
    ui.setupUi(&form);
    QObject *const object = form.findChild<QObject *>(setting->object);
    QCOMPARE(plain(object->property(setting->property)), setting->value);
}

void tst_DesignerPlugin::styleSheetSetsProperties_data()
{
    addSettings();
}

void tst_DesignerPlugin::styleSheetSetsProperties()
{
    QFETCH(Setting const *, setting);
    const std::unique_ptr<QWidget> form = loadForm();
    QWidget *const formWidget = form->findChild<QWidget *>(setting->object);
    const QString className = formWidget->metaObject()->className();
    const std::unique_ptr<QWidget> widget(find(className)->createWidget(nullptr));
    if (!setting->inStyleSheet) {
        QVERIFY(widget->metaObject()
                    ->property(widget->metaObject()->indexOfProperty(setting->property))
                    .isFlagType());
        return;
    }
    widget->setStyleSheet(
        QString("%1 { qproperty-%2: \"%3\"; }")
            .arg(QString(className).replace("::", "--"), setting->property, setting->inStyleSheet));
    widget->ensurePolished();
    QCOMPARE(plain(widget->property(setting->property)), setting->value);
}

// What is left out here couldn't be set by a form, or isn't tested to be.
void tst_DesignerPlugin::everySettingHasAValueInTheForm()
{
    const std::unique_ptr<QWidget> form = loadForm();
    QVERIFY(form);
    for (char const *name : {"graph", "tree", "tree2", "tree1", "slot", "paths", "real"}) {
        QSet<QString> given;
        for (Setting const &setting : settings()) {
            if (setting.object == QString(name))
                given << setting.property;
        }
        QSet<QString> missing = settingsOf(*form->findChild<QWidget *>(name)) - given;
        // One colour stands for all.
        for (QString const &property : settingsOf(*form->findChild<QWidget *>(name))) {
            if (property.startsWith("color"))
                missing.remove(property);
        }
        QCOMPARE(missing, QSet<QString>());
    }
}

void tst_DesignerPlugin::propertiesAreTheSettingsOfTheClass()
{
    QWidget form;
    Ui::EveryWidget ui;
    ui.setupUi(&form);
    QCOMPARE(ui.graph->getFieldName(), std::string("name"));
    QCOMPARE(ui.graph->getFieldTooltip(), std::string("summary"));
    QVERIFY(ui.graph->tooltip.get());
    QCOMPARE(ui.graph->animDuration.get(), 0.25);
    QCOMPARE(ui.tree->getNameField(), std::string("name"));
    QCOMPARE(ui.tree->getTooltipField(), std::string("summary"));
    QCOMPARE(ui.tree2->getNameField(), std::string("name"));
    QCOMPARE(ui.tree2->getTooltipField(), std::string("summary"));
    QCOMPARE(ui.tree1->getFieldName(), std::string("name"));
    QCOMPARE(ui.tree1->getFieldTooltip(), std::string("summary"));
    QCOMPARE(ui.slot->getFieldName(), std::string("name"));
    QVERIFY(ui.slot->isDragEnabled());
    QVERIFY(ui.slot->isDragIntern());
    QCOMPARE(ui.paths->getFieldName(), std::string("name"));
    QVERIFY(ui.paths->isHideFields());
    QCOMPARE(ui.real->getField(), std::string("size"));
    QCOMPARE(ui.real->getOutputFormat().precision(), std::streamsize(3));
    QVERIFY(ui.real->isReadOnly());

    ui.graph->setFieldName("größe");
    QCOMPARE(ui.graph->property("fieldName").toString(), QString::fromUtf8("größe"));
    ui.slot->setDragEnabled(false, true);
    QVERIFY(!ui.slot->property("dragEnabled").toBool());
    QVERIFY(ui.slot->property("dragIntern").toBool());
}

void tst_DesignerPlugin::refusedValueLeavesTheOldOne()
{
    ObjectGraphView graph;
    std::string reported;
    const ZR::ErrorSink before =
        ZR::setErrorSink([&](std::string const &where, std::string const &) { reported += where; });
    const auto refuse = [](auto const &) { throw ZR::Error("no"); };
    graph.animDuration.sigCanSet.connect(refuse);
    graph.tooltip.sigCanSet.connect(refuse);
    graph.setProperty("animDuration", 1.0);
    graph.setProperty("tooltip", true);
    ZR::setErrorSink(before);
    QCOMPARE(graph.animDuration.get(), 2.0);
    QVERIFY(!graph.tooltip.get());
    QCOMPARE(reported, std::string("ZR::VOM::GUI::ObjectGraphView::animDuration"
                                   "ZR::VOM::GUI::ObjectGraphView::tooltip"));
}

void tst_DesignerPlugin::propertiesBeginWithTheDefaults_data()
{
    addSettings();
}

void tst_DesignerPlugin::propertiesBeginWithTheDefaults()
{
    QFETCH(Setting const *, setting);
    const std::unique_ptr<QWidget> form = loadForm();
    const QString className =
        form->findChild<QWidget *>(setting->object)->metaObject()->className();
    const std::unique_ptr<QWidget> widget(find(className)->createWidget(nullptr));
    if (setting->byDefault.isValid())
        QCOMPARE(plain(widget->property(setting->property)), setting->byDefault);
    else
        QVERIFY(widget->property(setting->property).isValid());
}

QTEST_MAIN(tst_DesignerPlugin)
#include "tst_DesignerPlugin.moc"
