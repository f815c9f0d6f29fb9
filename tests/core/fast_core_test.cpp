#include "core/fast/fast_core.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <utility>

#include "core/codec_visit.h"
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
ENCODED_ROW Record(CONST_COMPLEX_ROW values, int count, PIXEL* encoded) {
  for (int x = 0; x < count; ++x) {
    const auto number = static_cast<std::uint32_t>(recorded.size());
    recorded.push_back({values.re[x], values.im[x]});
    std::memcpy(static_cast<void*>(encoded + x), &number, sizeof(number));
  }
  return {true, 0};
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

/// An infinity may become NaN.
bool IsNear(double value, double expected, double allowed) {
  return std::isfinite(expected) ? std::abs(value - expected) <= allowed : !std::isfinite(value);
}

template <class... CODECS>
void RecordEncoded(ROW_FUNCTIONS& functions, CODEC_LIST<CODECS...>) {
  ((functions.pixels.PIXEL_FUNCTIONS<typename CODECS::PIXEL>::encode =
        Record<typename CODECS::PIXEL>),
   ...);
}

void ResampleRecorded(CORE_JOB& job, const LEVEL& level) {
  recorded.clear();
  ROW_FUNCTIONS functions = *level.functions;
  RecordEncoded(functions, PIXEL_CODECS());
  job.ClearOutputs();
  job.Resample([&](const RESAMPLE_THR_ARG& argument) { ResampleBlockFast(argument, functions); });
}

/// Compares every pixel of one job before encoding, and its mask, with the evaluation of single
/// pixels. Returns the number of computed pixels.
template <class CODEC>
int CheckAgainstSinglePixels(CODEC, CORE_JOB& core_job, const LEVEL& level) {
  using PIXEL = typename CODEC::PIXEL;
  const RESAMPLE_JOB& job = core_job.Job();
  ResampleRecorded(core_job, level);

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
      EXPECT_TRUE(IsNear(recorded[number].re, expected.re, allowed)) << x << ", " << y;
      EXPECT_TRUE(IsNear(recorded[number].im, expected.im, allowed)) << x << ", " << y;
      EXPECT_EQ(mask, expected.valid) << x << ", " << y;
      if (testing::Test::HasFailure()) {
        return computed;
      }
    }
  }
  return computed;
}

int CheckAgainstSinglePixels(CORE_JOB& job, const LEVEL& level) {
  int computed = 0;
  VisitCodec(job.Job().input_slave->PixelType(),
             [&](auto codec) { computed = CheckAgainstSinglePixels(codec, job, level); });
  return computed;
}

struct FastCoreTest : testing::TestWithParam<int> {
  LOG_CAPTURE log;
};

TEST_P(FastCoreTest, EqualsTheEvaluationOfSinglePixelsBeforeEncoding) {
  const int length = GetParam();
  int computed = 0;
  for (unsigned number = 0; number < 24; ++number) {
    const unsigned seed = static_cast<unsigned>(24 * length) + number;
    SCENE scene = RandomScene(seed);
    scene.kernel_length = length;
    // The other kernels have at least 6 taps. Without a kernel all weights are 0.
    scene.kernel_type = length < 6 ? "-" : "truncated_sinc_kaiser_weight";
    CORE_JOB job(scene);
    for (const LEVEL& level : SupportedLevels()) {
      SCOPED_TRACE(testing::Message() << level.variant->name << ", seed " << seed);
      computed += CheckAgainstSinglePixels(job, level);
      if (HasFailure()) {
        return;
      }
    }
  }
  EXPECT_GT(computed, 3000);
}

INSTANTIATE_TEST_SUITE_P(Lengths, FastCoreTest, testing::Range(shortest_kernel, 41));

/// A centroid that turns the taps of a kernel by so many turns over its length.
struct LARGE_PHASE {
  int length;
  double turns;
  bool is_fast;  ///< not left to the plain core
};

