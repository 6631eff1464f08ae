#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Explorer {

/// What the package database says about one installed package, as far as the explorer shows it.
struct PackageRecord {
    std::string name;
    std::string version;
    std::string section;
    std::string priority;
    std::string maintainer;   ///< Without the mail address.
    std::string summary;      ///< The first line of the description.
    double installedSize = 0; ///< KiB; 0 when it isn't told or no number.
    /// One entry for each dependency: the names of its alternatives, in order of preference.
    std::vector<std::vector<std::string>> depends;
    std::vector<std::string> provides;
};

/// Reads the text of a package database: stanzas of "Field: value" lines, parted by empty lines.
///
/// Only installed packages are returned, in the order of the text; of several stanzas with one
/// name, such as those of two architectures, the first one. Whatever isn't as it should be is
/// passed over: lines without a colon, stanzas without a name, numbers that are none.
std::vector<PackageRecord> readStatus(std::string_view text);

} // namespace Explorer
