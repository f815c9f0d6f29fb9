#pragma once

#include "base/array.h"
#include "base/error_exception.h"
#include "logging/logging.h"

/// Interpolation of a function of one variable that is given at support points (x, y), as a
/// `POINT` each. Set up once, then only read: the evaluations may run in many threads at once.
template <class T, class PT>
class INTERPOLATION {
 public:
  virtual ~INTERPOLATION() = default;

  /// Sets up from the support points, which must stay alive and unchanged while the object is
  /// used. Their abscissae rise strictly.
  virtual void Init(ARRAY<PT>&) {}
  /// A second way to set up; the same as `Init` in the classes derived here.
  virtual void InitSupport(ARRAY<PT>&) {}
  virtual void SetOption(int) {}
  virtual void SetSupportPointCount(int) {}

  /// The value at x. The evaluations of this base must never run: all throw ERROR_ALGORITHM.
  virtual T GetY(T) const { Refuse("INTERPOLATION::GetY() shell not be called\n"); }
  /// The first derivative at x.
  virtual T GetDerivedY(T) const { Refuse("INTERPOLATION::GetDerivedY() shell not be called\n"); }
  /// The second derivative at x.
  virtual T GetDerived2Y(T) const { Refuse("INTERPOLATION::GetDerived2Y() shell not be called\n"); }
  /// The coefficients in force at x, in Newton form.
  virtual const T* GetCoeffs(T) const {
    Refuse("INTERPOLATION::GetCoeffs() shall not be called\n");
  }

 protected:
  INTERPOLATION() = default;
  INTERPOLATION(const INTERPOLATION&) = default;
  INTERPOLATION& operator=(const INTERPOLATION&) = default;

  [[noreturn]] static void Refuse(const char* text) {
    Log() << LOGGING_LEVEL_T::ALARM << text;
    throw ERROR_ALGORITHM();
  }
};
