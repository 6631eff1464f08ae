#pragma once

// Not for hosts.

#include "zrVOMGUI/foundation/gui/private/TreeEngine.h"
#include "zrVOMGUI/foundation/util/Error.h"

namespace ZR::GUI {

/// Calls the virtual operations of one generation of views, and keeps what they raise from Qt.
template <class View>
class TreeHooksT final : public TreeHooks {
public:
    TreeHooksT(View &treeView, char const *viewName)
        : view(treeView)
        , name(viewName)
    {
    }

    QMimeData *makeMimeData(std::vector<TreeRow *> const &rows) override
    {
        std::vector<Handle> handles;
        for (TreeRow *const row : rows)
            handles.push_back(View::handleOf(row));
        QMimeData *result = nullptr;
        guard("makeMimeData", [&] { result = view.makeMimeData(handles); });
        return result;
    }

    void onConfirm() override
    {
        guard("onConfirm", [&] { view.onConfirm(); });
    }

    void onRequestContextMenu(TreeRow *row, QPoint const &pos) override
    {
        const Handle handle = View::handleOf(row);
        guard("onRequestContextMenu", [&] { view.onRequestContextMenu(handle, pos); });
    }

    void onEditRow(TreeRow &row) override
    {
        const Handle handle = View::handleOf(&row);
        guard("onEditRow", [&] { view.onEditRow(*handle); });
    }

    void onEditRowConfirm(TreeRow &row, std::string const &text) override
    {
        const Handle handle = View::handleOf(&row);
        guard("onEditRowConfirm", [&] { view.onEditRowConfirm(*handle, text); });
    }

    bool onCanDrop(QDropEvent &event, TreeRow *row, std::size_t index) override
    {
        const Handle handle = View::handleOf(row);
        bool result = false;
        guard("onCanDrop", [&] { result = view.onCanDrop(event, handle, index); });
        return result;
    }

    void onDrop(QDropEvent &event, TreeRow *row, std::size_t index) override
    {
        const Handle handle = View::handleOf(row);
        guard("onDrop", [&] { view.onDrop(event, handle, index); });
    }

private:
    using Handle = typename View::RowHandle;

    /// Nothing of this object is read after the call, which may destroy it with its view.
    template <class Call>
    void guard(char const *operation, Call const &call) const
    {
        tryCatch(std::string(name) + "::" + operation, call);
    }

    View &view;
    char const *const name;
};

} // namespace ZR::GUI
