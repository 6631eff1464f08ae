#pragma once

#include "zrVOMGUI/foundation/util/Bool.h"

#include <cstddef>
#include <string>

class QMimeData;

namespace ZR {
template <class T>
class Matrix4x4T;
}

namespace ZR::VOM::GUI {

// The writers that only the clipboard uses. Each makes a new QMimeData, which the caller owns, with
// the value under its type and as text.

QMimeData *createMimeData(Bool value);
QMimeData *createMimeData(int value);
QMimeData *createMimeData(double const &value);
/// A string travels as text alone, up to its first zero byte.
QMimeData *createMimeData(std::string const &value);
QMimeData *createMimeData(Matrix4x4T<double> const &value);
/// As the exported writers of arrays.
QMimeData *createMimeData(std::size_t count, Bool const *values);

} // namespace ZR::VOM::GUI
