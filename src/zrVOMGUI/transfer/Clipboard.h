#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/util/Bool.h"
#include "zrVOMGUI/foundation/util/Ptr.h"

#include <cstddef>
#include <string>
#include <vector>

namespace ZR {
template <class T>
class Matrix4x4T;
}

namespace ZR::VOM {
class Exporter;
class Object;
namespace Xml {
class Importer;
}
} // namespace ZR::VOM

/// Values and objects on the system's clipboard, in the formats of MimeData.h. The selection of X
/// isn't touched.
///
/// GUI thread only, and only beside a QGuiApplication: without one nothing is copied or pasted.
/// Nothing here raises an exception. Other programs get what was copied from the event loop of this
/// one, and it is gone when this process ends.
namespace ZR::VOM::GUI::Clipboard {

/// \name Copying
/// What was on the clipboard before is gone. Every value goes with a text for other programs. Note
/// that a C++ `bool` is taken as an int; `copy(Bool(value))` copies a truth value.
/// @{
ZRVOMGUI_EXPORT void copy(Bool value);
ZRVOMGUI_EXPORT void copy(int value);
ZRVOMGUI_EXPORT void copy(double const &value);
/// As text alone, up to the first zero byte.
ZRVOMGUI_EXPORT void copy(std::string const &value);

/// What createMimeData() says of large and null arrays holds here: they leave the clipboard empty.
ZRVOMGUI_EXPORT void copy(std::size_t count, Bool const *values);
ZRVOMGUI_EXPORT void copy(std::size_t count, int const *values);
ZRVOMGUI_EXPORT void copy(std::size_t count, double const *values);
ZRVOMGUI_EXPORT void copy(std::size_t count, std::string const *values);

/// Can't be pasted again: it is for other programs.
ZRVOMGUI_EXPORT void copyMat(Matrix4x4T<double> const &value);

/// Copies a list of objects, to be pasted as references in this process and, if `exporter` can, as
/// new objects in others. `exporter` may be empty.
///
/// The objects are kept alive until something else takes the clipboard, whichever program does.
/// The list is copied; the caller's may go.
ZRVOMGUI_EXPORT void copyObjs(RefT<Exporter> const &exporter,
                              std::vector<RefT<Object>> const &objs);
/// @}

/// \name Pasting
/// Each answers whether it stored what it found. It doesn't when the clipboard lacks the type, and
/// its argument stays then. Texts aren't converted: digits alone are no int.
/// @{

/// False for an empty payload, too. Of one that is too short its bytes are stored, and the rest of
/// the value stays; of one that is too long the first bytes are.
ZRVOMGUI_EXPORT bool paste(Bool &value);
ZRVOMGUI_EXPORT bool paste(int &value);
ZRVOMGUI_EXPORT bool paste(double &value);
/// The text, up to the first zero byte. Every value that was copied here has one.
ZRVOMGUI_EXPORT bool paste(std::string &value);

/// Bytes behind the last whole value are passed over.
ZRVOMGUI_EXPORT bool paste(std::vector<Bool> &values);
ZRVOMGUI_EXPORT bool paste(std::vector<int> &values);
ZRVOMGUI_EXPORT bool paste(std::vector<double> &values);
/// Tells only that there are strings: a list of empty ones, one for each 32 bytes of the payload.
/// To get the strings themselves, call getFromMimeData() with the clipboard's QMimeData.
ZRVOMGUI_EXPORT bool paste(std::vector<std::string> &values);

/// References to the objects that this process copied; false for those of another.
ZRVOMGUI_EXPORT bool pasteObjs(std::vector<RefT<Object>> &objs);
/// New objects of the XML. Whoever wants references where there are some tries the other one first.
ZRVOMGUI_EXPORT bool pasteObjs(std::vector<RefT<Object>> &objs, Xml::Importer &importer);
/// @}

} // namespace ZR::VOM::GUI::Clipboard
