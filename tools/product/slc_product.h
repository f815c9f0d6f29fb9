#pragma once

#include <complex>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "product/utc_time.h"
#include "raster/pixel_type.h"

constexpr double speed_of_light = 299792458.0;  ///< in vacuum, by definition [m/s]

/// The Doppler centroid of an image: polynomials in two-way range time, one for each of several
/// azimuth times, between which coefficients are interpolated linearly.
struct CENTROID_POLYNOMIALS {
  std::vector<double> azimuth_times;              ///< rising [s], from the image's first line on
  double reference_time = 0.0;                    ///< two-way range time of expansion [s]
  std::vector<std::vector<double>> coefficients;  ///< a row a polynomial [Hz / s^k]
  double departure = 0.0;                         ///< largest, from what the product tells [Hz]

  /// The centroid [Hz] at an azimuth time [s] from the first line and a two-way range time [s].
  double At(double azimuth_time, double range_time) const;
};

/// Samples first ... end - 1 of a line.
struct SAMPLE_RUN {
  std::int64_t first = 0;
  std::int64_t end = 0;
};

/// How an image of a product is named. Texts are empty and the burst is 0 where a product has none.
struct SLC_IMAGE_NAME {
  std::string part;  ///< frequency ("A") or swath ("IW2")
  int burst = 0;     ///< from 1
  std::string polarisation;
};

/// What a product tells about one of its images.
struct SLC_IMAGE {
  std::int64_t n_samples = 0;
  std::int64_t n_lines = 0;
  std::string imaging_mode;               ///< as `resample` knows it
  UTC_TIME first_line;                    ///< zero-Doppler time
  double line_rate = 0.0;                 ///< lines a second: the PRF of the image [Hz]
  double first_range_time = 0.0;          ///< two-way [s]
  double range_sampling_frequency = 0.0;  ///< [Hz]
  double range_spacing = 0.0;             ///< of the samples in slant range [m]
  double azimuth_spacing = 0.0;           ///< of the lines on the ground [m]; 0 where untold
  CENTROID_POLYNOMIALS centroid;
  /// Valid samples of every line: runs in order that do not touch.
  std::vector<std::vector<SAMPLE_RUN>> valid;
};

/// The pixels of one image.
class SLC_PIXELS {
 public:
  virtual ~SLC_PIXELS() = default;
  /// The number of lines that are best read at once.
  virtual std::int64_t LinesAtOnce() const = 0;
  /// The type that holds the pixels of the product as they are.
  virtual PIXEL_TYPE Type() const = 0;
  /// Whole lines one after the other: as many as `values` holds. Throws std::runtime_error.
  virtual void Read(std::int64_t first_line, std::span<std::complex<double>> values) = 0;
};

/// A product with one or more complex images. What is missing, of another size than the rest tells,
/// or no number, is a std::runtime_error that names file and field.
class SLC_PRODUCT {
 public:
  virtual ~SLC_PRODUCT() = default;
  virtual std::string Description() const = 0;
  virtual const std::vector<SLC_IMAGE_NAME>& Images() const = 0;
  virtual SLC_IMAGE Describe(const SLC_IMAGE_NAME& name) const = 0;
  virtual std::unique_ptr<SLC_PIXELS> Pixels(const SLC_IMAGE_NAME& name) const = 0;
};
