#include "check_run/lag_one.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "base/parallel_lines.h"

namespace {

constexpr double two_pi = 2.0 * std::numbers::pi;

bool HoldsData(double power) {
  return power > 0.0 && std::isfinite(power);
}

/// A line of an image and the one after it.
class LINE_PAIR {
 public:
  explicit LINE_PAIR(const IMAGE_LINES& image)
      : image_(image),
        values_(static_cast<std::size_t>(image.n_samples)),
        next_(static_cast<std::size_t>(image.n_samples)) {}

  void GoTo(std::int64_t line) {
    if (next_line_ == line) {
      values_.swap(next_);
    } else {
      image_.read(line, values_);
    }
    next_line_ = line + 1;
    image_.read(next_line_, next_);
  }

  /// Of the samples from `first` to before `last`.
  LAG_ONE Sum(std::int64_t first, std::int64_t last) const {
    LAG_ONE sum;
    for (auto sample = static_cast<std::size_t>(first); sample < static_cast<std::size_t>(last);
         ++sample) {
      sum.Add(values_[sample], next_[sample]);
    }
    return sum;
  }

 private:
  const IMAGE_LINES& image_;
  std::vector<std::complex<double>> values_;
  std::vector<std::complex<double>> next_;
  std::int64_t next_line_ = -1;
};

}  // namespace

void LAG_ONE::Add(std::complex<double> pixel, std::complex<double> next) noexcept {
  const double pixel_power = std::norm(pixel);
  const double next_power = std::norm(next);
  if (HoldsData(pixel_power) && HoldsData(next_power)) {
    product += std::complex<double>(next.real() * pixel.real() + next.imag() * pixel.imag(),
                                    next.imag() * pixel.real() - next.real() * pixel.imag());
    power += 0.5 * (pixel_power + next_power);
    ++pairs;
  }
}

void LAG_ONE::Add(const LAG_ONE& other) noexcept {
  product += other.product;
  power += other.power;
  pairs += other.pairs;
}

LAG_ONE LAG_ONE::Less(double turns) const noexcept {
  LAG_ONE rest = *this;
  rest.product *= std::polar(1.0, -two_pi * turns);
  return rest;
}

double LAG_ONE::Turns() const noexcept {
  return std::arg(product) / two_pi;
}

double LAG_ONE::Coherence() const noexcept {
  return std::abs(product) / power;
}

double LAG_ONE::Deviation() const noexcept {
  const double coherence = Coherence();
  return pairs > 0 && coherence > 0.0
             ? std::sqrt((1.0 - std::min(1.0, coherence * coherence)) /
                         (2.0 * static_cast<double>(pairs) * coherence * coherence)) /
                   two_pi
             : std::numeric_limits<double>::infinity();
}

double LAG_ONE::Bandwidth() const noexcept {
  const double coherence = Coherence();
  double narrow = 0.0;
  double wide = 1.0;
  for (int i = 0; i < 50; ++i) {
    const double middle = 0.5 * (narrow + wide);
    const double angle = std::numbers::pi * middle;
    (std::sin(angle) > coherence * angle ? narrow : wide) = middle;
  }
  return 0.5 * (narrow + wide);
}

std::vector<LAG_ONE_CELL> SumLagOne(const IMAGE_LINES& image, int columns, int rows,
                                    std::int64_t most_pairs, const CENTROID& known) {
  std::vector<LAG_ONE_CELL> sums(static_cast<std::size_t>(columns) *
                                 static_cast<std::size_t>(rows));
  const std::int64_t pairs = std::max<std::int64_t>(image.n_lines - 1, 0);
  const std::int64_t pairs_a_row = std::max<std::int64_t>(1, most_pairs / rows);
  ForEachLine(rows, [&](std::int64_t row) {
    const std::int64_t end = (row + 1) * pairs / rows;
    LINE_PAIR lines(image);
    const std::int64_t begin = row * pairs / rows;
    const std::int64_t step = std::max<std::int64_t>(1, (end - begin) / pairs_a_row);
    for (std::int64_t line = begin; line < end; line += step) {
      lines.GoTo(line);
      for (int column = 0; column < columns; ++column) {
        const std::int64_t first = column * image.n_samples / columns;
        const std::int64_t last = (column + 1) * image.n_samples / columns;
        const double turns =
            known(static_cast<double>(line) + 0.5, 0.5 * static_cast<double>(first + last - 1));
        const LAG_ONE data = lines.Sum(first, last);
        sums[static_cast<std::size_t>(row * columns + column)].Add({data, data.Less(turns)});
      }
    }
  });
  return sums;
}
