#include "Project.h"
#include "Views.h"

#include <zrVOMGUI/foundation/vom/Copy.h>
#include <zrVOMGUI/transfer/Clipboard.h>
#include <zrVOMGUI/trees/ObjectTreeView.h>

#include <QAction>
#include <QApplication>
#include <QToolBar>
#include <QVBoxLayout>

using namespace ZR::VOM;
using Example::Objects;
using ZR::cast;
using ZR::RefT;

namespace {

//! [clipboardCopy]
void copySelected(GUI::ObjectTreeView &tree)
{
    std::vector<Path> paths;
    tree.getSel(paths);
    Objects objects;
    for (Path const &path : paths)
        if (path.getObj())
            objects.emplace_back(path.getObj());
    GUI::Clipboard::copyObjs(Example::makeExporter(), objects);
}
//! [clipboardCopy]

//! [clipboardPaste]
/// Objects of this process come as themselves, those of another as new ones.
void pasteInto(Field &list)
{
    Objects objects;
    if (GUI::Clipboard::pasteObjs(objects))
        objects = Copy::Context().copy(objects);
    else if (!GUI::Clipboard::pasteObjs(objects, *Example::makeImporter()))
        return;
    Example::place(list, std::size_t(-1), objects);
}
//! [clipboardPaste]

} // namespace

/// Tasks that are copied and pasted, also between two of this program.
int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const RefT<Object> project = Example::makeProject();
    auto *const tasks = cast<MFieldRef>(project->findField("tasks"));

    QWidget window;
    auto *const tree =
        new GUI::ObjectTreeView(Example::makeExporter(), Example::makeImporter(), &window);
    tree->setObjIconDB(Example::makeIcons());
    tree->setNameField("name");
    tree->addAcceptedField("Project", "tasks");
    tree->setHideFields(true); // Tasks stand directly below their project.
    tree->addRow(project, 0);
    Example::openRows(*tree, {Path(project)});

    auto *const bar = new QToolBar(&window);
    bar->addAction("Copy", [=] { copySelected(*tree); })->setShortcut(QKeySequence::Copy);
    bar->addAction("Paste", [=] { pasteInto(*tasks); })->setShortcut(QKeySequence::Paste);

    auto *const layout = new QVBoxLayout(&window);
    layout->addWidget(bar);
    layout->addWidget(tree);
    window.resize(280, 260);
    window.show();
    return QApplication::exec();
}
