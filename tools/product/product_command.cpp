#include "product/product_command.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "common/encoding_report.h"
#include "common/number_checks.h"
#include "common/scale_option.h"
#include "product/open_product.h"
#include "product/product_files.h"

namespace {

struct PRODUCT_OPTIONS {
  std::string product;
  std::string directory;
  std::string role;
  std::string part;
  int burst = 0;
  std::string polarisation;
  std::optional<double> scale = 1.0;
  std::optional<PIXEL_TYPE> type;
};

/// The least and the largest centroid over an image [Hz].
std::array<double, 2> CentroidRange(const SLC_IMAGE& image) {
  constexpr int points = 33;
  std::array<double, 2> range = {HUGE_VAL, -HUGE_VAL};
  for (int i = 0; i < points; ++i) {
    for (int k = 0; k < points; ++k) {
      const double line = static_cast<double>(image.n_lines - 1) * i / (points - 1);
      const double sample = static_cast<double>(image.n_samples - 1) * k / (points - 1);
      const double centroid = image.centroid.At(
          line / image.line_rate, image.first_range_time + sample / image.range_sampling_frequency);
      range = {std::min(range[0], centroid), std::max(range[1], centroid)};
    }
  }
  return range;
}

/// Lines and samples, first to last, within which all valid pixels are.
std::string ValidPart(const SLC_IMAGE& image) {
  std::array<std::int64_t, 2> lines = {image.n_lines, -1};
  SAMPLE_RUN samples = {image.n_samples, 0};
  for (std::int64_t line = 0; line < image.n_lines; ++line) {
    for (const SAMPLE_RUN& run : image.valid[static_cast<std::size_t>(line)]) {
      lines = {std::min(lines[0], line), line};
      samples = {std::min(samples.first, run.first), std::max(samples.end, run.end)};
    }
  }
  if (lines[1] < 0) {
    return "nothing";
  }
  return "lines " + std::to_string(lines[0]) + " to " + std::to_string(lines[1]) + ", samples " +
         std::to_string(samples.first) + " to " + std::to_string(samples.end - 1);
}

/// With a fixed number of digits behind the point.
std::string Fixed(double number, int digits) {
  const double unit = std::pow(10.0, -digits);
  std::ostringstream text;
  // No minus before a zero.
  text << std::fixed << std::setprecision(digits) << (std::abs(number) < 0.5 * unit ? 0.0 : number);
  return text.str();
}

void PrintImage(const SLC_IMAGE_NAME& name, const SLC_IMAGE& image) {
  const auto [least, most] = CentroidRange(image);
  const UTC_TIME last_line =
      image.first_line + static_cast<double>(image.n_lines - 1) / image.line_rate;
  std::cout << TextOf(name) << "\n"
            << "  size: " << image.n_samples << " samples x " << image.n_lines << " lines\n"
            << "  first line: " << TextOf(image.first_line) << " UTC\n"
            << "  last line: " << TextOf(last_line) << " UTC\n"
            << "  first sample: " << Fixed(image.first_range_time, 12) << " s, two-way\n"
            << "  PRF: " << Fixed(image.line_rate, 6) << " Hz\n"
            << "  range sampling frequency: " << Fixed(image.range_sampling_frequency, 3) << " Hz\n"
            << "  spacing: " << Fixed(image.range_spacing, 3) << " m in slant range, "
            << Fixed(image.azimuth_spacing, 3) << " m in azimuth\n"
            << "  centroid: " << Fixed(least, 2) << " to " << Fixed(most, 2) << " Hz ("
            << Fixed(least / image.line_rate, 3) << " to " << Fixed(most / image.line_rate, 3)
            << " PRF)\n"
            << "  largest departure of the centroid's polynomials: " << image.centroid.departure
            << " Hz\n"
            << "  valid: " << ValidPart(image) << "\n";
}

std::vector<SLC_IMAGE_NAME> Chosen(const SLC_PRODUCT& product, const PRODUCT_OPTIONS& options) {
  std::vector<SLC_IMAGE_NAME> chosen;
  std::copy_if(product.Images().begin(), product.Images().end(), std::back_inserter(chosen),
               [&](const SLC_IMAGE_NAME& name) {
                 return (options.part.empty() || name.part == options.part) &&
                        (options.burst == 0 || name.burst == options.burst) &&
                        (options.polarisation.empty() || name.polarisation == options.polarisation);
               });
  if (chosen.empty()) {
    std::string images;
    for (const SLC_IMAGE_NAME& name : product.Images()) {
      images += "\n  " + TextOf(name);
    }
    throw std::invalid_argument(options.product + " has no such image; it has:" + images);
  }
  return chosen;
}

void ListImages(const SLC_PRODUCT& product, const PRODUCT_OPTIONS& options) {
  std::cout << options.product << ": " << product.Description() << "\n";
  for (const SLC_IMAGE_NAME& name : Chosen(product, options)) {
    PrintImage(name, product.Describe(name));
  }
}

void PrintResult(const PRODUCT_FILES_RESULT& result) {
  const std::int64_t n_pixels = result.image.n_samples * result.image.n_lines;
  PrintEncoding(result.scale, result.counts, 2 * n_pixels);
  std::cout << "pixels that were no number: " << result.not_finite << "\n"
            << "valid share: " << static_cast<double>(result.valid) / static_cast<double>(n_pixels)
            << "\n"
            << "azimuth times count from: " << result.epoch << " UTC\n";
  if (result.image.centroid.departure > 0.01 * result.image.line_rate) {
    std::cerr << "slctool: warning: polynomials do not follow the product's centroid well\n";
  }
  if (result.valid == 0) {
    std::cerr << "slctool: warning: no pixel is valid by the product; slctool mask makes a mask of "
                 "the pixels\n";
  }
}

void WriteFiles(const SLC_PRODUCT& product, const PRODUCT_OPTIONS& options) {
  const std::vector<SLC_IMAGE_NAME> chosen = Chosen(product, options);
  if (chosen.size() > 1) {
    std::string names;
    for (const SLC_IMAGE_NAME& name : chosen) {
      names += "\n  " + TextOf(name);
    }
    throw std::invalid_argument(
        "choose one by --frequency, or --swath and --burst, and --polarisation:" + names);
  }
  PROGRESS_BAR bar;
  const PRODUCT_FILES_RESULT result = WriteProductFiles(
      product, chosen[0],
      {options.product, options.directory, options.role, options.scale, options.type},
      [&bar](double part) { bar.Show(part); });
  PrintImage(chosen[0], result.image);
  PrintResult(result);
}

void UseProduct(const PRODUCT_OPTIONS& options) {
  const auto product = OpenProduct(options.product);
  if (options.directory.empty()) {
    ListImages(*product, options);
  } else {
    WriteFiles(*product, options);
  }
}

}  // namespace

