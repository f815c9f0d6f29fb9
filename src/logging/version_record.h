#pragma once

#include <string>
#include <string_view>

/// What identifies a build of a program: printed in the log header, and kept for the
/// supervisor line and the processing history.
struct VERSION_RECORD {
  std::string display_name;        ///< "Resample"
  std::string version;             ///< "0.0.5"
  std::string compiled_by;         ///< the build tool's mark
  std::string compile_date;        ///< "YYYY-MM-DDThh:mm:ss"
  std::string configuration_file;  ///< the controller's configuration file name
  std::string full_version;        ///< build identifier; empty: not printed
};

/// Turns a revision-control keyword "$Date: 2020/02/06 13:09:23 $" into "2020-02-06T13:09:23".
/// A text of another form is returned as it stands.
std::string DateFromKeyword(std::string_view keyword);

/// One line "name version  date compiled by mark" with the compile date's time part left out.
std::string VersionLine(const VERSION_RECORD& record);
