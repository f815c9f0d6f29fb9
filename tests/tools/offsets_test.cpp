#include <cmath>
#include <fstream>
#include <random>
#include <vector>

#include "common/offset_record.h"
#include "common/polynomial_fit.h"
#include "compare/compare_command.h"
#include "offsets/node_matrices.h"
#include "offsets/offset_source.h"
#include "offsets/offsets_command.h"
#include "scene/random.h"
#include "scene/scene_command.h"
#include "scene/scene_warp.h"
#include "tools/command_test.h"
#include "vrt/vrt_command.h"

namespace {

constexpr POLYNOMIAL polynomial = {-7.5, 2e-3, -1e-3, 3e-8, -2e-7, 1e-7};

/// Points of the polynomial over 3000 x 2000 pixels with noise of 0.05, a part of them outliers.
std::vector<FIELD_POINT> NoisyPoints(double outliers) {
  std::mt19937 random;
  std::normal_distribution<double> noise(0.0, 0.05);
  std::uniform_real_distribution<double> unit;
  std::vector<FIELD_POINT> points;
  for (double y = 0.0; y < 2000.0; y += 40.0) {
    for (double x = 0.0; x < 3000.0; x += 30.0) {
      const double error = unit(random) < outliers ? 5.0 + 40.0 * unit(random) : noise(random);
      points.push_back({x, y, Evaluate(polynomial, x, y) + error});
    }
  }
  return points;
}

class POLYNOMIAL_FITS : public testing::TestWithParam<double> {};

TEST_P(POLYNOMIAL_FITS, ThePolynomialIsFoundBetweenOutliersOnOneSide) {
  const std::vector<FIELD_POINT> points = NoisyPoints(GetParam());
  const POLYNOMIAL_FIT fit = FitPolynomial(points, 4.0);
  for (const FIELD_POINT& point : points) {
    ASSERT_NEAR(Evaluate(fit.coefficients, point.x, point.y),
                Evaluate(polynomial, point.x, point.y), 0.015);
  }
  EXPECT_EQ(fit.points, 5000);
  EXPECT_NEAR(static_cast<double>(fit.rejected) / 5000, GetParam(), 0.02);
  EXPECT_NEAR(fit.residual_rms, 0.05, 0.002);
  EXPECT_LT(fit.residual_max, 0.3);
}

INSTANTIATE_TEST_SUITE_P(ShareOfOutliers, POLYNOMIAL_FITS, testing::Values(0.0, 0.1, 0.25, 0.4));

TEST(POLYNOMIAL_FIT, PointsThatDetermineNothingAreRefused) {
  EXPECT_THROW(FitPolynomial({}, 4.0), std::runtime_error);
  std::vector<FIELD_POINT> on_two_lines;
  for (int i = 0; i < 1000; ++i) {
    on_two_lines.push_back({0.37 * i, 100.0 * (i % 2), 1.0});
  }
  EXPECT_THROW(FitPolynomial(on_two_lines, 4.0), std::runtime_error);
}

constexpr POLYNOMIAL no_trend = {};

TEST(NODE_MATRICES, OffsetsCoarserThanTheNodesAreInterpolatedBilinearly) {
  const NODE_AXIS x = NODE_AXIS::For(33, 4, 16.0);
  const NODE_AXIS y = NODE_AXIS::For(17, 4, 16.0);
  EXPECT_EQ(x.n_nodes, 10);
  NODE_MATRICES matrices(x, y, no_trend, no_trend);
  const double range[2][3] = {{1.0, 5.0, 3.0}, {2.0, -1.0, 7.0}};
  for (int row = 0; row < 2; ++row) {
    for (int column = 0; column < 3; ++column) {
      matrices.Add(16.0 * column, 16.0 * row, range[row][column], 10.0);
    }
  }
  const NODE_COUNTS counts = matrices.Finish(33, 17);
  EXPECT_DOUBLE_EQ(matrices.Range(4, 0), 5.0);
  EXPECT_DOUBLE_EQ(matrices.Range(1, 1),
                   0.75 * (0.75 * 1.0 + 0.25 * 5.0) + 0.25 * (0.75 * 2.0 + 0.25 * -1.0));
  EXPECT_DOUBLE_EQ(matrices.Azimuth(9, 5), 10.0);
  EXPECT_EQ(counts.nodes, 60);
  EXPECT_EQ(counts.in_gaps, 0);
}

TEST(NODE_MATRICES, GapsAreFilledFromAllSidesAndEdgesContinued) {
  const NODE_AXIS x = NODE_AXIS::For(81, 8, 1.0);
  const NODE_AXIS y = NODE_AXIS::For(61, 8, 1.0);
  const POLYNOMIAL trend = {2.0, 0.0, 0.5, 0.0, 0.0, 0.0};
  NODE_MATRICES matrices(x, y, trend, no_trend);
  const auto in_hole = [](int sample, int line) {
    return std::abs(sample - 40) < 14 && std::abs(line - 32) < 14;
  };
  for (int line = 0; line < 61; ++line) {
    for (int sample = 0; sample < 81; ++sample) {
      if (!in_hole(sample, line)) {
        matrices.Add(sample, line, 2.0 + 0.5 * sample, line);
      }
    }
  }
  const NODE_COUNTS counts = matrices.Finish(81, 61);
  EXPECT_EQ(counts.in_gaps, 9);
  EXPECT_EQ(counts.past_edges, 12 + 9 - 1) << "the nodes behind the last sample and line";
  EXPECT_NEAR(matrices.Range(5, 4), 22.0, 1e-9) << "by the trend";
  EXPECT_NEAR(matrices.Azimuth(5, 4), 32.0, 1e-9) << "by the neighbours";
  EXPECT_NEAR(matrices.Range(11, 8), 46.0, 1e-9);
  EXPECT_NEAR(matrices.Azimuth(2, 2), 16.0, 1e-9) << "offsets around";
}

/// Offsets of a scene, with noise, outliers and gaps, as another processor would hand them over.
class OFFSETS : public COMMAND_TEST {
 protected:
  OFFSETS() {
    Run(AddSceneCommand, "scene " + Path("") + " --samples 320 --lines 240 --noise 0.05");
    warp_.n_samples = 320;
    warp_.n_lines = 240;
  }

