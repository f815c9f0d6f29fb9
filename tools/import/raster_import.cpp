#include "import/raster_import.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <stdexcept>

#include "base/same_file.h"
#include "common/automatic_scale.h"
#include "common/new_files.h"
#include "common/raster_writer.h"
#include "gdal/gdal_types.h"

namespace {

/// What a source has for pixels without data, as its pixels hold it: texts such as -99999.99 are no
/// float.
std::optional<double> NoDataOf(const GDAL_SOURCE& source, int band) {
  const std::optional<double> no_data = source.NoData(band);
  constexpr double largest = std::numeric_limits<float>::max();
  const std::string type = source.DataType(band);
  const bool is_float = type == "Float32" || type == "CFloat32";
  return no_data && is_float && std::abs(*no_data) <= largest ? static_cast<float>(*no_data)
                                                              : no_data;
}

/// Reads the numbers of pixels, as `EncodePixels` takes them.
class NUMBER_SOURCE {
 public:
  NUMBER_SOURCE(const GDAL_SOURCE& source, const std::vector<int>& bands, bool pairs)
      : source_(source), bands_(bands), pairs_(pairs) {
    for (const int band : bands_) {
      no_data_.push_back(NoDataOf(source_, band));
    }
  }

  std::size_t NumbersAPixel() const noexcept { return pairs_ ? 2 : 1; }

  /// Of the pixels of a window, line by line.
  std::vector<double>& Read(const GDAL_WINDOW& window) {
    const std::size_t n_pixels =
        static_cast<std::size_t>(window.width) * static_cast<std::size_t>(window.height);
    numbers_.resize(n_pixels * NumbersAPixel());
    if (!pairs_) {
      source_.Read(bands_[0], window, numbers_);
    } else if (bands_.size() == 1) {
      // Complex numbers are laid out as two numbers by the standard.
      auto* const pairs = reinterpret_cast<std::complex<double>*>(numbers_.data());
      source_.Read(bands_[0], window, std::span(pairs, n_pixels));
    } else {
      ReadParts(window, n_pixels);
    }
    return numbers_;
  }

  /// Whether the numbers are those of a pixel without data: one band of pairs has its value in the
  /// real part, of two bands either one tells.
  bool IsNoData(std::span<const double> pixel) const noexcept {
    if (bands_.size() > 1) {
      return pixel[0] == no_data_[0] || pixel[1] == no_data_[1];
    }
    return pixel[0] == no_data_[0] && (!pairs_ || pixel[1] == 0.0 || pixel[1] == pixel[0]);
  }

