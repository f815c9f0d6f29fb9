#include "mapping/mapping_polynomial.h"

#include <gtest/gtest.h>

#include <random>

#include "base/error_exception.h"
#include "pool/pool_errors.h"
#include "support/log_capture.h"
#include "support/pool_text.h"
#include "support/temporary_directory.h"

namespace {

/// What stands behind the sixth coefficient is not used.
const std::vector<double> c = {12.3456789, -1.1e-3, 2.7e-4, 3.3e-7, -4.1e-8, 5.9e-9, 99.0};
const std::vector<double> d = {-7.1, 3.1e-4, -9.9e-5, 1.7e-8, 2.3e-7, -6.1e-8};

class MappingPolynomialTest : public testing::Test {
 protected:
  MappingPolynomialTest() {
    pool_.SetReals("respl_poly_rg", c);
    pool_.SetReals("respl_poly_az", d);
    pool_.SetInteger("n_samples", 300);
    pool_.SetInteger("n_lines", 200);
  }

  MAPPING_POLYNOMIAL Read(const POOL_TEXT& pool) const {
    WriteFile(file_, pool.Text());
    return MAPPING_POLYNOMIAL(file_.c_str());
  }

  TEMPORARY_DIRECTORY directory_;
  const std::string file_ = directory_.File("insar.pool");
  LOG_CAPTURE log_;
  POOL_TEXT pool_;
};

TEST_F(MappingPolynomialTest, PositionsAreExactToTheLastBit) {
  const MAPPING_POLYNOMIAL mapping = Read(pool_);
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

TEST_F(MappingPolynomialTest, PoolsThatMissSomethingAreRefused) {
  for (const char* key : {"respl_poly_az", "respl_poly_rg", "n_samples", "n_lines"}) {
    POOL_TEXT pool = pool_;
    pool.Remove(key);
    EXPECT_THROW(Read(pool), PARAMETER_KEY_NOT_FOUND) << key;
  }
  pool_.SetReals("respl_poly_az", {});
  EXPECT_THROW(Read(pool_), ERROR_DATA);
  EXPECT_EQ(log_.Lines().back(),
            "ALARM : mapping polynomial \"respl_poly_az\" needs 6 coefficients, it has 0");
}

}  // namespace