TEST(LargePhases, AreAsAccurateUpToTheLimitAndLeftToThePlainCoreBeyond) {
  const LOG_CAPTURE log;
  std::mt19937 random(1);
  for (const auto& [length, turns, is_fast] : {LARGE_PHASE{6, -500.0, true},
                                               {8, 511.99, true},
                                               {8, -512.01, false},
                                               {16, 320.0, true},
                                               {16, 512.0, true},
                                               {16, 512.01, false},
                                               {33, 511.3, true},
                                               {64, 0.0, true},
                                               {64, -320.1, true},
                                               {65, 0.0, true},
                                               {96, 300.0, true},
                                               {128, 0.01, true},
                                               {128, 64.0, true},
                                               {128, 511.9, true}}) {
    for (const char* imaging_mode : {"SM", "SL"}) {
      SCENE scene = OrdinaryScene();
      scene.slave = GRID<RAW_PIXEL>(150, 150);
      for (RAW_PIXEL& pixel : scene.slave.values) {
        pixel = {static_cast<std::uint16_t>(random()), static_cast<std::uint16_t>(random())};
      }
      scene.mask.reset();
      scene.n_samples = scene.n_lines = 80;
      scene.mapping =
          POLYNOMIAL_MAPPING_DATA{{35.3, 0.01, 0.02, 0, 0, 0}, {33.7, 0.02, 1e-3, 0, 0, 0}};
      scene.kernel_length = length;
      scene.subpix_positions = 1024;
      scene.imaging_mode = imaging_mode;
      scene.doppler = DOPPLER_DATA();
      scene.doppler.coefficients = GRID<double>(1, 1, turns * scene.doppler.prf / length);
      CORE_JOB job(scene);
      for (const LEVEL& level : SupportedLevels()) {
        SCOPED_TRACE(testing::Message() << level.variant->name << ", " << imaging_mode << ", "
                                        << length << " taps, " << turns << " turns");
        if (is_fast) {
          EXPECT_GT(CheckAgainstSinglePixels(job, level), 300);
        } else {
          ResampleRecorded(job, level);
          EXPECT_TRUE(std::isnan(recorded[0].re));
        }
      }
    }
  }
}

struct EncodedFastCoreTest : testing::Test {
  LOG_CAPTURE log;
};

TEST_F(EncodedFastCoreTest, VeryLargeCentroidsAreRoundedAsInThePlainCore) {
  for (const double frequency : {1e6, -3e9, 1e15, 1e308}) {
    for (const char* imaging_mode : {"SL", "SM"}) {
      SCENE scene = OrdinaryScene();
      scene.kernel_length = 9;
      scene.imaging_mode = imaging_mode;
      scene.doppler.azimuth_times = scene.doppler.reference_times = {0.0};
      scene.doppler.coefficients = GRID<double>(1, 1, frequency);
      CORE_JOB job(scene);
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

TEST_F(EncodedFastCoreTest, BytesDoNotDependOnTheBlocksOrTheOutputMask) {
  for (unsigned seed = 0; seed < 40; ++seed) {
    CORE_JOB job(RandomScene(seed));
    std::vector<unsigned> every_third_line;
    for (unsigned y = seed % 3 + 1; y < static_cast<unsigned>(job.Job().output_height); y += 3) {
      every_third_line.push_back(y);
    }
    for (const CORE_VARIANT& variant : CoreVariants()) {
      if (!variant.is_supported()) {
        continue;
      }
      SCOPED_TRACE(testing::Message() << variant.name << ", seed " << seed);
      const auto resample = [&](const std::vector<unsigned>& block_ends) {
        job.ClearOutputs();
        job.Resample(variant, block_ends);
        return job.OutputBytes();
      };
      const std::vector<unsigned char> pixels = resample({});
      const std::vector<unsigned char> mask = job.MaskBytes();
      EXPECT_EQ(resample(every_third_line), pixels);
      EXPECT_EQ(job.MaskBytes(), mask);
      MEM_MGR* const output_mask = std::exchange(job.Job().output_mask, nullptr);
      EXPECT_EQ(resample({}), pixels) << "without an output mask";
      job.Job().output_mask = output_mask;
    }
  }
}

}  // namespace
