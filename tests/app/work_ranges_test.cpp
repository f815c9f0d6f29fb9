#include "app/work_ranges.h"

#include <gtest/gtest.h>

#include <vector>

#include "base/error_exception.h"
#include "support/log_capture.h"

namespace {

using BLOCKS = std::vector<std::pair<unsigned, unsigned>>;  // first, count

BLOCKS Split(unsigned first, unsigned count, int wanted) {
  ARRAY<URANGE<unsigned int>> sub_ranges;
  const int blocks = SplitRange({first, count}, wanted, sub_ranges);
  BLOCKS result;
  for (int i = 0; i < blocks; ++i) {
    result.emplace_back(sub_ranges.Origin()[i].First(), sub_ranges.Origin()[i].Count());
  }
  return result;
}

TEST(WorkRangesTest, BlocksAreContiguousAndNoneIsEmpty) {
  EXPECT_EQ(Split(5, 10, 4), (BLOCKS{{5, 3}, {8, 3}, {11, 2}, {13, 2}}));
  EXPECT_EQ(Split(0, 3, 8), (BLOCKS{{0, 1}, {1, 1}, {2, 1}})) << "no block is empty";
  EXPECT_EQ(Split(0, 4294967295U, 2), (BLOCKS{{0, 2147483648U}, {2147483648U, 2147483647U}}));

  const LOG_CAPTURE log;
  EXPECT_THROW(Split(0, 0, 2), ERROR_ARGUMENT);
  EXPECT_THROW(Split(0, 5, 0), ERROR_ARGUMENT);
  EXPECT_TRUE(log.Has("ALARM : can not split 5 lines into 0 blocks")) << log.Text();
}

}  // namespace
