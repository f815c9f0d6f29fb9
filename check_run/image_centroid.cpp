#include "check_run/image_centroid.h"

#include <algorithm>
#include <cmath>

#include "logging/formatted_text.h"

namespace {

constexpr int most_columns = 16;
constexpr int most_rows = 32;

/// Sums that know their centroid less exactly than this tell none [PRF].
constexpr double largest_deviation = 0.02;
/// A departure beyond which the annotation is suspect [PRF].
constexpr double suspect_departure = 0.1;

int CellsAlong(std::int64_t length, int most) {
  return static_cast<int>(std::clamp<std::int64_t>(length / 2, 1, most));
}

double Middle(int cell, int cells, std::int64_t length) {
  return (cell + 0.5) * static_cast<double>(length) / cells - 0.5;
}

bool TellsCentroid(const LAG_ONE& sums) {
  return sums.Deviation() < largest_deviation;
}

double ExcessOf(const LAG_ONE& rest) {
  return TellsCentroid(rest) ? std::abs(rest.Turns()) - 3.0 * rest.Deviation() : 0.0;
}

}  // namespace

double AnnotatedCentroid(const DOPPLER_CENTROID_MODEL& model, double line, double sample) {
  const double azimuth_time =
      model.azimuth_start_time + line / (model.Oversampling() * model.Prf());
  const double range_time =
      model.range_start_time + sample / (model.Oversampling() * model.RangeSamplingFrequency());
  return model.Frequency(azimuth_time, range_time);
}

bool IMAGE_CENTROID::IsMeasured() const noexcept {
  return TellsCentroid(rest);
}

double IMAGE_CENTROID::Departure() const noexcept {
  double largest = ExcessOf(rest);
  for (const auto* points : {&along_range, &along_azimuth}) {
    for (const CENTROID_POINT& point : *points) {
      largest = std::max(largest, ExcessOf(point.rest));
    }
  }
  return largest;
}

std::string IMAGE_CENTROID::Objection() const {
  if (Departure() > suspect_departure) {
    return FormattedText("the annotated Doppler centroid departs from that of the data by %.2f PRF",
                         Departure());
  }
  if (!IsMeasured() && TellsCentroid(data)) {
    return FormattedText(
        "the data agree on a Doppler centroid (%.2f PRF) but not with the annotation",
        data.Turns());
  }
  return "";
}

IMAGE_CENTROID MeasureCentroid(const IMAGE_LINES& image, const DOPPLER_CENTROID_MODEL* model,
                               std::int64_t most_pairs) {
  // The phase of the resampling turns fdc / PRF a line, oversampled or not.
  const CENTROID annotated = [model](double line, double sample) {
    return model != nullptr ? AnnotatedCentroid(*model, line, sample) / model->Prf() : 0.0;
  };
  const int columns = CellsAlong(image.n_samples, most_columns);
  const int rows = CellsAlong(image.n_lines - 1, most_rows);
  const std::vector<LAG_ONE_CELL> cells = SumLagOne(image, columns, rows, most_pairs, annotated);

  IMAGE_CENTROID centroid;
  centroid.along_range.resize(static_cast<std::size_t>(columns));
  centroid.along_azimuth.resize(static_cast<std::size_t>(rows));
  for (int row = 0; row < rows; ++row) {
    CENTROID_POINT& of_row = centroid.along_azimuth[static_cast<std::size_t>(row)];
    of_row.position = Middle(row, rows, image.n_lines);
    for (int column = 0; column < columns; ++column) {
      CENTROID_POINT& of_column = centroid.along_range[static_cast<std::size_t>(column)];
      of_column.position = Middle(column, columns, image.n_samples);
      const double value = annotated(of_row.position, of_column.position);
      of_row.annotated += value / columns;
      of_column.annotated += value / rows;
      const LAG_ONE_CELL& cell =
          cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                static_cast<std::size_t>(column)];
      of_row.rest.Add(cell.rest);
      of_column.rest.Add(cell.rest);
      centroid.data.Add(cell.data);
      centroid.rest.Add(cell.rest);
    }
  }
  return centroid;
}
