#include "app/terminal_answer.h"

#include <string_view>

#include "app/parameter_guide.h"
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

constexpr std::string_view further_help =
    R"(
environment variables:
  PARALLEL  (default: the online processors)
      number of worker threads; the result does not depend on it
  RESAMPLE_SIMD  (default: the fastest that the processor supports)
      variant of the core: plain, x86-64, x86-64-v3, x86-64-v4
  SECONDS_ON_PARAMETER_INPUT  (default: 120)
      time limit of a question at the keyboard [s]; 0: none
  PROC_NAME  (default: none)
      name of the starting program, shown in the head of the log

exit status: 0 success, 1 failure, 2 a STOP file was found.
)";

std::string Help() {
  std::string text(usage);
  for (const PARAMETER_GUIDE& guide : ParameterGuides()) {
    text.append("  ").append(guide.name).append("  (").append(guide.need);
    text.append(guide.is_outside_file ? "; from 1 and 3 only" : "");
    text.append(")\n      ").append(guide.meaning);
    if (!guide.values.empty()) {
      text.append("\n      values: ").append(guide.values);
    }
    text += "\n";
  }
  return text.append(further_help);
}

std::string Version() {
  const VERSION_RECORD version = ProgramVersion();
  return version.display_name + " " + version.version + "\n" + version.full_version + "\n";
}

}  // namespace

std::optional<std::string> TerminalAnswer(int argc, const char* const* argv) {
  const std::string_view question = argc == 2 ? argv[1] : "";
  if (question == "--help") {
    return Help();
  }
  if (question == "--version") {
    return Version();
  }
  return std::nullopt;
}
