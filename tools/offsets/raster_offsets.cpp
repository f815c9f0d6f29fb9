#include "offsets/raster_offsets.h"

#include <cmath>
#include <filesystem>
#include <limits>
#include <stdexcept>
#include <string_view>

namespace {

constexpr std::string_view ending_of_range = "_range.ras";
constexpr std::string_view ending_of_azimuth = "_azimuth.ras";

/// What the names of the other files of `match` begin with, as a raster with this ending tells;
/// empty for rasters of other programs.
std::string PrefixOfMatch(const std::string& raster, std::string_view ending = ending_of_range) {
  if (!raster.ends_with(ending)) {
    return {};
  }
  const std::string prefix = raster.substr(0, raster.size() - ending.size());
  return std::filesystem::exists(prefix + ".pool") ? prefix : std::string();
}

/// One in place of the other would pass as the raster of another program, at a posting of 1.
void CheckNames(const RASTER_OFFSETS_OPTIONS& options) {
  if (!PrefixOfMatch(options.range, ending_of_azimuth).empty()) {
    throw std::invalid_argument(options.range + " has azimuth offsets; those in range come first");
  }
  if (!PrefixOfMatch(options.azimuth, ending_of_range).empty()) {
    throw std::invalid_argument(options.azimuth + " has range offsets; those in azimuth come next");
  }
}

std::optional<OFFSET_RECORD> RecordBeside(const std::string& range) {
  const std::string prefix = PrefixOfMatch(range);
  return prefix.empty() ? std::nullopt : std::optional(OFFSET_RECORD::Read(prefix + ".pool"));
}

std::string SnrFile(const RASTER_OFFSETS_OPTIONS& options) {
  const std::string prefix = options.snr.empty() ? PrefixOfMatch(options.range) : std::string();
  return prefix.empty() ? options.snr : prefix + "_snr.ras";
}

RANGE_AZIMUTH<double> Given(const std::optional<std::array<double, 2>>& option,
                            const RANGE_AZIMUTH<double>& otherwise) {
  return option ? RANGE_AZIMUTH<double>{(*option)[0], (*option)[1]} : otherwise;
}

void CheckSameSize(const OFFSET_RASTER& a, const OFFSET_RASTER& b, const std::string& name) {
  if (a.Width() != b.Width() || a.Height() != b.Height()) {
    throw std::invalid_argument(name + " has another size than the range offsets");
  }
}

}  // namespace

RASTER_OFFSETS::RASTER_OFFSETS(RASTER_OFFSETS_OPTIONS options)
    : record_(RecordBeside(options.range)),
      posting_(Given(options.posting,
                     record_ ? RANGE_AZIMUTH<double>{static_cast<double>(record_->posting.range),
                                                     static_cast<double>(record_->posting.azimuth)}
                             : RANGE_AZIMUTH<double>{1.0, 1.0})),
      first_(Given(options.first, record_ ? record_->first : RANGE_AZIMUTH<double>{})),
      sign_(options.negate ? -1.0 : 1.0),
      range_(options.range, options.bands[0], options.no_data),
      azimuth_(options.azimuth, options.bands[1], options.no_data) {
  CheckNames(options);
  CheckSameSize(range_, azimuth_, options.azimuth);
  if (const std::string snr = SnrFile(options); !snr.empty()) {
    snr_.emplace(snr, 1, options.no_data);
    CheckSameSize(range_, *snr_, snr);
  }
}

RANGE_AZIMUTH<int> RASTER_OFFSETS::MasterSize() const {
  if (record_) {
    return record_->master_size;
  }
  const auto length = [](double end) {
    if (!(end < std::numeric_limits<int>::max())) {
      throw std::invalid_argument("the posting puts offsets beyond any raster");
    }
    return static_cast<int>(std::lround(end));
  };
  return {length(first_.range + posting_.range * Columns()),
          length(first_.azimuth + posting_.azimuth * Rows())};
}

double RASTER_OFFSETS::LeastSnr() const {
  // By what `match` means by it; other programs count otherwise.
  constexpr double of_match = 5.0;
  return record_ ? of_match : 0.0;
}

std::vector<OFFSET> RASTER_OFFSETS::Row(int row) const {
  const auto width = static_cast<std::size_t>(Columns());
  std::vector<double> range(width);
  std::vector<double> azimuth(width);
  std::vector<double> snr(width, 1.0);
  range_.Read(row, range);
  azimuth_.Read(row, azimuth);
  if (snr_) {
    snr_->Read(row, snr);
  }
  std::vector<OFFSET> offsets(width);
  for (std::size_t i = 0; i < width; ++i) {
    offsets[i] = {.x = first_.range + posting_.range * static_cast<double>(i),
                  .y = first_.azimuth + posting_.azimuth * row,
                  .range = sign_ * range[i],
                  .azimuth = sign_ * azimuth[i],
                  .snr = snr[i],
                  .column = static_cast<int>(i)};
  }
  return offsets;
}

bool RASTER_OFFSETS::IsMadeOf(const std::string& path) const {
  return range_.IsMadeOf(path) || azimuth_.IsMadeOf(path) || (snr_ && snr_->IsMadeOf(path));
}
