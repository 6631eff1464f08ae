#include "zrVOMGUI/foundation/util/Error.h"

#include <iostream>
#include <utility>

namespace ZR {

namespace {

ErrorSink &errorSink()
{
    static ErrorSink sink;
    return sink;
}

void report(std::string const &where, std::string const &what)
{
    // A sink may set another one.
    const ErrorSink sink = errorSink();
    if (sink)
        sink(where, what);
    else
        std::cerr << where << ": " << what << '\n';
}

} // namespace

bool tryCatch(std::string const &where, std::function<void()> f)
{
    try {
        f();
        return true;
    } catch (...) {
        reportCaughtException(where.c_str());
        return false;
    }
}

void reportCaughtException(char const *where) noexcept
{
    try {
        try {
            throw;
        } catch (std::exception const &error) {
            report(where, error.what());
        } catch (...) {
            report(where, "unknown exception");
        }
    } catch (...) {
        // The report itself failed, and there is nobody left to tell.
    }
}

ErrorSink setErrorSink(ErrorSink sink)
{
    return std::exchange(errorSink(), std::move(sink));
}

} // namespace ZR
