#include "match/window_match.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr int samples_a_pixel = AMPLITUDE_CHIP::samples_a_pixel;

RANGE_AZIMUTH<int> SearchedSize(const WINDOW_SHAPE& shape) {
  return {shape.window.range + 2 * shape.search.range,
          shape.window.azimuth + 2 * shape.search.azimuth};
}

/// Phases of exp(2 pi i frequency shift / length) for the first `count` frequencies; those of the
/// upper half of `length` are negative.
std::vector<std::complex<double>> Phases(int count, int length, double shift) {
  std::vector<std::complex<double>> phases;
  for (int i = 0; i < count; ++i) {
    const int frequency = i <= length / 2 ? i : i - length;
    phases.push_back(std::polar(1.0, 2.0 * std::numbers::pi * frequency * shift / length));
  }
  return phases;
}

/// Weights of values at -1, 0 and 1 in the parabola through them.
std::array<double, 3> ParabolaWeights(double x) {
  return {0.5 * x * (x - 1.0), 1.0 - x * x, 0.5 * x * (x + 1.0)};
}

}  // namespace

WINDOW_MATCH::WINDOW_MATCH(const WINDOW_SHAPE& shape, const IMAGE_PAIR& pair)
    : shape_(shape),
      pair_(pair),
      master_(shape.window, pair.master_centroid),
      slave_(SearchedSize(shape), pair.slave_centroid),
      columns_(slave_.Columns()),
      rows_(slave_.Rows()),
      forward_(rows_, columns_),
      backward_(rows_, columns_),
      values_(static_cast<std::size_t>(rows_ * columns_)),
      master_spectrum_(static_cast<std::size_t>(rows_ * (columns_ / 2 + 1))),
      cross_spectrum_(master_spectrum_.size()),
      scratch_(master_spectrum_.size()),
      sums_(static_cast<std::size_t>((rows_ + 1) * (columns_ + 1))),
      squares_(sums_.size()),
      surface_(static_cast<std::size_t>(LagRows() * LagColumns())) {}

std::optional<MATCHED_SHIFT> WINDOW_MATCH::Find(std::int64_t sample, std::int64_t line,
                                                const RANGE_AZIMUTH<std::int64_t>& expected) {
  constexpr double least_share = 0.75;
  master_.Load(pair_.master, sample, line);
  if (master_.DataShare({}, shape_.window) < least_share) {
    return std::nullopt;
  }
  slave_.Load(pair_.slave, sample + expected.range - shape_.search.range,
              line + expected.azimuth - shape_.search.azimuth);
  Correlate();
  SumSquares();
  Normalise();
  const PEAK peak = FindPeak();
  const bool at_end = peak.column == 0 || peak.row == 0 || peak.column == LagColumns() - 1 ||
                      peak.row == LagRows() - 1;
  if (at_end || slave_.DataShare({peak.column / samples_a_pixel, peak.row / samples_a_pixel},
                                 shape_.window) < least_share) {
    return std::nullopt;
  }
  const LAG lag = Refine(peak);
  return MATCHED_SHIFT{
      static_cast<double>(expected.range) + lag.column / samples_a_pixel - shape_.search.range,
      static_cast<double>(expected.azimuth) + lag.row / samples_a_pixel - shape_.search.azimuth,
      SignalToNoise(peak), CentroidOfFeatures()};
}

/// A part of the window counts for the shift as the square of its amplitudes' slope.
RANGE_AZIMUTH<double> WINDOW_MATCH::CentroidOfFeatures() const {
  double sum = 0.0;
  double x = 0.0;
  double y = 0.0;
  for (int row = 0; row + 1 < master_.Rows(); ++row) {
    for (int column = 0; column + 1 < master_.Columns(); ++column) {
      const double across = master_.At(row, column + 1) - master_.At(row, column);
      const double along = master_.At(row + 1, column) - master_.At(row, column);
      const double weight = across * across + along * along;
      sum += weight;
      x += weight * column;
      y += weight * row;
    }
  }
  return {(x / sum - 0.5 * (master_.Columns() - 2)) / samples_a_pixel,
          (y / sum - 0.5 * (master_.Rows() - 2)) / samples_a_pixel};
}

