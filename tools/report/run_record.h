#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "report/run_log.h"

enum class RUN_STATE { SUCCEEDED, FAILED, UNFINISHED };

/// What a run has left in its directory.
class RUN_RECORD {
 public:
  /// `log_name` empty: the log is "log.resample", or the only file "log.*" of the directory. Throws
  /// std::runtime_error without a log.
  RUN_RECORD(const std::filesystem::path& directory, const std::string& log_name);

  const RUN_LOG& Log() const noexcept { return log_; }
  const std::filesystem::path& LogPath() const noexcept { return log_path_; }
  /// What follows "log." in the log's name.
  const std::string& Name() const noexcept { return name_; }
  RUN_STATE State() const;

  /// The file that a parameter names; nothing when the run was not given it. Relative names count
  /// from the directory of the run.
  std::optional<std::string> File(std::string_view parameter) const;
  /// The same for an output, which an earlier run has left when this one did not come that far.
  std::optional<std::string> Output(std::string_view parameter) const;
  std::string Resolved(const std::string& path) const;

  /// Output size; 0 when the log does not tell.
  std::int64_t Samples() const { return Number("n_samples"); }
  std::int64_t Lines() const { return Number("n_lines"); }
  /// Duration in seconds: between the files that the run leaves at its start and at its end, where
  /// they agree with the log, whose own time counts whole seconds.
  std::optional<double> Seconds() const;

 private:
  std::int64_t Number(std::string_view parameter) const;
  std::string StatusFile(const char* kind) const;

  std::filesystem::path directory_;
  std::filesystem::path log_path_;
  RUN_LOG log_;
  std::string name_;
};
