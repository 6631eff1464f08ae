#include "Project.h"
#include "Views.h"

#include <zrVOMGUI/trees/v1/ObjectTreeView.h>

#include <QApplication>

using namespace ZR::VOM;
using ZR::RefT;

/// A project as a tree that is made of Qt's tree view and an item model.
int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const RefT<Object> project = Example::makeProject();

    //! [v1]
    GUI::V1::ObjectTreeView tree(Example::makeExporter(), Example::makeImporter());
    tree.setObjIconDB(Example::makeIcons());
    tree.setFieldName("name");
    tree.addAcceptedField("Project", "tasks");
    tree.addAcceptedField("Task", "needs");
    tree.setSelectionMode(QAbstractItemView::ExtendedSelection); // As of any QTreeView.
    tree.setDragDropMode(QAbstractItemView::DragDrop);
    tree.setDefaultDropAction(Qt::MoveAction);
    tree.setHeaderHidden(true);
    tree.addRow(project, 0);
    //! [v1]

    //! [v1Drop]
    using Model = GUI::V1::ObjectTreeModel;
    tree.sigDrop.connect([](Model::SigDropData const &drop) {
        const RefT<Field> field(drop.fieldPath->getLast().field);
        Example::place(*field, drop.index,
                       Example::dropped(drop.action, *drop.objs, *drop.copyObjs));
    });
    //! [v1Drop]

    //! [v1Rows]
    tree.sigDoubleClick.connect([&](GUI::V1::ObjectTreeView::SigDoubleClickData const &sigData) {
        if (const RefT<Object> shown = tree.getObjRow(tree.indexAt(*sigData.pos)).obj)
            tree.setWindowTitle(shown->getClassInfo().name);
    });
    tree.expandRows({0, 0, 1, -1, -1, -1}); // The first row, its first, and the second in that.
    std::vector<int> openRows;
    tree.getExpandedRows(openRows); // To be saved for the next start.
    //! [v1Rows]

    tree.resize(300, 220);
    tree.show();
    return QApplication::exec();
}
