#include "Project.h"
#include "Views.h"

#include <zrVOMGUI/graph/ObjectGraphView.h>

#include <QApplication>
#include <QMenu>

using namespace ZR::VOM;
using Example::Objects;
using ZR::cast;
using ZR::RefT;

/// The tasks of a project, as a graph.
int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const RefT<Object> project = Example::makeProject();

    //! [graph]
    GUI::ObjectGraphView view(Example::makeExporter());
    view.setObjIconDB(Example::makeIcons());
    view.setFieldName("name");
    view.setTypeName(false);
    view.addInLinkField("Task", "needs"); // From each task that is needed to the one that needs it.
    view.addOutLinkField("Task", "worker");

    const Objects tasks = Example::listOf(project, "tasks");
    view.add(tasks, false);
    view.add(Example::listOf(project, "people"), false);
    view.setVisible(tasks, true);
    //! [graph]
    view.animDuration.set(0.3);

    //! [graphModel]
    auto *const list = cast<MFieldRef>(project->findField("tasks"));
    list->sigReplace.connect([&](MFieldRef::SigReplaceData const &sigData) {
        Objects added;
        for (std::size_t i = sigData.index; i < sigData.end; ++i)
            added.push_back(list->get(i));
        view.add(added, false);
        view.setVisible(added, true);
    });
    //! [graphModel]

    //! [graphSignals]
    view.sigSel.connect([&](auto const &) {
        view.setWindowTitle(QString("%1 selected").arg(view.getSel().size()));
    });
    view.sigPopupMenu.connect([&](GUI::ObjectGraphView::SigPopupMenuData const &sigData) {
        QMenu menu;
        menu.addAction("Hide", [&] { view.setVisible(view.getSel(), false); });
        menu.addAction("Lay out", [&] { view.layout(); });
        menu.exec(view.viewport()->mapToGlobal(QPoint(sigData.x, sigData.y)));
    });
    //! [graphSignals]

    view.resize(220, 440);
    view.show();
    return QApplication::exec();
}
