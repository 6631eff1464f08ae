// What the tree costs on one list of 10,000, 100,000 and 1,000,000 objects.
//
//     ./run bench trees [--largest OBJECTS]
//
// A row for each operation and size: the median time in milliseconds, and the growth from the size
// before, which is ten times smaller.
//
// - add closed: the list's owner becomes a top row.
// - open: the list's row is opened and painted for the first time, which makes all rows.
// - paint, scroll, hit test, select: with the list open; scroll goes anywhere and paints.
// - replace one, replace hundred: so many changes of one value each, and one paint.
// - closed objects: so many top rows, added and painted.
//
// The rows that begin with "v1" are of V1's item model, in a plain QTreeView that shows it:
//
// - v1 closed: as add closed, then a thousand times rowCount() and hasChildren() of the list.
// - v1 open, v1 paint, v1 replace one: as those of the tree. Replacing is updated and painted.
// - v1 replace hundred: a hundred values that lie apart, updated and painted.
// - v1 insert in front: a hundred values come at the front; the first paint after it, in which each
//   row is a hundred places from where it was found last.
// - v1 positions: a thousand times the index of a row anywhere, from its address.
// - v1 new list: each value is replaced; one insertion and one removal.
// - v1 burst: a link of an open row is set so many times in V1's view, which repaints once. More
//   repaints end the program.
//
// The last ones grow with the square of the size, since each run of rows is a change of its own.
// They are measured up to 100,000:
//
// - v1 reverse: the list is turned round, and each value moves by itself.
// - v1 every second: every second value is replaced.
// - v1 tops, v1 tops in front: so many top rows, and as many before them.
// - v1 tops die: of twice as many top rows the half in front dies, one after the other.

#include "support/Table.h"

#include "zrVOMGUI/trees/ObjectTreeView.h"
#include "zrVOMGUI/trees/v1/ObjectTreeView.h"

#include <QApplication>
#include <QEvent>
#include <QScrollBar>
#include <QTimer>
#include <QTreeView>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>

namespace {

using namespace ZR::VOM;
using ZR::PtrT;
using ZR::RefT;
using Objects = std::vector<RefT<Object>>;

class Tree : public GUI::ObjectTreeView {
public:
    using ObjectTreeView::makeRow;
};

Objects makeObjects(unsigned num)
{
    Objects objects;
    objects.reserve(num);
    for (unsigned i = 0; i < num; ++i) {
        objects.emplace_back(new Object);
        addField<FieldString>(*objects.back(), "name", std::to_string(i));
    }
    return objects;
}

std::unique_ptr<Tree> makeTree()
{
    auto tree = std::make_unique<Tree>();
    tree->setNameField("name");
    tree->resize(500, 700);
    tree->show();
    tree->grab();
    return tree;
}

void measure(unsigned num, Table &table)
{
    constexpr int repeat = 9;
    const RefT<Object> owner(new Object);
    MFieldRef &list = addField<MFieldRef>(*owner, "list", makeObjects(num));
    Path path{PtrT<Object>(owner)};
    path.pushField(list);

    table.add("add closed", num, timesOf(repeat, [&] {
                  const auto tree = makeTree();
                  tree->addRow(owner, 0);
                  tree->grab();
              }));
    std::unique_ptr<Tree> tree;
    table.add("open", num, timesOf(1, [&] {
                  tree = makeTree();
                  tree->addRow(owner, 0);
                  tree->makeRow(Path(PtrT<Object>(owner)), false)->setOpen(true);
                  tree->makeRow(path, false)->setOpen(true);
                  tree->grab();
              }));
    table.add("paint", num, timesOf(repeat, [&] { tree->grab(); }));
    std::mt19937 generator(1);
    QScrollBar &bar = *tree->verticalScrollBar();
    table.add("scroll", num, timesOf(repeat, [&] {
                  bar.setValue(int(generator() % unsigned(bar.maximum() + 1)));
                  tree->grab();
              }));
    table.add("hit test", num, timesOf(repeat, [&] {
                  const int y = int(generator() % unsigned(bar.maximum() + 1));
                  tree->ZR::GUI::TreeView::setSel({tree->findRow({10, y})});
              }));
    table.add("replace one", num, timesOf(3, [&] {
                  list.replace(num / 2, 1, makeObjects(1));
                  tree->grab();
              }));
    table.add("replace hundred", num, timesOf(3, [&] {
                  for (unsigned i = 0; i < 100; ++i)
                      list.replace(i, 1, makeObjects(1));
                  tree->grab();
              }));
    const std::vector<PtrT<Object>> closed(list.getAll().begin(), list.getAll().end());
    tree.reset();
    table.add("closed objects", num, timesOf(1, [&] {
                  const auto many = makeTree();
                  many->addRows(closed, 0);
                  many->grab();
              }));
}

/// The list's row.
QModelIndex showList(GUI::V1::ObjectTreeModel &model, RefT<Object> const &owner)
{
    model.setFieldName("name");
    model.addRow(PtrT<Object>(owner), 0);
    const QModelIndex top = model.index(0, 0, model.index(0, 0));
    model.fetchMore(top);
    return model.index(0, 0, top);
}

void measureV1Closed(RefT<Object> const &owner, unsigned num, Table &table)
{
    constexpr int repeat = 9;
    table.add("v1 closed", num, timesOf(repeat, [&] {
                  GUI::V1::ObjectTreeModel model;
                  const QModelIndex index = showList(model, owner);
                  for (int i = 0; i < 1000; ++i)
                      if (model.rowCount(index) != 0 || !model.hasChildren(index))
                          std::abort();
              }));
}

/// How often a widget is painted.
class Paints : public QObject {
public:
    int num = 0;

private:
    bool eventFilter(QObject *, QEvent *event) override
    {
        num += event->type() == QEvent::Paint;
        return false;
    }
};

void measureV1Burst(unsigned num, Table &table)
{
    const RefT<Object> owner(new Object);
    const Objects two = makeObjects(2);
    FieldPtr &link = addField<FieldPtr>(*owner, "link", PtrT<Object>(two[0]));
    GUI::V1::ObjectTreeView view;
    view.addRow(PtrT<Object>(owner), 0);
    view.resize(500, 700);
    view.show();
    view.expandRows({0, 0, -1, -1});
    const auto settle = [] {
        // Qt's item views lay new rows out by a timer of their own.
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents,
                                            1);
    };
    QTimer alarm;
    alarm.start(1);
    settle();
    Paints paints;
    view.viewport()->installEventFilter(&paints);
    table.add("v1 burst", num, timesOf(1, [&] {
                  for (unsigned i = 0; i < num; ++i)
                      link.set(PtrT<Object>(two[(i + 1) % 2]));
                  settle();
              }));
    if (paints.num != 1) {
        std::fprintf(stderr, "%d repaints of a burst\n", paints.num);
        std::exit(1);
    }
}

