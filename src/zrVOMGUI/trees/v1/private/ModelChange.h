#pragma once

// Not for hosts.

#include "zrVOMGUI/trees/v1/ObjectTreeModel.h"

#include <QPointer>

namespace ZR::VOM::GUI::V1 {

/// Counts what is under way in a model. Lies on the stack, and outlives the model if a slot
/// destroys it.
class ObjectTreeModel::Count {
public:
    using Counter = unsigned ObjectTreeModel::*;

    Count(ObjectTreeModel &countingModel, Counter newCounter)
        : model(&countingModel)
        , counter(newCounter)
    {
        ++(model->*counter);
    }
    ~Count() { end(); }
    Count(Count const &) = delete;
    Count &operator=(Count const &) = delete;

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

/// From the first to the second signal of an insertion, a move, a removal or a reset of rows. It
/// ends before the second: rows are whole again then.
class ObjectTreeModel::Change : public Count {
public:
    explicit Change(ObjectTreeModel &changedModel)
        : Count(changedModel, &ObjectTreeModel::changesUnderWay)
    {
    }
};

/// While a row hears of a field that comes or goes.
class ObjectTreeModel::FieldNews : public Count {
public:
    explicit FieldNews(ObjectTreeModel &hearingModel)
        : Count(hearingModel, &ObjectTreeModel::fieldNews)
    {
    }
};

} // namespace ZR::VOM::GUI::V1
