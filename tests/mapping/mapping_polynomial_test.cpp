#include "mapping/mapping_polynomial.h"

#include <gtest/gtest.h>

#include <random>

#include "support/log_capture.h"
#include "support/pool_text.h"
#include "support/temporary_directory.h"

namespace {

/// What stands behind the sixth coefficient is not used.
const std::vector<double> c = {12.3456789, -1.1e-3, 2.7e-4, 3.3e-7, -4.1e-8, 5.9e-9, 99.0};
const std::vector<double> d = {-7.1, 3.1e-4, -9.9e-5, 1.7e-8, 2.3e-7, -6.1e-8};

TEST(MappingPolynomialTest, PositionsAreExactToTheLastBit) {
  const LOG_CAPTURE log;
  const TEMPORARY_DIRECTORY directory;
  POOL_TEXT pool;
  pool.SetReals("respl_poly_rg", c);
  pool.SetReals("respl_poly_az", d);
  pool.SetInteger("n_samples", 300);
  pool.SetInteger("n_lines", 200);
  const std::string file = directory.File("insar.pool");
  WriteFile(file, pool.Text());
  const MAPPING_POLYNOMIAL mapping(file.c_str());
  std::mt19937 random(5);
  std::uniform_int_distribution<int> pixel(0, 40000);
  for (int trial = 0; trial < 5000; ++trial) {
    const double x = pixel(random);
    const double y = pixel(random);
    const double rg =
        (((((c[1] * y + c[0]) + c[2] * x) + (c[3] * x) * y) + (c[4] * y) * y) + (c[5] * x) * x) + x;
    const double az =
        (((((d[1] * y + d[0]) + d[2] * x) + (d[3] * x) * y) + (d[4] * y) * y) + (d[5] * x) * x) + y;
    ASSERT_EQ(mapping.GetSlaveRange(x, y), rg) << x << ' ' << y;
    ASSERT_EQ(mapping.GetSlaveAzimuth(x, y), az) << x << ' ' << y;
  }
  EXPECT_EQ(mapping.GetMaxRange(), 299U);
  EXPECT_EQ(mapping.GetMaxAzimuth(), 199U);
}

}  // namespace
