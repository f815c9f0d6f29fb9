#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

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

/// Slurm's queue is asked where the stack was ever submitted to it.
ACTIVE_SLAVES ActiveSlaves(const STACK_FOLDER& stack) {
  return std::filesystem::exists(stack.SlurmDirectory()) ? SLURM_QUEUE(stack, {}).Active()
                                                         : std::nullopt;
}

STACK_STATUS StatusAtEnd(const STACK_FOLDER& stack, STACK_WATCH& watch, STATUS_DISPLAY& display) {
  SIGNALS signals;
  STACK_STATUS status = watch.Look(ActiveSlaves(stack));
  while (status.IsActive() && signals.EndAsked() == 0) {
    display.Show(status);
    constexpr std::chrono::seconds interval(3);
    signals.Wait(interval);
    status = watch.Look(ActiveSlaves(stack));
  }
  return status;
}

void ShowStatus(const STATUS_OPTIONS& options) {
  const STACK_FOLDER stack = FindStack(options.stack);
  STATUS_DISPLAY display;
  STACK_WATCH watch(stack, ReadStackStart(stack));
  const STACK_STATUS status =
      options.watch ? StatusAtEnd(stack, watch, display) : watch.Look(ActiveSlaves(stack));
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
