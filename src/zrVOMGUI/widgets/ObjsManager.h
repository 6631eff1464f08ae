#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/vom/Object.h"

#include <memory>
#include <vector>

namespace ZR::VOM::GUI {

/// Base of what works on a list of objects: its own list, or one that it shares with others.
///
/// The list watches its objects and doesn't keep them alive; an entry of an object that died reads
/// null. GUI thread only.
class ZRVOMGUI_EXPORT ObjsManager {
public:
    using Object = VOM::Object;
    using ObjPtrs = std::vector<PtrT<Object>>;

    /// The list in use.
    ObjPtrs const &getObjs() const { return *objsInUse; }

    /// Replaces the own list, and says that it has changed.
    /// KEPT: somebody else's list isn't changed. For a manager over one, this only says that the
    /// list has changed, whatever the argument, for hosts that keep one list for many editors.
    void setObjs(ObjPtrs const &newObjs);

    ObjsManager &operator=(ObjsManager const &) = delete;

protected:
    /// Over an own list, which is empty.
    ObjsManager();
    /// Over the caller's list, which isn't owned and must outlive this.
    explicit ObjsManager(ObjPtrs &outsideObjs);
    /// Over the list of `other`. If that is its own, it lives as long as one of the two does.
    ObjsManager(ObjsManager &other);
    virtual ~ObjsManager();

    /// The list has changed. Does nothing here. May destroy this.
    virtual void onSetObjs();

private:
    std::shared_ptr<ObjPtrs> ownObjs; // The list in use, unless that is from outside.
    ObjPtrs *objsInUse;               // Not owned.
    bool isOwner;
};

} // namespace ZR::VOM::GUI
