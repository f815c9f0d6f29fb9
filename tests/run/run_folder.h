#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "support/process.h"
#include "support/scene.h"
#include "support/temporary_directory.h"

/// A directory in which the program runs, by the name of "run", on the files of a scene. What a
/// run takes may be changed before it is started.
class RUN_FOLDER {
 public:
  explicit RUN_FOLDER(const SCENE& scene) : parameters(WriteSceneFiles(scene, directory_.Path())) {}

 private:
  TEMPORARY_DIRECTORY directory_;

 public:
  /// Written into the configuration file "pcf.run" when a run starts.
  std::map<std::string, std::string> parameters;
  std::vector<std::string> arguments = {"-pid", "run"};
  std::map<std::string, std::string> environment = {{"PARALLEL", "1"}};
  std::string keyboard;

  PROCESS_SETTINGS Settings() const;
  PROCESS_END Run() const { return PROCESS(Settings()).Wait(); }

  const std::filesystem::path& Directory() const { return directory_.Path(); }
  std::string Path(std::string_view name) const { return directory_.File(name); }
  bool Exists(std::string_view name) const { return std::filesystem::exists(Path(name)); }
  std::string Content(std::string_view name) const { return ReadFile(Path(name)); }
  void Write(std::string_view name, std::string_view content) const {
    WriteFile(Path(name), content);
  }

  /// The lines of the log that begin with a text, without this text.
  std::vector<std::string> LogLines(std::string_view begin = "") const;
  /// The texts of the log's ALARM lines, one line each.
  std::string Alarms() const;
  /// How many lines of the log equal this one.
  long CountLogLines(std::string_view line) const;
};

/// Sanitizers make runs slow; what is repeated many times is repeated less often with them.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr int repetitions = 1;
#else
inline constexpr int repetitions = 4;
#endif

/// Exit status, status files and silence of the sanitizers after a good and after a failed run.
void ExpectSuccess(const RUN_FOLDER& folder, const PROCESS_END& end);
void ExpectFailure(const RUN_FOLDER& folder, const PROCESS_END& end);

inline const std::string alarm_begin = "ALARM : resample : ";
inline const std::string info_begin = "INFO  : resample : ";
inline const std::string supervisor_line = "KVT_MSG|ERROR|Resample terminated with error!";
