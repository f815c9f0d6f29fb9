#include "base/array.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>

#include "base/error_exception.h"
#include "base/string.h"
#include "base/vector.h"
#include "failing_allocation.h"

namespace {

/// Counts its living objects.
struct COUNTED {
  COUNTED() { ++living; }
  COUNTED(const COUNTED& other) : number(other.number) { ++living; }
  COUNTED& operator=(const COUNTED& other) = default;
  ~COUNTED() { --living; }

  int number = -1;
  static inline int living = 0;
};

template <class T>
void Number(ARRAY<T>& array) {
  T* element = array.Origin();
  for (int i = array.First(); i <= array.Last(); ++i) {
    element[i] = static_cast<T>(i);
  }
}

TEST(ARRAY, IndicesRunOverTheRange) {
  ARRAY<int> array;
  EXPECT_EQ(array.Create({-5, 11}), 0U);
  EXPECT_EQ(array.First(), -5);
  EXPECT_EQ(array.Last(), 5);
  EXPECT_EQ(array.Size(), 11);
  EXPECT_TRUE(array.Range() == RANGE<int>(-5, 11));
  EXPECT_EQ(array.Origin()[5], 0) << "elements are not initialised";
  Number(array);
  for (int position = 0; position < 11; ++position) {
    EXPECT_EQ(array.Pointer(0)[position], position - 5);
    EXPECT_EQ(array.Pointer(100)[position + 100], position - 5);
  }
  const ARRAY<int>& constant = array;
  EXPECT_EQ(&constant.Origin()[-5], array.Pointer(0));
  EXPECT_EQ(constant.Pointer(-5), array.Origin());
}

TEST(ARRAY, IndicesMayReachTheEndsOfTheIntegers) {
  ARRAY<char> array;
  for (const int first : {INT_MIN, INT_MAX - 2}) {
    EXPECT_EQ(array.Create({first, 3}), 0U);
    EXPECT_EQ(array.Last(), first + 2);
    array.Origin()[first + 2] = 'z';
    EXPECT_EQ(array.Pointer(0)[2], 'z');
  }
}

TEST(ARRAY, EmptyArrayHasARangeAndNoStorage) {
  ARRAY<double> array;
  for (const int first : {0, 7}) {
    EXPECT_EQ(array.Create({first, 0}), 0U);
    EXPECT_EQ(array.First(), first);
    EXPECT_EQ(array.Last(), first - 1);
    EXPECT_EQ(array.Origin(), nullptr);
    EXPECT_EQ(array.CreateRaw({first, 0}), 0U);
    EXPECT_EQ(array.Pointer(3), nullptr);
  }
}

TEST(ARRAY, NegativeCountChangesNothing) {
  ARRAY<int> array;
  array.Create({2, 3});
  Number(array);
  const int* storage = array.Pointer(0);
  EXPECT_EQ(array.Create({2, -1}), 3U);
  EXPECT_EQ(array.CreateRaw({2, -3}), 3U);
  EXPECT_EQ(array.Resize({2, INT_MIN}), 3U);
  EXPECT_TRUE(array.Range() == RANGE<int>(2, 3));
  EXPECT_EQ(array.Pointer(0), storage);
}

TEST(ARRAY, ResizeKeepsTheLeadingElementsByPosition) {
  ARRAY<STRING> array;
  array.Create({1, 3});
  array.Origin()[1] = "a";
  array.Origin()[2] = "b";
  array.Origin()[3] = "c";
  const STRING* storage = array.Pointer(0);
  EXPECT_EQ(array.Resize({1, 3}), 0U);
  EXPECT_EQ(array.Pointer(0), storage) << "the same range moved the elements";

  const struct {
    RANGE<int> range;
    const char* texts[5];
  } steps[] = {{{-4, 3}, {"a", "b", "c"}},
               {{-4, 5}, {"a", "b", "c", "", ""}},
               {{0, 2}, {"a", "b"}},
               {{9, 0}, {}},
               {{9, 1}, {""}}};
  for (const auto& [range, texts] : steps) {
    EXPECT_EQ(array.Resize(range), 0U);
    EXPECT_TRUE(array.Range() == range);
    for (int position = 0; position < range.Count(); ++position) {
      EXPECT_STREQ(array.Pointer(0)[position].Text(), texts[position]);
    }
  }
}

TEST(ARRAY, ElementsAreDestroyedExactlyOnce) {
  {
    ARRAY<COUNTED> array;
    array.Create({0, 4});
    EXPECT_EQ(COUNTED::living, 4);
    array.Create({0, 2});
    EXPECT_EQ(COUNTED::living, 2);
    array.Resize({0, 7});
    EXPECT_EQ(COUNTED::living, 7);
    const ARRAY<COUNTED> copy(array);
    EXPECT_EQ(COUNTED::living, 14);
    array.Free();
    EXPECT_EQ(COUNTED::living, 7);
    EXPECT_EQ(array.Size(), 0);
    EXPECT_EQ(array.Origin(), nullptr);
  }
  EXPECT_EQ(COUNTED::living, 0);
}

TEST(ARRAY, RawElementsBelongToTheCaller) {
  {
    ARRAY<COUNTED> array;
    EXPECT_EQ(array.CreateRaw({0, 3}), 0U);
    EXPECT_EQ(COUNTED::living, 0);
    std::uninitialized_default_construct_n(array.Pointer(0), 3);
    array.Origin()[2].number = 5;
    std::destroy_n(array.Pointer(0), 3);
  }
  EXPECT_EQ(COUNTED::living, 0);
  ARRAY<int> numbers;
  numbers.CreateRaw({0, 2});
  Number(numbers);
  EXPECT_EQ(numbers.Resize({0, 3}), 0U);
  EXPECT_EQ(numbers.Origin()[1], 1);
  EXPECT_EQ(numbers.Create({0, 1}), 0U);  // releases the constructed elements of the resize
}

TEST(ARRAY, ResetForgetsWithoutReleasing) {
  ARRAY<int> array;
  array.Create({3, 2});
  const std::unique_ptr<int[]> storage(array.Pointer(0));
  array.Reset();
  EXPECT_TRUE(array.Range() == RANGE<int>(0, 0));
  EXPECT_EQ(array.Origin(), nullptr);
}

TEST(ARRAY, CopiesAreDeep) {
  ARRAY<STRING> array;
  array.Create({-1, 2});
  array.Origin()[0] = "text";
  ARRAY<STRING> copy(array);
  ARRAY<STRING> assigned;
  assigned.Create({0, 9});
  assigned = array;
  array.Origin()[0] = "changed";
  for (ARRAY<STRING>* other : {&copy, &assigned}) {
    EXPECT_TRUE(other->Range() == RANGE<int>(-1, 2));
    EXPECT_STREQ(other->Origin()[0].Text(), "text");
  }
  const ARRAY<STRING>& self = copy;
  copy = self;
  EXPECT_STREQ(copy.Origin()[0].Text(), "text");
}

TEST(ARRAY, FailedAllocationsAreAStatus) {
  ARRAY<int> array;
  array.Create({1, 2});
  Number(array);
  {
    const FAILING_ALLOCATION failing;
    EXPECT_EQ(array.Resize({1, 3}), 2U);
    EXPECT_EQ(array.Origin()[2], 2) << "a failed resize lost the elements";
    EXPECT_EQ(array.Resize({1, 2}), 0U) << "nothing to allocate";
    for (const bool raw : {false, true}) {
      EXPECT_EQ(raw ? array.CreateRaw({4, 3}) : array.Create({4, 3}), 2U);
      EXPECT_TRUE(array.Range() == RANGE<int>(4, 3));
      EXPECT_EQ(array.Origin(), nullptr);
    }
  }
  EXPECT_EQ(array.Resize({0, 5}), 0U) << "reads elements that were never there";
  EXPECT_EQ(array.Origin()[4], 0);
}

TEST(ARRAY, FailedCopyThrowsItsText) {
  ARRAY<int> array;
  array.Create({0, 2});
  const FAILING_ALLOCATION failing;
  try {
    ADD_FAILURE() << ARRAY<int>(array).Size();
  } catch (const char* text) {
    EXPECT_STREQ(text, "ARRAY : can not copy array");
  }
}

TEST(ARRAY, FailedElementReleasesWhatWasBuilt) {
  ARRAY<STRING> array;
  array.Create({0, 3});
  // One allocation for the block, one for the text of each new element, one for each text copied.
  for (int granted = 1; granted < 4; ++granted) {
    const FAILING_ALLOCATION failing(granted);
    EXPECT_THROW(ARRAY<STRING>().Create({0, 3}), ERROR_NO_MEMORY) << granted;
  }
  for (int granted = 1; granted < 4 + 3; ++granted) {
    const FAILING_ALLOCATION failing(granted);
    EXPECT_THROW(ARRAY<STRING>{array}, ERROR_NO_MEMORY) << granted;
  }
  for (int granted = 1; granted < 5 + 3; ++granted) {
    const FAILING_ALLOCATION failing(granted);
    EXPECT_THROW(array.Resize({0, 4}), ERROR_NO_MEMORY) << granted;
  }
  EXPECT_EQ(array.Size(), 3);
  EXPECT_STREQ(array.Origin()[2].Text(), "");
}

TEST(VECTOR, IsHandledAsAnArray) {
  VECTOR<double> vector;
  ARRAY<double>& array = vector;
  EXPECT_EQ(array.Resize({-1, 3}), 0U);
  Number(array);
  EXPECT_EQ(vector.Origin()[1], 1.0);
}

}  // namespace
