#pragma once

#include "zrVOMGUI/presentation/ObjectIconDB.h"

#include <QIcon>

#include <utility>
#include <vector>

namespace Explorer {

/// How the graph chooses an object's icon.
enum class IconRule { ByPriority, ByClass, None };

/// A chain of icon databases: for ByPriority, packages by the value of their field "priority", and
/// what that doesn't know by class. Empty for None.
ZR::RefT<ZR::VOM::GUI::ObjectIconDB> makeIconDB(IconRule rule);

/// What the icons of a rule stand for, for a legend.
std::vector<std::pair<QIcon, QString>> iconLegend(IconRule rule);

/// The explorer's own icon: a package.
QIcon windowIcon();

} // namespace Explorer
