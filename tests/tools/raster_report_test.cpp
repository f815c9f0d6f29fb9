#include "info/raster_report.h"

#include <cmath>
#include <filesystem>
#include <sstream>

#include "base/error_exception.h"
#include "raster/mem_mgr.h"
#include "raster/raster_header.h"
#include "support/log_capture.h"
#include "tools/image_test.h"

namespace {

using RasterReportTest = IMAGE_TEST;

std::string Report(const std::string& path) {
  std::ostringstream report;
  WriteRasterReport(path, report);
  return report.str();
}

TEST_F(RasterReportTest, OfARasterWithoutPixelsComesAtOnceWhateverItsOtherSide) {
  for (const auto& [width, height] : {std::pair(0U, 0xFFFFFFFFU), std::pair(0xFFFFFFFFU, 0U)}) {
    const RASTER_HEADER::BYTES header = RASTER_HEADER(width, height, PIXEL_TYPE::C_INT_16).Encode();
    const std::string path = Path("none\033[2J.ras");
    WriteFile(path, std::string(header.begin(), header.end()));
    const std::string report = Report(path);
    EXPECT_NE(report.find("none\\x1b[2J.ras\n"), std::string::npos) << report;
    EXPECT_NE(report.find("\npixels: 0\n"), std::string::npos) << report;
  }
}

TEST_F(RasterReportTest, TellsHeaderAndValuesOfAComplexRaster) {
  const auto pixel = [](int sample, int line) {
    const VALUE other[] = {0.0, {-6.0, 8.0}};
    return line == 1 && sample < 2 ? other[sample] : VALUE(3.0, -4.0);
  };
  const std::string path = Complex("image.ras", 5, 2, pixel, PIXEL_TYPE::C_INT_16).Path();
  EXPECT_EQ(Report(path), "file: " + path +
                              "\n"
                              "magic: 0x59a66a95\n"
                              "width: 5\n"
                              "height: 2\n"
                              "depth: 32\n"
                              "length: 40\n"
                              "type: 97\n"
                              "map type: 0\n"
                              "map length: 0\n"
                              "pixel type: c_int_16\n"
                              "bytes per pixel: 4\n"
                              "pixels: 10\n"
                              "finite: 10\n"
                              "zeros: 1\n"
                              "saturated: 0\n"
                              "real min: -6\n"
                              "real max: 3\n"
                              "real mean: 1.8\n"
                              "real rms: 3.2863353\n"
                              "imaginary min: -4\n"
                              "imaginary max: 8\n"
                              "imaginary mean: -2.4\n"
                              "imaginary rms: 4.3817805\n"
                              "amplitude min: 0\n"
                              "amplitude max: 10\n"
                              "amplitude mean: 5\n"
                              "amplitude rms: 5.4772256\n"
                              "amplitude percentile 1: 0\n"
                              "amplitude percentile 5: 0\n"
                              "amplitude percentile 25: 5\n"
                              "amplitude percentile 50: 5\n"
                              "amplitude percentile 75: 5\n"
                              "amplitude percentile 95: 10\n"
                              "amplitude percentile 99: 10\n");
}

TEST_F(RasterReportTest, CountsFiniteValuesOnly) {
  const double values[] = {NAN, -HUGE_VAL, -1.5, 0.5};
  const std::string report =
      Report(Real("map", 4, 1, [&](int sample, int) { return values[sample]; }).Path());
  EXPECT_EQ(report.substr(report.find("pixels: ")),
            "pixels: 4\n"
            "finite: 2\n"
            "zeros: 0\n"
            "value min: -1.5\n"
            "value max: 0.5\n"
            "value mean: -0.5\n"
            "value rms: 1.118034\n");
  EXPECT_TRUE(Report(Real("none", 2, 1, [](int, int) { return NAN; }).Path())
                  .ends_with("pixels: 2\nfinite: 0\nzeros: 0\n"));
}

TEST_F(RasterReportTest, TellsTheHeaderOfRastersWithoutNumbers) {
  const std::string colours = Path("colours.ras");
  MEM_MGR().Create(colours.c_str(), 0, 0, 6, 1, PIXEL_TYPE::RGB);
  const std::string report = Report(colours);
  EXPECT_NE(report.find("pixel type: rgb\n"), std::string::npos);
  EXPECT_EQ(report.find("pixels: "), std::string::npos);

  const LOG_CAPTURE log;
  std::filesystem::resize_file(colours, 60);
  std::ostringstream truncated;
  EXPECT_THROW(WriteRasterReport(colours, truncated), ERROR_CAN_NOT_READ_FILE);
  EXPECT_NE(truncated.str().find("width: 7\n"), std::string::npos);
  EXPECT_THROW(Report(Path("missing")), std::runtime_error);
}

}  // namespace
