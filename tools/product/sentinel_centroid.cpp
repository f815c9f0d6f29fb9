#include "product/sentinel_centroid.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "product/centroid_fit.h"

namespace {

constexpr double fit_tolerance = 1e-3;  // Hz

/// A polynomial in powers of (tau - t0).
struct RANGE_POLYNOMIAL {
  double t0 = 0.0;
  std::vector<double> coefficients;

  double operator()(double tau) const noexcept {
    double value = 0.0;
    for (std::size_t k = coefficients.size(); k-- > 0;) {
      value = value * (tau - t0) + coefficients[k];
    }
    return value;
  }
};

RANGE_POLYNOMIAL PolynomialOf(const ANNOTATION& record, const std::string& name) {
  RANGE_POLYNOMIAL polynomial = {record.Number("t0"), record.Numbers(name)};
  if (polynomial.coefficients.empty()) {
    record.Refuse(name, "is empty");
  }
  return polynomial;
}

RANGE_POLYNOMIAL DataCentroid(const ANNOTATION& estimate) {
  return PolynomialOf(estimate, "dataDcPolynomial");
}

/// Products of the first year have an element for each coefficient.
RANGE_POLYNOMIAL FmRate(const ANNOTATION& record) {
  if (!record.Has("azimuthFmRatePolynomial") && record.Has("c0")) {
    return {record.Number("t0"), {record.Number("c0"), record.Number("c1"), record.Number("c2")}};
  }
  return PolynomialOf(record, "azimuthFmRatePolynomial");
}

/// The records of a list, at least one.
std::vector<ANNOTATION> Records(const ANNOTATION& annotation, const std::string& list,
                                const std::string& name) {
  std::vector<ANNOTATION> records = annotation.Children(list, name);
  if (records.empty()) {
    annotation.Refuse(list, "holds no " + name);
  }
  return records;
}

const ANNOTATION& NearestTo(const UTC_TIME& time, const std::vector<ANNOTATION>& records) {
  const auto distance = [&](const ANNOTATION& record) {
    return std::abs(SecondsBetween(record.Time("azimuthTime"), time));
  };
  return *std::min_element(
      records.begin(), records.end(),
      [&](const ANNOTATION& a, const ANNOTATION& b) { return distance(a) < distance(b); });
}

/// Linear between the state vectors around the time [m/s].
double OrbitVelocity(const ANNOTATION& annotation, const UTC_TIME& time) {
  const std::string list = "generalAnnotation.orbitList";
  const std::vector<ANNOTATION> orbits = Records(annotation, list, "orbit");
  for (std::size_t i = 1; i < orbits.size(); ++i) {
    const UTC_TIME earlier = orbits[i - 1].Time("time");
    const UTC_TIME later = orbits[i].Time("time");
    const double part = SecondsBetween(earlier, time) / SecondsBetween(earlier, later);
    if (part >= 0.0 && part <= 1.0) {
      double square = 0.0;
      for (const char* axis : {"velocity.x", "velocity.y", "velocity.z"}) {
        square +=
            std::pow((1.0 - part) * orbits[i - 1].Number(axis) + part * orbits[i].Number(axis), 2);
      }
      return std::sqrt(square);
    }
  }
  annotation.Refuse(list, "does not cover " + TextOf(time));
}

/// Two-way range times over the image, more than the highest degree of a fit needs.
std::vector<double> RangeTimes(const SLC_IMAGE& image) {
  constexpr int most = 65;
  const auto count = std::min<std::int64_t>(most, image.n_samples);
  const double length = static_cast<double>(image.n_samples - 1) / image.range_sampling_frequency;
  std::vector<double> times(static_cast<std::size_t>(count), image.first_range_time);
  for (std::size_t i = 1; i < times.size(); ++i) {
    times[i] += length * static_cast<double>(i) / static_cast<double>(count - 1);
  }
  return times;
}

/// The sweep of the antenna's beam.
struct SWEEP {
  double k_s;
  RANGE_POLYNOMIAL f_dc;
  RANGE_POLYNOMIAL k_a;
  double first_range_time;

  double Rate(double tau) const { return k_a(tau) * k_s / (k_a(tau) - k_s); }
  double ReferenceTime(double tau) const {
    return -f_dc(tau) / k_a(tau) + f_dc(first_range_time) / k_a(first_range_time);
  }
  double Centroid(double eta, double tau) const {
    return f_dc(tau) + Rate(tau) * (eta - ReferenceTime(tau));
  }
};

SWEEP SweepAround(const UTC_TIME& middle, const ANNOTATION& annotation, const SLC_IMAGE& image) {
  const std::string information = "generalAnnotation.productInformation.";
  const double steering_rate =
      annotation.Number(information + "azimuthSteeringRate") * std::numbers::pi / 180.0;
  const double k_s = 2.0 * OrbitVelocity(annotation, middle) *
                     annotation.Number(information + "radarFrequency") * steering_rate /
                     speed_of_light;
  return {k_s,
          DataCentroid(NearestTo(
              middle, Records(annotation, "dopplerCentroid.dcEstimateList", "dcEstimate"))),
          FmRate(NearestTo(
              middle, Records(annotation, "generalAnnotation.azimuthFmRateList", "azimuthFmRate"))),
          image.first_range_time};
}

void CheckNumbers(const ANNOTATION& annotation, const CENTROID_TABLE& table) {
  for (const std::vector<double>& row : table.values) {
    if (!std::all_of(row.begin(), row.end(), [](double value) { return std::isfinite(value); })) {
      annotation.Refuse("dopplerCentroid.dcEstimateList",
                        "and generalAnnotation.azimuthFmRateList tell no centroid");
    }
  }
}

}  // namespace

CENTROID_POLYNOMIALS BurstCentroid(const ANNOTATION& annotation, const SLC_IMAGE& image) {
  const std::int64_t middle_line = image.n_lines / 2;
  const double middle = static_cast<double>(middle_line) / image.line_rate;
  const SWEEP sweep = SweepAround(image.first_line + middle, annotation, image);
  CENTROID_TABLE table;
  table.azimuth_times = {0.0, static_cast<double>(image.n_lines - 1) / image.line_rate};
  table.range_times = RangeTimes(image);
  for (const double time : table.azimuth_times) {
    std::vector<double>& row = table.values.emplace_back();
    for (const double tau : table.range_times) {
      row.push_back(sweep.Centroid(time - middle, tau));
    }
  }
  CheckNumbers(annotation, table);
  return FitCentroid(table, fit_tolerance);
}

CENTROID_POLYNOMIALS StripmapCentroid(const ANNOTATION& annotation, const SLC_IMAGE& image) {
  const std::string list = "dopplerCentroid.dcEstimateList";
  CENTROID_TABLE table;
  table.range_times = RangeTimes(image);
  for (const ANNOTATION& estimate : Records(annotation, list, "dcEstimate")) {
    table.azimuth_times.push_back(SecondsBetween(image.first_line, estimate.Time("azimuthTime")));
    const RANGE_POLYNOMIAL centroid = DataCentroid(estimate);
    std::vector<double>& row = table.values.emplace_back();
    std::transform(table.range_times.begin(), table.range_times.end(), std::back_inserter(row),
                   centroid);
  }
  if (std::adjacent_find(table.azimuth_times.begin(), table.azimuth_times.end(),
                         std::greater_equal<>()) != table.azimuth_times.end()) {
    annotation.Refuse(list, "has azimuthTimes that do not rise");
  }
  CheckNumbers(annotation, table);
  return FitCentroid(table, fit_tolerance);
}
