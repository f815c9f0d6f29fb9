#include "mapping/matrix_interpolation.h"

#include "base/error_exception.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

/// The weights of `degree` nodes 0, 1, 2, ... in the polynomial through all of them, evaluated at
/// `position`: weight n is the product of (position - m) / (n - m) over the other nodes m.
std::vector<double> LagrangeWeights(unsigned degree, double position) {
  std::vector<double> weights(degree, 1.0);
  for (unsigned node = 0; node < degree; ++node) {
    for (unsigned other = 0; other < degree; ++other) {
      if (other != node) {
        weights[node] *= (position - other) / (static_cast<double>(node) - other);
      }
    }
  }
  return weights;
}

/// The weights along one axis for every quantised fraction of the position.
std::vector<std::vector<double>> AxisWeights(unsigned degree, unsigned fraction_steps) {
  const unsigned node_before_point = degree / 2 - 1;
  std::vector<std::vector<double>> weights;
  for (unsigned step = 0; step < fraction_steps; ++step) {
    const double fraction = static_cast<double>(step) / fraction_steps;
    weights.push_back(LagrangeWeights(degree, node_before_point + fraction));
  }
  return weights;
}

}  // namespace

double BASE_MATRIX_INTERPOLATION::GetValue(double, double) const {
  Log() << ALARM
        << "BASE_MATRIX_INTERPOLATION::GetValue() shall never been called, but GetValue() of "
           "derived classes only !";
  throw ERROR_NOT_IMPLEMENTED();
}

template <class T>
void MATRIX_INTERPOLATION<T>::Init(const T* const* rows, unsigned rg_size, unsigned az_size,
                                   unsigned degree) {
  rows_ = rows;
  rg_size_ = rg_size;
  az_size_ = az_size;
  degree_ = degree;
  support_offset_ = degree / 2;
  BuildWeights();
  PrintOverview();
}

template <class T>
void MATRIX_INTERPOLATION<T>::BuildWeights() {
  weights_.clear();
  if (degree_ != 4 && degree_ != 6) {
    return;
  }
  const std::vector<std::vector<double>> axis_weights = AxisWeights(degree_, fraction_steps);
  weights_.reserve(std::size_t{fraction_steps} * fraction_steps * degree_ * degree_);
  for (const std::vector<double>& azimuth_weights : axis_weights) {
    for (const std::vector<double>& range_weights : axis_weights) {
      for (const double azimuth_weight : azimuth_weights) {
        for (const double range_weight : range_weights) {
          weights_.push_back(static_cast<float>(azimuth_weight * range_weight));
        }
      }
    }
  }
}

template <class T>
void MATRIX_INTERPOLATION<T>::PrintOverview() const {
  Log() << INFO << "MATRIX_INTERPOLATION: Overview of initialized parameters:\n";
  Log() << INFO << "--------------------------------------------------\n";
  Log() << INFO << "rg_size: ........... " << rg_size_ << "\n";
  Log() << INFO << "az_size: ........... " << az_size_ << "\n";
  Log() << INFO << "degree: ............ " << degree_ << "\n";
}

template <class T>
void MATRIX_INTERPOLATION<T>::RefuseDegree() const {
  Log() << ALARM << "interpolation degree " << degree_ << " not handled";
  throw ERROR_UNHANDLED_CASE();
}

template class MATRIX_INTERPOLATION<float>;
