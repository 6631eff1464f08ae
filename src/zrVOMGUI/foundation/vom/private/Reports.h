#pragma once

#include "zrVOMGUI/foundation/util/Log.h"

#include <string>

namespace ZR::VOM::Xml {

/// A place in a document, counted from 1.
struct Place {
    long long line = 1;
    long long column = 1;
};

/// A word of a document in quotes, for a message: shortened if it is long.
std::string quoted(std::string const &word);

/// Raised where there is no way on. What it is about has been reported.
struct GiveUp {};

/// Reports what is wrong under the title of a document, and counts it.
class Reports {
public:
    Reports(ErrorManager &errorManager, std::string const &documentTitle)
        : errors(errorManager)
        , title(documentTitle)
    {
    }

    /// Goes on, so that a user learns of several errors at once; gives up when they get too many.
    void report(Place place, std::string const &what);
    void report(std::string const &what);
    [[noreturn]] void fail(Place place, std::string const &what);
    [[noreturn]] void fail(std::string const &what);
    void giveUpAfterErrors() const;

    /// Runs the whole of `work` and answers whether all went well. Every exception is an error.
    template <class Work>
    bool guard(Work const &work)
    {
        try {
            work();
        } catch (GiveUp const &) {
        } catch (...) {
            reportLast(caughtText());
        }
        return numReports == 0;
    }

    /// Runs `work`, which is about what stands at `place`. An exception of it is an error, reported
    /// behind `prefix`, and the caller goes on.
    template <class Work>
    void attempt(Place place, std::string const &prefix, Work const &work)
    {
        try {
            work();
        } catch (GiveUp const &) {
            throw;
        } catch (...) {
            report(place, prefix + caughtText());
        }
    }

private:
    static std::string caughtText();
    void reportLast(std::string const &what);

    ErrorManager &errors;
    std::string title;
    unsigned numReports = 0;
};

/// Tells a Progress of the work from time to time, and gives up when that is to end.
class Ticker {
public:
    Ticker(Progress &workProgress, Reports &workReports)
        : progress(workProgress)
        , reports(workReports)
    {
    }

    /// One small step; `part` of the work is done. Not every step is told.
    void tick(double part)
    {
        if (++numTicks % stepsPerTick == 0)
            tell(part);
    }
    void tell(double part);

private:
    static constexpr unsigned stepsPerTick = 1024;

    Progress &progress;
    Reports &reports;
    unsigned numTicks = 0;
};

} // namespace ZR::VOM::Xml
