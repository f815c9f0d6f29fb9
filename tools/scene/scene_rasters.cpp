#include "scene/scene_rasters.h"

#include <complex>
#include <span>

#include "common/raster_writer.h"
#include "scene/random.h"
#include "scene/scene_signal.h"
#include "scene/scene_warp.h"

namespace {

std::string PathOf(const SCENE_OPTIONS& options, const char* name) {
  return options.directory + "/" + name;
}

/// Where the slave holds data: not in the leading columns, and not in an elliptic hole in the
/// upper right quarter.
bool IsValid(const SCENE_OPTIONS& options, std::int64_t line, std::int64_t sample) {
  constexpr std::int64_t leading_columns = 3;
  const double x = static_cast<double>(sample) / options.n_samples - 0.72;
  const double y = static_cast<double>(line) / options.n_lines - 0.28;
  return sample >= leading_columns && x * x + y * y > 0.06 * 0.06;
}

/// The noise of one image.
class NOISE {
 public:
  NOISE(const SCENE_OPTIONS& options, SERIES series)
      : seed_(SeedOf(options.seed, series)),
        amplitude_(options.noise * options.amplitude),
        n_samples_(options.n_samples) {}

  std::complex<double> At(std::int64_t line, std::int64_t sample) const {
    if (amplitude_ == 0.0) {
      return 0.0;
    }
    return amplitude_ *
           RandomSpeckle(seed_, static_cast<std::uint64_t>(line * n_samples_ + sample));
  }

 private:
  std::uint64_t seed_;
  double amplitude_;
  std::int64_t n_samples_;
};

void WriteMaster(const SCENE_OPTIONS& options, const SCENE_SIGNAL& signal, const SCENE_WARP& warp) {
  const NOISE noise(options, SERIES::MASTER_NOISE);
  const auto fill = [&](std::int64_t line, std::span<std::complex<double>> values) {
    const auto y = static_cast<double>(line);
    for (std::size_t sample = 0; sample < values.size(); ++sample) {
      const auto x = static_cast<double>(sample);
      values[sample] = signal.At(y + warp.AzimuthShift(x, y), x + warp.RangeShift(x, y)) +
                       noise.At(line, static_cast<std::int64_t>(sample));
    }
  };
  WriteRaster(PathOf(options, "master.ras"), options.n_samples, options.n_lines, options.pixel_type,
              fill);
}

void WriteSlave(const SCENE_OPTIONS& options, const SCENE_SIGNAL& signal) {
  const NOISE noise(options, SERIES::SLAVE_NOISE);
  const auto fill = [&](std::int64_t line, std::span<std::complex<double>> values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
      const auto sample = static_cast<std::int64_t>(i);
      values[i] = IsValid(options, line, sample)
                      ? signal.AtPixel(line, sample) + noise.At(line, sample)
                      : 0.0;
    }
  };
  WriteRaster(PathOf(options, "slave.ras"), options.n_samples, options.n_lines, options.pixel_type,
              fill);
}

void WriteMask(const SCENE_OPTIONS& options) {
  const auto fill = [&](std::int64_t line, std::span<double> values) {
    for (std::size_t sample = 0; sample < values.size(); ++sample) {
      values[sample] = IsValid(options, line, static_cast<std::int64_t>(sample)) ? 1.0 : 0.0;
    }
  };
  WriteRealRaster(PathOf(options, "slave_mask.ras"), options.n_samples, options.n_lines,
                  PIXEL_TYPE::U_INT_8, fill);
}

/// Number of nodes along an axis that reach past its last pixel.
int NodeCount(int n_pixels, int subsampling) {
  return (n_pixels - 1) / subsampling + 2;
}

void WriteMatrix(const SCENE_OPTIONS& options, const char* name, const SCENE_WARP& warp,
                 double (SCENE_WARP::*shift)(double, double) const noexcept) {
  const auto fill = [&](std::int64_t line, std::span<double> values) {
    const auto y = static_cast<double>(line * options.subsampling_azimuth);
    for (std::size_t column = 0; column < values.size(); ++column) {
      values[column] = (warp.*shift)(static_cast<double>(column) * options.subsampling_range, y);
    }
  };
  WriteRealRaster(PathOf(options, name), NodeCount(options.n_samples, options.subsampling_range),
                  NodeCount(options.n_lines, options.subsampling_azimuth), PIXEL_TYPE::FLT_6, fill);
}

}  // namespace

void WriteSceneRasters(const SCENE_OPTIONS& options) {
  const SCENE_SIGNAL signal(options);
  const SCENE_WARP warp(options);
  WriteMaster(options, signal, warp);
  WriteSlave(options, signal);
  WriteMask(options);
  WriteMatrix(options, "rg_map.ras", warp, &SCENE_WARP::RangeShift);
  WriteMatrix(options, "az_map.ras", warp, &SCENE_WARP::AzimuthShift);
}
