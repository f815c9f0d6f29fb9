#include "mapping/mapping_polynomial.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "base/error_exception.h"
#include "pool/pool_errors.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

namespace {

std::string VectorEntry(const std::string& key, const std::vector<double>& values) {
  std::string entry = key + " FLT_15_V 0 " + std::to_string(values.size()) + "\n{\n";
  char text[40];
  for (const double value : values) {
    std::snprintf(text, sizeof(text), "%.17g\n", value);
    entry += text;
  }
  return entry + "}\n";
}

const std::string size_entries = "n_samples INT_32 300\nn_lines INT_32 200\n";

class MappingPolynomialTest : public testing::Test {
 protected:
  MAPPING_POLYNOMIAL Read(const std::string& entries) const {
    WriteFile(pool_file_, entries);
    PARAMETER_POOL pool(pool_file_.c_str());
    return MAPPING_POLYNOMIAL(pool);
  }

  MAPPING_POLYNOMIAL Read(const std::vector<double>& range,
                          const std::vector<double>& azimuth) const {
    return Read(VectorEntry("respl_poly_az", azimuth) + VectorEntry("respl_poly_rg", range) +
                size_entries);
  }

  TEMPORARY_DIRECTORY directory_;
  const std::string pool_file_ = directory_.File("insar.pool");
  LOG_CAPTURE log_;
};

const std::vector<double> zeros(6, 0.0);

TEST_F(MappingPolynomialTest, PositionsAreExactToTheLastBit) {
  const std::vector<double> c = {12.3456789, -1.1e-3, 2.7e-4, 3.3e-7, -4.1e-8, 5.9e-9};
  const std::vector<double> d = {-7.1, 3.1e-4, -9.9e-5, 1.7e-8, 2.3e-7, -6.1e-8};
  const MAPPING_POLYNOMIAL mapping = Read(c, d);
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
}

TEST_F(MappingPolynomialTest, EveryCoefficientHasItsTerm) {
  const double x = 3.0;
  const double y = 5.0;
  const double terms[] = {1.0, y, x, x * y, y * y, x * x};
  for (std::size_t k = 0; k < 6; ++k) {
    std::vector<double> one = zeros;
    one[k] = 1.0;
    EXPECT_EQ(Read(one, zeros).GetSlaveRange(x, y), x + terms[k]) << k;
    EXPECT_EQ(Read(zeros, one).GetSlaveAzimuth(x, y), y + terms[k]) << k;
    EXPECT_EQ(Read(one, zeros).GetSlaveAzimuth(x, y), y) << "range and azimuth are independent";
  }
}

TEST_F(MappingPolynomialTest, ZeroCoefficientsAreTheIdentity) {
  const MAPPING_POLYNOMIAL mapping = Read(zeros, zeros);
  EXPECT_EQ(mapping.GetSlaveRange(17.25, -3.0), 17.25);
  EXPECT_EQ(mapping.GetSlaveAzimuth(17.25, -3.0), -3.0);
}

TEST_F(MappingPolynomialTest, PositionsThatAreNoNumbersStayNone) {
  const MAPPING_POLYNOMIAL mapping = Read(zeros, zeros);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(std::isnan(mapping.GetSlaveRange(nan, 1.0)));
  EXPECT_TRUE(std::isnan(mapping.GetSlaveAzimuth(1.0, infinity))) << "0 times infinity";
}

TEST_F(MappingPolynomialTest, MoreCoefficientsThanSixAreIgnored) {
  const MAPPING_POLYNOMIAL mapping =
      Read({1.0, 0.0, 0.0, 0.0, 0.0, 0.0, 9.0}, {2.0, 0.0, 0.0, 0.0, 0.0, 0.0, 9.0, 9.0});
  EXPECT_EQ(mapping.GetSlaveRange(10.0, 20.0), 11.0);
  EXPECT_EQ(mapping.GetSlaveAzimuth(10.0, 20.0), 22.0);
}

TEST_F(MappingPolynomialTest, FewerCoefficientsThanSixAreRefused) {
  const std::vector<double> five(5, 0.0);
  EXPECT_THROW(Read(five, zeros), ERROR_DATA);
  EXPECT_EQ(log_.Lines().back(),
            "ALARM : mapping polynomial \"respl_poly_rg\" needs 6 coefficients, it has 5");
  EXPECT_THROW(Read(zeros, {}), ERROR_DATA);
  EXPECT_EQ(log_.Lines().back(),
            "ALARM : mapping polynomial \"respl_poly_az\" needs 6 coefficients, it has 0");
}

TEST_F(MappingPolynomialTest, CoversTheMasterOfThePool) {
  const MAPPING_POLYNOMIAL mapping = Read(zeros, zeros);
  EXPECT_EQ(mapping.GetMaxRange(), 299U);
  EXPECT_EQ(mapping.GetMaxAzimuth(), 199U);
}

TEST_F(MappingPolynomialTest, ItemsAreReadInOrderAndTheirErrorsPassThrough) {
  std::string entries;
  for (const auto& [key, entry] :
       {std::pair<std::string, std::string>{"respl_poly_az", VectorEntry("respl_poly_az", zeros)},
        {"respl_poly_rg", VectorEntry("respl_poly_rg", zeros)},
        {"n_samples", "n_samples INT_32 300\n"},
        {"n_lines", "n_lines INT_32 200\n"}}) {
    EXPECT_THROW(Read(entries), PARAMETER_KEY_NOT_FOUND);
    EXPECT_NE(log_.Lines().back().find(key), std::string::npos) << log_.Lines().back();
    EXPECT_THROW(Read(entries + key + " FLT_15 1.0\n"), WRONG_PARAMETER_TYPE) << key;
    entries += entry;
  }
  EXPECT_EQ(Read(entries).GetMaxRange(), 299U);
}

TEST_F(MappingPolynomialTest, CanBeReadFromAPoolFile) {
  WriteFile(pool_file_, VectorEntry("respl_poly_az", {1.0, 0.0, 0.0, 0.0, 0.0, 0.0}) +
                            VectorEntry("respl_poly_rg", {2.0, 0.0, 0.0, 0.0, 0.0, 0.0}) +
                            size_entries);
  const MAPPING_POLYNOMIAL mapping(pool_file_.c_str());
  EXPECT_EQ(mapping.GetSlaveAzimuth(10.0, 20.0), 21.0);
  EXPECT_EQ(mapping.GetSlaveRange(10.0, 20.0), 12.0);
  EXPECT_THROW(MAPPING_POLYNOMIAL(directory_.File("none").c_str()), CAN_NOT_OPEN_POOL);
}

}  // namespace
