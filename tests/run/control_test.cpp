#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <iterator>

#include "run_folder.h"

namespace {

const std::string warning_begin = "WARN  : resample : ";
const std::string parameter_begin = "PARAM : resample : ";

/// Replaces what differs from run to run: times, the host and the duration.
std::string WithoutTimes(const std::string& line) {
  const std::string time = "[A-Z][a-z]{2} [A-Z][a-z]{2} [ 0-9]{2} [0-9:]{8} [0-9]{4}";
  if (Matches(line, info_begin + "start time: " + time + "  hostname: .+")) {
    return info_begin + "start time: TIME  hostname: HOST";
  }
  if (Matches(line, info_begin + "end time: " + time)) {
    return info_begin + "end time: TIME";
  }
  const std::string duration = "( [0-9]+ (minute|second)\\(s\\))+| less than 1 second";
  return Matches(line, info_begin + "execution time:(" + duration + ")")
             ? info_begin + "execution time: TIME"
             : line;
}

/// The log from its header on; the lines before it are older than the level of the file.
std::vector<std::string> LogWithoutTimes(const RUN_FOLDER& folder) {
  std::vector<std::string> lines = folder.LogLines();
  lines.erase(lines.begin(), std::find(lines.begin(), lines.end(), info_begin));
  std::transform(lines.begin(), lines.end(), lines.begin(), WithoutTimes);
  return lines;
}

/// Whether the lines stand in the log in this order, others between them.
testing::AssertionResult HasInOrder(const std::vector<std::string>& log,
                                    const std::vector<std::string>& lines) {
  auto position = log.begin();
  for (const std::string& line : lines) {
    position = std::find(position, log.end(), line);
    if (position == log.end()) {
      return testing::AssertionFailure() << "missing, or not in this order: " << line;
    }
  }
  return testing::AssertionSuccess();
}

const std::string stars(59, '*');

std::vector<std::string> ExpectedHeader() {
  return {info_begin,
          info_begin + stars,
          info_begin + "Resample 0.0.5",
          info_begin + stars,
          info_begin + "compile date: 2020-02-06T13:09:23  compiled by: gcc4.5.0_64b",
          info_begin + "start time: TIME  hostname: HOST"};
}

void Append(std::vector<std::string>& lines, const std::string& begin,
            const std::vector<std::string>& texts) {
  for (const std::string& text : texts) {
    lines.push_back(begin + text);
  }
}

TEST(RunLog, MatrixRunWithMasksAndForcedMappingIsToldInOrder) {
  SCENE scene = OrdinaryScene();
  scene.doppler = DOPPLER_DATA();
  scene.doppler.coefficients.At(0, 0) = 100.0;
  RUN_FOLDER folder(scene);
  folder.parameters["lfl"] = "PARAMETER";
  folder.parameters["MAPPING_FORMAT"] = "Matrix";
  folder.parameters["no_of_cpu"] = "1";
  folder.environment["PROC_NAME"] = "CONTROL";
  ExpectSuccess(folder, folder.Run());

  std::vector<std::string> expected = ExpectedHeader();
  Append(expected, info_begin,
         {"started by: CONTROL", "using configuration file pcf.run", "* Read input parameters",
          "  - Mapping type has been forced by PCF value. It has been written to pool"});
  expected.push_back(parameter_begin + "init no_of_cpu                 : 1");
  Append(expected, info_begin,
         {"   - InsarPoolName  : insar.pool", "   - SlavePoolName  : slave.pool",
          "   - SlaveIn        : slave.ras", "   - MaskIn         : mask.ras",
          "   - Mapping type   : matrix", "   - RgMappingFile  : rg.map",
          "   - AzMappingFile  : az.map", "   - n_samples      : 70", "   - n_lines        : 60",
          "   - SlaveOut       : out.ras", "   - MaskOut        : out_mask.ras",
          "* Initialize Kernels", "  -  shift raster = 64", "* Map input slave and mask",
          "* Setup input mapping"});
  for (int matrix = 0; matrix < 2; ++matrix) {
    Append(expected, info_begin,
           {"MATRIX_INTERPOLATION: Overview of initialized parameters:", std::string(50, '-'),
            "rg_size: ........... 11", "az_size: ........... 10", "degree: ............ 2"});
  }
  Append(expected, info_begin,
         {"* Allocate output resampled image and its mask", "* Setup SLC parameters"});
  Append(expected, parameter_begin,
         {"fDC: prf = 1000.000000", "fDC: rsf = 20000000.000000", "fDC: oversampling = 1.000000",
          "fDC: t_az_start = Not initialized here", "fDC: t_rg_start = Not initialized here",
          "fDC: number of range polynomials over az: 1", "fDC: number of coeffs over range: 1",
          "fDC: support count: 1"});
  for (int interpolation = 0; interpolation < 2; ++interpolation) {
    Append(expected, parameter_begin,
           {"LOCAL_INTERPOLATION: polynom count; 1",
            "idx_start=0 idx_stop=0 t_start=0.000000 t_stop=0.000000"});
  }
  Append(expected, parameter_begin, {"fDC: t_rg_start = 0.005000", "fDC: t_az_start = 0.000000"});
  Append(expected, info_begin,
         {"* Perform processing", "  - Define work range", "  - Set thread argument",
          "  - Setup threads", "  - Run"});
  for (int percent = 0; percent < 100; percent += 10) {
    expected.push_back(info_begin + std::to_string(percent) + " % done");
  }
  Append(expected, info_begin,
         {"* Memory de-allocation", stars, "end time: TIME", "execution time: TIME"});
  EXPECT_EQ(LogWithoutTimes(folder), expected);
}

TEST(RunLog, PolynomialRunWithoutMasksNamesNoFilesThatItDoesNotUse) {
  SCENE scene = OrdinaryScene();
  scene.mask.reset();
  scene.mapping = POLYNOMIAL_MAPPING_DATA{{1.5, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0}};
  RUN_FOLDER folder(scene);
  folder.parameters["lfl"] = "INFO";
  folder.parameters.erase("MaskOut");
  ExpectSuccess(folder, folder.Run());
  EXPECT_FALSE(folder.Exists("out_mask.ras"));

  std::vector<std::string> expected = ExpectedHeader();
  Append(expected, info_begin,
         {"using configuration file pcf.run",
          "* Read input parameters",
          "  - Mapping type has been read from pool",
          "   - InsarPoolName  : insar.pool",
          "   - SlavePoolName  : slave.pool",
          "   - SlaveIn        : slave.ras",
          "   - Mapping type   : polynomial",
          "   - n_samples      : 70",
          "   - n_lines        : 60",
          "   - SlaveOut       : out.ras",
          "* Initialize Kernels",
          "  -  shift raster = 64",
          "* Map input slave and mask",
          "* Setup input mapping",
          "* Allocate output resampled image and its mask",
          "* Setup SLC parameters",
          "* Perform processing",
          "  - Define work range",
          "  - Set thread argument",
          "  - Setup threads",
          "  - Run"});
  for (int percent = 0; percent < 100; percent += 10) {
    expected.push_back(info_begin + std::to_string(percent) + " % done");
  }
  Append(expected, info_begin,
         {"* Memory de-allocation", stars, "end time: TIME", "execution time: TIME"});
  EXPECT_EQ(LogWithoutTimes(folder), expected);
}

TEST(RunLog, FileHoldsDebugAndScreenInfoUnlessTheLevelsAreSet) {
  RUN_FOLDER folder(OrdinaryScene());
  const std::vector<std::string> details = {
      "DEBUG : resample : Found parameter in argument list pid = run",
      "DEBUG : resample : full version: "
      "resample.v0.0.5.linux.gcc4.5.0_64bit.default.20200206130923",
      "DEBUG : resample : Found parameter SlaveIn=slave.ras",
      "DEBUG : resample :    - Pixel type : 8"};
  PROCESS_END end = folder.Run();
  ExpectSuccess(folder, end);
  EXPECT_TRUE(HasInOrder(folder.LogLines(), details));
  EXPECT_EQ(folder.Content("log.run").find("TRACE : "), std::string::npos);
  EXPECT_EQ(end.screen.find("DEBUG : "), std::string::npos);
  EXPECT_NE(end.screen.find(info_begin + "* Perform processing\n"), std::string::npos);

  folder.parameters["lsl"] = "NO_MESSAGE";
  folder.parameters["lfl"] = "TRACE";
  folder.environment["PARALLEL"] = "2";
  end = folder.Run();
  ExpectSuccess(folder, end);
  EXPECT_EQ(folder.CountLogLines("TRACE : resample : Thread 0, getstart = 0,getend = 29"), 1);
  EXPECT_EQ(folder.CountLogLines("TRACE : resample : Thread 1, getstart = 30,getend = 59"), 1);
  EXPECT_EQ(end.screen, "");
}

/// The first file "log.XXXXXX" of the directory that holds the text. Others come and go.
std::string TemporaryLogWith(const std::string& text, const std::filesystem::path& directory) {
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    const std::string name = entry.path().filename();
    if (name.starts_with("log.") && name.size() == std::string_view("log.XXXXXX").size()) {
      std::ifstream file(entry.path());
      const std::string content{std::istreambuf_iterator<char>(file), {}};
      if (content.find(text) != std::string::npos) {
        return entry.path();
      }
    }
  }
  return "";
}

