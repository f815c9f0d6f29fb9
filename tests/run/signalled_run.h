#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>

#include "run_folder.h"

/// The signals that end a run as failed, with the log's words for them.
extern const std::map<int, std::string> caught_signals;

/// What a run that a signal ended must leave.
void ExpectReported(const RUN_FOLDER& folder, const PROCESS_END& end, int signal);

void Pause(unsigned microseconds);

/// A run that waits in front of its workers until its screen is read on: the screen is a pipe with
/// exactly as much room as the lines before take.
class HELD_RUN {
 public:
  explicit HELD_RUN(const RUN_FOLDER& folder);
  ~HELD_RUN() { CloseScreen(); }
  HELD_RUN(const HELD_RUN&) = delete;
  HELD_RUN& operator=(const HELD_RUN&) = delete;

  /// Reads the screen to its end, which lets the run go on.
  PROCESS_END Release();
  /// Leaves the run without a reader of its screen.
  void CloseScreen();

  std::optional<PROCESS> process;

 private:
  static constexpr int capacity = 4096;
  std::array<int, 2> pipe_{};
};
