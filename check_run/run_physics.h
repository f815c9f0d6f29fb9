#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "check_run/image_centroid.h"
#include "core/resample_input.h"

/// Smallest and largest of the values that were included.
struct SPAN {
  double least = 0.0;
  double most = 0.0;
  bool is_empty = true;

  /// Values that are no number are left out.
  void Include(double value) noexcept;
  /// The largest magnitude.
  double Magnitude() const noexcept;
};

/// What the numbers of a run mean: a unit or a sign that is wrong shows here before it costs the
/// coherence of the result.
struct RUN_PHYSICS {
  double prf = 0.0;  ///< [Hz]
  SPAN centroid;     ///< annotated, over the slave [Hz]
  /// The same over each of a few slave lines from the first to the last.
  struct LINE_CENTROID {
    std::int64_t line;
    SPAN centroid;
  };
  std::vector<LINE_CENTROID> profile;
  /// How far the times of the slave's pixels leave those of the annotation, in lengths of the
  /// slave.
  double azimuth_beyond = 0.0;
  double range_beyond = 0.0;
  SPAN range_shift;    ///< slave minus master [samples]
  SPAN azimuth_shift;  ///< [lines]
  double slope = 0.0;  ///< largest change of either shift from a pixel to the next
  /// Centroid of the data beside the annotated one; of few lines, or none at all.
  IMAGE_CENTROID data;
};

/// Looks at a grid of pixels, and at about `most_pairs` pairs of the slave's lines. `input` is
/// complete and its pixel type supported.
RUN_PHYSICS LookAtPhysics(const RESAMPLE_INPUT& input, std::int64_t most_pairs);

/// What is suspicious, one text each. `is_stripmap`: the mode has no steered antenna.
std::vector<std::string> Suspicions(const RUN_PHYSICS& physics, bool is_stripmap);

/// Lines of text that show it.
std::string DescribePhysics(const RUN_PHYSICS& physics);
