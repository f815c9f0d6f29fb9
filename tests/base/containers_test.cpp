#include <gtest/gtest.h>

#include <memory>

#include "base/error_exception.h"
#include "base/matrix.h"
#include "base/string.h"
#include "base/sub_array.h"
#include "support/log_capture.h"

namespace {

/// Counts its living objects.
struct COUNTED {
  COUNTED() { ++living; }
  COUNTED(const COUNTED& /*other*/) { ++living; }
  COUNTED& operator=(const COUNTED& other) = default;
  ~COUNTED() { --living; }

  static inline int living = 0;
};

TEST(ARRAY, IndicesMayReachTheEndsOfTheIntegers) {
  ARRAY<char> array;
  for (const int first : {-5, INT_MIN, INT_MAX - 2}) {
    EXPECT_EQ(array.Create({first, 3}), 0U);
    EXPECT_EQ(array.Last(), first + 2);
    EXPECT_EQ(array.Origin()[first], '\0') << "elements are not initialised";
    array.Origin()[first + 2] = 'z';
    EXPECT_EQ(array.Pointer(0)[2], 'z');
    EXPECT_EQ(array.Pointer(100)[102], 'z');
  }
}

TEST(ARRAY, ResizeKeepsTheLeadingElementsByPosition) {
  ARRAY<STRING> array;
  array.Create({1, 2});
  array.Origin()[1] = "a";
  array.Origin()[2] = "b";
  const STRING* storage = array.Pointer(0);
  EXPECT_EQ(array.Resize({1, 2}), 0U);
  EXPECT_EQ(array.Pointer(0), storage) << "the same range moved the elements";

  const struct {
    RANGE<int> range;
    const char* texts[4];
  } steps[] = {{{-4, 2}, {"a", "b"}}, {{-4, 4}, {"a", "b", "", ""}}, {{0, 1}, {"a"}}, {{9, 0}, {}}};
  for (const auto& [range, texts] : steps) {
    EXPECT_EQ(array.Resize(range), 0U);
    EXPECT_TRUE(array.Range() == range);
    for (int position = 0; position < range.Count(); ++position) {
      EXPECT_STREQ(array.Pointer(0)[position].Text(), texts[position]);
    }
  }
}

TEST(ARRAY, ElementsAreDestroyedExactlyOnceAndRawOnesByTheCaller) {
  {
    ARRAY<COUNTED> array;
    array.Create({0, 4});
    array.Create({0, 2});
    EXPECT_EQ(COUNTED::living, 2);
    array.Resize({0, 7});
    const ARRAY<COUNTED> copy(array);
    EXPECT_EQ(COUNTED::living, 14);
    array.Free();
    EXPECT_EQ(COUNTED::living, 7);
    EXPECT_EQ(array.Origin(), nullptr);
    EXPECT_EQ(array.CreateRaw({0, 3}), 0U);
    EXPECT_EQ(COUNTED::living, 7);
    std::uninitialized_default_construct_n(array.Pointer(0), 3);
    std::destroy_n(array.Pointer(0), 3);
  }
  EXPECT_EQ(COUNTED::living, 0);
}

TEST(SUB_ARRAY, ViewsAPartOfItsSourceAndOwnsNothing) {
  const LOG_CAPTURE log;
  ARRAY<int> source;
  source.Create({-2, 10});
  SUB_ARRAY<int> view;
  for (const RANGE<int>& part : {RANGE<int>(-2, 10), RANGE<int>(8, 0), RANGE<int>(7, 1)}) {
    view.Link(source, part);
    EXPECT_TRUE(view.Range() == part);
  }
  view.SetFirst(100);
  const SUB_ARRAY<int> second(view);
  EXPECT_EQ(&second.Origin()[100], &source.Origin()[7]);
  const RANGE<int> outside[] = {{-3, 2}, {7, 2}, {0, -1}, {0, INT_MAX}, {INT_MAX, INT_MAX}};
  for (const RANGE<int>& part : outside) {
    EXPECT_THROW(view.Link(source, part), ERROR_ARGUMENT) << part.First();
  }
  EXPECT_TRUE(log.Has("ALARM : SUB_ARRAY: a view can not leave its array")) << log.Text();
  EXPECT_THROW(SUB_ARRAY<int>() = view, ERROR_NOT_IMPLEMENTED);
  EXPECT_TRUE(log.Has("ALARM : never call: SUB_ARRAY<T>::operator=( const SUB_ARRAY< T >& )"));
  EXPECT_THROW(view.Create({0, 1}), ERROR_NOT_IMPLEMENTED);
  EXPECT_THROW(view.CreateRaw({0, 1}), ERROR_NOT_IMPLEMENTED);
  EXPECT_THROW(view.Resize({0, 1}), ERROR_NOT_IMPLEMENTED);
  view.Free();
  EXPECT_EQ(view.Origin(), nullptr);
  EXPECT_EQ(source.Size(), 10);
}

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

TEST(MATRIX, SizesThatItCanNotHaveAreAStatus) {
  MATRIX<double> matrix;
  EXPECT_EQ(matrix.Create({2, 4}, {3, 0}), 0U);
  EXPECT_NE(matrix.GetNumRecMatrix(), nullptr);
  EXPECT_EQ(matrix.Create({0, -1}, {0, 5}), 3U);
  EXPECT_EQ(matrix.Create({0, 5}, {0, -1}), 3U);
  EXPECT_TRUE(matrix.Rows() == RANGE<int>(2, 4)) << "a refused size changed the matrix";
  EXPECT_EQ(matrix.Create({0, INT_MAX}, {0, INT_MAX}), 2U);
}

}  // namespace
