#include "treeDrops.h"

#include "placeObjects.h"

namespace Explorer {

void insertDropped(PackageModel const &model, TreeDrop const &drop)
{
    if (!drop.field)
        return;
    const bool copies = drop.action == Qt::CopyAction && !drop.fromXml && !drop.copyObjs.empty();
    Objects const &objects = copies ? drop.copyObjs : drop.objs;
    if (drop.action == Qt::MoveAction)
        moveObjects(model, *drop.field, drop.index, objects);
    else
        placeObjects(*drop.field, drop.index, objects);
}

} // namespace Explorer
