#include "product/safe_product.h"

#include <cpl_string.h>
#include <cpl_vsi.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "gdal/gdal_errors.h"
#include "gdal/gdal_source.h"
#include "product/sentinel_centroid.h"

namespace {

const std::string image_information = "imageAnnotation.imageInformation.";

/// The names in a folder, on disk or in a zip, in order; none where there is no such folder.
std::vector<std::string> NamesIn(const std::string& folder) {
  const GDAL_ERRORS ignored;
  const CPLStringList entries(VSIReadDir(folder.c_str()));
  std::vector<std::string> names(entries.List(), entries.List() + entries.size());
  std::sort(names.begin(), names.end());
  return names;
}

bool IsProductFolder(const std::string& folder) {
  return !NamesIn(folder + "/annotation").empty();
}

bool IsThere(const std::string& path) {
  VSIStatBufL status{};
  return VSIStatL(path.c_str(), &status) == 0;
}

/// Lines of a TIFF of complex integers.
class MEASUREMENT final : public SLC_PIXELS {
 public:
  MEASUREMENT(const std::string& path, const ANNOTATION& annotation, int first_line, int n_lines)
      : source_(path), first_line_(first_line), n_lines_(n_lines) {
    const GDAL_WINDOW whole = source_.Whole();
    if (whole.width != annotation.Count(image_information + "numberOfSamples") ||
        whole.height != annotation.Count(image_information + "numberOfLines")) {
      annotation.Refuse(image_information + "numberOfSamples and numberOfLines",
                        "are not those of " + path + ", " + std::to_string(whole.width) + " x " +
                            std::to_string(whole.height));
    }
    if (!source_.IsComplex(1)) {
      throw std::runtime_error(path + " holds no complex pixels");
    }
  }

  std::int64_t LinesAtOnce() const override {
    return std::min(source_.LinesAtOnce(1, source_.Whole()), n_lines_);
  }

  PIXEL_TYPE Type() const override { return PIXEL_TYPE::C_INT_16; }

  void Read(std::int64_t first_line, std::span<std::complex<double>> values) override {
    const int width = source_.Whole().width;
    source_.Read(1,
                 {0, first_line_ + static_cast<int>(first_line), width,
                  static_cast<int>(values.size()) / width},
                 values);
  }

 private:
  GDAL_SOURCE source_;
  int first_line_;
  int n_lines_;
};

/// Valid samples of the lines of a burst, -1 in those that have none.
std::vector<std::vector<SAMPLE_RUN>> ValidSamples(const ANNOTATION& burst, const SLC_IMAGE& image) {
  const auto n_lines = static_cast<std::size_t>(image.n_lines);
  const std::vector<double> first = burst.Numbers("firstValidSample", n_lines);
  const std::vector<double> last = burst.Numbers("lastValidSample", n_lines);
  const auto most = static_cast<double>(image.n_samples - 1);
  std::vector<std::vector<SAMPLE_RUN>> valid(n_lines);
  for (std::size_t line = 0; line < n_lines; ++line) {
    if (first[line] >= 0.0 && first[line] <= std::min(last[line], most)) {
      valid[line].push_back({static_cast<std::int64_t>(first[line]),
                             static_cast<std::int64_t>(std::min(last[line], most)) + 1});
    }
  }
  return valid;
}

}  // namespace

std::string SAFE_PRODUCT::FolderIn(const std::string& path) {
  const std::filesystem::path given = std::filesystem::absolute(path);
  if (std::filesystem::is_directory(given)) {
    return IsProductFolder(given) ? given.string() : "";
  }
  if (IsProductFolder(given.parent_path()) && given.filename() == "manifest.safe") {
    return given.parent_path();
  }
  std::string zip = "/vsizip/{" + given.string() + "}";
  if (IsProductFolder(zip)) {
    return zip;
  }
  for (const std::string& name : NamesIn(zip)) {
    std::string folder = std::filesystem::path(zip) / name;
    if (IsProductFolder(folder)) {
      return folder;
    }
  }
  return "";
}

SAFE_PRODUCT::SAFE_PRODUCT(const std::string& folder) {
  for (const std::string& name : NamesIn(folder + "/annotation")) {
    if (name.ends_with(".xml")) {
      swaths_.push_back(ReadSwath(folder, name.substr(0, name.size() - 4)));
    }
  }
  if (swaths_.empty()) {
    throw std::runtime_error(folder + "/annotation holds no .xml");
  }
  for (const SWATH& swath : swaths_) {
    for (int burst = 1; burst <= std::ssize(swath.bursts); ++burst) {
      images_.push_back({swath.name, burst, swath.polarisation});
    }
    if (!swath.HasBursts()) {
      images_.push_back({swath.name, 0, swath.polarisation});
    }
  }
}

