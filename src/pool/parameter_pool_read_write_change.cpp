#include "pool/parameter_pool_read_write_change.h"

#include <fcntl.h>

#include <exception>
#include <utility>

#include "pool/pool_errors.h"
#include "pool/pool_update.h"

using enum LOGGING_LEVEL_T;

PARAMETER_POOL_READ_WRITE_CHANGE::PARAMETER_POOL_READ_WRITE_CHANGE(const char* path)
    : PARAMETER_POOL(POOL_FILE(path, O_RDWR)) {
  Log() << DEBUG << "construct pool_rwc: " << path;
  if (!File().IsOpen()) {
    Log() << ALARM << "can not open pool file for update " << path;
    throw CAN_NOT_OPEN_POOL();
  }
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

void PARAMETER_POOL_READ_WRITE_CHANGE::Update() {
  if (items_.Empty()) {
    return;
  }
  const PARAMETER_POOL_LIST items = std::exchange(items_, {});
  ReplaceFile(UpdatePoolFile(FileName(), items));
}

void PARAMETER_POOL_READ_WRITE_CHANGE::CheckUpdate() const {
  if (!items_.Empty()) {
    CheckPoolUpdate(FileName());
  }
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
