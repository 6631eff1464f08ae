#include "Project.h"
#include "Views.h"

#include <zrVOMGUI/widgets/PathListView.h>

#include <QApplication>

using namespace ZR::VOM;
using ZR::cast;
using ZR::RefT;

namespace {

//! [pathsFind]
/// Appends all ways from the end of a path to a task, along what tasks need.
void findPaths(Path const &path, RefT<Object> const &target, std::vector<Path> &found)
{
    if (path.getObj() == target)
        found.push_back(path);
    auto *const needs = cast<MFieldPtr>(path.getObj()->findField("needs"));
    for (std::size_t i = 0; needs && i < needs->getNum(); ++i) {
        Path next = path;
        next.pushField(*needs);
        next.pushValue(*needs, i);
        findPaths(next, target, found);
    }
}
//! [pathsFind]

} // namespace

/// Why the print needs the plan: all ways from one to the other.
int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const RefT<Object> project = Example::makeProject();
    const Example::Objects tasks = Example::listOf(project, "tasks");

    //! [paths]
    GUI::PathListView list;
    list.setObjIconDB(Example::makeIcons());
    list.setFieldName("name");
    list.setTypeName(false);

    std::vector<Path> paths;
    const Path start(*Example::findNamed(tasks, "print"));
    findPaths(start, Example::findNamed(tasks, "plan"), paths);
    list.set(paths);
    //! [paths]

    list.resize(700, 120);
    list.show();
    return QApplication::exec();
}
