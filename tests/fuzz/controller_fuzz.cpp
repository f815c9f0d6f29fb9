// Input: arguments, one a line, an empty line, and a configuration file. Every name that occurs is
// looked up, and the value compared with that of a plain search.

#include <optional>

#include "fuzz/controller_target.h"

namespace {

/// The configuration file as a list of its lines' first two words, and where the search stands.
class CONFIGURATION_MODEL {
 public:
  explicit CONFIGURATION_MODEL(std::string_view text) {
    constexpr std::size_t longest_line = 1024;
    while (!text.empty()) {
      std::string_view line = text.substr(0, longest_line).substr(0, text.find('\n'));
      // A full piece leaves the line feed that follows it to a line of its own.
      text.remove_prefix(line.size() < longest_line ? std::min(line.size() + 1, text.size())
                                                    : longest_line);
      const std::string name = Word(line);
      lines_.emplace_back(name, Word(line));
    }
  }

  std::optional<std::string> Find(const std::string& name) {
    const std::size_t rest = lines_.size() - position_;
    for (std::size_t i = 0; i < rest + lines_.size(); ++i) {
      const auto& [line_name, value] = lines_[(position_ + i) % lines_.size()];
      if (!line_name.empty() && line_name == name) {
        position_ = (position_ + i) % lines_.size() + 1;
        return value;
      }
    }
    position_ = lines_.size();
    return std::nullopt;
  }

 private:
  static std::string Word(std::string_view& line) {
    const auto is_space = [](char character) {
      return character == ' ' || (character >= '\t' && character <= '\r');
    };
    while (!line.empty() && is_space(line.front())) {
      line.remove_prefix(1);
    }
    std::string word;
    while (!line.empty() && !is_space(line.front())) {
      word += line.front();
      line.remove_prefix(1);
    }
    return word;
  }

  std::vector<std::pair<std::string, std::string>> lines_;
  std::size_t position_ = 0;
};

std::optional<std::string> LastArgument(const std::vector<std::string>& words,
                                        const std::string& name) {
  for (std::size_t i = words.size() - 1; i > 1; --i) {
    if (words[i - 1] == "-" + name) {
      return words[i];
    }
  }
  return std::nullopt;
}

std::vector<std::string> NamesIn(std::string_view text) {
  constexpr std::size_t name_limit = 12;
  std::vector<std::string> names;
  while (!text.empty() && names.size() < name_limit) {
    std::string_view line = TakeUpTo(text, "\n");
    line.remove_prefix(line.starts_with('-') ? 1 : 0);
    line = line.substr(0, line.find_first_of(std::string_view(" \t\0", 3)));
    const std::string name(line);
    if (std::getenv(name.c_str()) == nullptr) {
      names.push_back(name);
    }
  }
  return names;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool is_there = (GoToOwnDirectory(), true);
  std::string_view text = TextOf(data, size);
  // No file of anybody else, no end that the program decides on itself, and a name for nothing.
  const std::string nothing("\1");
  if (!is_there || text.find('/') != std::string_view::npos ||
      text.find("STOP") != std::string_view::npos || text.find(nothing) != std::string_view::npos) {
    return 0;
  }
  const std::vector<std::string> names = NamesIn(text);
  std::string_view argument_text = TakeUpTo(text, "\n\n");
  std::vector<std::string> words = {"folder/fuzz"};
  while (!argument_text.empty()) {
    words.emplace_back(TakeUpTo(argument_text, "\n"));
    words.back().resize(std::min(words.back().find('\0'), words.back().size()));
  }
  for (const char* own : {"-pcf", "pcf.fuzz", "-lsl", "NO_MESSAGE", "-lfn", "log.fuzz"}) {
    words.emplace_back(own);
  }
  WriteFile("pcf.fuzz", text);

  ARGUMENTS arguments(words);
  CONTROLLER_IFC controller;
  Start(controller, arguments);
  // Where the file stands after the start is not known; one search for nothing goes to its end.
  CONFIGURATION_MODEL configuration(text);
  std::string value;
  configuration.Find(nothing);
  Require(!controller.GetParameter(nothing.c_str(), value, true), "a parameter from nowhere");
  for (const std::string& name : names) {
    std::optional<std::string> expected = LastArgument(words, name);
    if (!expected) {
      expected = configuration.Find(name);
    }
    bool is_found = false;
    const bool is_taken =
        Succeeds([&] { is_found = controller.GetParameter(name.c_str(), value, true); });
    const bool has_nul = expected && expected->find('\0') != std::string::npos;
    Require(is_taken != has_nul, "a NUL character in the value of " + name);
    Require(has_nul || (is_found == expected.has_value() && (!expected || value == *expected)),
            "another value than expected of " + name);
  }
  return 0;
}