void measureV1(unsigned num, Table &table)
{
    constexpr int repeat = 9;
    const RefT<Object> owner(new Object);
    MFieldRef &list = addField<MFieldRef>(*owner, "list", makeObjects(num));
    measureV1Closed(owner, num, table);

    GUI::V1::ObjectTreeModel model;
    const QPersistentModelIndex listIndex = showList(model, owner);
    QTreeView view;
    view.setUniformRowHeights(true);
    view.setModel(&model);
    view.setRootIndex(model.index(0, 0));
    view.resize(500, 700);
    view.show();
    view.expand(listIndex.parent());
    const auto updateAndPaint = [&] {
        model.update();
        view.grab();
    };
    table.add("v1 open", num, timesOf(1, [&] {
                  view.expand(listIndex);
                  view.grab();
              }));
    table.add("v1 paint", num, timesOf(repeat, [&] { view.grab(); }));
    table.add("v1 replace one", num, timesOf(3, [&] {
                  list.replace(num / 2, 1, makeObjects(1));
                  updateAndPaint();
              }));
    table.add("v1 replace hundred", num, timesOf(1, [&] {
                  for (unsigned i = 0; i < 100; ++i)
                      list.replace(i * (num / 100), 1, makeObjects(1));
                  updateAndPaint();
              }));
    list.replace(0, 0, makeObjects(100));
    model.update();
    table.add("v1 insert in front", num, timesOf(1, [&] { view.grab(); }));
    std::mt19937 generator(1);
    table.add(
        "v1 positions", num, timesOf(repeat, [&] {
            for (int i = 0; i < 1000; ++i) {
                const int row = int(generator() % num);
                if (model.getIndex(model.getObjRow(model.index(row, 0, listIndex)).row).row() !=
                    row)
                    std::abort();
            }
        }));
    table.add("v1 new list", num, timesOf(1, [&] {
                  list.replace(0, list.getNum(), makeObjects(num));
                  updateAndPaint();
              }));
}

/// Up to here what costs the square of the size is bearable.
constexpr unsigned largestSquare = 100000;

void measureV1Runs(unsigned num, Table &table)
{
    const RefT<Object> owner(new Object);
    MFieldRef &list = addField<MFieldRef>(*owner, "list", makeObjects(num));
    GUI::V1::ObjectTreeModel model;
    model.fetchMore(showList(model, owner));
    table.add("v1 reverse", num, timesOf(1, [&] {
                  list.replace(0, num, Objects(list.getAll().rbegin(), list.getAll().rend()));
                  model.update();
              }));
    Objects values = list.getAll();
    for (std::size_t i = 0; i < num; i += 2)
        values[i] = RefT<Object>(new Object);
    table.add("v1 every second", num, timesOf(1, [&] {
                  list.replace(0, num, values);
                  model.update();
              }));
}

void measureV1Tops(unsigned num, Table &table)
{
    GUI::V1::ObjectTreeModel model;
    const Objects stay = makeObjects(num);
    Objects die = makeObjects(num);
    table.add("v1 tops", num, timesOf(1, [&] { model.addRows({stay.begin(), stay.end()}, 0); }));
    table.add("v1 tops in front", num, timesOf(1, [&] {
                  model.addRows({die.begin(), die.end()}, 0);
              }));
    table.add("v1 tops die", num, timesOf(1, [&] { die.clear(); }));
}

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    unsigned largest = 1000000;
    if (argc == 3 && std::strcmp(argv[1], "--largest") == 0) {
        largest = static_cast<unsigned>(std::atoi(argv[2]));
    } else if (argc != 1) {
        std::fprintf(stderr, "bench_trees [--largest OBJECTS]\n");
        return 1;
    }
    Table table;
    for (unsigned num = 10000; num <= largest; num *= 10)
        measure(num, table);
    for (unsigned num = 10000; num <= largest; num *= 10) {
        measureV1(num, table);
        measureV1Burst(num, table);
    }
    for (unsigned num = 10000; num <= std::min(largest, largestSquare); num *= 10) {
        measureV1Runs(num, table);
        measureV1Tops(num, table);
    }
    return 0;
}
