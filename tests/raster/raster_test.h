#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>

#include <string>

#include "base/error_exception.h"
#include "raster/mem_mgr.h"
#include "raster/raster_header.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

/// What the tests of MEM_MGR share: a manager, a directory, the log, and files made by hand.
class RASTER_TEST : public testing::Test {
 protected:
  std::string File(const char* name) const { return directory_.File(name); }

  /// The header's bytes, followed by `rest`.
  static std::string Raster(const RASTER_HEADER& header, const std::string& rest) {
    const RASTER_HEADER::BYTES bytes = header.Encode();
    return std::string(bytes.begin(), bytes.end()) + rest;
  }

  std::string WriteRaster(const char* name, const RASTER_HEADER& header,
                          const std::string& rest) const {
    WriteFile(File(name), Raster(header, rest));
    return File(name);
  }

  TEMPORARY_DIRECTORY directory_;
  LOG_CAPTURE log_;
  MEM_MGR raster_;
};

/// All bytes of the pixel block.
inline std::string Pixels(const MEM_MGR& raster) {
  return {reinterpret_cast<const char*>(raster.Data()),
          static_cast<std::size_t>(raster.DataLength())};
}
