#pragma once

#include "support/NumberedGraph.h"
#include "zrVOMGUI/foundation/vom/MField.h"
#include "zrVOMGUI/graph/ObjectGraphView.h"

/// Objects that stand for the nodes of a graph: each has its number as its name, and a list of
/// watching links to the heads of its links.
class GraphModel {
public:
    /// Objects without names and links.
    explicit GraphModel(unsigned numNodes);

    /// Sets all names and links.
    void fill(NumberedGraph const &graph);
    ZR::VOM::MFieldPtr &links(unsigned node) const;

    /// Tells a view which field labels and which links, and adds all objects.
    void addTo(ZR::VOM::GUI::ObjectGraphView &view) const;

    std::vector<ZR::RefT<ZR::VOM::Object>> objs; ///< By node number.
};
