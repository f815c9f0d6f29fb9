#include "mask/validity_mask.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <complex>
#include <memory>
#include <span>
#include <stdexcept>

#include "common/raster_reader.h"
#include "common/raster_writer.h"

namespace {

using FILES = std::vector<std::unique_ptr<RASTER_READER>>;

FILES Open(const std::vector<std::string>& paths) {
  FILES files;
  for (const std::string& path : paths) {
    const RASTER_READER& file = *files.emplace_back(std::make_unique<RASTER_READER>(path));
    if (file.Width() != files.front()->Width() || file.Height() != files.front()->Height()) {
      throw std::invalid_argument(path + " and " + paths.front() + " have different sizes");
    }
    if (file.Type() == PIXEL_TYPE::RGB) {
      throw std::invalid_argument(path + " is a picture, which has no values");
    }
  }
  return files;
}

bool IsValid(std::complex<double> value, const std::vector<double>& invalid) noexcept {
  return std::isfinite(value.real()) && std::isfinite(value.imag()) &&
         std::find(invalid.begin(), invalid.end(), value) == invalid.end();
}

}  // namespace

std::int64_t WriteValidityMask(const VALIDITY_OPTIONS& options) {
  const FILES files = Open(options.files);
  std::atomic<std::int64_t> count = 0;
  const auto fill = [&](std::int64_t line, std::span<double> mask) {
    std::vector<std::complex<double>> values(mask.size());
    std::vector<std::size_t> valid(mask.size());
    for (const auto& file : files) {
      file->ReadLine(line, 0, values);
      for (std::size_t i = 0; i < values.size(); ++i) {
        valid[i] += IsValid(values[i], options.invalid) ? 1U : 0U;
      }
    }
    const std::size_t needed = options.any ? 1 : files.size();
    for (std::size_t i = 0; i < mask.size(); ++i) {
      mask[i] = (valid[i] >= needed) != options.invert ? 1.0 : 0.0;
    }
    count += std::count(mask.begin(), mask.end(), 1.0);
  };
  WriteRealRaster(options.mask, files.front()->Width(), files.front()->Height(),
                  PIXEL_TYPE::U_INT_8, fill);
  return count;
}
