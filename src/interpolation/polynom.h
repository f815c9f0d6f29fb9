#pragma once

#include <algorithm>

#include "base/tuple.h"
#include "interpolation/interpolation.h"

/// The polynomial of degree n through n + 1 support points in Newton form,
/// c0 + c1 (x - x0) + c2 (x - x0)(x - x1) + ..., with the divided differences c.
///
/// Equal abscissae make coefficients infinite or NaN; that is not checked. Evaluating before
/// set-up throws ERROR_ALGORITHM.
template <class T>
class POLYNOM : public INTERPOLATION<T, POINT<T>> {
 public:
  void Init(ARRAY<POINT<T>>& points) override { InitSupport(points); }

  /// Throws ERROR_ALGORITHM without points, the text "POLYNOM: not enough memory.." without memory.
  void InitSupport(ARRAY<POINT<T>>& points) override {
    if (points.Size() < 1) {
      this->Refuse("POLYNOM: no support points\n");
    }
    degree_ = -1;
    support_ = points.Pointer(0);
    if (coeffs_.Create(RANGE<int>(0, points.Size())) != CONTAINER_OK) {
      throw "POLYNOM: not enough memory..";
    }
    degree_ = points.Size() - 1;
    DivideDifferences();
  }

  T GetY(T x) const override {
    const T* c = Coefficients();
    T value = c[degree_];
    for (int k = degree_ - 1; k >= 0; --k) {
      value = value * (x - support_[k].x) + c[k];
    }
    return value;
  }

  T GetDerivedY(T x) const override {
    const T* c = Coefficients();
    T value = c[degree_];
    T derivative{};
    for (int k = degree_ - 1; k >= 0; --k) {
      const T step = x - support_[k].x;
      derivative = derivative * step + value;
      value = value * step + c[k];
    }
    return derivative;
  }

  /// The factors use the abscissae of the order of the derivative, not those of the term, so that
  /// the result is the second derivative for up to four support points only. Users rely on it.
  T GetDerived2Y(T x) const override {
    const T* c = Coefficients();
    T order[3] = {c[degree_], T{}, T{}};
    for (int k = degree_ - 1; k >= 0; --k) {
      for (int q = std::min(degree_ - k, 2); q >= 1; --q) {
        order[q] = order[q] * (x - support_[q].x) + order[q - 1];
      }
      order[0] = order[0] * (x - support_[0].x) + c[k];
    }
    return 2 * order[2];
  }

  /// The n + 1 divided differences, the same for every x.
  const T* GetCoeffs(T) const override { return Coefficients(); }

  /// n, or -1 before set-up.
  int Degree() const noexcept { return degree_; }

 private:
  void DivideDifferences() noexcept {
    T* c = coeffs_.Pointer(0);
    for (int k = 0; k <= degree_; ++k) {
      c[k] = support_[k].y;
    }
    for (int j = 1; j <= degree_; ++j) {
      for (int i = degree_; i >= j; --i) {
        c[i] = (c[i] - c[i - 1]) / (support_[i].x - support_[i - j].x);
      }
    }
  }

  const T* Coefficients() const {
    if (degree_ < 0) {
      this->Refuse("POLYNOM: evaluated before its set-up\n");
    }
    return coeffs_.Pointer(0);
  }

  int degree_ = -1;
  ARRAY<T> coeffs_;
  const POINT<T>* support_ = nullptr;
};
