#pragma once

// Not for hosts.

#include <QPoint>

#include <cstddef>
#include <string>
#include <vector>

class QDropEvent;
class QMimeData;

namespace ZR::GUI {

class TreeRow;

/// The virtual operations of a tree view, as its engine calls them. Each generation turns rows into
/// what it hands out; rows that the host owns, too, live through the call. None raises.
class TreeHooks {
public:
    virtual ~TreeHooks() = default;
    virtual QMimeData *makeMimeData(std::vector<TreeRow *> const &rows) = 0;
    virtual void onConfirm() = 0;
    virtual void onRequestContextMenu(TreeRow *row, QPoint const &pos) = 0;
    virtual void onEditRow(TreeRow &row) = 0;
    virtual void onEditRowConfirm(TreeRow &row, std::string const &text) = 0;
    virtual bool onCanDrop(QDropEvent &event, TreeRow *row, std::size_t index) = 0;
    virtual void onDrop(QDropEvent &event, TreeRow *row, std::size_t index) = 0;
};

} // namespace ZR::GUI
