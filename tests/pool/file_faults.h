#pragma once

#include <functional>
#include <string>
#include <string_view>

inline constexpr std::string_view any_call;

/// Interferes with the system calls of a pool's update while it lives: call number `victim`,
/// counted from 0, runs `action`; what that returns, if not 0, is the errno with which the call
/// fails. Writes take a few bytes each, so that there are many of them.
///
/// It sees the calls of the executable that is linked with --wrap for them: all of them, or those
/// of one name.
class FILE_FAULTS {
 public:
  FILE_FAULTS(std::string_view name, int victim, std::function<int()> action);
  FILE_FAULTS(std::string_view name, int victim, int error)
      : FILE_FAULTS(name, victim, [error] { return error; }) {}
  ~FILE_FAULTS();
  FILE_FAULTS(const FILE_FAULTS&) = delete;
  FILE_FAULTS& operator=(const FILE_FAULTS&) = delete;

  /// The names of the calls so far, repetitions left out: "flock pread mkostemp ...".
  std::string Calls() const;
  /// Whether there were calls enough to reach the victim.
  bool Struck() const noexcept;
};
