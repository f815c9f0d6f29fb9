#include "status/stack_start.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "basics/stack_error.h"
#include "basics/text_file.h"
#include "description/stack_description.h"

using JSON = nlohmann::json;

void WriteStackStart(const STACK_FOLDER& stack, const STACK_START& start) {
  const JSON json = {{"name", start.name},
                     {"description", start.description},
                     {"arguments", start.arguments},
                     {"slaves", start.slaves},
                     {"begun", start.begun}};
  ReplaceTextFile(stack.StartFile(),
                  json.dump(-1, ' ', false, JSON::error_handler_t::replace) + "\n");
}

STACK_START ReadStackStart(const STACK_FOLDER& stack) {
  const auto text = ReadTextFile(stack.StartFile());
  if (!text) {
    throw STACK_ERROR("the stack was never started: no " + stack.StartFile().string());
  }
  try {
    const JSON json = JSON::parse(*text);
    return {.name = json.at("name"),
            .description = json.value("description", ""),
            .arguments = json.value("arguments", std::vector<std::string>()),
            .slaves = json.at("slaves"),
            .begun = json.at("begun")};
  } catch (const JSON::exception&) {
    throw STACK_ERROR("not what a start writes: " + stack.StartFile().string());
  }
}

std::vector<std::string> SlavesSince(const STACK_START& start) {
  std::vector<std::string> names;
  try {
    for (const STACK_SLAVE& slave : ReadStackDescription(start.description).slaves) {
      if (std::find(start.slaves.begin(), start.slaves.end(), slave.name) == start.slaves.end()) {
        names.push_back(slave.name);
      }
    }
  } catch (const std::exception&) {
    return {};
  }
  return names;
}