  /// Writes rg.off.vrt and az.off.vrt, with an offset every so many pixels from (first, first) on.
  void WriteOffsets(int posting, int first, double sign) const {
    const SCENE_WARP warp(warp_);
    const auto write = [&](const char* name,
                           double (SCENE_WARP::*shift)(double, double) const noexcept) {
      Real(name, (warp_.n_samples - first) / posting, (warp_.n_lines - first) / posting,
           [&](int column, int line) {
             const int x = first + posting * column;
             const int y = first + posting * line;
             const bool is_gap = (x - 200) * (x - 200) + (y - 60) * (y - 60) < 40 * 40;
             const bool is_outlier = (7 * x + 13 * y) % 31 < 3;
             return is_gap ? -9999.0 : sign * (warp.*shift)(x, y) + (is_outlier ? 25.0 : 0.0);
           });
      Run(AddVrtCommand, "vrt " + Path(name));
    };
    write("rg.off", &SCENE_WARP::RangeShift);
    write("az.off", &SCENE_WARP::AzimuthShift);
  }

  std::string MakeMapping(const std::string& options) const {
    return Run(AddOffsetsCommand, "offsets " + Path("rg.off.vrt") + " " + Path("az.off.vrt") +
                                      " --nodata -9999 " + options);
  }

  void Resample(const std::string& output, const std::string& arguments = "") const {
    Shell("cd " + Path("") + " && " RESAMPLE_PROGRAM " -SlaveOut " + output + " " + arguments);
  }
  void ExpectCoherence(const char* least, const char* a, const char* b) const {
    EXPECT_NO_THROW(
        Run(AddCompareCommand, "compare " + Path(a) + " " + Path(b) + " --min-coherence " + least));
  }

