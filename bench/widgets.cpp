// What the small widgets cost on lists of 1,000, 10,000 and 100,000 paths or objects.
//
//     ./run bench widgets [--largest NUMBER]
//
// A row for each operation and size: the median time in milliseconds, and the growth from the size
// before, which is ten times smaller.
//
// - paths rebuilt, paths painted: the first paint after a list of paths was set, and the next ones.
// - few objects rebuilt: so many paths that all lead through the same thousand objects.
// - paths selected: a click, and the paint that shows it.
// - editor bound, unbound: an editor is shown on so many objects, and hidden.
// - pass in order: each object's value is read, in the list's order; for comparison.
// - change of one: of a field in the middle, with the update that follows.
// - change of the first: the same where the others have to be looked at.
// - set all: a value is confirmed.
// - created on all: the same on objects without the field.
// - all one by one: the host sets each field by itself beside the visible editor.
// - two editors: a value is confirmed in one of two editors on a shared list.

#include "support/Table.h"

#include "zrVOMGUI/foundation/vom/Field.h"
#include "zrVOMGUI/widgets/FieldWidgets.h"
#include "zrVOMGUI/widgets/PathListView.h"

#include <QApplication>
#include <QMouseEvent>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <numeric>

namespace {

using namespace ZR::VOM;
using ZR::PtrT;
using ZR::RefT;
using Objects = std::vector<RefT<Object>>;

constexpr int repeat = 9;

class Editor : public GUI::FieldRealLineEdit {
public:
    using FieldRealLineEdit::FieldRealLineEdit;
    using FieldRealLineEdit::onConfirm;

    void confirm(double value)
    {
        setText(QString::number(value));
        onConfirm();
    }
};

Objects makeObjects(unsigned num)
{
    Objects objects;
    objects.reserve(num);
    for (unsigned i = 0; i < num; ++i) {
        objects.emplace_back(new Object);
        addField<FieldString>(*objects.back(), "name", std::to_string(i));
        addField<FieldReal>(*objects.back(), "size", 1.0);
    }
    return objects;
}

void click(QWidget &widget, QPoint const &pos)
{
    QMouseEvent press(QEvent::MouseButtonPress, pos, widget.mapToGlobal(pos), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &press);
}

void measurePaths(unsigned num, Table &table)
{
    const Objects objects = makeObjects(num);
    std::vector<Path> paths;
    paths.reserve(num);
    for (unsigned i = 0; i < num; ++i) {
        FieldPtr &next = addField<FieldPtr>(*objects[i], "next", objects[(i + 1) % num]);
        paths.emplace_back(PtrT<Object>(objects[i]));
        paths.back().pushField(next);
        paths.back().pushValue(next);
    }
    GUI::PathListView view;
    view.setFieldName("name");
    view.resize(500, 700);
    view.show();
    table.add("paths rebuilt", num, timesOf(repeat, [&] {
                  view.set(paths);
                  view.grab();
              }));
    table.add("paths painted", num, timesOf(repeat, [&] { view.grab(); }));
    std::vector<Path> shared;
    shared.reserve(num);
    constexpr unsigned few = 1000;
    for (unsigned i = 0; i < num; ++i)
        shared.push_back(paths[i % few]);
    table.add("few objects rebuilt", num, timesOf(repeat, [&] {
                  view.set(shared);
                  view.grab();
              }));
    table.add("paths selected", num, timesOf(repeat, [&] {
                  click(*view.viewport(), {10, 350});
                  view.grab();
              }));
}

void measureEditor(unsigned num, Table &table)
{
    const Objects objects = makeObjects(num);
    const std::vector<PtrT<Object>> list(objects.begin(), objects.end());
    std::vector<FieldReal *> fields;
    fields.reserve(num);
    for (RefT<Object> const &object : objects)
        fields.push_back(ZR::cast<FieldReal>(object->findField("size")));
    Editor editor;
    editor.setField("size");
    editor.setObjs(list);
    table.add("editor bound", num, timesOf(repeat, [&] {
                  editor.hide();
                  editor.show();
              }));
    double sum = 0;
    table.add("pass in order", num, timesOf(repeat, [&] {
                  for (FieldReal const *field : fields)
                      sum += field->get();
              }));
    double value = sum;
    table.add("change of one", num, timesOf(repeat, [&] { fields[num / 2]->set(++value); }));
    editor.confirm(1);
    table.add("change of the first", num, timesOf(repeat, [&] { fields[0]->set(++value); }));
    table.add("set all", num, timesOf(repeat, [&] { editor.confirm(++value); }));
    table.add("all one by one", num, timesOf(repeat, [&] {
                  ++value;
                  for (FieldReal *field : fields)
                      field->set(value);
              }));
    Editor second(static_cast<GUI::ObjsManager &>(editor), nullptr);
    second.setField("size");
    second.show();
    table.add("two editors", num, timesOf(repeat, [&] { editor.confirm(++value); }));
    second.setCreateOnDemand(true);
    int name = 0;
    table.add("created on all", num, timesOf(3, [&] {
                  second.setField("field " + std::to_string(++name));
                  second.confirm(++value);
              }));
}

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    unsigned largest = 100000;
    if (argc == 3 && std::strcmp(argv[1], "--largest") == 0) {
        largest = static_cast<unsigned>(std::atoi(argv[2]));
    } else if (argc != 1) {
        std::fprintf(stderr, "bench_widgets [--largest NUMBER]\n");
        return 1;
    }
    Table table;
    for (unsigned num = 1000; num <= largest; num *= 10) {
        measurePaths(num, table);
        measureEditor(num, table);
    }
    return 0;
}
