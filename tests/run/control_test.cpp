#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <regex>

#include "run_folder.h"

namespace {

const std::string warning_begin = "WARN  : resample : ";

/// The log from its header on, the lines before it are older than the level of the file. Texts
/// of level INFO stand alone, and times, host and duration are replaced.
std::vector<std::string> LogWithoutTimes(const RUN_FOLDER& folder) {
  const std::string time = "[A-Z][a-z]{2} [A-Z][a-z]{2} [ 0-9]{2} [0-9:]{8} [0-9]{4}";
  const std::vector<std::pair<std::regex, std::string>> replacements = {
      {std::regex(info_begin + "|( : resample)"), ""},
      {std::regex("^start time: " + time + "  hostname: .+"), "start time: TIME  hostname: HOST"},
      {std::regex("^end time: " + time), "end time: TIME"},
      {std::regex("^execution time:(( [0-9]+ (minute|second)\\(s\\))+| less than 1 second)"),
       "execution time: TIME"}};
  std::vector<std::string> lines = folder.LogLines();
  lines.erase(lines.begin(), std::find(lines.begin(), lines.end(), info_begin));
  for (std::string& line : lines) {
    for (const auto& [expression, text] : replacements) {
      line = std::regex_replace(line, expression, text);
    }
  }
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

  const std::string stars(59, '*');
  const std::string rule(50, '-');
  std::vector<std::string> expected = {
      "",
      stars,
      "Resample 0.0.5",
      stars,
      "compile date: 2020-02-06T13:09:23  compiled by: gcc4.5.0_64b",
      "start time: TIME  hostname: HOST",
      "started by: CONTROL",
      "using configuration file pcf.run",
      "* Read input parameters",
      "  - Mapping type has been forced by PCF value. It has been written to pool",
      "PARAM : init no_of_cpu                 : 1",
      "   - InsarPoolName  : insar.pool",
      "   - SlavePoolName  : slave.pool",
      "   - SlaveIn        : slave.ras",
      "   - MaskIn         : mask.ras",
      "   - Mapping type   : matrix",
      "   - RgMappingFile  : rg.map",
      "   - AzMappingFile  : az.map",
      "   - n_samples      : 70",
      "   - n_lines        : 60",
      "   - SlaveOut       : out.ras",
      "   - MaskOut        : out_mask.ras",
      "* Initialize Kernels",
      "  -  shift raster = 64",
      "* Map input slave and mask",
      "* Setup input mapping",
      "MATRIX_INTERPOLATION: Overview of initialized parameters:",
      rule,
      "rg_size: ........... 11",
      "az_size: ........... 10",
      "degree: ............ 2",
      "MATRIX_INTERPOLATION: Overview of initialized parameters:",
      rule,
      "rg_size: ........... 11",
      "az_size: ........... 10",
      "degree: ............ 2",
      "* Allocate output resampled image and its mask",
      "* Setup SLC parameters",
      "PARAM : fDC: prf = 1000.000000",
      "PARAM : fDC: rsf = 20000000.000000",
      "PARAM : fDC: oversampling = 1.000000",
      "PARAM : fDC: t_az_start = Not initialized here",
      "PARAM : fDC: t_rg_start = Not initialized here",
      "PARAM : fDC: number of range polynomials over az: 1",
      "PARAM : fDC: number of coeffs over range: 1",
      "PARAM : fDC: support count: 1",
      "PARAM : LOCAL_INTERPOLATION: polynom count; 1",
      "PARAM : idx_start=0 idx_stop=0 t_start=0.000000 t_stop=0.000000",
      "PARAM : LOCAL_INTERPOLATION: polynom count; 1",
      "PARAM : idx_start=0 idx_stop=0 t_start=0.000000 t_stop=0.000000",
      "PARAM : fDC: t_rg_start = 0.005000",
      "PARAM : fDC: t_az_start = 0.000000",
      "* Perform processing",
      "  - Define work range",
      "  - Set thread argument",
      "  - Setup threads",
      "  - Run"};
  for (int percent = 0; percent < 100; percent += 10) {
    expected.push_back(std::to_string(percent) + " % done");
  }
  expected.insert(expected.end(),
                  {"  - Saturated output components: 0, non-finite inputs under valid mask: 0",
                   "* Memory de-allocation", stars, "end time: TIME", "execution time: TIME"});
  EXPECT_EQ(LogWithoutTimes(folder), expected);
}

TEST(RunLog, PolynomialRunWithoutMasksNamesNoFilesThatItDoesNotUse) {
  SCENE scene = OrdinaryScene();
  scene.mask.reset();
  scene.mapping = POLYNOMIAL_MAPPING_DATA{{1.5, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0}};
  RUN_FOLDER folder(scene);
  folder.parameters.erase("MaskOut");
  ExpectSuccess(folder, folder.Run());
  EXPECT_FALSE(folder.Exists("out_mask.ras"));
  EXPECT_EQ(folder.LogLines(info_begin + "   - "),
            (std::vector<std::string>{"InsarPoolName  : insar.pool", "SlavePoolName  : slave.pool",
                                      "SlaveIn        : slave.ras", "Mapping type   : polynomial",
                                      "n_samples      : 70", "n_lines        : 60",
                                      "SlaveOut       : out.ras"}));
}

TEST(RunLog, FileHoldsDebugAndScreenInfoUnlessTheLevelsAreSet) {
  RUN_FOLDER folder(OrdinaryScene());
  PROCESS_END end = folder.Run();
  ExpectSuccess(folder, end);
  EXPECT_EQ(folder.CountLogLines("DEBUG : resample :    - Pixel type : 8"), 1);
  EXPECT_TRUE(folder.LogLines("TRACE : ").empty());
  EXPECT_EQ(end.screen.find("DEBUG : "), std::string::npos);
  EXPECT_NE(end.screen.find(info_begin + "* Perform processing\n"), std::string::npos);

  folder.parameters["lsl"] = "NO_MESSAGE";
  folder.parameters["lfl"] = "TRACE";
  folder.environment["PARALLEL"] = "2";
  end = folder.Run();
  ExpectSuccess(folder, end);
  EXPECT_EQ(folder.LogLines("TRACE : resample : Thread 1, "),
            std::vector<std::string>{"getstart = 30,getend = 59"});
  EXPECT_EQ(end.screen, "");
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
       info_begin + "   - SlaveOut       : typed.ras", info_begin + "  -  shift raster = 16"}));
  EXPECT_EQ(std::filesystem::file_size(folder.Path("typed.ras")), 32U + 33U * 22U * 4U);
}

