#pragma once

#include <stdexcept>
#include <string>

#include "common/raster_reader.h"

/// A raster to be shown or measured. Throws for one without pixels, whose other side may be
/// billions long.
class SHOWN_RASTER : public RASTER_READER {
 public:
  explicit SHOWN_RASTER(const std::string& path) : RASTER_READER(path) {
    if (Width() == 0 || Height() == 0) {
      throw std::runtime_error("has no pixels: " + path);
    }
  }
};
