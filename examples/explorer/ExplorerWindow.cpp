#include "ExplorerWindow.h"

#include "GraphPage.h"
#include "Icons.h"
#include "PackageGraph.h"
#include "Style.h"

#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>

namespace Explorer {

ExplorerWindow::ExplorerWindow(PackageModel const &shownModel, QString const &source,
                               QWidget *parent)
    : QMainWindow(parent)
    , model(shownModel)
    , page(new GraphPage(shownModel, this))
    , figures(new QLabel(this))
{
    setWindowTitle(tr("Installed packages (%1)").arg(source));
    setWindowIcon(windowIcon());
    setCentralWidget(page);
    resize(1320, 800);
    constexpr int edge = 12;
    figures->setContentsMargins(edge, 0, edge, 0);
    statusBar()->addPermanentWidget(figures);
    constexpr int readingTime = 6000; // Milliseconds.
    connect(page, &GraphPage::figuresChanged, figures, &QLabel::setText);
    connect(page, &GraphPage::said, this,
            [this](QString const &text) { statusBar()->showMessage(text, readingTime); });
    makeActions();
}

void ExplorerWindow::makeActions()
{
    auto *const toolBar = addToolBar(tr("Graph"));
    toolBar->setMovable(false);
    toolBar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    toolBar->setContextMenuPolicy(Qt::PreventContextMenu);
    QMenu *const graphMenu = menuBar()->addMenu(tr("&Graph"));
    QMenu *const viewMenu = menuBar()->addMenu(tr("&View"));

    const auto add = [&](QMenu &menu, QString const &text, QKeySequence const &keys,
                         QString const &help, auto &&slot) {
        QAction *const action = menu.addAction(text, page, slot);
        action->setShortcut(keys);
        action->setToolTip(help + " (" + keys.toString(QKeySequence::NativeText) + ")");
        toolBar->addAction(action);
    };
    add(*graphMenu, tr("&Find…"), QKeySequence::Find, tr("Find a package by its name"),
        [this] { page->startSearch(); });
    graphMenu->addSeparator();
    add(*graphMenu, tr("Show &more"), tr("Ctrl+M"),
        tr("Show the neighbours of the selected nodes, or of all"), [this] { page->showMore(); });
    add(*graphMenu, tr("&Hide"), QKeySequence::Delete, tr("Hide the selected nodes"),
        [this] { page->hideSelected(); });
    add(*graphMenu, tr("&Clear"), tr("Ctrl+K"), tr("Hide all nodes"), [this] { page->clear(); });
    graphMenu->addSeparator();
    graphMenu->addAction(tr("&Quit"), this, &QWidget::close, tr("Ctrl+Q"));

    toolBar->addSeparator();
    add(*viewMenu, tr("&Lay out"), tr("Ctrl+L"), tr("Lay the visible nodes out anew"),
        [this] { page->layOut(); });
    add(*viewMenu, tr("Show &selection"), tr("Ctrl+J"), tr("Scroll to the selected nodes"),
        [this] { page->getGraph().showSel(); });
    viewMenu->addSeparator();
    QAction *const dark = viewMenu->addAction(tr("&Dark style"));
    dark->setCheckable(true);
    dark->setShortcut(tr("Ctrl+D"));
    connect(dark, &QAction::toggled, this, [](bool on) { setDarkStyle(on); });
    toolBar->addSeparator();
    toolBar->addAction(dark);
}

void ExplorerWindow::start(QString const &packageName)
{
    page->showPackage(packageName.isEmpty() ? startPackage() : packageName);
}

/// A package that has enough to show, and not too much.
QString ExplorerWindow::startPackage() const
{
    for (char const *name : {"apt", "git", "curl"})
        if (model.findPackage(name))
            return name;
    return model.getPackages().empty()
               ? QString()
               : QString::fromStdString(model.getPackages().front()->getName());
}

} // namespace Explorer
