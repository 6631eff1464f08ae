#pragma once

#include "PackageModel.h"

#include <QString>

#include <memory>

namespace Explorer {

/// Models in XML files. What goes wrong is told in `error`, for the user to read.

/// Writes the whole file or leaves it as it was.
bool writeModel(PackageModel const &model, QString const &path, QString &error);

/// Null when there is no such file, or no model in it.
std::shared_ptr<PackageModel> readModel(QString const &path, QString &error);

} // namespace Explorer
