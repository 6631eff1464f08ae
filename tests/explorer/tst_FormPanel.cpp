#include "FieldSlot.h"
#include "FormPanel.h"
#include "NumberEdit.h"
#include "PackageGraph.h"
#include "PackageXml.h"
#include "TreePanel.h"

#include "support/ErrorReports.h"
#include "zrVOMGUI/transfer/MimeData.h"
#include "zrVOMGUI/widgets/PathListView.h"

#include <QCheckBox>
#include <QDragEnterEvent>
#include <QLabel>
#include <QMimeData>
#include <QScrollBar>
#include <QTest>
#include <QToolButton>

#include <memory>
#include <stdexcept>

using namespace Explorer;
using ZR::cast;
using ZR::PtrT;
using ZR::RefT;
using ZR::VOM::FieldPtr;
using ZR::VOM::FieldReal;
using ZR::VOM::FieldString;
using ZR::VOM::MFieldPtr;
using ZR::VOM::Object;
using ZR::VOM::Path;

namespace {

constexpr char status[] =
    "Package: a\nStatus: install ok installed\nSection: s\nInstalled-Size: 10\nDepends: b, c\n"
    "Maintainer: Ann <ann@example.org>\n\n"
    "Package: b\nStatus: install ok installed\nSection: s\nInstalled-Size: 20\n"
    "Maintainer: Bob <bob@example.org>\n\n"
    "Package: c\nStatus: install ok installed\nSection: t\nInstalled-Size: 20\n\n";

QString nameOf(Object const *object)
{
    auto const *const item = dynamic_cast<Item const *>(object);
    return item ? QString::fromStdString(item->getName()) : QString();
}

} // namespace

/// The form on the selection: what it shows, and what it does to the model.
class tst_FormPanel : public QObject {
    Q_OBJECT

private slots:
    void init();

    void showsWhatASinglePackageRefersTo();
    void severalObjectsHaveNumbersAndPathsOnly();
    void eachObjectCountsOnce();
    void followsTheModel();
    void titleFollowsTheName();
    void packageMayDie();
    void fieldMayGo();

    void dropsAreCarriedOut();
    void wrongDropsAreRefusedAndSaid();
    void refusalOfTheModelIsSaid();
    void refusalOfTheDropItselfPutsTheOldValueBack_data();
    void refusalOfTheDropItselfPutsTheOldValueBack();
    void refusedUnlinkPutsTheOldValueBack();
    void objectsOfOtherProgramsAreTakenIn();
    void buttonTakesTheLinkAway();
    void movedAwayObjectLeavesTheField();
    void longNamesAreShortened();

    void numbersGoToAllSelected();
    void numbersAreCreatedOnDemand();
    void readOnlyNumbersStay();
    void bothEditorsWorkOnOneList();
    void stateTellsHowManyHaveANumber();

    void graphFeedsTheForm();
    void treeFeedsTheForm();

private:
    RefT<Package> package(char const *name) { return model->findPackage(name); }
    void show(std::initializer_list<char const *> names)
    {
        Objects objects;
        for (char const *name : names)
            objects.push_back(package(name));
        form->showObjects(objects);
    }
    FieldPtr &maintainerOf(char const *name)
    {
        return *cast<FieldPtr>(package(name)->findField("maintainer"));
    }
    QString dependsOf(char const *name)
    {
        QStringList names;
        for (auto const &object : PackageModel::getDependencies(*package(name)))
            names << nameOf(object.get());
        return names.join(' ');
    }
    double sizeOf(char const *name)
    {
        return cast<FieldReal>(package(name)->findField("size"))->get();
    }
    QString links() const
    {
        return nameOf(form->getMaintainerSlot().getValue().get()) + ' ' +
               nameOf(form->getDependencySlot().getValue().get());
    }
    QStringList labels() const
    {
        QStringList texts;
        for (QLabel const *label : form->findChildren<QLabel *>())
            texts << label->text();
        return texts;
    }
    bool drop(FieldSlot &slot, QMimeData const &data)
    {
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction | Qt::LinkAction | Qt::MoveAction, &data,
                              Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&slot, &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent dropped(QPointF(5, 5), Qt::CopyAction | Qt::LinkAction | Qt::MoveAction, &data,
                           Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&slot, &dropped);
        return true;
    }
    bool drop(FieldSlot &slot, Objects const &objects)
    {
        const std::unique_ptr<QMimeData> data(ZR::VOM::GUI::createMimeData({}, &objects, nullptr));
        return drop(slot, *data);
    }
    void enter(NumberEdit &edit, QString const &text)
    {
        edit.setFocus();
        QTest::keyClick(&edit, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&edit, Qt::Key_Backspace);
        QTest::keyClicks(&edit, text);
        QTest::keyClick(&edit, Qt::Key_Return);
    }
    void check(char const *text, bool on)
    {
        for (QCheckBox *box : form->findChildren<QCheckBox *>())
            if (box->text().remove('&') == text)
                return box->setChecked(on);
        QFAIL(text);
    }

