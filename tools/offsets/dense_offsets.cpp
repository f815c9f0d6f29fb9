#include "offsets/dense_offsets.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <vector>

namespace {

bool IsValid(double value, const std::optional<double>& no_data) noexcept {
  return std::isfinite(value) && value != no_data;
}

/// The no-data value of a band as its pixels hold it: texts such as -99999.99 are no float.
std::optional<double> NoDataOf(const GDAL_SOURCE& source, int band,
                               const std::optional<double>& given) {
  const std::optional<double> no_data = given ? given : source.NoData(band);
  constexpr double largest = std::numeric_limits<float>::max();
  const bool is_float = source.DataType(band) == "Float32";
  return no_data && is_float && std::abs(*no_data) <= largest ? static_cast<float>(*no_data)
                                                              : no_data;
}

}  // namespace

DENSE_OFFSETS::DENSE_OFFSETS(const DENSE_OFFSETS_OPTIONS& options)
    : options_(options),
      range_(options.range),
      azimuth_(options.azimuth),
      range_no_data_(NoDataOf(range_, options.bands[0], options.no_data)),
      azimuth_no_data_(NoDataOf(azimuth_, options.bands[1], options.no_data)) {
  if (range_.IsComplex(options.bands[0]) || azimuth_.IsComplex(options.bands[1])) {
    throw std::invalid_argument("offsets are real numbers, not complex ones");
  }
  if (range_.Whole().width != azimuth_.Whole().width ||
      range_.Whole().height != azimuth_.Whole().height) {
    throw std::invalid_argument(options.range + " and " + options.azimuth +
                                " have different sizes");
  }
}

void DENSE_OFFSETS::ForEach(int stride, const std::function<void(const DENSE_OFFSET&)>& handle,
                            const PROGRESS& progress) const {
  const GDAL_WINDOW whole = range_.Whole();
  const int lines_at_once = stride > 1 ? 1 : range_.LinesAtOnce(options_.bands[0], whole);
  const double sign = options_.negate ? -1.0 : 1.0;
  std::vector<double> range;
  std::vector<double> azimuth;
  for (int first = 0; first < whole.height; first += std::max(stride, lines_at_once)) {
    const int n_lines = std::min(lines_at_once, whole.height - first);
    const auto width = static_cast<std::size_t>(whole.width);
    range.resize(width * static_cast<std::size_t>(n_lines));
    azimuth.resize(range.size());
    range_.Read(options_.bands[0], {0, first, whole.width, n_lines}, range);
    azimuth_.Read(options_.bands[1], {0, first, whole.width, n_lines}, azimuth);
    for (int line = 0; line < n_lines; ++line) {
      const double y = options_.first[1] + options_.posting[1] * (first + line);
      for (int column = 0; column < whole.width; column += stride) {
        const std::size_t i =
            static_cast<std::size_t>(line) * width + static_cast<std::size_t>(column);
        if (IsValid(range[i], range_no_data_) && IsValid(azimuth[i], azimuth_no_data_)) {
          handle({options_.first[0] + options_.posting[0] * column, y, sign * range[i],
                  sign * azimuth[i]});
        }
      }
    }
    progress(static_cast<double>(first + n_lines) / whole.height);
  }
}
