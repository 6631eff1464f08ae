#include "zrVOMGUI/widgets/ObjsManager.h"

namespace ZR::VOM::GUI {

ObjsManager::ObjsManager()
    : ownObjs(std::make_shared<ObjPtrs>())
    , objsInUse(ownObjs.get())
    , isOwner(true)
{
}

ObjsManager::ObjsManager(ObjPtrs &outsideObjs)
    : objsInUse(&outsideObjs)
    , isOwner(false)
{
}

ObjsManager::ObjsManager(ObjsManager &other)
    : ownObjs(other.ownObjs)
    , objsInUse(other.objsInUse)
    , isOwner(false)
{
}

ObjsManager::~ObjsManager() = default;

void ObjsManager::setObjs(ObjPtrs const &newObjs)
{
    if (isOwner)
        *objsInUse = newObjs;
    onSetObjs();
}

void ObjsManager::onSetObjs() {}

} // namespace ZR::VOM::GUI
