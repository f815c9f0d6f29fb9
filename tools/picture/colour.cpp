#include "picture/colour.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace {

unsigned char ToByte(double fraction) {
  return static_cast<unsigned char>(std::lround(255.0 * std::clamp(fraction, 0.0, 1.0)));
}

/// The transfer curve of sRGB, from linear light.
double Gamma(double light) {
  return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1.0 / 2.4) - 0.055;
}

/// From the perceptual colour space OKLab (lightness, green to red, blue to yellow) to sRGB.
COLOUR FromOklab(double lightness, double a, double b) {
  const double l = std::pow(lightness + 0.3963377774 * a + 0.2158037573 * b, 3);
  const double m = std::pow(lightness - 0.1055613458 * a - 0.0638541728 * b, 3);
  const double s = std::pow(lightness - 0.0894841775 * a - 1.2914855480 * b, 3);
  return {ToByte(Gamma(4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s)),
          ToByte(Gamma(-1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s)),
          ToByte(Gamma(-0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s))};
}

}  // namespace

COLOUR GreyMap(double position) {
  const unsigned char grey = ToByte(position);
  return {grey, grey, grey};
}

COLOUR SequentialMap(double position) {
  constexpr std::array<COLOUR, 9> stops{{{68, 1, 84},
                                         {71, 45, 123},
                                         {59, 82, 139},
                                         {44, 114, 142},
                                         {33, 145, 140},
                                         {40, 174, 128},
                                         {94, 201, 98},
                                         {173, 220, 48},
                                         {253, 231, 37}}};
  const double stop = std::clamp(position, 0.0, 1.0) * (stops.size() - 1);
  const auto before = std::min(static_cast<std::size_t>(stop), stops.size() - 2);
  const double fraction = stop - static_cast<double>(before);
  const auto blend = [fraction](unsigned char from, unsigned char to) {
    return ToByte(std::lerp(from, to, fraction) / 255.0);
  };
  const COLOUR& from = stops[before];
  const COLOUR& to = stops[before + 1];
  return {blend(from.red, to.red), blend(from.green, to.green), blend(from.blue, to.blue)};
}

COLOUR CyclicMap(double position) {
  constexpr double lightness = 0.76;
  constexpr double chroma = 0.125;
  const double hue = 2.0 * std::numbers::pi * (position - std::floor(position));
  return FromOklab(lightness, chroma * std::cos(hue), chroma * std::sin(hue));
}

COLOUR TwoColourMap(double position) {
  return position < 0.5 ? COLOUR{60, 60, 70} : COLOUR{120, 190, 140};
}
