#include "run_folder.h"

#include <regex.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "support/raster_file.h"

namespace {

/// Standard error without a warning that concerns the sanitizer only: it does not know the stack
/// of a thread that a signal reaches before its first function.
std::string SanitizerReports(const std::string& errors) {
  std::string reports;
  bool about_stack = false;
  for (const std::string& line : LinesOf(errors)) {
    about_stack =
        about_stack || line.find("ignoring requested __asan_handle_no_return") != std::string::npos;
    reports += about_stack ? "" : line + "\n";
    about_stack = about_stack && !line.starts_with("For details see ");
  }
  return reports;
}

}  // namespace

RUN_FOLDER::RUN_FOLDER(const SCENE& scene)
    : parameters(SceneParameters(scene)),
      image_type_(scene.code == PIXEL_CODE::INT_16 ? RASTER_COMPLEX_INT_16
                                                   : RASTER_COMPLEX_BINARY_16) {
  WriteSceneFiles(scene, directory_.Path());
}

PROCESS_SETTINGS RUN_FOLDER::Settings() const {
  std::string configuration;
  for (const auto& [name, value] : parameters) {
    configuration.append(name).append(" ").append(value).append("\n");
  }
  Write("pcf.run", configuration);
  PROCESS_SETTINGS settings;
  settings.program = RESAMPLE_PROGRAM;
  settings.arguments = arguments;
  settings.environment = environment;
  settings.directory = Directory();
  settings.keyboard = keyboard;
  return settings;
}

std::vector<std::string> RUN_FOLDER::LogLines() const {
  return LinesOf(Content("log.run"));
}

long RUN_FOLDER::CountLogLines(std::string_view line) const {
  const std::vector<std::string> lines = LogLines();
  return std::count(lines.begin(), lines.end(), line);
}

GRID<RAW_PIXEL> RUN_FOLDER::Image() const {
  return ReadRaster<RAW_PIXEL>(Path("out.ras"), image_type_);
}

GRID<std::uint8_t> RUN_FOLDER::Mask() const {
  return ReadRaster<std::uint8_t>(Path("out_mask.ras"), RASTER_BYTE);
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

bool Matches(const std::string& text, const std::string& expression) {
  regex_t compiled;
  if (::regcomp(&compiled, ("^(" + expression + ")$").c_str(), REG_EXTENDED | REG_NOSUB) != 0) {
    throw std::runtime_error("wrong expression: " + expression);
  }
  const bool matches = ::regexec(&compiled, text.c_str(), 0, nullptr, 0) == 0;
  ::regfree(&compiled);
  return matches;
}

void ExpectSuccess(const RUN_FOLDER& folder, const PROCESS_END& end) {
  EXPECT_EQ(end.exit_status, 0) << end.screen;
  EXPECT_EQ(end.signal, 0);
  EXPECT_EQ(SanitizerReports(end.errors), "");
  EXPECT_FALSE(folder.Exists("ERROR.run"));
  EXPECT_EQ(folder.Exists("OK.run") ? folder.Content("OK.run") : "no file", "0");
}

void ExpectFailure(const RUN_FOLDER& folder, const PROCESS_END& end) {
  EXPECT_EQ(end.exit_status, 1) << end.screen;
  EXPECT_EQ(end.signal, 0);
  EXPECT_EQ(SanitizerReports(end.errors), "");
  EXPECT_FALSE(folder.Exists("OK.run"));
  EXPECT_EQ(folder.Exists("ERROR.run") ? folder.Content("ERROR.run") : "no file", "1");
}
