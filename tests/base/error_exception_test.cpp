#include "base/error_exception.h"

#include <gtest/gtest.h>

#include "base/error_enum_base.h"

namespace {

using namespace BASIC::TYPES;

/// An error without data: as small as a pointer, caught as its base, with its own text.
template <class ERROR, class BASE>
void Expect(const char* text) {
  static_assert(sizeof(ERROR) == sizeof(void*));
  try {
    throw ERROR();
  } catch (const BASE& base) {
    const ERROR_EXCEPTION& error = base;
    EXPECT_STREQ(error.what(), text);
  }
}

TEST(ERROR_EXCEPTION, TreeAndTexts) {
  Expect<ERROR_EXCEPTION, ERROR_EXCEPTION>("error occurred");
  Expect<ERROR_MEMORY, ERROR_EXCEPTION>("allocation error");
  Expect<ERROR_NO_MEMORY, ERROR_MEMORY>("not enough memory");
  Expect<ERROR_I_O, ERROR_EXCEPTION>("I/O error");
  Expect<ERROR_NO_DISK_SPACE, ERROR_I_O>("not enough disk space");
  Expect<ERROR_CAN_NOT_MMAP, ERROR_I_O>("mmap failed");
  Expect<ERROR_CAN_NOT_MSYNC, ERROR_I_O>("msync failed");
  Expect<ERROR_CAN_NOT_CREATE_FILE, ERROR_I_O>("can not create file");
  Expect<ERROR_CAN_NOT_OPEN_FILE, ERROR_I_O>("can not open file");
  Expect<ERROR_CAN_NOT_WRITE_FILE, ERROR_I_O>("can not write into file");
  Expect<ERROR_CAN_NOT_READ_FILE, ERROR_I_O>("can not read from file");
  Expect<ERROR_CAN_NOT_LSEEK_FILE, ERROR_I_O>("can not lseek in file");
  Expect<ERROR_PROCESSING, ERROR_EXCEPTION>("processing error");
  Expect<ERROR_ALGORITHM, ERROR_PROCESSING>("algorithm error");
  Expect<ERROR_NOT_IMPLEMENTED, ERROR_ALGORITHM>("fct or algorithm not implemented");
  Expect<ERROR_UNHANDLED_CASE, ERROR_ALGORITHM>("case not handled in if or switch block");
  Expect<ERROR_ARGUMENT, ERROR_PROCESSING>("wrong argument");
  Expect<ERROR_INVALID_VALUE, ERROR_PROCESSING>("invalid value");
  Expect<ERROR_DATA, ERROR_EXCEPTION>("data error");
  Expect<ERROR_NOT_SUPPORTED_PIXEL_TYPE, ERROR_DATA>("not supported pixel type");
  Expect<ERROR_PARAMETER, ERROR_DATA>("parameter error");
  Expect<ERROR_IMAGE, ERROR_DATA>("image data error");
  Expect<ERROR_ENUM_BASE, ERROR_EXCEPTION>("enumeration data type error");
  Expect<ERROR_ENUM_BASE_TYPE_MISMATCH, ERROR_ENUM_BASE>("enumeration data type - type mismatch");
  Expect<ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED, ERROR_ENUM_BASE>(
      "enumeration data type - limit of enumeration expired");
  Expect<ERROR_ENUM_BASE_INVALID_ID, ERROR_ENUM_BASE>("enumeration data type - invalid id");
}

}  // namespace
