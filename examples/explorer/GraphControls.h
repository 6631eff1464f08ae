#pragma once

#include "Icons.h"

#include <QWidget>

class QGridLayout;
class QGroupBox;

namespace Explorer {

class PackageGraph;

/// What a host can set on the graph, as a column of controls.
class GraphControls : public QWidget {
    Q_OBJECT

public:
    /// The graph isn't owned, and outlives the controls.
    explicit GraphControls(PackageGraph &shownGraph, QWidget *parent = nullptr);

signals:
    /// Something was set that may change what is shown.
    void changed();

private:
    QGroupBox *makeLabelBox();
    QGroupBox *makeIconBox();
    QGroupBox *makeLinkBox();
    QGroupBox *makeBehaviourBox();
    void fillLegend(IconRule rule);

    PackageGraph &graph;
    QGridLayout *legend = nullptr;
};

} // namespace Explorer
