#include <cstdlib>
#include <memory>

#include "commands/commands.h"
#include "run/slave_run.h"

void AddRunCommand(CLI::App& app) {
  const auto folder = std::make_shared<std::string>();
  CLI::App& command = *app.add_subcommand("run", "Run one slave, as the queues do");
  command.group("");  // not for people
  command.add_option("FOLDER", *folder, "Folder of the run")->required();
  command.callback([folder] {
    if (RunSlave(SLAVE_FOLDER(std::filesystem::canonical(*folder))) != SLAVE_STATE::SUCCEEDED) {
      throw CLI::RuntimeError(EXIT_FAILURE);
    }
  });
}
