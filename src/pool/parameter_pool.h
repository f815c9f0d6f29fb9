#pragma once

#include "base/enum_base.h"
#include "base/memory_for.h"
#include "base/string.h"
#include "logging/logging.h"
#include "pool/pool_entry.h"
#include "pool/pool_file.h"
#include "pool/pool_value_type.h"

/// A parameter pool: a text file of typed entries "key TYPE value", through which the programs of
/// the processing chain hand parameters on.
///
/// Every query reads the file anew from its start, so that it sees what others have written.
/// Of several entries with one key the first counts.
class PARAMETER_POOL {
 public:
  /// A pool without a file; every query is an ALARM line and ERROR_ALGORITHM.
  PARAMETER_POOL();
  /// Opens the file for reading. A directory, a device or pipe, which could be read without end, or
  /// a file that cannot be opened: ALARM line and CAN_NOT_OPEN_POOL. An empty or cut file beside
  /// copies that killed updates have left: a WARNING that names each. `flags` is kept for the
  /// caller.
  explicit PARAMETER_POOL(const char* path, int flags = 0);
  PARAMETER_POOL(const PARAMETER_POOL&) = delete;
  PARAMETER_POOL& operator=(const PARAMETER_POOL&) = delete;
  virtual ~PARAMETER_POOL() noexcept(false) = default;

  /// Reads the value of a key. Its type must be the one that belongs to T (`pool_type_of`):
  /// nothing is converted. Details of a failure are logged at ALARM. Throws
  /// PARAMETER_KEY_NOT_FOUND, WRONG_PARAMETER_TYPE, INVALID_PARAMETER_VALUE,
  /// PARAMETER_OUT_OF_BOUNDS, their root ERROR_PARAMETER_POOL and ERROR_NO_MEMORY.
  template <POOL_VALUE T>
  void Read(const STRING& key, T& value) {
    ReadEntry(key, value);
  }

  /// Vectors, also as VECTOR<T>. The element of index i stands at index i of the result, whose
  /// first index is 0; elements in front of the entry's first index are default ones.
  template <class T>
  requires POOL_VALUE<ARRAY<T>>
  void Read(const STRING& key, ARRAY<T>& value) { ReadEntry(key, value); }

  /// Reads a STR entry that holds the name of one of the enumeration's values. Throws
  /// ERROR_ENUM_BASE_INVALID_VALUE for another text.
  void ReadEnumeration(const STRING& key, BASIC::TYPES::ENUM_BASE& value);

  /// Whether there is an entry of the key.
  bool Exists(const STRING& key) const;
  /// The type of the entry, UNKNOWN when its type word is none of the format. Nothing is logged.
  /// Throws PARAMETER_KEY_NOT_FOUND, and ERROR_PARAMETER_POOL without a type word.
  PoolValueType TypeOf(const STRING& key) const;

  const char* FileName() const noexcept { return file_.Name(); }
  int Flags() const noexcept { return flags_; }

  /// The level of the line about each successful read (TRACE), and of the one about a key that
  /// is not there (ALARM; NO_MESSAGE for none).
  void SetTraceLevel(LOGGING_LEVEL_T level) noexcept { trace_level_ = level; }
  void SetErrorLevel(LOGGING_LEVEL_T level) noexcept { error_level_ = level; }

 protected:
  explicit PARAMETER_POOL(POOL_FILE file) : file_(std::move(file)) {}

  POOL_FILE& File() noexcept { return file_; }
  const POOL_FILE& File() const noexcept { return file_; }
  void ReplaceFile(POOL_FILE file) noexcept { file_ = std::move(file); }

  /// "PP.<mode> <file name> <key> <type word>"
  void Trace(const char* mode, const STRING& key, PoolValueType type) const;
  void RequireFile() const;

 private:
  template <class T>
  void ReadEntry(const STRING& key, T& value) {
    WithMemoryFor("parameter", key.Text(), [&] {
      RequireFile();
      POOL_ENTRY entry(file_, key, error_level_);
      entry.Expect(pool_type_of<T>);
      entry.Read(value);
      Trace("Read", key, pool_type_of<T>);
    });
  }

  bool FindLine(const STRING& key, POOL_LINE& line) const;

  POOL_FILE file_;
  int flags_ = 0;
  LOGGING_LEVEL_T trace_level_ = LOGGING_LEVEL_T::TRACE;
  LOGGING_LEVEL_T error_level_ = LOGGING_LEVEL_T::ALARM;
};
