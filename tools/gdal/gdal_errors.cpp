#include "gdal/gdal_errors.h"

#include <iostream>
#include <stdexcept>
#include <string_view>

namespace {

/// Some of GDAL's texts end with line ends.
std::string_view WithoutLineEnds(std::string_view text) {
  return text.substr(0, text.find_last_not_of("\r\n") + 1);
}

}  // namespace

void GDAL_ERRORS::Throw(const std::string& what) const {
  throw std::runtime_error(failure_.empty() ? what : what + ": " + failure_);
}

void GDAL_ERRORS::Handle(CPLErr level, CPLErrorNum, const char* text) {
  auto& errors = *static_cast<GDAL_ERRORS*>(CPLGetErrorHandlerUserData());
  if (level == CE_Warning) {
    std::cerr << "slctool: warning: " << WithoutLineEnds(text) << "\n";
  } else if (level > CE_Warning && errors.failure_.empty()) {
    errors.failure_ = WithoutLineEnds(text);
  }
}
