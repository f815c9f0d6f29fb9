#include "app/help_and_version.h"

#include <string_view>

#include "app/parameter_table.h"
#include "app/program_version.h"

namespace {

constexpr std::string_view usage =
    R"(usage: resample -NAME value -NAME value ...
       resample --help | --version

Resamples a slave SLC image and its mask onto the sample/line grid of a master image.

Each parameter is looked up in
  1. the arguments: -NAME value
  2. the configuration file: lines of a name and a value
  3. the environment variable of exactly that name
and asked for at the keyboard where it is required and given nowhere.

parameters:
)";

constexpr std::string_view exit_status =
    "\nexit status: 0 success, 1 failure, 2 a STOP file was found.\n";

void Append(std::string& text, const PARAMETER_ENTRY& parameter) {
  const bool is_outside_file = parameter.source == PARAMETER_SOURCE::ARGUMENTS_AND_ENVIRONMENT;
  text.append("  ").append(parameter.name).append("  (").append(parameter.need);
  text.append(is_outside_file ? "; from 1 and 3 only" : "");
  text.append(")\n      ").append(parameter.meaning);
  if (!parameter.values.empty()) {
    text.append("\n      values: ").append(parameter.values);
  }
  text += "\n";
}

std::string Help() {
  std::string parameters(usage);
  std::string variables = "\nenvironment variables:\n";
  for (const PARAMETER_ENTRY& parameter : Parameters()) {
    Append(parameter.source == PARAMETER_SOURCE::ENVIRONMENT ? variables : parameters, parameter);
  }
  return parameters.append(variables).append(exit_status);
}

std::string Version() {
  const VERSION_RECORD version = ProgramVersion();
  return version.display_name + " " + version.version + "\n" + version.full_version + "\n";
}

}  // namespace

std::optional<std::string> HelpOrVersion(int argc, const char* const* argv) {
  const std::string_view question = argc == 2 ? argv[1] : "";
  if (question == "--help") {
    return Help();
  }
  if (question == "--version") {
    return Version();
  }
  return std::nullopt;
}
