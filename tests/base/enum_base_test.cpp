#include "base/enum_base.h"

#include <gtest/gtest.h>

#include <array>

#include "base/pool_type.h"
#include "failing_allocation.h"

namespace BASIC::TYPES {

/// A small enumeration with one name twice, one in mixed case and descriptions.
class Fruit : public ENUMERATION<Fruit> {
 public:
  Fruit() = default;
  explicit Fruit(int id) { Set(id); }

  void Assign(const char* text) override { AssignNameOrDescription(text); }

  static std::span<const ENUM_ENTRY> Entries() {
    static constexpr std::array<ENUM_ENTRY, 6> entries = {{{"-", 7, "nothing"},
                                                           {"Apple", 10, "round"},
                                                           {"pear", 20, "apple"},
                                                           {"plum", 30, "small"},
                                                           {"APPLE", 40, "Small"},
                                                           {"-", 50, "end"}}};
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
  const FAILING_ALLOCATION failing;
  EXPECT_THROW(fruit.Set(2), ERROR_NO_MEMORY);
  ExpectFruit(fruit, 3, "plum", 30);
}

TEST(ENUM_BASE, AssignIgnoresCaseAndTakesTheFirstNameBeforeAnyDescription) {
  const struct {
    const char* text;
    int id;
  } cases[] = {{"PEAR", 2}, {"APPLE", 1}, {"round", 1}, {"SMALL", 3}, {"-", 0}, {"end", 5}};
  for (const auto& [text, id] : cases) {
    Fruit fruit;
    fruit.Assign(text);
    EXPECT_EQ(fruit.Id(), id) << text;
  }
}

TEST(ENUM_BASE, UnknownTextChangesNothingAndListsTheValidNames) {
  Fruit fruit(3);
  EXPECT_THROW(fruit.Assign(""), ERROR_ENUM_BASE_INVALID_VALUE);
  try {
    fruit.Assign("pear ");
    ADD_FAILURE();
  } catch (const ERROR_ENUM_BASE_INVALID_VALUE& error) {
    EXPECT_STREQ(error.what(),
                 "enumeration data type - invalid value of class N5BASIC5TYPES5FruitE: pear ");
    EXPECT_STREQ(error.ValidValues().Text(), "Valid values are: 'Apple' 'pear' 'plum' 'APPLE' ");
  }
  ExpectFruit(fruit, 3, "plum", 30);
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
