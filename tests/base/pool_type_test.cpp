#include "base/pool_type.h"

#include <gtest/gtest.h>

namespace {

using BASIC::TYPES::PoolType;

TEST(POOL_TYPE, TableAndConstants) {
  int id = 0;
  for (const char* name : {"-", "PPOOL", "IIP", "WQD", "CFG", "ORDER", "GEOCODING", "-"}) {
    EXPECT_STREQ(PoolType(id).Name(), name);
    EXPECT_EQ(PoolType(id).Value(), 0) << name;
    ++id;
  }
  EXPECT_EQ(PoolType().Last(), 6);
  EXPECT_STREQ(PoolType::ppool.Name(), "PPOOL");
  EXPECT_STREQ(PoolType::geocoding.Name(), "GEOCODING");
  EXPECT_STREQ(PoolType().ValidNames().Text(),
               "Valid values are: 'PPOOL' 'IIP' 'WQD' 'CFG' 'ORDER' 'GEOCODING' ");
}

}  // namespace
