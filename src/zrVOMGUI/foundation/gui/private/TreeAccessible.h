#pragma once

// Not for hosts.

namespace ZR::GUI {

/// Lets assistive programs see trees: a tree whose children are the lines that are open, each with
/// its text, level, state and place, and what can be done with it. Call as often as you like.
void installTreeAccessibility();

} // namespace ZR::GUI
