#pragma once

#include <optional>
#include <string>

#include "common/pixel_encoder.h"
#include "common/progress_bar.h"
#include "product/slc_product.h"

/// What to make of an image, and where.
struct PRODUCT_FILES_OPTIONS {
  std::string product;  ///< path, for the record
  std::string directory;
  std::string role;                ///< "master" or "slave"
  std::optional<double> scale;     ///< of the pixels; without one chosen by a sample of them
  std::optional<PIXEL_TYPE> type;  ///< pairs; without one integers of integers, else binary16
};

struct PRODUCT_FILES_RESULT {
  SLC_IMAGE image;
  double scale = 1.0;
  ENCODING_COUNTS counts;
  std::int64_t not_finite = 0;      ///< pixels with a part that is no finite number, stored as 0
  std::int64_t valid = 0;           ///< pixels of mask 1
  std::string epoch;                ///< UTC, from which azimuth times count
  double first_azimuth_time = 0.0;  ///< of the first line [s]
};

/// Writes ROLE.ras, ROLE_mask.ras and ROLE.pool into the directory, made if missing, and what is
/// known there into its insar.pool. Azimuth times count from the epoch that insar.pool tells, or
/// from midnight before the first line. After a failure nothing is written.
///
/// Throws std::runtime_error for what the product can not tell, std::system_error and the errors of
/// pools and MEM_MGR for what can not be written.
PRODUCT_FILES_RESULT WriteProductFiles(const SLC_PRODUCT& product, const SLC_IMAGE_NAME& name,
                                       const PRODUCT_FILES_OPTIONS& options,
                                       const PROGRESS& progress);

/// "frequency A, HH" or "IW2, burst 5, VV"
std::string TextOf(const SLC_IMAGE_NAME& name);
