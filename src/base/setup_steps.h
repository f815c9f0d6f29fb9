#pragma once

#include <functional>
#include <initializer_list>

/// How the steps of a set-up are taken: one after the other, the first error ends it. Who derives
/// from it may note the errors and go on, so that what prepares a run also tells all that is wrong
/// with one. A set-up leaves out what depends on a step that has failed.
class SETUP_STEPS {
 public:
  using STEP = std::function<void()>;

  SETUP_STEPS() = default;
  SETUP_STEPS(const SETUP_STEPS&) = delete;
  SETUP_STEPS& operator=(const SETUP_STEPS&) = delete;
  virtual ~SETUP_STEPS() = default;

  /// Whether the step succeeded. Here its error passes through instead.
  virtual bool Take(const STEP& step) const {
    step();
    return true;
  }

  /// Takes steps that do not depend on each other; whether all of them succeeded.
  bool TakeAll(std::initializer_list<STEP> steps) const {
    bool all = true;
    for (const STEP& step : steps) {
      all = Take(step) && all;
    }
    return all;
  }
};
