#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "common/pair_sums.h"
#include "common/raster_reader.h"
#include "scene/scene_parameters.h"
#include "scene/scene_rasters.h"
#include "scene/scene_signal.h"
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
    const double range = Line(scene + "rg_map.ras", 6)[3].real();
    const double azimuth = Line(scene + "az_map.ras", 6)[3].real();
    const std::complex<double> expected = signal.At(42 + azimuth, 30 + range);
    const double tolerance = 1e-4 * options_.amplitude +
                             (type == PIXEL_TYPE::C_INT_16 ? 0.71 : std::abs(expected) / 2048);
    EXPECT_EQ(Line(scene + "rg_map.ras", 10).size(), 10U) << "past the last line and sample";
    EXPECT_LT(std::abs(Line(scene + "master.ras", 42)[30] - expected), tolerance);
    EXPECT_LT(std::abs(Line(scene + "slave.ras", 40)[33] - signal.AtPixel(40, 33)), tolerance);
  }
}

TEST_F(SCENE, NoiseOfItsOwnIsAddedToTheValidPixelsOfBothImages) {
  options_.point_targets = 0;
  const std::string clean = Write("clean");
  options_.noise = 0.5;
  const std::string noisy = Write("noisy");
  PAIR_SUMS noise;
  PAIR_SUMS images;
  int n_valid = 0;
  for (int line = 0; line < options_.n_lines; ++line) {
    const LINE mask = Line(clean + "slave_mask.ras", line);
    const LINE master = Line(clean + "master.ras", line);
    const LINE noisy_master = Line(noisy + "master.ras", line);
    const LINE slave = Line(clean + "slave.ras", line);
    const LINE noisy_slave = Line(noisy + "slave.ras", line);
    for (std::size_t sample = 0; sample < master.size(); ++sample) {
      EXPECT_EQ(noisy_slave[sample] == 0.0, mask[sample] == 0.0) << line << ", " << sample;
      n_valid += mask[sample] == 0.0 ? 0 : 1;
      images.Add(PAIR_SUMS::Of(master[sample], slave[sample]));
      noise.Add(PAIR_SUMS::Of(noisy_master[sample] - master[sample],
                              noisy_slave[sample] - slave[sample]));
    }
  }
  EXPECT_LT(n_valid, (options_.n_samples - 3) * options_.n_lines - 20) << "there is no hole";
  EXPECT_NEAR(std::sqrt(images.power_a / images.weight) / options_.amplitude, 1.0, 0.1);
  EXPECT_NEAR(std::sqrt(noise.power_a / noise.weight) / options_.amplitude, 0.5, 0.03);
  EXPECT_NEAR(std::sqrt(noise.power_b / noise.weight) / options_.amplitude, 0.5, 0.03);
  EXPECT_LT(noise.Coherence(), 0.05);
}

}  // namespace