 private:
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
  bool pairs_;
  std::vector<std::optional<double>> no_data_;
  std::vector<double> numbers_;
  std::vector<double> parts_;
};

bool IsWithin(const GDAL_WINDOW& window, const GDAL_WINDOW& whole) {
  return window.x >= 0 && window.y >= 0 && window.width >= 1 && window.height >= 1 &&
         window.width <= whole.width - window.x && window.height <= whole.height - window.y;
}

std::vector<int> ChooseBands(const IMPORT_OPTIONS& options, const GDAL_SOURCE& source) {
  if (!options.bands.empty()) {
    return options.bands;
  }
  if (source.BandCount() == 2 && !source.IsComplex(1) && !source.IsComplex(2)) {
    throw std::invalid_argument(source.Path() +
                                " has two bands: --band 1,2 takes them as real and imaginary part, "
                                "--band 1 the first alone");
  }
  return {1};
}

/// Complex pixels get a type that `resample` takes.
PIXEL_TYPE ChooseType(const IMPORT_OPTIONS& options, const std::vector<int>& bands,
                      const GDAL_SOURCE& source) {
  if (options.type) {
    return *options.type;
  }
  const PIXEL_TYPE type = PixelTypeForGdal(source.DataType(bands[0]));
  if (bands.size() == 1 && !HoldsPairs(type)) {
    return type;
  }
  switch (type) {
    case PIXEL_TYPE::U_INT_8:
      return PIXEL_TYPE::C_U_INT_8;
    case PIXEL_TYPE::INT_16:
    case PIXEL_TYPE::C_INT_16:
      return PIXEL_TYPE::C_INT_16;
    default:
      return PIXEL_TYPE::C_FLT_2;
  }
}

void CheckFits(const IMPORT_OPTIONS& options, const std::vector<int>& bands,
               const GDAL_SOURCE& source, const IMPORT_RESULT& result) {
  const GDAL_WINDOW whole = source.Whole();
  if (!IsWithin(result.window, whole)) {
    throw std::invalid_argument("the window is not within the " + std::to_string(whole.width) +
                                " x " + std::to_string(whole.height) + " pixels of " +
                                source.Path());
  }
  for (const int band : bands) {
    if (source.IsComplex(band) && (bands.size() > 1 || !HoldsPairs(result.type))) {
      throw std::invalid_argument("band " + std::to_string(band) + " of " + source.Path() +
                                  " is complex; take it alone and a type that begins with c_");
    }
  }
  if (bands.size() > 1 && !HoldsPairs(result.type)) {
    throw std::invalid_argument("two bands make a type that begins with c_");
  }
  for (const std::string& path : {options.target, options.mask}) {
    if (source.IsMadeOf(path)) {
      throw std::invalid_argument(path + " belongs to the source");
    }
  }
  if (!options.mask.empty() && IsSamePath(options.target, options.mask)) {
    throw std::invalid_argument("raster and mask have the name " + options.mask);
  }
}

/// The numbers of some lines, spread over the window.
double ChooseScale(NUMBER_SOURCE& numbers, const IMPORT_RESULT& result) {
  constexpr int enough_pixels = 1 << 22;
  const GDAL_WINDOW& window = result.window;
  const int step =
      std::max(1, static_cast<int>(std::int64_t{window.width} * window.height / enough_pixels));
  std::vector<double> sample;
  for (int line = 0; line < window.height; line += step) {
    const std::vector<double>& read = numbers.Read({window.x, window.y + line, window.width, 1});
    for (std::size_t i = 0; i < read.size(); i += numbers.NumbersAPixel()) {
      const std::span pixel = std::span(read).subspan(i, numbers.NumbersAPixel());
      if (!numbers.IsNoData(pixel)) {
        sample.insert(sample.end(), pixel.begin(), pixel.end());
      }
    }
  }
  return AutomaticScale(result.type, sample);
}

/// Raster and mask, both mapped, which blocks of lines of the source are put into.
class IMPORTED_RASTER {
 public:
  IMPORTED_RASTER(const std::string& path, const std::string& mask_path,
                  const IMPORT_OPTIONS& options, IMPORT_RESULT& result)
      : options_(options), result_(result) {
    CreateRaster(raster_, path, result.width, result.height, result.type);
    if (!mask_path.empty()) {
      CreateRaster(mask_, mask_path, result.width, result.height, PIXEL_TYPE::U_INT_8);
    }
  }

  /// Lines of the window from `first_line` on.
  void Put(int first_line, int n_lines, const NUMBER_SOURCE& source, std::vector<double>& numbers) {
    const std::vector<unsigned char> valid = CleanAndScale(source, numbers);
    const std::size_t parts = source.NumbersAPixel();
    const auto width = static_cast<std::size_t>(result_.window.width);
    const auto height = static_cast<std::size_t>(n_lines);
    if (!options_.transpose && !options_.flip_samples) {
      for (std::size_t row = 0; row < height; ++row) {
        PutRow(first_line + static_cast<std::int64_t>(row), 0,
               std::span(numbers).subspan(row * width * parts, width * parts),
               std::span(valid).subspan(row * width, width));
      }
      return;
    }
    // A row of the raster is a line of the source, or a piece of one of its columns.
    const std::size_t rows = options_.transpose ? width : height;
    const std::size_t length = options_.transpose ? height : width;
    std::vector<double> row_numbers(length * parts);
    std::vector<unsigned char> row_valid(length);
    for (std::size_t row = 0; row < rows; ++row) {
      for (std::size_t i = 0; i < length; ++i) {
        const std::size_t from = options_.transpose ? i * width + row : row * width + i;
        const std::size_t to = options_.flip_samples ? length - 1 - i : i;
        row_valid[to] = valid[from];
        std::copy_n(numbers.begin() + static_cast<std::ptrdiff_t>(from * parts), parts,
                    row_numbers.begin() + static_cast<std::ptrdiff_t>(to * parts));
      }
      const std::int64_t line =
          static_cast<std::int64_t>(row) + (options_.transpose ? 0 : first_line);
      const std::int64_t sample = options_.transpose ? first_line : 0;
      PutRow(line, sample, row_numbers, row_valid);
    }
  }