  SCENE_OPTIONS warp_;
};

TEST_F(OFFSETS, MatricesResampleAsThoseOfTheScene) {
  Resample("expected.ras");
  WriteOffsets(1, 0, 1.0);
  const std::string report =
      MakeMapping("--subsampling 16,16 --max-deviation 2 --pool " + Path("insar.pool") +
                  " --range-map " + Path("rg_map.ras") + " --azimuth-map " + Path("az_map.ras"));
  EXPECT_NE(report.find("master: 320 x 240\nnodes: 21 x 16\n"), std::string::npos) << report;
  Resample("full.ras");
  ExpectCoherence("0.99999", "full.ras", "expected.ras");

  WriteOffsets(4, 2, -1.0);
  MakeMapping(
      "--subsampling 12,20 --max-deviation 2 --negate --posting 4,4 --first 2,2"
      " --size 320,240 --pool " +
      Path("insar.pool") + " --range-map " + Path("rg_map.ras") + " --azimuth-map " +
      Path("az_map.ras"));
  Resample("coarse.ras");
  ExpectCoherence("0.999", "coarse.ras", "expected.ras");
}

TEST_F(OFFSETS, PolynomialsResampleAsThoseOfTheScene) {
  Resample("expected.ras", "-MAPPING_FORMAT polynomial");
  WriteOffsets(1, 0, 1.0);
  const std::string report = MakeMapping("--polynomial " + Path("insar.pool"));
  EXPECT_NE(report.find("range rejected: "), std::string::npos) << report;
  Resample("polynomial.ras");
  ExpectCoherence("0.99999", "polynomial.ras", "expected.ras");
}

TEST_F(OFFSETS, ImpossibleRequestsAreRefused) {
  WriteOffsets(1, 0, 1.0);
  EXPECT_THROW(MakeMapping(""), CLI::RequiredError);
  EXPECT_THROW(MakeMapping("--subsampling 0,4"), CLI::ValidationError);
  EXPECT_THROW(MakeMapping("--subsampling 4,4 --band 1,2"), std::runtime_error);
  for (const char* posting : {"nan,100", "-1,1", "1e300,1"}) {
    EXPECT_ANY_THROW(MakeMapping(std::string("--subsampling 4,4 --posting ") + posting)) << posting;
  }
  EXPECT_NO_THROW(MakeMapping("--subsampling 2147483647,65535 --range-map " + Path("a") +
                              " --azimuth-map " + Path("b")));
  const std::string matrices = "--subsampling 4,4 --azimuth-map " + Path("map") + " --range-map ";
  for (const std::string& taken : {Path("map"), Path("./map"), Path("rg.off")}) {
    EXPECT_THROW(MakeMapping(matrices + taken), std::invalid_argument);
    EXPECT_THROW(MakeMapping(matrices + Path("rg") + " --pool " + taken), std::invalid_argument);
  }
  for (const char* raster : {"slave.ras", "rg_map.ras"}) {  // complex, and of another size
    Run(AddVrtCommand, "vrt " + Path(raster));
    EXPECT_THROW(Run(AddOffsetsCommand, "offsets " + Path(raster) + ".vrt " + Path("az.off.vrt") +
                                            " --subsampling 4,4"),
                 std::invalid_argument)
        << raster;
  }
  EXPECT_THROW(Run(AddOffsetsCommand,
                   "offsets " + Path("rg.off.vrt") + " " + Path("missing") + " --subsampling 4,4"),
               std::runtime_error);
}

/// Hills that no polynomial follows, offsets every 64 pixels, and a share of blunders among them.
class HILLS : public COMMAND_TEST, public testing::WithParamInterface<double> {
 protected:
  static constexpr int posting = 64;
  static constexpr int size = 4096;
  static constexpr int subsampling = 32;

  static double Shift(double x, double y) {
    return 2.0 + 1e-3 * x + 2.0 * std::sin(x / 300.0) * std::cos(y / 350.0);
  }
  OFFSET At(int column, int row) const {
    const double x = 31.5 + posting * column;
    const double y = 31.5 + posting * row;
    const auto index = static_cast<std::uint64_t>(size * row + column);
    const bool is_blunder = RandomUniform(1, index) < GetParam();
    const auto measured = [&](double shift, std::uint64_t seed) {
      const double unit = 2.0 * RandomUniform(seed, index) - 1.0;
      return shift + (is_blunder ? 8.0 : 0.03) * unit;
    };
    return {x, y, measured(Shift(x, y), 2), measured(-Shift(x, y), 3), 20.0};
  }

