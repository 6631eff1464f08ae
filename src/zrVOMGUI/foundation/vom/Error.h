#pragma once

#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/vom/export.h"

#include <string>

namespace ZR::VOM {

class Field;

/// An operation on the model was refused; the model is as it was.
class ZRVOM_EXPORT Error : public ZR::Error {
public:
    using ZR::Error::Error;
};

/// An operation on a field was refused.
class ZRVOM_EXPORT ErrorField : public Error {
public:
    ErrorField(Field const &field, std::string const &reason);
};

/// A value of one type was meant for a field of another.
class ZRVOM_EXPORT ErrorTypeMismatch : public ErrorField {
public:
    explicit ErrorTypeMismatch(Field const &field);
};

} // namespace ZR::VOM
