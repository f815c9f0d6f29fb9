#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "run_checks.h"

namespace {

bool Says(const PROCESS_END& end, const std::string& text) {
  return end.screen.find(text) != std::string::npos;
}

TEST(CheckRun, TellsTheShareOfPixelsThatAreComputed) {
  // Of many kernels and mappings, some of which lead far outside.
  for (unsigned seed = 0; seed < 16; ++seed) {
    SCENE scene = seed == 0 ? OrdinaryScene() : RandomScene(seed);
    scene.mask.reset();  // so that the output mask tells which pixels were computed
    const RUN_FOLDER folder(scene);
    const PROCESS_END check = CheckRun(folder);
    EXPECT_EQ(check.exit_status, 0) << check.screen;
    EXPECT_TRUE(Says(check, "\nresample would succeed\n")) << check.screen;
    ExpectSuccess(folder, folder.Run());
    const auto mask = ReadRaster<std::uint8_t>(folder.Path("out_mask.ras"), scene.n_samples,
                                               scene.n_lines, RASTER_BYTE);
    const auto computed = std::count(mask.values.begin(), mask.values.end(), 1);
    EXPECT_TRUE(Says(check, "(" + std::to_string(computed) + " of " +
                                std::to_string(mask.values.size()) + " pixels, all looked at)"))
        << "seed " << seed << ", computed " << computed << "\n"
        << check.screen;
  }
}

TEST(CheckRun, ListsTheFailuresOfAllStepsAtOnce) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.parameters.erase("KERNEL_LENGTH");
  folder.parameters["MaskOut"] = "missing/mask.ras";
  POOL_TEXT pool = SlavePool(OrdinaryScene());
  pool.Remove("prf");
  folder.Write("slave.pool", pool.Text());
  std::filesystem::remove(folder.Path("rg.map"));
  folder.Write("STOP.run", "");
  const PROCESS_END end = CheckRun(folder);
  EXPECT_EQ(end.exit_status, 1);
  for (const char* text : {"no value for parameter KERNEL_LENGTH",
                           "can not create: missing/mask.ras", ">> prf <<", "can not open: rg.map",
                           "STOP file was found: STOP.run", "resample would fail: 5 reasons"}) {
    EXPECT_TRUE(Says(end, text)) << text << "\n" << end.screen;
  }
}

TEST(CheckRun, FindsWhatFailsAtTheEndOfARun) {
  RUN_FOLDER folder(OrdinaryScene());
  POOL_TEXT pool = InsarPool(OrdinaryScene());
  pool.Set("software_names", "STR_V 0 1\n{\n\"Other\"\n}");
  folder.Write("insar.pool", pool.Text());
  folder.parameters["MAPPING_FORMAT"] = "matrix";  // would be written into the pool
  ExpectCheckSays(folder, "parameter pool: parameter key >> software_versions << not found");
}

TEST(CheckRun, LooksAtAGridOfAHugeOutputAndFindsTheDiskTooSmall) {
  SCENE scene = OrdinaryScene();
  // Every output pixel lies in the middle of the slave.
  scene.mapping = POLYNOMIAL_MAPPING_DATA{{36, 0, -1, 0, 0, 0}, {30, -1, 0, 0, 0, 0}};
  scene.n_samples = 4000000;
  scene.n_lines = 3000000;
  const PROCESS_END end = CheckRun(RUN_FOLDER(scene));
  EXPECT_EQ(end.exit_status, 1);
  EXPECT_TRUE(Says(end, "computed share: 1.000000 (")) << end.screen;
  EXPECT_TRUE(Says(end, "th sample and line looked at)")) << end.screen;
  EXPECT_TRUE(Says(end, "not enough disk space")) << end.screen;
}

