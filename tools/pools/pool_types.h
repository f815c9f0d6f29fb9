#pragma once

#include "pool/pool_value_type.h"

/// Calls `visit.template operator()<T>()` with the C++ type whose values the entries of a pool type
/// hold; false, and no call, for UNKNOWN.
template <class VISIT>
bool VisitPoolType(PoolValueType type, VISIT visit) {
  const auto visit_if = [&]<class T>() {
    if constexpr (POOL_VALUE<T>) {
      if (pool_type_of<T> == type) {
        visit.template operator()<T>();
        return true;
      }
    }
    return false;
  };
  const auto visit_any = [&]<class... T>() {
    return ((visit_if.template operator()<T>() || visit_if.template operator()<ARRAY<T>>() ||
             visit_if.template operator()<MATRIX<T>>()) ||
            ...);
  };
  return visit_any.template operator()<
      bool, unsigned char, char, short, int, long long, float, double, STRING, COMPLEX<float>,
      COMPLEX<double>, POINT<int>, POINT<long long>, POINT<float>, POINT<double>, INDEX<int, int>,
      INDEX<int, float>, INDEX<int, double>, TUPLE<STRING>>();
}
