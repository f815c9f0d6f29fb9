#pragma once

#include "base/error_exception.h"

/// Root of the failures of pools and of the files that hold them.
class ERROR_PARAMETER_POOL : public ERROR_EXCEPTION {
 public:
  const char* what() const noexcept override { return "parameter pool error"; }
};

class PARAMETER_KEY_NOT_FOUND : public ERROR_PARAMETER_POOL {
 public:
  const char* what() const noexcept override { return "pool error - key not found"; }
};

class PARAMETER_KEY_EXISTS : public ERROR_PARAMETER_POOL {
 public:
  const char* what() const noexcept override { return "pool error - key already exists"; }
};

class PARAMETER_KEY_TOO_LONG : public ERROR_PARAMETER_POOL {
 public:
  const char* what() const noexcept override { return "pool error - key too long"; }
};

class CAN_NOT_OPEN_POOL : public ERROR_PARAMETER_POOL {
 public:
  const char* what() const noexcept override { return "pool error - can not open parameter pool"; }
};

class NO_UPDATE_PERMISSION_FOR_POOL : public ERROR_PARAMETER_POOL {
 public:
  const char* what() const noexcept override {
    return "pool error - parameter pool update(): insufficient file permission";
  }
};

class CAN_NOT_RENAME_POOL : public ERROR_PARAMETER_POOL {
 public:
  const char* what() const noexcept override {
    return "pool error - Update() : can not rename parameter file";
  }
};

class PARAMETER_OUT_OF_BOUNDS : public ERROR_PARAMETER_POOL {
 public:
  const char* what() const noexcept override {
    return "pool error - parameter value out of bounds";
  }
};

class WRONG_PARAMETER_TYPE : public ERROR_PARAMETER_POOL {
 public:
  const char* what() const noexcept override { return "pool error - wrong parameter type"; }
};

class INVALID_PARAMETER_VALUE : public ERROR_PARAMETER_POOL {
 public:
  const char* what() const noexcept override {
    return "pool error - no or invalid parameter value in file";
  }
};

class CORRUPTED_PARAMETER_POOL : public ERROR_PARAMETER_POOL {
 public:
  const char* what() const noexcept override {
    return "pool error - corrupted parameter pool file";
  }
};
