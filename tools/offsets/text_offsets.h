#pragma once

#include <optional>
#include <string>

#include "offsets/offset_source.h"

/// How the lines of a table of offsets are to be read.
struct TEXT_OFFSETS_OPTIONS {
  std::string path;
  /// Names of the columns, with commas between: sample, range, line, azimuth, snr, and "-" for one
  /// that does not count.
  std::string columns = "sample,range,line,azimuth,snr";
  bool negate = false;
};

/// Offsets as a table of text, one a line in any order, as other matchers write them, with blanks,
/// commas or semicolons between the columns. Lines that are empty or begin with "#" do not count,
/// nor does a heading, a first line without any number. The rows and columns of the source are
/// those of the grid on which the offsets lie; where they lie on none, cells that hold one on
/// average.
class TEXT_OFFSETS final : public OFFSET_SOURCE {
 public:
  /// Throws std::invalid_argument for a wrong list of columns, and std::runtime_error, which names
  /// the line, for a file that can not be read as such a table.
  explicit TEXT_OFFSETS(const TEXT_OFFSETS_OPTIONS& options);

  int Columns() const override { return columns_; }
  int Rows() const override { return static_cast<int>(rows_.size()); }
  RANGE_AZIMUTH<double> Posting() const override { return posting_; }
  RANGE_AZIMUTH<int> MasterSize() const override { return {}; }
  double LeastSnr() const override { return 0.0; }
  std::vector<OFFSET> Row(int row) const override { return rows_[static_cast<std::size_t>(row)]; }
  bool IsMadeOf(const std::string& path) const override;

 private:
  void Arrange(std::vector<OFFSET> offsets);

  std::string path_;
  RANGE_AZIMUTH<double> posting_{1.0, 1.0};
  int columns_ = 0;
  std::vector<std::vector<OFFSET>> rows_;
};
