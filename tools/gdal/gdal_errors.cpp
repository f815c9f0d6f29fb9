#include "gdal/gdal_errors.h"

#include <iostream>
#include <stdexcept>

void GDAL_ERRORS::Throw(const std::string& what) const {
  throw std::runtime_error(failure_.empty() ? what : what + ": " + failure_);
}

void GDAL_ERRORS::Handle(CPLErr level, CPLErrorNum, const char* text) {
  auto& errors = *static_cast<GDAL_ERRORS*>(CPLGetErrorHandlerUserData());
  if (level == CE_Warning) {
    std::cerr << "slctool: warning: " << text << "\n";
  } else if (level > CE_Warning && errors.failure_.empty()) {
    errors.failure_ = text;
  }
}
