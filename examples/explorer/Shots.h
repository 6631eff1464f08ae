#pragma once

#include "StatusFile.h"

#include <QString>

namespace Explorer {

/// Fixes what pictures depend on beside the model: platform, fonts, style, and how many pixels of
/// the picture make one of the widgets. Before the application object is made.
void prepareShots(int scale);

/// Writes pictures of the widgets on these packages into a folder, which is made if need be, and
/// tells of each on the standard output. False, with the reason on the standard error stream, when
/// one can't be written.
///
/// A program has one scale as long as it runs: has this program run once more for the picture that
/// shootScaled() writes.
bool shoot(std::vector<PackageRecord> const &records, QString const &folder);

/// As shoot(), for the one picture whose scale differs.
bool shootScaled(std::vector<PackageRecord> const &records, QString const &folder);

} // namespace Explorer
