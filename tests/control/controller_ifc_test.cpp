#include "control/controller_ifc.h"

#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include "process_test.h"

namespace {

class CONTROLLER : public PROCESS_TEST {
 protected:
  /// The values that a controller with these arguments finds, "-" for none, one line each.
  std::string LookUpAll(const std::vector<std::string>& arguments,
                        const std::vector<std::string>& names) const {
    RunController(arguments, [&](CONTROLLER_IFC& controller) {
      std::string found;
      for (const std::string& name : names) {
        std::string value = "-";
        controller.GetParameter(name.c_str(), value, true);
        found += value + "\n";
      }
      WriteFile("found", found);
    });
    return Content("found");
  }
};

TEST_F(CONTROLLER, StartIsLoggedInOrder) {
  RunController({"/usr/bin/tool"}, [](CONTROLLER_IFC&) {});
  const auto not_given = [](const std::string& name) {
    return "TRACE : resample : Parameter " + name +
           " not found in argument list!\nTRACE : resample : parameter " + name +
           " not found in UNIX environment\n";
  };
  EXPECT_EQ(Content("log.tool"),
            not_given("pid") + "TRACE : resample : binary name is tool\n" + not_given("status") +
                "TRACE : resample : status path is []\n" + not_given("pcf") + not_given("lfn") +
                "WARN  : resample : Configuration file pcf.tool does not exist!\n" +
                not_given("lfl") + not_given("lsl"));
}

TEST_F(CONTROLLER, ArgumentScanTakesTheLastOccurrenceAndNeverTheLastWord) {
  EXPECT_EQ(LookUpAll({"-A", "program", "-B", "first", "-B", "second", "-C", "-D", "-E"},
                      {"A", "B", "C", "D", "E", "-B"}),
            "-\nsecond\n-D\n-E\n-\n-\n");
  EXPECT_EQ(LookUpAll({"-A"}, {"A", ""}), "-\n-\n");
}

TEST_F(CONTROLLER, ConfigurationFileMayBeAFolderWithoutParameters) {
  std::filesystem::create_directory(Path("folder"));
  EXPECT_EQ(LookUpAll({"tool", "-pcf", "folder"}, {"A"}), "-\n");
}

TEST_F(CONTROLLER, ConfigurationFileIsNoPipeAndNoDeviceButTheNullDevice) {
  ASSERT_EQ(::mkfifo(Path("fifo").c_str(), 0600), 0);
  for (const std::string file : {"fifo", "/dev/zero", "/dev/null"}) {
    EXPECT_EQ(LookUpAll({"tool", "-pcf", file}, {"A"}), "-\n");
    EXPECT_EQ(Content("log.tool")
                      .find("ALARM : resample : Configuration file " + file +
                            " is neither a regular file nor /dev/null!\n") == std::string::npos,
              file == "/dev/null");
  }
}

TEST_F(CONTROLLER, LogFileNameComesFromParameterThenLogThenRun) {
  const auto log_name = [&](const std::vector<std::string>& arguments) {
    Run([&] {
      Log().Open("early");
      WithController(arguments, [](CONTROLLER_IFC&) { WriteFile("name", Log().FileName()); })();
    });
    return Content("name");
  };
  WriteFile(Path("pcf.tool"), "lfn ignored\npid ignored\n");
  EXPECT_EQ(log_name({"tool"}), "early");
  EXPECT_EQ(log_name({"tool", "-pid", "run7"}), "log.run7");
  EXPECT_EQ(log_name({"tool", "-pid", "run7", "-lfn", "mine"}), "mine");
}

/// Reads what no process may read.
void TouchForbiddenMemory() {
  const void* const page = ::mmap(nullptr, 1, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  WriteFile("unreachable", std::string(1, *static_cast<const volatile char*>(page)));
}

TEST_F(CONTROLLER, AfterTheEndOfTheRunOnlyAFaultChangesTheOutcome) {
  const auto finish_and_then = [&](const BODY& act) {
    return RunController({"tool"},
                         [&](CONTROLLER_IFC& controller) {
                           const int status = controller.FinishSuccess();
                           act();
                           std::exit(status);
                         })
        .exit_status;
  };
  for (const int sent : {SIGTERM, SIGSEGV}) {
    EXPECT_EQ(finish_and_then([=] { ::raise(sent); }), 0);
    EXPECT_EQ(Content("OK.tool"), "0");
  }
  EXPECT_EQ(finish_and_then(TouchForbiddenMemory), 1);
  EXPECT_FALSE(Exists("OK.tool"));
  EXPECT_EQ(Content("ERROR.tool"), "1");
}

}  // namespace
