#include "pool/parameter_pool.h"

#include <fcntl.h>

#include "base/error_exception.h"
#include "pool/pool_errors.h"
#include "pool/pool_left_overs.h"

using enum LOGGING_LEVEL_T;

PARAMETER_POOL::PARAMETER_POOL() {
  Log() << TRACE << "init pool";
}

PARAMETER_POOL::PARAMETER_POOL(const char* path, int flags) : file_(path, O_RDONLY), flags_(flags) {
  Log() << DEBUG << "open pool: " << path;
  if (!file_.IsOpen()) {
    Log() << ALARM << "can not open parameter file " << path;
    throw CAN_NOT_OPEN_POOL();
  }
  if (file_.IsDirectory()) {
    Log() << ALARM << "parameter file " << path << " is a directory!";
    throw CAN_NOT_OPEN_POOL();
  }
  if (!file_.IsRegular()) {
    Log() << ALARM << "parameter file " << path << " is not a regular file!";
    throw CAN_NOT_OPEN_POOL();
  }
  TellCopiesOfCutPool(file_);
}

void PARAMETER_POOL::ReadEnumeration(const STRING& key, BASIC::TYPES::ENUM_BASE& value) {
  STRING name;
  Read(key, name);
  value.Assign(name.Text());
}

bool PARAMETER_POOL::Exists(const STRING& key) const {
  POOL_LINE line;
  return FindLine(key, line);
}

PoolValueType PARAMETER_POOL::TypeOf(const STRING& key) const {
  POOL_LINE line;
  if (!FindLine(key, line)) {
    throw PARAMETER_KEY_NOT_FOUND();
  }
  line.NextWord();
  const std::string_view type = line.NextWord();
  if (type.empty()) {
    throw ERROR_PARAMETER_POOL();
  }
  return PoolTypeOfWord(type);
}

bool PARAMETER_POOL::FindLine(const STRING& key, POOL_LINE& line) const {
  return WithMemoryFor("parameter", key.Text(), [&] {
    RequireFile();
    const POOL_LOCK lock(file_, POOL_LOCK::KIND::SHARED);
    POOL_LINES lines(file_);
    return FindKeyLine(lines, key.Text(), line);
  });
}

void PARAMETER_POOL::RequireFile() const {
  if (!file_.IsOpen()) {
    Log() << ALARM << "No file pointer given for parameter pool";
    throw ERROR_ALGORITHM();
  }
}

void PARAMETER_POOL::Trace(const char* mode, const STRING& key, PoolValueType type) const {
  if (trace_level_ < NO_MESSAGE) {
    Log() << trace_level_ << "PP." << mode << ' ' << FileName() << ' ' << key.Text() << ' '
          << PoolTypeWord(type);
  }
}