 private:
  /// Tells of every pixel whether it has data, and makes 0 of those that have none.
  std::vector<unsigned char> CleanAndScale(const NUMBER_SOURCE& source,
                                           std::vector<double>& numbers) {
    const std::size_t parts = source.NumbersAPixel();
    std::vector<unsigned char> valid(numbers.size() / parts, 1);
    for (std::size_t i = 0; i < valid.size(); ++i) {
      const std::span pixel = std::span(numbers).subspan(i * parts, parts);
      const bool no_data = source.IsNoData(pixel);
      const bool finite = std::isfinite(pixel.front()) && std::isfinite(pixel.back());
      result_.no_data += no_data ? 1 : 0;
      result_.not_finite += !no_data && !finite ? 1 : 0;
      valid[i] = !no_data && finite ? 1 : 0;
      for (double& number : pixel) {
        number = valid[i] != 0 ? number * result_.scale : 0.0;
      }
    }
    return valid;
  }

  void PutRow(std::int64_t line, std::int64_t sample, std::span<const double> numbers,
              std::span<const unsigned char> valid) {
    const auto length = static_cast<std::int64_t>(valid.size());
    const std::int64_t y = options_.flip_lines ? result_.height - 1 - line : line;
    const std::int64_t x = options_.flip_samples ? result_.width - sample - length : sample;
    auto* const pixels = reinterpret_cast<std::byte*>(raster_.Data());
    EncodePixels(result_.type, numbers, pixels + (y * result_.width + x) * raster_.BytesPerPixel(),
                 result_.counts);
    if (mask_.Data() != nullptr) {
      std::copy(valid.begin(), valid.end(), mask_.Data() + y * result_.width + x);
    }
  }

  const IMPORT_OPTIONS& options_;
  IMPORT_RESULT& result_;
  MEM_MGR raster_;
  MEM_MGR mask_;
};

/// Of a transposed raster every line is touched for each block: the fewer, the better.
int LinesAtOnce(const GDAL_SOURCE& source, int band, const IMPORT_OPTIONS& options,
                const GDAL_WINDOW& window) {
  constexpr int many_pixels = 1 << 22;
  const int usual = source.LinesAtOnce(band, window);
  return options.transpose ? std::max(usual, many_pixels / window.width) : usual;
}

}  // namespace

IMPORT_RESULT ImportRaster(const IMPORT_OPTIONS& options, const PROGRESS& progress) {
  const GDAL_SOURCE source(options.source);
  const std::vector<int> bands = ChooseBands(options, source);
  IMPORT_RESULT result;
  result.window = options.window.value_or(source.Whole());
  result.type = ChooseType(options, bands, source);
  CheckFits(options, bands, source, result);
  const GDAL_WINDOW& window = result.window;
  result.width = options.transpose ? window.height : window.width;
  result.height = options.transpose ? window.width : window.height;
  NUMBER_SOURCE numbers(source, bands, HoldsPairs(result.type));
  result.scale = options.scale ? *options.scale : ChooseScale(numbers, result);

  NEW_FILE file(options.target);
  std::optional<NEW_FILE> mask_file;
  if (!options.mask.empty()) {
    mask_file.emplace(options.mask);
  }
  IMPORTED_RASTER raster(file.Path(), mask_file ? mask_file->Path() : "", options, result);
  const int lines_at_once = LinesAtOnce(source, bands[0], options, window);
  for (int line = 0; line < window.height; line += lines_at_once) {
    const int n_lines = std::min(lines_at_once, window.height - line);
    raster.Put(line, n_lines, numbers,
               numbers.Read({window.x, window.y + line, window.width, n_lines}));
    progress(static_cast<double>(line + n_lines) / window.height);
  }
  if (mask_file) {
    mask_file->Finish();
  }
  file.Finish();
  return result;
}
