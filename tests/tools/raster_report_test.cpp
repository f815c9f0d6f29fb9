#include "info/raster_report.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <filesystem>
#include <limits>
#include <sstream>

#include "base/error_exception.h"
#include "common/raster_writer.h"
#include "info/amplitude_histogram.h"
#include "raster/mem_mgr.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

namespace {

std::string Report(const std::string& path) {
  std::ostringstream report;
  WriteRasterReport(path, report);
  return report.str();
}

TEST(RasterReportTest, TellsHeaderAndValuesOfAComplexRaster) {
  const TEMPORARY_DIRECTORY directory;
  const std::string path = directory.File("image.ras");
  WriteRaster(path, 5, 2, PIXEL_TYPE::C_INT_16,
              [](std::int64_t line, std::span<std::complex<double>> values) {
                std::fill(values.begin(), values.end(), std::complex<double>(3.0, -4.0));
                if (line == 1) {
                  values[0] = 0.0;
                  values[1] = {-6.0, 8.0};
                }
              });

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

TEST(RasterReportTest, CountsFiniteValuesOnly) {
  const TEMPORARY_DIRECTORY directory;
  const std::string path = directory.File("map.ras");
  WriteRealRaster(path, 4, 1, PIXEL_TYPE::FLT_6, [](std::int64_t, std::span<double> values) {
    values[0] = std::numeric_limits<double>::quiet_NaN();
    values[1] = -std::numeric_limits<double>::infinity();
    values[2] = -1.5;
    values[3] = 0.5;
  });

  const std::string report = Report(path);

  EXPECT_EQ(report.substr(report.find("pixels: ")),
            "pixels: 4\n"
            "finite: 2\n"
            "zeros: 0\n"
            "value min: -1.5\n"
            "value max: 0.5\n"
            "value mean: -0.5\n"
            "value rms: 1.118034\n");

  WriteRealRaster(path, 1, 1, PIXEL_TYPE::FLT_6, [](std::int64_t, std::span<double> values) {
    values[0] = std::numeric_limits<double>::infinity();
  });
  const std::string nothing = Report(path);
  EXPECT_EQ(nothing.substr(nothing.find("pixels: ")), "pixels: 1\nfinite: 0\nzeros: 0\n");
}

TEST(RasterReportTest, TellsTheHeaderOfRastersWithoutNumbers) {
  const TEMPORARY_DIRECTORY directory;
  const std::string colours = directory.File("colours.ras");
  MEM_MGR().Create(colours.c_str(), 0, 0, 6, 1, PIXEL_TYPE::RGB);
  const std::string report = Report(colours);
  EXPECT_NE(report.find("pixel type: rgb\n"), std::string::npos);
  EXPECT_EQ(report.find("pixels: "), std::string::npos);

  const LOG_CAPTURE log;
  std::filesystem::resize_file(colours, 60);
  std::ostringstream truncated;
  EXPECT_THROW(WriteRasterReport(colours, truncated), ERROR_CAN_NOT_READ_FILE);
  EXPECT_NE(truncated.str().find("width: 7\n"), std::string::npos);
  EXPECT_THROW(Report(directory.File("missing")), std::runtime_error);
}

TEST(AmplitudeHistogramTest, QuantilesAreExactWithinTheirClass) {
  AMPLITUDE_HISTOGRAM histogram;
  EXPECT_TRUE(std::isnan(histogram.Quantile(0.5)));
  for (int i = 1; i <= 1000; ++i) {
    histogram.Add(1e-3 * i * i * i);
  }
  for (const double share : {0.001, 0.25, 0.5, 0.999, 1.0}) {
    const double exact = 1e-3 * std::pow(std::ceil(share * 1000), 3);
    EXPECT_LE(histogram.Quantile(share), exact * (1 + 1e-7));
    EXPECT_GE(histogram.Quantile(share), exact * (1 - 0.0005));
  }
  histogram.Add(1e300);
  EXPECT_GT(histogram.Quantile(1.0), 1e38);
}

}  // namespace
