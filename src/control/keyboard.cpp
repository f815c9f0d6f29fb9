#include "control/keyboard.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "logging/logging.h"
#include "system/whole_write.h"

namespace {

using enum LOGGING_LEVEL_T;

int SecondsToWait() {
  const char* text = std::getenv("SECONDS_ON_PARAMETER_INPUT");
  if (text == nullptr) {
    return 120;
  }
  const long seconds = std::strtol(text, nullptr, 10);
  return static_cast<int>(std::clamp<long>(seconds, 0, INT_MAX));
}

/// An armed process alarm that ends the process by SIGALRM's default action, whatever the
/// starting process left behind for that signal.
class INPUT_ALARM {
 public:
  explicit INPUT_ALARM(int seconds) {
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    ::sigaction(SIGALRM, &action, nullptr);
    sigset_t alarm_only;
    sigemptyset(&alarm_only);
    sigaddset(&alarm_only, SIGALRM);
    ::pthread_sigmask(SIG_UNBLOCK, &alarm_only, nullptr);
    ::alarm(static_cast<unsigned>(seconds));
  }
  ~INPUT_ALARM() { ::alarm(0); }
  INPUT_ALARM(const INPUT_ALARM&) = delete;
  INPUT_ALARM& operator=(const INPUT_ALARM&) = delete;
};

/// The next byte of standard input; none at its end or when it cannot be read.
std::optional<char> ReadCharacter() {
  char character = 0;
  ssize_t length = 0;
  do {
    length = ::read(STDIN_FILENO, &character, 1);
  } while (length < 0 && errno == EINTR);
  return length == 1 ? std::optional(character) : std::nullopt;
}

bool IsWhiteSpace(char character) {
  return std::string_view(" \t\n\v\f\r").find(character) != std::string_view::npos;
}

/// Empty only at the end of the input. Read byte by byte: a buffered stream would swallow what
/// belongs to the next question.
std::string ReadWord() {
  std::string word;
  while (const std::optional<char> character = ReadCharacter()) {
    if (!IsWhiteSpace(*character)) {
      word += *character;
    } else if (!word.empty()) {
      break;
    }
  }
  return word;
}

}  // namespace

std::string AskAtKeyboard(const std::string& name, const std::string& hint) {
  Log() << WARNING << "No configuration file or parameter not found!";
  Log() << WARNING << "\t  Please input value of parameter : <" << name << ">";
  const int seconds = SecondsToWait();
  Log() << DEBUG << "waiting " << seconds << " seconds for input";

  std::string word;
  {
    const INPUT_ALARM alarm(seconds);
    // A question that cannot be shown can still be answered.
    if (::isatty(STDERR_FILENO) != 0) {
      WriteWhole(STDERR_FILENO, hint);
    }
    WriteWhole(STDOUT_FILENO, name + " := ");
    word = ReadWord();
  }
  if (word.empty()) {
    Log() << ALARM << "end of standard input, no value for parameter " << name;
    throw "missing parameter";
  }
  Log() << DEBUG << "Read from keyboard parameter " << name << " = " << word;
  return word;
}
