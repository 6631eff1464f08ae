#pragma once

#include "PackageModel.h"

#include <QMainWindow>

#include <memory>

class QLabel;
class QMenu;
class QToolBar;

namespace Explorer {

class FormPanel;
class GraphPage;
class TreePanel;
class TreesPage;

/// One window on a package model, which several windows may share.
class ExplorerWindow : public QMainWindow {
    Q_OBJECT

public:
    /// `source` tells the user where the model comes from.
    ExplorerWindow(std::shared_ptr<PackageModel> const &model, QString const &source,
                   QWidget *parent = nullptr);

    GraphPage &getPage() { return *page; }
    TreePanel &getTreePanel() { return *treePanel; }
    TreesPage &getTreesPage() { return *treesPage; }
    /// Begins with a package in its surroundings. An empty name leaves the choice to the window.
    void start(QString const &packageName);

    /// A second window on the same model, which deletes itself when it is closed.
    ExplorerWindow *openWindow();
    /// A window on the model in an XML file. Null, after having told the user why, when there is
    /// none.
    ExplorerWindow *openFile(QString const &path);
    /// False, after having told the user why, when the file can't be written.
    bool saveFile(QString const &path);

private:
    void makeTabs();
    void makeActions();
    void makeFileMenu();
    void makeGraphMenu(QToolBar &toolBar);
    void makeViewMenu(QToolBar &toolBar);
    QAction *addAction(QMenu &menu, QString const &text, QKeySequence const &keys,
                       QString const &help, void (GraphPage::*slot)());
    void makeTree();
    void makeForm();
    void makeLog();
    void popupMenu(QPoint const &viewportPos);
    QString startPackage() const;

    const std::shared_ptr<PackageModel> model;
    const QString source;
    GraphPage *page;
    FormPanel *formPanel = nullptr;
    TreesPage *treesPage = nullptr;
    TreePanel *treePanel = nullptr;
    QLabel *figures;
    QMenu *graphMenu = nullptr; // Serves as the graph's context menu, too.
    QMenu *viewMenu = nullptr;
};

} // namespace Explorer
