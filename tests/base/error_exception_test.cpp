#include "base/error_exception.h"

#include <gtest/gtest.h>

#include <functional>
#include <type_traits>

#include "base/error_enum_base.h"

namespace {

using namespace BASIC::TYPES;

struct ERROR_CASE {
  const char* text;
  std::function<void()> throw_it;
  std::function<bool()> caught_as_base;
};

/// An error without data: throws and copies as one pointer, and is caught as its base.
template <class ERROR, class BASE>
ERROR_CASE Case(const char* text) {
  static_assert(sizeof(ERROR) == sizeof(void*));
  static_assert(std::is_default_constructible_v<ERROR> && std::is_copy_constructible_v<ERROR>);
  const auto throw_it = [] { throw ERROR(); };
  return {text, throw_it, [throw_it] {
            try {
              throw_it();
            } catch (const BASE&) {
              return true;
            } catch (...) {
            }
            return false;
          }};
}

TEST(ERROR_EXCEPTION, TreeAndTexts) {
  const ERROR_CASE cases[] = {
      Case<ERROR_EXCEPTION, ERROR_EXCEPTION>("error occurred"),
      Case<ERROR_MEMORY, ERROR_EXCEPTION>("allocation error"),
      Case<ERROR_NO_MEMORY, ERROR_MEMORY>("not enough memory"),
      Case<ERROR_I_O, ERROR_EXCEPTION>("I/O error"),
      Case<ERROR_NO_DISK_SPACE, ERROR_I_O>("not enough disk space"),
      Case<ERROR_CAN_NOT_MMAP, ERROR_I_O>("mmap failed"),
      Case<ERROR_CAN_NOT_MSYNC, ERROR_I_O>("msync failed"),
      Case<ERROR_CAN_NOT_CREATE_FILE, ERROR_I_O>("can not create file"),
      Case<ERROR_CAN_NOT_OPEN_FILE, ERROR_I_O>("can not open file"),
      Case<ERROR_CAN_NOT_WRITE_FILE, ERROR_I_O>("can not write into file"),
      Case<ERROR_CAN_NOT_READ_FILE, ERROR_I_O>("can not read from file"),
      Case<ERROR_CAN_NOT_LSEEK_FILE, ERROR_I_O>("can not lseek in file"),
      Case<ERROR_PROCESSING, ERROR_EXCEPTION>("processing error"),
      Case<ERROR_ALGORITHM, ERROR_PROCESSING>("algorithm error"),
      Case<ERROR_NOT_IMPLEMENTED, ERROR_ALGORITHM>("fct or algorithm not implemented"),
      Case<ERROR_UNHANDLED_CASE, ERROR_ALGORITHM>("case not handled in if or switch block"),
      Case<ERROR_ARGUMENT, ERROR_PROCESSING>("wrong argument"),
      Case<ERROR_INVALID_VALUE, ERROR_PROCESSING>("invalid value"),
      Case<ERROR_DATA, ERROR_EXCEPTION>("data error"),
      Case<ERROR_NOT_SUPPORTED_PIXEL_TYPE, ERROR_DATA>("not supported pixel type"),
      Case<ERROR_PARAMETER, ERROR_DATA>("parameter error"),
      Case<ERROR_IMAGE, ERROR_DATA>("image data error"),
      Case<ERROR_ENUM_BASE, ERROR_EXCEPTION>("enumeration data type error"),
      Case<ERROR_ENUM_BASE_TYPE_MISMATCH, ERROR_ENUM_BASE>("enumeration data type - type mismatch"),
      Case<ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED, ERROR_ENUM_BASE>(
          "enumeration data type - limit of enumeration expired"),
      Case<ERROR_ENUM_BASE_INVALID_ID, ERROR_ENUM_BASE>("enumeration data type - invalid id"),
  };
  for (const ERROR_CASE& expected : cases) {
    EXPECT_TRUE(expected.caught_as_base()) << expected.text;
    try {
      expected.throw_it();
    } catch (const ERROR_EXCEPTION& error) {
      EXPECT_STREQ(error.what(), expected.text);
    }
  }
}

TEST(ERROR_EXCEPTION, CategoriesDoNotOverlap) {
  static_assert(!std::is_base_of_v<std::exception, ERROR_EXCEPTION>);
  static_assert(!std::is_base_of_v<ERROR_I_O, ERROR_NO_MEMORY>);
  static_assert(!std::is_base_of_v<ERROR_ALGORITHM, ERROR_ARGUMENT>);
  static_assert(!std::is_base_of_v<ERROR_INVALID_VALUE, ERROR_ENUM_BASE_INVALID_VALUE>);
  EXPECT_THROW(throw ERROR_IMAGE(), ERROR_DATA);
}

TEST(ERROR_ENUM_BASE_INVALID_VALUE, OwnsItsThreeTexts) {
  try {
    STRING value("xyz");
    STRING list("Valid values are: 'a' 'b' ");
    try {
      ERROR_ENUM_BASE_INVALID_VALUE::Throw(value, "N5BASIC5TYPES8DataTypeE", list);
    } catch (...) {
      value = "overwritten";
      list = "overwritten";
      // The scratch record is used again while the first error is still on its way.
      EXPECT_THROW(ERROR_ENUM_BASE_INVALID_VALUE::Throw("other", "class", "list"), ERROR_ENUM_BASE);
      throw;
    }
  } catch (const ERROR_ENUM_BASE_INVALID_VALUE& error) {
    EXPECT_STREQ(error.what(),
                 "enumeration data type - invalid value of class N5BASIC5TYPES8DataTypeE: xyz");
    EXPECT_STREQ(error.ValidValues().Text(), "Valid values are: 'a' 'b' ");
    EXPECT_TRUE(ERROR_ENUM_BASE_INVALID_VALUE::ScratchMutex().try_lock());
    ERROR_ENUM_BASE_INVALID_VALUE::ScratchMutex().unlock();
  }
}

}  // namespace
