#include "core/doppler_centroid_model.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/error_exception.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

namespace {

struct POLYNOMIAL {
  double azimuth_time;
  double reference_time;
  std::vector<double> coefficients;
};

std::string Vector(const std::string& key, const std::vector<double>& values) {
  std::string text = key + " FLT_15_V 0 " + std::to_string(values.size()) + "\n{\n";
  for (const double value : values) {
    text += std::to_string(value) + "\n";
  }
  return text + "}\n";
}

/// A slave pool with the annotation of `polynomials`; `rows` of them stand in the matrix.
std::string PoolText(const std::vector<POLYNOMIAL>& polynomials, std::size_t rows,
                     const std::string& prf = "1500") {
  std::vector<double> azimuth_times;
  std::vector<double> reference_times;
  for (const POLYNOMIAL& polynomial : polynomials) {
    azimuth_times.push_back(polynomial.azimuth_time);
    reference_times.push_back(polynomial.reference_time);
  }
  const std::size_t columns = polynomials.empty() ? 0 : polynomials[0].coefficients.size();
  std::string text =
      "prf FLT_15 " + prf + "\nrange_sampling_frequency FLT_15 2e7\noversampling FLT_15 1\n" +
      Vector("fdc_poly_az_time", azimuth_times) + Vector("fdc_poly_rg_ref_time", reference_times) +
      "fdc_poly_coeff FLT_15_M 0 " + std::to_string(rows) + " 0 " + std::to_string(columns) +
      "\n{\n";
  for (std::size_t row = 0; row < rows; ++row) {
    text += "{\n";
    for (const double coefficient : polynomials[row].coefficients) {
      text += std::to_string(coefficient) + "\n";
    }
    text += "}\n";
  }
  return text + "}\n";
}

class DopplerCentroidModelTest : public testing::Test {
 protected:
  void SetupFromText(const std::string& pool_text) {
    WriteFile(directory_.Path() / "slave.pool", pool_text);
    PARAMETER_POOL pool(directory_.File("slave.pool").c_str());
    model_.Setup(pool);
  }

  void Setup(const std::vector<POLYNOMIAL>& polynomials) {
    SetupFromText(PoolText(polynomials, polynomials.size()));
  }

  TEMPORARY_DIRECTORY directory_;
  LOG_CAPTURE log_;
  DOPPLER_CENTROID_MODEL model_;
};

TEST_F(DopplerCentroidModelTest, OnePolynomialHoldsAtEveryAzimuthTime) {
  Setup({{10.0, 0.5, {100.0, -20.0, 3.0}}});
  for (const double azimuth_time : {-5.0, 10.0, 1e6}) {
    EXPECT_DOUBLE_EQ(model_.Frequency(azimuth_time, 2.5), 100.0 - 20.0 * 2.0 + 3.0 * 4.0);
  }
  EXPECT_TRUE(log_.Has("PARAM : fDC: support count: 1")) << log_.Text();
}

TEST_F(DopplerCentroidModelTest, InterpolatesReferenceTimeAndCoefficientsSeparately) {
  Setup({{0.0, 1.0, {100.0, 10.0}}, {2.0, 3.0, {300.0, 30.0}}});
  // Half way: reference time 2, coefficients 200 and 20.
  EXPECT_DOUBLE_EQ(model_.Frequency(1.0, 5.0), 200.0 + 20.0 * 3.0);
  EXPECT_TRUE(log_.Has("PARAM : fDC: support count: 2")) << log_.Text();
}

TEST_F(DopplerCentroidModelTest, PiecesAreLinearBetweenNeighboursAndExtrapolateAtTheEnds) {
  Setup({{0.0, 0.0, {0.0}}, {1.0, 0.0, {10.0}}, {2.0, 0.0, {0.0}}, {4.0, 0.0, {40.0}}});
  EXPECT_DOUBLE_EQ(model_.Frequency(0.5, 0.0), 5.0);
  EXPECT_DOUBLE_EQ(model_.Frequency(1.5, 0.0), 5.0);
  EXPECT_DOUBLE_EQ(model_.Frequency(3.0, 0.0), 20.0);
  EXPECT_DOUBLE_EQ(model_.Frequency(-1.0, 0.0), -10.0);
  EXPECT_DOUBLE_EQ(model_.Frequency(6.0, 0.0), 80.0);
}

TEST_F(DopplerCentroidModelTest, LogsWhatItRead) {
  Setup({{0.0, 0.0, {1.0}}});
  const std::vector<std::string> expected = {"PARAM : fDC: prf = 1500.000000",
                                             "PARAM : fDC: rsf = 20000000.000000",
                                             "PARAM : fDC: oversampling = 1.000000",
                                             "PARAM : fDC: t_az_start = Not initialized here",
                                             "PARAM : fDC: t_rg_start = Not initialized here",
                                             "PARAM : fDC: number of range polynomials over az: 1",
                                             "PARAM : fDC: number of coeffs over range: 1"};
  std::vector<std::string> logged;
  for (const std::string& line : log_.Lines()) {
    if (line.starts_with("PARAM : fDC: ") && logged.size() < expected.size()) {
      logged.push_back(line);
    }
  }
  EXPECT_EQ(logged, expected);
}

TEST_F(DopplerCentroidModelTest, RefusesAnnotationThatDefinesNoCentroid) {
  const std::vector<POLYNOMIAL> two = {{0.0, 0.0, {1.0}}, {1.0, 0.0, {2.0}}};
  EXPECT_THROW(SetupFromText(PoolText({}, 0)), ERROR_DATA);
  EXPECT_THROW(SetupFromText(PoolText(two, 1)), ERROR_DATA) << "fewer rows than polynomials";
  EXPECT_THROW(Setup({{0.0, 0.0, {}}}), ERROR_DATA) << "no coefficient";
  EXPECT_THROW(Setup({{1.0, 0.0, {1.0}}, {1.0, 0.0, {2.0}}}), ERROR_DATA) << "equal times";
  std::string lengths = PoolText(two, 2);
  lengths.replace(lengths.find("fdc_poly_rg_ref_time"), 20, "another_key_instead_");
  EXPECT_THROW(SetupFromText(lengths + Vector("fdc_poly_rg_ref_time", {0.0})), ERROR_DATA);
  for (const char* prf : {"0", "-1500", "inf", "nan"}) {
    EXPECT_THROW(SetupFromText(PoolText(two, 2, prf)), ERROR_EXCEPTION) << prf;
  }
  EXPECT_TRUE(log_.Has("ALARM : fDC: fdc_poly_az_time holds no polynomial")) << log_.Text();
}

}  // namespace
