#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "common/raster_reader.h"
#include "scene/scene_parameters.h"
#include "scene/scene_rasters.h"
#include "scene/scene_signal.h"
#include "scene/scene_warp.h"
#include "support/temporary_directory.h"

namespace {

using LINE = std::vector<std::complex<double>>;

class SCENE : public testing::Test {
 protected:
  SCENE() {
    options_.n_samples = 90;
    options_.n_lines = 70;
    options_.tile = 64;
    options_.subsampling_range = 10;
    options_.subsampling_azimuth = 7;
  }

  /// Writes the scene into a new folder, whose name is returned.
  std::string Write(const char* folder) {
    options_.directory = directory_.File(folder);
    std::filesystem::create_directory(options_.directory);
    WriteSceneRasters(options_);
    WriteSceneParameters(options_);
    return options_.directory + "/";
  }

  LINE Line(const std::string& path, std::int64_t line) const {
    const RASTER_READER raster(path);
    LINE values(static_cast<std::size_t>(raster.Width()));
    raster.ReadLine(line, 0, values);
    return values;
  }

  SCENE_OPTIONS options_;
  TEMPORARY_DIRECTORY directory_;
};

TEST_F(SCENE, FilesDependOnTheOptionsAlone) {
  options_.noise = 0.1;
  const std::string first = Write("first");
  const std::string again = Write("again");
  options_.seed = 2;
  const std::string other = Write("other");
  int n_files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(first)) {
    const std::string name = entry.path().filename();
    EXPECT_EQ(ReadFile(first + name), ReadFile(again + name)) << name;
    ++n_files;
  }
  EXPECT_EQ(n_files, 8);
  for (const char* name : {"master.ras", "slave.ras", "slave.pool"}) {
    EXPECT_NE(ReadFile(first + name), ReadFile(other + name)) << name;
  }
}

TEST_F(SCENE, MasterIsTheSignalAtTheMappedPositions) {
  for (const PIXEL_TYPE type : {PIXEL_TYPE::C_INT_16, PIXEL_TYPE::C_FLT_2}) {
    options_.pixel_type = type;
    const std::string scene = Write(type == PIXEL_TYPE::C_INT_16 ? "integer" : "half");
    const SCENE_SIGNAL signal(options_);
    const SCENE_WARP warp(options_);
    const std::complex<double> expected =
        signal.At(40 + warp.AzimuthShift(33, 40), 33 + warp.RangeShift(33, 40));
    const double tolerance = type == PIXEL_TYPE::C_INT_16 ? 0.71 : std::abs(expected) / 2048;
    EXPECT_LT(std::abs(Line(scene + "master.ras", 40)[33] - expected), tolerance);
    EXPECT_LT(std::abs(Line(scene + "slave.ras", 40)[33] - signal.AtPixel(40, 33)), tolerance);
  }
}

TEST_F(SCENE, SlaveIsZeroWhereItsMaskIs) {
  const std::string scene = Write("scene");
  int n_invalid = 0;
  for (int line = 0; line < options_.n_lines; ++line) {
    const LINE mask = Line(scene + "slave_mask.ras", line);
    const LINE slave = Line(scene + "slave.ras", line);
    for (std::size_t sample = 0; sample < mask.size(); ++sample) {
      EXPECT_EQ(slave[sample] == 0.0, mask[sample] == 0.0) << line << ", " << sample;
      n_invalid += mask[sample] == 0.0 ? 1 : 0;
    }
  }
  EXPECT_GT(n_invalid, 3 * options_.n_lines + 20);
}

TEST_F(SCENE, MatricesHoldTheShiftsAndReachPastTheImage) {
  const std::string scene = Write("scene");
  const SCENE_WARP warp(options_);
  const RASTER_READER range(scene + "rg_map.ras");
  EXPECT_EQ(range.Type(), PIXEL_TYPE::FLT_6);
  EXPECT_GT((range.Width() - 1) * options_.subsampling_range, options_.n_samples - 1);
  EXPECT_GT((range.Height() - 1) * options_.subsampling_azimuth, options_.n_lines - 1);
  EXPECT_NEAR(Line(scene + "rg_map.ras", 9)[4].real(), warp.RangeShift(40, 63), 1e-6);
  EXPECT_NEAR(Line(scene + "az_map.ras", 9)[4].real(), warp.AzimuthShift(40, 63), 1e-6);
}

TEST_F(SCENE, NoiseIsAddedToBothImages) {
  const std::string clean = Write("clean");
  options_.noise = 0.5;
  const std::string noisy = Write("noisy");
  double power[2] = {};
  std::complex<double> cross = 0.0;
  for (int line = 0; line < options_.n_lines; ++line) {
    const LINE master = Line(clean + "master.ras", line);
    const LINE noisy_master = Line(noisy + "master.ras", line);
    const LINE slave = Line(clean + "slave.ras", line);
    const LINE noisy_slave = Line(noisy + "slave.ras", line);
    for (std::size_t sample = 0; sample < master.size(); ++sample) {
      const std::complex<double> master_noise = noisy_master[sample] - master[sample];
      const std::complex<double> slave_noise = noisy_slave[sample] - slave[sample];
      power[0] += std::norm(master_noise);
      power[1] += std::norm(slave_noise);
      cross += master_noise * std::conj(slave_noise);
    }
  }
  const double n_pixels = options_.n_samples * options_.n_lines;
  EXPECT_NEAR(std::sqrt(power[0] / n_pixels) / options_.amplitude, 0.5, 0.03);
  EXPECT_NEAR(std::sqrt(power[1] / n_pixels) / options_.amplitude, 0.5, 0.03);
  EXPECT_LT(std::abs(cross) / std::sqrt(power[0] * power[1]), 0.05);
}

}  // namespace
