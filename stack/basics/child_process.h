#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "system/file_descriptor.h"

/// What to start.
struct CHILD_SETTINGS {
  std::vector<std::string> command;   ///< the first is the program, looked up in PATH
  std::filesystem::path directory{};  ///< empty: that of this process
  int screen = -1;                    ///< descriptor for standard output and error
  std::map<std::string, std::string> environment{};  ///< what is set in it
  std::vector<std::string> forgotten{};  ///< variables not passed on, by the begins of their names
  std::vector<int> kept{};               ///< descriptors that it has open, too
};

/// How a process ended.
struct CHILD_END {
  int exit_status = -1;  ///< -1 when a signal ended it
  int signal = 0;        ///< 0 when it ended by itself
};

/// A process of which this one is the owner: it gets SIGTERM when this one goes, in whatever way,
/// or when its owner lets go of it, who then waits for its end. It has no standard input.
class CHILD_PROCESS {
 public:
  /// Exit status of a process that could not become the program; its screen tells why.
  static constexpr int not_started = 127;

  /// Throws std::system_error when there can be no further process.
  explicit CHILD_PROCESS(const CHILD_SETTINGS& settings);
  CHILD_PROCESS(CHILD_PROCESS&& other) noexcept;
  CHILD_PROCESS& operator=(CHILD_PROCESS&&) = delete;
  CHILD_PROCESS(const CHILD_PROCESS&) = delete;
  CHILD_PROCESS& operator=(const CHILD_PROCESS&) = delete;
  ~CHILD_PROCESS();

  /// Sends SIGTERM, and wakes a process that was stopped.
  void Terminate() const noexcept;
  /// Nothing as long as it runs.
  std::optional<CHILD_END> End();
  CHILD_END Wait();

 private:
  std::optional<CHILD_END> WaitWith(int options);

  pid_t id_ = -1;
  std::optional<CHILD_END> end_;
};

/// What a process prints, kept in memory: it needs no room on any disk.
class PRINTED_TEXT {
 public:
  /// Throws std::system_error when there can be no further one.
  PRINTED_TEXT();

  int Descriptor() const noexcept { return file_.Get(); }
  std::string Text() const;

 private:
  FILE_DESCRIPTOR file_;
};

/// What a command printed on both of its streams, and how it ended.
struct COMMAND_RESULT {
  CHILD_END end;
  std::string text;
};

/// Runs a command to its end, without the variables whose names begin so, and with others. Throws
/// std::system_error when there can be no further process.
COMMAND_RESULT RunCommand(const std::vector<std::string>& command,
                          const std::vector<std::string>& forgotten = {},
                          const std::map<std::string, std::string>& environment = {});
