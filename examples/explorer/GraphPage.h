#pragma once

#include "PackageModel.h"

#include <QWidget>

namespace Explorer {

class GraphControls;
class PackageGraph;
class SearchPanel;

/// The graph, with a search on its left and its settings on its right.
class GraphPage : public QWidget {
    Q_OBJECT

public:
    /// The model isn't owned.
    explicit GraphPage(PackageModel &model, QWidget *parent = nullptr);

    PackageGraph &getGraph() { return *graph; }

    /// Shows a package of the model in its surroundings, or says that there is none of that name.
    void showPackage(QString const &name);
    void showMore();
    void hideSelected();
    void clear();
    void layOut();
    /// Scrolls to the selected nodes.
    void showSelected();
    void copySelected();
    void paste();
    void startSearch();

signals:
    /// Counts and figures of what is shown.
    void figuresChanged(QString const &text);
    /// For the user to read once.
    void said(QString const &text);

private:
    void connectGraph();
    void updateFigures();
    void sayLeft(std::size_t number);

    PackageModel &model;
    PackageGraph *graph;
    SearchPanel *searchPanel;
    GraphControls *controls;
};

} // namespace Explorer
