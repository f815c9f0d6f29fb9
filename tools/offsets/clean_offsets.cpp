#include "offsets/clean_offsets.h"

#include <Eigen/Dense>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <vector>

#include "base/parallel_lines.h"

namespace {

constexpr int reach = 2;
constexpr double never_rejected = 0.02;
constexpr double deviation_of_median = 1.4826;  // of normally distributed residuals

double Median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// The usual size of numbers, had they a normal distribution.
double Spread(const std::vector<double>& residuals, std::vector<double>& scratch) {
  scratch = residuals;
  std::transform(scratch.begin(), scratch.end(), scratch.begin(),
                 [](double residual) { return std::abs(residual); });
  return deviation_of_median * Median(scratch) + never_rejected;
}

/// Neighbours of a place: where they are as seen from it, in postings, and what they say.
class NEIGHBOURS {
 public:
  void Clear() {
    places_.clear();
    offsets_.clear();
  }
  void Add(const OFFSET& offset, const OFFSET& centre, const RANGE_AZIMUTH<double>& posting) {
    places_.emplace_back(1.0, (offset.x - centre.x) / posting.range,
                         (offset.y - centre.y) / posting.azimuth);
    offsets_.push_back(&offset);
  }
  std::size_t Count() const noexcept { return offsets_.size(); }

  double MeanSnr() const {
    double sum = 0.0;
    for (const OFFSET* offset : offsets_) {
      sum += offset->snr;
    }
    return sum / static_cast<double>(Count());
  }

  /// What to expect in the centre, and how far from it a value usually is.
  struct PREDICTION {
    double value;
    double spread;
  };
  PREDICTION Predict(double OFFSET::*component) {
    residuals_.clear();
    for (const OFFSET* offset : offsets_) {
      residuals_.push_back(offset->*component);
    }
    Eigen::Vector3d plane(Median(scratch_ = residuals_), 0.0, 0.0);
    for (double& residual : residuals_) {
      residual -= plane[0];
    }
    constexpr int fits = 5;
    for (int i = 0; i < fits; ++i) {
      Refit(plane, component);
    }
    return {plane[0], Spread(residuals_, scratch_)};
  }

  /// Whether a value is so close to the median of the neighbours that nothing would reject it.
  bool AgreesClosely(double value, double OFFSET::*component, double reject) {
    scratch_.clear();
    for (const OFFSET* offset : offsets_) {
      scratch_.push_back(offset->*component);
    }
    return std::abs(value - Median(scratch_)) <= 0.5 * reject * never_rejected;
  }

 private:
  /// Least squares with the weights 1 / (1 + (residual / 2 spread)^2)^2.
  void Refit(Eigen::Vector3d& plane, double OFFSET::*component) {
    const double scale = 2.0 * Spread(residuals_, scratch_);
    // Neighbours on one line leave the slope across it open: it is 0 then.
    Eigen::Matrix3d products = Eigen::Vector3d(0.0, 1e-6, 1e-6).asDiagonal();
    Eigen::Vector3d values = Eigen::Vector3d::Zero();
    for (std::size_t i = 0; i < Count(); ++i) {
      const double ratio = residuals_[i] / scale;
      const double weight = std::pow(1.0 + ratio * ratio, -2);
      products += weight * places_[i] * places_[i].transpose();
      values += weight * offsets_[i]->*component * places_[i];
    }
    plane = products.ldlt().solve(values);
    for (std::size_t i = 0; i < Count(); ++i) {
      residuals_[i] = offsets_[i]->*component - plane.dot(places_[i]);
    }
  }

  std::vector<Eigen::Vector3d> places_;
  std::vector<const OFFSET*> offsets_;
  std::vector<double> residuals_;
  std::vector<double> scratch_;
};

using ROWS = std::vector<std::vector<OFFSET>>;

/// Rows of a source with those around them.
class CLEANER {
 public:
  CLEANER(const CLEANING& cleaning, const RANGE_AZIMUTH<double>& posting, ROWS& rows)
      : cleaning_(cleaning), posting_(posting), rows_(rows) {}

  /// Marks the offsets of a row that depart from all of their neighbours.
  void Suspect(int row) {
    for (OFFSET& offset : rows_[static_cast<std::size_t>(row)]) {
      FindNeighbours(offset, row, [](const OFFSET&) { return true; });
      offset.is_suspect = !offset.IsGap() && IsOutlier(offset);
    }
  }

  /// The offsets that count of a row, once all rows around have been suspected; adds what became of
  /// the others to the counts.
  std::vector<OFFSET> Clean(int row, CLEANING_COUNTS& counts) {
    std::vector<OFFSET> result;
    for (const OFFSET& offset : rows_[static_cast<std::size_t>(row)]) {
      FindNeighbours(offset, row, [](const OFFSET& other) { return !other.is_suspect; });
      const bool is_outlier = !offset.IsGap() && IsOutlier(offset);
      counts.outliers += is_outlier ? 1 : 0;
      if (!offset.IsGap() && !is_outlier) {
        result.push_back(offset);
      } else if (neighbours_.Count() >= (is_outlier ? enough_for_outlier : enough_for_gap)) {
        result.push_back(Predicted(offset));
        ++counts.predicted;
      }
    }
    return result;
  }

