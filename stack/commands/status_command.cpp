#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "commands/commands.h"
#include "commands/find_stack.h"
#include "commands/status_display.h"
#include "queue/slurm_queue.h"
#include "run/signals.h"
#include "status/stack_status.h"

namespace {

struct STATUS_OPTIONS {
  std::string stack;
  bool watch = false;
  bool as_json = false;
};

STACK_STATUS CurrentStatus(const STACK_FOLDER& stack) {
  const bool has_jobs = std::filesystem::exists(stack.SlurmDirectory());
  return ReadStackStatus(stack, ReadStackStart(stack),
                         has_jobs ? SLURM_QUEUE(stack, {}).Active() : std::nullopt);
}

STACK_STATUS Watch(const STACK_FOLDER& stack, STATUS_DISPLAY& display) {
  SIGNALS signals;
  STACK_STATUS status = CurrentStatus(stack);
  while (status.IsActive() && signals.EndAsked() == 0) {
    display.Show(status);
    constexpr std::chrono::seconds interval(2);
    signals.Wait(interval);
    status = CurrentStatus(stack);
  }
  return status;
}

void ShowStatus(const STATUS_OPTIONS& options) {
  const STACK_FOLDER stack = FindStack(options.stack);
  STATUS_DISPLAY display;
  const STACK_STATUS status = options.watch ? Watch(stack, display) : CurrentStatus(stack);
  if (options.as_json) {
    constexpr int indent = 2;
    std::cout << StatusJson(status).dump(indent, ' ', false,
                                         nlohmann::json::error_handler_t::replace)
              << "\n";
  } else {
    display.ShowAtEnd(status);
  }
  if (!status.IsComplete()) {
    throw CLI::RuntimeError(EXIT_FAILURE);
  }
}

}  // namespace

void AddStatusCommand(CLI::App& app) {
  const auto options = std::make_shared<STATUS_OPTIONS>();
  CLI::App& command = *app.add_subcommand(
      "status", "Tell how a stack stands; exit status 0 when every slave is done");
  command.add_option("STACK", options->stack, "The stack's description or directory")->required();
  command.add_flag("--watch", options->watch, "Go on until nothing runs or waits in a queue");
  command.add_flag("--json", options->as_json, "Tell it to a program");
  command.callback([options] { ShowStatus(*options); });
}