/// Fills the surface with the sums of master times shifted slave, for now without a norm.
void WINDOW_MATCH::Correlate() {
  double sum = 0.0;
  for (int row = 0; row < master_.Rows(); ++row) {
    for (int column = 0; column < master_.Columns(); ++column) {
      sum += master_.At(row, column);
    }
  }
  const auto mean =
      static_cast<float>(sum / (static_cast<double>(master_.Rows()) * master_.Columns()));
  std::fill(values_.begin(), values_.end(), 0.0F);
  master_power_ = 0.0;
  for (int row = 0; row < master_.Rows(); ++row) {
    for (int column = 0; column < master_.Columns(); ++column) {
      const float value = master_.At(row, column) - mean;
      values_[static_cast<std::size_t>(std::int64_t{row} * columns_ + column)] = value;
      master_power_ += static_cast<double>(value) * value;
    }
  }
  forward_(values_, master_spectrum_);
  for (int row = 0; row < rows_; ++row) {
    for (int column = 0; column < columns_; ++column) {
      values_[static_cast<std::size_t>(std::int64_t{row} * columns_ + column)] =
          slave_.At(row, column);
    }
  }
  forward_(values_, cross_spectrum_);
  CorrelateSpectra(master_spectrum_, cross_spectrum_);
  scratch_ = cross_spectrum_;
  backward_(scratch_, values_);
  const double scale = 1.0 / (static_cast<double>(rows_) * columns_);
  for (int row = 0; row < LagRows(); ++row) {
    for (int column = 0; column < LagColumns(); ++column) {
      const auto index =
          static_cast<std::size_t>(static_cast<std::int64_t>(row) * columns_ + column);
      Surface(row, column) = scale * values_[index];
    }
  }
}

void WINDOW_MATCH::SumSquares() {
  const auto stride = static_cast<std::size_t>(columns_) + 1;
  for (int row = 0; row < rows_; ++row) {
    double sum = 0.0;
    double square = 0.0;
    for (int column = 0; column < columns_; ++column) {
      const double value = slave_.At(row, column);
      sum += value;
      square += value * value;
      const std::size_t at =
          static_cast<std::size_t>(row + 1) * stride + static_cast<std::size_t>(column) + 1;
      sums_[at] = sums_[at - stride] + sum;
      squares_[at] = squares_[at - stride] + square;
    }
  }
}

/// Of the slave's values within the window at a shift, times their number.
double WINDOW_MATCH::SlaveVariance(int row, int column) const {
  const auto total = [&](const std::vector<double>& table) {
    const auto at = [&](int r, int c) {
      return table[static_cast<std::size_t>(std::int64_t{r} * (columns_ + 1) + c)];
    };
    const int end_row = row + master_.Rows();
    const int end_column = column + master_.Columns();
    return at(end_row, end_column) - at(row, end_column) - at(end_row, column) + at(row, column);
  };
  const double sum = total(sums_);
  return total(squares_) - sum * sum / (static_cast<double>(master_.Rows()) * master_.Columns());
}

/// Makes a correlation coefficient of every sum, 0 where either image is empty.
void WINDOW_MATCH::Normalise() {
  // Windows that are nearly empty would otherwise win by their rounding errors.
  const double least = 1e-3 * master_power_;
  for (int row = 0; row < LagRows(); ++row) {
    for (int column = 0; column < LagColumns(); ++column) {
      const double variance = SlaveVariance(row, column);
      Surface(row, column) =
          variance > least ? Surface(row, column) / std::sqrt(variance * master_power_) : 0.0;
    }
  }
}

WINDOW_MATCH::PEAK WINDOW_MATCH::FindPeak() {
  const auto at = std::max_element(surface_.begin(), surface_.end()) - surface_.begin();
  return {static_cast<int>(at) % LagColumns(), static_cast<int>(at) / LagColumns()};
}

double WINDOW_MATCH::SignalToNoise(const PEAK& peak) {
  constexpr int reach_of_peak = 3 * samples_a_pixel;
  double sum = 0.0;
  double squares = 0.0;
  int count = 0;
  for (int row = 0; row < LagRows(); ++row) {
    for (int column = 0; column < LagColumns(); ++column) {
      if (std::abs(row - peak.row) > reach_of_peak ||
          std::abs(column - peak.column) > reach_of_peak) {
        sum += Surface(row, column);
        squares += Surface(row, column) * Surface(row, column);
        ++count;
      }
    }
  }
  const double mean = sum / count;
  const double deviation = std::sqrt(std::max(squares / count - mean * mean, 1e-12));
  return (Surface(peak.row, peak.column) - mean) / deviation;
}

