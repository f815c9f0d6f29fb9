#include "match/amplitude_chip.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

namespace {

using VALUE = std::complex<double>;

/// One axis of an array: elements `step` apart along it, `count` of them, and the other axis.
struct AXIS {
  int count;
  int step;
  int other_count;
  int other_step;
};

VALUE Turned(VALUE value, double phase) {
  return value * std::polar(1.0, phase);
}

/// For each pair of neighbours along the axis the sum of next * conj(this) across it.
std::vector<VALUE> NeighbourProducts(const COMPLEX_ARRAY& pixels, const AXIS& axis) {
  std::vector<VALUE> products(static_cast<std::size_t>(axis.count - 1));
  for (int i = 0; i < axis.count - 1; ++i) {
    double re = 0.0;
    double im = 0.0;
    for (int j = 0; j < axis.other_count; ++j) {
      const auto at =
          static_cast<std::size_t>(std::int64_t{i} * axis.step + std::int64_t{j} * axis.other_step);
      const std::complex<float> a = pixels[at];
      const std::complex<float> b = pixels[at + static_cast<std::size_t>(axis.step)];
      re += b.real() * a.real() + b.imag() * a.imag();
      im += b.imag() * a.real() - b.real() * a.imag();
    }
    products[static_cast<std::size_t>(i)] = {re, im};
  }
  return products;
}

/// The sum of products[i + distance] * conj(products[i]).
VALUE SumOfTurns(std::span<const VALUE> products, std::size_t distance) {
  VALUE sum;
  for (std::size_t i = 0; i + distance < products.size(); ++i) {
    sum += products[i + distance] * std::conj(products[i]);
  }
  return sum;
}

/// How much more the phase between neighbours grows from pixel to pixel along the axis, 0 where it
/// can not be told from noise; that follows from near products, then more closely from distant
/// ones.
double Sweep(std::span<const VALUE> products, double least) {
  double sweep = 0.0;
  for (const std::size_t parts : {8U, 2U}) {
    const std::size_t distance = products.size() / parts;
    const VALUE sum = SumOfTurns(products, distance);
    if (std::abs(sum) < least) {
      return sweep;
    }
    const auto length = static_cast<double>(distance);
    sweep += std::arg(Turned(sum, -sweep * length)) / length;
  }
  return sweep;
}

/// Turns the spectrum along an axis to around 0, and stops its sweep if there is one. The pixels
/// have unit power.
///
/// A spectrum that fills the band has no centroid to speak of, and one from noise would do harm:
/// what is less than four times what uncorrelated pixels add up to counts for nothing, and
/// `usual`, in turns a pixel, takes its place.
void RemoveCarrier(COMPLEX_ARRAY& pixels, const AXIS& axis, double usual) {
  constexpr double sure = 4.0;
  const std::vector<VALUE> products = NeighbourProducts(pixels, axis);
  const double noise = std::sqrt(static_cast<double>(axis.count));
  const double sweep = Sweep(products, sure * axis.other_count * noise);

  const double middle = 0.5 * static_cast<double>(products.size() - 1);
  VALUE sum;
  for (std::size_t i = 0; i < products.size(); ++i) {
    sum += Turned(products[i], -sweep * (static_cast<double>(i) - middle));
  }
  const bool is_sure =
      std::abs(sum) > sure * std::sqrt(static_cast<double>(axis.other_count)) * noise;
  const double centre = is_sure ? std::arg(sum) : 2.0 * std::numbers::pi * usual;
  double phase = 0.0;
  for (int i = 0; i < axis.count; ++i) {
    const std::complex<float> turn(std::polar(1.0, -phase));
    for (int j = 0; j < axis.other_count; ++j) {
      pixels[static_cast<std::size_t>(std::int64_t{i} * axis.step +
                                      std::int64_t{j} * axis.other_step)] *= turn;
    }
    phase += centre + sweep * (i - middle);
  }
}

}  // namespace

AMPLITUDE_CHIP::AMPLITUDE_CHIP(const RANGE_AZIMUTH<int>& size, double centroid)
    : size_(size),
      centroid_(centroid),
      columns_(size.range + 2 * margin),
      rows_(size.azimuth + 2 * margin),
      forward_(rows_, columns_, FOURIER_DIRECTION::FORWARD),
      backward_(samples_a_pixel * rows_, samples_a_pixel * columns_, FOURIER_DIRECTION::BACKWARD),
      line_(static_cast<std::size_t>(columns_)),
      has_data_(static_cast<std::size_t>(rows_ * columns_)),
      pixels_(has_data_.size()),
      wide_(has_data_.size() * samples_a_pixel * samples_a_pixel),
      amplitudes_(static_cast<std::size_t>(Rows() * Columns())) {}

