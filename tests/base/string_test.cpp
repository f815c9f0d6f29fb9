#include "base/string.h"

#include <gtest/gtest.h>

namespace {

TEST(STRING, OwnsItsTextAndTheNul) {
  EXPECT_EQ(STRING().Size(), 1U);
  STRING first("first");
  const STRING copy(first);
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
}

}  // namespace
