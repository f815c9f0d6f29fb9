#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>

#include "base/complex.h"
#include "base/index.h"
#include "base/list.h"
#include "base/range.h"
#include "base/string.h"
#include "base/tuple.h"

namespace {

TEST(RANGE, IsFirstIndexAndCount) {
  const RANGE<int> range(-2, 5);
  EXPECT_EQ(range.key, -2);
  EXPECT_EQ(range.value, 5);
  EXPECT_EQ(range.Last(), 2);
  EXPECT_EQ(RANGE<int>(4, 0).Last(), 3);
  EXPECT_EQ(RANGE<int>(INT_MAX, 1).Last(), INT_MAX);
  EXPECT_EQ(RANGE<double>(0.5, 2.0).Last(), 1.5);
  EXPECT_FALSE(range == RANGE<int>(-2, 4));
  EXPECT_FALSE(range == RANGE<int>(-1, 5));
  EXPECT_EQ(URANGE<unsigned>(4'000'000'000U, 10U).Last(), 4'000'000'009U);
}

TEST(VALUE_TYPES, StartAtZeroAndArePolymorphicButForComplex) {
  static_assert(std::has_virtual_destructor_v<INDEX<int, double>>);
  static_assert(std::has_virtual_destructor_v<TUPLE<STRING>>);
  static_assert(std::has_virtual_destructor_v<LIST<int>>);
  static_assert(std::is_base_of_v<TUPLE<double>, POINT<double>>);
  static_assert(!std::is_polymorphic_v<COMPLEX<float>>);
  static_assert(std::is_trivially_copyable_v<COMPLEX<float>>);
  EXPECT_EQ((INDEX<int, float>().value), 0.0F);
  EXPECT_EQ(POINT<long long>().y, 0);
  EXPECT_STREQ(TUPLE<STRING>().x.Text(), "");
  EXPECT_EQ(POINT<int>(3, 4).y, 4);
}

TEST(COMPLEX, ArrayIsABlockOfInterleavedPairs) {
  static_assert(sizeof(COMPLEX<float>[3]) == 6 * sizeof(float));
  static_assert(offsetof(COMPLEX<float>, re) == 0);
  static_assert(offsetof(COMPLEX<double>, im) == sizeof(double));
  const COMPLEX<float> values[] = {{1.0F, 2.0F}, {3.0F, 4.0F}};
  float pairs[4] = {};
  std::memcpy(pairs, values, sizeof pairs);
  EXPECT_EQ(pairs[1], 2.0F);
  EXPECT_EQ(pairs[2], 3.0F);
}

TEST(LIST, KeepsTheOrderOfItsItems) {
  LIST<std::string> list;
  EXPECT_TRUE(list.Empty());
  list.Append("a");
  list.Append("b");
  for (std::string& item : list) {
    item += "!";
  }
  const LIST<std::string> copy(list);
  std::string all;
  for (const std::string& item : copy) {
    all += item;
  }
  EXPECT_EQ(all, "a!b!");
}

}  // namespace
