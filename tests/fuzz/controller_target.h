#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "control/controller_ifc.h"
#include "fuzz/fuzz_target.h"
#include "support/process.h"
#include "support/temporary_directory.h"

// What the targets with a controller share.

/// Makes a directory of its own the current one, for good, and lets the keyboard be empty.
inline void GoToOwnDirectory() {
  static const TEMPORARY_DIRECTORY directory;
  std::filesystem::current_path(directory.Path());
  const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  ::dup2(nothing, STDIN_FILENO);
  ::close(nothing);
}

/// Words as an argument list, which must stay where it is while a controller uses it.
class ARGUMENTS {
 public:
  explicit ARGUMENTS(std::vector<std::string> words)
      : words_(std::move(words)), pointers_(Pointers(words_)) {}
  ARGUMENTS(const ARGUMENTS&) = delete;
  ARGUMENTS& operator=(const ARGUMENTS&) = delete;

  int Count() const { return static_cast<int>(words_.size()); }
  char** Values() { return pointers_.data(); }

 private:
  std::vector<std::string> words_;
  std::vector<char*> pointers_;
};

/// Puts the signals back for which the controller installs its handler, because a fuzzer has
/// handlers of its own.
class KEPT_SIGNALS {
 public:
  KEPT_SIGNALS() {
    for (std::size_t number = 1; number < actions_.size(); ++number) {
      ::sigaction(static_cast<int>(number), nullptr, &actions_[number]);
    }
    ::sigaltstack(nullptr, &stack_);
  }
  ~KEPT_SIGNALS() {
    for (std::size_t number = 1; number < actions_.size(); ++number) {
      ::sigaction(static_cast<int>(number), &actions_[number], nullptr);
    }
    ::sigaltstack(&stack_, nullptr);
  }
  KEPT_SIGNALS(const KEPT_SIGNALS&) = delete;
  KEPT_SIGNALS& operator=(const KEPT_SIGNALS&) = delete;

 private:
  std::array<struct sigaction, 32> actions_{};
  stack_t stack_{};
};

inline void Start(CONTROLLER_IFC& controller, ARGUMENTS& arguments) {
  const KEPT_SIGNALS kept;
  controller.init(arguments.Count(), arguments.Values(), 0);
}
