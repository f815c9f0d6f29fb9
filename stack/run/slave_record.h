#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "run/slave_plan.h"
#include "run/stack_folder.h"

/// Where a slave stands.
enum class RUN_STATE {
  WAITING,
  RUNNING,
  SUCCEEDED,
  FAILED,     ///< on its input, or could not be started: would fail again
  DIED,       ///< of a signal or with its machine, as often as it might
  CANCELLED,  ///< by a signal to the whole run
  STOPPED     ///< by a STOP file before it began
};

/// One execution of the program for a slave. Times in seconds since 1970.
struct RUN_ATTEMPT {
  double begun = 0.0;
  double ended = 0.0;  ///< 0 as long as it has not
  std::string host;
  std::string how{};  ///< it ended
};

/// How the run of one slave goes, kept in its folder.
struct SLAVE_RECORD {
  RUN_STATE state = RUN_STATE::WAITING;
  std::string reason;                 ///< for the state, for a person; empty where none is needed
  std::string fingerprint = "null";   ///< of what the last attempt began with
  std::vector<RUN_ATTEMPT> attempts;  ///< since the slave was started last

  bool HasEnded() const noexcept {
    return state != RUN_STATE::WAITING && state != RUN_STATE::RUNNING;
  }
  /// Whether one more attempt may follow those that died.
  bool MayRetry(const SLAVE_PLAN& plan) const noexcept {
    return static_cast<int>(attempts.size()) <= plan.retries;
  }
};

/// The time as records hold it.
double SecondsSince1970();

/// As records and `status --json` hold them.
nlohmann::json AttemptsJson(const std::vector<RUN_ATTEMPT>& attempts);

/// In lower case, as records and `status --json` tell it.
std::string NameOf(RUN_STATE state);

/// A run of which nothing is known, or whose record cannot be read, is waiting.
SLAVE_RECORD ReadSlaveRecord(const SLAVE_FOLDER& folder);
/// Throws std::system_error.
void WriteSlaveRecord(const SLAVE_FOLDER& folder, const SLAVE_RECORD& record);

/// Whether the slave has been resampled with what its plan says and its inputs are. Outputs that
/// their successful run had no time to rename get their final names now.
bool IsFinished(const SLAVE_FOLDER& folder, const SLAVE_PLAN& plan);

/// Gives the outputs of a successful run their final names. Throws
/// std::filesystem::filesystem_error, also for one that is there under neither name.
void PublishOutputs(const SLAVE_PLAN& plan);

/// Removes what a run that did not succeed has left of its outputs. What cannot be removed stays.
void RemovePartialOutputs(const SLAVE_FOLDER& folder, const SLAVE_PLAN& plan);
