#pragma once

namespace Explorer {

/// Gives all widgets a dark style sheet, or their usual looks.
void setDarkStyle(bool dark);

} // namespace Explorer
