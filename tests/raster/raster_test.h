#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <string>

#include "raster/mem_mgr.h"
#include "raster/raster_header.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

/// What the tests of MEM_MGR share: a directory, the log, and files that are made by hand.
class RASTER_TEST : public testing::Test {
 protected:
  static constexpr int read_only = 0;
  static constexpr int read_write = 2;

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

  /// Makes a file of that length without taking the disk space.
  std::string WriteSparse(const char* name, const RASTER_HEADER& header,
                          std::uintmax_t length) const {
    WriteRaster(name, header, "");
    std::filesystem::resize_file(File(name), length);
    return File(name);
  }

  void ExpectAlarm(const std::string& text) const {
    EXPECT_TRUE(log_.Has("ALARM : " + text)) << text << "\nis not in\n" << log_.Text();
  }

  TEMPORARY_DIRECTORY directory_;
  LOG_CAPTURE log_;
};

/// All bytes of the pixel block.
inline std::string Pixels(const MEM_MGR& raster) {
  return {reinterpret_cast<const char*>(raster.Data()),
          static_cast<std::size_t>(raster.DataLength())};
}

inline constexpr std::array<PIXEL_TYPE, 12> all_pixel_types = {
    PIXEL_TYPE::U_INT_8, PIXEL_TYPE::INT_16,  PIXEL_TYPE::INT_32,    PIXEL_TYPE::FLT_2,
    PIXEL_TYPE::FLT_6,   PIXEL_TYPE::FLT_15,  PIXEL_TYPE::C_U_INT_8, PIXEL_TYPE::C_INT_16,
    PIXEL_TYPE::C_FLT_2, PIXEL_TYPE::C_FLT_6, PIXEL_TYPE::C_FLT_15,  PIXEL_TYPE::RGB};

/// While it lives, no file of the process can grow beyond the limit: a full disk.
class FILE_SIZE_LIMIT {
 public:
  explicit FILE_SIZE_LIMIT(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit = {bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FILE_SIZE_LIMIT() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FILE_SIZE_LIMIT(const FILE_SIZE_LIMIT&) = delete;
  FILE_SIZE_LIMIT& operator=(const FILE_SIZE_LIMIT&) = delete;

 private:
  void (*handler_)(int);
  rlimit before_{};
};