SAFE_PRODUCT::SWATH SAFE_PRODUCT::ReadSwath(const std::string& folder, const std::string& stem) {
  const ANNOTATION_FILE annotation(folder + "/annotation/" + stem + ".xml");
  if (annotation.Text("adsHeader.productType") != "SLC") {
    annotation.Refuse("adsHeader.productType", "is not SLC");
  }
  SWATH swath = {annotation,
                 folder + "/measurement/" + stem + ".tiff",
                 annotation.Text("adsHeader.swath"),
                 annotation.Text("adsHeader.polarisation"),
                 annotation.Text("adsHeader.mode"),
                 {}};
  // Stripmap may also go by the name of its beam, S1 to S6.
  swath.mode = swath.mode.starts_with("S") ? "SM" : swath.mode;
  if (swath.mode != "SM" && swath.mode != "IW" && swath.mode != "EW") {
    annotation.Refuse("adsHeader.mode", "is " + swath.mode + ", not SM, IW or EW");
  }
  if (swath.HasBursts()) {
    swath.bursts = annotation.Children("swathTiming.burstList", "burst");
    if (swath.bursts.empty()) {
      annotation.Refuse("swathTiming.burstList", "holds no burst");
    }
  }
  return swath;
}

std::string SAFE_PRODUCT::Description() const {
  return "SLC of Sentinel-1 in SAFE, mode " + swaths_.front().mode;
}

const SAFE_PRODUCT::SWATH& SAFE_PRODUCT::SwathOf(const SLC_IMAGE_NAME& name) const {
  return *std::find_if(swaths_.begin(), swaths_.end(), [&](const SWATH& swath) {
    return swath.name == name.part && swath.polarisation == name.polarisation;
  });
}

SLC_IMAGE SAFE_PRODUCT::Describe(const SLC_IMAGE_NAME& name) const {
  const SWATH& swath = SwathOf(name);
  const ANNOTATION& annotation = swath.annotation;
  const auto positive = [&](const std::string& path) {
    const double number = annotation.Number(path);
    if (number <= 0.0) {
      annotation.Refuse(path, "is not positive");
    }
    return number;
  };
  SLC_IMAGE image;
  image.imaging_mode = swath.mode;
  image.n_samples = annotation.Count(image_information + "numberOfSamples");
  image.n_lines = annotation.Count(image_information + "numberOfLines");
  image.line_rate = 1.0 / positive(image_information + "azimuthTimeInterval");
  image.first_range_time = positive(image_information + "slantRangeTime");
  image.range_sampling_frequency =
      positive("generalAnnotation.productInformation.rangeSamplingRate");
  image.range_spacing = speed_of_light / (2.0 * image.range_sampling_frequency);
  image.azimuth_spacing = annotation.Number(image_information + "azimuthPixelSpacing");
  if (image.n_samples < 1 || image.n_lines < 1) {
    annotation.Refuse(image_information + "numberOfSamples and numberOfLines", "are not positive");
  }
  if (!swath.HasBursts()) {
    image.first_line = annotation.Time(image_information + "productFirstLineUtcTime");
    image.centroid = StripmapCentroid(annotation, image);
    image.valid.assign(static_cast<std::size_t>(image.n_lines), {{0, image.n_samples}});
    return image;
  }
  const std::int64_t lines_in_all = image.n_lines;
  image.n_lines = annotation.Count("swathTiming.linesPerBurst");
  if (image.n_lines < 2 || image.n_lines * std::ssize(swath.bursts) != lines_in_all ||
      annotation.Count("swathTiming.samplesPerBurst") != image.n_samples) {
    annotation.Refuse("swathTiming.linesPerBurst and samplesPerBurst",
                      "do not fit numberOfLines and numberOfSamples of the image");
  }
  const ANNOTATION& burst = swath.bursts[static_cast<std::size_t>(name.burst - 1)];
  image.first_line = burst.Time("azimuthTime");
  image.centroid = BurstCentroid(annotation, image);
  image.valid = ValidSamples(burst, image);
  return image;
}

std::unique_ptr<SLC_PIXELS> SAFE_PRODUCT::Pixels(const SLC_IMAGE_NAME& name) const {
  const SWATH& swath = SwathOf(name);
  if (!IsThere(swath.measurement)) {
    throw std::runtime_error(swath.measurement + " is missing");
  }
  const int n_lines = swath.annotation.Count(
      swath.HasBursts() ? "swathTiming.linesPerBurst" : image_information + "numberOfLines");
  return std::make_unique<MEASUREMENT>(swath.measurement, swath.annotation,
                                       swath.HasBursts() ? (name.burst - 1) * n_lines : 0, n_lines);
}
