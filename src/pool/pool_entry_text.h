#pragma once

#include <string>
#include <string_view>

#include "base/list.h"
#include "base/string.h"
#include "logging/logging.h"
#include "pool/pool_errors.h"
#include "pool/pool_value_type.h"

/// Composes the lines of one entry as they stand in a pool file: key and type word in columns,
/// the value behind them or in a block below, an empty line. What it composes reads back as the
/// same value. A value that could not is refused with an ALARM line: texts with line ends and
/// lines beyond the length that is read as one (INVALID_PARAMETER_VALUE), infinities, and first
/// indices that are negative or, of vectors, beyond `largest_first_index`
/// (PARAMETER_OUT_OF_BOUNDS).
class POOL_ENTRY_TEXT {
 public:
  /// Throws PARAMETER_KEY_TOO_LONG, and ERROR_ARGUMENT for a key that would not be found again.
  POOL_ENTRY_TEXT(const STRING& key, PoolValueType type);

  /// Each appends one value to the present line.
  void Write(bool value) { text_ += value ? "TRUE" : "FALSE"; }
  void Write(unsigned char value) { WriteInteger(value); }
  void Write(char value) { WriteInteger(value); }
  void Write(short value) { WriteInteger(value); }
  void Write(int value) { WriteInteger(value); }
  void Write(long long value) { WriteInteger(value); }
  void Write(float value);
  void Write(double value);
  void Write(const STRING& value);
  void Write(const TUPLE<STRING>& value);

  template <class T>
  void Write(const COMPLEX<T>& value) {
    WritePair(value.re, value.im);
  }
  template <class T>
  void Write(const POINT<T>& value) {
    WritePair(value.x, value.y);
  }
  template <class T>
  void Write(const INDEX<int, T>& value) {
    WritePair(value.key, value.value);
  }

  /// The range on the present line, then the block of elements.
  template <class T>
  void Write(const ARRAY<T>& vector) {
    const RANGE<int> range = vector.Range();
    const T* const elements = vector.Origin();
    if (range.First() > largest_first_index) {
      Refuse<PARAMETER_OUT_OF_BOUNDS>(" << a first index this large can not be written");
    }
    WriteRange(range);
    OpenBlock();
    for (int index = range.First(); index <= range.Last(); ++index) {
      NewLine();
      Write(elements[index]);
    }
    CloseBlock();
  }

  /// The ranges of rows and columns on the present line, then the block of blocks.
  template <class T>
  void Write(const MATRIX<T>& matrix) {
    const RANGE<int> rows = matrix.Rows();
    const RANGE<int> columns = matrix.Columns();
    WriteRange(rows);
    text_ += ' ';
    WriteRange(columns);
    OpenBlock();
    for (int row = rows.First(); row <= rows.Last(); ++row) {
      OpenBlock();
      for (int column = columns.First(); column <= columns.Last(); ++column) {
        NewLine();
        Write(matrix.At(row, column));
      }
      CloseBlock();
    }
    CloseBlock();
  }

  /// The comment lines of the entry, "#<text>" each; a text with line ends makes several. One that
  /// is longer than what is read as a line is refused: its rest would not read back as a comment.
  std::string CommentLines(const LIST<STRING>& comments) const;

  /// Ends the entry and hands its lines out.
  std::string Finish();

 private:
  template <class FIRST, class SECOND>
  void WritePair(const FIRST& first, const SECOND& second) {
    Write(first);
    text_ += ' ';
    Write(second);
  }
  void WriteInteger(long long value) { text_ += std::to_string(value); }
  void WriteRange(const RANGE<int>& range);
  void RefuseLongLines(std::string_view lines, const char* reason) const;

  void NewLine();
  void OpenBlock();
  void CloseBlock();

  template <class ERROR>
  [[noreturn]] void Refuse(std::string_view reason) const {
    Log() << LOGGING_LEVEL_T::ALARM << "parameter pool: parameter key >> " << key_.Text() << reason
          << "\n";
    throw ERROR();
  }

  STRING key_;
  std::string text_;
  std::size_t depth_ = 0;  ///< of blocks around the present line
};
