#pragma once

#include <string>
#include <string_view>

#include "logging/logging.h"
#include "pool/pool_errors.h"
#include "pool/pool_lines.h"
#include "pool/pool_value_type.h"

/// One entry of a pool file, from its key line on: finds the entry of a key and parses its value.
///
/// Every failure is logged as "parameter pool: parameter key >> <key> << <reason>" before its
/// error is thrown.
class POOL_ENTRY {
 public:
  /// Finds the first key line of the key behind the place and holds a shared lock on the file from
  /// then on. Without one: a line at `not_found_level` (none for NO_MESSAGE) and
  /// PARAMETER_KEY_NOT_FOUND. A key line without type word is an ERROR_PARAMETER_POOL.
  POOL_ENTRY(const POOL_FILE& file, const STRING& key, LOGGING_LEVEL_T not_found_level,
             POOL_PLACE from = {});

  /// UNKNOWN when the type word is none of the format.
  PoolValueType Type() const noexcept { return type_; }
  /// Throws WRONG_PARAMETER_TYPE unless the entry has this type.
  void Expect(PoolValueType type);

  /// What was wrong, without the key, after a failure to read; and the number of the line, from 1,
  /// that was read last.
  const std::string& FailureReason() const noexcept { return failure_reason_; }
  long long LineNumber() const noexcept { return lines_.Number(); }

  /// Each takes one value, one or two words, from the present line.
  void Read(bool& value);
  void Read(unsigned char& value);
  void Read(char& value);
  void Read(short& value);
  void Read(int& value);
  void Read(long long& value);
  void Read(float& value);
  void Read(double& value);
  void Read(STRING& value);
  void Read(TUPLE<STRING>& value);

  template <class T>
  void Read(COMPLEX<T>& value) {
    Read(value.re);
    ExpectWord<INVALID_PARAMETER_VALUE>(" << no imaginary part in CPL_6");
    Read(value.im);
  }

  template <class T>
  void Read(POINT<T>& value) {
    Read(value.x);
    ExpectWord<ERROR_PARAMETER_POOL>(" << no second coordinate");
    Read(value.y);
  }

  template <class T>
  void Read(INDEX<int, T>& value) {
    Read(value.key);
    ExpectWord<ERROR_PARAMETER_POOL>(" << no value");
    Read(value.value);
  }

  /// The range on the key line, then the block. The result begins at index 0: the entry's first
  /// index is an offset, and the elements in front of it are default ones.
  template <class T>
  void Read(ARRAY<T>& vector) {
    const RANGE<int> range = ReadRange();
    if (range.First() > largest_first_index) {
      Refuse<INVALID_PARAMETER_VALUE>(" << no correct range for VECTOR or MATRIX");
    }
    const RANGE<int> result(0, range.First() + range.Count());
    const bool fits = lines_.CanHold(LinesOfBlock(range));
    if (fits && vector.Create(result) != CONTAINER_OK) {
      Refuse<ERROR_NO_MEMORY>(" << not enough memory to create ARRAY");
    }
    ReadBlock(pool_type_of<ARRAY<T>>, range, fits ? vector.Pointer(0) : nullptr);
    if (!fits) {
      Refuse<INVALID_PARAMETER_VALUE>(" << no correct range for VECTOR or MATRIX");
    }
  }

  /// The ranges of rows and columns on the key line, then a block of one block a row. A matrix
  /// of these ranges is filled in place.
  template <class T>
  void Read(MATRIX<T>& matrix) {
    const RANGE<int> rows = ReadRange();
    ExpectWord<INVALID_PARAMETER_VALUE>(" << no correct range for MATRIX");
    const RANGE<int> columns = ReadRange();
    const bool fits = lines_.CanHold(frame_lines + rows.Count() * LinesOfBlock(columns));
    const bool in_place =
        matrix.HasStorage() && matrix.Rows() == rows && matrix.Columns() == columns;
    if (fits && !in_place && matrix.Create(rows, columns) != CONTAINER_OK) {
      Refuse<ERROR_NO_MEMORY>(" << not enough memory to create MATRIX");
    }
    T* const* const table = fits ? matrix.GetNumRecMatrix() : nullptr;
    ReadOpeningBrace(pool_type_of<MATRIX<T>>);
    for (int row = rows.First(); row <= rows.Last(); ++row) {
      ReadBlock(pool_type_of<ARRAY<T>>, columns, table != nullptr ? table[row] : nullptr);
    }
    ReadClosingBrace(pool_type_of<MATRIX<T>>);
    if (!fits) {
      Refuse<INVALID_PARAMETER_VALUE>(" << no correct range for MATRIX");
    }
  }

 private:
  static constexpr long long frame_lines = 2;

  static long long LinesOfBlock(const RANGE<int>& range) { return frame_lines + range.Count(); }

  /// The lines "{", one element each, "}". The element of index i goes to target[i]. Without
  /// target - the file is too short for the range, and nothing was allocated - the elements are
  /// only checked, up to the one that is missing.
  template <class T>
  void ReadBlock(PoolValueType type, const RANGE<int>& range, T* target) {
    ReadOpeningBrace(type);
    T unused{};
    for (int index = range.First(); index <= range.Last(); ++index) {
      NextElementLine(type, index);
      Read(target != nullptr ? target[index] : unused);
    }
    ReadClosingBrace(type);
  }

  void ReadOpeningBrace(PoolValueType type);
  void NextElementLine(PoolValueType type, int index);
  /// Any line reads as a text, so a "}" that stands alone has to end a block of texts by itself.
  void RefuseEarlyEnd(PoolValueType type);
  void ReadClosingBrace(PoolValueType type);

  struct INTEGER_RULE;

  RANGE<int> ReadRange();
  /// The next word; without one " << no parameter value in file" and INVALID_PARAMETER_VALUE.
  std::string ReadWord();
  bool AtWord();
  template <class ERROR>
  void ExpectWord(const char* reason) {
    if (!AtWord()) {
      Refuse<ERROR>(reason);
    }
  }
  /// Parses an integer and checks it. All rules stand beside each other in the source file.
  long long ReadInteger(const INTEGER_RULE& rule);
  double ReadReal(double limit, const char* range_reason);

  void LogReason(std::string_view reason);
  template <class ERROR>
  [[noreturn]] void Refuse(std::string_view reason) {
    LogReason(reason);
    throw ERROR();
  }
  template <class ERROR>
  [[noreturn]] void RefuseValue(const std::string& word, const char* reason) {
    Refuse<ERROR>(" << read value is : " + word + reason);
  }

  STRING key_;
  POOL_LOCK lock_;
  POOL_LINES lines_;
  POOL_LINE line_;
  PoolValueType type_ = PoolValueType::UNKNOWN;
  std::string failure_reason_;
};

/// Moves to the first key line of the key; false without one.
bool FindKeyLine(POOL_LINES& lines, std::string_view key, POOL_LINE& line);
