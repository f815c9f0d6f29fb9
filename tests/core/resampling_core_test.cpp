#include "core/resampling_core.h"

#include <gtest/gtest.h>

#include <limits>
#include <numbers>

#include "support/log_capture.h"
#include "support/temporary_directory.h"

namespace {

/// Shifts every position by constants, or sends it anywhere else.
class SHIFT_MAPPING : public MAPPING_BASE {
 public:
  SHIFT_MAPPING(double range_shift, double azimuth_shift)
      : range_shift_(range_shift), azimuth_shift_(azimuth_shift) {}
  double GetSlaveRange(double range, double) const override { return range + range_shift_; }
  double GetSlaveAzimuth(double, double azimuth) const override { return azimuth + azimuth_shift_; }
  unsigned GetMaxRange() const override { return 0; }
  unsigned GetMaxAzimuth() const override { return 0; }

 private:
  double range_shift_;
  double azimuth_shift_;
};

/// A slave of one size with a constant Doppler centroid, resampled onto a grid of the same size.
class ResamplingCoreTest : public testing::Test {
 protected:
  using PIXEL = INT_16_CODEC::PIXEL;
  static constexpr int width = 24;
  static constexpr int height = 20;
  static constexpr std::int16_t untouched = 12345;

  void SetUp() override {
    const std::pair<MEM_MGR*, PIXEL_TYPE> rasters[] = {{&input_, PIXEL_TYPE::C_INT_16},
                                                       {&output_, PIXEL_TYPE::C_INT_16},
                                                       {&input_mask_, PIXEL_TYPE::U_INT_8},
                                                       {&output_mask_, PIXEL_TYPE::U_INT_8}};
    for (const auto& [raster, type] : rasters) {
      raster->CreateInMemory(0, 0, width - 1, height - 1, type);
    }
    for (int line = 0; line < height; ++line) {
      for (int sample = 0; sample < width; ++sample) {
        input_.Rows<PIXEL>()[line][sample] = {static_cast<std::int16_t>(100 * sample),
                                              static_cast<std::int16_t>(50 * line)};
        output_.Rows<PIXEL>()[line][sample] = {untouched, untouched};
        input_mask_.Rows<unsigned char>()[line][sample] = 1;
        output_mask_.Rows<unsigned char>()[line][sample] = 77;
      }
    }
    SetDoppler(0.0);
    imaging_mode_.Assign("SM");
  }

  void SetDoppler(double frequency) {
    WriteFile(directory_.Path() / "slave.pool",
              "prf FLT_15 1000\nrange_sampling_frequency FLT_15 1e7\noversampling FLT_15 1\n"
              "fdc_poly_az_time FLT_15_V 0 1\n{\n0\n}\nfdc_poly_rg_ref_time FLT_15_V 0 1\n{\n0\n}\n"
              "fdc_poly_coeff FLT_15_M 0 1 0 1\n{\n{\n" +
                  std::to_string(frequency) + "\n}\n}\n");
    PARAMETER_POOL pool(directory_.File("slave.pool").c_str());
    doppler_.Setup(pool);
  }

  void Resample(const MAPPING_BASE& mapping, int length, int subpix_count,
                const char* kernel_name = "truncated_sinc_no_weight") {
    BASIC::TYPES::KernelType type;
    type.Assign(kernel_name);
    INTERPOLATION_KERNEL kernel;
    kernel.InitKernel(type, length, subpix_count, 0.0F);
    RESAMPLE_THR_ARG argument;
    argument.block = URANGE<unsigned int>(0, height);
    argument.Set({.input_slave = &input_,
                  .input_mask = &input_mask_,
                  .input_width = width,
                  .input_height = height,
                  .output_slave = &output_,
                  .output_mask = &output_mask_,
                  .output_width = width,
                  .output_height = height,
                  .mapping = &mapping,
                  .kernel = &kernel,
                  .doppler = &doppler_,
                  .imaging_mode = &imaging_mode_,
                  .ps_mode = false});
    ResampleBlock<INT_16_CODEC>(argument, input_.Rows<PIXEL>(), output_.Rows<PIXEL>());
  }

  PIXEL Output(int line, int sample) const { return output_.Rows<PIXEL>()[line][sample]; }
  int Mask(int line, int sample) const { return output_mask_.Rows<unsigned char>()[line][sample]; }
  bool IsComputed(int line, int sample) const { return Mask(line, sample) != 77; }

