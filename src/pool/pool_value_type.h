#pragma once

#include <limits>
#include <string_view>

#include "base/array.h"
#include "base/complex.h"
#include "base/index.h"
#include "base/matrix.h"
#include "base/string.h"
#include "base/tuple.h"

/// The types of pool entries. Integers are named by bits, reals by decimal digits; CPL is a
/// complex pair, IDX an integer index with a value, _V a vector, _M a matrix.
enum class PoolValueType : int {
  UNKNOWN = 0,
  BOL,
  BYT,
  INT_8,
  INT_16,
  INT_32,
  INT_64,
  FLT_6,
  FLT_15,
  STR,
  CPL_6,
  CPL_15,
  INT_32_INT_32,
  INT_64_INT_64,
  FLT_6_FLT_6,
  FLT_15_FLT_15,
  IDX_INT_32,
  IDX_FLT_6,
  IDX_FLT_15,
  STR_STR,
  BOL_V,
  BYT_V,
  INT_8_V,
  INT_16_V,
  INT_32_V,
  INT_64_V,
  FLT_6_V,
  FLT_15_V,
  CPL_6_V,
  CPL_15_V,
  STR_V,
  INT_32_INT_32_V,
  INT_64_INT_64_V,
  FLT_6_FLT_6_V,
  FLT_15_FLT_15_V,
  IDX_INT_32_V,
  IDX_FLT_6_V,
  IDX_FLT_15_V,
  STR_STR_V,
  BYT_M,
  INT_8_M,
  INT_16_M,
  INT_32_M,
  FLT_6_M,
  FLT_15_M,
  CPL_6_M,
  CPL_15_M,
  STR_M
};

inline constexpr int pool_value_type_count = 48;

/// The largest first index of a vector. The elements in front of it take memory that no line of the
/// file stands for, so there must be an end to them.
inline constexpr int largest_first_index = 1 << 20;

/// The word that stands for the type in a pool file.
const char* PoolTypeWord(PoolValueType type) noexcept;
/// The type of a word, UNKNOWN when it is none of them.
PoolValueType PoolTypeOfWord(std::string_view word) noexcept;

constexpr bool IsVectorType(PoolValueType type) noexcept {
  return type >= PoolValueType::BOL_V && type <= PoolValueType::STR_STR_V;
}
constexpr bool IsMatrixType(PoolValueType type) noexcept {
  return type >= PoolValueType::BYT_M;
}

/// The type of vectors of such elements. The vectors stand in the order of their elements' types,
/// except that texts come after the complex values.
constexpr PoolValueType VectorTypeOf(PoolValueType element) noexcept {
  using enum PoolValueType;
  const int offset = static_cast<int>(BOL_V) - static_cast<int>(BOL);
  switch (element) {
    case STR:
      return STR_V;
    case CPL_6:
      return CPL_6_V;
    case CPL_15:
      return CPL_15_V;
    default:
      return element >= BOL && element <= STR_STR
                 ? static_cast<PoolValueType>(static_cast<int>(element) + offset)
                 : UNKNOWN;
  }
}

/// The type of matrices of such elements, UNKNOWN for the many without one.
constexpr PoolValueType MatrixTypeOf(PoolValueType element) noexcept {
  using enum PoolValueType;
  switch (element) {
    case BYT:
      return BYT_M;
    case INT_8:
      return INT_8_M;
    case INT_16:
      return INT_16_M;
    case INT_32:
      return INT_32_M;
    case FLT_6:
      return FLT_6_M;
    case FLT_15:
      return FLT_15_M;
    case CPL_6:
      return CPL_6_M;
    case CPL_15:
      return CPL_15_M;
    case STR:
      return STR_M;
    default:
      return UNKNOWN;
  }
}

static_assert(std::numeric_limits<char>::is_signed, "char holds the signed 8-bit values");

/// The pool type that holds values of a C++ type; UNKNOWN for types that no entry can hold.
template <class T>
inline constexpr PoolValueType pool_type_of = PoolValueType::UNKNOWN;

template <>
inline constexpr PoolValueType pool_type_of<bool> = PoolValueType::BOL;
template <>
inline constexpr PoolValueType pool_type_of<unsigned char> = PoolValueType::BYT;
template <>
inline constexpr PoolValueType pool_type_of<char> = PoolValueType::INT_8;
template <>
inline constexpr PoolValueType pool_type_of<short> = PoolValueType::INT_16;
template <>
inline constexpr PoolValueType pool_type_of<int> = PoolValueType::INT_32;
template <>
inline constexpr PoolValueType pool_type_of<long long> = PoolValueType::INT_64;
template <>
inline constexpr PoolValueType pool_type_of<float> = PoolValueType::FLT_6;
template <>
inline constexpr PoolValueType pool_type_of<double> = PoolValueType::FLT_15;
template <>
inline constexpr PoolValueType pool_type_of<STRING> = PoolValueType::STR;
template <>
inline constexpr PoolValueType pool_type_of<COMPLEX<float>> = PoolValueType::CPL_6;
template <>
inline constexpr PoolValueType pool_type_of<COMPLEX<double>> = PoolValueType::CPL_15;
template <>
inline constexpr PoolValueType pool_type_of<POINT<int>> = PoolValueType::INT_32_INT_32;
template <>
inline constexpr PoolValueType pool_type_of<POINT<long long>> = PoolValueType::INT_64_INT_64;
template <>
inline constexpr PoolValueType pool_type_of<POINT<float>> = PoolValueType::FLT_6_FLT_6;
template <>
inline constexpr PoolValueType pool_type_of<POINT<double>> = PoolValueType::FLT_15_FLT_15;
template <>
inline constexpr PoolValueType pool_type_of<INDEX<int, int>> = PoolValueType::IDX_INT_32;
template <>
inline constexpr PoolValueType pool_type_of<INDEX<int, float>> = PoolValueType::IDX_FLT_6;
template <>
inline constexpr PoolValueType pool_type_of<INDEX<int, double>> = PoolValueType::IDX_FLT_15;
template <>
inline constexpr PoolValueType pool_type_of<TUPLE<STRING>> = PoolValueType::STR_STR;

/// A vector's and a matrix's type follow from the element's, where the format has them.
template <class T>
inline constexpr PoolValueType pool_type_of<ARRAY<T>> = VectorTypeOf(pool_type_of<T>);
template <class T>
inline constexpr PoolValueType pool_type_of<MATRIX<T>> = MatrixTypeOf(pool_type_of<T>);

/// A type that an entry of a pool can hold.
template <class T>
concept POOL_VALUE = (pool_type_of<T> != PoolValueType::UNKNOWN);
