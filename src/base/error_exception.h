#pragma once

/// Root of every failure that the program throws. A class names a kind of failure and carries a
/// fixed text only; the detail (file, value, system error) has been logged at ALARM by the
/// thrower. Bare texts (`const char*`) are thrown besides these classes in a few places.
class ERROR_EXCEPTION {
 public:
  virtual ~ERROR_EXCEPTION() = default;
  /// A constant text, lower case, without full stop or line feed.
  virtual const char* what() const noexcept { return "error occurred"; }
};

class ERROR_MEMORY : public ERROR_EXCEPTION {
 public:
  const char* what() const noexcept override { return "allocation error"; }
};

class ERROR_NO_MEMORY : public ERROR_MEMORY {
 public:
  const char* what() const noexcept override { return "not enough memory"; }
};

class ERROR_I_O : public ERROR_EXCEPTION {
 public:
  const char* what() const noexcept override { return "I/O error"; }
};

class ERROR_NO_DISK_SPACE : public ERROR_I_O {
 public:
  const char* what() const noexcept override { return "not enough disk space"; }
};

class ERROR_CAN_NOT_MMAP : public ERROR_I_O {
 public:
  const char* what() const noexcept override { return "mmap failed"; }
};

class ERROR_CAN_NOT_MSYNC : public ERROR_I_O {
 public:
  const char* what() const noexcept override { return "msync failed"; }
};

class ERROR_CAN_NOT_CREATE_FILE : public ERROR_I_O {
 public:
  const char* what() const noexcept override { return "can not create file"; }
};

class ERROR_CAN_NOT_OPEN_FILE : public ERROR_I_O {
 public:
  const char* what() const noexcept override { return "can not open file"; }
};

class ERROR_CAN_NOT_WRITE_FILE : public ERROR_I_O {
 public:
  const char* what() const noexcept override { return "can not write into file"; }
};

class ERROR_CAN_NOT_READ_FILE : public ERROR_I_O {
 public:
  const char* what() const noexcept override { return "can not read from file"; }
};

class ERROR_CAN_NOT_LSEEK_FILE : public ERROR_I_O {
 public:
  const char* what() const noexcept override { return "can not lseek in file"; }
};

class ERROR_PROCESSING : public ERROR_EXCEPTION {
 public:
  const char* what() const noexcept override { return "processing error"; }
};

class ERROR_ALGORITHM : public ERROR_PROCESSING {
 public:
  const char* what() const noexcept override { return "algorithm error"; }
};

class ERROR_NOT_IMPLEMENTED : public ERROR_ALGORITHM {
 public:
  const char* what() const noexcept override { return "fct or algorithm not implemented"; }
};

class ERROR_UNHANDLED_CASE : public ERROR_ALGORITHM {
 public:
  const char* what() const noexcept override { return "case not handled in if or switch block"; }
};

class ERROR_ARGUMENT : public ERROR_PROCESSING {
 public:
  const char* what() const noexcept override { return "wrong argument"; }
};

class ERROR_INVALID_VALUE : public ERROR_PROCESSING {
 public:
  const char* what() const noexcept override { return "invalid value"; }
};

class ERROR_DATA : public ERROR_EXCEPTION {
 public:
  const char* what() const noexcept override { return "data error"; }
};

class ERROR_NOT_SUPPORTED_PIXEL_TYPE : public ERROR_DATA {
 public:
  const char* what() const noexcept override { return "not supported pixel type"; }
};

class ERROR_PARAMETER : public ERROR_DATA {
 public:
  const char* what() const noexcept override { return "parameter error"; }
};

class ERROR_IMAGE : public ERROR_DATA {
 public:
  const char* what() const noexcept override { return "image data error"; }
};
