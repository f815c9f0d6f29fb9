#include "core/resample_input.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "base/error_exception.h"
#include "core/core_variant.h"
#include "core/pixel_codec.h"
#include "mapping/mapping_matrix.h"
#include "support/log_capture.h"

namespace {

constexpr int size = 16;

void FillDoppler(DOPPLER_CENTROID_MODEL& doppler) {
  DOPPLER_ANNOTATION annotation;
  annotation.prf = 1000.0;
  annotation.range_sampling_frequency = 1e7;
  annotation.azimuth_times.Create({0, 1});
  annotation.reference_times.Create({0, 1});
  annotation.coefficients.Create({0, 1}, {0, 1});
  doppler.Setup(annotation);
}

/// One step for each part, from memory alone: shifts of 2 samples and -1 line.
const std::map<std::string, std::function<void(RESAMPLE_INPUT&)>> parts = {
    {"slave",
     [](RESAMPLE_INPUT& input) {
       input.slave.CreateInMemory(0, 0, size - 1, size - 1, PIXEL_TYPE::C_INT_16);
       input.slave.Rows<INT_16_CODEC::PIXEL>()[7][10] = {100, -50};
     }},
    {"kernel",
     [](RESAMPLE_INPUT& input) {
       BASIC::TYPES::KernelType type;
       type.Assign("cubic_convolution");
       input.kernel.InitKernel(type, 6, 16, 0.0F);
     }},
    {"mapping",
     [](RESAMPLE_INPUT& input) {
       auto mapping = std::make_unique<MAPPING_MATRIX>();
       const std::vector<float> rg(9, 2.0F);
       const std::vector<float> az(9, -1.0F);
       mapping->Copy(rg.data(), az.data(), 3, 3, size / 2, size / 2);
       input.mapping = std::move(mapping);
     }},
    {"Doppler centroid", [](RESAMPLE_INPUT& input) { FillDoppler(input.doppler); }},
    {"output size", [](RESAMPLE_INPUT& input) { input.n_samples = input.n_lines = size; }},
};

TEST(ResampleInput, FromMemoryNeedsEveryPart) {
  const LOG_CAPTURE log;
  RESAMPLE_OUTPUT output;
  output.slave.CreateInMemory(0, 0, size - 1, size - 1, PIXEL_TYPE::C_INT_16);
  for (const auto& [missing, fill_missing] : parts) {
    RESAMPLE_INPUT input;
    for (const auto& [part, fill] : parts) {
      if (part != missing) {
        fill(input);
      }
    }
    EXPECT_THROW(input.Job(output), ERROR_ARGUMENT);
    EXPECT_EQ(log.Lines().back(), "ALARM : resampling without " + missing);
    fill_missing(input);
    RESAMPLE_THR_ARG argument;
    argument.Set(input.Job(output));
    argument.block = {0, size};
    CoreVariants().front().Resample(argument);
    const auto pixel = output.slave.Rows<INT_16_CODEC::PIXEL>()[8][8];
    EXPECT_EQ(pixel.re, 100);
    EXPECT_EQ(pixel.im, -50);
  }
}

TEST(ResampleInput, RefusesRastersOfOtherSizes) {
  const LOG_CAPTURE log;
  RESAMPLE_INPUT input;
  for (const auto& [part, fill] : parts) {
    fill(input);
  }
  RESAMPLE_OUTPUT output;
  EXPECT_THROW(input.Job(output), ERROR_ARGUMENT);
  output.slave.CreateInMemory(0, 0, size - 1, size - 1, PIXEL_TYPE::C_INT_16);
  output.mask.CreateInMemory(0, 0, size, size - 1, PIXEL_TYPE::U_INT_8);
  EXPECT_THROW(input.Job(output), ERROR_ARGUMENT);
  output.mask.Unmap();
  input.mask.CreateInMemory(0, 0, size - 1, size - 2, PIXEL_TYPE::U_INT_8);
  EXPECT_THROW(input.Job(output), ERROR_DATA);
}

}  // namespace
