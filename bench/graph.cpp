// What the graph view costs beside the layout: adding objects, showing them, painting, animation
// ticks, field changes and drops, at 1,000, 10,000 and 100,000 nodes with two links each.
//
//     ./run bench graph [--largest NODES]
//
// A row for each operation and size: the median time in milliseconds, and the growth from the size
// before. "paint" is one paint of a viewport of 1,000 by 700 pixels, scrolled to the middle of the
// drawing: the bulk of the graph is off screen. "tick" is one step of the node animation without
// its paint. "field change" sets one list of links to the other of two values.
// "drag move" is one move of a drag with all objects over the view, "drop" the drop of them when
// all are shown, and "drop hidden" when none is: as "show", and the search for routes.

#include "support/GraphModel.h"
#include "support/GraphViewAccess.h"
#include "support/SentDrag.h"
#include "support/Table.h"
#include "zrVOMGUI/transfer/MimeData.h"

#include <QApplication>
#include <QImage>
#include <QScrollBar>
#include <QTimer>
#include <QTimerEvent>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

using ZR::VOM::GUI::ObjectGraphView;

/// A forest whose trees have about a hundred nodes, with a second link from each node across its
/// tree: what a large model looks like, and laid out in no time.
NumberedGraph forest(unsigned numNodes)
{
    constexpr unsigned treeSize = 100;
    NumberedGraph graph;
    graph.numNodes = numNodes;
    for (unsigned i = 0; i < numNodes; ++i) {
        const unsigned root = i - i % treeSize;
        const unsigned place = i - root;
        if (place != 0) {
            graph.links.emplace_back(root + (place - 1) / 3, i);
            graph.links.emplace_back(root + (place - 1) / 4, i);
        }
    }
    return graph;
}

/// One step of the node animation, as its timer would do it.
void tick(ObjectGraphView &view)
{
    QTimer &timer = ZR::VOM::GUI::GraphViewAccess::animTimer(view);
    QTimerEvent event(timer.timerId());
    QApplication::sendEvent(&timer, &event);
}

void endAnimation(ObjectGraphView &view)
{
    view.animDuration.set(0);
    tick(view);
}

constexpr int repeat = 9;

void measureDrops(GraphModel const &model, ObjectGraphView &view, Table &table)
{
    const auto numNodes = static_cast<unsigned>(model.objs.size());
    const std::unique_ptr<QMimeData> data(ZR::VOM::GUI::createMimeData({}, &model.objs, nullptr));
    const QPoint pos(500, 350);
    SentDrag drag(view);
    drag.enter(pos, data.get());
    table.add("drag move", numNodes, timesOf(repeat, [&] { drag.move(pos, data.get()); }));
    table.add("drop", numNodes, timesOf(1, [&] { drag.drop(pos, data.get()); }));
    view.setVisible(model.objs, false);
    drag.enter(pos, data.get());
    table.add("drop hidden", numNodes, timesOf(1, [&] { drag.drop(pos, data.get()); }));
}

void measure(unsigned numNodes, Table &table)
{
    GraphModel model(numNodes);
    model.fill(forest(numNodes));
    ObjectGraphView view;
    view.resize(1000, 700);
    table.add("add", numNodes, timesOf(1, [&] { model.addTo(view); }));
    table.add("show", numNodes, timesOf(1, [&] { view.setVisible(model.objs, true); }));

    view.animDuration.set(60);
    table.add("tick", numNodes, timesOf(repeat, [&] { tick(view); }));
    endAnimation(view);

    QImage picture(1000, 700, QImage::Format_RGB32);
    view.viewport()->render(&picture);
    QScrollBar *const bar = view.horizontalScrollBar();
    bar->setValue((bar->minimum() + bar->maximum()) / 2);
    table.add("paint", numNodes, timesOf(repeat, [&] { view.viewport()->render(&picture); }));

    ZR::VOM::MFieldPtr &links = model.links(0);
    const auto oldLinks = links.getAll();
    bool isOld = true;
    table.add("field change", numNodes, timesOf(repeat, [&] {
                  isOld = !isOld;
                  links.replace(0, links.getNum(),
                                isOld ? oldLinks : decltype(oldLinks){model.objs[numNodes - 1]});
              }));
    table.add("select", numNodes, timesOf(repeat, [&] { view.setSel({model.objs[0]}); }));
    measureDrops(model, view, table);
    table.add("clear", numNodes, timesOf(1, [&] { view.clear(); }));
}

} // namespace

int main(int argc, char **argv)
{
    // Nothing is to be seen, and there may be no display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    unsigned largest = 100000;
    if (argc == 3 && std::strcmp(argv[1], "--largest") == 0)
        largest = static_cast<unsigned>(std::atoi(argv[2]));
    else if (argc != 1) {
        std::fprintf(stderr, "usage: graph [--largest NODES]\n");
        return 2;
    }
    Table table;
    for (unsigned numNodes = 1000; numNodes <= largest; numNodes *= 10)
        measure(numNodes, table);
    return 0;
}
