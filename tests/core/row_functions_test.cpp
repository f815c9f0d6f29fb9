#include "core/fast/row_functions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <random>

#include "core/pixel_codec.h"
#include "supported_levels.h"

namespace {

constexpr int rows = 40;

/// Rows of random numbers between -1 and 1.
class RANDOM_ROWS {
 public:
  explicit RANDOM_ROWS(unsigned seed) : random_(seed), values_(2 * rows * strip_columns) {
    for (double& value : values_) {
      value = std::uniform_real_distribution(-1.0, 1.0)(random_);
    }
  }
  double* Row(int row) { return values_.data() + row * strip_columns; }

 private:
  std::mt19937 random_;
  std::vector<double> values_;
};

/// Values for an encoder: ties, limits and everything between, in pairs of neighbours.
std::vector<double> ValuesToEncode() {
  std::vector<double> values = {0.0,      -0.0,        32767.0,     32767.5, 32768.0, -32768.0,
                                -32768.5, 65504.0,     65519.0,     65520.0, 1e9,     -1e9,
                                0x1p-14,  0x1.ffdp-15, 0x1.ffep-15, 1e-300};
  std::mt19937 random(1);
  for (int i = 0; i < 4000; ++i) {
    values.push_back(static_cast<int>(random() % 70000) - 35000 + 0.5);
    values.push_back(std::ldexp(1.0 + static_cast<double>(random() % 2048) / 2048.0,
                                static_cast<int>(random() % 36) - 18));
  }
  const std::size_t count = values.size();
  for (std::size_t i = 0; i < count; ++i) {
    values.push_back(-values[i]);
    values.push_back(std::nextafter(values[i], 1e300));
    values.push_back(std::nextafter(values[i], -1e300));
  }
  values.resize(values.size() / group_columns * group_columns);
  return values;
}

class RowFunctionsTest : public testing::Test {};

TEST_F(RowFunctionsTest, SinesAndCosinesOfAnyNumberOfTurns) {
  std::mt19937 random(1);
  for (const LEVEL& level : SupportedLevels()) {
    for (const double size : {0.1, 1.0, 100.0}) {
      double turns[strip_columns];
      double cosine[strip_columns];
      double sine[strip_columns];
      for (double& angle : turns) {
        angle = std::uniform_real_distribution(-size, size)(random);
      }
      turns[0] = 0.25;
      turns[1] = -0.5;
      level.functions->sine_cosine(turns, strip_columns, {cosine, sine});
      for (int x = 0; x < strip_columns; ++x) {
        const long double angle = 2.0L * std::numbers::pi_v<long double> * turns[x];
        EXPECT_NEAR(cosine[x], static_cast<double>(std::cos(angle)), 5e-16) << turns[x];
        EXPECT_NEAR(sine[x], static_cast<double>(std::sin(angle)), 5e-16) << turns[x];
      }
    }
  }
}

TEST_F(RowFunctionsTest, AzimuthFiltersOfAllLengthsTurnEveryTap) {
  using PHASOR = std::complex<double>;
  RANDOM_ROWS weights(1);
  RANDOM_ROWS re(2);
  RANDOM_ROWS im(3);
  RANDOM_ROWS angles(4);
  RANDOM_ROWS phasors(5);
  const auto evaluate = [&](const LEVEL& level, int row) -> CONST_COMPLEX_ROW {
    level.functions->sine_cosine(angles.Row(row), strip_columns,
                                 {phasors.Row(2 * row), phasors.Row(2 * row + 1)});
    return {phasors.Row(2 * row), phasors.Row(2 * row + 1)};
  };
  const auto turned = [&](int row, int x) {
    return std::polar(1.0, 2.0 * std::numbers::pi * angles.Row(row)[x]);
  };
  for (const LEVEL& level : SupportedLevels()) {
    for (int length = 1; length <= rows; ++length) {
      double sum_re[2][strip_columns];
      double sum_im[2][strip_columns];
      const CONST_COMPLEX_ROW first = evaluate(level, 0);
      const CONST_COMPLEX_ROW last = evaluate(level, 1);
      const CONST_COMPLEX_ROW step = evaluate(level, 2);
      level.functions->azimuth_filter(length)(weights.Row(0), {re.Row(0), im.Row(0)}, length,
                                              {first, last}, strip_columns, {sum_re[0], sum_im[0]});
      level.functions->rate_azimuth_filter(length)(weights.Row(0), {re.Row(0), im.Row(0)}, length,
                                                   {first, step, last}, strip_columns,
                                                   {sum_re[1], sum_im[1]});
      for (int x = 0; x < strip_columns; ++x) {
        PHASOR ramp_sum = 0.0;
        PHASOR rate_sum = 0.0;
        PHASOR ramp = turned(1, x);
        PHASOR factor = turned(0, x);
        for (int k = length - 1; k >= 0; --k) {
          const PHASOR term = weights.Row(k)[x] * PHASOR(re.Row(k)[x], im.Row(k)[x]);
          rate_sum = rate_sum * (k == length - 1 ? 1.0 : factor) + term;
          factor *= k == length - 1 ? 1.0 : turned(2, x);
        }
        for (int k = 0; k < length; ++k) {
          ramp_sum += weights.Row(k)[x] * PHASOR(re.Row(k)[x], im.Row(k)[x]) * ramp;
          ramp *= std::conj(turned(0, x));
        }
        rate_sum *= turned(1, x);
        const double error = 1e-13 * length;
        EXPECT_NEAR(sum_re[0][x], ramp_sum.real(), error) << level.variant->name << ' ' << length;
        EXPECT_NEAR(sum_im[0][x], ramp_sum.imag(), error) << level.variant->name << ' ' << length;
        EXPECT_NEAR(sum_re[1][x], rate_sum.real(), error) << level.variant->name << ' ' << length;
        EXPECT_NEAR(sum_im[1][x], rate_sum.imag(), error) << level.variant->name << ' ' << length;
      }
    }
  }
}

template <class CODEC>
void CheckFootprintsAgainstRuns(const LEVEL& level, const PIXEL_FUNCTIONS<typename CODEC::PIXEL>& f,
                                const std::vector<typename CODEC::PIXEL>& pixels) {
  RANDOM_ROWS weights(1);
  for (int length = 1; length <= rows; ++length) {
    double re[2][strip_columns + rows];
    double im[2][strip_columns + rows];
    f.decode(pixels.data(), strip_columns + length - 1, {re[0], im[0]});
    double run_re[strip_columns];
    double run_im[strip_columns];
    level.functions->filter_range(weights.Row(0), {re[0], im[0]}, length, strip_columns,
                                  {run_re, run_im}, {re[1], im[1]});
    for (int x = 0; x < strip_columns; ++x) {
      double column_weights[rows];
      double expected_re = 0.0;
      double expected_im = 0.0;
      for (int j = 0; j < length; ++j) {
        const auto& pixel = pixels[static_cast<std::size_t>(x + j)];
        column_weights[j] = weights.Row(j)[x];
        expected_re += column_weights[j] * CODEC::Decode(pixel.re);
        expected_im += column_weights[j] * CODEC::Decode(pixel.im);
      }
      EXPECT_NEAR(run_re[x], expected_re, 1e-8);
      EXPECT_NEAR(run_im[x], expected_im, 1e-8);
      EXPECT_EQ(re[1][x], run_re[x]) << "copy";
      EXPECT_EQ(im[1][x], run_im[x]) << "copy";
      const auto* line = pixels.data();
      double footprint_re = 0.0;
      double footprint_im = 0.0;
      f.footprint_filter(length)(&line, x, column_weights, length, 1,
                                 {&footprint_re, &footprint_im});
      ASSERT_EQ(footprint_re, run_re[x]) << level.variant->name << ", length " << length;
      ASSERT_EQ(footprint_im, run_im[x]) << level.variant->name << ", length " << length;
    }
  }
}

TEST_F(RowFunctionsTest, AColumnAloneHasTheBitsThatItHasInARun) {
  std::mt19937 random(1);
  std::vector<INT_16_CODEC::PIXEL> integers(strip_columns + rows);
  std::vector<BINARY_16_CODEC::PIXEL> halves(strip_columns + rows);
  for (std::size_t i = 0; i < integers.size(); ++i) {
    integers[i] = {static_cast<std::int16_t>(random()), static_cast<std::int16_t>(random())};
    halves[i] = {static_cast<std::uint16_t>(random() & 0xBFFF),
                 static_cast<std::uint16_t>(random() & 0xBFFF)};
  }
  for (const LEVEL& level : SupportedLevels()) {
    CheckFootprintsAgainstRuns<INT_16_CODEC>(level, level.functions->int_16, integers);
    CheckFootprintsAgainstRuns<BINARY_16_CODEC>(level, level.functions->binary_16, halves);
  }
}

TEST_F(RowFunctionsTest, AllPatternsAreDecodedAsByTheCodecs) {
  for (const LEVEL& level : SupportedLevels()) {
    for (unsigned pattern = 0; pattern <= 0xFFFF; ++pattern) {
      const auto re = static_cast<std::uint16_t>(pattern);
      const auto im = static_cast<std::uint16_t>(pattern * 7919U);
      double integer[2];
      double half[2];
      const INT_16_CODEC::PIXEL integer_pixel = {static_cast<std::int16_t>(re),
                                                 static_cast<std::int16_t>(im)};
      const BINARY_16_CODEC::PIXEL half_pixel = {re, im};
      level.functions->int_16.decode(&integer_pixel, 1, {integer, integer + 1});
      level.functions->binary_16.decode(&half_pixel, 1, {half, half + 1});
      EXPECT_EQ(integer[0], static_cast<std::int16_t>(re));
      EXPECT_EQ(integer[1], static_cast<std::int16_t>(im));
      const double expected = BINARY_16_CODEC::Decode(re);
      if (std::isfinite(expected)) {
        ASSERT_EQ(half[0], expected) << pattern;
      } else {
        ASSERT_FALSE(std::isfinite(half[0])) << pattern;
      }
    }
  }
}

template <class CODEC>
void CheckEncoder(const PIXEL_FUNCTIONS<typename CODEC::PIXEL>& functions) {
  const std::vector<double> values = ValuesToEncode();
  const std::vector<double> reversed(values.rbegin(), values.rend());
  const int count = static_cast<int>(values.size());
  std::vector<typename CODEC::PIXEL> encoded(values.size());
  EXPECT_TRUE(functions.encode({values.data(), reversed.data()}, count, encoded.data()));
  for (std::size_t i = 0; i < values.size(); ++i) {
    ASSERT_EQ(encoded[i].re, CODEC::Encode(values[i])) << values[i];
    ASSERT_EQ(encoded[i].im, CODEC::Encode(reversed[i])) << reversed[i];
  }
  for (const double unusual : {0x1p30, -0x1p31, 1e300, std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::quiet_NaN()}) {
    for (const std::size_t place : {std::size_t{0}, std::size_t{13}, values.size() - 1}) {
      std::vector<double> with_unusual = values;
      with_unusual[place] = unusual;
      EXPECT_FALSE(functions.encode({with_unusual.data(), values.data()}, count, encoded.data()));
      EXPECT_FALSE(functions.encode({values.data(), with_unusual.data()}, count, encoded.data()));
    }
  }
}

TEST_F(RowFunctionsTest, EncodersRoundAndSaturateAsTheCodecsAndReportTheUnusual) {
  for (const LEVEL& level : SupportedLevels()) {
    SCOPED_TRACE(level.variant->name);
    CheckEncoder<INT_16_CODEC>(level.functions->int_16);
    CheckEncoder<BINARY_16_CODEC>(level.functions->binary_16);
  }
}

TEST_F(RowFunctionsTest, OneInvalidPixelUnderTheTapsIsFound) {
  unsigned char mask[strip_columns + rows];
  unsigned char valid[strip_columns];
  for (const LEVEL& level : SupportedLevels()) {
    std::fill(std::begin(mask), std::end(mask), static_cast<unsigned char>(255));
    mask[20] = 0;
    level.functions->filter_mask(mask, 5, strip_columns, valid);
    for (int x = 0; x < strip_columns; ++x) {
      EXPECT_EQ(valid[x], x < 16 || x > 20 ? 1 : 0) << x;
    }
    std::vector<unsigned char> masks(4 * strip_columns, 1);
    masks[2 * strip_columns + 3] = 0;
    masks[3 * strip_columns + 7] = 0;
    level.functions->combine_masks(masks.data(), 3, strip_columns, valid);
    for (int x = 0; x < strip_columns; ++x) {
      EXPECT_EQ(valid[x], x == 3 ? 0 : 1) << x;
    }
  }
}

}  // namespace
