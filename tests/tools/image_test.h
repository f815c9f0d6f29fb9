#pragma once

#include <gtest/gtest.h>

#include <complex>
#include <span>
#include <string>

#include "common/raster_reader.h"
#include "common/raster_writer.h"
#include "support/temporary_directory.h"

/// Makes rasters whose pixels are `pixel(sample, line)`, which several threads call.
class IMAGE_TEST : public testing::Test {
 protected:
  using VALUE = std::complex<double>;

  template <class PIXEL>
  RASTER_READER Complex(const char* name, int samples, int lines, PIXEL pixel,
                        PIXEL_TYPE type = PIXEL_TYPE::C_FLT_6) const {
    WriteRaster(Path(name), samples, lines, type,
                [&](std::int64_t line, std::span<VALUE> values) { Fill(line, values, pixel); });
    return RASTER_READER(Path(name));
  }

  template <class PIXEL>
  RASTER_READER Real(const char* name, int samples, int lines, PIXEL pixel,
                     PIXEL_TYPE type = PIXEL_TYPE::FLT_6) const {
    WriteRealRaster(
        Path(name), samples, lines, type,
        [&](std::int64_t line, std::span<double> values) { Fill(line, values, pixel); });
    return RASTER_READER(Path(name));
  }

  std::string Path(const char* name) const { return directory_.File(name); }

 private:
  template <class T, class PIXEL>
  static void Fill(std::int64_t line, std::span<T> values, PIXEL pixel) {
    for (std::size_t sample = 0; sample < values.size(); ++sample) {
      values[sample] = pixel(static_cast<int>(sample), static_cast<int>(line));
    }
  }

  TEMPORARY_DIRECTORY directory_;
};
