#include "zrVOMGUI/foundation/vom/private/Reports.h"

#include <exception>

namespace ZR::VOM::Xml {

namespace {

std::string toText(Place place)
{
    return "line " + std::to_string(place.line) + ", column " + std::to_string(place.column);
}

} // namespace

void Reports::report(Place place, std::string const &what)
{
    report(toText(place) + ": " + what);
}

void Reports::report(std::string const &what)
{
    constexpr unsigned maxReports = 100;
    reportLast(what);
    if (numReports >= maxReports)
        throw GiveUp();
}

void Reports::reportLast(std::string const &what)
{
    ++numReports;
    errors.report(title.empty() ? what : title + ": " + what);
}

void Reports::fail(Place place, std::string const &what)
{
    report(place, what);
    throw GiveUp();
}

void Reports::fail(std::string const &what)
{
    report(what);
    throw GiveUp();
}

void Reports::giveUpAfterErrors() const
{
    if (numReports != 0)
        throw GiveUp();
}

std::string Reports::caughtText()
{
    try {
        throw;
    } catch (std::exception const &exception) {
        return exception.what();
    } catch (...) {
        return "an unknown exception";
    }
}

void Ticker::tell(double part)
{
    if (!progress.setDone(part))
        reports.fail("cancelled");
}

} // namespace ZR::VOM::Xml