TEST(RunLog, NoTemporaryLogStaysBehind) {
  RUN_FOLDER folder(OrdinaryScene());
  const std::string name = folder.Directory().filename();  // unique on this machine
  folder.arguments = {"-pid", name, "-pcf", "pcf.run"};
  EXPECT_EQ(folder.Run().exit_status, 0);
  folder.parameters["KERNEL_TYPE"] = "none";
  EXPECT_EQ(folder.Run().exit_status, 1);
  folder.Write("STOP." + name, "");
  EXPECT_EQ(folder.Run().exit_status, 2);
  EXPECT_NE(folder.Content("log." + name).find(name), std::string::npos);
  for (const std::filesystem::path place : {"/tmp", "/var/tmp", folder.Directory().c_str()}) {
    EXPECT_EQ(TemporaryLogWith(name, place), "");
  }
}

TEST(RunLog, LogThatCanNotBeOpenedStopsNothing) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.arguments = {"-pid", "run", "-lfn", "missing/log"};
  const PROCESS_END end = folder.Run();
  ExpectSuccess(folder, end);
  EXPECT_NE(end.screen.find(alarm_begin + " can not open logging file: missing/log"),
            std::string::npos);
}

TEST(Lookup, ArgumentsThenFileThenEnvironmentThenKeyboard) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.parameters["n_samples"] = "31";  // loses against the argument
  folder.parameters["n_lines"] = "22";
  folder.parameters.erase("KERNEL_SUBPIX_POS");
  folder.parameters.erase("SlaveOut");
  folder.arguments = {"-n_samples", "32", "-pid", "run", "-n_samples", "33"};
  folder.environment["n_samples"] = "34";
  folder.environment["n_lines"] = "23";
  folder.environment["KERNEL_SUBPIX_POS"] = "16";
  folder.keyboard = "  typed.ras rest\n";
  const PROCESS_END end = folder.Run();
  ExpectSuccess(folder, end);
  EXPECT_NE(end.screen.find("SlaveOut := "), std::string::npos);
  EXPECT_TRUE(HasInOrder(
      folder.LogLines(),
      {"DEBUG : resample : Found parameter in UNIX environment KERNEL_SUBPIX_POS=16",
       "DEBUG : resample : Found parameter in argument list n_samples = 33",
       "DEBUG : resample : Found parameter n_lines=22",
       warning_begin + "No configuration file or parameter not found!",
       warning_begin + "\t  Please input value of parameter : <SlaveOut>",
       "DEBUG : resample : waiting 120 seconds for input",
       "DEBUG : resample : Read from keyboard parameter SlaveOut = typed.ras",
       info_begin + "   - n_samples      : 33", info_begin + "   - n_lines        : 22",
       info_begin + "   - SlaveOut       : typed.ras", info_begin + "  -  shift raster = 16"}));
  EXPECT_EQ(std::filesystem::file_size(folder.Path("typed.ras")), 32U + 33U * 22U * 4U);
}

