#include "core_scene.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <random>

#include "core/pixel_codec.h"
#include "mapping/mapping_matrix.h"
#include "mapping/mapping_polynomial.h"

namespace {

void WriteText(const std::filesystem::path& path, const std::string& text) {
  std::ofstream file(path);
  file << text;
}

std::filesystem::path NewDirectory() {
  std::string name = (std::filesystem::temp_directory_path() / "core_bench.XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error("no temporary directory");
  }
  return name;
}

/// A smooth shift of a few pixels. `slope` is its order of magnitude in pixels a pixel.
double SmoothShift(double x, double y, double slope) {
  return 5.3 + slope * (1.0 * x - 0.7 * y) +
         400.0 * slope * std::sin(x / 900.0) * std::cos(y / 1100.0);
}

/// Up to 20 pixels, without any relation between neighbours.
double IrregularShift(double x, double y) {
  const double noise = std::sin(x * 12.9898 + y * 78.233) * 43758.5453;
  return 40.0 * (noise - std::floor(noise)) - 20.0;
}

}  // namespace

CORE_SCENE::CORE_SCENE(const CORE_CASE& wanted, int size)
    : size_(size), directory_(NewDirectory()) {
  const int last = size - 1;
  input_.CreateInMemory(0, 0, last, last, wanted.pixel_type);
  output_.CreateInMemory(0, 0, last, last, wanted.pixel_type);
  output_mask_.CreateInMemory(0, 0, last, last, PIXEL_TYPE::U_INT_8);
  TouchOutputs();
  FillSlave();
  if (wanted.with_mask) {
    FillMask();
  }
  SetupDoppler();
  SetupMapping(wanted.mapping);
  std::filesystem::remove_all(directory_);

  BASIC::TYPES::KernelType type;
  type.Assign("truncated_sinc_kaiser_weight");
  kernel_.InitKernel(type, wanted.length, wanted.subpix_count, 2.5F);
  imaging_mode_.Assign(wanted.with_rate ? "SL" : "SM");
  argument_.block = URANGE<unsigned int>(0, static_cast<unsigned>(size));
  argument_.worker_number = 1;  // no progress lines
  argument_.Set({.input_slave = &input_,
                 .input_mask = wanted.with_mask ? &input_mask_ : nullptr,
                 .input_width = size,
                 .input_height = size,
                 .output_slave = &output_,
                 .output_mask = &output_mask_,
                 .output_width = size,
                 .output_height = size,
                 .mapping = mapping_.get(),
                 .kernel = &kernel_,
                 .doppler = &doppler_,
                 .imaging_mode = &imaging_mode_,
                 .ps_mode = false});
}

/// The system hands out memory when it is first written, which is no work of the core.
void CORE_SCENE::TouchOutputs() {
  std::fill_n(output_.Data(), output_.DataLength(), static_cast<unsigned char>(1));
  std::fill_n(output_mask_.Data(), output_mask_.DataLength(), static_cast<unsigned char>(1));
}

void CORE_SCENE::FillSlave() {
  std::minstd_rand random(1);
  const bool is_integer = input_.PixelType() == PIXEL_TYPE::C_INT_16;
  auto* components = reinterpret_cast<std::uint16_t*>(input_.Data());
  const std::int64_t count = input_.DataLength() / 2;
  for (std::int64_t i = 0; i < count; ++i) {
    const double value = static_cast<double>(random() % 6001) - 3000.0;
    components[i] = is_integer ? static_cast<std::uint16_t>(INT_16_CODEC::Encode(value))
                               : BINARY_16_CODEC::Encode(value);
  }
}

void CORE_SCENE::FillMask() {
  input_mask_.CreateInMemory(0, 0, size_ - 1, size_ - 1, PIXEL_TYPE::U_INT_8);
  for (int line = 0; line < size_; ++line) {
    for (int sample = 0; sample < size_; ++sample) {
      const bool is_hole = line % 701 < 9 && sample % 503 < 40;
      input_mask_.Rows<unsigned char>()[line][sample] = is_hole ? 0 : 1;
    }
  }
}

