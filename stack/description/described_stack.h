#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

/// One slave of a stack: the parameters of its run of resample, as a configuration file gives them.
/// Paths are absolute.
struct STACK_SLAVE {
  std::string name;
  std::map<std::string, std::string> parameters;
};

/// What a stack description says. Its paths are absolute and lead through no links, so that they
/// are the same whatever path leads to the description.
struct STACK_DESCRIPTION {
  std::string name;
  std::filesystem::path file;       ///< absolute
  std::filesystem::path base;       ///< folder of the description, where relative paths begin
  std::filesystem::path directory;  ///< of all that is kept about the stack's runs
  std::vector<STACK_SLAVE> slaves;
};
