#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

/// A null-terminated array of pointers to the texts, as `main` gets and `execve` wants it.
std::vector<char*> Pointers(std::vector<std::string>& texts);

/// What to start, and where.
struct PROCESS_SETTINGS {
  std::string program;                 ///< when empty, `prepare` is all that the process does
  std::vector<std::string> arguments;  ///< without the program's own name
  /// The whole environment. Options of the sanitizers are passed on besides.
  std::map<std::string, std::string> environment;
  std::filesystem::path directory;  ///< current directory of the process
  std::string keyboard;             ///< content of standard input
  int screen = -1;                  ///< descriptor for standard output; -1: file "screen"
  /// Called in the new process, with the environment of this one, just before the program starts;
  /// false ends it with `not_started`.
  std::function<bool()> prepare;
};

/// How a process ended and what it left.
struct PROCESS_END {
  int exit_status = -1;  ///< -1 when a signal ended it
  int signal = 0;        ///< 0 when it ended by itself
  std::string screen;    ///< standard output, if it went into the file
  std::string errors;    ///< standard error: nothing but reports of sanitizers
};

/// A running process, killed if its owner goes before it ends. Leaves the files "screen",
/// "errors" and "keyboard" in its directory.
class PROCESS {
 public:
  /// Exit status of a process that could not become the program.
  static constexpr int not_started = 99;

  explicit PROCESS(const PROCESS_SETTINGS& settings);
  ~PROCESS();
  PROCESS(const PROCESS&) = delete;
  PROCESS& operator=(const PROCESS&) = delete;

  pid_t Id() const noexcept { return id_; }
  bool HasEnded() const;
  void Signal(int number) const;
  /// Sends the signal to one of its threads, counted from 0 around and around.
  void SignalThread(unsigned index, int number) const;
  PROCESS_END Wait();

 private:
  std::filesystem::path directory_;
  pid_t id_ = -1;
  bool waited_ = false;
};
