#include "zrVOMGUI/foundation/vom/private/Reports.h"

#include <exception>

namespace ZR::VOM::Xml {

namespace {

std::string toText(Place place)
{
    return "line " + std::to_string(place.line) + ", column " + std::to_string(place.column);
}

} // namespace

std::string quoted(std::string const &word)
{
    constexpr std::size_t maxLength = 80;
    if (word.size() <= maxLength)
        return '\'' + word + '\'';
    std::size_t length = maxLength;
    const auto isInsideCharacter = [&] { return (word[length] & 0xC0) == 0x80; };
    while (length > 0 && isInsideCharacter())
        --length;
    return '\'' + word.substr(0, length) + "...'";
}

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
