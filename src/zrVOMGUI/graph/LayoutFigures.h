#pragma once

namespace ZR::VOM::GUI {

/// What the last layout of an ObjectGraphView made, and how long each stage took.
///
/// Counts and lengths are sums over all components; times are wall-clock seconds.
struct LayoutFigures {
    unsigned components = 0;
    unsigned nodes = 0;      ///< Visible nodes with an object.
    unsigned splitNodes = 0; ///< Intermediate nodes of long links.
    unsigned layers = 0;     ///< Of the component with the most layers.
    unsigned crossings = 0;  ///< Between adjacent layers.
    double length = 0;       ///< Horizontal distance over all unit pieces of links, in pixels.
    int width = 0;           ///< Of the row of components, edge to edge, in pixels.
    int height = 0;

    double cyclesTime = 0; ///< Breaking cycles.
    double ranksTime = 0;  ///< Assigning layers.
    double splitTime = 0;  ///< Splitting long links and filling the layers.
    double orderTime = 0;  ///< Reducing crossings.
    double coordsTime = 0; ///< Assigning coordinates.
};

} // namespace ZR::VOM::GUI
