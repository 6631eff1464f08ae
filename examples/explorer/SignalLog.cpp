#include "SignalLog.h"

#include "PackageGraph.h"

#include <QFontDatabase>

namespace Explorer {

namespace {

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

} // namespace

SignalLog::SignalLog(PackageGraph &shownGraph, QWidget *parent)
    : QPlainTextEdit(parent)
{
    constexpr int maxLines = 2000;
    setReadOnly(true);
    setMaximumBlockCount(maxLines);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setPlaceholderText(tr("Signals of the graph appear here."));
    PackageGraph &graph = shownGraph;
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

void SignalLog::write(QString const &signal, QString const &what)
{
    constexpr int column = 15;
    appendPlainText(signal.leftJustified(column) + what);
}

} // namespace Explorer
