#include "app/work_ranges.h"

#include <algorithm>

#include "base/error_exception.h"
#include "logging/logging.h"

int SplitRange(const URANGE<unsigned int>& range, int wanted,
               ARRAY<URANGE<unsigned int>>& sub_ranges) {
  using enum LOGGING_LEVEL_T;
  if (range.Count() == 0 || wanted < 1) {
    Log().Message(ALARM, "can not split %u lines into %d blocks", range.Count(), wanted);
    throw ERROR_ARGUMENT();
  }
  const unsigned block_count = std::min(static_cast<unsigned>(wanted), range.Count());
  const unsigned lines = range.Count() / block_count;
  const unsigned longer_blocks = range.Count() - lines * block_count;
  if (sub_ranges.Resize(RANGE<int>(0, static_cast<int>(block_count))) != CONTAINER_OK) {
    Log() << ALARM << "can not change array size: out of memory";
    throw "out of memory";
  }
  unsigned first = range.First();
  for (unsigned i = 0; i < block_count; ++i) {
    const unsigned count = i < longer_blocks ? lines + 1 : lines;
    sub_ranges.Origin()[i] = URANGE<unsigned int>(first, count);
    first += count;
  }
  return static_cast<int>(block_count);
}
