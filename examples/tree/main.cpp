#include "Project.h"
#include "Views.h"

#include <zrVOMGUI/trees/ObjectTreeView.h>

#include <QApplication>
#include <QMessageBox>

using namespace ZR::VOM;
using Example::Objects;
using ZR::cast;
using ZR::RefT;

/// A project as a tree, whose rows can be renamed and dragged.
int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const RefT<Object> project = Example::makeProject();

    //! [tree]
    GUI::ObjectTreeView tree(Example::makeExporter(), Example::makeImporter());
    tree.setObjIconDB(Example::makeIcons());
    tree.setNameField("name");
    tree.setTooltipField("note");
    tree.addAcceptedField("Project", "tasks");
    tree.addAcceptedField("Project", "people");
    tree.addAcceptedField("Task", "needs");
    tree.addRow(project, 0);
    //! [tree]

    //! [treeDrop]
    using Tree = GUI::ObjectTreeView;
    tree.sigDrop.connect([](Tree::SigDropData const &drop) {
        const RefT<Field> field(drop.path.getLast().field);
        Example::place(*field, drop.index, Example::dropped(drop.action, drop.objs, drop.copyObjs));
    });
    //! [treeDrop]

    //! [treeSignals]
    tree.sigEditRowError.connect([&](Tree::SigEditRowErrorData const &refused) {
        QMessageBox::warning(&tree, QString(), QString::fromUtf8(refused.error.what()));
    });
    //! [treeSignals]

    //! [treePaths]
    const Path top(project);
    Path list = top;
    list.pushField(*project->findField("tasks"));
    Path third = top;
    third.pushValue(*cast<MFieldRef>(project->findField("tasks")), 2);
    Example::openRows(tree, {top, list, third});
    //! [treePaths]

    tree.resize(300, 280);
    tree.show();
    return QApplication::exec();
}