WINDOW_MATCH::LAG WINDOW_MATCH::Refine(const PEAK& peak) const {
  LAG lag{static_cast<double>(peak.column), static_cast<double>(peak.row)};
  for (const double step : {0.5, 0.125, 0.125}) {
    const NINE f = Correlations(lag, step);
    const auto& [above, amid, below] = f;
    double slope_x = 0.0;
    double curvature_x = 0.0;
    for (const auto& row : f) {
      slope_x += (row[2] - row[0]) / 6.0;
      curvature_x += (row[0] - 2.0 * row[1] + row[2]) / 3.0;
    }
    double slope_y = 0.0;
    double curvature_y = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
      slope_y += (below[i] - above[i]) / 6.0;
      curvature_y += (above[i] - 2.0 * amid[i] + below[i]) / 3.0;
    }
    const double twist = 0.25 * (below[2] - below[0] - above[2] + above[0]);
    const double determinant = curvature_x * curvature_y - twist * twist;
    if (!(determinant > 0.0 && curvature_x < 0.0)) {
      break;
    }
    const double x = (twist * slope_y - curvature_y * slope_x) / determinant;
    const double y = (twist * slope_x - curvature_x * slope_y) / determinant;
    lag.column += step * std::clamp(x, -2.0, 2.0);
    lag.row += step * std::clamp(y, -2.0, 2.0);
  }
  return lag;
}

/// Correlation coefficients at a centre and `step` around it, rows first.
WINDOW_MATCH::NINE WINDOW_MATCH::Correlations(const LAG& centre, double step) const {
  const int half_columns = columns_ / 2 + 1;
  NINE result{};
  std::array<std::vector<std::complex<double>>, 3> column_phases;
  for (std::size_t i = 0; i < 3; ++i) {
    column_phases[i] =
        Phases(half_columns, columns_, centre.column + step * (static_cast<double>(i) - 1.0));
  }
  std::vector<std::complex<double>> line(static_cast<std::size_t>(half_columns));
  for (std::size_t j = 0; j < 3; ++j) {
    const auto row_phases =
        Phases(rows_, rows_, centre.row + step * (static_cast<double>(j) - 1.0));
    std::fill(line.begin(), line.end(), 0.0);
    for (int row = 0; row < rows_; ++row) {
      const std::complex<double> phase = row_phases[static_cast<std::size_t>(row)];
      const std::complex<float>* spectrum =
          cross_spectrum_.data() + static_cast<std::ptrdiff_t>(row) * half_columns;
      for (std::size_t column = 0; column < line.size(); ++column) {
        const std::complex<double> value(spectrum[column]);
        line[column] = {
            line[column].real() + value.real() * phase.real() - value.imag() * phase.imag(),
            line[column].imag() + value.real() * phase.imag() + value.imag() * phase.real()};
      }
    }
    for (std::size_t i = 0; i < 3; ++i) {
      double sum = 0.0;
      for (std::size_t column = 0; column < line.size(); ++column) {
        // The columns that the half spectrum leaves out are the conjugates of others.
        const bool stands_alone = column == 0 || (columns_ % 2 == 0 && column + 1 == line.size());
        const std::complex<double> phase = column_phases[i][column];
        sum += (stands_alone ? 1.0 : 2.0) *
               (line[column].real() * phase.real() - line[column].imag() * phase.imag());
      }
      result[j][i] = sum;
    }
  }
  const int peak_row = static_cast<int>(std::clamp(std::lround(centre.row), 1L, LagRows() - 2L));
  const int peak_column =
      static_cast<int>(std::clamp(std::lround(centre.column), 1L, LagColumns() - 2L));
  for (std::size_t j = 0; j < 3; ++j) {
    const auto row_weights =
        ParabolaWeights(centre.row + step * (static_cast<double>(j) - 1.0) - peak_row);
    for (std::size_t i = 0; i < 3; ++i) {
      const auto column_weights =
          ParabolaWeights(centre.column + step * (static_cast<double>(i) - 1.0) - peak_column);
      double variance = 0.0;
      for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
          variance += row_weights[static_cast<std::size_t>(r)] *
                      column_weights[static_cast<std::size_t>(c)] *
                      SlaveVariance(peak_row + r - 1, peak_column + c - 1);
        }
      }
      const double scale = 1.0 / (static_cast<double>(rows_) * columns_);
      result[j][i] *= scale / std::sqrt(std::max(variance * master_power_, 1e-30));
    }
  }
  return result;
}