    std::unique_ptr<PackageModel> model;
    std::unique_ptr<FormPanel> form;
    QStringList said;
};

void tst_FormPanel::init()
{
    form.reset();
    model = std::make_unique<PackageModel>(readStatus(status));
    form = std::make_unique<FormPanel>(*model);
    said.clear();
    connect(form.get(), &FormPanel::said, this, [this](QString const &text) { said << text; });
    form->show();
}

// Showing.

void tst_FormPanel::showsWhatASinglePackageRefersTo()
{
    QVERIFY(labels().contains("Nothing is selected"));
    show({"a"});
    QVERIFY(labels().contains("a"));
    QCOMPARE(links(), QString("Ann b"));
    QVERIFY(form->getMaintainerSlot().isEnabled());
    QCOMPARE(form->getSizeEdit().text(), QString("10"));
    QCOMPARE(form->getPathList().get().size(), std::size_t(1));
    QCOMPARE(nameOf(form->getPathList().get()[0].getRoot().get()), QString("s"));
    QCOMPARE(nameOf(form->getPathList().get()[0].getObj().get()), QString("a"));
}

void tst_FormPanel::severalObjectsHaveNumbersAndPathsOnly()
{
    show({"a", "b"});
    QVERIFY(labels().contains("2 objects"));
    QCOMPARE(links(), QString(" "));
    QVERIFY(!form->getMaintainerSlot().isEnabled());
    QVERIFY(!form->getDependencySlot().isEnabled());
    QCOMPARE(form->getSizeEdit().text(), QString());
    QVERIFY(form->getSizeEdit().isEnabled());
    QCOMPARE(form->getPathList().get().size(), std::size_t(2));
    show({"b", "c"});
    QCOMPARE(form->getSizeEdit().text(), QString("20"));
}

void tst_FormPanel::eachObjectCountsOnce()
{
    show({"c", "a", "c"});
    QVERIFY(labels().contains("2 objects"));
    QStringList shown;
    for (Path const &path : form->getPathList().get())
        shown << nameOf(path.getRoot().get()) + '/' + nameOf(path.getObj().get());
    QCOMPARE(shown, (QStringList{"t/c", "s/a", "t/c"}));
    QCOMPARE(nameOf(form->getSizeEdit().getObjs().front().get()), QString("c"));
    // One that no section owns stands for itself.
    const RefT<Object> stranger(new Package(PackageRecord(), {}));
    form->showObjects({stranger, package("b")});
    QCOMPARE(form->getPathList().get().front().getRoot().get(), stranger.get());
    QCOMPARE(form->getPathList().get().front().getNum(), std::size_t(0));
    QCOMPARE(nameOf(form->getPathList().get().back().getRoot().get()), QString("s"));
}

