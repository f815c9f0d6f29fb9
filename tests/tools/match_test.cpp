#include <cmath>
#include <numbers>

#include "common/offset_record.h"
#include "match/image_match.h"
#include "match/match_command.h"
#include "scene/periodic_signal.h"
#include "scene/random.h"
#include "tools/command_test.h"

namespace {

constexpr int image_side = 512;
constexpr double coherence = 0.8;

/// Azimuth spectra in cycles a line: where the centroid is, and how fast it moves.
struct SPECTRUM {
  double centre = 0.0;
  double sweep = 0.0;
  double bandwidth = 0.8;  ///< along both axes, of the sampled one
};

struct CASE {
  double range;
  double azimuth;
  SPECTRUM spectrum;
};

/// Correlated speckle: what the images have in common is moved exactly, by its Fourier sum.
class MATCH : public COMMAND_TEST, public testing::WithParamInterface<CASE> {
 protected:
  static PERIODIC_SIGNAL MakeSignal(std::uint64_t seed, double bandwidth) {
    std::array<PERIODIC_SIGNAL::PIXELS, PERIODIC_SIGNAL::layer_count> layers;
    std::uint64_t index = 0;
    for (auto& layer : layers) {
      for (int i = 0; i < image_side * image_side; ++i) {
        layer.push_back(1000.0 * RandomSpeckle(seed, index++));
      }
    }
    return PERIODIC_SIGNAL(image_side, bandwidth, std::move(layers));
  }

  /// The image whose common part has been moved by so much; each has a noise of its own.
  RASTER_READER MakeImage(const char* name, double range, double azimuth, SPECTRUM spectrum,
                          std::uint64_t noise_seed) const {
    const PERIODIC_SIGNAL common = MakeSignal(1, spectrum.bandwidth);
    const PERIODIC_SIGNAL noise = MakeSignal(noise_seed, spectrum.bandwidth);
    return Complex(name, image_side, image_side, [&](int x, int y) {
      const VALUE value = std::sqrt(coherence) * common.At(y - azimuth, x - range)[0] +
                          std::sqrt(1.0 - coherence) * noise.AtPixel(y, x)[1];
      return std::polar(1.0,
                        2.0 * std::numbers::pi * y * (spectrum.centre + 0.5 * spectrum.sweep * y)) *
             value;
    });
  }
};

TEST_P(MATCH, ShiftsAreAsGoodAsAmplitudesTellAndWithoutBias) {
  const auto& [range, azimuth, spectrum] = GetParam();
  const RASTER_READER master = MakeImage("master", 0.0, 0.0, spectrum, 2);
  const RASTER_READER slave = MakeImage("slave", range, azimuth, spectrum, 3);
  const WINDOW_SHAPE shape;
  const MATCHES matches = MatchImages(
      master, slave, shape, MATCH_GRID::Over(master, shape, {0, 0}, {40, 40}), [](double) {});
  double sums[2] = {};
  double squares[2] = {};
  int count = 0;
  for (const MATCHED_SHIFT& shift : matches.shifts) {
    if (shift.snr > 6.0) {
      const double errors[2] = {shift.range - range, shift.azimuth - azimuth};
      for (int axis = 0; axis < 2; ++axis) {
        sums[axis] += errors[axis];
        squares[axis] += errors[axis] * errors[axis];
      }
      ++count;
    }
  }
  // sqrt(3 / (10 N)) sqrt(2 + 5 g^2 - 7 g^4) / (pi g^2) resolution cells with N independent
  // samples.
  const double g2 = coherence * coherence;
  const double expected = std::sqrt(0.3) / (64.0 * spectrum.bandwidth) *
                          std::sqrt(2.0 + 5.0 * g2 - 7.0 * g2 * g2) / (std::numbers::pi * g2) /
                          spectrum.bandwidth;
  const double allowed = spectrum.bandwidth > 0.9 ? 1.5 : 1.2;
  ASSERT_GT(count, 80);
  for (int axis = 0; axis < 2; ++axis) {
    EXPECT_LT(std::abs(sums[axis] / count), 0.005);
    EXPECT_LT(std::sqrt(squares[axis] / count), allowed * expected);
  }
}

INSTANTIATE_TEST_SUITE_P(ShiftsAndSpectra, MATCH,
                         testing::Values(CASE{3.0, -2.0, {}}, CASE{0.25, 7.9, {0.2, 0.0}},
                                         CASE{-20.5, 0.5, {0.5, 0.0}},
                                         CASE{3.37, -2.61, {0.5, 0.0, 0.97}},
                                         CASE{61.37, -80.75, {0.45, 0.007}}));

TEST_F(MATCH, RastersAndRecordTellWhereTheWindowsWere) {
  MakeImage("master", 0.0, 0.0, {}, 2);
  MakeImage("slave", 2.5, -1.0, {}, 3);
  Run(AddMatchCommand, "match " + Path("master") + " " + Path("slave") + " --out " + Path("m") +
                           " --window 48,32 --posting 100 --start 123.5,60");
  const RASTER_READER snr(Path("m_snr.ras"));
  EXPECT_EQ(snr.Width(), 4);
  EXPECT_EQ(snr.Height(), 5);
  std::vector<VALUE> values(4);
  RASTER_READER(Path("m_range.ras")).ReadLine(2, 0, values);
  EXPECT_NEAR(values[0].real(), 2.5, 0.1);
  RASTER_READER(Path("m_azimuth.ras")).ReadLine(2, 0, values);
  EXPECT_NEAR(values[0].real(), -1.0, 0.1);
  const OFFSET_RECORD record = OFFSET_RECORD::Read(Path("m.pool"));
  EXPECT_EQ(record.posting.azimuth, 100);
  EXPECT_EQ(record.first.range, 123.5);
  EXPECT_EQ(record.first.azimuth, 60.5) << "a window of 32 lines has its centre between two";
  EXPECT_EQ(record.master_size.range, image_side);
}

TEST_F(MATCH, ImagesWithoutCommonFeaturesAreRefused) {
  MakeImage("master", 0.0, 0.0, {}, 2);
  const PERIODIC_SIGNAL other = MakeSignal(5, 0.8);
  Complex("other", image_side, image_side, [&](int x, int y) { return other.AtPixel(y, x)[0]; });
  Complex("flat", image_side, image_side, [](int, int) { return 7.0; });
  Real("real", image_side, image_side, [](int, int) { return 7.0; });
  const auto match = [&](const char* slave, const char* options = "") {
    Run(AddMatchCommand,
        "match " + Path("master") + " " + Path(slave) + " --out " + Path("m") + options);
  };
  EXPECT_THROW(match("other"), std::runtime_error);
  EXPECT_THROW(match("flat"), std::runtime_error);
  EXPECT_THROW(match("real"), std::invalid_argument);
  for (const char* options :
       {" --window 600", " --start 1,1", " --start nan,nan", " --posting 0"}) {
    EXPECT_ANY_THROW(match("master", options)) << options;
  }
}

}  // namespace
