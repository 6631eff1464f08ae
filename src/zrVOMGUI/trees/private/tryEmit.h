#pragma once

// Not for hosts.

#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/util/Signal.h"

// A macro of Qt.
#pragma push_macro("emit")
#undef emit

namespace ZR::VOM::GUI::Trees {

/// Emits a signal until a slot raises an exception, which is reported under the name `where`.
template <class Data>
void tryEmit(SignalT<Data> &signal, Data &sigData, char const *where)
{
    tryCatch(where, [&] { signal.emit(sigData); });
}

} // namespace ZR::VOM::GUI::Trees

#pragma pop_macro("emit")
