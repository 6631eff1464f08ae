#pragma once

#include "zrVOMGUI/foundation/gui/export.h"

namespace ZR::GUI {

/// Lets getLocText() ask Qt's translators.
///
/// Call once, after the application object is there, and install QTranslators as usual. A text
/// "[KEY]default" is looked up by its key, as the source text KEY in the given context; a text
/// without a key by all of itself. What no translator knows reads as without a translation.
///
/// Every text is asked for once and then remembered, until the application hears of another
/// language (QEvent::LanguageChange, which Qt sends when a translator is installed or removed). A
/// pointer that getLocText() answered stays valid until the program ends, also over a change of the
/// language. Texts on the screen aren't drawn anew by themselves.
///
/// Another call puts another context in place. Ends with the application object: from then on
/// getLocText() translates nothing. Does nothing when there is no application. GUI thread only, and
/// so is getLocText() from then on.
ZRGUI_EXPORT void installQtTranslation(char const *context = "zrVOMGUI");

} // namespace ZR::GUI
