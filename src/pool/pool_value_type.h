#pragma once

#include <limits>
#include <string_view>
#include <type_traits>

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

static_assert(std::numeric_limits<char>::is_signed, "char holds the signed 8-bit values");

/// A C++ type of elements, and the pool types of one, of a vector and of a matrix of them. The
/// format has not matrices of all.
template <class T, PoolValueType SINGLE, PoolValueType VECTOR_OF,
          PoolValueType MATRIX_OF = PoolValueType::UNKNOWN>
struct POOL_ELEMENT {
  using TYPE = T;
  static constexpr PoolValueType single = SINGLE;
  static constexpr PoolValueType vector = VECTOR_OF;
  static constexpr PoolValueType matrix = MATRIX_OF;
};

template <class... ELEMENTS>
struct POOL_ELEMENT_LIST {};

struct POOL_TYPES {
  using enum PoolValueType;
  /// What there is for every type of entries follows from this list.
  using ELEMENTS = POOL_ELEMENT_LIST<
      POOL_ELEMENT<bool, BOL, BOL_V>, POOL_ELEMENT<unsigned char, BYT, BYT_V, BYT_M>,
      POOL_ELEMENT<char, INT_8, INT_8_V, INT_8_M>, POOL_ELEMENT<short, INT_16, INT_16_V, INT_16_M>,
      POOL_ELEMENT<int, INT_32, INT_32_V, INT_32_M>, POOL_ELEMENT<long long, INT_64, INT_64_V>,
      POOL_ELEMENT<float, FLT_6, FLT_6_V, FLT_6_M>,
      POOL_ELEMENT<double, FLT_15, FLT_15_V, FLT_15_M>, POOL_ELEMENT<STRING, STR, STR_V, STR_M>,
      POOL_ELEMENT<COMPLEX<float>, CPL_6, CPL_6_V, CPL_6_M>,
      POOL_ELEMENT<COMPLEX<double>, CPL_15, CPL_15_V, CPL_15_M>,
      POOL_ELEMENT<POINT<int>, INT_32_INT_32, INT_32_INT_32_V>,
      POOL_ELEMENT<POINT<long long>, INT_64_INT_64, INT_64_INT_64_V>,
      POOL_ELEMENT<POINT<float>, FLT_6_FLT_6, FLT_6_FLT_6_V>,
      POOL_ELEMENT<POINT<double>, FLT_15_FLT_15, FLT_15_FLT_15_V>,
      POOL_ELEMENT<INDEX<int, int>, IDX_INT_32, IDX_INT_32_V>,
      POOL_ELEMENT<INDEX<int, float>, IDX_FLT_6, IDX_FLT_6_V>,
      POOL_ELEMENT<INDEX<int, double>, IDX_FLT_15, IDX_FLT_15_V>,
      POOL_ELEMENT<TUPLE<STRING>, STR_STR, STR_STR_V>>;
};

template <class T, class ELEMENT>
constexpr PoolValueType PoolTypeIn() noexcept {
  using TYPE = typename ELEMENT::TYPE;
  return std::is_same_v<T, TYPE>           ? ELEMENT::single
         : std::is_same_v<T, ARRAY<TYPE>>  ? ELEMENT::vector
         : std::is_same_v<T, MATRIX<TYPE>> ? ELEMENT::matrix
                                           : PoolValueType::UNKNOWN;
}

/// At most one of the elements has it; UNKNOWN is 0.
template <class T, class... ELEMENTS>
constexpr PoolValueType PoolTypeIn(POOL_ELEMENT_LIST<ELEMENTS...>) noexcept {
  return static_cast<PoolValueType>((static_cast<int>(PoolTypeIn<T, ELEMENTS>()) + ...));
}

/// The pool type that holds values of a C++ type; UNKNOWN for types that no entry can hold.
template <class T>
inline constexpr PoolValueType pool_type_of = PoolTypeIn<T>(POOL_TYPES::ELEMENTS());

/// A type that an entry of a pool can hold.
template <class T>
concept POOL_VALUE = (pool_type_of<T> != PoolValueType::UNKNOWN);

template <class VISIT, class... ELEMENTS>
void VisitPoolElementsOf(POOL_ELEMENT_LIST<ELEMENTS...>, VISIT& visit) {
  (visit(typename ELEMENTS::TYPE()), ...);
}

/// Calls `visit` with an empty value of the C++ type of each element.
template <class VISIT>
void VisitPoolElements(VISIT visit) {
  VisitPoolElementsOf(POOL_TYPES::ELEMENTS(), visit);
}

template <class T, class VISIT>
bool VisitIfOfType(PoolValueType type, VISIT& visit) {
  if constexpr (POOL_VALUE<T>) {
    if (pool_type_of<T> == type) {
      visit(T());
      return true;
    }
  }
  return false;
}

template <class VISIT, class... ELEMENTS>
bool VisitPoolTypeOf(POOL_ELEMENT_LIST<ELEMENTS...>, PoolValueType type, VISIT& visit) {
  return ((VisitIfOfType<typename ELEMENTS::TYPE>(type, visit) ||
           VisitIfOfType<ARRAY<typename ELEMENTS::TYPE>>(type, visit) ||
           VisitIfOfType<MATRIX<typename ELEMENTS::TYPE>>(type, visit)) ||
          ...);
}

/// Calls `visit` with an empty value of the C++ type whose values the entries of a pool type hold;
/// false, and no call, for UNKNOWN.
template <class VISIT>
bool VisitPoolType(PoolValueType type, VISIT visit) {
  return VisitPoolTypeOf(POOL_TYPES::ELEMENTS(), type, visit);
}
