#include "raster/same_file.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/temporary_directory.h"

namespace {

TEST(SAME_FILE, IsRecognisedThroughLinks) {
  const TEMPORARY_DIRECTORY directory;
  const std::string file = directory.File("file");
  const std::string copy = directory.File("copy");
  WriteFile(file, "content");
  WriteFile(copy, "content");
  std::filesystem::create_hard_link(file, directory.File("hard"));
  std::filesystem::create_symlink("file", directory.File("symbolic"));
  std::filesystem::create_symlink("nowhere", directory.File("dangling"));

  for (const char* name : {"file", "./file", "hard", "symbolic"}) {
    EXPECT_TRUE(IsSameFile(file.c_str(), directory.File(name).c_str())) << name;
    EXPECT_TRUE(IsSameFile(directory.File(name).c_str(), file.c_str())) << name;
  }
  for (const char* name : {"copy", "dangling", "missing", ""}) {
    EXPECT_FALSE(IsSameFile(file.c_str(), directory.File(name).c_str())) << name;
  }
  EXPECT_FALSE(IsSameFile(directory.File("missing").c_str(), directory.File("missing").c_str()));
}

}  // namespace
