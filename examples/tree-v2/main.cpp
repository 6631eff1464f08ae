#include "Project.h"
#include "Views.h"

#include <zrVOMGUI/trees/v2/ObjectTreeView.h>

#include <QApplication>

using namespace ZR::VOM;
using ZR::RefT;

/// What tasks need, as the tree of the second generation.
int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const RefT<Object> project = Example::makeProject();

    //! [v2]
    GUI::V2::ObjectTreeView tree(Example::makeExporter(), Example::makeImporter());
    tree.setObjIconDB(Example::makeIcons());
    tree.setNameField("name");
    tree.addAcceptedField("Task", "needs");
    tree.setHideFields(true); // What a task needs stands directly below it.
    const Example::Objects tasks = Example::listOf(project, "tasks");
    tree.addRows({tasks.begin(), tasks.end()}, 0); // All at once: each change closes the rows.
    //! [v2]

    //! [v2Drop]
    using Tree = GUI::V2::ObjectTreeView;
    tree.sigDrop.connect([](Tree::SigDropData const &drop) {
        const RefT<Field> field(drop.path.getLast().field);
        Example::place(*field, drop.index, Example::dropped(drop.action, drop.objs, drop.copyObjs));
    });
    //! [v2Drop]
    Example::openRows(tree, {Path(*tasks[4]), Path(*tasks[5])});

    tree.resize(300, 220);
    tree.show();
    return QApplication::exec();
}