TEST(Lookup, WidthWithoutHeightIsAskedForAtTheKeyboard) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.parameters["n_samples"] = "20";
  folder.keyboard = "15";
  ExpectSuccess(folder, folder.Run());
  EXPECT_EQ(folder.CountLogLines(info_begin + "   - n_lines        : 15"), 1);
}

TEST(StatusFiles, StopFileEndsTheRunBeforeItTouchesAnything) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.Write("STOP.run", "");
  folder.Write("OK.run", "old");
  folder.parameters["MAPPING_FORMAT"] = "polynomial";
  const std::string pool = folder.Content("insar.pool");
  EXPECT_EQ(folder.Run().exit_status, 2);
  EXPECT_EQ(folder.Content("OK.run"), "old");
  for (const char* file : {"ERROR.run", "out.ras", "out_mask.ras", "current_process.pid"}) {
    EXPECT_FALSE(folder.Exists(file)) << file;
  }
  EXPECT_EQ(folder.Content("insar.pool"), pool);
  const std::string rule(52, '=');
  EXPECT_TRUE(HasInOrder(folder.LogLines(info_begin),
                         {rule, "Program execution interrupted - STOP file was found!", rule,
                          "found file: STOP.run"}));
  EXPECT_EQ(folder.CountLogLines(info_begin + "Resample 0.0.5"), 0);
}

TEST(StatusFiles, StandInTheStatusDirectoryAndTellTheLastRun) {
  RUN_FOLDER folder(OrdinaryScene());
  std::filesystem::create_directory(folder.Path("state"));
  folder.arguments = {"-status", "state", "-pcf", "pcf.run"};
  folder.parameters["SlaveIn"] = "missing.ras";
  EXPECT_EQ(folder.Run().exit_status, 1);
  EXPECT_EQ(folder.Content("state/ERROR.resample"), "1");
  EXPECT_FALSE(folder.Exists("state/OK.resample"));

  folder.arguments.insert(folder.arguments.end(), {"-pid", "7", "-SlaveIn", "slave.ras"});
  folder.Write("state/ERROR.7", "1");
  PROCESS process(folder.Settings());
  EXPECT_EQ(process.Wait().exit_status, 0);
  EXPECT_EQ(folder.Content("state/OK.7"), "0");
  EXPECT_FALSE(folder.Exists("state/ERROR.7"));
  EXPECT_TRUE(folder.Exists("log.7"));
  EXPECT_EQ(folder.Content("current_process.pid"), std::to_string(process.Id()));
  EXPECT_EQ(folder.Content("parent_process.pid"), std::to_string(::getpid()));
}

}  // namespace
