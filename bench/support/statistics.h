#pragma once

#include <vector>

/// The middle value, or the mean of the two middle ones. 0 for no values.
double medianOf(std::vector<double> values);

/// Processor time of this process so far, in seconds.
double processorTime();

/// Wall-clock time since an arbitrary point, in seconds.
double wallTime();
