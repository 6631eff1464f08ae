#pragma once

#include <QAbstractItemModel>

#include <string>

namespace ZR::VOM::GUI {

/// The rows of an item model as text: a line for each row below `parent`, down to a depth, with a
/// dot for each level above it, its text, and a + if it has children whether fetched or not.
inline std::string dumpRows(QAbstractItemModel const &model, QModelIndex const &parent,
                            int depth = 100, std::size_t level = 0)
{
    std::string text;
    for (int row = 0; depth > 0 && row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        text += std::string(level, '.') + index.data().toString().toStdString();
        if (model.hasChildren(index))
            text += '+';
        text += '\n' + dumpRows(model, index, depth - 1, level + 1);
    }
    return text;
}

/// Fetches all rows below `parent`, down to a depth.
inline void fetchRows(QAbstractItemModel &model, QModelIndex const &parent, int depth)
{
    if (depth == 0)
        return;
    if (model.canFetchMore(parent))
        model.fetchMore(parent);
    for (int row = 0; row < model.rowCount(parent); ++row)
        fetchRows(model, model.index(row, 0, parent), depth - 1);
}

} // namespace ZR::VOM::GUI
