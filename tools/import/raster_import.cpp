#include "import/raster_import.h"

#include <algorithm>
#include <complex>
#include <stdexcept>

#include "common/new_files.h"
#include "gdal/gdal_types.h"
#include "raster/mem_mgr.h"

namespace {

/// Reads the numbers of pixels, as `EncodePixels` takes them.
class NUMBER_SOURCE {
 public:
  NUMBER_SOURCE(const GDAL_SOURCE& source, const IMPORT_OPTIONS& options, PIXEL_TYPE type)
      : source_(source), bands_(options.bands), scale_(options.scale), pairs_(HoldsPairs(type)) {}

  const std::vector<double>& Read(const GDAL_WINDOW& window) {
    const std::size_t n_pixels =
        static_cast<std::size_t>(window.width) * static_cast<std::size_t>(window.height);
    numbers_.resize(n_pixels * (pairs_ ? 2 : 1));
    if (!pairs_) {
      source_.Read(bands_[0], window, numbers_);
    } else if (bands_.size() == 1) {
      source_.Read(bands_[0], window, std::span(Pairs(), n_pixels));
    } else {
      ReadParts(window, n_pixels);
    }
    for (double& number : numbers_) {
      number *= scale_;
    }
    return numbers_;
  }

 private:
  /// Complex numbers are laid out as two numbers by the standard.
  std::complex<double>* Pairs() { return reinterpret_cast<std::complex<double>*>(numbers_.data()); }

  void ReadParts(const GDAL_WINDOW& window, std::size_t n_pixels) {
    parts_.resize(n_pixels);
    for (std::size_t part = 0; part < 2; ++part) {
      source_.Read(bands_[part], window, parts_);
      for (std::size_t i = 0; i < n_pixels; ++i) {
        numbers_[2 * i + part] = parts_[i];
      }
    }
  }

  const GDAL_SOURCE& source_;
  const std::vector<int>& bands_;
  double scale_;
  bool pairs_;
  std::vector<double> numbers_;
  std::vector<double> parts_;
};

bool IsWithin(const GDAL_WINDOW& window, const GDAL_WINDOW& whole) {
  return window.x >= 0 && window.y >= 0 && window.width >= 1 && window.height >= 1 &&
         window.width <= whole.width - window.x && window.height <= whole.height - window.y;
}

PIXEL_TYPE ChooseType(const IMPORT_OPTIONS& options, const GDAL_SOURCE& source) {
  if (options.type) {
    return *options.type;
  }
  const PIXEL_TYPE type = PixelTypeForGdal(source.DataType(options.bands[0]));
  if (options.bands.size() == 1) {
    return type;
  }
  switch (type) {
    case PIXEL_TYPE::U_INT_8:
      return PIXEL_TYPE::C_U_INT_8;
    case PIXEL_TYPE::INT_16:
      return PIXEL_TYPE::C_INT_16;
    case PIXEL_TYPE::FLT_6:
      return PIXEL_TYPE::C_FLT_6;
    default:
      return PIXEL_TYPE::C_FLT_15;
  }
}

void CheckFits(const IMPORT_OPTIONS& options, const GDAL_SOURCE& source,
               const IMPORT_RESULT& result) {
  const GDAL_WINDOW whole = source.Whole();
  if (!IsWithin(result.window, whole)) {
    throw std::invalid_argument("the window is not within the " + std::to_string(whole.width) +
                                " x " + std::to_string(whole.height) + " pixels of " +
                                source.Path());
  }
  for (const int band : options.bands) {
    if (source.IsComplex(band) && (options.bands.size() > 1 || !HoldsPairs(result.type))) {
      throw std::invalid_argument("band " + std::to_string(band) + " of " + source.Path() +
                                  " is complex; take it alone and a type that begins with c_");
    }
  }
  if (options.bands.size() > 1 && !HoldsPairs(result.type)) {
    throw std::invalid_argument("two bands make a type that begins with c_");
  }
  if (source.IsMadeOf(options.target)) {
    throw std::invalid_argument(options.target + " belongs to the source");
  }
}

void Fill(MEM_MGR& raster, NUMBER_SOURCE& numbers, int lines_at_once, IMPORT_RESULT& result,
          const PROGRESS& progress) {
  const GDAL_WINDOW& window = result.window;
  auto* pixels = reinterpret_cast<std::byte*>(raster.Data());
  const std::int64_t line_length = raster.Width() * raster.BytesPerPixel();
  for (int line = 0; line < window.height; line += lines_at_once) {
    const int n_lines = std::min(lines_at_once, window.height - line);
    EncodePixels(result.type, numbers.Read({window.x, window.y + line, window.width, n_lines}),
                 pixels + line * line_length, result.counts);
    progress(static_cast<double>(line + n_lines) / window.height);
  }
}

}  // namespace

IMPORT_RESULT ImportRaster(const IMPORT_OPTIONS& options, const PROGRESS& progress) {
  const GDAL_SOURCE source(options.source);
  IMPORT_RESULT result;
  result.window = options.window.value_or(source.Whole());
  result.type = ChooseType(options, source);
  CheckFits(options, source, result);

  NEW_FILE file(options.target);
  MEM_MGR raster;
  raster.Create(file.Path().c_str(), 0, 0, result.window.width - 1, result.window.height - 1,
                result.type);
  NUMBER_SOURCE numbers(source, options, result.type);
  Fill(raster, numbers, source.LinesAtOnce(options.bands[0], result.window), result, progress);
  file.Finish();
  return result;
}
