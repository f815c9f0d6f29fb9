#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Which pixels a mask is 1 for.
struct VALIDITY_OPTIONS {
  std::string mask;                ///< to be made
  std::vector<std::string> files;  ///< rasters of one size
  /// What pixels without data have as value; never valid is a pixel that is no finite number.
  std::vector<double> invalid = {0.0};
  bool any = false;     ///< one valid pixel among the files is enough; otherwise all have to be
  bool invert = false;  ///< 0 and 1 change places
};

/// Makes the mask and returns how many of its pixels are 1.
///
/// Throws std::invalid_argument for rasters of different sizes and for rgb, std::system_error and
/// the errors of MEM_MGR for files that can not be read or made.
std::int64_t WriteValidityMask(const VALIDITY_OPTIONS& options);
