#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

enum class PARAMETER_KIND {
  POOL,          ///< a file that is read, and updated or not
  RASTER,        ///< a file that is read
  OUTPUT,        ///< a file that is created
  CONTROL,       ///< name or place of a file of the run's control
  WHOLE_NUMBER,  ///< decimal digits with a sign or without
  REAL_NUMBER,
  WORD
};

/// Where a parameter is looked for; at the keyboard only when it is required.
enum class PARAMETER_SOURCE {
  ANY,                        ///< arguments, configuration file, environment
  ARGUMENTS_AND_ENVIRONMENT,  ///< the configuration file is not open yet
  ENVIRONMENT
};

/// All that is true of one parameter.
struct PARAMETER_ENTRY {
  std::string name;
  PARAMETER_KIND kind;
  std::string need;  ///< "required", or what happens without it
  PARAMETER_SOURCE source;
  std::string meaning;
  std::string values;  ///< empty where the meaning says it all

  bool IsRequired() const { return need == "required"; }
  bool IsNumber() const {
    return kind == PARAMETER_KIND::WHOLE_NUMBER || kind == PARAMETER_KIND::REAL_NUMBER;
  }
};

/// The table of the parameters in the order in which a run asks for them, and after them what is
/// only in the environment. Help, hints, the files that the log keeps away from, the search for
/// unknown names and what a stack may give follow from it; manual page, completions and documents
/// are tested against it.
std::span<const PARAMETER_ENTRY> Parameters();

/// Null for an unknown name.
const PARAMETER_ENTRY* FindParameter(std::string_view name);

/// Names of all parameters of these kinds.
std::vector<std::string> ParametersOf(std::initializer_list<PARAMETER_KIND> kinds);

/// What a parameter means and which values it takes, in lines that end with a line feed, for the
/// person who is asked for it. Empty for an unknown name.
std::string ParameterHint(const std::string& name);

/// Why a text is no number of the parameter's kind, such as `"1k" is no whole number and counts as
/// 1`; empty when it is one, and for parameters that are no numbers.
std::string NumberComplaint(const PARAMETER_ENTRY& parameter, const std::string& text);
