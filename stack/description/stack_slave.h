#pragma once

#include <map>
#include <string>

/// One slave of a stack: the parameters of its run of resample, as a configuration file gives them.
/// Paths are absolute.
struct STACK_SLAVE {
  std::string name;
  std::map<std::string, std::string> parameters;
};
