#include <gtest/gtest.h>

#include <functional>

#include "run_folder.h"
#include "support/reference_model.h"

namespace {

using testing::Range;

/// Runs the program on the scene and compares its outputs with the model.
MODEL_COMPARISON RunAndCompare(const SCENE& scene, int workers) {
  RUN_FOLDER folder(scene);
  folder.environment["PARALLEL"] = std::to_string(workers);
  const PROCESS_END end = folder.Run();
  ExpectSuccess(folder, end);
  if (end.exit_status != 0) {
    return {};
  }
  return CompareWithModel(scene, folder.Image(), folder.Mask());
}

constexpr unsigned scenes_in_a_block = 64;

class RandomScenes : public testing::TestWithParam<unsigned> {};

TEST_P(RandomScenes, EveryComponentAndEveryMaskByteIsTheModels) {
  int computed = 0;
  int valid = 0;
  int ties = 0;
  for (unsigned seed = GetParam(); seed < GetParam() + scenes_in_a_block; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const MODEL_COMPARISON comparison =
        RunAndCompare(RandomScene(seed), static_cast<int>(seed % 7 + 1));
    ASSERT_EQ(comparison.difference, "");
    computed += comparison.computed_pixels;
    valid += comparison.valid_pixels;
    ties += comparison.ties;
  }
  EXPECT_GT(computed, 20000) << "the scenes hardly overlap their grids";
  EXPECT_GT(valid, computed / 2);
  EXPECT_LT(valid, computed) << "no mask hides a pixel";
  EXPECT_LT(ties, computed / 1000) << "so many ties leave the comparison blind";
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomScenes,
                         Range(0U, repetitions* scenes_in_a_block, scenes_in_a_block));

void ShiftBy(SCENE& scene, float range, float azimuth) {
  auto& matrix = std::get<MATRIX_MAPPING_DATA>(scene.mapping);
  matrix.range.values.assign(matrix.range.values.size(), range);
  matrix.azimuth.values.assign(matrix.azimuth.values.size(), azimuth);
}

struct SPECIAL_SCENE {
  const char* name;
  std::function<void(SCENE&)> change;
  int computed_pixels;  ///< of the 70 x 60 grid
};

TEST(SpecialScenes, AgreeWithTheModel) {
  // The slave has 72 x 60 pixels; a kernel of length 8 keeps 4 pixels away from its edges.
  const std::vector<SPECIAL_SCENE> special_scenes = {
      {"the ordinary one", [](SCENE&) {}, 64 * 52},
      {"positions exactly on the margins", [](SCENE& scene) { ShiftBy(scene, 2.0F, -2.0F); },
       63 * 51},
      {"fraction that wraps to row 0 of the kernel",
       [](SCENE& scene) {
         ShiftBy(scene, 0.99F, 0.96F);
         scene.subpix_positions = 10;
       },
       64 * 52},
      {"odd kernel, one pixel less to the right and below",
       [](SCENE& scene) {
         ShiftBy(scene, 0.0F, 0.0F);
         scene.kernel_length = 9;
       },
       62 * 50},
      {"kernel as large as the image",
       [](SCENE& scene) {
         scene.kernel_length = 56;
         scene.subpix_positions = 1;
       },
       16 * 4},
      {"kernel larger than the image", [](SCENE& scene) { scene.kernel_length = 62; }, 0},
      {"kernel without taps",
       [](SCENE& scene) {
         scene.kernel_type = "-";
         scene.kernel_length = 0;
         ShiftBy(scene, 0.0F, 0.0F);
       },
       69 * 59},
      {"window of length 0",
       [](SCENE& scene) { scene.kernel_length = 0; },  // length 6, not a number in the middle
       66 * 54},
      {"one node",
       [](SCENE& scene) {
         scene.mapping = MATRIX_MAPPING_DATA{{1, 1, 9.F}, {1, 1, 9.F}};
       },
       63 * 51},
  };
  for (const SPECIAL_SCENE& special : special_scenes) {
    SCOPED_TRACE(special.name);
    SCENE scene = OrdinaryScene();
    special.change(scene);
    const MODEL_COMPARISON comparison = RunAndCompare(scene, 2);
    EXPECT_EQ(comparison.difference, "");
    EXPECT_EQ(comparison.computed_pixels, special.computed_pixels);
  }
}

TEST(Workers, AnyNumberOfThemWritesTheSameBytes) {
  for (const unsigned seed : {0U, 3U, 36U}) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    SCENE scene = RandomScene(seed);
    scene.n_lines = 61;
    RUN_FOLDER folder(scene);
    std::string image;
    std::string mask;
    for (const int workers : {1, 2, 3, 4, 5, 6, 7, 500}) {
      // Both ways to ask for them; the parameter wins.
      folder.environment["PARALLEL"] = std::to_string(workers % 2 == 0 ? 1 : workers);
      folder.parameters.erase("no_of_cpu");
      if (workers % 2 == 0) {
        folder.parameters["no_of_cpu"] = std::to_string(workers);
      }
      ExpectSuccess(folder, folder.Run());
      if (workers == 1) {
        image = folder.Content("out.ras");
        mask = folder.Content("out_mask.ras");
        EXPECT_NE(mask.find('\1', 32), std::string::npos) << "nothing was computed";
      }
      EXPECT_EQ(folder.Content("out.ras") == image, true) << workers;
      EXPECT_EQ(folder.Content("out_mask.ras") == mask, true) << workers;
    }
  }
}

}  // namespace
