#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "support/log_capture.h"
#include "support/temporary_directory.h"

/// A pool file in a directory of its own, and everything that is logged.
class POOL_TEST : public ::testing::Test {
 protected:
  void SetPool(std::string_view text) { WriteFile(path_, text); }
  std::string PoolText() const { return ReadFile(path_); }
  const char* Path() const { return path_.c_str(); }
  const std::filesystem::path& Directory() const { return directory_.Path(); }

  /// The paths of the other files beside the pool.
  std::vector<std::string> OtherFiles() const {
    std::vector<std::string> others;
    for (const auto& entry : std::filesystem::directory_iterator(Directory())) {
      if (entry.path() != path_) {
        others.push_back(entry.path().string());
      }
    }
    return others;
  }

  LOG_CAPTURE log_;

 private:
  TEMPORARY_DIRECTORY directory_;
  std::string path_ = directory_.File("pool.txt");
};
