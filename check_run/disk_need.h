#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

/// An output file that a run will write, in the place of one of the same name.
struct EXPECTED_FILE {
  std::string path;
  std::int64_t length;  ///< in bytes, all pixels included
  /// Of that, what will certainly be written: files are sparse where no pixel is computed.
  std::int64_t written;
};

/// What the outputs on one file system need, in bytes.
struct DISK_NEED {
  std::string path;  ///< of the first of them
  std::int64_t length = 0;
  std::int64_t written = 0;
  std::int64_t available = 0;  ///< what is free now and in the files that are replaced
};

/// One element a file system. A file whose directory cannot be looked at is left out.
std::vector<DISK_NEED> DiskNeeds(const std::vector<EXPECTED_FILE>& files);