TEST(CheckRun, AndARunWarnOfWhatNothingReadsAndOfTextBehindNumbers) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.arguments.insert(folder.arguments.end(),
                          {"-lfl", "INFO", "-MaskIN", "none", "-3", "word"});
  folder.parameters["KERNEL_LENGHT"] = "8";
  folder.parameters["#comment"] = "8";
  folder.parameters["KERNEL_COEFFICIENT"] = "2,5";
  folder.parameters["KERNEL_SUBPIX_POS"] = "64k";
  folder.environment["PARALEL"] = "2";
  folder.environment["STATE"] = "2";
  const PROCESS_END check = CheckRun(folder);
  EXPECT_EQ(check.exit_status, 0);
  ExpectSuccess(folder, folder.Run());
  std::vector<std::string> expected = {
      "KERNEL_COEFFICIENT \"2,5\" is no number and counts as 2",
      "KERNEL_SUBPIX_POS \"64k\" is no whole number and counts as 64",
      "argument -MaskIN is read by nothing; is MaskIn meant?",
      "KERNEL_LENGHT in the configuration file is read by nothing; is KERNEL_LENGTH meant?",
      "environment variable PARALEL is read by nothing; is PARALLEL meant?"};
  EXPECT_EQ(folder.LogLines("WARN  : resample : "), expected);
  expected.emplace_back(
      "KERNEL_SUBPIX_POS 64 costs coherence: with 64 it was measured to be 0.9807");
  for (const std::string& warning : expected) {
    EXPECT_TRUE(Says(check, "warning: " + warning)) << warning << "\n" << check.screen;
  }
}

TEST(CheckRun, WarnsOfUnitsThatCanNotBe) {
  const struct {
    POOL_TEXT (*pool)(const SCENE&);
    const char* file;
    const char* key;
    double value;
    const char* warning;
  } mistakes[] = {
      {SlavePool, "slave.pool", "prf", 1.0, "too much for a stripmap mode"},
      {SlavePool, "slave.pool", "range_sampling_frequency", 20.0, "too much for a stripmap mode"},
      {InsarPool, "insar.pool", "slave_first_rg_time", 1.0, "widths from fdc_poly_rg_ref_time"},
      {InsarPool, "insar.pool", "slave_first_az_time", 1e6, "lengths beyond fdc_poly_az_time"}};
  const SCENE scene = OrdinaryScene();
  const auto write = [&scene](RUN_FOLDER& folder, auto make, const char* file, const char* key,
                              double value) {
    POOL_TEXT pool = make(scene);
    if (key != nullptr) {
      pool.SetReal(key, value);
    }
    if (make == SlavePool) {
      pool.SetText("imaging_mode", "SM");
    }
    folder.Write(file, pool.Text());
  };
  for (const auto& mistake : mistakes) {
    RUN_FOLDER folder(scene);
    write(folder, SlavePool, "slave.pool", nullptr, 0.0);
    EXPECT_FALSE(Says(CheckRun(folder), mistake.warning)) << mistake.key;
    write(folder, mistake.pool, mistake.file, mistake.key, mistake.value);
    const PROCESS_END end = CheckRun(folder);
    EXPECT_EQ(end.exit_status, 0);
    EXPECT_TRUE(Says(end, mistake.warning)) << mistake.key << "\n" << end.screen;
  }
}

TEST(CheckRun, WarnsOfWhatARunAccepts) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.parameters["n_samples"] = "100";
  folder.parameters["n_lines"] = "60";
  folder.parameters["KERNEL_LENGTH"] = "2";
  const PROCESS_END end = CheckRun(folder);
  EXPECT_EQ(end.exit_status, 0);
  // One tap in each row of the tables, told once.
  EXPECT_TRUE(Says(end, "more of the kind)\n")) << end.screen;
  EXPECT_EQ(end.screen.find("This should not", end.screen.find("This should not") + 1),
            std::string::npos)
      << end.screen;
  // Eleven nodes 8 pixels apart.
  EXPECT_TRUE(Says(end, "warning: the mapping matrices cover 80 x 60 pixels")) << end.screen;
  EXPECT_TRUE(Says(end, "Length is reset to 6\n")) << end.screen;
}

}  // namespace
