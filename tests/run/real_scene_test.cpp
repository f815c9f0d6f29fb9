#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <complex>
#include <cstring>
#include <filesystem>
#include <sstream>

#include "run_folder.h"

namespace {

/// How an image compares with a reference of the same scene, over the pixels that are valid in
/// both and not near an edge; `set` counts the mask bytes of the whole image.
struct AGREEMENT {
  double coherence = 0.0;
  double mean_phase = 0.0;  ///< radians
  double phase_rms = 0.0;   ///< about the mean
  double complex_error = 0.0;
  double gain = 0.0;
  long set = 0;
};

constexpr int size = 500;

/// Compares the output of a run with "reference.ras" beside it.
AGREEMENT CompareWithReference(const RUN_FOLDER& folder) {
  PROCESS_SETTINGS settings = folder.Settings();
  settings.program = SLCTOOL_PROGRAM;
  settings.arguments = {"compare",  "out.ras", "reference.ras", "--mask", "out_mask.ras",
                        "--margin", "20"};
  std::istringstream lines(PROCESS(settings).Wait().screen);
  std::map<std::string, double> figures;
  std::string value;
  for (std::string name; std::getline(lines, name, '=') && std::getline(lines, value);) {
    figures[name] = std::stod(value);
  }
  constexpr double scale = 256.0;
  const auto mask = ReadRaster<std::uint8_t>(folder.Path("out_mask.ras"), size, size, RASTER_BYTE);
  return {.coherence = figures["coherence"],
          .mean_phase = figures["phase_mean"],
          .phase_rms = figures["phase_rms"],
          .complex_error = figures["complex_error"],
          .gain = figures["gain"] / scale,
          .set = size * size - std::count(mask.values.begin(), mask.values.end(), 0)};
}

/// Coherence and errors are reproducible to 0.00002, phases and gain to 0.0003. A slightly
/// different mapping changes all but the coherence by up to `change`, and that by a hundredth.
void ExpectAgreement(const AGREEMENT& found, const AGREEMENT& expected, double change = 0.0) {
  const double phase_tolerance = 3e-4 + change;
  EXPECT_NEAR(found.coherence, expected.coherence, 2e-5 + change / 100.0);
  EXPECT_NEAR(found.mean_phase, expected.mean_phase, phase_tolerance);
  EXPECT_NEAR(found.phase_rms, expected.phase_rms, phase_tolerance);
  EXPECT_NEAR(found.complex_error, expected.complex_error, 2e-5 + change);
  EXPECT_NEAR(found.gain, expected.gain, phase_tolerance);
  EXPECT_EQ(found.set, expected.set);
}

struct KERNEL_SETTING {
  const char* kernel;
  int length;
  int subpix_positions;
  AGREEMENT expected;
};

/// A real scene and the result that another program has published for it. The data lie beside
/// the repository.
class RealScene : public testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists(data_ / "slave.ras")) {
      GTEST_SKIP() << "the real scene is not there: " << data_;
    }
    const std::string bytes = ReadFile(data_ / "expected_cfloat32.raw");
    reference_ = GRID<std::complex<float>>(size, size);
    ASSERT_EQ(bytes.size(), sizeof(std::complex<float>) * reference_.values.size());
    std::memcpy(static_cast<void*>(reference_.values.data()), bytes.data(), bytes.size());
  }

  /// Runs the program with the matrices at every pixel and the given changes, and compares.
  AGREEMENT RunWith(const KERNEL_SETTING& setting,
                    const std::map<std::string, std::string>& changes = {}) {
    RUN_FOLDER folder(OrdinaryScene());
    // The program updates its pool, so it works on copies.
    for (const char* file : {"insar.pool", "insar_sub10.pool", "slave.pool"}) {
      folder.Write(file, ReadFile(data_ / file));
    }
    folder.parameters.erase("MaskIn");
    folder.parameters["SlaveIn"] = data_ / "slave.ras";
    folder.parameters["RG_MAPPING_FILE"] = data_ / "rg_map.ras";
    folder.parameters["AZ_MAPPING_FILE"] = data_ / "az_map.ras";
    folder.parameters["KERNEL_TYPE"] = setting.kernel;
    folder.parameters["KERNEL_LENGTH"] = std::to_string(setting.length);
    folder.parameters["KERNEL_SUBPIX_POS"] = std::to_string(setting.subpix_positions);
    for (const auto& [name, value] : changes) {
      folder.parameters[name] = value;
    }
    folder.environment["PARALLEL"] = "2";
    ExpectSuccess(folder, folder.Run());
    WriteRaster(folder.Path("reference.ras"), reference_, RASTER_COMPLEX_FLOAT);
    return CompareWithReference(folder);
  }

  const std::filesystem::path data_ = REAL_SCENE_DIRECTORY;
  GRID<std::complex<float>> reference_;
};

constexpr const char* kaiser = "truncated_sinc_kaiser_weight";
constexpr const char* sinc = "truncated_sinc_no_weight";
constexpr const char* cubic = "cubic_convolution";

const std::vector<KERNEL_SETTING> settings = {
    {kaiser, 16, 1024, {0.998071, 0.00043, 0.1454, 0.06208, 1.02744, 233772}},
    {kaiser, 8, 1024, {0.999410, -0.00021, 0.0769, 0.03435, 0.98265, 241572}},
    {sinc, 6, 1024, {0.989891, 0.00068, 0.2710, 0.14183, 1.07001, 243542}},
    {cubic, 6, 1024, {0.996552, -0.00042, 0.1702, 0.08297, 0.95060, 243542}},
};

TEST_F(RealScene, EveryKernelSettingHasItsFigures) {
  for (const KERNEL_SETTING& setting : settings) {
    SCOPED_TRACE(setting.kernel + (" " + std::to_string(setting.length)) + ", " +
                 std::to_string(setting.subpix_positions) + " positions");
    ExpectAgreement(RunWith(setting), setting.expected);
  }
}

TEST_F(RealScene, OtherInputsOfTheSameContentChangeNextToNothing) {
  constexpr std::array masked = {232804L, 240588L, 242554L, 242554L};
  for (std::size_t i = 0; i < masked.size(); ++i) {
    AGREEMENT expected = settings[i].expected;
    SCOPED_TRACE(settings[i].kernel + (" " + std::to_string(settings[i].length)));
    ExpectAgreement(RunWith(settings[i], {{"MAPPING_FORMAT", "polynomial"},
                                          {"SlaveIn", data_ / "slave_half.ras"}}),
                    expected);
    ExpectAgreement(RunWith(settings[i], {{"INSAR_PARAMETER_POOL", "insar_sub10.pool"},
                                          {"RG_MAPPING_FILE", data_ / "rg_map_sub10.ras"},
                                          {"AZ_MAPPING_FILE", data_ / "az_map_sub10.ras"}}),
                    expected, 1e-4);
    expected.set = masked[i];
    ExpectAgreement(RunWith(settings[i], {{"MaskIn", data_ / "slave_mask.ras"}}), expected);
  }
}

}  // namespace
