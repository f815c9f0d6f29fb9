#pragma once

#include <string>
#include <vector>

/// A labelled value of an axis or a colour bar.
struct TICK {
  double value;
  std::string label;
};

/// The multiples of 1, 2 or 5 times a power of ten from low to high, as close together as they
/// can be without being closer than `smallest_step` > 0.
std::vector<TICK> RoundTicks(double low, double high, double smallest_step);
