#include "product/product_files.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "common/automatic_scale.h"
#include "common/new_files.h"
#include "common/pool_values.h"
#include "common/raster_writer.h"
#include "pool/parameter_pool_read_write_change.h"

namespace {

using POOL = PARAMETER_POOL_READ_WRITE_CHANGE;

constexpr const char* epoch_key = "azimuth_time_epoch";

/// Makes a folder where there is none, and takes it away again if nothing has come into it.
class FOLDER {
 public:
  explicit FOLDER(const std::string& path)
      : path_(path), is_new_(std::filesystem::create_directories(path)) {}
  FOLDER(const FOLDER&) = delete;
  FOLDER& operator=(const FOLDER&) = delete;
  ~FOLDER() {
    std::error_code has_files;
    if (is_new_) {
      std::filesystem::remove(path_, has_files);
    }
  }

 private:
  std::filesystem::path path_;
  bool is_new_;
};

/// The INSAR pool of the directory, made among the new files where there is none.
std::string InsarPoolPath(const std::filesystem::path& directory, const NEW_FILES& files) {
  const std::filesystem::path path = directory / "insar.pool";
  if (std::filesystem::exists(path)) {
    return path;
  }
  WriteWholeFile(files.PathOf("insar.pool"), "# Made by slctool product\n");
  return files.PathOf("insar.pool");
}

/// That of the pool, or midnight before the first line.
UTC_TIME EpochOf(POOL& insar_pool, const UTC_TIME& first_line) {
  if (insar_pool.Exists(epoch_key)) {
    STRING text;
    insar_pool.Read(epoch_key, text);
    const auto epoch = UtcTimeOf(text.Text());
    if (!epoch) {
      throw std::runtime_error(std::string(insar_pool.FileName()) + ": " + epoch_key +
                               " is no time: " + text.Text());
    }
    return *epoch;
  }
  return {first_line.day + static_cast<std::int64_t>(std::floor(first_line.second / 86400.0)), 0.0};
}

/// The numbers of some lines, spread over the image.
std::vector<double> SampleNumbers(SLC_PIXELS& pixels, const SLC_IMAGE& image) {
  constexpr std::int64_t enough_pixels = 1 << 22;
  const std::int64_t lines_at_once = std::min<std::int64_t>(pixels.LinesAtOnce(), 8);
  const std::int64_t pieces =
      std::max<std::int64_t>(enough_pixels / (lines_at_once * image.n_samples), 2);
  const std::int64_t step = std::max(lines_at_once, (image.n_lines - lines_at_once) / (pieces - 1));
  std::vector<double> numbers;
  for (std::int64_t line = 0; line + lines_at_once <= image.n_lines; line += step) {
    std::vector<std::complex<double>> values(
        static_cast<std::size_t>(lines_at_once * image.n_samples));
    pixels.Read(line, values);
    for (const std::complex<double>& value : values) {
      numbers.insert(numbers.end(), {value.real(), value.imag()});
    }
  }
  return numbers;
}

/// Image and mask, both mapped, and what becomes of the pixels.
class RASTERS {
 public:
  RASTERS(const NEW_FILES& files, const std::string& role, PIXEL_TYPE source_type, PIXEL_TYPE type,
          PRODUCT_FILES_RESULT& result)
      : image_(result.image), from_binary16_(source_type == PIXEL_TYPE::C_FLT_2), result_(result) {
    CreateRaster(pixels_, files.PathOf(role + ".ras"), image_.n_samples, image_.n_lines, type);
    CreateRaster(mask_, files.PathOf(role + "_mask.ras"), image_.n_samples, image_.n_lines,
                 PIXEL_TYPE::U_INT_8);
  }

  void WriteLine(std::int64_t line, std::span<std::complex<double>> values) {
    unsigned char* const mask = mask_.Data() + line * image_.n_samples;
    for (const SAMPLE_RUN& run : image_.valid[static_cast<std::size_t>(line)]) {
      std::fill(mask + run.first, mask + run.end, static_cast<unsigned char>(1));
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
      values[i] *= result_.scale;
      if (!std::isfinite(values[i].real()) || !std::isfinite(values[i].imag())) {
        values[i] = 0.0;
        mask[i] = 0;
        ++result_.not_finite;
      }
    }
    result_.valid += std::count(mask, mask + image_.n_samples, 1);
    auto* const target = reinterpret_cast<std::byte*>(pixels_.Data()) +
                         line * image_.n_samples * pixels_.BytesPerPixel();
    const std::span numbers(reinterpret_cast<const double*>(values.data()), 2 * values.size());
    if (from_binary16_ && pixels_.PixelType() == PIXEL_TYPE::C_FLT_2) {
      EncodeStandardBinary16(numbers, target, result_.counts);
    } else {
      EncodePixels(pixels_.PixelType(), numbers, target, result_.counts);
    }
  }

