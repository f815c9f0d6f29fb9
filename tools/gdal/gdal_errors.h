#pragma once

#include <cpl_error.h>

#include <string>

/// Listens to what GDAL complains of while it lives, in this thread: warnings go to standard error,
/// the first failure into the error that is thrown of it.
class GDAL_ERRORS {
 public:
  GDAL_ERRORS() : handler_(&GDAL_ERRORS::Handle, this) {}
  GDAL_ERRORS(const GDAL_ERRORS&) = delete;
  GDAL_ERRORS& operator=(const GDAL_ERRORS&) = delete;

  bool HasFailure() const noexcept { return !failure_.empty(); }
  /// Throws std::runtime_error: "<what>: <the first failure>".
  [[noreturn]] void Throw(const std::string& what) const;

 private:
  static void Handle(CPLErr level, CPLErrorNum number, const char* text);

  std::string failure_;
  CPLErrorHandlerPusher handler_;
};
