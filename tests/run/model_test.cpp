#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "core/codec_visit.h"
#include "run_folder.h"
#include "support/reference_model.h"

namespace {

using testing::Range;

/// The ways to resample. One that the processor lacks is replaced by the fastest that it has.
constexpr std::array variants = {"plain", "x86-64", "x86-64-v3", "x86-64-v4"};

// Which patterns are stored for what lies beyond the range, and which are finite.

bool IsAtEnd(INT_16_CODEC, std::uint16_t part) {
  return part == 0x7FFF || part == 0x8000;
}
bool IsFinite(INT_16_CODEC, std::uint16_t) {
  return true;
}
bool IsAtEnd(BINARY_16_CODEC, std::uint16_t part) {
  return (part & 0x7FFFU) == 0x7BFF;
}
bool IsFinite(BINARY_16_CODEC, std::uint16_t part) {
  return (part & 0x7FFFU) <= 0x7BFF;
}

/// Whether the log tells how many components the scene and its output have that a user should know
/// of. Non-finite ones of the slave are only looked for when they have reached the output.
template <class CODEC>
void ExpectFindings(CODEC codec, const SCENE& scene, const GRID<RAW_PIXEL>& image,
                    const RUN_FOLDER& folder) {
  int at_ends = 0;
  bool is_reached = false;
  for (const RAW_PIXEL& pixel : image.values) {
    for (const std::uint16_t part : {pixel.re, pixel.im}) {
      at_ends += IsAtEnd(codec, part) ? 1 : 0;
      is_reached |= !IsFinite(codec, part);
    }
  }
  int non_finite = 0;
  for (std::size_t i = 0; i < scene.slave.values.size(); ++i) {
    const RAW_PIXEL pixel = scene.slave.values[i];
    const int of_pixel = (IsFinite(codec, pixel.re) ? 0 : 1) + (IsFinite(codec, pixel.im) ? 0 : 1);
    non_finite += !scene.mask || scene.mask->values[i] != 0 ? of_pixel : 0;
  }
  const std::string begin =
      "  - Saturated output components: " + std::to_string(at_ends) + ", non-finite inputs under ";
  const auto told = [&](int count) {
    const auto lines = folder.LogLines(info_begin + begin);
    return lines == std::vector<std::string>{"valid mask: " + std::to_string(count)};
  };
  EXPECT_TRUE(told(non_finite) || (!is_reached && told(0))) << begin << non_finite;
}

/// Runs the program in the folder and compares its outputs with the model. `number` chooses the
/// variant and the number of workers.
MODEL_COMPARISON RunAndCompare(const SCENE& scene, RUN_FOLDER& folder, unsigned number) {
  folder.environment["PARALLEL"] = std::to_string(number % 7 + 1);
  folder.environment["RESAMPLE_SIMD"] = variants[number % variants.size()];
  ExpectSuccess(folder, folder.Run());
  const auto image = ReadRaster<RAW_PIXEL>(folder.Path("out.ras"), scene.n_samples, scene.n_lines,
                                           scene.RasterType());
  VisitCodec(scene.pixel_type, [&](auto codec) { ExpectFindings(codec, scene, image, folder); });
  return CompareWithModel(scene, image,
                          ReadRaster<std::uint8_t>(folder.Path("out_mask.ras"), scene.n_samples,
                                                   scene.n_lines, RASTER_BYTE));
}

MODEL_COMPARISON RunAndCompare(const SCENE& scene, unsigned number) {
  RUN_FOLDER folder(scene);
  return RunAndCompare(scene, folder, number);
}

/// Puts a colour map of so many bytes between the header and the pixels of a raster.
void InsertColourMap(const std::string& path, std::size_t length) {
  std::string bytes = ReadFile(path);
  bytes[27] = 1;  // last bytes of the header's two words for it
  bytes[31] = static_cast<char>(length);
  WriteFile(path, bytes.insert(raster_header_size, length, 'x'));
}

class RandomScenes : public testing::TestWithParam<unsigned> {};

TEST_P(RandomScenes, EveryComponentAndEveryMaskByteIsTheModels) {
  int computed = 0;
  int valid = 0;
  for (unsigned seed = GetParam(); seed < GetParam() + SceneCombinations(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const MODEL_COMPARISON comparison = RunAndCompare(RandomScene(seed), seed);
    ASSERT_EQ(comparison.difference, "");
    computed += comparison.computed_pixels;
    valid += comparison.valid_pixels;
  }
  EXPECT_GT(computed, 20000) << "the scenes hardly overlap their grids";
  EXPECT_GT(valid, computed / 2);
  EXPECT_LT(valid, computed) << "no mask hides a pixel";
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomScenes,
                         Range(0U, repetitions* SceneCombinations(), SceneCombinations()));

/// A change to the ordinary scene and how much of it can be computed.
struct SPECIAL_SCENE {
  const char* name;
  float range_shift;
  float azimuth_shift;
  int kernel_length;
  int subpix_positions;
  int computed_pixels;  ///< of the 70 x 60 grid
  const char* kernel_type = "truncated_sinc_kaiser_weight";
};

TEST(SpecialScenes, AgreeWithTheModel) {
  // The slave has 72 x 60 pixels; a kernel of length 8 keeps 4 pixels away from its edges.
  const std::vector<SPECIAL_SCENE> special_scenes = {
      {"positions exactly on the margins", 2.0F, -2.0F, 8, 64, 63 * 51},
      {"fraction that wraps to row 0 of the kernel", 0.99F, 0.96F, 8, 10, 64 * 52},
      {"odd kernel, one pixel less to the right and below", 0.0F, 0.0F, 9, 64, 62 * 50},
      {"kernel as large as the image", 1.25F, -0.75F, 56, 1, 16 * 4},
      {"kernel larger than the image", 1.25F, -0.75F, 62, 64, 0},
      {"kernel without taps", 0.0F, 0.0F, 0, 64, 69 * 59, "-"},
      {"window of length 0, not a number in the middle", 1.25F, -0.75F, 0, 64, 66 * 54},
  };
  for (const SPECIAL_SCENE& special : special_scenes) {
    SCOPED_TRACE(special.name);
    SCENE scene = OrdinaryScene();
    auto& matrix = std::get<MATRIX_MAPPING_DATA>(scene.mapping);
    matrix.range = GRID<float>(11, 10, special.range_shift);
    matrix.azimuth = GRID<float>(11, 10, special.azimuth_shift);
    scene.kernel_type = special.kernel_type;
    scene.kernel_length = special.kernel_length;
    scene.subpix_positions = special.subpix_positions;
    for (unsigned number = 0; number < variants.size(); ++number) {
      const MODEL_COMPARISON comparison = RunAndCompare(scene, number);
      EXPECT_EQ(comparison.difference, "") << variants[number];
      EXPECT_EQ(comparison.computed_pixels, special.computed_pixels) << variants[number];
    }
  }
}

TEST(SpecialScenes, PixelsBehindColourMapsOfOddLengthsAgreeWithTheModel) {
  for (const std::size_t length : {1, 3}) {
    for (const unsigned seed : {0U, 1U, 2U, 3U}) {  // both pixel types and mappings
      const SCENE scene = RandomScene(seed);
      for (unsigned number = 0; number < variants.size(); ++number) {
        SCOPED_TRACE(testing::Message() << length << ", seed " << seed << ", " << variants[number]);
        RUN_FOLDER folder(scene);
        for (const char* raster : {"slave.ras", "mask.ras", "rg.map", "az.map"}) {
          if (folder.Exists(raster)) {
            InsertColourMap(folder.Path(raster), length);
          }
        }
        EXPECT_EQ(RunAndCompare(scene, folder, number).difference, "");
      }
    }
  }
}

struct WORKER_REQUEST {
  const char* parallel;   ///< environment
  const char* no_of_cpu;  ///< "": not given
  std::size_t workers;
};

TEST(Workers, AnyNumberOfThemWritesTheSameBytes) {
  const auto online = static_cast<std::size_t>(::sysconf(_SC_NPROCESSORS_ONLN));
  const std::vector<WORKER_REQUEST> requests = {
      {"1", "", 1},     {"3", "", 3},      {"3", "2", 2},    {"1", "7", 7},
      {"3", "0", 3},    {"3", "-4", 3},    {"3", "many", 3}, {"many", "", online},
      {"", "", online}, {"0", "", online}, {"500", "", 61},  {"99999999999999999999", "", 61}};
  for (const unsigned seed : {0U, 3U}) {
    SCENE scene = RandomScene(seed);
    scene.n_lines = 61;
    RUN_FOLDER folder(scene);
    folder.parameters["lfl"] = "TRACE";
    std::string outputs;
    for (const auto& [parallel, no_of_cpu, workers] : requests) {
      SCOPED_TRACE("seed " + std::to_string(seed) + ", " + parallel + ", " + no_of_cpu);
      folder.environment["PARALLEL"] = parallel;
      folder.parameters.erase("no_of_cpu");
      if (*no_of_cpu != '\0') {
        folder.parameters["no_of_cpu"] = no_of_cpu;
      }
      std::filesystem::remove(folder.Path("log.run"));
      ExpectSuccess(folder, folder.Run());
      EXPECT_EQ(folder.LogLines("TRACE : resample : Thread ").size(), workers);
      const std::string warning = "PARALLEL is not a number of at least 1: \"" +
                                  std::string(parallel) + "\", using the " +
                                  std::to_string(online) + " online processors";
      EXPECT_EQ(folder.CountLogLines("WARN  : resample : " + warning),
                std::strtol(parallel, nullptr, 10) < 1 ? 1 : 0);
      const std::string found = folder.Content("out.ras") + folder.Content("out_mask.ras");
      outputs = outputs.empty() ? found : outputs;
      EXPECT_EQ(found == outputs, true);
    }
  }
}

}  // namespace
