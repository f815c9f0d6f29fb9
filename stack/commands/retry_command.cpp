#include <algorithm>
#include <memory>

#include "basics/stack_error.h"
#include "commands/commands.h"
#include "commands/find_stack.h"
#include "status/stack_start.h"

namespace {

/// A start of these slaves alone, finished or not, with all options of the last one.
void Retry(const std::string& stack, const std::vector<std::string>& names) {
  const STACK_START last = ReadStackStart(FindStack(stack));
  std::vector<std::string> words = last.arguments;
  words.insert(words.begin(), last.description);
  words.insert(words.end(), {"--again", "--only"});
  words.insert(words.end(), names.begin(), names.end());
  std::reverse(words.begin(), words.end());  // as CLI::App takes them
  CLI::App app;
  AddStart(app);
  app.allow_extras();
  app.parse(words);
}

}  // namespace

void AddRetryCommand(CLI::App& app) {
  const auto stack = std::make_shared<std::string>();
  const auto names = std::make_shared<std::vector<std::string>>();
  CLI::App& command = *app.add_subcommand(
      "retry", "Run slaves once more, with the options of the last start, done or not");
  command.add_option("STACK", *stack, "The stack's description or directory")->required();
  command.add_option("NAME", *names, "Names of the slaves")->required();
  command.callback([stack, names] { Retry(*stack, *names); });
}
