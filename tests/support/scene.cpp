#include "support/scene.h"

#include <array>
#include <cmath>
#include <limits>
#include <random>

#include "core/codec_visit.h"
#include "interpolation/kernel_shape.h"

namespace {

/// Draws for a scene; everything follows from the seed.
class DRAW {
 public:
  explicit DRAW(unsigned seed) : engine_(seed) {}

  int Integer(int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(engine_);
  }
  double Real(double least, double most) {
    return std::uniform_real_distribution<double>(least, most)(engine_);
  }
  /// A number of either sign up to this magnitude.
  double Sized(double magnitude) { return Real(-magnitude, magnitude); }
  bool Chance(double probability) { return Real(0.0, 1.0) < probability; }
  template <class T>
  T Pick(std::initializer_list<T> values) {
    return values.begin()[Integer(0, static_cast<int>(values.size()) - 1)];
  }

 private:
  std::mt19937_64 engine_;
};

template <class... CODECS>
constexpr auto PixelTypes(CODEC_LIST<CODECS...>) {
  return std::array{CODECS::pixel_type...};
}

constexpr float infinite = std::numeric_limits<float>::infinity();
constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();

std::uint16_t DrawInteger16(DRAW& draw, int amplitude) {
  return static_cast<std::uint16_t>(draw.Integer(-amplitude, amplitude));
}

/// A finite binary16 pattern whose exponent field lies in a range.
std::uint16_t DrawBinary16(DRAW& draw, int least_exponent, int greatest_exponent) {
  const int exponent = draw.Integer(least_exponent, greatest_exponent);
  return static_cast<std::uint16_t>(draw.Integer(0, 1) << 15 | exponent << 10 |
                                    draw.Integer(0, 1023));
}

// What is told of each codec: its type word, ways to draw components - ordinary amplitudes, tiny
// ones, or ones that saturate the sums - and those that are no finite numbers.

RASTER_TYPE TypeWordOf(INT_16_CODEC) {
  return RASTER_COMPLEX_INT_16;
}
std::uint16_t DrawComponent(DRAW& draw, INT_16_CODEC, int kind) {
  return DrawInteger16(draw, kind == 0 ? 3000 : kind == 1 ? 4 : 32767);
}
std::initializer_list<std::uint16_t> InfiniteComponents(INT_16_CODEC) {
  return {};
}

RASTER_TYPE TypeWordOf(BINARY_16_CODEC) {
  return RASTER_COMPLEX_BINARY_16;
}
std::uint16_t DrawComponent(DRAW& draw, BINARY_16_CODEC, int kind) {
  switch (kind) {
    case 0:
      return DrawBinary16(draw, 15, 22);
    case 1:  // among the subnormal patterns, too, and plus and minus zero
      return draw.Chance(0.2) ? draw.Pick<std::uint16_t>({0, 0x8000, 1, 0x83FF})
                              : DrawBinary16(draw, 0, 3);
    default:
      return DrawBinary16(draw, 28, 30);
  }
}

std::initializer_list<std::uint16_t> InfiniteComponents(BINARY_16_CODEC) {
  static constexpr std::initializer_list<std::uint16_t> components = {0x7C00, 0xFC00, 0x7C01,
                                                                      0xFFFF};
  return components;
}

/// Changes a few elements at random places.
template <class T, class CHANGE>
void Sprinkle(DRAW& draw, GRID<T>& grid, int most, const CHANGE& change) {
  for (int count = draw.Integer(1, most); count > 0; --count) {
    change(grid.At(draw.Integer(0, grid.width - 1), draw.Integer(0, grid.height - 1)));
  }
}

template <class CODEC>
GRID<RAW_PIXEL> DrawSlave(DRAW& draw, CODEC codec) {
  GRID<RAW_PIXEL> slave(draw.Integer(20, 150), draw.Integer(20, 80));
  const int kind = draw.Pick({0, 0, 0, 1, 2});
  for (RAW_PIXEL& pixel : slave.values) {
    pixel = {DrawComponent(draw, codec, kind), DrawComponent(draw, codec, kind)};
  }
  const auto infinite_components = InfiniteComponents(codec);
  if (infinite_components.size() > 0 && draw.Chance(0.3)) {
    Sprinkle(draw, slave, 12, [&](RAW_PIXEL& pixel) {
      (draw.Chance(0.5) ? pixel.re : pixel.im) = draw.Pick(infinite_components);
    });
  }
  return slave;
}

GRID<std::uint8_t> DrawMask(DRAW& draw, const GRID<RAW_PIXEL>& slave) {
  GRID<std::uint8_t> mask(slave.width, slave.height);
  const double invalid = draw.Pick({0.0, 0.001, 0.02});
  for (std::uint8_t& value : mask.values) {
    value = static_cast<std::uint8_t>(draw.Chance(invalid) ? 0 : draw.Pick({1, 1, 77, 255}));
  }
  return mask;
}

/// Shifts of one direction: a plane with noise, whole numbers, or steep and folded.
GRID<float> DrawShifts(DRAW& draw, int columns, int lines, int column_step, int line_step) {
  const int kind = draw.Pick({0, 0, 0, 1, 2});
  const double slope = kind == 2 ? 1.5 : 0.03;
  const double along = draw.Sized(slope) * column_step;
  const double across = draw.Sized(slope) * line_step;
  const double constant = draw.Sized(6.0);
  const double noise = draw.Pick({0.0, 0.01, 1.0, 30.0});
  GRID<float> shifts(columns, lines);
  for (int line = 0; line < lines; ++line) {
    for (int column = 0; column < columns; ++column) {
      const double shift = constant + along * column + across * line + draw.Sized(noise);
      shifts.At(column, line) = static_cast<float>(kind == 1 ? std::round(constant) : shift);
    }
  }
  return shifts;
}

MATRIX_MAPPING_DATA DrawMatrix(DRAW& draw, int n_samples, int n_lines) {
  MATRIX_MAPPING_DATA matrix;
  matrix.range_subsampling = draw.Integer(1, 16);
  matrix.azimuth_subsampling = draw.Chance(0.5) ? matrix.range_subsampling : draw.Integer(1, 16);
  // Two nodes more than the grid needs, or so few that its end lies outside of them.
  const bool covers = draw.Chance(0.8);
  const int columns = covers ? n_samples / matrix.range_subsampling + 2 : draw.Integer(1, 3);
  const int lines = covers ? n_lines / matrix.azimuth_subsampling + 2 : draw.Integer(1, 3);
  for (GRID<float>* shifts : {&matrix.range, &matrix.azimuth}) {
    *shifts =
        DrawShifts(draw, columns, lines, matrix.range_subsampling, matrix.azimuth_subsampling);
    if (draw.Chance(0.15)) {
      Sprinkle(draw, *shifts, 4, [&](float& shift) {
        shift = draw.Pick({not_a_number, infinite, -infinite, 3e38F, -3e38F, 4e9F, -1e5F});
      });
    }
  }
  return matrix;
}

std::vector<double> DrawPolynomial(DRAW& draw) {
  std::vector<double> coefficients = {draw.Sized(5.0),  draw.Sized(0.05), draw.Sized(0.05),
                                      draw.Sized(5e-4), draw.Sized(5e-4), draw.Sized(5e-4)};
  if (draw.Chance(0.2)) {  // whole shifts
    coefficients = {std::round(draw.Sized(5.0)), 0.0, 0.0, 0.0, 0.0, 0.0};
  }
  if (draw.Chance(0.2)) {
    coefficients[static_cast<std::size_t>(draw.Integer(0, 5))] =
        draw.Pick({1e308, -1e308, 1e10, -3e9, 1.0});
  }
  if (draw.Chance(0.2)) {  // more than there are terms: ignored
    coefficients.push_back(1e6);
  }
  return coefficients;
}

/// All shapes, and the kernel type without one.
constexpr std::size_t kernel_kinds = kernel_shapes.size() + 1;

void DrawKernel(DRAW& draw, SCENE& scene, unsigned kind) {
  const bool has_shape = kind < kernel_shapes.size();
  scene.kernel_type = has_shape ? kernel_shapes.at(kind).name : "-";
  scene.kernel_coefficient = draw.Pick({2.5, 2.5, 0.0, -1.0, 5.3, 0.7});
  scene.kernel_length = has_shape ? draw.Pick({6, 8, 12, 16, 7, 9, 11, 6, 8, 5, 4, 0, -8})
                                  : draw.Pick({-5, -4, -1, 0, 1, 2, 6, 7});
  scene.subpix_positions = draw.Pick({64, 1024, 16, 10, 2, 1, 1000, 3});
}

DOPPLER_DATA DrawDoppler(DRAW& draw) {
  DOPPLER_DATA doppler;
  doppler.prf = draw.Real(900.0, 2000.0);
  doppler.range_sampling_frequency = draw.Real(1.5e7, 3e7);
  doppler.oversampling = draw.Pick({1.0, 1.0, 1.2, 2.0});
  doppler.first_range_time = draw.Real(0.004, 0.006);
  doppler.first_azimuth_time = draw.Pick({0.0, 2.37e5, -3.0});
  const int polynomials = draw.Pick({1, 2, 3, 5, 8});
  const int coefficients = draw.Integer(1, 4);
  doppler.azimuth_times.clear();
  doppler.reference_times.clear();
  doppler.coefficients = GRID<double>(coefficients, polynomials);
  // The annotation may begin before, within and after the scene of up to 0.1 s.
  double time = doppler.first_azimuth_time + draw.Real(-0.1, 0.1);
  const double centroid = draw.Sized(1.5 * doppler.prf);
  for (int i = 0; i < polynomials; ++i) {
    doppler.azimuth_times.push_back(time);
    time += draw.Real(0.01, 0.05);
    doppler.reference_times.push_back(doppler.first_range_time + draw.Real(0.0, 1e-6));
    double size = 1.0;
    for (int degree = 0; degree < coefficients; ++degree) {
      doppler.coefficients.At(degree, i) = draw.Sized(20.0) * size + (degree == 0 ? centroid : 0);
      size *= 3e5;
    }
  }
  return doppler;
}

/// The rate is left out of stripmaps and where the parameter says so.
void DrawImagingMode(DRAW& draw, SCENE& scene, bool with_rate) {
  const bool by_parameter = draw.Chance(0.5);
  if (by_parameter) {
    scene.ps_mode = with_rate ? draw.Pick({0, 2, -1}) : 1;
  }
  scene.imaging_mode = with_rate || by_parameter ? draw.Pick({"SL", "TOPS", "SC", "IW", "HS300"})
                                                 : draw.Pick({"SM", "ATI", "ATIS"});
}

}  // namespace

