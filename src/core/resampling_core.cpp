#include "core/resampling_core.h"

#include <cmath>
#include <cstdint>

#include "logging/logging.h"

namespace {

constexpr double two_pi = 6.283185307179586;

/// Where the taps of the kernel lie around a position, the same along range and azimuth.
class FOOTPRINT {
 public:
  explicit FOOTPRINT(int length)
      : length_(length), half_(length / 2), offset_(std::int64_t{length / 2} - 1) {}

  int Length() const { return length_; }
  /// Distance from the first tap to the position's own pixel.
  std::int64_t Offset() const { return offset_; }

  /// Whether a position along an axis of `size` pixels is computed: strictly inside the margin
  /// of half the kernel, and with the last tap inside the image. Odd lengths reach one tap
  /// further to the right than the margin. NaN and infinity fail the comparisons.
  bool Fits(double position, int size) const {
    return half_ < position && position < size - half_ &&
           static_cast<std::int64_t>(position) - offset_ + length_ <= size;
  }

 private:
  int length_;
  double half_;
  std::int64_t offset_;
};

/// A position along one axis as the kernel sees it.
struct TAP_POSITION {
  std::int64_t first_tap;  ///< pixel of the first tap
  std::int64_t pixel;      ///< pixel at or before the position
  double fraction;         ///< of a pixel, not quantised
  const double* weights;   ///< kernel row of the fraction
};

TAP_POSITION LocateTaps(double position, const FOOTPRINT& footprint,
                        const INTERPOLATION_KERNEL& kernel) {
  const auto pixel = static_cast<std::int64_t>(position);
  const double fraction = position - static_cast<double>(pixel);
  int row = static_cast<int>(fraction * kernel.SubpixCount() + 0.5);
  if (row == kernel.SubpixCount()) {
    // A fraction within half a step of 1 takes the weights of fraction 0 while its taps stay
    // where they are. That is the program's definition of the result.
    row = 0;
  }
  // A kernel without taps has no weights, and then also computes positions left of pixel 0.
  const double* weights = footprint.Length() > 0 ? kernel.Row(row) : nullptr;
  return {pixel - footprint.Offset(), pixel, fraction, weights};
}

/// Phase of the Doppler centroid around one output pixel, in radians, relative to the position
/// itself: at a line offset t from the pixel it is
/// ramp * (fraction - t) + curvature * (fraction^2 - t^2).
struct DOPPLER_PHASE {
  double ramp;       ///< 2 pi fdc / PRF: the PRF without the oversampling factor
  double curvature;  ///< pi (d fdc / dt) / PRF^2, 0 without rate term

  double At(double fraction, double t) const {
    return ramp * (fraction - t) + curvature * (fraction * fraction - t * t);
  }
};

/// Evaluates the Doppler centroid at integer slave positions.
class DOPPLER_SAMPLER {
 public:
  DOPPLER_SAMPLER(const DOPPLER_CENTROID_MODEL& model, bool with_rate)
      : model_(model),
        line_rate_(model.Oversampling() * model.Prf()),
        sample_rate_(model.Oversampling() * model.RangeSamplingFrequency()),
        rate_step_(100.0 / line_rate_),
        with_rate_(with_rate) {}

  DOPPLER_PHASE PhaseAt(std::int64_t sample, std::int64_t line) const {
    const double azimuth_time = model_.azimuth_start_time + static_cast<double>(line) / line_rate_;
    const double range_time = model_.range_start_time + static_cast<double>(sample) / sample_rate_;
    const double fdc = model_.Frequency(azimuth_time, range_time);
    const double prf = model_.Prf();
    return {two_pi * fdc / prf, Rate(azimuth_time, range_time) / (prf * prf)};
  }

 private:
  /// pi times the centroid's rate of change [1/s^2], from its difference over two hundred lines.
  double Rate(double azimuth_time, double range_time) const {
    if (!with_rate_) {
      return 0.0;
    }
    const double later = model_.Frequency(azimuth_time + rate_step_, range_time);
    const double earlier = model_.Frequency(azimuth_time - rate_step_, range_time);
    return ((later - earlier) / (2.0 * rate_step_)) * 0.5 * two_pi;
  }

