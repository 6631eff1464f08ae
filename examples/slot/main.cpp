#include "Project.h"
#include "Views.h"

#include <zrVOMGUI/trees/ObjectTreeView.h>
#include <zrVOMGUI/widgets/ObjectView.h>

#include <QApplication>
#include <QFormLayout>

#include <algorithm>

using namespace ZR::VOM;
using ZR::cast;
using ZR::RefT;

//! [slot]
/// Takes people and nothing else.
class PersonSlot : public GUI::ObjectView {
public:
    using ObjectView::ObjectView;

protected:
    bool onCanDrop(Example::Objects const &objects, bool copied, QDropEvent &event) override
    {
        return objects.size() == 1 && cast<Example::Person>(objects.front()) &&
               ObjectView::onCanDrop(objects, copied, event);
    }
};
//! [slot]

//! [adopt]
/// Takes a person into the project who came from another program: nobody owns that object yet.
void adopt(RefT<Object> const &project, RefT<Object> const &person)
{
    const Example::Objects people = Example::listOf(project, "people");
    if (person && std::find(people.begin(), people.end(), person) == people.end())
        Example::place(*project->findField("people"), people.size(), {person});
}
//! [adopt]

/// Who does a task: a slot for one person, and the people to drag there.
int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const RefT<Object> project = Example::makeProject();
    const RefT<Object> task = Example::findNamed(Example::listOf(project, "tasks"), "draw");

    QWidget form;
    //! [slotField]
    auto *const slot = new PersonSlot(Example::makeExporter(), Example::makeImporter(), &form);
    slot->setObjIconDB(Example::makeIcons());
    slot->setFieldName("name");
    slot->setDragEnabled(true, false);
    slot->setDefaultDropAction(Qt::LinkAction); // Refers to the person, and makes no other one.

    auto *const worker = cast<FieldPtr>(task->findField("worker"));
    slot->setValue(worker->get());
    worker->sigSet.connect([=](auto const &) { slot->setValue(worker->get()); });
    slot->sigConfirm.connect([=](auto const &) {
        adopt(project, slot->getValue());
        worker->set(slot->getValue());
    });
    //! [slotField]

    auto *const people =
        new GUI::ObjectTreeView(Example::makeExporter(), Example::makeImporter(), &form);
    people->setObjIconDB(Example::makeIcons());
    people->setNameField("name");
    people->setTypeName(false);
    Example::showList(*people, *cast<MFieldRef>(project->findField("people")));

    auto *const layout = new QFormLayout(&form);
    layout->addRow("Worker", slot);
    layout->addRow("People", people);
    form.resize(280, 160);
    form.show();
    return QApplication::exec();
}
