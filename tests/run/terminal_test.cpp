#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <regex>
#include <set>

#include "run_folder.h"

namespace {

/// A terminal whose other end is held here.
class PSEUDO_TERMINAL {
 public:
  PSEUDO_TERMINAL() : own_end_(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK)) {
    if (own_end_ < 0 || ::grantpt(own_end_) != 0 || ::unlockpt(own_end_) != 0) {
      throw std::runtime_error("no pseudo terminal");
    }
    name_ = ::ptsname(own_end_);
    // Held open, so that what was written is kept when the program has ended.
    program_end_ = ::open(name_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  }
  ~PSEUDO_TERMINAL() {
    ::close(program_end_);
    ::close(own_end_);
  }
  PSEUDO_TERMINAL(const PSEUDO_TERMINAL&) = delete;
  PSEUDO_TERMINAL& operator=(const PSEUDO_TERMINAL&) = delete;

  /// Makes it the standard error of a process that is about to start.
  bool BecomeStandardError() const { return ::dup2(program_end_, STDERR_FILENO) >= 0; }

  std::string Shown() const {
    std::string text;
    std::array<char, 4096> block{};
    ssize_t length = 0;
    while ((length = ::read(own_end_, block.data(), block.size())) > 0) {
      text.append(block.data(), static_cast<std::size_t>(length));
    }
    return text;
  }

 private:
  int own_end_;
  int program_end_ = -1;
  std::string name_;
};

PROCESS_END RunAtTerminal(const RUN_FOLDER& folder, const PSEUDO_TERMINAL& terminal) {
  PROCESS_SETTINGS settings = folder.Settings();
  settings.prepare = [&terminal] { return terminal.BecomeStandardError(); };
  return PROCESS(settings).Wait();
}

std::string WithoutTimes(const std::string& screen) {
  return std::regex_replace(screen, std::regex("((start|end|execution) time:)[^\n]*"), "$1");
}

std::set<std::string> NamesInDirectory(const RUN_FOLDER& folder) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Directory())) {
    names.insert(entry.path().filename());
  }
  return names;
}

TEST(Terminal, AloneHelpAndVersionAnswerBeforeAnythingElseHappens) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.Write("STOP.resample", "");
  PROCESS_SETTINGS settings = folder.Settings();
  PROCESS(settings).Wait();
  const std::set<std::string> names = NamesInDirectory(folder);

  settings.arguments = {"--help"};
  const PROCESS_END help = PROCESS(settings).Wait();
  EXPECT_EQ(help.exit_status, 0);
  for (const auto& [name, value] : folder.parameters) {
    EXPECT_NE(help.screen.find("\n  " + name + "  ("), std::string::npos) << name;
  }

  settings.arguments = {"--version"};
  const PROCESS_END version = PROCESS(settings).Wait();
  EXPECT_EQ(version.exit_status, 0);
  EXPECT_EQ(version.screen,
            "Resample 0.0.5\n"
            "resample.v0.0.5.linux.gcc4.5.0_64bit.default.20200206130923\n");
  EXPECT_EQ(NamesInDirectory(folder), names);

  // Not alone it is a word like any other.
  settings.arguments = {"--help", "-pid", "run"};
  EXPECT_NE(PROCESS(settings).Wait().screen.find("* Read input parameters"), std::string::npos);
}

TEST(Terminal, ProgressIsShownOnStandardErrorOnlyThereAndChangesNothingElse) {
  RUN_FOLDER folder(OrdinaryScene());
  const PROCESS_END unattended = folder.Run();
  ExpectSuccess(folder, unattended);
  EXPECT_EQ(unattended.errors, "");

  const PSEUDO_TERMINAL terminal;
  const PROCESS_END attended = RunAtTerminal(folder, terminal);
  ExpectSuccess(folder, attended);
  EXPECT_EQ(WithoutTimes(attended.screen), WithoutTimes(unattended.screen));
  const std::string shown = terminal.Shown();
  EXPECT_TRUE(std::regex_search(shown, std::regex("^ *[0-9]+ %"))) << shown;
  EXPECT_TRUE(shown.ends_with("\r\033[K")) << "it is taken away at the end: " << shown;

  if (repetitions > 1) {  // the runtime of a sanitizer must be loaded before any other library
    folder.environment.insert({{"LD_PRELOAD", FAULT_INJECTOR},
                               {"FAULT_CALL", "pthread_create"},
                               {"FAULT_NUMBER", "1"},  // the first thread writes back
                               {"FAULT_ERROR", "11"}});
    ExpectSuccess(folder, RunAtTerminal(folder, terminal));
    EXPECT_EQ(terminal.Shown(), "") << "there is no thread for it";
  }
}

TEST(Terminal, PersonWhoIsAskedForAParameterIsToldItsMeaningAndValues) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.keyboard = folder.parameters["KERNEL_TYPE"] + "\n";
  folder.parameters.erase("KERNEL_TYPE");
  const PSEUDO_TERMINAL terminal;
  ExpectSuccess(folder, RunAtTerminal(folder, terminal));
  EXPECT_TRUE(terminal.Shown().starts_with(
      "KERNEL_TYPE: shape of the interpolation kernel\r\n"
      "value: cubic_convolution, truncated_sinc_no_weight, truncated_sinc_kaiser_weight\r\n"));
}

}  // namespace
