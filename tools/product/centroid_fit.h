#pragma once

#include <span>
#include <vector>

#include "product/slc_product.h"

/// The centroid at several azimuth times, each over the same range times.
struct CENTROID_TABLE {
  std::vector<double> azimuth_times;        ///< rising [s]
  std::vector<double> range_times;          ///< two-way, rising [s]
  std::vector<std::vector<double>> values;  ///< a row an azimuth time [Hz]
};

/// Fits a polynomial in range time to every row by least squares, all of the lowest degree with
/// which none departs from the table by more than `tolerance` [Hz], or of the best degree up to 15.
CENTROID_POLYNOMIALS FitCentroid(const CENTROID_TABLE& table, double tolerance);
