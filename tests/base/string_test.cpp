#include "base/string.h"

#include <gtest/gtest.h>

#include <string>

#include "base/error_exception.h"
#include "failing_allocation.h"

namespace {

TEST(STRING, OwnsItsTextAndTheNul) {
  const STRING empty;
  EXPECT_STREQ(empty.Text(), "");
  EXPECT_EQ(empty.Size(), 1U);
  EXPECT_EQ(empty.Length(), 0U);

  char buffer[] = "text";
  const STRING text(buffer);
  buffer[0] = 'T';
  EXPECT_STREQ(text.Text(), "text");
  EXPECT_EQ(text.Size(), 5U);
}

TEST(STRING, CopiesAndAssignmentsAreIndependent) {
  STRING first("first");
  STRING copy(first);
  STRING assigned;
  assigned = first;
  first = "a longer second text";
  EXPECT_STREQ(copy.Text(), "first");
  EXPECT_STREQ(assigned.Text(), "first");
  EXPECT_EQ(first.Size(), 21U);
  const STRING& self = first;
  first = self;
  first = first.Text() + 2;  // part of its own text
  EXPECT_STREQ(first.Text(), "longer second text");
  first = "";
  EXPECT_EQ(first.Size(), 1U);
}

TEST(STRING, ComparesByTextAndLowersInPlace) {
  STRING text("MiXed_09 \xC4");
  EXPECT_FALSE(text == STRING("mixed_09 \xC4"));
  const char* before = text.Text();
  text.ToLower();
  EXPECT_TRUE(text == STRING("mixed_09 \xC4"));
  EXPECT_EQ(text.Text(), before);
}

TEST(STRING, NoMemoryIsAnErrorAndKeepsTheOldText) {
  STRING text("old");
  const STRING other("other");
  const FAILING_ALLOCATION failing;
  EXPECT_THROW(STRING(), ERROR_NO_MEMORY);
  EXPECT_THROW(STRING{other}, ERROR_NO_MEMORY);
  EXPECT_THROW(text = "new", ERROR_NO_MEMORY);
  EXPECT_THROW(text = other, ERROR_NO_MEMORY);
  EXPECT_STREQ(text.Text(), "old");
}

}  // namespace