TEST(Lookup, WidthWithoutHeightIsAskedForAtTheKeyboard) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.parameters["n_samples"] = "20";
  folder.keyboard = "15";
  const PROCESS_END end = folder.Run();
  ExpectSuccess(folder, end);
  EXPECT_NE(end.screen.find("n_lines := "), std::string::npos);
  EXPECT_EQ(folder.CountLogLines(info_begin + "   - n_lines        : 15"), 1);
}

TEST(Lookup, UnansweredPromptEndsByTheAlarm) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.parameters.erase("SlaveIn");
  folder.environment["SECONDS_ON_PARAMETER_INPUT"] = "1";
  int silent_pipe[2];
  ASSERT_EQ(::pipe(silent_pipe), 0);
  PROCESS_SETTINGS settings = folder.Settings();
  settings.prepare = [&] { return ::dup2(silent_pipe[0], STDIN_FILENO) == STDIN_FILENO; };
  const PROCESS_END end = PROCESS(settings).Wait();
  ::close(silent_pipe[0]);
  ::close(silent_pipe[1]);
  EXPECT_EQ(end.signal, SIGALRM);
  EXPECT_EQ(folder.Content("ERROR.run"), "1") << "left by the start";
}

TEST(StatusFiles, StopFileEndsTheRunBeforeItTouchesAnything) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.Write("STOP.run", "");
  folder.Write("OK.run", "old");
  const std::string pool = folder.Content("insar.pool");
  EXPECT_EQ(folder.Run().exit_status, 2);
  EXPECT_EQ(folder.Content("OK.run"), "old");
  for (const char* file : {"ERROR.run", "out.ras", "out_mask.ras", "current_process.pid"}) {
    EXPECT_FALSE(folder.Exists(file)) << file;
  }
  EXPECT_EQ(folder.Content("insar.pool"), pool);
  const std::string rule(52, '=');
  const std::vector<std::string> lines = folder.LogLines();
  EXPECT_TRUE(HasInOrder(
      lines,
      {info_begin + rule, info_begin + "Program execution interrupted - STOP file was found!",
       info_begin + rule, info_begin + "found file: STOP.run"}));
  EXPECT_FALSE(HasInOrder(lines, {info_begin + "Resample 0.0.5"}));
}

