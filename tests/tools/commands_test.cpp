#include <algorithm>
#include <filesystem>
#include <regex>
#include <stdexcept>

#include "app/program_version.h"
#include "compare/compare_command.h"
#include "raster/mem_mgr.h"
#include "scene/scene_command.h"
#include "tools/command_test.h"

namespace {

class COMMANDS : public COMMAND_TEST {
 protected:
  static std::string Compare(const std::string& arguments) {
    return Run(AddCompareCommand, "compare " + arguments);
  }

  /// Makes a small scene in `Path("")`.
  void MakeScene(const std::string& options = "") const {
    Run(AddSceneCommand, "scene " + Path("") + " --samples 80 --lines 60 " + options);
  }
};

TEST_F(COMMANDS, SceneTakesItsOptions) {
  MakeScene(
      "--pixel-type cfloat16 --mapping-format polynomial --imaging-mode TOPS --ps-mode"
      " --oversampling 1.25 --kernel-length 8");
  const RASTER_READER master(Path("master.ras"));
  EXPECT_EQ(master.Type(), PIXEL_TYPE::C_FLT_2);
  EXPECT_EQ(master.Width(), 80);
  EXPECT_EQ(master.Height(), 60);
  const std::pair<const char*, std::string> lines[] = {
      {"insar.pool", "mapping_format STR \"polynomial\""},
      {"slave.pool", "imaging_mode STR \"TOPS\""},
      {"slave.pool", "oversampling FLT_15 1.25000000000000000E+00"},
      {"pcf.resample", "PS_MODE 1"},
      {"pcf.resample", "KERNEL_LENGTH 8"}};
  for (const auto& [file, line] : lines) {
    const std::string text = std::regex_replace(ReadFile(Path(file)), std::regex(" +"), " ");
    EXPECT_NE(text.find("\n" + line + "\n"), std::string::npos) << line;
  }
}

TEST_F(COMMANDS, SceneRefusesImpossibleOptions) {
  for (const char* options : {"--tile 48", "--tile 8", "--bandwidth 1.3", "--bandwidth 0",
                              "--bandwidth nan", "--oversampling 0.5"}) {
    EXPECT_THROW(MakeScene(options), std::invalid_argument) << options;
  }
  EXPECT_THROW(MakeScene("--pixel-type float"), CLI::ValidationError);
  std::filesystem::create_directory(Path("slave.pool"));
  EXPECT_THROW(MakeScene(), std::system_error);
}

TEST_F(COMMANDS, ComparePrintsFiguresOfTheRegionOrOfItsBlocks) {
  MakeScene();
  const std::string pair = Path("slave.ras") + " " + Path("slave.ras") + " --margin 10";
  const std::string whole = Compare(pair);
  EXPECT_EQ(whole.rfind("compared=", 0), 0U) << whole;
  EXPECT_NE(whole.find("\ncoherence=1.000000\n"), std::string::npos) << whole;

  const std::string blocks = Compare(pair + " --block 25");
  // 60 x 40 pixels in 3 x 2 blocks.
  EXPECT_EQ(std::count(blocks.begin(), blocks.end(), '\n'), 6);
  EXPECT_NE(blocks.find("first_sample=60 first_line=35 n_samples=10 n_lines=15 compared=150 "),
            std::string::npos)
      << blocks;
  Real("zeros.ras", 80, 60, [](int, int) { return 0.0; });
  const std::string zeros = Compare(Path("slave.ras") + " " + Path("zeros.ras") + " --block 60");
  EXPECT_EQ(zeros.find("nan"), std::string::npos) << zeros;
  EXPECT_NE(zeros.find("compared=0 coherence=none phase_mean=none "), std::string::npos) << zeros;
}

TEST_F(COMMANDS, OutputThatCanNotBeWrittenIsAFailure) {
  const std::string image =
      Complex(
          "image.ras", 5, 2, [](int, int) { return VALUE(1.0); }, PIXEL_TYPE::C_INT_16)
          .Path();
  for (const std::string& command : {"info " + image, "compare " + image + " " + image}) {
    const std::string line = std::string(SLCTOOL_PROGRAM) + " " + command;
    EXPECT_NO_THROW(Shell(line));
    EXPECT_THROW(Shell(line + " > /dev/full"), std::runtime_error);
  }
}

TEST_F(COMMANDS, TheProgramTellsItsVersionAndWhatItDoesNotKnow) {
  const std::string program = SLCTOOL_PROGRAM;
  EXPECT_EQ(Shell(program + " --version"), ProgramVersion().version + "\n");
  for (const std::string command : {"", " pool"}) {
    const std::string output = Shell("! " + program + command + " foo");
    EXPECT_NE(output.find("no such subcommand or option: foo"), std::string::npos) << output;
    const std::string output_without = Shell("! " + program + command);
    EXPECT_NE(output_without.find("A subcommand is required"), std::string::npos);
  }
}

TEST_F(COMMANDS, CompareRefusesWhatDoesNotFit) {
  MakeScene();
  const std::string map = Path("rg_map.ras");
  const std::string pair = Path("master.ras") + " " + Path("slave.ras");
  EXPECT_THROW(Compare(Path("master.ras") + " " + map), std::invalid_argument);
  EXPECT_THROW(Compare(pair + " --mask " + map), std::invalid_argument);
  EXPECT_THROW(Compare(pair + " --margin 30"), std::invalid_argument);
  EXPECT_THROW(Compare(pair + " --min-coherence 0.5"), std::runtime_error);
  const auto nothing = [](int, int) { return 0.0; };
  Real("nothing.ras", 80, 60, nothing, PIXEL_TYPE::U_INT_8);
  EXPECT_THROW(Compare(pair + " --mask " + Path("nothing.ras")), std::runtime_error);
  MEM_MGR().Create(Path("rgb.ras").c_str(), 0, 0, 79, 59, PIXEL_TYPE::RGB);
  EXPECT_THROW(Compare(Path("rgb.ras") + " " + Path("rgb.ras")), std::invalid_argument);
  EXPECT_THROW(Real("rgb.ras", 2, 2, nothing, PIXEL_TYPE::RGB), std::invalid_argument);
}

}  // namespace
