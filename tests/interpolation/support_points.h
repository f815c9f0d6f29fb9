#pragma once

#include <stdexcept>
#include <vector>

#include "base/array.h"
#include "base/tuple.h"

/// Points (x, f(x)) of a function, with indices from 3 on, since users may start anywhere.
class SUPPORT_POINTS {
 public:
  template <class FUNCTION>
  SUPPORT_POINTS(const std::vector<double>& abscissae, FUNCTION f) {
    if (points_.Create(RANGE<int>(3, static_cast<int>(abscissae.size()))) != CONTAINER_OK) {
      throw std::runtime_error("no memory for support points");
    }
    for (std::size_t k = 0; k < abscissae.size(); ++k) {
      points_.Pointer(0)[k] = POINT<double>(abscissae[k], f(abscissae[k]));
    }
  }

  /// The interpolations take the points by a reference that could change them, but do not.
  ARRAY<POINT<double>>& Array() const { return points_; }

 private:
  mutable ARRAY<POINT<double>> points_;
};
