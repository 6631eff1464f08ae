#pragma once

#include "zrVOMGUI/foundation/util/Error.h"

#include <string>
#include <vector>

namespace ZR::VOM::GUI {

/// Collects what is reported of caught exceptions, as "where: what".
class Reports {
public:
    Reports()
        : before(setErrorSink([this](std::string const &where, std::string const &what) {
            texts.push_back(where + ": " + what);
        }))
    {
    }
    ~Reports() { setErrorSink(before); }
    Reports(Reports const &) = delete;
    Reports &operator=(Reports const &) = delete;

    std::vector<std::string> texts;

private:
    ErrorSink before;
};

} // namespace ZR::VOM::GUI
