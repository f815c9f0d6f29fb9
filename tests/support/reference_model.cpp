#include "support/reference_model.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "core/codec_visit.h"

namespace {

// The codecs are the program's own: their every pattern is compared with its definition elsewhere.

/// The number that a component stands for.
double Decode(PIXEL_TYPE type, std::uint16_t bits) {
  double number = 0.0;
  VisitCodec(type, [&]<class CODEC>(CODEC) {
    number = CODEC::Decode(static_cast<typename CODEC::COMPONENT>(bits));
  });
  return number;
}

constexpr double pi = 3.141592653589793;
constexpr double two_pi = 6.283185307179586;

/// One output pixel as the formulas give it, before encoding.
struct MODEL_PIXEL {
  bool computed = false;
  std::uint8_t valid = 0;
  long double re = 0.0L;
  long double im = 0.0L;
  /// Sum over the footprint of |weight| (|re| + |im|): what rounding errors grow with.
  long double magnitude = 0.0L;
};

std::uint16_t Encode(PIXEL_TYPE type, long double value) {
  std::uint16_t bits = 0;
  VisitCodec(type, [&]<class CODEC>(CODEC) {
    bits = static_cast<std::uint16_t>(CODEC::Encode(static_cast<double>(value)));
  });
  return bits;
}

// ------------------------------------------------------------------- mapping

struct POSITION {
  double range;
  double azimuth;
};

/// Bilinear interpolation between the four nodes around a position in node units, 0 outside.
double ShiftAt(const GRID<float>& nodes, double column, double line) {
  const bool inside =
      column >= 0 && column < nodes.width - 1 && line >= 0 && line < nodes.height - 1;
  if (!inside) {
    return 0.0;
  }
  const int i = static_cast<int>(column);
  const int j = static_cast<int>(line);
  const double a = column - i;
  const double b = line - j;
  return (1 - b) * (nodes.At(i + 1, j) * a + nodes.At(i, j) * (1 - a)) +
         (nodes.At(i + 1, j + 1) * a + nodes.At(i, j + 1) * (1 - a)) * b;
}

POSITION Map(const MATRIX_MAPPING_DATA& matrix, double x, double y) {
  const double column = x / matrix.range_subsampling;
  const double line = y / matrix.azimuth_subsampling;
  return {x + ShiftAt(matrix.range, column, line), y + ShiftAt(matrix.azimuth, column, line)};
}

double Polynomial(const std::vector<double>& c, double x, double y, double own) {
  return c[1] * y + c[0] + c[2] * x + c[3] * x * y + c[4] * y * y + c[5] * x * x + own;
}

POSITION Map(const POLYNOMIAL_MAPPING_DATA& polynomial, double x, double y) {
  return {Polynomial(polynomial.range, x, y, x), Polynomial(polynomial.azimuth, x, y, y)};
}

// -------------------------------------------------------------------- kernel

double Sinc(double x) {
  return std::abs(x) < 1e-10 ? 1.0 : std::sin(pi * x) / (pi * x);
}

double Cubic(double x) {
  const double a = std::abs(x);
  const double square = a * a;
  const double cube = square * a;
  if (a <= 1) {
    return 1.3333333333333333 * cube - 2.3333333333333335 * square + 1;
  }
  if (a <= 2) {
    return -0.5833333333333334 * cube + 3 * square - 4.916666666666667 * a + 2.5;
  }
  return a <= 3 ? 0.08333333333333333 * cube - 0.6666666666666666 * square + 1.75 * a - 1.5 : 0.0;
}

double BesselI0(double z) {
  double sum = 1.0;
  double term = 1.0;
  for (int m = 1; m <= 11; ++m) {
    term *= z * z / 4 / (m * m);
    sum += term;
  }
  return sum;
}

/// `length` is the one asked for, not the corrected one.
double KaiserSinc(double x, float coefficient, float length) {
  const double u = x / length;
  if (u - 0.5 > 1e-12 || -1e-12 > 0.5 + u) {
    return 0.0 * Sinc(x);
  }
  const double b = coefficient * pi;
  const double square = 1 - 4 * u * u;
  return Sinc(x) * (BesselI0(b * std::sqrt(square < 0 ? 0 : square)) / BesselI0(b));
}

double KernelValue(const SCENE& scene, double x) {
  if (scene.kernel_type == "cubic_convolution") {
    return Cubic(x);
  }
  if (scene.kernel_type == "truncated_sinc_no_weight") {
    return Sinc(x);
  }
  if (scene.kernel_type == "truncated_sinc_kaiser_weight") {
    const auto coefficient = static_cast<float>(scene.kernel_coefficient);
    return KaiserSinc(x, coefficient < 0 ? 0.0F : coefficient,
                      static_cast<float>(scene.kernel_length));
  }
  if (scene.kernel_type == "-") {
    return 0.0;
  }
  throw std::invalid_argument("kernel without a formula: " + scene.kernel_type);
}

int KernelLength(const SCENE& scene) {
  const bool corrected = scene.kernel_type == "cubic_convolution" ||
                         (scene.kernel_type != "-" && scene.kernel_length < 6);
  return corrected ? 6 : scene.kernel_length;
}

/// The taps' weights: the table's row of a fraction of a pixel.
std::vector<double> Weights(const SCENE& scene, double fraction) {
  const int n = scene.subpix_positions;
  int row = static_cast<int>(fraction * n + 0.5);  // NOLINT(bugprone-incorrect-roundings)
  row = row == n ? 0 : row;
  const int length = KernelLength(scene);
  const int offset = length / 2 - 1;
  std::vector<double> weights;
  for (int i = 0; i < length; ++i) {
    weights.push_back(KernelValue(scene, (i - offset) - row / static_cast<double>(n)));
  }
  return weights;
}

// ------------------------------------------------------------------- Doppler

/// Straight lines through neighbouring points, the end ones going on beyond them.
double AlongAzimuth(const std::vector<double>& times, const std::vector<double>& values, double t) {
  if (times.size() == 1) {
    return values[0];
  }
  std::size_t k = 0;
  while (k + 2 < times.size() && t > times[k + 1]) {
    ++k;
  }
  const double slope = (values[k + 1] - values[k]) / (times[k + 1] - times[k]);
  return slope * (t - times[k]) + values[k];
}

double Centroid(const DOPPLER_DATA& doppler, double azimuth_time, double range_time) {
  const double dt =
      range_time - AlongAzimuth(doppler.azimuth_times, doppler.reference_times, azimuth_time);
  double frequency = 0.0;
  for (int degree = doppler.coefficients.width - 1; degree >= 0; --degree) {
    std::vector<double> values;
    values.reserve(static_cast<std::size_t>(doppler.coefficients.height));
    for (int i = 0; i < doppler.coefficients.height; ++i) {
      values.push_back(doppler.coefficients.At(degree, i));
    }
    frequency = frequency * dt + AlongAzimuth(doppler.azimuth_times, values, azimuth_time);
  }
  return frequency;
}

struct PHASE_TERMS {
  double linear;     ///< radians a line
  double quadratic;  ///< radians a squared line
};

PHASE_TERMS PhaseTerms(const SCENE& scene, int sample, int line) {
  const DOPPLER_DATA& doppler = scene.doppler;
  const double line_rate = doppler.oversampling * doppler.prf;
  const double ta = doppler.first_azimuth_time + line / line_rate;
  const double tr =
      doppler.first_range_time + sample / (doppler.oversampling * doppler.range_sampling_frequency);
  double rate = 0.0;
  const std::string& mode = scene.imaging_mode;
  if (scene.ps_mode != 1 && mode != "SM" && mode != "ATI" && mode != "ATIS") {
    const double d = 100 / line_rate;
    rate = (Centroid(doppler, ta + d, tr) - Centroid(doppler, ta - d, tr)) / (2 * d) * 0.5 * two_pi;
  }
  return {two_pi * Centroid(doppler, ta, tr) / doppler.prf, rate / (doppler.prf * doppler.prf)};
}

// ---------------------------------------------------------------------- core

bool IsComputed(double position, int size, int length) {
  const int half = length / 2;
  if (!(half < position && position < size - half)) {
    return false;
  }
  const long long last_tap = static_cast<long long>(position) - (half - 1) + length - 1;
  return last_tap < size;
}

MODEL_PIXEL Interpolate(const SCENE& scene, const POSITION& position) {
  const int length = KernelLength(scene);
  const int offset = length / 2 - 1;
  const int ri = static_cast<int>(position.range);
  const int ai = static_cast<int>(position.azimuth);
  const double fr = position.range - ri;
  const double fa = position.azimuth - ai;
  const PHASE_TERMS terms = PhaseTerms(scene, ri, ai);
  const std::vector<double> range_weights = Weights(scene, fr);
  const std::vector<double> azimuth_weights = Weights(scene, fa);
  MODEL_PIXEL pixel;
  pixel.computed = true;
  pixel.valid = 1;
  for (int k = 0; k < length; ++k) {
    long double re = 0.0L;
    long double im = 0.0L;
    const int line = ai - offset + k;
    for (int j = 0; j < length; ++j) {
      const int sample = ri - offset + j;
      if (scene.mask && scene.mask->At(sample, line) == 0) {
        pixel.valid = 0;
      }
      const double weight =
          range_weights[static_cast<std::size_t>(j)] * azimuth_weights[static_cast<std::size_t>(k)];
      const RAW_PIXEL& raw = scene.slave.At(sample, line);
      const double raw_re = Decode(scene.pixel_type, raw.re);
      const double raw_im = Decode(scene.pixel_type, raw.im);
      re += static_cast<long double>(raw_re) * weight;
      im += static_cast<long double>(raw_im) * weight;
      pixel.magnitude += std::abs(weight) * (std::abs(raw_re) + std::abs(raw_im));
    }
    const double t = k - offset;
    const long double phase = terms.linear * (fa - t) + terms.quadratic * (fa * fa - t * t);
    pixel.re += std::cos(phase) * re - std::sin(phase) * im;
    pixel.im += std::cos(phase) * im + std::sin(phase) * re;
  }
  return pixel;
}

// ---------------------------------------------------------------- comparison

/// Everything that lies within the rounding errors of the sum is right.
bool IsRight(PIXEL_TYPE type, std::uint16_t bits, long double expected, long double magnitude) {
  const std::uint16_t encoded = Encode(type, expected);
  if (!std::isfinite(expected)) {
    const bool is_nan = std::isnan(Decode(type, encoded));
    return bits == encoded || (is_nan && (bits ^ encoded) == 0x8000);  // of either sign
  }
  const long double error = 1e-12L * magnitude;
  return bits == encoded || bits == Encode(type, expected - error) ||
         bits == Encode(type, expected + error);
}

MODEL_PIXEL PixelAt(const SCENE& scene, int sample, int line) {
  const POSITION position =
      std::visit([&](const auto& mapping) { return Map(mapping, sample, line); }, scene.mapping);
  const int length = KernelLength(scene);
  const bool computed = IsComputed(position.range, scene.slave.width, length) &&
                        IsComputed(position.azimuth, scene.slave.height, length);
  return computed ? Interpolate(scene, position) : MODEL_PIXEL();
}

}  // namespace

