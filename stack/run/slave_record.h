#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "description/stack_folder.h"
#include "run/output_file.h"
#include "run/slave_plan.h"

/// Where a slave stands.
enum class SLAVE_STATE {
  WAITING,
  RUNNING,
  SUCCEEDED,
  FAILED,     ///< on its input, or could not be started: would fail again
  DIED,       ///< of a signal or with its machine, as often as it might
  CANCELLED,  ///< by a signal to the whole run, or in the queue
  TIMED_OUT,  ///< at the time limit of the queue
  STOPPED,    ///< by a STOP file before it began
  HELD        ///< in the queue, until somebody releases it; no record says so
};

/// One execution of the program for a slave. Times in seconds since 1970.
struct RUN_ATTEMPT {
  double begun = 0.0;
  double ended = 0.0;  ///< 0 as long as it has not
  std::string host;
  std::string task{};  ///< of Slurm, "JOB_INDEX"; empty on this machine
  std::string log{};   ///< name of its log in the slave's folder
  std::string how{};   ///< it ended
  bool died = false;   ///< of itself: not cancelled or put back by a queue
};

/// How the run of one slave goes, kept in its folder.
struct SLAVE_RECORD {
  SLAVE_STATE state = SLAVE_STATE::WAITING;
  std::string reason;                 ///< for the state, for a person; empty where none is needed
  std::string fingerprint = "null";   ///< of what the last attempt began with
  std::vector<RUN_ATTEMPT> attempts;  ///< since the slave was started last
  /// What a successful run has made, before the outputs get their final names; empty without one.
  std::vector<OUTPUT_FILE> outputs;
  std::string stack;  ///< identity of the stack then

  bool HasEnded() const noexcept {
    return state != SLAVE_STATE::WAITING && state != SLAVE_STATE::RUNNING &&
           state != SLAVE_STATE::HELD;
  }
  /// Whether one more attempt may follow those that died. One without an end counts as such.
  bool MayRetry(const SLAVE_PLAN& plan) const noexcept;
};

/// The time as records hold it.
double SecondsSince1970();

/// As records and `status --json` hold them.
nlohmann::json AttemptsJson(const std::vector<RUN_ATTEMPT>& attempts);

/// In lower case, as records and `status --json` tell it.
std::string NameOf(SLAVE_STATE state);

/// A run of which nothing is known, or whose record cannot be read, is waiting.
SLAVE_RECORD ReadSlaveRecord(const SLAVE_FOLDER& folder);
/// Throws std::system_error.
void WriteSlaveRecord(const SLAVE_FOLDER& folder, const SLAVE_RECORD& record);

/// Where the outputs lie that the record proves.
OUTPUTS_PLACE PlaceOfOutputs(const STACK_FOLDER& stack, const SLAVE_RECORD& record,
                             const SLAVE_PLAN& plan);

/// Whether the slave has been resampled with what its plan says and its inputs are, all of it under
/// the final names. Asks only.
bool IsFinished(const STACK_FOLDER& stack, const SLAVE_FOLDER& folder, const SLAVE_PLAN& plan);

/// Renames the outputs of a run that succeeded and had no time for it. Returns whether the slave is
/// finished then.
bool CompletePublication(const STACK_FOLDER& stack, const SLAVE_FOLDER& folder,
                         const SLAVE_PLAN& plan);
