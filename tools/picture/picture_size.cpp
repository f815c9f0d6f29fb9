#include "picture/picture_size.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double usual_length = 800.0;

int ToPictureLength(double length) {
  return static_cast<int>(std::clamp(std::round(length), 1.0, double{largest_picture}));
}

double UsualZoom(double samples, double lines) {
  const double zoom = usual_length / std::max(samples, lines);
  return zoom > 1.0 ? std::floor(zoom) : zoom;
}

/// Picture pixels an image pixel along an axis without a wanted length.
double Zoom(double samples, double lines, const PICTURE_SIZE& wanted) {
  if (wanted.width) {
    return *wanted.width / samples;
  }
  return wanted.height ? *wanted.height / lines : UsualZoom(samples, lines);
}

}  // namespace

SIZE ShownSize(std::int64_t samples, std::int64_t lines, const PICTURE_SIZE& wanted) {
  const RANGE_AZIMUTH<int> looks = wanted.looks.value_or(RANGE_AZIMUTH<int>{1, 1});
  const double n_samples = static_cast<double>(samples) / looks.range;
  const double n_lines = static_cast<double>(lines) / looks.azimuth;
  const double zoom = Zoom(n_samples, n_lines, wanted);
  return {wanted.width.value_or(ToPictureLength(n_samples * zoom)),
          wanted.height.value_or(ToPictureLength(n_lines * zoom))};
}

int CellCount(int length, std::int64_t pixels, int box) {
  return static_cast<int>(std::clamp<std::int64_t>(pixels / box, 1, length));
}