void CORE_SCENE::SetupDoppler() {
  constexpr int count = 5;
  const double duration = size_ / 1700.0;
  std::string times;
  std::string references;
  std::string coefficients;
  for (int i = 0; i < count; ++i) {
    times += std::to_string(duration * (i + 0.3) / count) + "\n";
    references += std::to_string(0.0054 + 1e-5 * i) + "\n";
    coefficients += "{\n" + std::to_string(310.0 + 12.0 * i) + "\n" +
                    std::to_string(-2.1e5 + 3e3 * i) + "\n" + std::to_string(4.0e8) + "\n" +
                    std::to_string(-7.0e10) + "\n}\n";
  }
  const std::filesystem::path path = directory_ / "slave.pool";
  WriteText(path,
            "prf FLT_15 1700\nrange_sampling_frequency FLT_15 1.9e7\noversampling FLT_15 1\n"
            "fdc_poly_az_time FLT_15_V 0 5\n{\n" +
                times + "}\nfdc_poly_rg_ref_time FLT_15_V 0 5\n{\n" + references +
                "}\nfdc_poly_coeff FLT_15_M 0 5 0 4\n{\n" + coefficients + "}\n");
  PARAMETER_POOL pool(path.c_str());
  doppler_.Setup(pool);
  doppler_.azimuth_start_time = 0.0;
  doppler_.range_start_time = 0.0053;
}

void CORE_SCENE::SetupMapping(CORE_CASE::MAPPING wanted) {
  switch (wanted) {
    case CORE_CASE::MAPPING::SMOOTH:
      SetupMatrices(32, [](double x, double y) { return SmoothShift(x, y, 1e-4); });
      break;
    case CORE_CASE::MAPPING::STEEP:
      SetupMatrices(32, [](double x, double y) { return SmoothShift(x, y, 1e-3); });
      break;
    case CORE_CASE::MAPPING::POLYNOMIAL:
      SetupPolynomial();
      break;
    case CORE_CASE::MAPPING::IRREGULAR:
      SetupMatrices(1, IrregularShift);
      break;
  }
}

void CORE_SCENE::SetupPolynomial() {
  const std::string coefficients = "5.3\n-7e-5\n1e-4\n2e-9\n1e-9\n-3e-9\n";
  const std::string size = std::to_string(size_);
  WriteText(directory_ / "insar.pool", "respl_poly_az FLT_15_V 0 6\n{\n" + coefficients +
                                           "}\nrespl_poly_rg FLT_15_V 0 6\n{\n" + coefficients +
                                           "}\nn_samples INT_32 " + size + "\nn_lines INT_32 " +
                                           size + "\n");
  PARAMETER_POOL pool((directory_ / "insar.pool").c_str());
  mapping_ = std::make_unique<MAPPING_POLYNOMIAL>(pool);
}

void CORE_SCENE::SetupMatrices(int subsampling, double (*shift)(double, double)) {
  const int nodes = size_ / subsampling + 2;
  const std::string names[2] = {(directory_ / "rg").string(), (directory_ / "az").string()};
  for (int axis = 0; axis < 2; ++axis) {
    MEM_MGR raster;
    raster.Create(names[axis].c_str(), 0, 0, nodes - 1, nodes - 1, PIXEL_TYPE::FLT_6);
    for (int line = 0; line < nodes; ++line) {
      for (int column = 0; column < nodes; ++column) {
        const double x = column * subsampling + axis * 1000.0;
        raster.Rows<float>()[line][column] = static_cast<float>(shift(x, line * subsampling));
      }
    }
  }
  mapping_ = std::make_unique<MAPPING_MATRIX>(names[0].c_str(), names[1].c_str(), subsampling,
                                              subsampling);
}