 private:
  const SLC_IMAGE& image_;
  bool from_binary16_;
  PRODUCT_FILES_RESULT& result_;
  MEM_MGR pixels_;
  MEM_MGR mask_;
};

void WriteRasters(const NEW_FILES& files, SLC_PIXELS& pixels, PIXEL_TYPE type,
                  const std::string& role, PRODUCT_FILES_RESULT& result, const PROGRESS& progress) {
  RASTERS rasters(files, role, pixels.Type(), type, result);
  std::vector<std::complex<double>> values;
  const auto width = static_cast<std::size_t>(result.image.n_samples);
  const std::int64_t height = result.image.n_lines;
  for (std::int64_t line = 0; line < height;) {
    const std::int64_t n_lines = std::min(pixels.LinesAtOnce(), height - line);
    values.resize(static_cast<std::size_t>(n_lines) * width);
    pixels.Read(line, values);
    for (std::size_t i = 0; i < values.size(); i += width) {
      rasters.WriteLine(line++, std::span(values).subspan(i, width));
    }
    progress(static_cast<double>(line) / static_cast<double>(height));
  }
}

/// What a run reads of a slave pool, and where the pixels come from.
void WriteImagePool(const std::string& path, const std::string& product, const SLC_IMAGE_NAME& name,
                    const PRODUCT_FILES_RESULT& result) {
  const SLC_IMAGE& image = result.image;
  WriteWholeFile(path, "# Made by slctool product\n");
  POOL pool(path.c_str());
  pool.Write("product", STRING(product.c_str()));
  pool.Write("product_image", STRING(TextOf(name).c_str()));
  pool.Write("pixel_scale", result.scale);
  pool.Write("imaging_mode", STRING(image.imaging_mode.c_str()));
  pool.Write("prf", image.line_rate);
  pool.Write("range_sampling_frequency", image.range_sampling_frequency);
  pool.Write("oversampling", 1.0);
  pool.Write("first_rg_time", image.first_range_time);
  pool.Write("first_az_time", result.first_azimuth_time);
  pool.Write(epoch_key, STRING(result.epoch.c_str()));
  std::vector<double> azimuth_times = image.centroid.azimuth_times;
  for (double& time : azimuth_times) {
    time += result.first_azimuth_time;
  }
  pool.Write("fdc_poly_az_time", VectorOf(azimuth_times));
  pool.Write("fdc_poly_rg_ref_time",
             VectorOf(std::vector<double>(azimuth_times.size(), image.centroid.reference_time)));
  pool.Write("fdc_poly_coeff", MatrixOf(image.centroid.coefficients));
  pool.Update();
}

void AddToInsarPool(POOL& pool, const std::string& role, const PRODUCT_FILES_RESULT& result) {
  const SLC_IMAGE& image = result.image;
  pool.Write(epoch_key, STRING(result.epoch.c_str()));
  if (role == "slave") {
    pool.Write("slave_first_rg_time", image.first_range_time);
    pool.Write("slave_first_az_time", result.first_azimuth_time);
  } else {
    pool.Write("n_samples", static_cast<int>(image.n_samples));
    pool.Write("n_lines", static_cast<int>(image.n_lines));
  }
}

}  // namespace

PRODUCT_FILES_RESULT WriteProductFiles(const SLC_PRODUCT& product, const SLC_IMAGE_NAME& name,
                                       const PRODUCT_FILES_OPTIONS& options,
                                       const PROGRESS& progress) {
  PRODUCT_FILES_RESULT result;
  result.image = product.Describe(name);
  const auto pixels = product.Pixels(name);
  const PIXEL_TYPE usual_type =
      pixels->Type() == PIXEL_TYPE::C_INT_16 ? PIXEL_TYPE::C_INT_16 : PIXEL_TYPE::C_FLT_2;
  const PIXEL_TYPE type = options.type.value_or(usual_type);
  if (options.scale) {
    result.scale = *options.scale;
  } else {
    std::vector<double> numbers = SampleNumbers(*pixels, result.image);
    result.scale = AutomaticScale(type, numbers);
  }

  const FOLDER folder(options.directory);
  NEW_FILES files(options.directory);
  POOL insar_pool(InsarPoolPath(options.directory, files).c_str());
  const UTC_TIME epoch = EpochOf(insar_pool, result.image.first_line);
  result.epoch = TextOf(epoch);
  result.first_azimuth_time = SecondsBetween(epoch, result.image.first_line);
  WriteRasters(files, *pixels, type, options.role, result, progress);
  WriteImagePool(files.PathOf(options.role + ".pool"), options.product, name, result);
  AddToInsarPool(insar_pool, options.role, result);
  insar_pool.Update();
  files.Finish();
  return result;
}

std::string TextOf(const SLC_IMAGE_NAME& name) {
  return name.part + (name.burst > 0 ? " burst " + std::to_string(name.burst) : "") + " " +
         name.polarisation;
}
