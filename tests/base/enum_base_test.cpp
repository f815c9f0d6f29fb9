#include "base/enum_base.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>

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

constexpr int last_fruit = 4;
constexpr int sentinel = 5;

void ExpectFruit(const ENUM_BASE& fruit, int id, const char* name, int value) {
  EXPECT_EQ(fruit.Id(), id);
  EXPECT_STREQ(fruit.Name(), name);
  EXPECT_EQ(fruit.Value(), value);
}

TEST(ENUM_BASE, IsUnsetAtFirst) {
  ExpectFruit(Fruit(), 0, "-", 0);
  EXPECT_EQ(Fruit().Last(), last_fruit);
}

TEST(ENUM_BASE, SetTakesOverAnEntryOrOnlyShowsIt) {
  Fruit fruit;
  EXPECT_EQ(&fruit.Set(3), &fruit);
  ExpectFruit(fruit, 3, "plum", 30);
  ExpectFruit(fruit.Set(1, false), 1, "Apple", 10);
  ExpectFruit(fruit, 3, "plum", 30);
  EXPECT_EQ(&fruit.Set(1, false), &Fruit().Set(1, false)) << "not the entry of the table";
  ExpectFruit(Fruit(sentinel), sentinel, "-", 50);
  for (const int id : {-1, sentinel + 1, INT_MIN, INT_MAX}) {
    for (const bool copy : {true, false}) {
      EXPECT_THROW(fruit.Set(id, copy), ERROR_ENUM_BASE_INVALID_ID) << id;
    }
  }
  EXPECT_THROW(Fruit(6), ERROR_ENUM_BASE_INVALID_ID);
  ExpectFruit(fruit, 3, "plum", 30);
}

TEST(ENUM_BASE, AssignIgnoresCaseAndTakesTheFirstNameBeforeAnyDescription) {
  const struct {
    const char* text;
    int id;
  } cases[] = {{"PEAR", 2},  {"apple", 1}, {"APPLE", 1}, {"round", 1},
               {"SMALL", 3}, {"-", 0},     {"end", 5}};
  for (const auto& [text, id] : cases) {
    Fruit fruit;
    fruit.Assign(text);
    EXPECT_EQ(fruit.Id(), id) << text;
    EXPECT_STREQ(fruit.Name(), Fruit::Entries()[static_cast<std::size_t>(id)].name) << text;
  }
}

TEST(ENUM_BASE, UnknownTextChangesNothingAndListsTheValidNames) {
  Fruit fruit(3);
  for (const char* text : {"cherry", "", "pear ", "pea"}) {
    try {
      fruit.Assign(text);
      ADD_FAILURE() << text;
    } catch (const ERROR_ENUM_BASE_INVALID_VALUE& error) {
      EXPECT_EQ(std::string(error.what()),
                std::string("enumeration data type - invalid value of class "
                            "N5BASIC5TYPES5FruitE: ") +
                    text);
      EXPECT_STREQ(error.ValidValues().Text(), "Valid values are: 'Apple' 'pear' 'plum' 'APPLE' ");
    }
  }
  ExpectFruit(fruit, 3, "plum", 30);
}

TEST(ENUM_BASE, ComparesIdsWithinAClassOnly) {
  EXPECT_TRUE(Fruit(1) == Fruit(1));
  EXPECT_FALSE(Fruit(1) == Fruit(4)) << "equal texts of different entries";
  EXPECT_FALSE(Fruit(0) == Fruit(sentinel));
  EXPECT_TRUE(Fruit(1) != Fruit(2));
  EXPECT_FALSE(Fruit(2) != Fruit(2));
  const ENUM_BASE& fruit = Fruit(1);
  const ENUM_BASE& pool = PoolType(1);
  EXPECT_THROW(static_cast<void>(fruit == pool), ERROR_ENUM_BASE_TYPE_MISMATCH);
  EXPECT_THROW(static_cast<void>(pool != fruit), ERROR_ENUM_BASE_TYPE_MISMATCH);
}

TEST(ENUM_BASE, StepsUpOntoTheSentinelAndDownToZero) {
  Fruit fruit(last_fruit);
  EXPECT_EQ(&++fruit, &fruit);
  ExpectFruit(fruit, sentinel, "-", 50);
  EXPECT_THROW(++fruit, ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED);
  EXPECT_THROW(fruit++, ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED);
  EXPECT_EQ(fruit.Id(), sentinel);

  for (int id = sentinel - 1; id >= 0; --id) {
    --fruit;
    EXPECT_EQ(fruit.Id(), id);
  }
  ExpectFruit(fruit, 0, "-", 7);
  EXPECT_THROW(--fruit, ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED);
  EXPECT_THROW(fruit--, ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED);
  EXPECT_EQ(fruit.Id(), 0);
}

TEST(ENUM_BASE, PostfixStepsYieldTheValueBefore) {
  Fruit fruit(2);
  ExpectFruit(fruit++, 2, "pear", 20);
  ExpectFruit(fruit, 3, "plum", 30);
  ExpectFruit(fruit--, 3, "plum", 30);
  ExpectFruit(fruit, 2, "pear", 20);
}

TEST(ENUM_BASE, NoMemoryForTheNameIsReported) {
  Fruit fruit(1);
  const FAILING_ALLOCATION failing;
  EXPECT_THROW(fruit.Set(2), ERROR_NO_MEMORY);
  EXPECT_THROW(fruit.Assign("pear"), ERROR_NO_MEMORY);
  ExpectFruit(fruit, 1, "Apple", 10);
}

TEST(ENUM_BASE, InvalidTextsOfSeveralThreadsKeepApart) {
  std::array<std::thread, 4> threads;
  for (std::size_t number = 0; number < threads.size(); ++number) {
    threads[number] = std::thread([number] {
      const std::string text = "unknown " + std::to_string(number);
      for (int i = 0; i < 200; ++i) {
        try {
          Fruit().Assign(text.c_str());
          ADD_FAILURE();
        } catch (const ERROR_ENUM_BASE_INVALID_VALUE& error) {
          ASSERT_TRUE(std::string(error.what()).ends_with(": " + text)) << error.what();
        }
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

}  // namespace

}  // namespace BASIC::TYPES
