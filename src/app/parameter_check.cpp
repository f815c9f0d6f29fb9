#include "app/parameter_check.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <numeric>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/parameter_table.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

std::string InLowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return std::tolower(c); });
  return lower;
}

/// Number of letters to insert, delete or replace that makes one text of the other, whatever their
/// case.
std::size_t Distance(std::string_view from, std::string_view to) {
  const std::string a = InLowerCase(from);
  const std::string b = InLowerCase(to);
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
    }
  }
  return row.back();
}

bool IsIn(const PARAMETER_ENTRY& parameter, PARAMETER_SOURCE source) {
  return parameter.source == PARAMETER_SOURCE::ANY || parameter.source == source;
}

/// The parameter of that source whose name is closest, one of four letters being wrong at most.
/// Null without one.
const PARAMETER_ENTRY* FindSimilar(std::string_view name, PARAMETER_SOURCE source) {
  const PARAMETER_ENTRY* similar = nullptr;
  constexpr std::size_t longest_name = 100;
  std::size_t least = name.size() > longest_name ? 0 : name.size() / 4 + 1;
  for (const PARAMETER_ENTRY& parameter : Parameters()) {
    if (!IsIn(parameter, source) || least == 0) {
      continue;
    }
    const std::size_t distance = Distance(name, parameter.name);
    if (distance < least) {
      similar = &parameter;
      least = distance;
    }
  }
  return similar;
}

void Warn(const std::string& what, std::string_view name, PARAMETER_SOURCE source) {
  const PARAMETER_ENTRY* const similar = FindSimilar(name, source);
  Log() << WARNING << what << " is read by nothing"
        << (similar != nullptr ? "; is " + similar->name + " meant?" : "");
}

bool BeginsWithLetter(std::string_view text) {
  return !text.empty() && std::isalpha(static_cast<unsigned char>(text[0])) != 0;
}

void WarnOfArguments(const CONTROLLER_IFC& controller) {
  constexpr auto source = PARAMETER_SOURCE::ARGUMENTS_AND_ENVIRONMENT;
  const auto arguments = controller.Arguments();
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    const std::string_view word = arguments[i];
    if (!word.starts_with('-') || !BeginsWithLetter(word.substr(1))) {
      continue;
    }
    const PARAMETER_ENTRY* const parameter = FindParameter(word.substr(1));
    if (parameter != nullptr && IsIn(*parameter, source)) {
      ++i;  // its value
    } else {
      Warn("argument " + std::string(word), word.substr(1), source);
    }
  }
}

void WarnOfConfigurationFile(CONTROLLER_IFC& controller) {
  constexpr std::size_t most = 10;
  std::set<std::string> unknown;
  for (const std::string& name : controller.ConfigurationFileNames()) {
    const PARAMETER_ENTRY* const parameter = FindParameter(name);
    const bool is_known = parameter != nullptr && parameter->source == PARAMETER_SOURCE::ANY;
    if (is_known || !BeginsWithLetter(name) || !unknown.insert(name).second) {
      continue;
    }
    if (unknown.size() <= most) {
      Warn(name + " in the configuration file", name, PARAMETER_SOURCE::ANY);
    }
  }
  if (unknown.size() > most) {
    Log() << WARNING << "so are " << unknown.size() - most
          << " more names in the configuration file";
  }
}

/// Of names that are short, or words of everyday, programs of others have variables too.
void WarnOfEnvironment() {
  constexpr std::size_t shortest_name = 6;
  constexpr auto source = PARAMETER_SOURCE::ENVIRONMENT;
  for (char** variable = ::environ; variable != nullptr && *variable != nullptr; ++variable) {
    const std::string_view text = *variable;
    const std::string_view name = text.substr(0, text.find('='));
    if (name.size() >= shortest_name && FindParameter(name) == nullptr &&
        FindSimilar(name, source) != nullptr) {
      Warn("environment variable " + std::string(name), name, source);
    }
  }
}

}  // namespace

void WarnOfUnknownParameters(CONTROLLER_IFC& controller) {
  WarnOfArguments(controller);
  WarnOfConfigurationFile(controller);
  WarnOfEnvironment();
}
