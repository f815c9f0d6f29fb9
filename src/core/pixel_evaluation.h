#pragma once

#include <cmath>
#include <cstdint>

#include "base/unaligned.h"
#include "core/doppler_phase.h"
#include "core/footprint.h"
#include "core/pixel_codec.h"
#include "core/resample_thr_arg.h"

/// A resampled pixel before it is encoded.
struct INTERPOLATED {
  double re = 0.0;
  double im = 0.0;
  unsigned char valid = 1;

  /// Otherwise it comes from pixels or centroids that are infinite, no number or very large.
  bool IsUsual() const {
    constexpr double limit = 0x1p30;
    return std::abs(re) < limit && std::abs(im) < limit;
  }
};

/// The evaluation of single pixels in double precision and in the documented order of operations.
/// It defines what a resampled pixel is.
template <class CODEC>
class PIXEL_EVALUATION {
 public:
  using PIXEL = typename CODEC::PIXEL;

  /// `input` is the row table of the slave.
  PIXEL_EVALUATION(const RESAMPLE_JOB& job, const PIXEL* const* input)
      : job_(job),
        input_(input),
        mask_(job.input_mask != nullptr ? job.input_mask->Rows<unsigned char>() : nullptr),
        footprint_(job.kernel->Length()),
        doppler_(*job.doppler, job.HasRateTerm()) {}

  const FOOTPRINT& Footprint() const { return footprint_; }
  const DOPPLER_SAMPLER& Doppler() const { return doppler_; }

  /// Whether a pixel that lies at this slave position is computed.
  bool IsComputed(double slave_range, double slave_azimuth) const {
    return footprint_.Fits(slave_range, job_.input_width) &&
           footprint_.Fits(slave_azimuth, job_.input_height);
  }

  /// Only for positions that are computed.
  INTERPOLATED At(double slave_range, double slave_azimuth) const {
    const TAP_POSITION range = LocateTaps(slave_range, footprint_, *job_.kernel);
    const TAP_POSITION azimuth = LocateTaps(slave_azimuth, footprint_, *job_.kernel);
    return Interpolate(range, azimuth, doppler_.PhaseAt(range.pixel, azimuth.pixel));
  }

 private:
  /// The kernel sum over one footprint: every row of taps is summed, turned by the Doppler phase
  /// of its line relative to the position, and added.
  INTERPOLATED Interpolate(const TAP_POSITION& range, const TAP_POSITION& azimuth,
                           const DOPPLER_PHASE& doppler) const {
    INTERPOLATED result;
    for (int k = 0; k < footprint_.Length(); ++k) {
      const std::int64_t line = azimuth.first_tap + k;
      const PIXEL* pixels = input_[line] + range.first_tap;
      if (mask_ != nullptr && !AllValid(mask_[line] + range.first_tap)) {
        result.valid = 0;
      }
      double row_re = 0.0;
      double row_im = 0.0;
      for (int j = 0; j < footprint_.Length(); ++j) {
        const double weight = range.weights[j] * azimuth.weights[k];
        const PIXEL pixel = LoadUnaligned(pixels + j);
        row_re += CODEC::Decode(pixel.re) * weight;
        row_im += CODEC::Decode(pixel.im) * weight;
      }
      const double t = static_cast<double>(k - footprint_.Offset());
      const double phase = doppler.At(azimuth.fraction, t);
      const double cosine = std::cos(phase);
      const double sine = std::sin(phase);
      result.re += cosine * row_re - sine * row_im;
      result.im += cosine * row_im + sine * row_re;
    }
    return result;
  }

  bool AllValid(const unsigned char* valid) const {
    for (int j = 0; j < footprint_.Length(); ++j) {
      if (valid[j] == 0) {
        return false;
      }
    }
    return true;
  }

  const RESAMPLE_JOB& job_;
  const PIXEL* const* input_;
  const unsigned char* const* mask_;  ///< null when every pixel is valid
  const FOOTPRINT footprint_;
  const DOPPLER_SAMPLER doppler_;
};
