#pragma once

/// A pair of values of one type; `TUPLE<STRING>` is a pair of texts.
template <class T>
class TUPLE {
 public:
  TUPLE() = default;
  TUPLE(const T& first, const T& second) : x(first), y(second) {}
  TUPLE(const TUPLE&) = default;
  TUPLE& operator=(const TUPLE&) = default;
  virtual ~TUPLE() = default;

  T x{};
  T y{};
};

/// A pair of coordinates.
template <class T>
class POINT : public TUPLE<T> {
 public:
  using TUPLE<T>::TUPLE;
};