void tst_FormPanel::followsTheModel()
{
    show({"a"});
    maintainerOf("a").set(maintainerOf("b").get());
    package("a")->getDepends()->replace(0, 1, {});
    QCOMPARE(links(), QString("Bob c"));
    package("a")->getDepends()->replace(0, 1, {});
    QCOMPARE(links(), QString("Bob "));
    QVERIFY(form->getDependencySlot().isEnabled());
}

void tst_FormPanel::titleFollowsTheName()
{
    show({"a"});
    const auto name = [this](char const *packageName) {
        return PtrT<FieldString>(cast<FieldString>(package(packageName)->findField("name")));
    };
    const PtrT<FieldString> first = name("a"), second = name("b");
    first->set("renamed");
    QVERIFY(labels().contains("renamed"));
    show({"b"});
    first->set("again");
    QVERIFY(labels().contains("b"));
    form.reset();
    second->set("again");
}

void tst_FormPanel::packageMayDie()
{
    PackageModel other(readStatus(status));
    {
        PackageModel dying(readStatus(status));
        form->showObjects({dying.findPackage("a")});
        QCOMPARE(links(), QString("Ann b"));
    }
    QCOMPARE(links(), QString(" "));
    QVERIFY(!form->getMaintainerSlot().isEnabled());
    QVERIFY(labels().contains("Nothing is selected"));
    form->grab();
    show({"a"});
    QCOMPARE(links(), QString("Ann b"));
}

void tst_FormPanel::fieldMayGo()
{
    show({"a"});
    removeField(*package("a"), maintainerOf("a"));
    QCOMPARE(links(), QString(" b"));
    QVERIFY(!form->getMaintainerSlot().isEnabled());
}

// Slots.

void tst_FormPanel::dropsAreCarriedOut()
{
    show({"a"});
    QVERIFY(drop(form->getMaintainerSlot(), {maintainerOf("b").get()}));
    QCOMPARE(nameOf(maintainerOf("a").get().get()), QString("Bob"));
    QVERIFY(drop(form->getDependencySlot(), {package("a")}));
    QCOMPARE(dependsOf("a"), QString("a c"));
    show({"c"});
    QVERIFY(drop(form->getDependencySlot(), {package("b")}));
    QCOMPARE(dependsOf("c"), QString("b"));
    QCOMPARE(said, QStringList());
}

void tst_FormPanel::wrongDropsAreRefusedAndSaid()
{
    show({"a"});
    QVERIFY(!drop(form->getMaintainerSlot(), {package("b")}));
    QCOMPARE(said, QStringList{"This takes a maintainer, and not a package"});
    // A drag asks many times, and is told once.
    QVERIFY(!drop(form->getMaintainerSlot(), {package("b")}));
    QCOMPARE(said.size(), 1);
    QVERIFY(!drop(form->getMaintainerSlot(), Objects()));
    QVERIFY(!drop(form->getDependencySlot(), {package("b"), package("c")}));
    QVERIFY(!drop(form->getDependencySlot(), {nullptr}));
    QMimeData text;
    text.setText("b");
    QVERIFY(!drop(form->getDependencySlot(), text));
    QMimeData xml;
    xml.setData("ZR::VOM::Object::XML", "<broken");
    QVERIFY(!drop(form->getDependencySlot(), xml));
    show({"a", "b"});
    QVERIFY(!drop(form->getDependencySlot(), {package("c")}));
    QCOMPARE(dependsOf("a"), QString("b c"));
}

void tst_FormPanel::refusalOfTheModelIsSaid()
{
    show({"a"});
    maintainerOf("a").sigCanSet.connect([](auto const &) { throw ZR::Error("Never."); });
    QVERIFY(!drop(form->getMaintainerSlot(), {maintainerOf("b").get()}));
    QCOMPARE(said, QStringList{"The model refuses that"});
    QCOMPARE(links(), QString("Ann b"));
}

void tst_FormPanel::refusalOfTheDropItselfPutsTheOldValueBack_data()
{
    QTest::addColumn<bool>("isOfTheModel");
    QTest::newRow("the model's") << true;
    QTest::newRow("any exception") << false;
}