void AddProductCommand(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "product",
      "List the images of an RSLC or Sentinel-1 SLC product, make rasters and pools of one");
  const auto options = std::make_shared<PRODUCT_OPTIONS>();
  static const std::map<std::string, PIXEL_TYPE> types = {{"cint16", PIXEL_TYPE::C_INT_16},
                                                          {"cfloat16", PIXEL_TYPE::C_FLT_2}};
  command->add_option("PRODUCT", options->product, "RSLC in HDF5, or SAFE as folder or zip")
      ->required();
  CLI::Option* directory = command->add_option(
      "DIR", options->directory, "Folder for the files; without it the images are listed");
  CLI::Option* role = command->add_option("--as", options->role, "What the image is for")
                          ->check(CLI::IsMember({"master", "slave"}));
  directory->needs(role);
  role->needs(directory);
  CLI::Option* swath = command->add_option("--swath", options->part, "Such as IW2");
  command->add_option("--frequency", options->part, "Such as A")->excludes(swath);
  command->add_option("--burst", options->burst, "Of the swath, from 1")->check(positive_number);
  command->add_option("--polarisation", options->polarisation, "Such as VV");
  AddScaleOption(*command, options->scale);
  command
      ->add_option("--type", options->type,
                   "cint16 or cfloat16; usually cint16 for integers, cfloat16 for the rest")
      ->transform(CLI::CheckedTransformer(types));
  command->callback([options] { UseProduct(*options); });
}