unsigned SCENE::RasterType() const {
  unsigned type_word = 0;
  VisitCodec(pixel_type, [&](auto codec) { type_word = TypeWordOf(codec); });
  return type_word;
}

SCENE OrdinaryScene() {
  DRAW draw(20200206);
  SCENE scene;
  scene.slave = GRID<RAW_PIXEL>(72, 60);
  for (RAW_PIXEL& pixel : scene.slave.values) {
    pixel = {DrawInteger16(draw, 3000), DrawInteger16(draw, 3000)};
  }
  scene.mask = GRID<std::uint8_t>(72, 60, 1);
  scene.mask->At(40, 30) = 0;
  scene.n_samples = 70;
  scene.n_lines = 60;
  MATRIX_MAPPING_DATA matrix;
  matrix.range_subsampling = matrix.azimuth_subsampling = 8;
  matrix.range = GRID<float>(11, 10, 1.25F);
  matrix.azimuth = GRID<float>(11, 10, -0.75F);
  scene.mapping = matrix;
  scene.doppler.azimuth_times = {0.0, 0.1};
  scene.doppler.reference_times = {0.005, 0.005};
  scene.doppler.coefficients = GRID<double>(2, 2);
  scene.doppler.coefficients.values = {200.0, 1e6, 260.0, 2e6};
  scene.imaging_mode = "TOPS";
  return scene;
}

