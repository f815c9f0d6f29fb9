#pragma once

#include <span>
#include <string>
#include <string_view>

/// What a person needs to know about one parameter.
struct PARAMETER_GUIDE {
  std::string_view name;
  std::string_view need;  ///< "required", or what happens without it
  std::string_view meaning;
  std::string_view values;       ///< empty where the meaning says it all
  bool is_outside_file = false;  ///< the configuration file is not asked: it is not open yet
};

/// All parameters of the program, in the order in which a run asks for them.
std::span<const PARAMETER_GUIDE> ParameterGuides();

/// What a parameter means and which values it takes, in lines that end with a line feed, for the
/// person who is asked for it. Empty for an unknown name.
std::string ParameterHint(const std::string& name);
