#include "common/new_files.h"

#include <gtest/gtest.h>

#include <csignal>
#include <system_error>

#include "support/process.h"
#include "support/temporary_directory.h"
#include "support/wait_until.h"

namespace {

TEST(NEW_FILES, ReplaceOlderOnesOnlyWhenTheyAreWhole) {
  const TEMPORARY_DIRECTORY directory;
  WriteFile(directory.File("old"), "old");
  std::filesystem::create_symlink("old", directory.File("link"));
  {
    const NEW_FILE file(directory.File("link"));
    WriteFile(file.Path(), "half");
  }
  EXPECT_EQ(ReadFile(directory.File("old")), "old");
  WriteWholeFile(directory.File("link"), "new");
  EXPECT_EQ(ReadFile(directory.File("old")), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(directory.File("link")));

  for (const std::string& path : {directory.File(""), directory.File("none/file"),
                                  directory.Path().string(), std::string("/dev/null")}) {
    EXPECT_THROW(WriteWholeFile(path, ""), std::system_error) << path;
  }
}

TEST(NEW_FILES, AreGoneAfterAnInterruption) {
  for (const int signal : {SIGTERM, SIGINT}) {
    const TEMPORARY_DIRECTORY directory;
    const auto scene = directory.Path() / "scene";
    PROCESS_SETTINGS settings;
    settings.program = SLCTOOL_PROGRAM;
    settings.arguments = {"scene", scene, "--samples", "30000", "--lines", "30000"};
    settings.directory = directory.Path();
    PROCESS process(settings);
    ASSERT_TRUE(WaitUntil(
        [&] { return std::filesystem::exists(scene) && !std::filesystem::is_empty(scene); }));
    process.Signal(signal);
    EXPECT_EQ(process.Wait().signal, signal);
    EXPECT_TRUE(std::filesystem::is_empty(scene));
  }
}

}  // namespace
