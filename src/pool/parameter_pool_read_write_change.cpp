#include "pool/parameter_pool_read_write_change.h"

#include <fcntl.h>

#include <exception>
#include <utility>

#include "pool/pool_errors.h"
#include "pool/pool_left_overs.h"
#include "pool/pool_update.h"

using enum LOGGING_LEVEL_T;

PARAMETER_POOL_READ_WRITE_CHANGE::PARAMETER_POOL_READ_WRITE_CHANGE(const char* path)
    : PARAMETER_POOL(POOL_FILE(path, O_RDWR)) {
  Log() << DEBUG << "construct pool_rwc: " << path;
  if (!File().IsOpen()) {
    Log() << ALARM << "can not open pool file for update " << path;
    throw CAN_NOT_OPEN_POOL();
  }
  if (!File().IsRegular()) {
    Log() << ALARM << "pool file for update " << path << " is not a regular file!";
    throw CAN_NOT_OPEN_POOL();
  }
  TellCopiesOfCutPool(File());
}

PARAMETER_POOL_READ_WRITE_CHANGE::~PARAMETER_POOL_READ_WRITE_CHANGE() noexcept(false) {
  const bool may_throw = std::uncaught_exceptions() == 0 && std::current_exception() == nullptr;
  try {
    Update();
  } catch (...) {
    if (may_throw) {
      throw;
    }
  }
}

void PARAMETER_POOL_READ_WRITE_CHANGE::WriteEnumeration(const STRING& key,
                                                        const BASIC::TYPES::ENUM_BASE& value) {
  Write(key, STRING(value.Name()));
}

POOL_LOCK PARAMETER_POOL_READ_WRITE_CHANGE::LockForUpdate() {
  while (!File().IsLocked()) {
    ReplaceFile(OpenPoolForUpdate(FileName()));
    POOL_LOCK lock(File(), POOL_LOCK::KIND::EXCLUSIVE);
    // While the lock was awaited another file may have been put into the place of this one.
    if (File().IsAtItsName()) {
      return lock;
    }
  }
  return {File(), POOL_LOCK::KIND::EXCLUSIVE};
}

void PARAMETER_POOL_READ_WRITE_CHANGE::Update() {
  if (items_.Empty()) {
    return;
  }
  const PARAMETER_POOL_LIST items = std::exchange(items_, {});
  WithMemoryFor("parameter file", FileName(), [&] {
    const POOL_LOCK lock = LockForUpdate();
    UpdatePoolFile(File(), items);
  });
}

void PARAMETER_POOL_READ_WRITE_CHANGE::CheckUpdate() const {
  if (!items_.Empty()) {
    CheckPoolUpdate(FileName());
  }
}

void PARAMETER_POOL_READ_WRITE_CHANGE::WriteAll(PARAMETER_POOL_LIST items) {
  for (const PARAMETER_POOL_ITEM& item : items) {
    Trace("Write", item.Key(), item.Type());
  }
  items_.AddAll(std::move(items));
}

void PARAMETER_POOL_READ_WRITE_CHANGE::Add(PARAMETER_POOL_ITEM item) {
  const STRING key = item.Key();
  const PoolValueType type = item.Type();
  items_.Add(std::move(item));
  Trace("Write", key, type);
}

void PARAMETER_POOL_READ_WRITE_CHANGE::ChangeTo(PARAMETER_POOL_ITEM item) {
  const STRING key = item.Key();
  const PoolValueType type = item.Type();
  if (items_.Find(key.Text()) == nullptr && Exists(key)) {
    items_.Add(std::move(item));
  } else {
    items_.Change(std::move(item));
  }
  Trace("Change", key, type);
}
