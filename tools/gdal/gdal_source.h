#pragma once

#include <complex>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

class GDALDataset;
class GDALRasterBand;

/// A rectangle of a GDAL raster, in pixels from its upper left corner.
struct GDAL_WINDOW {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

/// Read access to any raster that GDAL opens. Bands count from 1. What goes wrong is a
/// std::runtime_error with what GDAL says about it; its warnings go to standard error.
class GDAL_SOURCE {
 public:
  /// Throws also for a container of rasters without pixels of its own, and names what it contains;
  /// and always where the program was built without GDAL.
  explicit GDAL_SOURCE(const std::string& path);

  const std::string& Path() const noexcept { return path_; }
  GDAL_WINDOW Whole() const;
  /// Whether writing to this path would change the raster: it names one of its files.
  bool IsMadeOf(const std::string& path) const;

  int BandCount() const;
  bool IsComplex(int band) const;
  /// By its GDAL name, such as "CInt16".
  std::string DataType(int band) const;
  /// The value of pixels without data, if the band has one.
  std::optional<double> NoData(int band) const;

  /// Lines of a window, one after the other. `values` has room for as many as fit. NaN stands
  /// where a mask of the source, one of its own and not an alpha band, tells that there is no data.
  void Read(int band, const GDAL_WINDOW& window, std::span<double> values) const;
  void Read(int band, const GDAL_WINDOW& window, std::span<std::complex<double>> values) const;

  /// The number of lines of a window that are best read at once: a few megabytes, and whole blocks
  /// of the file.
  int LinesAtOnce(int band, const GDAL_WINDOW& window) const;

 private:
  struct CLOSE {
    void operator()(GDALDataset* dataset) const noexcept;
  };

  GDALRasterBand& Band(int band) const;

  std::string path_;
  std::unique_ptr<GDALDataset, CLOSE> dataset_;
};
