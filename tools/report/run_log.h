#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A parameter as the run found it.
struct LOGGED_PARAMETER {
  std::string name;
  std::string value;
  std::string source;  ///< "arguments", "configuration file", ...; empty when unknown
};

/// What a run has counted.
struct RUN_FINDINGS {
  std::string saturated;   ///< components of the output
  std::string non_finite;  ///< components of the input under valid mask
};

/// The log file of a run, line by line: what a person would read out of it.
class RUN_LOG {
 public:
  struct LINE {
    std::string level;  ///< tag without trailing blanks
    std::string text;   ///< without tag and program
  };

  /// Throws std::runtime_error when the file cannot be read or has no line of a log.
  explicit RUN_LOG(const std::string& path);

  const std::vector<LINE>& Lines() const noexcept { return lines_; }
  std::vector<std::string> Texts(std::string_view level) const;
  /// What follows the first line text that begins so; nothing without such a line.
  std::optional<std::string> After(std::string_view begin) const;
  bool Has(std::string_view begin) const { return After(begin).has_value(); }

  /// Each parameter once, in the order in which they were found. A log file that holds no level
  /// below INFO tells fewer, and no sources.
  const std::vector<LOGGED_PARAMETER>& Parameters() const noexcept { return parameters_; }
  std::optional<std::string> Parameter(std::string_view name) const;

  /// Nothing in logs of runs that did not come to their end and of older programs.
  std::optional<RUN_FINDINGS> Findings() const;

  /// Of the run; nothing when it has no end.
  std::optional<double> ExecutionSeconds() const;

 private:
  void AddParameter(const LINE& line);

  std::vector<LINE> lines_;
  std::vector<LOGGED_PARAMETER> parameters_;
  bool has_lookups_ = false;
};
