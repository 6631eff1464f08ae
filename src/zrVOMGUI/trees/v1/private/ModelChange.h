#pragma once

// Not for hosts.

#include "zrVOMGUI/trees/v1/ObjectTreeModel.h"

#include <QPointer>

namespace ZR::VOM::GUI::V1 {

/// From the first to the second signal of an insertion, a move or a removal of rows. Lies on the
/// stack, and outlives the model if a slot destroys it.
class ObjectTreeModel::Change {
public:
    explicit Change(ObjectTreeModel &changedModel)
        : model(&changedModel)
    {
        ++model->changesUnderWay;
    }
    ~Change() { end(); }
    Change(Change const &) = delete;
    Change &operator=(Change const &) = delete;

    /// Before the second signal: rows are whole again.
    void end()
    {
        if (model)
            --model->changesUnderWay;
        model.clear();
    }

private:
    QPointer<ObjectTreeModel> model;
};

} // namespace ZR::VOM::GUI::V1
