#include "zrVOMGUI/foundation/util/Signal.h"

#include "zrVOMGUI/foundation/util/Class.h"

namespace ZR {

Signal::AnchorHolder::AnchorHolder(Anchor *held)
    : anchor(held)
{
    if (anchor)
        ++anchor->numHolders;
}

Signal::AnchorHolder::AnchorHolder(AnchorHolder const &other)
    : AnchorHolder(other.anchor)
{
}

Signal::AnchorHolder::~AnchorHolder()
{
    if (anchor && --anchor->numHolders == 0)
        delete anchor;
}

Signal::Connection::Connection(Signal &signal, unsigned slotId)
    : anchor(signal.anchor)
    , id(slotId)
{
}

void Signal::Connection::disconnect()
{
    // The slot's last act may destroy this handle.
    const AnchorHolder held = std::move(anchor);
    if (held.get() && held.get()->signal)
        held.get()->signal->disconnect(id);
}

} // namespace ZR
