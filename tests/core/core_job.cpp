#include "core_job.h"

#include <cmath>
#include <limits>

#include "support/pool_text.h"

TABLE_MAPPING::TABLE_MAPPING(int width, int height, const POSITION& range, const POSITION& azimuth)
    : range_(width, height), azimuth_(width, height) {
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      range_.At(x, y) = range(x, y);
      azimuth_.At(x, y) = azimuth(x, y);
    }
  }
}

double TABLE_MAPPING::GetSlaveRange(double range, double azimuth) const {
  return range_.At(static_cast<int>(range), static_cast<int>(azimuth));
}

double TABLE_MAPPING::GetSlaveAzimuth(double range, double azimuth) const {
  return azimuth_.At(static_cast<int>(range), static_cast<int>(azimuth));
}

CORE_JOB::CORE_JOB(const CORE_JOB_KIND& kind, unsigned seed)
    : random_(seed * 64 + static_cast<unsigned>(kind.length)) {
  job_.input_width = kind.length + Draw(1, 150);
  job_.input_height = kind.length + Draw(1, 60);
  job_.output_width = Draw(0, 2) == 0 ? Draw(1, 20) : Draw(1, 300);
  job_.output_height = Draw(1, 40);
  input_.CreateInMemory(0, 0, job_.input_width - 1, job_.input_height - 1, kind.pixel_type);
  output_.CreateInMemory(0, 0, job_.output_width - 1, job_.output_height - 1, kind.pixel_type);
  output_mask_.CreateInMemory(0, 0, job_.output_width - 1, job_.output_height - 1,
                              PIXEL_TYPE::U_INT_8);
  job_.input_slave = &input_;
  job_.output_slave = &output_;
  job_.output_mask = &output_mask_;
  FillSlave();
  if (kind.with_mask) {
    FillMask();
    job_.input_mask = &input_mask_;
  }
  // The other kernels have at least 6 taps. Without a kernel all weights are 0.
  BASIC::TYPES::KernelType type;
  type.Assign(kind.length < 6 ? "-" : "truncated_sinc_kaiser_weight");
  constexpr int subpix_counts[] = {1, 2, 3, 10, 64, 64, 64, 1000};
  kernel_.InitKernel(type, kind.length, subpix_counts[Draw(0, 7)], 2.5F);
  job_.kernel = &kernel_;
  imaging_mode_.Assign(kind.with_rate ? "SL" : "SM");
  job_.imaging_mode = &imaging_mode_;
  DrawDoppler();
  job_.doppler = &doppler_;
  DrawMapping();
  ClearOutputs();
}

void CORE_JOB::FillSlave() {
  auto* components = reinterpret_cast<std::uint16_t*>(input_.Data());
  for (std::int64_t i = 0; i < input_.DataLength() / 2; ++i) {
    const double value = DrawReal(-20000.0, 20000.0);
    components[i] = input_.PixelType() == PIXEL_TYPE::C_INT_16
                        ? static_cast<std::uint16_t>(INT_16_CODEC::Encode(value))
                        : BINARY_16_CODEC::Encode(value);
  }
}

void CORE_JOB::FillMask() {
  input_mask_.CreateInMemory(0, 0, job_.input_width - 1, job_.input_height - 1,
                             PIXEL_TYPE::U_INT_8);
  const int one_in = Draw(10, 2000);
  for (std::int64_t i = 0; i < input_mask_.DataLength(); ++i) {
    input_mask_.Data()[i] = static_cast<unsigned char>(Draw(1, one_in) == 1 ? 0 : Draw(1, 255));
  }
}

void CORE_JOB::DrawDoppler() {
  const int polynomial_count = Draw(1, 6);
  std::vector<double> azimuth_times;
  std::vector<double> reference_times;
  GRID<double> coefficients(Draw(1, 5), polynomial_count);
  for (int i = 0; i < polynomial_count; ++i) {
    azimuth_times.push_back(0.03 * i + DrawReal(0.0, 0.01));
    reference_times.push_back(DrawReal(0.0049, 0.0051));
    double scale = DrawReal(-400.0, 400.0);
    for (int degree = 0; degree < coefficients.width; ++degree) {
      coefficients.At(degree, i) = scale * DrawReal(0.5, 1.5);
      scale *= 2000.0;
    }
  }
  SetDoppler(azimuth_times, reference_times, coefficients);
}

