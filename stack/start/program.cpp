#include "start/program.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "basics/child_process.h"
#include "basics/stack_error.h"
#include "run/slave_plan.h"

namespace {

namespace fs = std::filesystem;

fs::path DirectoryOfThisProgram() {
  return fs::read_symlink("/proc/self/exe").parent_path();
}

/// The first executable of this name in PATH, else the name.
std::string InPath(const std::string& name) {
  const char* variable = std::getenv("PATH");
  std::istringstream folders(variable == nullptr ? "" : variable);
  for (std::string folder; std::getline(folders, folder, ':');) {
    const fs::path path = fs::absolute(fs::path(folder) / name);
    if (fs::is_regular_file(path) && ::access(path.c_str(), X_OK) == 0) {
      return path.string();
    }
  }
  return name;
}

std::string PathOfProgram(const std::string& path) {
  if (path.empty()) {
    const fs::path beside = DirectoryOfThisProgram() / "resample";
    return fs::exists(beside) ? beside.string() : InPath("resample");
  }
  return path.find('/') == std::string::npos ? InPath(path) : fs::absolute(path).string();
}

}  // namespace

PROGRAM FindProgram(const std::string& path) {
  PROGRAM program{.path = PathOfProgram(path), .version = "", .build = ""};
  const COMMAND_RESULT result = RunCommand({program.path, "--version"});
  if (result.end.exit_status != 0) {
    throw STACK_ERROR(program.path + " --version: " + result.text);
  }
  program.version = result.text.substr(0, result.text.find('\n'));
  program.build = BuildOf(program.path);
  return program;
}
