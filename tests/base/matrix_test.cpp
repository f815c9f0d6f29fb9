#include "base/matrix.h"

#include <gtest/gtest.h>

#include "base/string.h"
#include "failing_allocation.h"
#include "support/log_capture.h"

namespace {

TEST(MATRIX, RowTableAddressesOneRowMajorBlock) {
  MATRIX<int> matrix;
  ASSERT_EQ(matrix.Create({-1, 3}, {10, 4}), 0U);
  int** const table = matrix.GetNumRecMatrix();
  for (int row = -1; row <= 1; ++row) {
    for (int column = 10; column <= 13; ++column) {
      EXPECT_EQ(&table[row][column] - &table[-1][10], 4L * (row + 1) + (column - 10));
      table[row][column] = 100 * row + column;
      EXPECT_EQ(matrix.At(row, column), 100 * row + column);
    }
  }
  EXPECT_EQ(matrix.GetNumRecMatrix(), table) << "the table was built again";
}

TEST(MATRIX, CopiesAreDeepAndNewContentGetsANewTable) {
  MATRIX<STRING> matrix;
  matrix.Create({1, 2}, {1, 2});
  matrix.GetNumRecMatrix()[2][1] = "text";
  MATRIX<STRING> copy;
  copy.Create({0, 9}, {1, 9});
  copy.GetNumRecMatrix();
  copy = matrix;
  ASSERT_EQ(matrix.Create({5, 1}, {1, 3}), 0U);
  EXPECT_STREQ(matrix.GetNumRecMatrix()[5][2].Text(), "");
  EXPECT_STREQ(copy.GetNumRecMatrix()[2][1].Text(), "text");
  EXPECT_TRUE(copy.Rows() == RANGE<int>(1, 2));
}

TEST(MATRIX, SizesThatItCanNotHaveAreAStatus) {
  MATRIX<double> matrix;
  EXPECT_EQ(matrix.Create({2, 4}, {3, 0}), 0U);
  EXPECT_NE(matrix.GetNumRecMatrix(), nullptr);
  EXPECT_EQ(matrix.Create({0, -1}, {0, 5}), 3U);
  EXPECT_EQ(matrix.Create({0, 5}, {0, -1}), 3U);
  EXPECT_TRUE(matrix.Rows() == RANGE<int>(2, 4)) << "a refused size changed the matrix";
  EXPECT_EQ(matrix.Create({0, INT_MAX}, {0, INT_MAX}), 2U);
  const FAILING_ALLOCATION failing;
  EXPECT_EQ(matrix.Create({0, 1}, {0, 1}), 2U);
}

TEST(MATRIX, NoMemoryForTheRowTableOrACopyIsReported) {
  MATRIX<int> matrix;
  matrix.Create({0, 2}, {0, 2});
  const LOG_CAPTURE log;
  for (int granted = 0; granted < 2; ++granted) {  // the table, then the list of tables
    const FAILING_ALLOCATION failing(granted);
    EXPECT_THROW(matrix.GetNumRecMatrix(), ERROR_NO_MEMORY);
    EXPECT_THROW(MATRIX<int>{matrix}, ERROR_NO_MEMORY);
  }
  EXPECT_TRUE(log.Has("ALARM : MATRIX: no memory for the row table")) << log.Text();
  EXPECT_TRUE(log.Has("ALARM : MATRIX: no memory for a copy")) << log.Text();
  EXPECT_EQ(matrix.GetNumRecMatrix()[1][1], 0);
}

}  // namespace
