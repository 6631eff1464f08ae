#include "ExplorerWindow.h"
#include "FieldSlot.h"
#include "FormPanel.h"
#include "GraphPage.h"
#include "ModelFile.h"
#include "PackageGraph.h"
#include "SignalLog.h"

#include "zrVOMGUI/widgets/PathListView.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace Explorer;
using ZR::cast;

namespace {

constexpr char status[] = "Package: a\nStatus: install ok installed\nSection: s\nDepends: b\n\n"
                          "Package: b\nStatus: install ok installed\nSection: s\n\n";

QString visible(ExplorerWindow &window)
{
    QStringList list;
    for (auto const &object : window.getPage().getGraph().getVisibleObjs())
        list << QString::fromStdString(cast<Item>(object)->getName());
    list.sort();
    return list.join(' ');
}

/// Closes the message box that is about to come, and keeps its text.
void answerMessage(QString &text)
{
    QTimer::singleShot(0, qApp, [&text] {
        auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box)
            return answerMessage(text);
        text = box->text();
        box->accept();
    });
}

} // namespace

/// What the window does beside its graph: files, the clipboard, the menu and the log.
class tst_ExplorerWindow : public QObject {
    Q_OBJECT

private slots:
    void init();
    void copiedObjectsArePastedInTheSameModel();
    void copiedObjectsArePastedAsNewOnesInAnother();
    void clipboardWithoutObjectsIsSaid();
    void savedFileOpensInAWindow();
    void badFileIsToldAndOpensNothing();
    void unwritableFileIsTold();
    void secondWindowSharesTheModel();
    void rightClickOpensTheMenu();
    void logTellsSignals();
    void formBeginsWithThePackage();
    void darkStyleGoesAgain();

private:
    static void act(ExplorerWindow &in, char const *text)
    {
        for (QAction *action : in.findChildren<QAction *>())
            if (action->text().remove('&') == text)
                return action->trigger();
        QFAIL(text);
    }
    static std::unique_ptr<ExplorerWindow> makeWindow()
    {
        return std::make_unique<ExplorerWindow>(std::make_shared<PackageModel>(readStatus(status)),
                                                "test");
    }

    std::unique_ptr<ExplorerWindow> window;
};

void tst_ExplorerWindow::init()
{
    window = makeWindow();
    window->show();
    window->start("a");
}

void tst_ExplorerWindow::copiedObjectsArePastedInTheSameModel()
{
    PackageGraph &graph = window->getPage().getGraph();
    const Objects before = graph.getSel();
    act(*window, "Copy");
    act(*window, "Clear");
    QCOMPARE(visible(*window), QString());
    act(*window, "Paste");
    QCOMPARE(visible(*window), QString("a"));
    QCOMPARE(graph.getSel(), before);
}

/// As from another process: the references are of objects that the other model doesn't know.
void tst_ExplorerWindow::copiedObjectsArePastedAsNewOnesInAnother()
{
    const auto other = makeWindow();
    act(*window, "Copy");
    act(*other, "Paste");
    QCOMPARE(visible(*other), QString("a"));
    const Objects pasted = other->getPage().getGraph().getSel();
    QCOMPARE(pasted.size(), std::size_t(1));
    QVERIFY(pasted != window->getPage().getGraph().getSel());
    PackageModel const &model = other->getPage().getGraph().getModel();
    QCOMPARE(model.getPackages().size(), std::size_t(3));
    QCOMPARE(model.getSections().back()->getName(), std::string("pasted"));
}

void tst_ExplorerWindow::clipboardWithoutObjectsIsSaid()
{
    QString said;
    connect(&window->getPage(), &GraphPage::said, this, [&](QString const &text) { said = text; });
    QApplication::clipboard()->setText("a");
    act(*window, "Paste");
    QCOMPARE(said, QString("The clipboard holds no objects"));
    window->getPage().getGraph().setSel({});
    act(*window, "Copy");
    QCOMPARE(said, QString("Nothing is selected"));
}

void tst_ExplorerWindow::savedFileOpensInAWindow()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("model.xml");
    QVERIFY(window->saveFile(path));
    ExplorerWindow *const opened = window->openFile(path);
    QVERIFY(opened);
    QVERIFY(opened->windowTitle().contains("model.xml"));
    QCOMPARE(visible(*opened), QString("a b"));
    delete opened;
}

void tst_ExplorerWindow::badFileIsToldAndOpensNothing()
{
    QString text;
    answerMessage(text);
    QVERIFY(!window->openFile("/nowhere/model.xml"));
    QVERIFY(text.contains("/nowhere/model.xml"));
}

void tst_ExplorerWindow::unwritableFileIsTold()
{
    QString text;
    answerMessage(text);
    QVERIFY(!window->saveFile("/nowhere/model.xml"));
    QVERIFY(text.contains("/nowhere/model.xml"));
}

void tst_ExplorerWindow::secondWindowSharesTheModel()
{
    ExplorerWindow *const second = window->openWindow();
    QCOMPARE(&second->getPage().getGraph().getModel(), &window->getPage().getGraph().getModel());
    QCOMPARE(visible(*second), QString());
    window.reset();
    QVERIFY(second->getPage().getGraph().getModel().findPackage("a"));
    delete second;
}

void tst_ExplorerWindow::rightClickOpensTheMenu()
{
    QTest::mouseClick(window->getPage().getGraph().viewport(), Qt::RightButton, {}, QPoint(3, 3));
    auto *const menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    QVERIFY(menu);
    QStringList texts;
    for (QAction const *action : menu->actions())
        texts << action->text().remove('&');
    QVERIFY(texts.contains("Copy"));
    menu->close();
}

void tst_ExplorerWindow::logTellsSignals()
{
    auto *const log = window->findChild<SignalLog *>();
    QVERIFY(log);
    QVERIFY(log->toPlainText().startsWith("sigInsertNode"));
    QTest::mouseClick(window->getPage().getGraph().viewport(), Qt::LeftButton, {}, QPoint(3, 3));
    QVERIFY(log->toPlainText().contains("sigSel"));
    window->getPage().clear();
    QVERIFY(log->toPlainText().contains("sigRemoveNode    2 objects"));
    window->findChild<FieldSlot *>()->unlink();
    QVERIFY(log->toPlainText().contains("sigConfirm       none"));
}

void tst_ExplorerWindow::formBeginsWithThePackage()
{
    QCOMPARE(window->findChild<FormPanel *>()->getPathList().get().size(), std::size_t(1));
    window->start("b");
    QCOMPARE(window->findChild<FormPanel *>()->getPathList().get()[0].getObj().get(),
             window->getPage().getGraph().getModel().findPackage("b").get());
}

void tst_ExplorerWindow::darkStyleGoesAgain()
{
    auto *const log = window->findChild<SignalLog *>();
    const QColor before = log->palette().color(QPalette::Base);
    act(*window, "Dark style");
    QVERIFY(log->palette().color(QPalette::Base) != before);
    act(*window, "Dark style");
    QCOMPARE(log->palette().color(QPalette::Base), before);
    for (QWidget const *widget : window->findChildren<QWidget *>())
        QVERIFY2(widget->palette().color(QPalette::Window).lightness() > 128,
                 widget->metaObject()->className());
}

QTEST_MAIN(tst_ExplorerWindow)
#include "tst_ExplorerWindow.moc"