void AMPLITUDE_CHIP::Load(const RASTER_READER& image, std::int64_t sample, std::int64_t line) {
  ReadPixels(image, sample - margin, line - margin);
  RemoveCarrier(pixels_, {rows_, columns_, columns_, 1}, centroid_);
  RemoveCarrier(pixels_, {columns_, 1, rows_, columns_}, 0.0);
  WidenSpectrum();
  Detect();
}

void AMPLITUDE_CHIP::ReadPixels(const RASTER_READER& image, std::int64_t sample,
                                std::int64_t line) {
  const std::int64_t first = std::clamp<std::int64_t>(sample, 0, image.Width());
  const std::int64_t end = std::clamp<std::int64_t>(sample + columns_, first, image.Width());
  const auto values = std::span(line_).first(static_cast<std::size_t>(end - first));
  std::fill(pixels_.begin(), pixels_.end(), 0.0F);
  std::fill(has_data_.begin(), has_data_.end(), 0);
  double power = 0.0;
  std::int64_t count = 0;
  for (int row = 0; row < rows_; ++row) {
    if (line + row < 0 || line + row >= image.Height()) {
      continue;
    }
    image.ReadLine(line + row, first, values);
    auto at = static_cast<std::size_t>(std::int64_t{row} * columns_ + (first - sample));
    for (const VALUE& value : values) {
      const double norm = std::norm(value);
      if (norm > 0.0 && std::isfinite(norm)) {
        pixels_[at] = std::complex<float>(value);
        has_data_[at] = 1;
        power += norm;
        ++count;
      }
      ++at;
    }
  }
  if (count > 0) {
    const auto scale = static_cast<float>(1.0 / std::sqrt(power / static_cast<double>(count)));
    for (std::complex<float>& pixel : pixels_) {
      pixel *= scale;
    }
  }
}

void AMPLITUDE_CHIP::WidenSpectrum() {
  forward_(pixels_);
  std::fill(wide_.begin(), wide_.end(), 0.0F);
  const int wide_columns = samples_a_pixel * columns_;
  const auto widened = [](int index, int length) {
    return index < (length + 1) / 2 ? index : index + (samples_a_pixel - 1) * length;
  };
  for (int row = 0; row < rows_; ++row) {
    for (int column = 0; column < columns_; ++column) {
      wide_[static_cast<std::size_t>(std::int64_t{widened(row, rows_)} * wide_columns +
                                     widened(column, columns_))] =
          pixels_[static_cast<std::size_t>(std::int64_t{row} * columns_ + column)];
    }
  }
  backward_(wide_);
}

void AMPLITUDE_CHIP::Detect() {
  const int wide_columns = samples_a_pixel * columns_;
  const float scale = 1.0F / static_cast<float>(rows_ * columns_);
  double sum = 0.0;
  std::int64_t count = 0;
  const auto for_each = [&](auto handle) {
    for (int row = 0; row < Rows(); ++row) {
      for (int column = 0; column < Columns(); ++column) {
        handle(row, column,
               amplitudes_[static_cast<std::size_t>(std::int64_t{row} * Columns() + column)]);
      }
    }
  };
  constexpr std::int64_t wide_margin = std::int64_t{samples_a_pixel} * margin;
  for_each([&](int row, int column, float& amplitude) {
    if (HasData(row / samples_a_pixel, column / samples_a_pixel)) {
      const std::complex<float> value = wide_[static_cast<std::size_t>(
          (wide_margin + row) * wide_columns + wide_margin + column)];
      amplitude = scale * std::sqrt(std::norm(value));
      sum += amplitude;
      ++count;
    }
  });
  const auto mean = static_cast<float>(sum / static_cast<double>(std::max<std::int64_t>(count, 1)));
  for_each([&](int row, int column, float& amplitude) {
    amplitude = HasData(row / samples_a_pixel, column / samples_a_pixel) ? amplitude - mean : 0.0F;
  });
}

double AMPLITUDE_CHIP::DataShare(const RANGE_AZIMUTH<int>& first,
                                 const RANGE_AZIMUTH<int>& size) const noexcept {
  int count = 0;
  for (int line = 0; line < size.azimuth; ++line) {
    for (int sample = 0; sample < size.range; ++sample) {
      count += HasData(first.azimuth + line, first.range + sample) ? 1 : 0;
    }
  }
  return static_cast<double>(count) / (static_cast<double>(size.range) * size.azimuth);
}
