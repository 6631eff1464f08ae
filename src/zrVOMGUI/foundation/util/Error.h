#pragma once

#include "zrVOMGUI/foundation/util/export.h"

#include <exception>
#include <functional>
#include <string>

namespace ZR {

/// Base of the exceptions of these libraries.
///
/// A listener of a "can set" or "can replace" signal refuses the change by raising one.
class ZRUTIL_EXPORT Error : public std::exception {
public:
    Error() = default;
    explicit Error(std::string text)
        : message(std::move(text))
    {
    }

    char const *what() const noexcept override { return message.c_str(); }

private:
    std::string message;
};

/// A binary payload is malformed.
class ZRUTIL_EXPORT ErrorBinaryDecode : public Error {
public:
    ErrorBinaryDecode()
        : Error("malformed binary payload")
    {
    }
};

/// Runs `f`, catches every exception, reports it under the name `where`, and answers whether `f`
/// ended normally.
ZRUTIL_EXPORT bool tryCatch(std::string const &where, std::function<void()> f);

/// Reports the exception being handled under the name `where`. Inside a catch block only.
ZRUTIL_EXPORT void reportCaughtException(char const *where) noexcept;

/// Takes the reports of tryCatch: the place, and what the exception says.
using ErrorSink = std::function<void(std::string const &where, std::string const &what)>;

/// Sets where reports go, and returns the sink before it. An empty sink stands for the default,
/// which writes "where: what" and a line feed to the standard error stream. The sink serves all
/// threads; set it before they start. An exception from a sink is dropped.
ZRUTIL_EXPORT ErrorSink setErrorSink(ErrorSink sink);

} // namespace ZR
