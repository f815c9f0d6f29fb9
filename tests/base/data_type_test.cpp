#include "base/data_type.h"

#include <gtest/gtest.h>

#include "base/pool_type.h"

namespace {

using BASIC::TYPES::DataType;
using BASIC::TYPES::PoolType;

TEST(DATA_TYPE, NamesAndSizesInBytes) {
  EXPECT_STREQ(DataType().ValidNames().Text(),
               "Valid values are: 'int_8' 'int_16' 'int_32' 'int_64' 'u_int_8' 'u_int_16' "
               "'u_int_32' 'u_int_64' 'flt_2' 'flt_6' 'flt_15' 'flt_30' 'c_int_4' 'c_int_8' "
               "'c_int_16' 'c_int_32' 'c_int_64' 'c_u_int_4' 'c_u_int_8' 'c_u_int_16' "
               "'c_u_int_32' 'c_u_int_64' 'c_flt_2' 'c_flt_6' 'c_flt_15' 'c_flt_30' 'rgb' "
               "'others' ");
  const int sizes[] = {0, 1, 2,  4, 8, 1, 2, 4,  8, 2, 4,  8,  16, 1, 2,
                       4, 8, 16, 1, 2, 4, 8, 16, 4, 8, 16, 32, 3,  0, 0};
  int id = 0;
  for (const int size : sizes) {
    EXPECT_EQ(DataType(id).Value(), size) << id;
    ++id;
  }
}

TEST(POOL_TYPE, Names) {
  EXPECT_STREQ(PoolType().ValidNames().Text(),
               "Valid values are: 'PPOOL' 'IIP' 'WQD' 'CFG' 'ORDER' 'GEOCODING' ");
}

}  // namespace
