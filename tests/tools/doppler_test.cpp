#include <cmath>
#include <numbers>
#include <random>

#include "doppler/doppler_command.h"
#include "tools/command_test.h"

namespace {

constexpr double prf = 500.0;

/// Speckle that is correlated along azimuth, turned by a centroid that sweeps along both axes.
class DOPPLER_TEST : public COMMAND_TEST {
 protected:
  static constexpr int n_samples = 60;
  static constexpr int n_lines = 400;

  DOPPLER_TEST() {
    std::mt19937 generator(7);
    std::normal_distribution<double> noise;
    std::vector<VALUE> above(n_samples);
    std::vector<double> turns(n_samples, 0.0);
    std::vector<std::vector<VALUE>> image(n_lines, std::vector<VALUE>(n_samples));
    for (std::size_t line = 0; line < n_lines; ++line) {
      for (std::size_t i = 0; i < n_samples; ++i) {
        above[i] = 0.6 * above[i] + VALUE(noise(generator), noise(generator));
        turns[i] += Frequency(static_cast<double>(line) - 0.5, static_cast<double>(i)) / prf;
        image[line][i] = above[i] * std::polar(1.0, 2.0 * std::numbers::pi * turns[i]);
      }
    }
    Complex("slave.ras", n_samples, n_lines, [&](int sample, int line) {
      return image[static_cast<std::size_t>(line)][static_cast<std::size_t>(sample)];
    });
    WriteFile(Path("insar.pool"),
              "slave_first_rg_time FLT_15 0.005\nslave_first_az_time FLT_15 100\n");
    WritePool("slave.pool", prf, 1.0);
  }

  /// [Hz]: three PRF from the first to the last line.
  static double Frequency(double line, double sample) {
    return -700.0 + 3.75 * line + 0.5 * sample;
  }

  void WritePool(const char* name, double annotated_prf, double sweep) {
    std::string pool = "prf FLT_15 " + std::to_string(annotated_prf) +
                       "\nrange_sampling_frequency FLT_15 1e6\noversampling FLT_15 1\n"
                       "fdc_poly_az_time FLT_15_V 0 2\n{\n100\n100.8\n}\n"
                       "fdc_poly_rg_ref_time FLT_15_V 0 2\n{\n0.005\n0.005\n}\n"
                       "fdc_poly_coeff FLT_15_M 0 2 0 2\n{\n";
    for (const double line : {0.0, 400.0}) {
      pool += "{\n" + std::to_string(sweep * Frequency(line, 0.0)) + "\n500000\n}\n";
    }
    WriteFile(Path(name), pool + "}\n");
  }

  std::string Doppler(const std::string& more) const {
    return Run(AddDopplerCommand, "doppler " + Path("slave.ras") + " " + more);
  }
};

TEST_F(DOPPLER_TEST, AgreesWithARightAnnotationAndObjectsToAWrongOne) {
  const std::string right = Doppler("--pool " + Path("slave.pool") + " --png " + Path("a.png"));
  EXPECT_EQ(right.find("warning"), std::string::npos) << right;
  const auto at = right.find("data less annotation: ");
  ASSERT_NE(at, std::string::npos) << right;
  EXPECT_NEAR(std::stod(right.substr(at + 22)), 0.0, 0.01);
  EXPECT_EQ(ReadFile(Path("a.png")).substr(1, 3), "PNG");

  WritePool("sign.pool", prf, -1.0);
  EXPECT_NE(Doppler("--pool " + Path("sign.pool") + " --insar-pool " + Path("insar.pool"))
                .find("warning: the annotated Doppler centroid departs from that of the data"),
            std::string::npos);
}

TEST_F(DOPPLER_TEST, ObjectsToAnnotationThatHidesWhatTheDataAgreeOn) {
  Complex("slave.ras", n_samples, n_lines,
          [](int, int line) { return std::polar(1.0, 2.0 * std::numbers::pi * 0.2 * line); });
  WritePool("khz.pool", 1.3e-3 * prf, 1.0);
  const std::string text = Doppler("--pool " + Path("khz.pool"));
  EXPECT_NE(text.find("tell no centroid"), std::string::npos) << text;
  EXPECT_NE(text.find("(0.20 PRF) but not with the annotation"), std::string::npos) << text;
  const std::string alone = Doppler("");
  EXPECT_NE(alone.find("centroid of the data: 0.2000 PRF"), std::string::npos);
  EXPECT_EQ(alone.find("annotat"), std::string::npos) << alone;
}

TEST_F(DOPPLER_TEST, LeavesOutMaskedPixelsAndRefusesWhatIsNotComplex) {
  const auto mask = [&](auto pixel) {
    Real("mask.ras", n_samples, n_lines, pixel, PIXEL_TYPE::U_INT_8);
    return " --mask " + Path("mask.ras");
  };
  Complex("slave.ras", n_samples, n_lines, [](int sample, int line) {
    return std::polar(1.0, (sample < 30 ? 0.25 : -0.1) * 2.0 * std::numbers::pi * line);
  });
  EXPECT_NE(Doppler(mask([](int sample, int) {
              return sample < 30 ? 1.0 : 0.0;
            })).find("centroid of the data: 0.2500 PRF"),
            std::string::npos);
  EXPECT_NE(Doppler(mask([](int, int) { return 0.0; })).find("tell no centroid"),
            std::string::npos);
  EXPECT_THROW(Run(AddDopplerCommand, "doppler " + Path("mask.ras")), std::invalid_argument);
}

}  // namespace
