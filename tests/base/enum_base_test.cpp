#include "base/enum_base.h"

#include <gtest/gtest.h>

#include <array>

#include "base/pool_type.h"

namespace BASIC::TYPES {

/// A small enumeration with one name twice, in two cases.
class Fruit : public ENUMERATION<Fruit> {
 public:
  Fruit() = default;
  explicit Fruit(int id) { Set(id); }

  static std::span<const ENUM_ENTRY> Entries() {
    static constexpr std::array<ENUM_ENTRY, 6> entries = {
        {{"-", 7}, {"Apple", 10}, {"pear", 20}, {"plum", 30}, {"APPLE", 40}, {"-", 50}}};
    return entries;
  }
};

namespace {

constexpr int sentinel = 5;

void ExpectFruit(const ENUM_BASE& fruit, int id, const char* name, int value) {
  EXPECT_EQ(fruit.Id(), id);
  EXPECT_STREQ(fruit.Name(), name);
  EXPECT_EQ(fruit.Value(), value);
}

TEST(ENUM_BASE, SetTakesOverAnEntryOrOnlyShowsIt) {
  Fruit fruit;
  ExpectFruit(fruit, 0, "-", 0);
  EXPECT_EQ(&fruit.Set(3), &fruit);
  ExpectFruit(fruit.Set(1, false), 1, "Apple", 10);
  for (const int id : {-1, sentinel + 1, INT_MIN, INT_MAX}) {
    EXPECT_THROW(fruit.Set(id), ERROR_ENUM_BASE_INVALID_ID) << id;
  }
  ExpectFruit(fruit, 3, "plum", 30);
}

TEST(ENUM_BASE, AssignsTheFirstEntryOfANameInAnyCase) {
  Fruit fruit(2);
  for (const auto& [name, id] :
       {std::pair{"apple", 1}, {"APPLE", 1}, {"Pear", 2}, {"-", 0}, {"pLUM", 3}}) {
    fruit.Assign(name);
    EXPECT_EQ(fruit.Id(), id) << name;
  }
  for (const char* other : {"", "plu", "plums", " plum", "plum ", "3"}) {
    EXPECT_THROW(fruit.Assign(other), ERROR_ENUM_BASE_INVALID_VALUE) << other;
    EXPECT_EQ(fruit.Id(), 3) << other;
  }
}

TEST(ENUM_BASE, ComparesIdsWithinAClassOnly) {
  EXPECT_TRUE(Fruit(1) == Fruit(1));
  EXPECT_TRUE(Fruit(1) != Fruit(4)) << "equal texts of different entries";
  const ENUM_BASE& pool = PoolType(1);
  EXPECT_THROW(static_cast<void>(pool != Fruit(1)), ERROR_ENUM_BASE_TYPE_MISMATCH);
}

TEST(ENUM_BASE, StepsUpOntoTheSentinelAndDownToZero) {
  Fruit fruit(sentinel - 1);
  EXPECT_EQ(fruit.Last(), fruit.Id());
  ExpectFruit(fruit++, 4, "APPLE", 40);
  ExpectFruit(fruit, sentinel, "-", 50);
  EXPECT_THROW(++fruit, ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED);
  ExpectFruit(fruit--, sentinel, "-", 50);
  for (int id = sentinel - 2; id >= 0; --id) {
    EXPECT_EQ((--fruit).Id(), id);
  }
  EXPECT_THROW(fruit--, ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED);
  ExpectFruit(fruit, 0, "-", 7);
}

}  // namespace

}  // namespace BASIC::TYPES