SCENE RandomScene(unsigned seed) {
  DRAW draw(seed);
  const auto count_through = [&seed](std::size_t count) {
    const auto digit = static_cast<unsigned>(seed % count);
    seed /= static_cast<unsigned>(count);
    return digit;
  };
  SCENE scene;
  const auto types = PixelTypes(PIXEL_CODECS());
  scene.pixel_type = types.at(count_through(types.size()));
  VisitCodec(scene.pixel_type, [&](auto codec) { scene.slave = DrawSlave(draw, codec); });
  scene.n_samples = draw.Chance(0.2) ? draw.Integer(91, 300) : draw.Integer(1, 90);
  scene.n_lines = draw.Integer(1, 80);
  if (count_through(2) == 0) {
    scene.mapping = DrawMatrix(draw, scene.n_samples, scene.n_lines);
  } else {
    scene.mapping =
        POLYNOMIAL_MAPPING_DATA{.range = DrawPolynomial(draw), .azimuth = DrawPolynomial(draw)};
  }
  DrawKernel(draw, scene, count_through(kernel_kinds));
  if (count_through(2) == 0) {
    scene.mask = DrawMask(draw, scene.slave);
  }
  scene.doppler = DrawDoppler(draw);
  DrawImagingMode(draw, scene, count_through(2) == 0);
  return scene;
}

