#include "StatusFile.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <set>

namespace Explorer {

namespace {

using Stanza = std::map<std::string, std::string>; // By field name in lower case.

constexpr std::string_view blanks = " \t\r\n";

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Cuts the text up to `separator` off the front of `rest`, and the separator with it.
std::string_view takePiece(std::string_view &rest, char separator)
{
    const std::size_t end = std::min(rest.find(separator), rest.size());
    const std::string_view piece = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return piece;
}

// Field names are ASCII, and compared without regard to case.
std::string lowerCase(std::string_view text)
{
    std::string lower(text);
    for (char &c : lower)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

/// Reads the next stanza off the front of `rest`; empty at an empty line.
Stanza takeStanza(std::string_view &rest)
{
    Stanza stanza;
    std::string *lastValue = nullptr; // Where a line that begins with a blank belongs.
    while (!rest.empty()) {
        const std::string_view line = takePiece(rest, '\n');
        if (trimmed(line).empty())
            break;
        if (blanks.find(line.front()) != std::string_view::npos) {
            if (lastValue)
                lastValue->append("\n").append(line);
            continue;
        }
        lastValue = nullptr;
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos)
            continue;
        const auto [field, isNew] = stanza.emplace(lowerCase(trimmed(line.substr(0, colon))),
                                                   trimmed(line.substr(colon + 1)));
        if (isNew)
            lastValue = &field->second;
    }
    return stanza;
}

std::string_view valueOf(Stanza const &stanza, char const *field)
{
    const auto entry = stanza.find(field);
    return entry == stanza.end() ? std::string_view() : trimmed(entry->second);
}

/// "install ok installed" is what the package is wanted to be, whether it is in order, and how it
/// is.
bool isInstalled(std::string_view status)
{
    const std::size_t lastBlank = status.find_last_of(blanks);
    return lastBlank != std::string_view::npos && status.substr(lastBlank + 1) == "installed";
}

/// The bare name in "name:any (>= 1.0) [amd64] <!nocheck>".
std::string packageName(std::string_view relation)
{
    relation = trimmed(relation);
    return std::string(relation.substr(0, relation.find_first_of(" \t\r\n(:[<")));
}

std::vector<std::string> readNames(std::string_view list, char separator)
{
    std::vector<std::string> names;
    while (!list.empty()) {
        std::string name = packageName(takePiece(list, separator));
        if (!name.empty())
            names.push_back(std::move(name));
    }
    return names;
}

std::vector<std::vector<std::string>> readDepends(std::string_view list)
{
    std::vector<std::vector<std::string>> depends;
    while (!list.empty()) {
        std::vector<std::string> alternatives = readNames(takePiece(list, ','), '|');
        if (!alternatives.empty())
            depends.push_back(std::move(alternatives));
    }
    return depends;
}

double readSize(std::string_view text)
{
    unsigned long long size = 0;
    char const *const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, size);
    return error == std::errc() && rest == end ? static_cast<double>(size) : 0;
}

PackageRecord makeRecord(Stanza const &stanza)
{
    const std::string_view maintainer = valueOf(stanza, "maintainer");
    const std::string_view description = valueOf(stanza, "description");
    PackageRecord record;
    record.name = valueOf(stanza, "package");
    record.version = valueOf(stanza, "version");
    record.section = valueOf(stanza, "section");
    record.priority = valueOf(stanza, "priority");
    record.maintainer = trimmed(maintainer.substr(0, maintainer.find('<')));
    record.summary = trimmed(description.substr(0, description.find('\n')));
    record.installedSize = readSize(valueOf(stanza, "installed-size"));
    record.depends = readDepends(valueOf(stanza, "depends"));
    record.provides = readNames(valueOf(stanza, "provides"), ',');
    return record;
}

} // namespace

std::vector<PackageRecord> readStatus(std::string_view text)
{
    std::vector<PackageRecord> records;
    std::set<std::string> names;
    while (!text.empty()) {
        const Stanza stanza = takeStanza(text);
        const std::string name(valueOf(stanza, "package"));
        if (isInstalled(valueOf(stanza, "status")) && !name.empty() && names.insert(name).second)
            records.push_back(makeRecord(stanza));
    }
    return records;
}

} // namespace Explorer
