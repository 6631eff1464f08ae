#pragma once

// Not for hosts: the base of all rows of the trees that are built of rows.

#include "zrVOMGUI/trees/private/RowWatch.h"
#include "zrVOMGUI/trees/private/RowsT.h"

#include <memory>
#include <type_traits>
#include <vector>

namespace ZR::VOM::GUI::Trees {

template <class T>
T *plain(T *row)
{
    return row;
}

template <class T>
T *plain(std::shared_ptr<T> const &row)
{
    return row.get();
}

/// An empty link, and what all rows have in common. A generation adds the operations by which its
/// setters reach the rows.
template <class View>
class VoidRowT : public View::Row {
public:
    using Watch = RowWatch;
    using Row = typename View::Row;
    using RowHandle = typename View::RowHandle;
    using VoidRow = typename View::VoidRow;

    VoidRowT(View &view, typename View::Traits::RowArgument parent)
        : Row(view, parent)
    {
    }
    ~VoidRowT() override { RowWatch::tellGone(watches); }

    void onUpdate(bool wanted) override { Row::onUpdate(wanted); }

    /// The path that leads to this row.
    virtual Path getPath()
    {
        std::vector<VoidRow *> rows;
        for (auto *row = static_cast<VoidRow *>(this); row; row = row->getVoidParent())
            rows.push_back(row);
        Path path{PtrT<VOM::Object>()};
        for (; !rows.empty(); rows.pop_back())
            rows.back()->extendPath(path);
        return path;
    }

    /// The row that the path leads to from its step `step` on, which is this row's; null if there
    /// is none. Rows on the way are opened for as long as they make their children, and for good
    /// when `keepOpen`.
    virtual RowHandle makeRow(Path const &path, std::size_t step, bool keepOpen)
    {
        return RowsT<View>::followPath(static_cast<VoidRow &>(*this), path, step, keepOpen);
    }

    RowHandle getHandle()
    {
        if constexpr (std::is_pointer_v<RowHandle>)
            return this;
        else
            return this->shared_from_this();
    }

    /// A child that exists; null for other positions.
    VoidRow *getVoidChild(std::size_t position) const
    {
        return dynamic_cast<VoidRow *>(plain(this->getChildRow(position)));
    }

protected:
    /// Null while the view is torn down.
    View *getView() const
    {
        return this->isViewAlive() ? static_cast<View *>(this->getTreeView()) : nullptr;
    }

    VoidRow *getVoidParent() { return dynamic_cast<VoidRow *>(plain(this->getParent())); }

    void repaintView()
    {
        if (View *const view = getView())
            view->viewport()->update();
    }

private:
    friend RowWatch;
    RowWatch *watches = nullptr;
};

} // namespace ZR::VOM::GUI::Trees
