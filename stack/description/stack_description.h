#pragma once

#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

/// A stack that cannot be started at all; the text is for its author.
class STACK_ERROR : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One slave of a stack: the parameters of its run of resample, as a configuration file gives them.
/// Paths are absolute.
struct STACK_SLAVE {
  std::string name;
  std::map<std::string, std::string> parameters;
};

/// What a stack description says.
struct STACK_DESCRIPTION {
  std::string name;
  std::filesystem::path directory;  ///< absolute; of all that is kept about the stack's runs
  std::vector<STACK_SLAVE> slaves;
};

/// Reads a description: a JSON object with "slaves", a list of objects that each have a "name" and
/// parameters of resample, and optionally "name" (else the file's name without its ending),
/// "directory" (else the file's path with the ending ".stack"), and "common", an object with the
/// parameters of all slaves. A slave's own parameter goes before the common one, "{name}" in a
/// value stands for the slave's name, and relative paths begin at the description's directory.
///
/// Throws STACK_ERROR with a line for everything that is wrong: unknown or missing parameters,
/// values that a configuration file cannot hold, names given twice, and outputs that would
/// overwrite an input or the output of another run.
STACK_DESCRIPTION ReadStackDescription(const std::filesystem::path& file);
