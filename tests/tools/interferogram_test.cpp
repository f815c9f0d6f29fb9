#include <cmath>
#include <filesystem>

#include "common/pair_sums.h"
#include "interferogram/interferogram_command.h"
#include "scene/random.h"
#include "tools/command_test.h"

namespace {

constexpr int width = 1123;  // more than is summed up at a time
constexpr int height = 17;
constexpr int looks_range = 5;
constexpr int looks_azimuth = 3;

class INTERFEROGRAM : public COMMAND_TEST {
 protected:
  static VALUE Speckle(std::uint64_t seed, int x, int y) {
    return RandomSpeckle(
        seed, static_cast<std::uint64_t>(x) + std::uint64_t{width} * static_cast<std::uint64_t>(y));
  }
  static VALUE First(int x, int y) { return x == 7 && y == 4 ? VALUE(NAN, 1.0) : Speckle(1, x, y); }
  static VALUE Second(int x, int y) {
    return x == 8 && y == 5 ? VALUE() : std::polar(2.0, -0.4) * Speckle(1, x, y) + Speckle(2, x, y);
  }
  /// Nothing of the second cell of the first row.
  static bool IsValid(int x, int y) { return x % 4 != 0 && (x < 5 || x > 9 || y > 2); }

  static PAIR_SUMS SumsOfCell(int column, int row) {
    PAIR_SUMS sums;
    for (int y = looks_azimuth * row; y < looks_azimuth * (row + 1); ++y) {
      for (int x = looks_range * column; x < looks_range * (column + 1); ++x) {
        if (IsValid(x, y)) {
          sums.Add(PAIR_SUMS::Of(First(x, y), Second(x, y)));
        }
      }
    }
    return sums;
  }

  void MakeInputs() const {
    Complex("first", width, height, First, PIXEL_TYPE::C_FLT_15);
    Complex("second", width, height, Second, PIXEL_TYPE::C_FLT_15);
    Real(
        "mask", width, height, [](int x, int y) { return IsValid(x, y) ? 1.0 : 0.0; },
        PIXEL_TYPE::U_INT_8);
  }
  std::string Make(const char* out, const char* options) const {
    return Run(AddInterferogramCommand, "interferogram " + Path("first") + " " + Path("second") +
                                            " " + Path(out) + " --mask " + Path("mask") + options);
  }
};

TEST_F(INTERFEROGRAM, CellsAreTheSumsOfTheirValidPixels) {
  MakeInputs();
  Make("out.ras", " --looks 5,3");
  const auto value = [&](const char* name, int column, int row) {
    const RASTER_READER raster(Path(name));
    EXPECT_EQ(raster.Width(), width / looks_range);
    EXPECT_EQ(raster.Height(), height / looks_azimuth);
    VALUE pixel;
    raster.ReadLine(row, column, {&pixel, 1});
    return pixel;
  };
  for (int row = 0; row < height / looks_azimuth; ++row) {
    for (int column = 0; column < width / looks_range; ++column) {
      const PAIR_SUMS sums = SumsOfCell(column, row);
      const bool holds_data = sums.weight > 0.0;
      const VALUE mean = holds_data ? sums.cross / sums.weight : 0.0;
      EXPECT_LT(std::abs(value("out.ras", column, row) - mean), 1e-6);
      EXPECT_NEAR(value("out_coherence.ras", column, row).real(),
                  holds_data ? sums.Coherence() : 0.0, 1e-6);
      EXPECT_NEAR(value("out_master.ras", column, row).real(),
                  holds_data ? std::sqrt(sums.power_a / sums.weight) : 0.0, 1e-6);
      EXPECT_NEAR(value("out_slave.ras", column, row).real(),
                  holds_data ? std::sqrt(sums.power_b / sums.weight) : 0.0, 1e-6);
    }
  }
  EXPECT_EQ(SumsOfCell(1, 0).weight, 0.0);
}

TEST_F(INTERFEROGRAM, WhatCanNotBeMadeLeavesNothing) {
  MakeInputs();
  for (const auto& [out, options] : {std::pair("out.ras", " --looks 1124,1"),
                                     {"out.ras", " --looks 0"},
                                     {"second", " --looks 1"},
                                     {"out.nothing", " --looks 1"},
                                     {"out.png", " --looks 1"},
                                     {"out.ras", ""},
                                     {"none/out.ras", " --looks 1"}}) {
    EXPECT_ANY_THROW(Make(out, options)) << out << options;
  }
  EXPECT_FALSE(std::filesystem::exists(Path("out.ras")));
  EXPECT_NO_THROW(RASTER_READER(Path("second")));
}

}  // namespace
