#pragma once

#include "PackageModel.h"

#include <QWidget>

class QLineEdit;
class QListWidget;

namespace Explorer {

class PackageGraph;

/// Finds packages by name, and lists what the graph shows.
class SearchPanel : public QWidget {
    Q_OBJECT

public:
    /// The graph isn't owned, and outlives the panel.
    explicit SearchPanel(PackageGraph &shownGraph, QWidget *parent = nullptr);

    /// Puts the keyboard focus where a name is typed.
    void startSearch();
    /// Lists the visible objects anew, by name, and selects those that are selected in the graph.
    void updateList();

signals:
    void packageChosen(QString const &name);

private:
    void makeSearch();
    void choose(QString const &typed);
    void selectInGraph();

    PackageGraph &graph;
    QLineEdit *search;
    QListWidget *list;
    Objects listed;         // Row by row.
    bool isFilling = false; // The list changes, and not the user's selection in it.
};

} // namespace Explorer
