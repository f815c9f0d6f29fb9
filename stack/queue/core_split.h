#pragma once

#include <algorithm>

/// How the processors of a machine are shared among the runs of a stack.
struct CORE_SPLIT {
  int concurrent = 1;  ///< runs at a time
  int threads = 1;     ///< worker threads of each
};

/// Two runs with one thread for each processor, unless a number of runs other than 0 is given:
/// while one waits for its files, or is at its start or end, the other computes. `bench/run stack`
/// compares this split with others.
inline CORE_SPLIT SplitOf(int processors, int concurrent) {
  const int runs = concurrent > 0 ? concurrent : 2 * processors;
  return {runs, std::max(1, processors / runs)};
}