unsigned SceneCombinations() {
  return static_cast<unsigned>(PixelTypes(PIXEL_CODECS()).size() * kernel_kinds * 2 * 2 * 2);
}

POOL_TEXT InsarPool(const SCENE& scene) {
  POOL_TEXT pool;
  pool.SetInteger("n_samples", scene.n_samples);
  pool.SetInteger("n_lines", scene.n_lines);
  pool.SetReal("slave_first_rg_time", scene.doppler.first_range_time);
  pool.SetReal("slave_first_az_time", scene.doppler.first_azimuth_time);
  pool.SetText("mapping_format", std::holds_alternative<MATRIX_MAPPING_DATA>(scene.mapping)
                                     ? "matrix"
                                     : "polynomial");
  if (const auto* matrix = std::get_if<MATRIX_MAPPING_DATA>(&scene.mapping)) {
    if (matrix->range_subsampling == matrix->azimuth_subsampling) {
      pool.SetInteger("shift_matrices_subsampling", matrix->range_subsampling);
    } else {
      pool.SetInteger("shift_matrices_subsampling", -7);  // loses against the two keys
      pool.SetInteger("shift_matrices_subsampling_rg", matrix->range_subsampling);
      pool.SetInteger("shift_matrices_subsampling_az", matrix->azimuth_subsampling);
    }
  } else {
    const auto& polynomial = std::get<POLYNOMIAL_MAPPING_DATA>(scene.mapping);
    pool.SetReals("respl_poly_rg", polynomial.range);
    pool.SetReals("respl_poly_az", polynomial.azimuth);
  }
  return pool;
}

POOL_TEXT SlavePool(const SCENE& scene) {
  const DOPPLER_DATA& doppler = scene.doppler;
  POOL_TEXT pool;
  pool.SetReal("prf", doppler.prf);
  pool.SetReal("range_sampling_frequency", doppler.range_sampling_frequency);
  pool.SetReal("oversampling", doppler.oversampling);
  pool.SetReals("fdc_poly_az_time", doppler.azimuth_times);
  pool.SetReals("fdc_poly_rg_ref_time", doppler.reference_times);
  pool.SetRealMatrix("fdc_poly_coeff", doppler.coefficients);
  pool.SetText("imaging_mode", scene.imaging_mode);
  return pool;
}

std::map<std::string, std::string> WriteSceneFiles(const SCENE& scene,
                                                   const std::filesystem::path& directory) {
  std::map<std::string, std::string> parameters = {
      {"INSAR_PARAMETER_POOL", "insar.pool"},
      {"log_pp", "insar.pool"},
      {"SLAVE_PARAMETER_POOL", "slave.pool"},
      {"SlaveIn", "slave.ras"},
      {"KERNEL_TYPE", scene.kernel_type},
      {"KERNEL_COEFFICIENT", RealText(scene.kernel_coefficient)},
      {"KERNEL_LENGTH", std::to_string(scene.kernel_length)},
      {"KERNEL_SUBPIX_POS", std::to_string(scene.subpix_positions)},
      {"SlaveOut", "out.ras"},
      {"MaskOut", "out_mask.ras"}};
  WriteRaster(directory / "slave.ras", scene.slave, scene.RasterType());
  if (scene.mask) {
    WriteRaster(directory / "mask.ras", *scene.mask, RASTER_BYTE);
    parameters["MaskIn"] = "mask.ras";
  }
  if (const auto* matrix = std::get_if<MATRIX_MAPPING_DATA>(&scene.mapping)) {
    WriteRaster(directory / "rg.map", matrix->range, RASTER_FLOAT);
    WriteRaster(directory / "az.map", matrix->azimuth, RASTER_FLOAT);
    parameters["RG_MAPPING_FILE"] = "rg.map";
    parameters["AZ_MAPPING_FILE"] = "az.map";
  }
  if (scene.ps_mode) {
    parameters["PS_MODE"] = std::to_string(*scene.ps_mode);
  }
  WriteFile(directory / "insar.pool", InsarPool(scene).Text());
  WriteFile(directory / "slave.pool", SlavePool(scene).Text());
  return parameters;
}
