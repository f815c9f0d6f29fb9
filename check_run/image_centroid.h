#pragma once

#include <string>
#include <vector>

#include "check_run/lag_one.h"
#include "core/doppler_centroid_model.h"

/// The annotated centroid at a pixel of the slave [Hz], where the model puts it: at the times
/// start + pixel / (oversampling * rate).
double AnnotatedCentroid(const DOPPLER_CENTROID_MODEL& model, double line, double sample);

/// One position along an axis of the image: what its cells say together.
struct CENTROID_POINT {
  double position = 0.0;   ///< the middle of its cells, a sample or a line
  double annotated = 0.0;  ///< mean of the annotation [turns a line]; 0 without one
  LAG_ONE rest;            ///< of the data less the annotation

  /// The data's centroid [turns a line], of the ambiguous ones the nearest to the annotation.
  double Measured() const noexcept { return annotated + rest.Turns(); }
};

/// The centroid of an image's data beside the annotated one.
struct IMAGE_CENTROID {
  std::vector<CENTROID_POINT> along_range;    ///< all lines together
  std::vector<CENTROID_POINT> along_azimuth;  ///< all samples together
  LAG_ONE data;                               ///< of the whole image
  LAG_ONE rest;                               ///< the same less the annotation

  /// Whether the data, less the annotation, tell a centroid at all.
  bool IsMeasured() const noexcept;
  /// The largest departure of the data from the annotation, of the image or of a point of either
  /// axis, that its own uncertainty (three standard deviations) does not explain [turns a line,
  /// that is PRF].
  double Departure() const noexcept;
  /// Why the annotation can not be right for these data: it departs from them by more than a tenth
  /// of the PRF, or they agree on a centroid only without it. Empty where it may be right.
  std::string Objection() const;
};

/// Measures on cells of the image, with about `most_pairs` pairs of lines. Without a `model` the
/// centroid is that of the data alone.
IMAGE_CENTROID MeasureCentroid(const IMAGE_LINES& image, const DOPPLER_CENTROID_MODEL* model,
                               std::int64_t most_pairs);
