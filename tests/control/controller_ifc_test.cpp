#include "control/controller_ifc.h"

#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "child_process.h"
#include "logging/logging.h"

namespace {

class CONTROLLER : public CHILD_PROCESS_TEST {
 protected:
  /// Runs a controller with the arguments in a child. TRACE is on from the first line.
  CHILD_END RunWith(
      const std::initializer_list<std::string>& texts,
      const std::function<void(CONTROLLER_IFC&)>& body = [](CONTROLLER_IFC&) {},
      std::string_view keyboard = "") {
    return Run(
        [&] {
          Log().SetFileLevel(LOGGING_LEVEL_T::TRACE);
          ARGUMENTS arguments(texts);
          CONTROLLER_IFC controller;
          controller.init(arguments.Count(), arguments.Vector(), 1);
          body(controller);
        },
        keyboard);
  }

  /// The values that a controller with these arguments finds, "-" for none, one line each.
  std::string LookUpAll(const std::initializer_list<std::string>& texts,
                        const std::vector<std::string>& names) {
    RunWith(texts, [&](CONTROLLER_IFC& controller) {
      std::string found;
      for (const std::string& name : names) {
        std::string value;
        found += (controller.GetParameter(name.c_str(), value, true) ? value : "-") + "\n";
      }
      WriteFile("found", found);
    });
    return Content("found");
  }

