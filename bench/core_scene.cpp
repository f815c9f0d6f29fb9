#include "core_scene.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "core/codec_visit.h"
#include "mapping/mapping_matrix.h"
#include "mapping/mapping_polynomial.h"

namespace {

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

CORE_SCENE::CORE_SCENE(const CORE_CASE& wanted, int size) : size_(size) {
  const int last = size - 1;
  input_.slave.CreateInMemory(0, 0, last, last, wanted.pixel_type);
  output_.slave.CreateInMemory(0, 0, last, last, wanted.pixel_type);
  output_.mask.CreateInMemory(0, 0, last, last, PIXEL_TYPE::U_INT_8);
  TouchOutputs();
  FillSlave();
  if (wanted.with_mask) {
    FillMask();
  }
  SetupDoppler();
  SetupMapping(wanted.mapping);
  BASIC::TYPES::KernelType type;
  type.Assign("truncated_sinc_kaiser_weight");
  input_.kernel.InitKernel(type, wanted.length, wanted.subpix_count, 2.5F);
  input_.imaging_mode.Assign(wanted.with_rate ? "SL" : "SM");
  input_.n_samples = size;
  input_.n_lines = size;
  argument_.block = URANGE<unsigned int>(0, static_cast<unsigned>(size));
  argument_.worker_number = 1;  // no progress lines
  argument_.Set(input_.Job(output_));
}

/// The system hands out memory when it is first written, which is no work of the core.
void CORE_SCENE::TouchOutputs() {
  for (const MEM_MGR* raster : {&output_.slave, &output_.mask}) {
    std::fill_n(raster->Data(), raster->DataLength(), static_cast<unsigned char>(1));
  }
}

void CORE_SCENE::FillSlave() {
  std::minstd_rand random(1);
  const auto value = [&random] { return static_cast<double>(random() % 6001) - 3000.0; };
  VisitCodec(input_.slave.PixelType(), [&]<class CODEC>(CODEC) {
    auto* const* rows = input_.slave.Rows<typename CODEC::PIXEL>();
    for (int line = 0; line < size_; ++line) {
      for (int sample = 0; sample < size_; ++sample) {
        auto& pixel = rows[line][sample];
        pixel.re = CODEC::Encode(value());
        pixel.im = CODEC::Encode(value());
      }
    }
  });
}

void CORE_SCENE::FillMask() {
  input_.mask.CreateInMemory(0, 0, size_ - 1, size_ - 1, PIXEL_TYPE::U_INT_8);
  for (int line = 0; line < size_; ++line) {
    for (int sample = 0; sample < size_; ++sample) {
      const bool is_hole = line % 701 < 9 && sample % 503 < 40;
      input_.mask.Rows<unsigned char>()[line][sample] = is_hole ? 0 : 1;
    }
  }
}

void CORE_SCENE::SetupDoppler() {
  constexpr int count = 5;
  constexpr int coefficient_count = 4;
  const double duration = size_ / 1700.0;
  DOPPLER_ANNOTATION annotation;
  annotation.prf = 1700.0;
  annotation.range_sampling_frequency = 1.9e7;
  annotation.azimuth_times.Create(RANGE<int>(0, count));
  annotation.reference_times.Create(RANGE<int>(0, count));
  annotation.coefficients.Create(RANGE<int>(0, count), RANGE<int>(0, coefficient_count));
  for (int i = 0; i < count; ++i) {
    annotation.azimuth_times.Origin()[i] = duration * (i + 0.3) / count;
    annotation.reference_times.Origin()[i] = 0.0054 + 1e-5 * i;
    const double coefficients[] = {310.0 + 12.0 * i, -2.1e5 + 3e3 * i, 4.0e8, -7.0e10};
    std::copy_n(coefficients, coefficient_count, annotation.coefficients.GetNumRecMatrix()[i]);
  }
  input_.doppler.Setup(annotation);
  input_.doppler.azimuth_start_time = 0.0;
  input_.doppler.range_start_time = 0.0053;
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
  const MAPPING_POLYNOMIAL::COEFFICIENTS coefficients = {5.3, -7e-5, 1e-4, 2e-9, 1e-9, -3e-9};
  const auto size = static_cast<unsigned>(size_);
  input_.mapping = std::make_unique<MAPPING_POLYNOMIAL>(coefficients, coefficients, size, size);
}

void CORE_SCENE::SetupMatrices(int subsampling, double (*shift)(double, double)) {
  const auto nodes = static_cast<unsigned>(size_ / subsampling + 2);
  std::vector<float> shifts[2];
  for (int axis = 0; axis < 2; ++axis) {
    for (unsigned line = 0; line < nodes; ++line) {
      for (unsigned column = 0; column < nodes; ++column) {
        const double x = static_cast<double>(column) * subsampling + axis * 1000.0;
        shifts[axis].push_back(
            static_cast<float>(shift(x, static_cast<double>(line) * subsampling)));
      }
    }
  }
  auto mapping = std::make_unique<MAPPING_MATRIX>();
  mapping->Copy(shifts[0].data(), shifts[1].data(), nodes, nodes, subsampling, subsampling);
  input_.mapping = std::move(mapping);
}