 private:
  static constexpr std::size_t enough_to_judge = 5;
  static constexpr std::size_t enough_for_outlier = 8;
  static constexpr std::size_t enough_for_gap = 12;

  template <class BELIEVES>
  void FindNeighbours(const OFFSET& centre, int row, const BELIEVES& believes) {
    neighbours_.Clear();
    const int last = std::min(row + reach, static_cast<int>(rows_.size()) - 1);
    for (int other_row = std::max(row - reach, 0); other_row <= last; ++other_row) {
      const std::vector<OFFSET>& others = rows_[static_cast<std::size_t>(other_row)];
      auto other =
          std::lower_bound(others.begin(), others.end(), centre.column - reach,
                           [](const OFFSET& offset, int column) { return offset.column < column; });
      for (; other != others.end() && other->column <= centre.column + reach; ++other) {
        if (&*other != &centre && !other->IsGap() && believes(*other)) {
          neighbours_.Add(*other, centre, posting_);
        }
      }
    }
  }

  bool IsOutlier(const OFFSET& offset) {
    return !cleaning_.keep_outliers && neighbours_.Count() >= enough_to_judge &&
           (Departs(offset, &OFFSET::range) || Departs(offset, &OFFSET::azimuth));
  }

  bool Departs(const OFFSET& offset, double OFFSET::*component) {
    if (neighbours_.AgreesClosely(offset.*component, component, cleaning_.reject)) {
      return false;
    }
    const auto [value, spread] = neighbours_.Predict(component);
    return std::abs(offset.*component - value) > cleaning_.reject * spread;
  }

  OFFSET Predicted(OFFSET offset) {
    offset.range = neighbours_.Predict(&OFFSET::range).value;
    offset.azimuth = neighbours_.Predict(&OFFSET::azimuth).value;
    offset.snr = neighbours_.MeanSnr();
    return offset;
  }

  const CLEANING& cleaning_;
  RANGE_AZIMUTH<double> posting_;
  ROWS& rows_;
  NEIGHBOURS neighbours_;
};

/// A row in which weak offsets have become gaps.
std::vector<OFFSET> ReadRow(const OFFSET_SOURCE& source, int row, double least_snr,
                            CLEANING_COUNTS& counts) {
  std::vector<OFFSET> offsets = source.Row(row);
  for (OFFSET& offset : offsets) {
    if (!offset.IsGap()) {
      ++counts.measured;
      if (!(offset.snr > 0.0 && offset.snr >= least_snr)) {
        ++counts.weak;
        offset.range = NAN;
      }
    }
  }
  return offsets;
}

}  // namespace

CLEANING_COUNTS ForEachCleanOffset(const OFFSET_SOURCE& source, const CLEANING& cleaning,
                                   const std::function<void(const OFFSET&)>& handle,
                                   const std::function<void(double)>& progress) {
  constexpr int rows_at_once = 64;
  CLEANING_COUNTS counts;
  ROWS rows;  // from `first_read` on
  int first_read = 0;
  for (int first = 0; first < source.Rows(); first += rows_at_once) {
    const int end = std::min(first + rows_at_once, source.Rows());
    const int keep_from = std::max(first - 2 * reach, 0);
    rows.erase(rows.begin(), rows.begin() + (keep_from - first_read));
    first_read = keep_from;
    while (first_read + static_cast<int>(rows.size()) < std::min(end + 2 * reach, source.Rows())) {
      rows.push_back(
          ReadRow(source, first_read + static_cast<int>(rows.size()), cleaning.least_snr, counts));
    }
    ForEachLine(static_cast<std::int64_t>(rows.size()), [&](std::int64_t row) {
      CLEANER(cleaning, source.Posting(), rows).Suspect(static_cast<int>(row));
    });
    const auto n_rows = static_cast<std::size_t>(end - first);
    ROWS cleaned(n_rows);
    std::vector<CLEANING_COUNTS> row_counts(n_rows);
    ForEachLine(end - first, [&](std::int64_t i) {
      const auto at = static_cast<std::size_t>(i);
      cleaned[at] = CLEANER(cleaning, source.Posting(), rows)
                        .Clean(first - first_read + static_cast<int>(i), row_counts[at]);
    });
    for (std::size_t i = 0; i < n_rows; ++i) {
      counts.outliers += row_counts[i].outliers;
      counts.predicted += row_counts[i].predicted;
      std::for_each(cleaned[i].begin(), cleaned[i].end(), handle);
    }
    progress(static_cast<double>(end) / source.Rows());
  }
  return counts;
}
