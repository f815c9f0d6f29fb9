#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "support/temporary_directory.h"

/// How a child process ended and what it left on standard output.
struct CHILD_END {
  int exit_status = -1;  ///< -1 when a signal ended it
  int signal = 0;        ///< 0 when it ended by itself
  std::string screen;
};

/// Exit status of a child whose body returned.
inline constexpr int body_returned = 77;

/// The log, the controller and the signal dispositions belong to the process, so each run gets a
/// process of its own, forked from one that has none of them. It runs in an empty directory,
/// with a log as the program has it and standard output in the file "screen".
class CHILD_PROCESS_TEST : public testing::Test {
 protected:
  ~CHILD_PROCESS_TEST() override;

  /// Runs the body in a child whose standard input holds `keyboard` and then ends.
  CHILD_END Run(const std::function<void()>& body, std::string_view keyboard = "");

  /// Starts the body in a child that the test itself signals and waits for. The child inherits
  /// the test's standard input.
  pid_t Start(const std::function<void()>& body);
  CHILD_END Wait(pid_t child);

  std::string Path(std::string_view name) const { return directory_.File(name); }
  bool Exists(std::string_view name) const;
  /// Content of a file in the child's directory.
  std::string Content(std::string_view name) const { return ReadFile(Path(name)); }
  std::vector<std::string> Lines(std::string_view name) const;
  /// How many lines of the file equal `line`.
  long Count(std::string_view name, std::string_view line) const;

 private:
  TEMPORARY_DIRECTORY directory_;
  std::vector<pid_t> running_;
};

/// An argument vector as a main function gets it.
class ARGUMENTS {
 public:
  ARGUMENTS(std::initializer_list<std::string> texts);
  int Count() const { return static_cast<int>(pointers_.size()) - 1; }
  char** Vector() { return pointers_.data(); }

 private:
  std::vector<std::string> texts_;
  std::vector<char*> pointers_;
};
