#include <iostream>
#include <memory>

#include "basics/file_lock.h"
#include "basics/stack_error.h"
#include "commands/commands.h"
#include "commands/find_stack.h"
#include "queue/slurm_queue.h"
#include "run/attempt_files.h"
#include "run/output_file.h"
#include "run/slave_plan.h"
#include "run/slave_record.h"
#include "status/stack_start.h"

namespace {

/// Partial outputs that no record proves.
int RemoveUnprovenOutputs(const STACK_FOLDER& stack, const SLAVE_FOLDER& run) {
  try {
    const SLAVE_PLAN plan = ReadSlavePlan(run);
    return PlaceOfOutputs(stack, ReadSlaveRecord(run), plan) == OUTPUTS_PLACE::PARTIAL
               ? 0
               : RemovePartialOutputs(plan.Outputs());
  } catch (const STACK_ERROR&) {
    return 0;  // it was never prepared
  }
}

void CleanStack(const std::string& name) {
  const STACK_FOLDER stack = FindStack(name);
  const STACK_START start = ReadStackStart(stack);
  const FILE_LOCK lock(stack.LockFile(), FILE_LOCK::WAY::TRY);
  if (!lock.IsHeld()) {
    throw STACK_ERROR("another resample-stack is at work on " + stack.Path().string());
  }
  int removed =
      std::filesystem::exists(stack.SlurmDirectory()) ? SLURM_QUEUE(stack, {}).RemoveOldFiles() : 0;
  for (const std::string& slave : start.slaves) {
    const SLAVE_FOLDER run = stack.Run(slave);
    if (!IsLocked(run.LockFile())) {
      removed += RemoveUnprovenOutputs(stack, run) + RemoveOldAttemptFiles(run);
    }
  }
  std::cout << removed << " files removed\n";
}

}  // namespace

void AddCleanCommand(CLI::App& app) {
  const auto name = std::make_shared<std::string>();
  CLI::App& command = *app.add_subcommand(
      "clean", "Remove partial outputs, logs of attempts before the last, and files of old jobs");
  command.add_option("STACK", *name, "The stack's description or directory")->required();
  command.callback([name] { CleanStack(*name); });
}
