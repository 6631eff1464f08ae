#include "Project.h"
#include "Views.h"

#include <zrVOMGUI/widgets/FieldRealLineEdit.h>

#include <QApplication>
#include <QFormLayout>
#include <QListWidget>

using namespace ZR::VOM;
using ZR::cast;
using ZR::RefT;

//! [formInt]
/// The same for integers.
class FieldIntLineEdit : public GUI::FieldLineEditT<FieldInt> {
public:
    using FieldLineEditT::FieldLineEditT;
};
//! [formInt]

/// The hours and the rank of the tasks that are selected.
int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const RefT<Object> project = Example::makeProject();
    const Example::Objects tasks = Example::listOf(project, "tasks");

    QWidget form;
    //! [form]
    auto *const hours = new GUI::FieldRealLineEdit(&form);
    hours->setField("hours");
    hours->setPrec(4);

    auto *const rank = new FieldIntLineEdit(*hours, &form); // Edits the same objects.
    rank->setField("rank");
    rank->setCreateOnDemand(true); // Tasks have no rank until one is given.
    //! [form]

    auto *const list = new QListWidget(&form);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    for (RefT<Object> const &task : tasks)
        list->addItem(QString::fromStdString(cast<FieldString>(task->findField("name"))->get()));
    //! [formObjects]
    QObject::connect(list, &QListWidget::itemSelectionChanged, hours, [=] {
        GUI::FieldRealLineEdit::ObjPtrs selected;
        for (QModelIndex const &index : list->selectionModel()->selectedRows())
            selected.emplace_back(tasks[static_cast<std::size_t>(index.row())]);
        hours->setObjs(selected);
        rank->setObjs(selected); // Says that the shared list has changed.
    });
    //! [formObjects]
    list->setCurrentRow(1);

    auto *const layout = new QFormLayout(&form);
    layout->addRow("Tasks", list);
    layout->addRow("Hours", hours);
    layout->addRow("Rank", rank);
    form.resize(280, 220);
    form.show();
    return QApplication::exec();
}