void tst_FormPanel::refusalOfTheDropItselfPutsTheOldValueBack()
{
    QFETCH(bool, isOfTheModel);
    const ZR::VOM::GUI::Reports reports;
    show({"a"});
    // It is asked when the drag enters and when it drops, and then set.
    int numAsked = 0;
    maintainerOf("a").sigCanSet.connect([&](auto const &) {
        if (++numAsked <= 2)
            return;
        if (isOfTheModel)
            throw ZR::Error("Too late.");
        throw std::runtime_error("broken");
    });
    QVERIFY(drop(form->getMaintainerSlot(), {maintainerOf("b").get()}));
    QCOMPARE(numAsked, 3);
    QCOMPARE(said, isOfTheModel ? QStringList{"Too late."} : QStringList());
    QCOMPARE(reports.texts.size(), std::size_t(isOfTheModel ? 0 : 1));
    QCOMPARE(links(), QString("Ann b"));
    QCOMPARE(nameOf(maintainerOf("a").get().get()), QString("Ann"));
}

void tst_FormPanel::refusedUnlinkPutsTheOldValueBack()
{
    show({"a"});
    maintainerOf("a").sigCanSet.connect([](FieldPtr::SigCanSetData const &sigData) {
        if (!*sigData.value)
            throw ZR::Error("Somebody has to.");
    });
    form->getMaintainerSlot().unlink();
    QCOMPARE(said, QStringList{"Somebody has to."});
    QCOMPARE(links(), QString("Ann b"));
}

void tst_FormPanel::objectsOfOtherProgramsAreTakenIn()
{
    show({"a"});
    const Objects foreign = {PackageModel(readStatus(status)).findPackage("c")};
    const std::unique_ptr<QMimeData> whole(ZR::VOM::GUI::createMimeData(
        RefT<ZR::VOM::Exporter>(new ZR::VOM::XmlExporter), &foreign, nullptr));
    QMimeData xml;
    xml.setData("ZR::VOM::Object::XML", whole->data("ZR::VOM::Object::XML"));
    QVERIFY(drop(form->getDependencySlot(), xml));
    QCOMPARE(dependsOf("a"), QString("c c"));
    QVERIFY(PackageModel::getDependencies(*package("a"))[0] != foreign[0]);
    QCOMPARE(model->getSections().back()->getName(), std::string("pasted"));
}

void tst_FormPanel::buttonTakesTheLinkAway()
{
    const auto press = [this](char const *name) {
        for (QToolButton *button : form->findChildren<QToolButton *>())
            if (button->accessibleName() == name)
                return QTest::mouseClick(button, Qt::LeftButton);
        QFAIL(name);
    };
    press("Clear Maintainer");
    show({"a"});
    press("Clear Maintainer");
    QVERIFY(!maintainerOf("a").get());
    press("Clear Needs first");
    QCOMPARE(dependsOf("a"), QString("c"));
    QCOMPARE(links(), QString(" c"));
    press("Clear Needs first");
    press("Clear Needs first");
    QCOMPARE(dependsOf("a"), QString());
}

void tst_FormPanel::movedAwayObjectLeavesTheField()
{
    class Open : public FieldSlot {
    public:
        using FieldSlot::FieldSlot;
        using FieldSlot::onDragDrop;
    };
    Open slot(*model, "Maintainer", "none");
    slot.setField(package("a")->findField("maintainer"));
    ZR::GUI::Drag drag(&slot);
    slot.onDragDrop(drag, Qt::CopyAction);
    QVERIFY(maintainerOf("a").get());
    slot.onDragDrop(drag, Qt::MoveAction);
    QVERIFY(!maintainerOf("a").get());
    QVERIFY(!slot.getValue());
}

