#include "check_run/run_physics.h"

#include <algorithm>
#include <cmath>

#include "core/codec_visit.h"
#include "logging/formatted_text.h"

namespace {

constexpr int looks = 33;  ///< positions along each axis
constexpr int profile_lines = 5;

constexpr double largest_slope = 0.1;
constexpr double largest_excess = 1.0;  ///< of times beyond the annotation [lengths of the slave]

double Along(int look, int count, double length) {
  return count > 1 ? look * (length - 1.0) / (count - 1) : 0.0;
}

void LookAtCentroid(const RESAMPLE_INPUT& input, RUN_PHYSICS& physics) {
  const auto height = static_cast<double>(input.slave.Height());
  const auto width = static_cast<double>(input.slave.Width());
  const auto look_along = [&](double line, SPAN& span) {
    for (int j = 0; j < looks; ++j) {
      span.Include(AnnotatedCentroid(input.doppler, line, Along(j, looks, width)));
    }
  };
  for (int i = 0; i < looks; ++i) {
    look_along(Along(i, looks, height), physics.centroid);
  }
  for (int i = 0; i < profile_lines; ++i) {
    const double line = std::floor(Along(i, profile_lines, height));
    physics.profile.push_back({static_cast<std::int64_t>(line), {}});
    look_along(line, physics.profile.back().centroid);
  }
}

/// How far [begin, begin + length] leaves [first, last], in lengths.
double Beyond(double begin, double length, double first, double last) {
  return std::max({0.0, first - begin, begin + length - last}) / length;
}

void LookAtTimes(const RESAMPLE_INPUT& input, RUN_PHYSICS& physics) {
  const DOPPLER_CENTROID_MODEL& model = input.doppler;
  const double duration =
      static_cast<double>(input.slave.Height()) / (model.Oversampling() * model.Prf());
  const double swath = static_cast<double>(input.slave.Width()) /
                       (model.Oversampling() * model.RangeSamplingFrequency());
  physics.azimuth_beyond =
      Beyond(model.azimuth_start_time, duration, model.FirstAzimuthTime(), model.LastAzimuthTime());
  // A polynomial in range time holds around its reference time, which need not be in the swath.
  std::vector<double> coefficients(static_cast<std::size_t>(model.CoefficientCount()));
  const double reference =
      model.PolynomialAt(model.azimuth_start_time + 0.5 * duration, coefficients.data());
  physics.range_beyond = std::max({0.0, model.range_start_time - reference,
                                   reference - model.range_start_time - swath}) /
                         swath;
}

/// The shifts at a master pixel.
struct SHIFTS {
  double range;
  double azimuth;
};

SHIFTS ShiftsAt(const MAPPING_BASE& mapping, double sample, double line) {
  return {mapping.GetSlaveRange(sample, line) - sample,
          mapping.GetSlaveAzimuth(sample, line) - line};
}

void LookAtMapping(const RESAMPLE_INPUT& input, RUN_PHYSICS& physics) {
  SPAN slopes;
  for (int i = 0; i < looks; ++i) {
    for (int j = 0; j < looks; ++j) {
      // Middles of cells, away from the last nodes of matrices.
      const double sample = std::floor((j + 0.5) * input.n_samples / looks);
      const double line = std::floor((i + 0.5) * input.n_lines / looks);
      const SHIFTS here = ShiftsAt(*input.mapping, sample, line);
      physics.range_shift.Include(here.range);
      physics.azimuth_shift.Include(here.azimuth);
      for (const SHIFTS& next : {ShiftsAt(*input.mapping, sample + 1.0, line),
                                 ShiftsAt(*input.mapping, sample, line + 1.0)}) {
        slopes.Include(next.range - here.range);
        slopes.Include(next.azimuth - here.azimuth);
      }
    }
  }
  physics.slope = slopes.Magnitude();
}

template <class CODEC>
IMAGE_LINES LinesOf(CODEC, const RESAMPLE_INPUT& input) {
  const auto* const* pixels = input.slave.Rows<const typename CODEC::PIXEL>();
  const auto* const* mask = input.HasMask() ? input.mask.Rows<const unsigned char>() : nullptr;
  return {.n_samples = input.slave.Width(),
          .n_lines = input.slave.Height(),
          .read = [=](std::int64_t line, std::span<std::complex<double>> values) {
            for (std::size_t i = 0; i < values.size(); ++i) {
              const typename CODEC::PIXEL pixel = pixels[line][i];
              const bool is_valid = mask == nullptr || mask[line][i] != 0;
              values[i] = is_valid ? std::complex(CODEC::Decode(pixel.re), CODEC::Decode(pixel.im))
                                   : std::complex<double>();
            }
          }};
}

IMAGE_LINES LinesOf(const RESAMPLE_INPUT& input) {
  IMAGE_LINES lines;
  VisitCodec(input.slave.PixelType(), [&](auto codec) { lines = LinesOf(codec, input); });
  return lines;
}

}  // namespace