  static std::string MakeMatrices(const std::string& arguments) {
    return Run(AddOffsetsCommand, "offsets " + arguments);
  }
  std::string Results() const {
    return " --subsampling 32,32 --range-map " + Path("rg") + " --azimuth-map " + Path("az");
  }
  /// Against the shifts of the hills, within the offsets.
  double RmsError(const char* map, double sign) const {
    const RASTER_READER nodes(Path(map));
    EXPECT_EQ(nodes.Width(), (size - 1) / subsampling + 2);
    std::vector<VALUE> row(static_cast<std::size_t>(nodes.Width()));
    double squares = 0.0;
    int count = 0;
    for (int line = 1; line < size / subsampling - 1; ++line) {
      nodes.ReadLine(line, 0, row);
      for (int column = 1; column < size / subsampling - 1; ++column) {
        const double truth = sign * Shift(subsampling * column, subsampling * line);
        squares += std::pow(row[static_cast<std::size_t>(column)].real() - truth, 2);
        ++count;
      }
    }
    return std::sqrt(squares / count);
  }
};

TEST_P(HILLS, BlundersAreFoundByTheirNeighboursAndReplaced) {
  const auto write = [&](const char* name, double OFFSET::*value) {
    Real(name, size / posting, size / posting,
         [&](int column, int row) { return At(column, row).*value; });
  };
  write("m_range.ras", &OFFSET::range);
  write("m_azimuth.ras", &OFFSET::azimuth);
  write("m_snr.ras", &OFFSET::snr);
  OFFSET_RECORD{{posting, posting}, {31.5, 31.5}, {size, size}}.Write(Path("m.pool"));
  testing::internal::CaptureStderr();
  MakeMatrices(Path("m_range.ras") + " " + Path("m_azimuth.ras") + Results());
  const bool is_warned =
      testing::internal::GetCapturedStderr().find("more than 5 %") != std::string::npos;
  EXPECT_EQ(is_warned, GetParam() > 0.06);
  EXPECT_LT(RmsError("rg", 1.0), 0.04);
  EXPECT_LT(RmsError("az", -1.0), 0.04);
  for (const char* first : {"m_azimuth.ras", "m_range.ras"}) {
    EXPECT_THROW(MakeMatrices(Path(first) + " " + Path("m_range.ras") + Results()),
                 std::invalid_argument);
  }
}

TEST_P(HILLS, TablesWithColumnsInAnyOrderAreRead) {
  std::ofstream table(Path("table"));
  const char* const gap = GetParam() > 0.06 ? "; " : " ";
  table << "line" << gap << "sample" << gap << "azimuth\r\n# a comment\n\n";
  for (int i = 0; i < size / posting * size / posting; ++i) {
    const OFFSET offset = At(i % (size / posting), i / (size / posting));
    table << offset.y << gap << offset.x << gap << -offset.azimuth << gap << "good" << gap
          << -offset.range << "\r\n";
  }
  table.close();
  const std::string arguments =
      Path("table") + " --negate --columns line,sample,azimuth,-,range" + Results();
  MakeMatrices(arguments + " --size 4096,4096");
  EXPECT_LT(RmsError("rg", 1.0), 0.04);
  EXPECT_LT(RmsError("az", -1.0), 0.04);
  EXPECT_THROW(MakeMatrices(arguments), std::invalid_argument) << "the size of the master";
  EXPECT_THROW(MakeMatrices(Path("table") + Results()), std::runtime_error);
  EXPECT_THROW(MakeMatrices(Path("table") + " --columns line,sample,range" + Results()),
               std::invalid_argument);
}

INSTANTIATE_TEST_SUITE_P(ShareOfBlunders, HILLS, testing::Values(0.0, 0.12, 0.2));

TEST_F(OFFSETS, WeakOffsetsAreGapsAndAForgottenPostingIsTold) {
  WriteOffsets(8, 0, 1.0);
  Real("snr", 40, 30, [](int x, int y) { return (7 * 8 * x + 13 * 8 * y) % 31 < 3 ? 2.0 : 9.0; });
  testing::internal::CaptureStderr();
  const std::string report =
      MakeMapping("--subsampling 8,8 --snr " + Path("snr") + " --min-snr 3 --posting 8,8" +
                  " --range-map " + Path("a") + " --azimuth-map " + Path("b"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_NE(report.find("outliers among their neighbours: 0"), std::string::npos) << report;
  testing::internal::CaptureStderr();
  MakeMapping("--subsampling 8,8 --size 320,240 --range-map " + Path("a") + " --azimuth-map " +
              Path("b"));
  EXPECT_NE(testing::internal::GetCapturedStderr().find("--posting"), std::string::npos);
}

}  // namespace
