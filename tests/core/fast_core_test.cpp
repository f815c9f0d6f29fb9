#include "core/fast/fast_core.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "core/pixel_evaluation.h"
#include "core_job.h"
#include "support/log_capture.h"
#include "supported_levels.h"

namespace {

struct VALUE {
  double re;
  double im;
};

/// What the core was about to encode. The pixels get the numbers of the values.
std::vector<VALUE> recorded;

template <class PIXEL>
bool Record(CONST_COMPLEX_ROW values, int count, PIXEL* encoded) {
  for (int x = 0; x < count; ++x) {
    const auto number = static_cast<std::uint32_t>(recorded.size());
    recorded.push_back({values.re[x], values.im[x]});
    std::memcpy(static_cast<void*>(encoded + x), &number, sizeof(number));
  }
  return true;
}

const ROW_FUNCTIONS* recording_functions = nullptr;

template <class CODEC>
void ResampleRecording(const RESAMPLE_THR_ARG& argument, const typename CODEC::PIXEL* const* input,
                       typename CODEC::PIXEL* const* output) {
  ROW_FUNCTIONS functions = *recording_functions;
  functions.int_16.encode = Record<INT_16_CODEC::PIXEL>;
  functions.binary_16.encode = Record<BINARY_16_CODEC::PIXEL>;
  ResampleBlockFast<CODEC>(argument, input, output, functions);
}

/// Sum over the footprint of |weight| (|re| + |im|): what rounding errors grow with.
template <class CODEC>
double AbsoluteSum(const RESAMPLE_JOB& job, double rg, double az) {
  const FOOTPRINT footprint(job.kernel->Length());
  const TAP_POSITION range = LocateTaps(rg, footprint, *job.kernel);
  const TAP_POSITION azimuth = LocateTaps(az, footprint, *job.kernel);
  double sum = 0.0;
  for (int k = 0; k < footprint.Length(); ++k) {
    const auto* pixels = job.input_slave->Rows<typename CODEC::PIXEL>()[azimuth.first_tap + k];
    for (int j = 0; j < footprint.Length(); ++j) {
      const auto& pixel = pixels[range.first_tap + j];
      sum += std::abs(range.weights[j] * azimuth.weights[k]) *
             (std::abs(CODEC::Decode(pixel.re)) + std::abs(CODEC::Decode(pixel.im)));
    }
  }
  return sum;
}

/// Compares every pixel of one job before encoding, and its mask, with the evaluation of single
/// pixels. Returns the number of computed pixels.
template <class CODEC>
int CheckAgainstSinglePixels(CORE_JOB& core_job, const LEVEL& level) {
  using PIXEL = typename CODEC::PIXEL;
  const RESAMPLE_JOB& job = core_job.Job();
  recorded.clear();
  recording_functions = level.functions;
  core_job.ClearOutputs();
  core_job.Resample<CODEC>(ResampleRecording<CODEC>);

  const PIXEL_EVALUATION<CODEC> evaluation(job, job.input_slave->Rows<PIXEL>());
  int computed = 0;
  for (int y = 0; y < job.output_height; ++y) {
    for (int x = 0; x < job.output_width; ++x) {
      const double rg = job.mapping->GetSlaveRange(x, y);
      const double az = job.mapping->GetSlaveAzimuth(x, y);
      std::uint32_t number = 0;
      std::memcpy(&number, &job.output_slave->Rows<PIXEL>()[y][x], sizeof(number));
      const unsigned char mask = job.output_mask->Rows<unsigned char>()[y][x];
      if (!evaluation.IsComputed(rg, az)) {
        EXPECT_EQ(number, 0x4D4D4D4DU) << "not to be computed: " << x << ", " << y;
        EXPECT_EQ(mask, CORE_JOB::untouched);
        continue;
      }
      ++computed;
      const INTERPOLATED expected = evaluation.At(rg, az);
      if (number >= recorded.size()) {
        ADD_FAILURE() << "not computed: " << x << ", " << y;
        return computed;
      }
      const double allowed = 1e-12 * AbsoluteSum<CODEC>(job, rg, az);
      EXPECT_NEAR(recorded[number].re, expected.re, allowed) << x << ", " << y;
      EXPECT_NEAR(recorded[number].im, expected.im, allowed) << x << ", " << y;
      EXPECT_EQ(mask, expected.valid) << x << ", " << y;
      if (testing::Test::HasFailure()) {
        return computed;
      }
    }
  }
  return computed;
}

struct FastCoreTest : testing::TestWithParam<int> {
  LOG_CAPTURE log;
};

TEST_P(FastCoreTest, EqualsTheEvaluationOfSinglePixelsBeforeEncoding) {
  const int length = GetParam();
  int computed = 0;
  for (unsigned seed = 0; seed < 24; ++seed) {
    const CORE_JOB_KIND kind = {
        .pixel_type = seed % 2 == 0 ? PIXEL_TYPE::C_INT_16 : PIXEL_TYPE::C_FLT_2,
        .length = length,
        .with_rate = seed / 2 % 2 != 0,
        .with_mask = seed / 4 % 2 != 0};
    CORE_JOB job(kind, seed);
    for (const LEVEL& level : SupportedLevels()) {
      SCOPED_TRACE(testing::Message() << level.variant->name << ", seed " << seed);
      computed += seed % 2 == 0 ? CheckAgainstSinglePixels<INT_16_CODEC>(job, level)
                                : CheckAgainstSinglePixels<BINARY_16_CODEC>(job, level);
      if (HasFailure()) {
        return;
      }
    }
  }
  EXPECT_GT(computed, 10000);
}

INSTANTIATE_TEST_SUITE_P(Lengths, FastCoreTest, testing::Range(1, 41));

/// Whether a NaN pattern was to be written and was, whatever its sign.
bool BothNoNumbers(std::int16_t, std::int16_t) {
  return false;
}
bool BothNoNumbers(std::uint16_t a, std::uint16_t b) {
  return (a & 0x7FFF) == 0x7FFF && (b & 0x7FFF) == 0x7FFF;
}

/// Where rounding errors cross a tie the neighbour is right too.
template <class CODEC>
bool IsEncodingOf(double value, double error, typename CODEC::COMPONENT encoded) {
  return encoded == CODEC::Encode(value) || BothNoNumbers(encoded, CODEC::Encode(value)) ||
         encoded == CODEC::Encode(value - error) || encoded == CODEC::Encode(value + error);
}

/// Compares every encoded pixel of one job with the evaluation of single pixels.
template <class CODEC>
void CheckEncodedPixels(CORE_JOB& core_job, const CORE_VARIANT& variant) {
  using PIXEL = typename CODEC::PIXEL;
  const RESAMPLE_JOB& job = core_job.Job();
  core_job.ClearOutputs();
  core_job.Resample(variant);
  const PIXEL_EVALUATION<CODEC> evaluation(job, job.input_slave->Rows<PIXEL>());
  for (int y = 0; y < job.output_height; ++y) {
    for (int x = 0; x < job.output_width; ++x) {
      const double rg = job.mapping->GetSlaveRange(x, y);
      const double az = job.mapping->GetSlaveAzimuth(x, y);
      if (!evaluation.IsComputed(rg, az)) {
        continue;
      }
      const PIXEL pixel = job.output_slave->Rows<PIXEL>()[y][x];
      const INTERPOLATED expected = evaluation.At(rg, az);
      const double error = 1e-12 * AbsoluteSum<CODEC>(job, rg, az);
      ASSERT_TRUE(IsEncodingOf<CODEC>(expected.re, error, pixel.re) &&
                  IsEncodingOf<CODEC>(expected.im, error, pixel.im))
          << variant.name << " at " << x << ", " << y << ": " << pixel.re << ", " << pixel.im
          << " instead of " << expected.re << ", " << expected.im;
    }
  }
}

struct EncodedFastCoreTest : testing::Test {
  LOG_CAPTURE log;
};

TEST_F(EncodedFastCoreTest, InfiniteAndNoNumbersSpreadAsInThePlainCore) {
  constexpr std::uint16_t patterns[] = {0x7C00, 0xFC00, 0x7E01, 0x8000, 0x0001};
  for (const std::uint16_t pattern : patterns) {
    for (unsigned seed = 0; seed < 12; ++seed) {
      CORE_JOB job({.pixel_type = PIXEL_TYPE::C_FLT_2, .length = 8, .with_rate = seed % 2 != 0},
                   seed);
      job.Scatter(pattern);
      for (const LEVEL& level : SupportedLevels()) {
        ASSERT_NO_FATAL_FAILURE(CheckEncodedPixels<BINARY_16_CODEC>(job, *level.variant));
      }
    }
  }
}

TEST_F(EncodedFastCoreTest, VeryLargeCentroidsAreRoundedAsInThePlainCore) {
  for (const double frequency : {1e6, -3e9, 1e15, 1e308}) {
    for (unsigned seed = 0; seed < 6; ++seed) {
      CORE_JOB job({.length = 9, .with_rate = seed % 2 != 0}, seed);
      job.SetConstantCentroid(frequency);
      job.Resample(CoreVariants().front());
      const std::vector<unsigned char> expected = job.OutputBytes();
      for (const LEVEL& level : SupportedLevels()) {
        job.ClearOutputs();
        job.Resample(*level.variant);
        EXPECT_EQ(job.OutputBytes(), expected) << level.variant->name << ", " << frequency;
      }
    }
  }
}

TEST_F(EncodedFastCoreTest, FullScaleSaturates) {
  for (unsigned seed = 0; seed < 6; ++seed) {
    CORE_JOB job({.length = 6}, seed);
    for (int i = 0; i < 100; ++i) {
      job.Scatter(i % 2 == 0 ? 0x7FFF : 0x8000);
    }
    for (const LEVEL& level : SupportedLevels()) {
      ASSERT_NO_FATAL_FAILURE(CheckEncodedPixels<INT_16_CODEC>(job, *level.variant));
    }
  }
}

TEST_F(EncodedFastCoreTest, BytesDoNotDependOnTheBlocks) {
  for (unsigned seed = 0; seed < 40; ++seed) {
    CORE_JOB job({.pixel_type = seed % 2 == 0 ? PIXEL_TYPE::C_INT_16 : PIXEL_TYPE::C_FLT_2,
                  .length = 6 + static_cast<int>(seed % 5),
                  .with_rate = seed % 3 == 0,
                  .with_mask = seed % 4 == 0},
                 seed);
    for (const CORE_VARIANT& variant : CoreVariants()) {
      if (!variant.is_supported()) {
        continue;
      }
      job.ClearOutputs();
      job.Resample(variant);
      const std::vector<unsigned char> pixels = job.OutputBytes();
      const std::vector<unsigned char> mask = job.MaskBytes();
      std::vector<unsigned> every_third_line;
      for (unsigned y = seed % 3 + 1; y < static_cast<unsigned>(job.Job().output_height); y += 3) {
        every_third_line.push_back(y);
      }
      job.ClearOutputs();
      job.Resample(variant, every_third_line);
      EXPECT_EQ(job.OutputBytes(), pixels) << variant.name << ", seed " << seed;
      EXPECT_EQ(job.MaskBytes(), mask) << variant.name << ", seed " << seed;
    }
  }
}

TEST_F(EncodedFastCoreTest, WithoutAnOutputMaskThePixelsAreTheSame) {
  CORE_JOB job({.length = 8, .with_mask = true}, 3);
  for (const CORE_VARIANT& variant : CoreVariants()) {
    if (variant.is_supported()) {
      job.ClearOutputs();
      job.Resample(variant);
      const std::vector<unsigned char> pixels = job.OutputBytes();
      MEM_MGR* const mask = job.Job().output_mask;
      job.Job().output_mask = nullptr;
      job.ClearOutputs();
      job.Resample(variant);
      job.Job().output_mask = mask;
      EXPECT_EQ(job.OutputBytes(), pixels) << variant.name;
    }
  }
}

}  // namespace
