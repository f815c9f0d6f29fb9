#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>

#include "basics/stack_error.h"
#include "commands/commands.h"
#include "commands/find_stack.h"
#include "queue/slurm_queue.h"
#include "run/slave_record.h"
#include "status/stack_start.h"

namespace {

void StopStack(const std::string& name) {
  const STACK_FOLDER stack = FindStack(name);
  int stopped = 0;
  for (const std::string& slave : ReadStackStart(stack).slaves) {
    const SLAVE_FOLDER run = stack.Run(slave);
    if (ReadSlaveRecord(run).HasEnded()) {
      continue;
    }
    if (!std::ofstream(run.StopFile())) {
      throw STACK_ERROR("can not create " + run.StopFile().string());
    }
    ++stopped;
  }
  if (std::filesystem::exists(stack.SlurmDirectory())) {
    SLURM_QUEUE(stack, {}).CancelWaiting();
  }
  std::cout << stopped << " STOP files: what runs goes on, nothing else begins\n";
}

}  // namespace

void AddStopCommand(CLI::App& app) {
  const auto name = std::make_shared<std::string>();
  CLI::App& command =
      *app.add_subcommand("stop", "Let no further slave begin; those that run end as they will");
  command.add_option("STACK", *name, "The stack's description or directory")->required();
  command.callback([name] { StopStack(*name); });
}
