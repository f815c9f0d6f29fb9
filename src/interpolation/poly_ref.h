#pragma once

#include "base/sub_array.h"

/// One piece of a `LOCAL_INTERPOLATION`: a polynomial, the run of support points that it goes
/// through, and the closed interval of abscissae in which it is used.
///
/// A piece cannot be assigned once it has its view of the points: the view forbids it.
template <class T, class POLY, class PT>
struct POLY_REF {
  POLY polynom;
  SUB_ARRAY<PT> points;  ///< inside the caller's array
  T t_start{};
  T t_stop{};
};
