// A host with a window, against the installed library.
#include <zrVOMGUI/graph/ObjectGraphView.h>
#include <zrVOMGUI/transfer/Clipboard.h>
#include <zrVOMGUI/trees/ObjectTreeView.h>
#include <zrVOMGUI/widgets/ObjectView.h>
#include <zrVOMGUI/widgets/PathListView.h>

#include <QApplication>
#include <QVBoxLayout>

#include <cstdio>

using namespace ZR::VOM;

int main(int argc, char **argv)
{
    QApplication application(argc, argv);

    const ZR::RefT<Object> house(new Object), door(new Object);
    addField<FieldString>(*house, "name", "house");
    addField<FieldRef>(*house, "part", door);
    addField<FieldString>(*door, "name", "door");

    QWidget window;
    QVBoxLayout layout(&window);
    GUI::ObjectGraphView graph;
    graph.setFieldName("name");
    graph.addOutLinkField("", "part");
    graph.add({house, door}, false);
    graph.setVisible({house, door}, true);
    layout.addWidget(&graph);
    GUI::ObjectTreeView tree;
    tree.addRow(house, 0);
    layout.addWidget(&tree);
    GUI::ObjectView slot({}, {});
    slot.setValue(door);
    layout.addWidget(&slot);
    GUI::PathListView paths;
    paths.set({Path(*house)});
    layout.addWidget(&paths);
    window.show();
    QApplication::processEvents();

    // By their own kinds, over the border between program and libraries.
    const auto part = house->findField("part");
    if (graph.getVisibleObjs().size() != 2 || !dynamic_cast<FieldRef *>(part.get())) {
        std::fputs("The graph doesn't show what it was given\n", stderr);
        return 1;
    }
    std::puts("A window with widgets");
}