  const DOPPLER_CENTROID_MODEL& model_;
  const double line_rate_;
  const double sample_rate_;
  const double rate_step_;
  const bool with_rate_;
};

struct INTERPOLATED {
  double re = 0.0;
  double im = 0.0;
  unsigned char valid = 1;
};

/// The kernel sum over one footprint: every row of taps is summed, turned by the Doppler phase of
/// its line relative to the position, and added.
template <class CODEC>
INTERPOLATED Interpolate(const typename CODEC::PIXEL* const* input,
                         const unsigned char* const* mask, const TAP_POSITION& range,
                         const TAP_POSITION& azimuth, const FOOTPRINT& footprint,
                         const DOPPLER_PHASE& doppler) {
  INTERPOLATED result;
  for (int k = 0; k < footprint.Length(); ++k) {
    const typename CODEC::PIXEL* pixels = input[azimuth.first_tap + k] + range.first_tap;
    const unsigned char* valid = mask[azimuth.first_tap + k] + range.first_tap;
    double row_re = 0.0;
    double row_im = 0.0;
    for (int j = 0; j < footprint.Length(); ++j) {
      const double weight = range.weights[j] * azimuth.weights[k];
      if (valid[j] == 0) {
        result.valid = 0;
      }
      row_re += CODEC::Decode(pixels[j].re) * weight;
      row_im += CODEC::Decode(pixels[j].im) * weight;
    }
    const double t = static_cast<double>(k - footprint.Offset());
    const double phase = doppler.At(azimuth.fraction, t);
    const double cosine = std::cos(phase);
    const double sine = std::sin(phase);
    result.re += cosine * row_re - sine * row_im;
    result.im += cosine * row_im + sine * row_re;
  }
  return result;
}

/// Worker 0 begins at line 0, so its own lines stand for the progress of the whole run.
void LogProgress(const RESAMPLE_THR_ARG& argument, unsigned line) {
  const unsigned lines = argument.block.Count();
  if (argument.worker_number != 0 || lines <= 10 || line % (lines / 10) != 0) {
    return;
  }
  const double percent =
      static_cast<double>(static_cast<float>(line)) * 100.0 / static_cast<float>(lines);
  Log().Message(LOGGING_LEVEL_T::INFO, "%d %% done", static_cast<int>(percent));
}

}  // namespace

template <class CODEC>
void ResampleBlock(const RESAMPLE_THR_ARG& argument, const typename CODEC::PIXEL* const* input,
                   typename CODEC::PIXEL* const* output) {
  const RESAMPLE_JOB& job = argument.job;
  const unsigned char* const* input_mask = job.input_mask->Rows<unsigned char>();
  unsigned char* const* output_mask = job.output_mask->Rows<unsigned char>();
  const FOOTPRINT footprint(job.kernel->Length());
  const DOPPLER_SAMPLER doppler(*job.doppler, !job.ps_mode && !job.imaging_mode->IsStripmap());

  for (unsigned line = argument.block.First(); line <= argument.block.Last(); ++line) {
    LogProgress(argument, line);
    for (int sample = 0; sample < job.output_width; ++sample) {
      const double slave_range = job.mapping->GetSlaveRange(sample, line);
      const double slave_azimuth = job.mapping->GetSlaveAzimuth(sample, line);
      if (!footprint.Fits(slave_range, job.input_width) ||
          !footprint.Fits(slave_azimuth, job.input_height)) {
        continue;
      }
      const TAP_POSITION range = LocateTaps(slave_range, footprint, *job.kernel);
      const TAP_POSITION azimuth = LocateTaps(slave_azimuth, footprint, *job.kernel);
      const INTERPOLATED result = Interpolate<CODEC>(input, input_mask, range, azimuth, footprint,
                                                     doppler.PhaseAt(range.pixel, azimuth.pixel));
      output[line][sample] = {CODEC::Encode(result.re), CODEC::Encode(result.im)};
      output_mask[line][sample] = result.valid;
    }
  }
}

template void ResampleBlock<INT_16_CODEC>(const RESAMPLE_THR_ARG&,
                                          const INT_16_CODEC::PIXEL* const*,
                                          INT_16_CODEC::PIXEL* const*);
template void ResampleBlock<BINARY_16_CODEC>(const RESAMPLE_THR_ARG&,
                                             const BINARY_16_CODEC::PIXEL* const*,
                                             BINARY_16_CODEC::PIXEL* const*);