  /// The lines of the log from the first one that equals `first` on.
  std::vector<std::string> LinesFrom(std::string_view log, std::string_view first) const {
    std::vector<std::string> lines = Lines(log);
    lines.erase(lines.begin(), std::find(lines.begin(), lines.end(), first));
    return lines;
  }
};

TEST_F(CONTROLLER, StartIsLoggedInOrder) {
  RunWith({"/usr/bin/tool"});
  std::vector<std::string> expected;
  const auto not_given = [&](const std::string& name) {
    expected.push_back("TRACE : resample : Parameter " + name + " not found in argument list!");
    expected.push_back("TRACE : resample : parameter " + name + " not found in UNIX environment");
  };
  not_given("pid");
  expected.push_back("TRACE : resample : binary name is tool");
  not_given("status");
  expected.push_back("TRACE : resample : status path is []");
  not_given("pcf");
  not_given("lfn");
  expected.push_back("WARN  : resample : Configuration file pcf.tool does not exist!");
  not_given("lfl");
  not_given("lsl");
  EXPECT_EQ(Lines("log.tool"), expected);
}

TEST_F(CONTROLLER, SourcesAreAskedInOrder) {
  WriteFile(Path("pcf.tool"), "A file\nB file\nC file\nD\n");
  const CHILD_END end = RunWith(
      {"tool", "-A", "argument"},
      [](CONTROLLER_IFC& controller) {
        for (const char* name : {"A", "B", "E"}) {
          ::setenv(name, "environment", 1);
        }
        std::string found;
        for (const char* name : {"A", "B", "E", "F"}) {
          std::string value;
          controller.GetParameter(name, value);
          found += value + " ";
        }
        WriteFile("found", found);
      },
      "typed");
  EXPECT_EQ(end.exit_status, body_returned);
  EXPECT_EQ(Content("found"), "argument file environment typed ");
  const std::vector<std::string> expected = {
      "DEBUG : resample : Found parameter in argument list A = argument",
      "TRACE : resample : Parameter B not found in argument list!",
      "TRACE : resample : rewinding file position",
      "DEBUG : resample : Found parameter B=file",
      "TRACE : resample : Parameter E not found in argument list!",
      "TRACE : resample : rewinding file position",
      "DEBUG : resample : Found parameter in UNIX environment E=environment",
      "TRACE : resample : Parameter F not found in argument list!",
      "TRACE : resample : rewinding file position",
      "TRACE : resample : parameter F not found in UNIX environment",
      "WARN  : resample : No configuration file or parameter not found!",
      "WARN  : resample : \t  Please input value of parameter : <F>",
      "DEBUG : resample : waiting 120 seconds for input",
      "DEBUG : resample : Read from keyboard parameter F = typed"};
  EXPECT_EQ(LinesFrom("log.tool", expected.front()), expected);
}

TEST_F(CONTROLLER, ArgumentScanTakesTheLastOccurrenceAndNeverTheLastWord) {
  EXPECT_EQ(LookUpAll({"-A", "program", "-B", "first", "-B", "second", "-C", "-D", "-E"},
                      {"A", "B", "C", "D", "E", "-B"}),
            "-\nsecond\n-D\n-E\n-\n-\n");
  EXPECT_EQ(LookUpAll({"-A"}, {"A", ""}), "-\n-\n");
}

TEST_F(CONTROLLER, ValueStaysWhenNothingIsFound) {
  RunWith({"tool", "-A", "x"}, [](CONTROLLER_IFC& controller) {
    std::string value = "before";
    const bool found = controller.GetParameter("B", value, true);
    WriteFile("found", value + (found ? " true" : " false") +
                           (controller.IsGiven("A") ? " given" : " missing") +
                           (controller.IsGiven("B") ? " given" : " missing"));
  });
  EXPECT_EQ(Content("found"), "before false given missing");
}

TEST_F(CONTROLLER, ConfigurationFileIsReadLineByLine) {
  const std::string long_value(1000, 'v');
  WriteFile(Path("pcf.tool"), "  A\t one  two\r\nEMPTY\nB six\n\n \nC\r\nLONG " + long_value +
                                  "\n" + std::string(1024, 'x') + "PIECE found\nLAST end");
  EXPECT_EQ(LookUpAll({"tool"}, {"A", "EMPTY", "B", "C", "LONG", "PIECE", "LAST", "six", ""}),
            "one\n\nsix\n\n" + long_value + "\nfound\nend\n-\n-\n");
}

TEST_F(CONTROLLER, ConfigurationFileIsReadOnFromTheLastPosition) {
  WriteFile(Path("pcf.tool"), "lfl TRACE\nlsl INFO\nA 1\nB 2\nA 3\nC 4\n");
  EXPECT_EQ(LookUpAll({"tool"}, {"A", "B", "A", "C", "A", "missing", "B"}),
            "1\n2\n3\n4\n1\n-\n2\n");
  // Once for the second-last A, once for the name that is missing, once from the end to B.
  EXPECT_EQ(Count("log.tool", "TRACE : resample : rewinding file position"), 3);
}

TEST_F(CONTROLLER, DirectoryAsConfigurationFileHoldsNothing) {
  std::filesystem::create_directory(Path("folder"));
  EXPECT_EQ(LookUpAll({"tool", "-pcf", "folder"}, {"A"}), "-\n");
}

TEST_F(CONTROLLER, RunNameNamesAllFiles) {
  std::filesystem::create_directory(Path("state"));
  WriteFile(Path("state/OK.run7"), "0");
  RunWith({"/usr/bin/tool", "-pid", "run7", "-status", "state"}, [](CONTROLLER_IFC& controller) {
    WriteFile("names", controller.get_binary_name() + "|" + controller.ArgumentBinaryName() + "|" +
                           controller.StatusPath() + "|" + controller.ConfigurationFileName());
  });
  EXPECT_EQ(Content("names"), "run7|tool|state/|pcf.run7");
  EXPECT_EQ(Content("state/ERROR.run7"), "1");
  EXPECT_FALSE(Exists("state/OK.run7"));
  EXPECT_TRUE(Exists("log.run7"));
}

TEST_F(CONTROLLER, StatusPathEndsWithOneSlash) {
  std::filesystem::create_directory(Path("state"));
  const auto status_path = [&](const std::string& status) {
    RunWith({"tool", "-status", status},
            [](CONTROLLER_IFC& controller) { WriteFile("path", controller.StatusPath()); });
    return Content("path");
  };
  EXPECT_EQ(status_path("state"), "state/");
  EXPECT_EQ(status_path("state/"), "state/");
  EXPECT_EQ(status_path(""), "");
  EXPECT_TRUE(Exists("ERROR.tool"));
  EXPECT_TRUE(Exists("state/ERROR.tool"));
}

TEST_F(CONTROLLER, NamesMayBeLong) {
  std::string folder;
  for (int i = 0; i < 5; ++i) {
    folder += std::string(200, static_cast<char>('a' + i)) + "/";
  }
  std::filesystem::create_directories(Path(folder));
  const std::string file = folder + "pcf";
  WriteFile(Path(file), "A " + std::string(900, 'v') + "\n");
  EXPECT_EQ(LookUpAll({"tool", "-pcf", file, "-status", folder, "-lfn", folder + "log"}, {"A"}),
            std::string(900, 'v') + "\n");
  EXPECT_EQ(Content(folder + "ERROR.tool"), "1");
  EXPECT_TRUE(Exists(folder + "log"));
}

TEST_F(CONTROLLER, LogFileNameComesFromParameterThenLogThenRun) {
  const auto log_name = [&](const std::initializer_list<std::string>& arguments) {
    Run([&] {
      Log().Open("early");
      ARGUMENTS argument_vector(arguments);
      CONTROLLER_IFC controller;
      controller.init(argument_vector.Count(), argument_vector.Vector(), 1);
      WriteFile("name", Log().FileName());
    });
    return Content("name");
  };
  WriteFile(Path("pcf.tool"), "lfn ignored\npid ignored\n");
  EXPECT_EQ(log_name({"tool"}), "early");
  EXPECT_EQ(log_name({"tool", "-pid", "run7"}), "log.run7");
  EXPECT_EQ(log_name({"tool", "-pid", "run7", "-lfn", "mine"}), "mine");
}

TEST_F(CONTROLLER, LevelsComeFromTheConfigurationFileAndUnknownOnesChangeNothing) {
  const auto levels = [&](std::string_view configuration) {
    WriteFile(Path("pcf.tool"), configuration);
    Run([] {
      ARGUMENTS arguments({"tool"});
      CONTROLLER_IFC controller;
      controller.init(arguments.Count(), arguments.Vector(), 1);
      WriteFile("levels", std::to_string(static_cast<int>(Log().FileLevel())) + " " +
                              std::to_string(static_cast<int>(Log().ScreenLevel())));
    });
    return Content("levels");
  };
  EXPECT_EQ(levels("lfl PARAMETER\nlsl NO_MESSAGE\n"), "3 9");
  EXPECT_EQ(levels("lfl NO_MESSAGE\nlsl alarm\n"), "2 4");
}

TEST_F(CONTROLLER, StopFileEndsTheRunAndLeavesTheMarkersAlone) {
  WriteFile(Path("STOP.tool"), "");
  WriteFile(Path("OK.tool"), "kept");
  const CHILD_END end = RunWith({"tool"});
  EXPECT_EQ(end.exit_status, 2);
  EXPECT_EQ(Content("OK.tool"), "kept");
  EXPECT_FALSE(Exists("ERROR.tool"));
  EXPECT_FALSE(Exists("current_process.pid"));
  const std::string rule = "INFO  : resample : " + std::string(52, '=');
  const std::vector<std::string> expected = {
      rule, "INFO  : resample : Program execution interrupted - STOP file was found!", rule,
      "INFO  : resample : found file: STOP.tool"};
  EXPECT_EQ(LinesFrom("log.tool", rule), expected);
}

TEST_F(CONTROLLER, ProcessIdentifiersAreLeftInTheCurrentDirectory) {
  RunWith({"tool"}, [](CONTROLLER_IFC&) {
    WriteFile("expected", std::to_string(::getpid()) + " " + std::to_string(::getppid()));
  });
  EXPECT_EQ(Content("current_process.pid") + " " + Content("parent_process.pid"),
            Content("expected"));
}

TEST_F(CONTROLLER, FilesThatCanNotBeWrittenAreReportedAndTheRunGoesOn) {
  std::filesystem::create_directory(Path("parent_process.pid"));
  const CHILD_END end = RunWith({"tool", "-status", "nowhere"},
                                [](CONTROLLER_IFC& controller) { controller.FinishFailureExit(); });
  EXPECT_EQ(end.exit_status, 1);
  const std::string error_file = "WARN  : resample : Can not create file nowhere/ERROR.tool!";
  const std::vector<std::string> expected = {
      error_file, "WARN  : resample : Error opening file parent_process.pid", error_file};
  EXPECT_EQ(LinesFrom("log.tool", error_file), expected);
}

TEST_F(CONTROLLER, NameBeforeInitIsUnknown) {
  Run([] {
    Log().Open("log");
    CONTROLLER_IFC controller;
    WriteFile("name", controller.get_binary_name() + controller.get_binary_name());
  });
  EXPECT_EQ(Content("name"), "unknownunknown");
  const std::vector<std::string> expected = {
      "WARN  : resample : CONTROLLER_IFC::get_binary_name: Controller interface not initialized!",
      "WARN  : resample : Function CONTROLLER_IFC::init must be called before accessing a "
      "controller object!"};
  EXPECT_EQ(Lines("log"), expected);
}

TEST_F(CONTROLLER, SuccessfulEndLeavesOnlyTheOkFile) {
  EXPECT_EQ(RunWith({"tool"}, [](CONTROLLER_IFC& c) { c.FinishSuccessExit(); }).exit_status, 0);
  EXPECT_EQ(Content("OK.tool"), "0");
  EXPECT_FALSE(Exists("ERROR.tool"));

  RunWith({"tool"},
          [](CONTROLLER_IFC& c) { WriteFile("result", std::to_string(c.FinishSuccess())); });
  EXPECT_EQ(Content("result"), "0");
  EXPECT_EQ(Content("OK.tool"), "0");
}

TEST_F(CONTROLLER, FailedEndLeavesOnlyTheErrorFile) {
  const auto fail = [](CONTROLLER_IFC& controller) {
    WriteFile("OK.tool", "0");
    WriteFile("ERROR.tool", "changed meanwhile");
    WriteFile("result", std::to_string(controller.FinishFailure()));
  };
  RunWith({"tool"}, fail);
  EXPECT_EQ(Content("result"), "1");
  EXPECT_EQ(Content("ERROR.tool"), "1");
  EXPECT_FALSE(Exists("OK.tool"));
  EXPECT_EQ(RunWith({"tool"}, [](CONTROLLER_IFC& c) { c.FinishFailureExit(); }).exit_status, 1);
}

/// Reads what no process may read.
void TouchForbiddenMemory() {
  const void* const page = ::mmap(nullptr, 1, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  WriteFile("unreachable", std::string(1, *static_cast<const volatile char*>(page)));
}

TEST_F(CONTROLLER, AfterTheEndOfTheRunOnlyAFaultChangesTheOutcome) {
  const auto finish_and_then = [&](const std::function<void()>& act) {
    return RunWith({"tool"},
                   [=](CONTROLLER_IFC& controller) {
                     const int status = controller.FinishSuccess();
                     act();
                     std::exit(status);
                   })
        .exit_status;
  };
  for (const int sent : {SIGTERM, SIGSEGV}) {
    EXPECT_EQ(finish_and_then([=] { ::raise(sent); }), 0);
    EXPECT_EQ(Content("OK.tool"), "0");
    EXPECT_FALSE(Exists("ERROR.tool"));
  }
  EXPECT_EQ(finish_and_then(TouchForbiddenMemory), 1);
  EXPECT_FALSE(Exists("OK.tool"));
  EXPECT_EQ(Content("ERROR.tool"), "1");
}

TEST_F(CONTROLLER, NoTemporaryLogIsLeftBehind) {
  Run([] {
    const std::string descriptor = std::to_string(Log().FileDescriptor());
    WriteFile("temporary", std::filesystem::read_symlink("/proc/self/fd/" + descriptor).string());
    // The real log can not be opened, so that the temporary one stays in use to the end.
    ARGUMENTS arguments({"tool", "-lfn", "nowhere/log"});
    CONTROLLER_IFC controller;
    controller.init(arguments.Count(), arguments.Vector(), 1);
    controller.FinishSuccessExit();
  });
  EXPECT_TRUE(Content("temporary").find("/log.") != std::string::npos) << Content("temporary");
  EXPECT_FALSE(std::filesystem::exists(Content("temporary")));
}

}  // namespace
