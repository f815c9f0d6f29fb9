#include "run_checks.h"

#ifdef SLCTOOL_PROGRAM

#include <map>
#include <sstream>

namespace {

using FILES = std::map<std::string, std::string>;

/// Name and content of all files but those of the test itself.
FILES Files(const RUN_FOLDER& folder) {
  FILES files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.Directory())) {
    const std::string name = entry.path().filename().string();
    if (name != "keyboard" && name != "screen" && name != "errors") {
      files[entry.path().string()] =
          entry.is_regular_file() ? ReadFile(entry.path()) : "no regular file";
    }
  }
  return files;
}

}  // namespace

PROCESS_END CheckRun(const RUN_FOLDER& folder) {
  PROCESS_SETTINGS settings = folder.Settings();
  settings.program = SLCTOOL_PROGRAM;
  settings.arguments.insert(settings.arguments.begin(), "check-run");
  const FILES before = Files(folder);
  const PROCESS_END end = PROCESS(settings).Wait();
  EXPECT_TRUE(Files(folder) == before) << "a check wrote something";
  EXPECT_EQ(end.errors, "");
  return end;
}

void ExpectCheckSays(const RUN_FOLDER& folder, const std::string& alarms) {
  const PROCESS_END end = CheckRun(folder);
  EXPECT_EQ(end.exit_status, 1);
  std::istringstream lines(alarms);
  for (std::string line; std::getline(lines, line);) {
    // A check asks nobody, so that there is no input to end.
    constexpr std::string_view asked = "end of standard input, ";
    const std::string said = line.starts_with(asked) ? line.substr(asked.size()) : line;
    const bool is_said = end.screen.find("failure: " + said + "\n") != std::string::npos ||
                         end.screen.find("         " + said + "\n") != std::string::npos;
    EXPECT_TRUE(is_said) << said << "\nis not in\n" << end.screen;
  }
  // Nothing but that, and what no run gets to: the other one of two polynomials.
  EXPECT_TRUE(end.screen.find("\nresample would fail: 1 reason\n") != std::string::npos ||
              end.screen.find("\nresample would fail: 2 reasons\n") != std::string::npos)
      << end.screen;
}

#else

void ExpectCheckSays(const RUN_FOLDER&, const std::string&) {}

#endif
