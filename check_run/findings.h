#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "logging/logging_level.h"

/// Everything that is wrong with a run: takes the steps of its set-up, notes their errors in place
/// of ending with the first, and listens to the log meanwhile, because the log tells the details.
class FINDINGS {
 public:
  /// What a run's log would say at ALARM, line by line; the last line is the kind of the error.
  using FAILURE = std::vector<std::string>;

  FINDINGS();
  FINDINGS(const FINDINGS&) = delete;
  FINDINGS& operator=(const FINDINGS&) = delete;
  ~FINDINGS();

  /// Whether the step succeeded; its error is noted otherwise.
  bool Take(const std::function<void()>& step);
  /// For what a run would not say itself.
  void AddFailure(FAILURE failure) { failures_.push_back(std::move(failure)); }
  void AddWarning(std::string warning) { warnings_.push_back(std::move(warning)); }

  const std::vector<FAILURE>& Failures() const noexcept { return failures_; }
  /// Those that differ but in a number at their end, as for each row of a table, are one.
  std::vector<std::string> Warnings() const;

 private:
  std::vector<std::string> alarms_;  ///< of the step that is being taken
  std::vector<FAILURE> failures_;
  std::vector<std::string> warnings_;
};
