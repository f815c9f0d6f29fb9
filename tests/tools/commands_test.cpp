#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <stdexcept>

#include "common/raster_reader.h"
#include "compare/compare_command.h"
#include "scene/scene_command.h"
#include "support/temporary_directory.h"

namespace {

class COMMANDS : public testing::Test {
 protected:
  /// What a command line prints. Throws what the command throws.
  std::string Run(const std::string& command_line) const {
    CLI::App app;
    AddCompareCommand(app);
    AddSceneCommand(app);
    testing::internal::CaptureStdout();
    try {
      app.parse(command_line);
    } catch (...) {
      testing::internal::GetCapturedStdout();
      throw;
    }
    return testing::internal::GetCapturedStdout();
  }

  /// Makes a small scene in `Path("")`.
  void MakeScene(const std::string& options = "") const {
    Run("scene " + Path("") + " --samples 80 --lines 60 " + options);
  }

  std::string Path(const char* name) const { return directory_.File("scene/") + name; }

  TEMPORARY_DIRECTORY directory_;
};

TEST_F(COMMANDS, SceneTakesItsOptions) {
  MakeScene(
      "--pixel-type cfloat16 --mapping-format polynomial --imaging-mode TOPS --ps-mode"
      " --oversampling 1.25 --kernel-length 8");
  const RASTER_READER master(Path("master.ras"));
  EXPECT_EQ(master.Type(), PIXEL_TYPE::C_FLT_2);
  EXPECT_EQ(master.Width(), 80);
  EXPECT_EQ(master.Height(), 60);
  EXPECT_NE(ReadFile(Path("insar.pool")).find("\nmapping_format STR \"polynomial\"\n"),
            std::string::npos);
  const std::string slave_pool = ReadFile(Path("slave.pool"));
  EXPECT_NE(slave_pool.find("\nimaging_mode STR \"TOPS\"\n"), std::string::npos);
  EXPECT_NE(slave_pool.find("\noversampling FLT_15 1.25\n"), std::string::npos);
  const std::string configuration = ReadFile(Path("pcf.resample"));
  EXPECT_NE(configuration.find("\nPS_MODE 1\n"), std::string::npos);
  EXPECT_NE(configuration.find("\nKERNEL_LENGTH 8\n"), std::string::npos);
}

TEST_F(COMMANDS, SceneRefusesImpossibleOptions) {
  EXPECT_THROW(MakeScene("--tile 48"), std::invalid_argument);
  EXPECT_THROW(MakeScene("--bandwidth 1.3"), std::invalid_argument);
  EXPECT_THROW(MakeScene("--oversampling 0.5"), std::invalid_argument);
  EXPECT_THROW(MakeScene("--pixel-type float"), CLI::ValidationError);
  EXPECT_THROW(MakeScene("--lines 0"), CLI::ValidationError);
}

TEST_F(COMMANDS, ComparePrintsAKeyAndAValueALine) {
  MakeScene();
  const std::string slave = Path("slave.ras");
  const std::string output = Run("compare " + slave + " " + slave + " --margin 10");
  EXPECT_NE(output.find("\ncoherence=1.000000\n"), std::string::npos) << output;
  EXPECT_EQ(output.find("compared="), 0U) << output;
  EXPECT_EQ(std::count(output.begin(), output.end(), '\n'),
            std::count(output.begin(), output.end(), '='));
}

TEST_F(COMMANDS, CompareCoversTheRegionWithBlocks) {
  MakeScene();
  const std::string slave = Path("slave.ras");
  const std::string output = Run("compare " + slave + " " + slave + " --margin 10 --block 25");
  // 60 x 40 pixels in 3 x 2 blocks.
  EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 6);
  EXPECT_NE(output.find("first_sample=60 first_line=35 n_samples=10 n_lines=15 compared=150 "),
            std::string::npos)
      << output;
}

TEST_F(COMMANDS, CompareRefusesWhatDoesNotFit) {
  MakeScene();
  const std::string pair = "compare " + Path("master.ras") + " " + Path("slave.ras");
  EXPECT_THROW(Run("compare " + Path("master.ras") + " " + Path("rg_map.ras")),
               std::invalid_argument);
  EXPECT_THROW(Run(pair + " --mask " + Path("rg_map.ras")), std::invalid_argument);
  EXPECT_THROW(Run(pair + " --margin 30"), std::invalid_argument);
  EXPECT_THROW(Run(pair + " --min-coherence 0.5"), std::runtime_error);
}

}  // namespace
