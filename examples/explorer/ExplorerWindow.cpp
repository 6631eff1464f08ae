#include "ExplorerWindow.h"

#include "FieldSlot.h"
#include "FormPanel.h"
#include "GraphPage.h"
#include "Icons.h"
#include "Language.h"
#include "ModelFile.h"
#include "PackageGraph.h"
#include "SignalLog.h"
#include "Style.h"
#include "TreePanel.h"
#include "TreesPage.h"

#include <QApplication>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>

namespace Explorer {

ExplorerWindow::ExplorerWindow(std::shared_ptr<PackageModel> const &shownModel,
                               QString const &modelSource, QWidget *parent)
    : QMainWindow(parent)
    , model(shownModel)
    , source(modelSource)
    , page(new GraphPage(*shownModel, this))
    , figures(new QLabel(this))
{
    setWindowTitle(tr("Installed packages (%1)").arg(source));
    setWindowIcon(windowIcon());
    makeTabs();
    resize(1560, 860);
    constexpr int edge = 12;
    figures->setContentsMargins(edge, 0, edge, 0);
    statusBar()->addPermanentWidget(figures);
    constexpr int readingTime = 6000; // Milliseconds.
    connect(page, &GraphPage::figuresChanged, figures, &QLabel::setText);
    connect(page, &GraphPage::said, this,
            [this](QString const &text) { statusBar()->showMessage(text, readingTime); });
    makeActions();
    makeTree();
    makeForm();
    makeLog();
    // The graph goes with this window.
    page->getGraph().sigPopupMenu.connect(
        [this](auto const &sigData) { popupMenu(QPoint(sigData.x, sigData.y)); });
}

void ExplorerWindow::makeTabs()
{
    treesPage = new TreesPage(*model, this);
    connect(treesPage, &TreesPage::said, page, &GraphPage::said);
    auto *const tabs = new QTabWidget(this);
    tabs->setDocumentMode(true);
    // So that drags go from tab to tab.
    tabs->tabBar()->setChangeCurrentOnDrag(true);
    tabs->tabBar()->setAcceptDrops(true);
    tabs->addTab(page, tr("Graph"));
    tabs->addTab(treesPage, tr("Generations of trees"));
    setCentralWidget(tabs);
}

void ExplorerWindow::makeActions()
{
    QToolBar *const toolBar = addToolBar(tr("Graph"));
    toolBar->setMovable(false);
    toolBar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    toolBar->setContextMenuPolicy(Qt::PreventContextMenu);
    makeFileMenu();
    makeGraphMenu(*toolBar);
    toolBar->addSeparator();
    makeViewMenu(*toolBar);
}

void ExplorerWindow::makeFileMenu()
{
    const QString filter = tr("Models (*.xml)");
    QMenu *const menu = menuBar()->addMenu(tr("&File"));
    const auto open = [this, filter] {
        const QString path = QFileDialog::getOpenFileName(this, tr("Open a model"), {}, filter);
        if (!path.isEmpty())
            openFile(path);
    };
    const auto save = [this, filter] {
        const QString path = QFileDialog::getSaveFileName(this, tr("Save the model"), {}, filter);
        if (!path.isEmpty())
            saveFile(path);
    };
    menu->addAction(tr("&New window"), this, [this] { openWindow(); })
        ->setShortcut(QKeySequence::New);
    menu->addAction(tr("&Open…"), this, open)->setShortcut(QKeySequence::Open);
    menu->addAction(tr("&Save as…"), this, save)->setShortcut(QKeySequence::Save);
    menu->addSeparator();
    menu->addAction(tr("&Close"), this, &QWidget::close)->setShortcut(tr("Ctrl+W"));
    menu->addAction(tr("&Quit"), qApp, &QApplication::closeAllWindows)->setShortcut(tr("Ctrl+Q"));
}

QAction *ExplorerWindow::addAction(QMenu &menu, QString const &text, QKeySequence const &keys,
                                   QString const &help, void (GraphPage::*slot)())
{
    QAction *const action = menu.addAction(text, page, slot);
    action->setShortcut(keys);
    action->setToolTip(help + " (" + keys.toString(QKeySequence::NativeText) + ")");
    return action;
}

void ExplorerWindow::makeGraphMenu(QToolBar &toolBar)
{
    graphMenu = menuBar()->addMenu(tr("&Graph"));
    toolBar.addAction(addAction(*graphMenu, tr("&Find…"), QKeySequence::Find,
                                tr("Find a package by its name"), &GraphPage::startSearch));
    graphMenu->addSeparator();
    toolBar.addAction(addAction(*graphMenu, tr("Show &more"), tr("Ctrl+M"),
                                tr("Show the neighbours of the selected nodes, or of all"),
                                &GraphPage::showMore));
    toolBar.addAction(addAction(*graphMenu, tr("&Hide"), QKeySequence::Delete,
                                tr("Hide the selected nodes"), &GraphPage::hideSelected));
    toolBar.addAction(
        addAction(*graphMenu, tr("&Clear"), tr("Ctrl+K"), tr("Hide all nodes"), &GraphPage::clear));
    graphMenu->addSeparator();
    addAction(*graphMenu, tr("C&opy"), QKeySequence::Copy,
              tr("Copy the selected objects, for this program and for others"),
              &GraphPage::copySelected);
    addAction(*graphMenu, tr("&Paste"), QKeySequence::Paste,
              tr("Show the objects on the clipboard"), &GraphPage::paste);
}

void ExplorerWindow::makeViewMenu(QToolBar &toolBar)
{
    viewMenu = menuBar()->addMenu(tr("&View"));
    toolBar.addAction(addAction(*viewMenu, tr("&Lay out"), tr("Ctrl+L"),
                                tr("Lay the visible nodes out anew"), &GraphPage::layOut));
    toolBar.addAction(addAction(*viewMenu, tr("Show &selection"), tr("Ctrl+J"),
                                tr("Scroll to the selected nodes"), &GraphPage::showSelected));
    viewMenu->addSeparator();
    QAction *const dark = viewMenu->addAction(tr("&Dark style"));
    dark->setCheckable(true);
    dark->setShortcut(tr("Ctrl+D"));
    connect(dark, &QAction::toggled, this, [](bool on) { setDarkStyle(on); });
    toolBar.addSeparator();
    toolBar.addAction(dark);
    QAction *const german = viewMenu->addAction(tr("&German labels"));
    german->setCheckable(true);
    connect(german, &QAction::toggled, this, [](bool on) { setGerman(on); });
}

void ExplorerWindow::makeTree()
{
    constexpr int width = 300;
    auto *const dock = new QDockWidget(tr("Sections"), this);
    treePanel = new TreePanel(*model, dock);
    connect(treePanel, &TreePanel::said, page, &GraphPage::said);
    connect(treePanel, &TreePanel::packageChosen, page, &GraphPage::showPackage);
    dock->setWidget(treePanel);
    addDockWidget(Qt::RightDockWidgetArea, dock);
    resizeDocks({dock}, {width}, Qt::Horizontal);
    viewMenu->addAction(dock->toggleViewAction());
}

/// Below the tree.
void ExplorerWindow::makeForm()
{
    auto *const dock = new QDockWidget(tr("Form"), this);
    formPanel = new FormPanel(*model, dock);
    formPanel->watch(page->getGraph());
    formPanel->watchTree(treePanel->getTree());
    formPanel->watchTree(treesPage->getThird());
    formPanel->watchTree(treesPage->getSecond());
    formPanel->watchTree(treesPage->getFirst());
    connect(formPanel, &FormPanel::said, page, &GraphPage::said);
    dock->setWidget(formPanel);
    addDockWidget(Qt::RightDockWidgetArea, dock);
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    viewMenu->addAction(dock->toggleViewAction());
}

void ExplorerWindow::makeLog()
{
    constexpr int fewLines = 96;
    auto *const dock = new QDockWidget(tr("Signals"), this);
    auto *const log = new SignalLog(dock);
    log->watch(page->getGraph());
    log->watch(treePanel->getTree());
    log->watch(treesPage->getThird());
    log->watch(treesPage->getSecond());
    log->watch(treesPage->getFirst());
    log->watch(formPanel->getMaintainerSlot());
    log->watch(formPanel->getDependencySlot());
    dock->setWidget(log);
    addDockWidget(Qt::BottomDockWidgetArea, dock);
    resizeDocks({dock}, {fewLines}, Qt::Vertical);
    viewMenu->addAction(dock->toggleViewAction());
}

void ExplorerWindow::popupMenu(QPoint const &viewportPos)
{
    graphMenu->popup(page->getGraph().viewport()->mapToGlobal(viewportPos));
}

void ExplorerWindow::start(QString const &packageName)
{
    page->showPackage(packageName.isEmpty() ? startPackage() : packageName);
    formPanel->showObjects(page->getGraph().getSel());
}

ExplorerWindow *ExplorerWindow::openWindow()
{
    auto *const window = new ExplorerWindow(model, source);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
    return window;
}

ExplorerWindow *ExplorerWindow::openFile(QString const &path)
{
    QString error;
    const std::shared_ptr<PackageModel> opened = readModel(path, error);
    if (!opened) {
        QMessageBox::warning(this, tr("Open a model"), path + "\n\n" + error);
        return nullptr;
    }
    auto *const window = new ExplorerWindow(opened, QFileInfo(path).fileName());
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
    window->start({});
    return window;
}

bool ExplorerWindow::saveFile(QString const &path)
{
    QString error;
    if (writeModel(*model, path, error))
        return true;
    QMessageBox::warning(this, tr("Save the model"), path + "\n\n" + error);
    return false;
}

/// A package that has enough to show, and not too much.
QString ExplorerWindow::startPackage() const
{
    for (char const *name : {"apt", "git", "curl"})
        if (model->findPackage(name))
            return name;
    return model->getPackages().empty()
               ? QString()
               : QString::fromStdString(model->getPackages().front()->getName());
}

} // namespace Explorer