MODEL_COMPARISON CompareWithModel(const SCENE& scene, const GRID<RAW_PIXEL>& image,
                                  const GRID<std::uint8_t>& mask) {
  MODEL_COMPARISON comparison;
  for (int line = 0; line < scene.n_lines; ++line) {
    for (int sample = 0; sample < scene.n_samples; ++sample) {
      const MODEL_PIXEL expected = PixelAt(scene, sample, line);
      const RAW_PIXEL& pixel = image.At(sample, line);
      const std::uint8_t valid = mask.At(sample, line);
      const bool right = IsRight(scene.pixel_type, pixel.re, expected.re, expected.magnitude) &&
                         IsRight(scene.pixel_type, pixel.im, expected.im, expected.magnitude) &&
                         valid == expected.valid;
      comparison.computed_pixels += expected.computed ? 1 : 0;
      comparison.valid_pixels += expected.valid;
      if (!right && comparison.difference.empty()) {
        std::ostringstream text;
        text << "sample " << sample << " line " << line << ": expected "
             << std::complex(expected.re, expected.im) << ", mask " << int{expected.valid}
             << "; found "
             << std::complex(Decode(scene.pixel_type, pixel.re), Decode(scene.pixel_type, pixel.im))
             << ", mask " << int{valid};
        comparison.difference = text.str();
      }
    }
  }
  return comparison;
}
