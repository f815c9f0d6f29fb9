#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "basics/file_lock.h"
#include "basics/signals.h"
#include "commands/commands.h"
#include "commands/find_stack.h"
#include "commands/status_display.h"
#include "queue/slurm_queue.h"
#include "status/stack_status.h"

namespace {

struct STATUS_OPTIONS {
  std::vector<std::string> stacks;
  bool watch = false;
  bool as_json = false;
};

/// Several stacks, looked at together.
class WATCHED_STACKS {
 public:
  explicit WATCHED_STACKS(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      const STACK_FOLDER stack = FindStack(name);
      stacks_.emplace_back(stack, STACK_WATCH(stack, ReadStackStart(stack)));
    }
  }

  std::vector<STACK_STATUS> Look() {
    std::vector<STACK_STATUS> statuses;
    for (auto& [stack, watch] : stacks_) {
      statuses.push_back(watch.Look(SLURM_QUEUE::ActiveOf(stack), IsLocked(stack.LockFile())));
    }
    return statuses;
  }

 private:
  std::vector<std::pair<STACK_FOLDER, STACK_WATCH>> stacks_;
};

std::vector<STACK_STATUS> StatusAtEnd(WATCHED_STACKS& stacks, STATUS_DISPLAY& display) {
  SIGNALS signals;
  std::vector<STACK_STATUS> statuses = stacks.Look();
  while (signals.EndAsked() == 0 &&
         std::any_of(statuses.begin(), statuses.end(),
                     [](const STACK_STATUS& status) { return status.MayChange(); })) {
    display.Show(statuses);
    signals.Wait(std::chrono::seconds(0));  // takes note of the commands that have ended
    constexpr std::chrono::seconds interval(3);
    signals.Wait(interval);
    statuses = stacks.Look();
  }
  return statuses;
}

void ShowJson(const std::vector<STACK_STATUS>& statuses) {
  nlohmann::json all = nlohmann::json::array();
  for (const STACK_STATUS& status : statuses) {
    all.push_back(StatusJson(status));
  }
  constexpr int indent = 2;
  const nlohmann::json& told = all.size() == 1 ? all.front() : all;
  std::cout << told.dump(indent, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
}

void ShowStatus(const STATUS_OPTIONS& options) {
  STATUS_DISPLAY display;
  WATCHED_STACKS stacks(options.stacks);
  const std::vector<STACK_STATUS> statuses =
      options.watch ? StatusAtEnd(stacks, display) : stacks.Look();
  if (options.as_json) {
    ShowJson(statuses);
  } else {
    display.ShowAtEnd(statuses);
  }
  if (!std::all_of(statuses.begin(), statuses.end(),
                   [](const STACK_STATUS& status) { return status.IsComplete(); })) {
    throw CLI::RuntimeError(EXIT_FAILURE);
  }
}

}  // namespace

void AddStatusCommand(CLI::App& app) {
  const auto options = std::make_shared<STATUS_OPTIONS>();
  CLI::App& command = *app.add_subcommand(
      "status", "Tell how stacks stand; exit status 0 when every slave is done");
  command.add_option("STACK", options->stacks, "The stacks' descriptions or directories")
      ->required();
  command.add_flag("--watch", options->watch, "Go on until nothing runs or waits in a queue");
  command.add_flag("--json", options->as_json,
                   "Tell it to a program: an object, or a list of them for several stacks");
  command.callback([options] { ShowStatus(*options); });
}
