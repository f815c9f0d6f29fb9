#include "base/directory_of.h"

#include <gtest/gtest.h>

namespace {

TEST(DIRECTORY_OF, IsWhatHoldsTheFile) {
  for (const auto& [path, directory] :
       {std::pair("file", "."), {"/file", "/"}, {"a/file", "a"}, {"/a/b/file", "/a/b"}}) {
    EXPECT_EQ(DirectoryOf(path), directory);
  }
}

}  // namespace