TEST(StatusFiles, StandInTheStatusDirectoryAndTellTheLastRun) {
  RUN_FOLDER folder(OrdinaryScene());
  std::filesystem::create_directory(folder.Path("state"));
  folder.arguments = {"-pid", "7", "-status", "state", "-pcf", "pcf.run"};
  folder.parameters["SlaveIn"] = "missing.ras";
  EXPECT_EQ(folder.Run().exit_status, 1);
  EXPECT_EQ(folder.Content("state/ERROR.7"), "1");
  EXPECT_FALSE(folder.Exists("state/OK.7"));
  EXPECT_TRUE(folder.Exists("log.7"));

  folder.parameters["SlaveIn"] = "slave.ras";
  PROCESS process(folder.Settings());
  EXPECT_EQ(process.Wait().exit_status, 0);
  EXPECT_EQ(folder.Content("state/OK.7"), "0");
  EXPECT_FALSE(folder.Exists("state/ERROR.7"));
  EXPECT_EQ(folder.Content("current_process.pid"), std::to_string(process.Id()));
  EXPECT_EQ(folder.Content("parent_process.pid"), std::to_string(::getpid()));
}

TEST(StatusFiles, CarryTheProgramsNameWithoutAnother) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.arguments = {"-pcf", "pcf.run"};
  EXPECT_EQ(folder.Run().exit_status, 0);
  EXPECT_EQ(folder.Content("OK.resample"), "0");
  EXPECT_TRUE(folder.Exists("log.resample"));
}

struct WORKER_REQUEST {
  const char* parallel;  ///< environment; null: not set
  const char* no_of_cpu;
  int workers;
  const char* line;  ///< that the log holds, or null
};

TEST(NumberOfWorkers, FollowsTheEnvironmentAndTheParameter) {
  const int online = static_cast<int>(::sysconf(_SC_NPROCESSORS_ONLN));
  const std::vector<WORKER_REQUEST> requests = {
      {"3", nullptr, 3, nullptr},
      {"3", "2", 2, "PARAM : resample : init no_of_cpu                 : 2"},
      {"3", "0", 3, "PARAM : resample : init no_of_cpu                 : 0"},
      {"3", "-4", 3, "PARAM : resample : init no_of_cpu                 : -4"},
      {"3", "many", 3, "PARAM : resample : init no_of_cpu                 : 0"},
      {"500", nullptr, 60, nullptr},  // never more than lines
      {nullptr, nullptr, online, nullptr},
      {"many", nullptr, online, nullptr},
  };
  for (const WORKER_REQUEST& request : requests) {
    SCOPED_TRACE(std::string(request.parallel != nullptr ? request.parallel : "not set") + ", " +
                 (request.no_of_cpu != nullptr ? request.no_of_cpu : "not given"));
    RUN_FOLDER folder(OrdinaryScene());
    folder.parameters["lfl"] = "TRACE";
    folder.environment.clear();
    if (request.parallel != nullptr) {
      folder.environment["PARALLEL"] = request.parallel;
    }
    if (request.no_of_cpu != nullptr) {
      folder.parameters["no_of_cpu"] = request.no_of_cpu;
    }
    ExpectSuccess(folder, folder.Run());
    const std::vector<std::string> lines = folder.LogLines();
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [](const std::string& line) {
                              return line.starts_with("TRACE : resample : Thread ");
                            }),
              request.workers);
    if (request.line != nullptr) {
      EXPECT_EQ(folder.CountLogLines(request.line), 1);
    }
    const auto warns = [](const std::string& line) {
      return line.starts_with(warning_begin) && line.find("PARALLEL") != std::string::npos;
    };
    EXPECT_EQ(std::any_of(lines.begin(), lines.end(), warns),
              folder.environment["PARALLEL"] == "many");
  }
}

TEST(Inputs, StayAsTheyAre) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.Write("log.pool", "");
  folder.parameters["log_pp"] = "log.pool";
  const std::vector<const char*> inputs = {"slave.ras", "mask.ras",   "rg.map",
                                           "az.map",    "slave.pool", "insar.pool"};
  std::vector<std::string> before;
  for (const char* input : inputs) {
    before.push_back(folder.Content(input));
    std::filesystem::permissions(folder.Path(input), std::filesystem::perms::owner_read);
  }
  std::filesystem::permissions(folder.Path("insar.pool"), std::filesystem::perms::owner_all);
  ExpectSuccess(folder, folder.Run());
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    EXPECT_EQ(folder.Content(inputs[i]) == before[i], true) << inputs[i];
  }
}

}  // namespace
