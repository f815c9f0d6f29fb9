#include "scene/scene_signal.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "scene/random.h"

namespace {

using LAYERS = std::array<PERIODIC_SIGNAL::PIXELS, PERIODIC_SIGNAL::layer_count>;

/// A part of the tile that is equally bright: all that is nearest to its centre.
struct FIELD {
  double line;
  double sample;
  double amplitude;

  /// Of a place in the same tile, going the shorter way round.
  double SquaredDistance(double from_line, double from_sample, double period) const {
    const double dy = std::abs(from_line - line);
    const double dx = std::abs(from_sample - sample);
    return std::pow(std::min(dy, period - dy), 2) + std::pow(std::min(dx, period - dx), 2);
  }
};

std::vector<FIELD> PlaceFields(int size, std::uint64_t seed) {
  constexpr std::uint64_t n_fields = 24;
  constexpr double contrast = 12.0;  // dB
  std::vector<FIELD> fields;
  for (std::uint64_t i = 0; i < n_fields; ++i) {
    const double decibel = contrast * RandomUniform(seed, 3 * i + 2);
    fields.push_back({size * RandomUniform(seed, 3 * i), size * RandomUniform(seed, 3 * i + 1),
                      std::pow(10.0, decibel / 20.0)});
  }
  return fields;
}

double AmplitudeAt(const std::vector<FIELD>& fields, int line, int sample, int size) {
  double nearest = HUGE_VAL;
  double amplitude = 0.0;
  for (const FIELD& field : fields) {
    const double distance = field.SquaredDistance(line, sample, size);
    if (distance < nearest) {
      nearest = distance;
      amplitude = field.amplitude;
    }
  }
  return amplitude;
}

/// Amplitudes of all pixels of a tile.
std::vector<double> MakeReflectivity(int size, std::uint64_t seed) {
  const std::vector<FIELD> fields = PlaceFields(size, seed);
  std::vector<double> reflectivity;
  for (int line = 0; line < size; ++line) {
    for (int sample = 0; sample < size; ++sample) {
      reflectivity.push_back(AmplitudeAt(fields, line, sample, size));
    }
  }
  return reflectivity;
}

/// A target goes into the layer whose blocks are centred nearest to it, where the other one's
/// share is small. The band keeps `kept` of a single pixel's amplitude.
void AddTargets(LAYERS& layers, const SCENE_OPTIONS& options, double kept) {
  constexpr double brightness = 20.0;  // relative to the RMS amplitude
  const std::uint64_t seed = SeedOf(options.seed, SERIES::TARGETS);
  const auto size = static_cast<std::uint64_t>(options.tile);
  for (int i = 0; i < options.point_targets; ++i) {
    const auto index = 3 * static_cast<std::uint64_t>(i);
    const std::uint64_t line = RandomBits(seed, index) % size;
    const std::uint64_t sample = RandomBits(seed, index + 1) % size;
    const std::size_t layer = (line + size / 4) % size < size / 2 ? 0 : 1;
    layers[layer][line * size + sample] +=
        std::polar(options.amplitude * brightness / kept,
                   2.0 * std::numbers::pi * RandomUniform(seed, index + 2));
  }
}

/// Speckle, whose RMS amplitude in the band is the wanted one, and targets.
LAYERS MakeLayers(const SCENE_OPTIONS& options, double bandwidth) {
  const std::vector<double> reflectivity =
      MakeReflectivity(options.tile, SeedOf(options.seed, SERIES::FIELDS));
  double power = 0.0;
  for (const double amplitude : reflectivity) {
    power += amplitude * amplitude / static_cast<double>(reflectivity.size());
  }
  const double terms =
      static_cast<double>(PERIODIC_SIGNAL::TermCount(options.tile, bandwidth)) / options.tile;
  const double kept = terms * terms;
  const double scale = options.amplitude / std::sqrt(power * kept);

  LAYERS layers;
  std::uint64_t index = 0;
  for (PERIODIC_SIGNAL::PIXELS& layer : layers) {
    for (const double amplitude : reflectivity) {
      layer.push_back(scale * amplitude *
                      RandomSpeckle(SeedOf(options.seed, SERIES::SPECKLE), index++));
    }
  }
  AddTargets(layers, options, kept);
  return layers;
}

PERIODIC_SIGNAL MakeBaseband(const SCENE_OPTIONS& options) {
  const double bandwidth = options.bandwidth / options.oversampling;
  PERIODIC_SIGNAL::CheckShape(options.tile, bandwidth);
  return PERIODIC_SIGNAL(options.tile, bandwidth, MakeLayers(options, bandwidth));
}

}  // namespace

SCENE_SIGNAL::SCENE_SIGNAL(const SCENE_OPTIONS& options)
    : baseband_(MakeBaseband(options)), doppler_(options), block_length_(0.5 * options.tile) {}

std::complex<double> SCENE_SIGNAL::AtPixel(std::int64_t line, std::int64_t sample) const noexcept {
  return Blend(baseband_.AtPixel(line, sample), static_cast<double>(line),
               static_cast<double>(sample));
}

std::complex<double> SCENE_SIGNAL::At(double line, double sample) const noexcept {
  return Blend(baseband_.At(line, sample), line, sample);
}

std::complex<double> SCENE_SIGNAL::Blend(const PERIODIC_SIGNAL::VALUES& values, double line,
                                         double sample) const noexcept {
  const double block = std::floor(line / block_length_);
  const double middle = block * block_length_;
  const double next_middle = middle + block_length_;
  const std::size_t layer = std::fmod(block, 2.0) == 0.0 ? 0 : 1;

  constexpr double quarter_turn = 0.5 * std::numbers::pi;
  const double rise = std::sin(quarter_turn * (line - middle) / block_length_);
  const double mixing = quarter_turn * rise * rise;
  return std::polar(std::cos(mixing), doppler_.Phase(middle, line, sample)) * values[layer] +
         std::polar(std::sin(mixing), doppler_.Phase(next_middle, line, sample)) *
             values[1 - layer];
}
