#pragma once

/// 0 to 255 each.
struct COLOUR {
  unsigned char red;
  unsigned char green;
  unsigned char blue;

  bool operator==(const COLOUR&) const = default;
};

inline constexpr COLOUR white{255, 255, 255};
inline constexpr COLOUR black{0, 0, 0};

/// A colour for every position from 0 to 1.
using COLOUR_RAMP = COLOUR (*)(double position);

/// Black to white.
COLOUR GreyMap(double position);
/// Dark blue over green to yellow; the lightness grows evenly.
COLOUR SequentialMap(double position);
/// Once around the colour circle at an even lightness; 0 and 1 are the same colour.
COLOUR CyclicMap(double position);
/// One colour below 0.5, another one from there on.
COLOUR TwoColourMap(double position);