void SPAN::Include(double value) noexcept {
  if (!std::isnan(value)) {
    least = is_empty ? value : std::min(least, value);
    most = is_empty ? value : std::max(most, value);
    is_empty = false;
  }
}

double SPAN::Magnitude() const noexcept {
  return std::max(std::abs(least), std::abs(most));
}

RUN_PHYSICS LookAtPhysics(const RESAMPLE_INPUT& input, std::int64_t most_pairs) {
  RUN_PHYSICS physics;
  physics.prf = input.doppler.Prf();
  LookAtCentroid(input, physics);
  LookAtTimes(input, physics);
  LookAtMapping(input, physics);
  if (most_pairs > 0) {
    physics.data = MeasureCentroid(LinesOf(input), &input.doppler, most_pairs);
  }
  return physics;
}

std::vector<std::string> Suspicions(const RUN_PHYSICS& physics, bool is_stripmap) {
  std::vector<std::string> texts;
  if (is_stripmap && physics.centroid.Magnitude() > physics.prf) {
    texts.push_back(
        FormattedText("the Doppler centroid reaches %.4g Hz, %.3g PRF: too much for a stripmap "
                      "mode; are prf and range_sampling_frequency in Hz?",
                      physics.centroid.Magnitude(), physics.centroid.Magnitude() / physics.prf));
  }
  if (physics.azimuth_beyond > largest_excess) {
    texts.push_back(
        FormattedText("azimuth times of the slave lie %.3g of its lengths beyond "
                      "fdc_poly_az_time: are slave_first_az_time and prf in seconds and Hz?",
                      physics.azimuth_beyond));
  }
  if (physics.range_beyond > largest_excess) {
    texts.push_back(FormattedText(
        "range times of the slave lie %.3g of its widths from fdc_poly_rg_ref_time: is "
        "slave_first_rg_time in seconds and two-way, range_sampling_frequency in Hz?",
        physics.range_beyond));
  }
  if (physics.slope > largest_slope) {
    texts.push_back(
        FormattedText("the mapping's shifts change by up to %.3g pixels from one pixel to the "
                      "next",
                      physics.slope));
  }
  if (const std::string objection = physics.data.Objection(); !objection.empty()) {
    texts.push_back(objection);
  }
  return texts;
}

std::string DescribePhysics(const RUN_PHYSICS& physics) {
  const SPAN& centroid = physics.centroid;
  std::string text =
      FormattedText("Doppler centroid: %.1f to %.1f Hz, %.3f to %.3f PRF\n", centroid.least,
                    centroid.most, centroid.least / physics.prf, centroid.most / physics.prf);
  for (const RUN_PHYSICS::LINE_CENTROID& line : physics.profile) {
    text += FormattedText("  line %lld: %.1f to %.1f Hz\n", static_cast<long long>(line.line),
                          line.centroid.least, line.centroid.most);
  }
  if (physics.data.IsMeasured()) {
    text += FormattedText(
        "  of the data: %.3f PRF from the annotation; their spectrum leaves about %.2f of "
        "the azimuth band\n",
        physics.data.rest.Turns(), 1.0 - physics.data.rest.Bandwidth());
  }
  return text +
         FormattedText(
             "times beyond the annotation: azimuth %.2f, range %.2f of the slave's length\n",
             physics.azimuth_beyond, physics.range_beyond) +
         FormattedText(
             "shifts: range %.2f to %.2f, azimuth %.2f to %.2f pixels; slopes up to %.2g\n",
             physics.range_shift.least, physics.range_shift.most, physics.azimuth_shift.least,
             physics.azimuth_shift.most, physics.slope);
}
