#pragma once

// Not for hosts.

#include "zrVOMGUI/trees/v1/ObjectTreeModel.h"

#include <QPointer>

namespace ZR::VOM::GUI::V1 {

/// From the first to the second signal of an insertion, a move or a removal of rows; or while a row
/// hears of a field. Lies on the stack, and outlives the model if a slot destroys it.
class ObjectTreeModel::Change {
public:
    using Counter = unsigned ObjectTreeModel::*;

    explicit Change(ObjectTreeModel &changedModel,
                    Counter newCounter = &ObjectTreeModel::changesUnderWay)
        : model(&changedModel)
        , counter(newCounter)
    {
        ++(model->*counter);
    }
    ~Change() { end(); }
    Change(Change const &) = delete;
    Change &operator=(Change const &) = delete;

    /// Before the second signal: rows are whole again.
    void end()
    {
        if (model)
            --(model.data()->*counter);
        model.clear();
    }

private:
    QPointer<ObjectTreeModel> model;
    const Counter counter;
};

} // namespace ZR::VOM::GUI::V1
