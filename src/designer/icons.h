#pragma once

#include <QIcon>

namespace Designer {

/// \name What stands for each kind of widget in a list of them
/// Drawn when they are asked for, in the colours of the application, at any size.
/// @{
QIcon graphIcon();
QIcon treeIcon();
QIcon secondTreeIcon();
QIcon firstTreeIcon();
QIcon slotIcon();
QIcon pathsIcon();
QIcon realIcon();
/// @}

} // namespace Designer
