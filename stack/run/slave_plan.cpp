#include "run/slave_plan.h"

#include <nlohmann/json.hpp>

#include "basics/content_hash.h"
#include "basics/stack_error.h"
#include "basics/text_file.h"
#include "description/slave_files.h"

std::map<std::string, std::string> SLAVE_PLAN::RunParameters() const {
  std::map<std::string, std::string> result = parameters;
  for (const std::string& name : ParametersOf({PARAMETER_KIND::OUTPUT})) {
    if (const auto output = result.find(name); output != result.end()) {
      output->second = PartialOutput(output->second).string();
    }
  }
  return result;
}

std::vector<std::filesystem::path> SLAVE_PLAN::Outputs() const {
  const std::vector<std::string> values = ValuesOf(parameters, {PARAMETER_KIND::OUTPUT});
  return {values.begin(), values.end()};
}

bool SLAVE_PLAN::MakesTheSame(const SLAVE_PLAN& other) const {
  return version == other.version && build == other.build && parameters == other.parameters;
}

std::string BuildOf(const std::filesystem::path& program) {
  const auto content = ReadTextFile(program);
  return content ? ContentHash(*content) : "absent";
}

void WriteSlavePlan(const SLAVE_FOLDER& folder, const SLAVE_PLAN& plan) {
  const nlohmann::json json = {{"program", plan.program}, {"version", plan.version},
                               {"build", plan.build},     {"parameters", plan.parameters},
                               {"base", plan.base},       {"scratch", plan.scratch},
                               {"retries", plan.retries}};
  constexpr int indent = 2;
  ReplaceTextFile(folder.PlanFile(), json.dump(indent) + "\n");
}

SLAVE_PLAN ReadSlavePlan(const SLAVE_FOLDER& folder) {
  try {
    const auto json = nlohmann::json::parse(ReadTextFile(folder.PlanFile()).value_or(""));
    return {.program = json.at("program"),
            .version = json.at("version"),
            .build = json.at("build"),
            .parameters = json.at("parameters"),
            .base = json.at("base"),
            .scratch = json.at("scratch"),
            .retries = json.at("retries")};
  } catch (const nlohmann::json::exception&) {
    throw STACK_ERROR("no complete plan in " + folder.PlanFile().string());
  }
}

void WriteConfigurationFile(const SLAVE_FOLDER& folder,
                            const std::map<std::string, std::string>& parameters) {
  std::string text;
  for (const auto& [name, value] : parameters) {
    text.append(name).append(" ").append(value).append("\n");
  }
  ReplaceTextFile(folder.ConfigurationFile(), text);
}
