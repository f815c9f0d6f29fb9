#pragma once

#include <algorithm>

/// How the processors of a machine are shared among the runs of a stack.
struct CORE_SPLIT {
  int concurrent = 1;  ///< runs at a time
  int threads = 1;     ///< worker threads of each
};

/// As many runs as there are processors, with one thread each, unless a number of runs other than 0
/// is given. `bench/run stack` measures what the other splits cost: set-up, page faults at the
/// start of an output and the end of the last worker use one processor only.
inline CORE_SPLIT SplitOf(int processors, int concurrent) {
  const int runs = concurrent > 0 ? concurrent : processors;
  return {runs, std::max(1, processors / runs)};
}
