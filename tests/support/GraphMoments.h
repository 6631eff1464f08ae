#pragma once

// Moments in the life of a view at which a host, or the model, may do something awkward.

#include "support/Things.h"
#include "zrVOMGUI/graph/ObjectGraphView.h"

#include <functional>
#include <memory>
#include <vector>

namespace ZR::VOM::GUI {

using Act = std::function<void()>;

/// Calls a host's function whenever an icon is asked for.
class AskingDB : public ObjectIconDB {
public:
    QIcon find(RefT<VOM::Object> const &obj) const override
    {
        if (act)
            act();
        return ObjectIconDB::find(obj);
    }
    Act act;
};

/// a > b > c > d by "next", a long link from a to d by "list", and one back from d to a. d owns e,
/// and e links to b. a to d are shown, and a, b, e and f selected.
struct MisuseScene {
    MisuseScene();

    RefT<VOM::Object> &operator[](char letter) { return things[std::size_t(letter - 'a')]; }

    /// Lets some time pass, and the nodes and the scroll bars make a step.
    void advance(double seconds);
    /// A field that is about to go is followed again when links are rebuilt in that moment, until
    /// they are next rebuilt.
    void rebuildLinks();
    void paint()
    {
        if (view)
            view->viewport()->grab();
    }

    Things things; // Null where one died.
    RefT<AskingDB> icons;
    std::unique_ptr<ObjectGraphView> view;
};

/// A moment in a view's life, and how to bring it about.
struct Moment {
    char const *name;
    void (*bring)(MisuseScene &, Act const &);
    bool mayDestroyView; ///< Whether the host may destroy the view then.
};

std::vector<Moment> const &moments();

} // namespace ZR::VOM::GUI