  TEMPORARY_DIRECTORY directory_;
  LOG_CAPTURE log_;
  MEM_MGR input_;
  MEM_MGR output_;
  MEM_MGR input_mask_;
  MEM_MGR output_mask_;
  DOPPLER_CENTROID_MODEL doppler_;
  ZARVO::ImageMode imaging_mode_;
};

TEST_F(ResamplingCoreTest, IntegerShiftsCopyPixelsAtAnyDopplerCentroid) {
  SetDoppler(321.0);
  Resample(SHIFT_MAPPING(2.0, -1.0), 6, 16);
  for (const auto& [line, sample] : {std::pair{5, 5}, {10, 3}, {12, 17}}) {
    EXPECT_EQ(Output(line, sample).re, 100 * (sample + 2));
    EXPECT_EQ(Output(line, sample).im, 50 * (line - 1));
    EXPECT_EQ(Mask(line, sample), 1);
  }
}

TEST_F(ResamplingCoreTest, ComputesStrictlyInsideTheMarginOnly) {
  Resample(SHIFT_MAPPING(0.0, 0.0), 6, 16);
  EXPECT_FALSE(IsComputed(10, 3)) << "exactly half the kernel from the edge";
  EXPECT_TRUE(IsComputed(10, 4));
  EXPECT_TRUE(IsComputed(10, width - 4));
  EXPECT_FALSE(IsComputed(10, width - 3));
  EXPECT_FALSE(IsComputed(3, 10));
  EXPECT_TRUE(IsComputed(height - 4, 10));
  EXPECT_FALSE(IsComputed(height - 3, 10));
  EXPECT_EQ(Output(10, 3).re, untouched);
}

TEST_F(ResamplingCoreTest, OddKernelsNeedOneMorePixelToTheRightAndBelow) {
  Resample(SHIFT_MAPPING(0.0, 0.0), 7, 16);
  EXPECT_TRUE(IsComputed(10, 4));
  EXPECT_TRUE(IsComputed(10, width - 5));
  EXPECT_FALSE(IsComputed(10, width - 4)) << "the last tap would lie outside the image";
  EXPECT_TRUE(IsComputed(height - 5, 10));
  EXPECT_FALSE(IsComputed(height - 4, 10));
}

TEST_F(ResamplingCoreTest, PositionsThatAreNoNumbersOrHugeAreNotComputed) {
  for (const double shift : {std::numeric_limits<double>::quiet_NaN(),
                             std::numeric_limits<double>::infinity(), 1e300, -1e300}) {
    Resample(SHIFT_MAPPING(shift, 0.0), 6, 16);
    Resample(SHIFT_MAPPING(0.0, shift), 6, 16);
  }
  for (int line = 0; line < height; ++line) {
    for (int sample = 0; sample < width; ++sample) {
      ASSERT_FALSE(IsComputed(line, sample));
    }
  }
}

TEST_F(ResamplingCoreTest, AFractionNearOneTakesTheWeightsOfZeroOnTheUnmovedTaps) {
  Resample(SHIFT_MAPPING(0.99, 0.0), 6, 10);
  EXPECT_EQ(Output(10, 10).re, 1000) << "the pixel before the position, not the one after it";
}

TEST_F(ResamplingCoreTest, OneInvalidPixelUnderTheTapsInvalidatesTheResultOnly) {
  input_mask_.Rows<unsigned char>()[10][13] = 0;
  Resample(SHIFT_MAPPING(0.0, 0.0), 6, 16);
  EXPECT_EQ(Mask(10, 10), 0) << "tap at +3";
  EXPECT_EQ(Output(10, 10).re, 1000);
  EXPECT_EQ(Mask(10, 9), 1);
  EXPECT_EQ(Mask(10, 15), 0) << "tap at -2";
  EXPECT_EQ(Mask(10, 16), 1);
}

TEST_F(ResamplingCoreTest, AFractionalShiftTurnsThePhaseByTheDopplerCentroid) {
  // A constant signal at the centroid: exp(2 pi i fdc y / PRF), here a quarter turn a line.
  SetDoppler(250.0);
  for (int line = 0; line < height; ++line) {
    for (int sample = 0; sample < width; ++sample) {
      const double angle = std::numbers::pi / 2.0 * line;
      input_.Rows<PIXEL>()[line][sample] = {INT_16_CODEC::Encode(10000.0 * std::cos(angle)),
                                            INT_16_CODEC::Encode(10000.0 * std::sin(angle))};
    }
  }
  Resample(SHIFT_MAPPING(0.0, 0.5), 6, 16, "cubic_convolution");
  // Cubic weights at one half sum to 1 and are symmetric, so only the angle at 10.5 remains.
  const double angle = std::numbers::pi / 2.0 * 10.5;
  EXPECT_NEAR(Output(10, 10).re, 10000.0 * std::cos(angle), 1.0);
  EXPECT_NEAR(Output(10, 10).im, 10000.0 * std::sin(angle), 1.0);
}

TEST_F(ResamplingCoreTest, AKernelWithoutTapsStoresValidZeros) {
  Resample(SHIFT_MAPPING(0.0, 0.0), -4, 16, "-");
  EXPECT_EQ(Output(0, 0).re, 0);
  EXPECT_EQ(Mask(0, 0), 1);
}

TEST_F(ResamplingCoreTest, WorkerZeroReportsProgressByTenths) {
  Resample(SHIFT_MAPPING(0.0, 0.0), 6, 16);
  EXPECT_TRUE(log_.Has("INFO  : 0 % done")) << log_.Text();
  EXPECT_TRUE(log_.Has("INFO  : 90 % done"));
  EXPECT_FALSE(log_.Has("INFO  : 95 % done"));
}

}  // namespace
