#include <zrVOMGUI/graph/ObjectGraphView.h>

#include <QApplication>

using namespace ZR::VOM;

int main(int argc, char **argv)
{
    QApplication application(argc, argv);

    const ZR::RefT<Object> house(new Object), door(new Object), lock(new Object);
    addField<FieldString>(*house, "name", "house");
    addField<FieldRef>(*house, "part", door);
    addField<FieldString>(*door, "name", "door");
    addField<FieldRef>(*door, "part", lock);
    addField<FieldString>(*lock, "name", "lock");

    GUI::ObjectGraphView view;
    view.setFieldName("name");        // What labels a node,
    view.addOutLinkField("", "part"); // and which field, of whatever class, draws a line.
    view.add({house, door, lock}, false);
    view.setVisible({house, door, lock}, true);
    view.resize(640, 480);
    view.show();
    return application.exec();
}
