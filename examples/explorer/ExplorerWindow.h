#pragma once

#include "PackageModel.h"

#include <QMainWindow>

class QLabel;

namespace Explorer {

class GraphPage;

/// One window on a package model.
class ExplorerWindow : public QMainWindow {
    Q_OBJECT

public:
    /// The model isn't owned. `source` tells the user where it comes from.
    ExplorerWindow(PackageModel const &model, QString const &source, QWidget *parent = nullptr);

    GraphPage &getPage() { return *page; }
    /// Begins with a package in its surroundings. An empty name leaves the choice to the window.
    void start(QString const &packageName);

private:
    void makeActions();
    QString startPackage() const;

    PackageModel const &model;
    GraphPage *page;
    QLabel *figures;
};

} // namespace Explorer
