#pragma once

#include <string>

/// The program of the runs.
struct PROGRAM {
  std::string path;     ///< absolute
  std::string version;  ///< as it tells it
  std::string build;    ///< its BuildOf
};

/// `path` as given, or else resample beside this program, or else in PATH. Throws STACK_ERROR when
/// it tells no version.
PROGRAM FindProgram(const std::string& path);
