#include "SignalLog.h"

#include "PackageGraph.h"

#include "zrVOMGUI/trees/ObjectTreeView.h"
#include "zrVOMGUI/trees/v1/ObjectTreeView.h"
#include "zrVOMGUI/trees/v2/ObjectTreeView.h"
#include "zrVOMGUI/widgets/ObjectView.h"

#include <QFontDatabase>

#include <map>

namespace Explorer {

namespace {

using ZR::VOM::Path;

/// How many there are, and the names of the first.
QString describe(Objects const &objects)
{
    constexpr std::size_t maxNames = 6;
    QStringList names;
    for (std::size_t i = 0; i < objects.size() && i < maxNames; ++i)
        if (auto const *const item = ZR::cast<Item>(objects[i]))
            names << QString::fromStdString(item->getName());
    if (objects.size() > maxNames)
        names << QString::fromUtf8("…");
    return SignalLog::tr("%1 objects  %2").arg(objects.size()).arg(names.join(", "));
}

/// What is dropped, the field that takes it, and where in it.
QString describeDrop(Qt::DropAction dropped, Objects const &objs, Path const &path,
                     std::size_t index)
{
    static std::map<Qt::DropAction, char const *> const actions = {
        {Qt::CopyAction, QT_TRANSLATE_NOOP("Explorer::SignalLog", "copy")},
        {Qt::MoveAction, QT_TRANSLATE_NOOP("Explorer::SignalLog", "move")},
        {Qt::LinkAction, QT_TRANSLATE_NOOP("Explorer::SignalLog", "link")}};
    const auto action = actions.find(dropped);
    const auto field = path.getLast().field;
    QString place = field ? QString::fromStdString(field->name) : QString();
    if (index != std::size_t(-1))
        place += QString("[%1]").arg(index);
    return QString("%1 %2 %3 %4")
        .arg(action == actions.end() ? QString() : SignalLog::tr(action->second), describe(objs),
             QString::fromUtf8("→"), place);
}

} // namespace

SignalLog::SignalLog(QWidget *parent)
    : QPlainTextEdit(parent)
{
    constexpr int maxLines = 2000;
    setReadOnly(true);
    setMaximumBlockCount(maxLines);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setPlaceholderText(tr("Signals of the widgets appear here."));
}

void SignalLog::watch(PackageGraph &graph)
{
    graph.sigSel.connect(
        [this, &graph](auto const &) { write("sigSel", describe(graph.getSel())); });
    graph.sigInsertNode.connect(
        [this](auto const &sigData) { write("sigInsertNode", describe(*sigData.objs)); });
    graph.sigRemoveNode.connect(
        [this](auto const &sigData) { write("sigRemoveNode", describe(*sigData.objs)); });
    graph.sigPopupMenu.connect([this](auto const &sigData) {
        write("sigPopupMenu", QString("(%1, %2)").arg(sigData.x).arg(sigData.y));
    });
}

template <class Tree>
void SignalLog::watchRows(Tree &tree)
{
    tree.sigRowMenu.connect([this](auto const &sigData) {
        write("sigRowMenu", sigData.row ? sigData.row->getText() : QString());
    });
    tree.sigEditRowError.connect([this](auto const &sigData) {
        write("sigEditRowError", QString::fromStdString(sigData.text) + "  " +
                                     QString::fromUtf8(sigData.error.what()));
    });
    tree.sigDrop.connect([this](auto const &drop) {
        write("sigDrop", describeDrop(drop.action, drop.objs, drop.path, drop.index));
    });
    tree.sigClear.connect([this](auto const &) { write("sigClear", {}); });
}

void SignalLog::watch(ZR::VOM::GUI::ObjectTreeView &tree)
{
    watchRows(tree);
}

void SignalLog::watch(ZR::VOM::GUI::V2::ObjectTreeView &tree)
{
    watchRows(tree);
}

void SignalLog::watch(ZR::VOM::GUI::V1::ObjectTreeView &tree)
{
    tree.sigSelChange.connect([this, &tree](auto const &) {
        std::vector<Path> paths;
        tree.getSel(paths);
        Objects objects;
        for (Path const &path : paths)
            if (const ZR::PtrT<ZR::VOM::Object> object = path.getObj())
                objects.emplace_back(object);
        write("sigSelChange", describe(objects));
    });
    tree.sigDrop.connect([this](auto const &drop) {
        write("sigDrop",
              describeDrop(drop.action, *drop.objs, *drop.fieldPath, std::size_t(drop.index)));
    });
}

void SignalLog::watch(ZR::VOM::GUI::ObjectView &slot)
{
    slot.sigConfirm.connect([this, &slot](auto const &) {
        auto const *const item = ZR::cast<Item>(slot.getValue());
        write("sigConfirm", item ? QString::fromStdString(item->getName()) : tr("none"));
    });
}

void SignalLog::write(QString const &signal, QString const &what)
{
    constexpr int column = 17;
    appendPlainText(signal.leftJustified(column) + what);
}

} // namespace Explorer
