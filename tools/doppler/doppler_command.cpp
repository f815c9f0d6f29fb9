#include "doppler/doppler_command.h"

#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/raster_reader.h"
#include "doppler/centroid_text.h"
#include "pool/parameter_pool.h"

namespace {

struct DOPPLER_OPTIONS {
  std::string slave;
  std::string mask;
  std::string pool;
  std::string insar_pool;
  std::string picture;
};

/// More lines make the figures no better for the eye.
constexpr std::int64_t most_pairs = 16384;

/// A raster whose pixels are 0 where a mask, if there is one, is.
class MASKED_RASTER {
 public:
  MASKED_RASTER(const std::string& image, const std::string& mask) : image_(image) {
    if (!image_.IsComplex()) {
      throw std::invalid_argument("not complex: " + image);
    }
    if (!mask.empty()) {
      mask_.emplace(mask);
      if (mask_->Width() != image_.Width() || mask_->Height() != image_.Height()) {
        throw std::invalid_argument(image + " and " + mask + " have different sizes");
      }
    }
  }

  IMAGE_LINES Lines() const {
    return {.n_samples = image_.Width(),
            .n_lines = image_.Height(),
            .read = [this](std::int64_t line, std::span<std::complex<double>> values) {
              Read(line, values);
            }};
  }

 private:
  void Read(std::int64_t line, std::span<std::complex<double>> values) const {
    image_.ReadLine(line, 0, values);
    if (mask_) {
      std::vector<std::complex<double>> valid(values.size());
      mask_->ReadLine(line, 0, valid);
      for (std::size_t sample = 0; sample < values.size(); ++sample) {
        if (valid[sample] == 0.0) {
          values[sample] = 0.0;
        }
      }
    }
  }

  RASTER_READER image_;
  std::optional<RASTER_READER> mask_;
};

/// The annotation stands in the slave pool, the start times of the slave in the INSAR pool.
void ReadAnnotation(const DOPPLER_OPTIONS& options, DOPPLER_CENTROID_MODEL& model) {
  const auto beside = (std::filesystem::path(options.pool).parent_path() / "insar.pool").string();
  PARAMETER_POOL slave_pool(options.pool.c_str());
  PARAMETER_POOL insar_pool(options.insar_pool.empty() ? beside.c_str()
                                                       : options.insar_pool.c_str());
  model.Setup(slave_pool);
  insar_pool.Read("slave_first_rg_time", model.range_start_time);
  insar_pool.Read("slave_first_az_time", model.azimuth_start_time);
}

void MeasureDoppler(const DOPPLER_OPTIONS& options) {
  const MASKED_RASTER slave(options.slave, options.mask);
  DOPPLER_CENTROID_MODEL model;
  const bool is_annotated = !options.pool.empty();
  if (is_annotated) {
    ReadAnnotation(options, model);
  }
  const IMAGE_CENTROID centroid =
      MeasureCentroid(slave.Lines(), is_annotated ? &model : nullptr, most_pairs);
  WriteCentroid(centroid, model.Prf(), std::cout);
  if (const std::string objection = centroid.Objection(); is_annotated && !objection.empty()) {
    std::cout << "warning: " << objection << "\n";
  }
  if (!options.picture.empty()) {
    Beside(Draw(CentroidPlot(centroid.along_range, "sample", model.Prf())),
           Draw(CentroidPlot(centroid.along_azimuth, "line", model.Prf())))
        .WritePng(options.picture);
  }
}

}  // namespace

void AddDopplerCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand(
      "doppler", "Measure the Doppler centroid of an image and compare it with the annotation");
  const auto options = std::make_shared<DOPPLER_OPTIONS>();
  command.add_option("slave", options->slave, "Complex raster")->required();
  command.add_option("--mask", options->mask, "Measure only where this raster is not 0");
  CLI::Option* pool =
      command.add_option("--pool", options->pool, "Slave pool with the annotated centroid");
  command
      .add_option("--insar-pool", options->insar_pool,
                  "Pool with the slave's start times; usually insar.pool beside the slave pool")
      ->needs(pool);
  command.add_option("--png", options->picture, "Picture of the profiles to write");
  command.callback([options] { MeasureDoppler(*options); });
}