void tst_FormPanel::longNamesAreShortened()
{
    const std::string name(200, 'w');
    const RefT<Maintainer> team(new Maintainer(name));
    form->resize(340, 460);
    show({"a"});
    maintainerOf("a").set(RefT<Object>(team));
    QApplication::sendPostedEvents();
    QVERIFY(form->width() < 400);
    QLabel const &label = *form->getMaintainerSlot().findChildren<QLabel *>().last();
    QVERIFY(label.text().endsWith(QChar(0x2026)));
    QVERIFY(label.fontMetrics().horizontalAdvance(label.text()) <= label.width());
    QVERIFY(form->getMaintainerSlot().toolTip().contains(QString::fromStdString(name)));
}

// Numbers.

void tst_FormPanel::numbersGoToAllSelected()
{
    show({"a", "b"});
    enter(form->getSizeEdit(), "33");
    QCOMPARE(sizeOf("a"), 33.0);
    QCOMPARE(sizeOf("b"), 33.0);
    QCOMPARE(sizeOf("c"), 20.0);
    QCOMPARE(form->getSizeEdit().text(), QString("33"));
}

void tst_FormPanel::numbersAreCreatedOnDemand()
{
    show({"a", "b"});
    QVERIFY(!form->getRatingEdit().isEnabled());
    check("Create on demand", true);
    QVERIFY(form->getRatingEdit().isEnabled());
    enter(form->getRatingEdit(), "4");
    for (char const *name : {"a", "b"})
        QCOMPARE(cast<FieldReal>(package(name)->findField("rating"))->get(), 4.0);
    check("Create on demand", false);
    QVERIFY(form->getRatingEdit().isEnabled());
}

void tst_FormPanel::readOnlyNumbersStay()
{
    show({"a"});
    check("Read-only", true);
    enter(form->getSizeEdit(), "33");
    QCOMPARE(sizeOf("a"), 10.0);
    QCOMPARE(form->getSizeEdit().text(), QString("10"));
    QVERIFY(form->getRatingEdit().isReadOnly());
}

void tst_FormPanel::bothEditorsWorkOnOneList()
{
    QCOMPARE(&form->getSizeEdit().getObjs(), &form->getRatingEdit().getObjs());
}

void tst_FormPanel::stateTellsHowManyHaveANumber()
{
    show({"a", "b", "c"});
    QVERIFY(labels().contains("3 differ"));
    QVERIFY(labels().contains("0 of 3"));
    enter(form->getSizeEdit(), "1");
    QVERIFY(!labels().contains("3 differ"));
}

// The selection.

void tst_FormPanel::graphFeedsTheForm()
{
    PackageGraph graph(*model);
    form->watch(graph);
    graph.animDuration.set(0);
    graph.resize(400, 400);
    graph.setVisible({package("a")}, true);
    graph.grab();
    int x = 0, y = 0;
    graph.getPos(package("a"), x, y);
    QTest::mouseClick(
        graph.viewport(), Qt::LeftButton, {},
        {x - graph.horizontalScrollBar()->value(), y - graph.verticalScrollBar()->value()});
    QCOMPARE(links(), QString("Ann b"));
}

void tst_FormPanel::treeFeedsTheForm()
{
    TreePanel panel(*model);
    form->watchTree(panel.getTree());
    panel.resize(300, 300);
    panel.grab();
    for (Qt::Key key :
         {Qt::Key_Home, Qt::Key_Right, Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Down})
        QTest::keyClick(&panel.getTree(), key);
    std::vector<ZR::VOM::Path> paths;
    panel.getTree().getSel(paths);
    QCOMPARE(paths.size(), std::size_t(1));
    QTRY_COMPARE(form->getPathList().get().size(), std::size_t(1));
    QTRY_COMPARE(form->getPathList().get()[0].getObj(), paths[0].getObj());
    QTest::mouseClick(panel.getTree().viewport(), Qt::LeftButton, {}, {60, 8});
    QTRY_VERIFY(labels().contains("s"));
}

QTEST_MAIN(tst_FormPanel)
#include "tst_FormPanel.moc"
