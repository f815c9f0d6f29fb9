#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "pool/pool_value_type.h"

// Sample values of every type that a pool can hold, and what it takes to compare them.

/// The bytes of a value, equal only for values that are equal to the last bit.
template <class T>
std::string Bytes(const T& value) {
  if constexpr (std::is_arithmetic_v<T>) {
    return {reinterpret_cast<const char*>(&value), sizeof(value)};
  } else if constexpr (std::is_same_v<T, STRING>) {
    return value.Text() + std::string("\n");
  } else if constexpr (requires { value.re; }) {
    return Bytes(value.re) + Bytes(value.im);
  } else if constexpr (requires { value.x; }) {
    return Bytes(value.x) + Bytes(value.y);
  } else {
    return Bytes(value.key) + Bytes(value.value);
  }
}
template <class T>
std::string Bytes(const ARRAY<T>& vector) {
  std::string bytes = Bytes(vector.First()) + Bytes(vector.Size());
  std::for_each(vector.Pointer(0), vector.Pointer(0) + vector.Size(),
                [&](const T& element) { bytes += Bytes(element); });
  return bytes;
}
template <class T>
std::string Bytes(const MATRIX<T>& matrix) {
  const RANGE<int> rows = matrix.Rows();
  const RANGE<int> columns = matrix.Columns();
  std::string bytes =
      Bytes(rows.First()) + Bytes(rows.Count()) + Bytes(columns.First()) + Bytes(columns.Count());
  for (int row = rows.First(); row <= rows.Last(); ++row) {
    for (int column = columns.First(); column <= columns.Last(); ++column) {
      bytes += Bytes(matrix.At(row, column));
    }
  }
  return bytes;
}

template <class T>
std::vector<T> Samples();

/// Pairs of the samples, from both ends.
template <class PAIR, class FIRST, class SECOND>
std::vector<PAIR> PairsOfSamples() {
  const std::vector<FIRST> first = Samples<FIRST>();
  const std::vector<SECOND> second = Samples<SECOND>();
  std::vector<PAIR> pairs;
  for (std::size_t i = 0; i < second.size(); ++i) {
    pairs.push_back(PAIR{first[i % first.size()], second[second.size() - 1 - i]});
  }
  return pairs;
}

inline std::vector<STRING> SampleTexts() {
  const std::string longest_on_key_line(1024 - 48 - 2, 'x');
  return {"",
          " ",
          "  two  blanks  ",
          "\ttab",
          "a \"quoted\" word",
          "\"",
          "back\\slash",
          "\\",
          "\\\"",
          "#no comment",
          "{",
          "}",
          "key INT_32 5",
          "\xC3\xA4\xFF",
          longest_on_key_line.c_str()};
}

template <class T>
std::vector<T> SampleNumbers() {
  using LIMITS = std::numeric_limits<T>;
  std::vector<T> values = {T(0), T(1), T(100), LIMITS::lowest(), LIMITS::max()};
  if constexpr (std::is_floating_point_v<T>) {
    values.insert(values.end(), {-T(0), T(0.1), T(1) / T(3), LIMITS::min(), LIMITS::epsilon(),
                                 -LIMITS::denorm_min(), LIMITS::quiet_NaN(), -LIMITS::quiet_NaN()});
    using BITS = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
    std::mt19937_64 random(1);
    for (int i = 0; i < 50; ++i) {
      const T value = std::bit_cast<T>(static_cast<BITS>(random()));
      values.push_back(std::isfinite(value) ? value : T(i));
    }
  }
  return values;
}

/// The ordinary, the extreme and the awkward values of a type.
template <class T>
std::vector<T> Samples() {
  if constexpr (std::is_same_v<T, bool>) {
    return {true, false};
  } else if constexpr (std::is_arithmetic_v<T>) {
    return SampleNumbers<T>();
  } else if constexpr (std::is_same_v<T, STRING>) {
    return SampleTexts();
  } else if constexpr (std::is_same_v<T, TUPLE<STRING>>) {
    return {{"", ""}, {"one", "two words"}, {"\"", "\\"}, {" , ", "#"}, {"}", "{"}};
  } else if constexpr (requires { &T::re; }) {
    return PairsOfSamples<T, decltype(T::re), decltype(T::im)>();
  } else if constexpr (requires { &T::x; }) {
    return PairsOfSamples<T, decltype(T::x), decltype(T::y)>();
  } else {
    return PairsOfSamples<T, decltype(T::key), decltype(T::value)>();
  }
}

/// A vector of these elements from index 0 on.
template <class T>
ARRAY<T> VectorOf(const std::vector<T>& elements) {
  ARRAY<T> vector;
  vector.Create(RANGE<int>(0, static_cast<int>(elements.size())));
  std::copy(elements.begin(), elements.end(), vector.Origin());
  return vector;
}

/// A matrix of these elements, row by row, with these first indices.
template <class T>
MATRIX<T> MatrixOf(int first_row, int first_column, int width, const std::vector<T>& elements) {
  MATRIX<T> matrix;
  const int height = static_cast<int>(elements.size()) / width;
  matrix.Create(RANGE<int>(first_row, height), RANGE<int>(first_column, width));
  T* const* const rows = matrix.GetNumRecMatrix();
  for (int row = 0; row < height; ++row) {
    std::copy_n(elements.begin() + row * width, width, rows[first_row + row] + first_column);
  }
  return matrix;
}
