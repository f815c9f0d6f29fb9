#include "run/slave_plan.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "description/slave_files.h"
#include "run/text_file.h"

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

void WriteSlavePlan(const SLAVE_FOLDER& folder, const SLAVE_PLAN& plan) {
  const nlohmann::json json = {{"program", plan.program},
                               {"version", plan.version},
                               {"parameters", plan.parameters},
                               {"retries", plan.retries}};
  constexpr int indent = 2;
  ReplaceTextFile(folder.PlanFile(), json.dump(indent) + "\n");
}

SLAVE_PLAN ReadSlavePlan(const SLAVE_FOLDER& folder) {
  const auto text = ReadTextFile(folder.PlanFile());
  if (!text) {
    throw std::runtime_error("can not read " + folder.PlanFile().string());
  }
  const auto json = nlohmann::json::parse(*text);
  SLAVE_PLAN plan;
  json.at("program").get_to(plan.program);
  json.at("version").get_to(plan.version);
  json.at("parameters").get_to(plan.parameters);
  json.at("retries").get_to(plan.retries);
  return plan;
}

void WriteConfigurationFile(const SLAVE_FOLDER& folder, const SLAVE_PLAN& plan) {
  std::string text;
  for (const auto& [name, value] : plan.RunParameters()) {
    text.append(name).append(" ").append(value).append("\n");
  }
  ReplaceTextFile(folder.ConfigurationFile(), text);
}