void CORE_JOB::SetDoppler(const std::vector<double>& azimuth_times,
                          const std::vector<double>& reference_times,
                          const GRID<double>& coefficients) {
  POOL_TEXT text;
  text.SetReal("prf", DrawReal(900.0, 2500.0));
  text.SetReal("range_sampling_frequency", 2e7);
  text.SetReal("oversampling", Draw(0, 1) == 0 ? 1.0 : DrawReal(1.0, 2.0));
  text.SetReals("fdc_poly_az_time", azimuth_times);
  text.SetReals("fdc_poly_rg_ref_time", reference_times);
  text.SetRealMatrix("fdc_poly_coeff", coefficients);
  WriteFile(directory_.Path() / "slave.pool", text.Text());
  PARAMETER_POOL pool(directory_.File("slave.pool").c_str());
  doppler_.Setup(pool);
  doppler_.range_start_time = 0.005;
}

void CORE_JOB::DrawMapping() {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double width = job_.input_width;
  const double height = job_.input_height;
  const double rg = DrawReal(-0.2, 0.4) * width;
  const double az = DrawReal(-0.2, 0.4) * height;
  const double slope = std::pow(10.0, DrawReal(-4.0, -0.5));
  const double other_slope = slope * DrawReal(-1.0, 1.0);
  std::mt19937& random = random_;
  const auto noise = [&random](double size) {
    return std::uniform_real_distribution(-size, size)(random);
  };
  TABLE_MAPPING::POSITION range;
  TABLE_MAPPING::POSITION azimuth;
  switch (Draw(0, 8)) {
    case 0:  // shifted by whole pixels
      range = [=](double x, double) { return x + std::floor(rg); };
      azimuth = [=](double, double y) { return y + std::floor(az); };
      break;
    case 1:  // by a constant, beside a limit between two steps too
      range = [=](double x, double) { return x + std::floor(rg) + 0.5 / 64.0; };
      azimuth = [=](double, double y) { return y + az; };
      break;
    case 2:  // scaled
      range = [=](double x, double y) { return rg + x * (0.6 + slope * 3.0) + y * other_slope; };
      azimuth = [=](double x, double y) { return az + y * (1.7 - slope * 3.0) + x * other_slope; };
      break;
    case 3:  // folded
      range = [=](double x, double y) { return 0.9 * width - x + y * slope; };
      azimuth = [=](double x, double y) { return 0.9 * height - y + x * slope; };
      break;
    case 4:  // noisy
      range = [=](double x, double) { return rg + x + noise(3.0); };
      azimuth = [=](double, double y) { return az + y + noise(3.0); };
      break;
    case 5:  // anywhere, or nowhere
      range = [=](double, double) { return width * 0.5 + noise(0.6 * width); };
      azimuth = [=](double, double) {
        return noise(1.0) > 0.8 ? nan : height * 0.5 + noise(0.6 * height);
      };
      break;
    case 6:  // one position for all
      range = [=](double, double) { return width * 0.5 + 0.3; };
      azimuth = [=](double, double) { return height * 0.5 + 0.6; };
      break;
    default:  // smooth to rough
      range = [=](double x, double y) {
        return rg + x + slope * x - other_slope * y + 20.0 * slope * std::sin(0.11 * x - 0.2 * y);
      };
      azimuth = [=](double x, double y) {
        return az + y + slope * y + other_slope * x + 20.0 * slope * std::cos(0.13 * y + 0.1 * x);
      };
  }
  mapping_ = std::make_unique<TABLE_MAPPING>(job_.output_width, job_.output_height, range, azimuth);
  job_.mapping = mapping_.get();
}

void CORE_JOB::Scatter(std::uint16_t pattern) {
  auto* components = reinterpret_cast<std::uint16_t*>(input_.Data());
  for (std::int64_t i = 0; i < input_.DataLength() / 2; ++i) {
    if (Draw(1, 100) == 1) {
      components[i] = pattern;
    }
  }
}

void CORE_JOB::ClearOutputs() {
  std::fill_n(output_.Data(), output_.DataLength(), untouched);
  std::fill_n(output_mask_.Data(), output_mask_.DataLength(), untouched);
}

void CORE_JOB::Resample(const CORE_VARIANT& variant, std::vector<unsigned> block_ends) {
  if (input_.PixelType() == PIXEL_TYPE::C_INT_16) {
    Resample<INT_16_CODEC>(variant.int_16, std::move(block_ends));
  } else {
    Resample<BINARY_16_CODEC>(variant.binary_16, std::move(block_ends));
  }
}

std::vector<unsigned char> CORE_JOB::OutputBytes() const {
  return {output_.Data(), output_.Data() + output_.DataLength()};
}

std::vector<unsigned char> CORE_JOB::MaskBytes() const {
  return {output_mask_.Data(), output_mask_.Data() + output_mask_.DataLength()};
}
