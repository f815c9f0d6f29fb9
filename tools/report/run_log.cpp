#include "report/run_log.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "logging/logged_line.h"

namespace {

std::string_view Trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(' ');
  if (begin == std::string_view::npos) {
    return {};
  }
  return text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

struct LOOKUP_TEXT {
  std::string_view begin;       ///< of the line, in front of the name
  std::string_view assignment;  ///< between name and value
  const char* source;
};

constexpr std::array<LOOKUP_TEXT, 4> lookup_texts = {
    {{"Found parameter in argument list ", " = ", "arguments"},
     {"Found parameter in UNIX environment ", "=", "environment"},
     {"Found parameter ", "=", "configuration file"},
     {"Read from keyboard parameter ", " = ", "keyboard"}}};

/// What the run prints at INFO, where the lookups are not in the log.
constexpr std::array<std::pair<std::string_view, const char*>, 11> echoed = {
    {{"InsarPoolName", "INSAR_PARAMETER_POOL"},
     {"SlavePoolName", "SLAVE_PARAMETER_POOL"},
     {"SlaveIn", "SlaveIn"},
     {"MaskIn", "MaskIn"},
     {"Mapping type", "MAPPING_FORMAT"},
     {"RgMappingFile", "RG_MAPPING_FILE"},
     {"AzMappingFile", "AZ_MAPPING_FILE"},
     {"n_samples", "n_samples"},
     {"n_lines", "n_lines"},
     {"SlaveOut", "SlaveOut"},
     {"MaskOut", "MaskOut"}}};

std::optional<LOGGED_PARAMETER> FromLookup(std::string_view text) {
  for (const auto& [begin, assignment, source] : lookup_texts) {
    if (text.starts_with(begin)) {
      const std::string_view rest = text.substr(begin.size());
      const std::size_t name_end = rest.find(assignment);
      if (name_end == std::string_view::npos) {
        return std::nullopt;
      }
      return LOGGED_PARAMETER{std::string(rest.substr(0, name_end)),
                              std::string(rest.substr(name_end + assignment.size())), source};
    }
  }
  return std::nullopt;
}

std::optional<LOGGED_PARAMETER> FromEcho(std::string_view text) {
  constexpr std::string_view begin = "   - ";
  const std::size_t label_end = text.find(": ");
  if (!text.starts_with(begin) || label_end == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view label = Trimmed(text.substr(begin.size(), label_end - begin.size()));
  const auto* const known = std::find_if(echoed.begin(), echoed.end(),
                                         [&](const auto& pair) { return pair.first == label; });
  if (known == echoed.end()) {
    return std::nullopt;
  }
  return LOGGED_PARAMETER{known->second, std::string(text.substr(label_end + 2)), ""};
}

}  // namespace

RUN_LOG::RUN_LOG(const std::string& path) {
  std::ifstream file(path);
  if (!file) {
    throw std::runtime_error("can not read the log " + path);
  }
  for (std::string line; std::getline(file, line);) {
    if (const auto logged = LOGGED_LINE::Of(line)) {
      lines_.push_back({std::string(logged->level), std::string(logged->text)});
      AddParameter(lines_.back());
    }
  }
  if (lines_.empty()) {
    throw std::runtime_error("no lines of a log in " + path);
  }
}

void RUN_LOG::AddParameter(const LINE& line) {
  auto found = FromLookup(line.text);
  if (!found && (found = FromEcho(line.text)) && has_lookups_) {
    found->source = "INSAR pool";  // what no lookup has found before
  }
  has_lookups_ = has_lookups_ || (found && !found->source.empty());
  if (found && !Parameter(found->name)) {
    parameters_.push_back(*std::move(found));
  }
}

std::vector<std::string> RUN_LOG::Texts(std::string_view level) const {
  std::vector<std::string> texts;
  for (const LINE& line : lines_) {
    if (line.level == level) {
      texts.push_back(line.text);
    }
  }
  return texts;
}

std::optional<std::string> RUN_LOG::After(std::string_view begin) const {
  for (const LINE& line : lines_) {
    if (std::string_view(line.text).starts_with(begin)) {
      return line.text.substr(begin.size());
    }
  }
  return std::nullopt;
}

std::optional<std::string> RUN_LOG::Parameter(std::string_view name) const {
  for (const LOGGED_PARAMETER& parameter : parameters_) {
    if (parameter.name == name) {
      return parameter.value;
    }
  }
  return std::nullopt;
}

std::optional<RUN_FINDINGS> RUN_LOG::Findings() const {
  constexpr std::string_view separator = ", non-finite inputs under valid mask: ";
  const std::string text = After("  - Saturated output components: ").value_or("");
  const std::size_t end = text.find(separator);
  if (end == std::string::npos) {
    return std::nullopt;
  }
  return RUN_FINDINGS{text.substr(0, end), text.substr(end + separator.size())};
}

std::optional<double> RUN_LOG::ExecutionSeconds() const {
  const auto text = After("execution time:");
  if (!text) {
    return std::nullopt;
  }
  double seconds = 0.0;
  std::istringstream parts(*text);
  double number = 0.0;
  for (std::string unit; parts >> number >> unit;) {
    seconds += number * (unit.starts_with("day")      ? 86400.0
                         : unit.starts_with("hour")   ? 3600.0
                         : unit.starts_with("minute") ? 60.0
                                                      : 1.0);
  }
  return seconds;
}
