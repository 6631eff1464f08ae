#include "zrVOMGUI/transfer/canDrop.h"

#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/vom/canMove.h"
#include "zrVOMGUI/foundation/vom/linkFields.h"

#include <algorithm>

namespace ZR::VOM::GUI {

namespace {

using Objects = std::vector<RefT<Object>>;

/// KEPT: the action plays no part. Hosts link a single field by any drop, whatever key is held.
template <class Type>
bool takesOne(FieldT<Type> &field, Objects const &objs)
{
    return objs.size() == 1 && field.canSet(typename Type::Value(objs.front()));
}

template <class Type>
bool takesList(MFieldT<Type> &field, Qt::DropAction action, Objects const &objs, std::size_t index)
{
    switch (action) {
    case Qt::CopyAction:
    case Qt::LinkAction:
        return field.canReplace(std::min(index, field.getNum()), 0, {objs.begin(), objs.end()});
    case Qt::MoveAction:
        // KEPT: a position beyond the end isn't taken for the end. A move is carried out at the
        // very position that was asked about.
        return canMove(objs, field, index);
    default:
        return false;
    }
}

} // namespace

bool canDrop(Qt::DropAction action, std::vector<RefT<Object>> const &objs, RefT<Field> const &field,
             std::size_t index)
{
    if (!field)
        return false;
    bool takes = false;
    tryCatch("ZR::VOM::GUI::canDrop", [&] {
        visitLinkField(*field, [&](auto &linkField) {
            if constexpr (std::is_base_of_v<MField, std::decay_t<decltype(linkField)>>)
                takes = takesList(linkField, action, objs, index);
            else
                takes = takesOne(linkField, objs);
        });
    });
    return takes;
}

} // namespace ZR::VOM::GUI
