#pragma once

#include "PackageModel.h"

#include "zrVOMGUI/foundation/util/Error.h"

#include <QString>

namespace Explorer {

/// What any generation of trees tells of a drop.
struct TreeDrop {
    Qt::DropAction action;
    bool fromXml; ///< What came from another program is new already.
    Objects const &objs;
    Objects const &copyObjs;
    ZR::RefT<ZR::VOM::Field> field; ///< Null when it has gone.
    std::size_t index;
};

/// Copies, moves and links as the user asked. Raises an Error when the model refuses.
void insertDropped(PackageModel const &model, TreeDrop const &drop);

/// Runs an edit of the model. Returns why it was refused; nothing when it wasn't.
template <class Edit>
QString tryEdit(Edit &&edit)
{
    try {
        edit();
    } catch (ZR::Error const &error) {
        return QString::fromUtf8(error.what());
    }
    return {};
}

} // namespace Explorer
