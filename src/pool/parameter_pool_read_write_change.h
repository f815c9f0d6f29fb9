#pragma once

#include "base/enum_base.h"
#include "base/list.h"
#include "base/string.h"
#include "pool/parameter_pool.h"
#include "pool/parameter_pool_list.h"

/// A parameter pool that can also be written. Entries are collected and reach the file together
/// with the update, which leaves every other byte of the file as it is. Reading answers from the
/// file, not from what waits for the update.
class PARAMETER_POOL_READ_WRITE_CHANGE : public PARAMETER_POOL {
 public:
  /// Opens the file for reading and writing. Failure: ALARM line and CAN_NOT_OPEN_POOL.
  explicit PARAMETER_POOL_READ_WRITE_CHANGE(const char* path);
  /// Updates the file if `Update` has not done it. Throws its errors, unless another exception
  /// is on its way or being handled: then the log has to do. Note that owners such as
  /// std::unique_ptr let no exception through; they call `Update` first.
  ~PARAMETER_POOL_READ_WRITE_CHANGE() noexcept(false) override;

  /// Registers an entry, for a key that may be in the file or not, to be written with the comment
  /// lines (without "#") in front. Throws PARAMETER_KEY_EXISTS when the key is registered
  /// already, and what the constructor of PARAMETER_POOL_ITEM throws for a value that would not
  /// read back.
  template <POOL_VALUE T>
  void Write(const STRING& key, const T& value, const LIST<STRING>& comments = {}) {
    WithMemoryFor("parameter", key.Text(), [&] { Add(PARAMETER_POOL_ITEM(key, value, comments)); });
  }
  template <class T>
  requires POOL_VALUE<ARRAY<T>>
  void Write(const STRING& key, const ARRAY<T>& value, const LIST<STRING>& comments = {}) {
    WithMemoryFor("parameter", key.Text(), [&] { Add(PARAMETER_POOL_ITEM(key, value, comments)); });
  }

  /// Registers all of these entries or, when it throws, none.
  void WriteAll(PARAMETER_POOL_LIST items);

  /// As `Write`, for a key that is registered, whose entry is replaced, or that is in the file.
  /// Throws PARAMETER_KEY_NOT_FOUND for any other.
  template <POOL_VALUE T>
  void Change(const STRING& key, const T& value, const LIST<STRING>& comments = {}) {
    WithMemoryFor("parameter", key.Text(),
                  [&] { ChangeTo(PARAMETER_POOL_ITEM(key, value, comments)); });
  }
  template <class T>
  requires POOL_VALUE<ARRAY<T>>
  void Change(const STRING& key, const ARRAY<T>& value, const LIST<STRING>& comments = {}) {
    WithMemoryFor("parameter", key.Text(),
                  [&] { ChangeTo(PARAMETER_POOL_ITEM(key, value, comments)); });
  }

  /// `Write` for the name of an enumeration's value, as a STR entry.
  void WriteEnumeration(const STRING& key, const BASIC::TYPES::ENUM_BASE& value);

  /// Waits until no other program updates or reads the file, and keeps it so until the lock ends:
  /// what is read meanwhile is what `Update` merges into. The pool must outlive the lock. Failure:
  /// ALARM line and NO_UPDATE_PERMISSION_FOR_POOL.
  [[nodiscard]] POOL_LOCK LockForUpdate();

  /// Merges the registered entries into the file as it is now. They are registered no longer
  /// then, also after a failure, so that no second attempt meets a half-written file. Without
  /// entries nothing happens. Errors: see `LockForUpdate` and `UpdatePoolFile`.
  void Update();
  /// Throws what an update would, as far as that can be told without writing: see
  /// `CheckPoolUpdate`. Without entries nothing is checked.
  void CheckUpdate() const;
  /// Forgets the registered entries: there is nothing to update any more.
  void Discard() noexcept { items_ = {}; }

 private:
  void Add(PARAMETER_POOL_ITEM item);
  void ChangeTo(PARAMETER_POOL_ITEM item);

  PARAMETER_POOL_LIST items_;
};
