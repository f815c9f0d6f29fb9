#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <functional>
#include <sstream>

#include "logging/printable_text.h"
#include "run_folder.h"

namespace {

/// Runs the ordinary scene with each parameter in turn, those of the control included, set to a
/// value on the command line. Whether that is accepted or not, the run must end properly and leave
/// its inputs alone. `check` sees what the run said, on the screen and in its log.
void ForEachParameter(const std::string& value,
                      const std::function<void(const std::string& said)>& check) {
  std::istringstream names(
      "INSAR_PARAMETER_POOL log_pp SLAVE_PARAMETER_POOL SlaveIn MaskIn MAPPING_FORMAT "
      "RG_MAPPING_FILE AZ_MAPPING_FILE KERNEL_TYPE n_samples KERNEL_COEFFICIENT "
      "KERNEL_LENGTH KERNEL_SUBPIX_POS no_of_cpu SlaveOut MaskOut PS_MODE FLUSH_OUTPUTS pid "
      "status pcf lfn lfl lsl");
  for (std::string name; names >> name;) {
    SCOPED_TRACE(name);
    RUN_FOLDER folder(OrdinaryScene());
    folder.parameters["lfl"] = "TRACE";
    folder.parameters["n_lines"] = "60";  // else `n_samples` alone asks for it
    folder.arguments.insert(folder.arguments.end(), {"-" + name, value});
    const std::string slave = folder.Content("slave.ras");
    const PROCESS_END end = folder.Run();
    EXPECT_EQ(end.signal, 0);
    EXPECT_TRUE(end.exit_status == 0 || end.exit_status == 1) << end.exit_status;
    EXPECT_EQ(end.errors, "");
    EXPECT_TRUE(folder.Content("slave.ras") == slave);
    std::string said = end.screen;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Directory())) {
      const std::string file = entry.path().filename();
      said += file.starts_with("log.") || (name == "lfn" && file == value) ? ReadFile(entry.path())
                                                                           : "";
    }
    check(said);
  }
}

TEST(Security, LongValuesWorkOrAreRefused) {
  for (const std::size_t length : {200U, 255U, 256U, 4096U, 70000U}) {
    SCOPED_TRACE(length);
    const std::string value(length, 'x');
    ForEachParameter(value, [](const std::string& said) {
      EXPECT_TRUE(said.find("execution time:") != std::string::npos ||
                  said.find(supervisor_line) != std::string::npos);
    });
  }
}

TEST(Security, LongNameOfTheRunWorks) {
  RUN_FOLDER folder(OrdinaryScene());
  const std::string name(240, 'n');
  folder.arguments = {"-pid", name, "-pcf", "./" + std::string(300, '/') + "pcf.run"};
  EXPECT_EQ(folder.Run().exit_status, 0);
  EXPECT_EQ(folder.Content("OK." + name), "0");
  EXPECT_TRUE(folder.Exists("log." + name));
}

TEST(Security, ValuesAreNeverFormats) {
  const std::string value = "%n%s%99999$d%s%n";
  ForEachParameter(value, [&](const std::string& said) {
    EXPECT_NE(said.find(value), std::string::npos) << said;
  });
}

/// Lines of a text without the program's own highlighting and prompt.
std::vector<std::string> Lines(std::string text) {
  for (const std::string highlight :
       {"\033[1m", "\033[4m", "\033[7m", "\033[0m", "INSAR_PARAMETER_POOL := "}) {
    for (auto at = text.find(highlight); at != std::string::npos; at = text.find(highlight, at)) {
      text.erase(at, highlight.size());
    }
  }
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

void ExpectHarmless(const std::string& said) {
  for (const std::string& line : Lines(said)) {
    EXPECT_EQ(line.find(" : resample : "), 5U) << line;
    EXPECT_TRUE(std::none_of(line.begin(), line.end(), IsControlByte)) << line;
  }
}

TEST(Security, ControlCharactersReachNeitherScreenNorLog) {
  const std::string value =
      "a\033]0;title\007\r\033[2J\x9b"
      "5m\nALARM : resample : KVT_MSG|ERROR|forged";
  ForEachParameter(value, [](const std::string& said) {
    ExpectHarmless(said);
    EXPECT_NE(said.find("a\\x1b]0;title\\x07\\x0d\\x1b[2J\\x9b5m\\x0aALARM"), std::string::npos)
        << said;
  });
}

TEST(Security, TextsOfPoolsAndOfTheEnvironmentAreHarmlessToo) {
  RUN_FOLDER folder(OrdinaryScene());
  POOL_TEXT pool = InsarPool(OrdinaryScene());
  pool.Set("mapping_format", "STR matrix\033[31m");
  folder.Write("insar.pool", pool.Text());
  folder.environment["PROC_NAME"] = "\033c\nALARM : forged";
  const PROCESS_END end = folder.Run();
  ExpectFailure(folder, end);
  ExpectHarmless(end.screen + folder.Content("log.run"));
  EXPECT_NE(folder.Alarms().find("matrix\\x1b[31m"), std::string::npos);
}

TEST(Security, NewFilesHaveThePermissionsOfTheUmaskAndPoolsKeepTheirs) {
  for (const mode_t mask : {0027, 0002, 0077}) {
    RUN_FOLDER folder(OrdinaryScene());
    ::chmod(folder.Path("insar.pool").c_str(), 0604);
    PROCESS_SETTINGS settings = folder.Settings();
    settings.prepare = [mask] {
      ::umask(mask);
      return true;
    };
    ExpectSuccess(folder, PROCESS(settings).Wait());
    const auto mode = [&](const char* name) {
      struct stat status = {};
      ::stat(folder.Path(name).c_str(), &status);
      return status.st_mode & 07777;
    };
    for (const char* file : {"out.ras", "out_mask.ras", "log.run", "OK.run", "current_process.pid",
                             "parent_process.pid"}) {
      EXPECT_EQ(mode(file), 0666 & ~mask) << file;
    }
    EXPECT_EQ(mode("insar.pool"), 0604U);
  }
}

}  // namespace
