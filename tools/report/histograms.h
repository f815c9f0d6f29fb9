#pragma once

#include <vector>

#include "info/amplitude_histogram.h"
#include "report/quicklooks.h"

/// Coherences, 0 to 1; those that are no number do not count.
QUICKLOOK CoherenceHistogram(const std::vector<double>& coherences);

/// Amplitudes in classes of a decibel, but for the thousandth at either end.
QUICKLOOK AmplitudeHistogram(const AMPLITUDE_HISTOGRAM& amplitudes);
