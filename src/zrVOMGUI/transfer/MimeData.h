#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/util/Ptr.h"

#include <cstddef>
#include <string>
#include <vector>

class QMimeData;

namespace ZR::VOM {
class Exporter;
class Object;
namespace Xml {
class Importer;
}
} // namespace ZR::VOM

namespace ZR::VOM::GUI {

// Objects and values as MIME data, for the clipboard and for drag and drop. MimeTypes.h lists the
// types and what lies under each.
//
// GUI thread only. Nothing here raises an exception, neither for what comes from outside nor when
// an exporter or importer does: that one counts as failed, and its exception goes to the error sink
// (setErrorSink). What can't be read reads as absent, so that a caller can try the next format.

/// \name Writers of arrays
/// A new QMimeData with the values under the array's type, then under its sized type, and as text
/// for other programs. The caller owns it.
///
/// An array whose payload would take 2 GiB or more is offered under no type at all, and a text of
/// 1 GiB or more isn't offered. A null `values` with a count is a mistake of the caller's: an
/// assertion tells, and without assertions the array counts as empty.
/// @{
ZRVOMGUI_EXPORT QMimeData *createMimeData(std::size_t count, int const *values);
ZRVOMGUI_EXPORT QMimeData *createMimeData(std::size_t count, double const *values);
/// The text has each string and a line feed after it. There is none unless every string is valid
/// UTF-8. A zero byte ends a string in the text, not under the types.
ZRVOMGUI_EXPORT QMimeData *createMimeData(std::size_t count, std::string const *values);
/// @}

/// A new QMimeData, and addFormats() on it. The caller owns it.
ZRVOMGUI_EXPORT QMimeData *createMimeData(RefT<Exporter> const &exporter,
                                          std::vector<RefT<Object>> const *objs,
                                          std::vector<RefT<Object>> const *copyObjs);

/// Offers objects: a reference to `objs`, then one to `copyObjs` unless that is null, then XML.
///
/// The references name the two lists by address. They aren't copied, and the caller keeps them
/// alive for as long as somebody may read the data. The XML describes `objs`; it is left out when
/// `exporter` is empty, reports an error, raises an exception or writes nothing. A null `objs` is a
/// mistake of the caller's: an assertion tells, and without assertions nothing is offered.
ZRVOMGUI_EXPORT void addFormats(QMimeData &data, RefT<Exporter> const &exporter,
                                std::vector<RefT<Object>> const *objs,
                                std::vector<RefT<Object>> const *copyObjs);

/// \name Readers
/// Each answers whether it stored a result in its last argument, in place of what was there.
/// @{

/// Takes references to the objects that this process offers. False, and `objs` stays, when there
/// are none, or when another process offers them: its list is out of reach.
ZRVOMGUI_EXPORT bool getFromMimeData(QMimeData const &data, std::vector<RefT<Object>> &objs);
/// The same for the copies that came with them.
ZRVOMGUI_EXPORT bool getCopyFromMimeData(QMimeData const &data, std::vector<RefT<Object>> &objs);
/// Makes new objects of the XML. False, and `objs` stays, when there is none, or the importer
/// reports an error or raises an exception.
ZRVOMGUI_EXPORT bool getFromMimeData(QMimeData const &data, Xml::Importer &importer,
                                     std::vector<RefT<Object>> &objs);

/// False, and `values` stays, when there is no array of that type. Bytes behind the last whole
/// value are passed over.
ZRVOMGUI_EXPORT bool getFromMimeData(QMimeData const &data, std::vector<int> &values);
ZRVOMGUI_EXPORT bool getFromMimeData(QMimeData const &data, std::vector<double> &values);
/// An array of strings, or if there is none the lines of the text, which may end in CR LF.
///
/// False, and `values` stays, when there is neither. False also for a malformed array, of which
/// `values` then holds the strings before the fault.
ZRVOMGUI_EXPORT bool getFromMimeData(QMimeData const &data, std::vector<std::string> &values);
/// @}

} // namespace ZR::VOM::GUI
