// The main of a fuzz target without fuzzer: runs it on the files of the folders that are named.

#include <cstdio>
#include <filesystem>
#include <string>

#include "fuzz/fuzz_target.h"
#include "support/temporary_directory.h"

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      std::printf("%s\n", entry.path().c_str());
      std::fflush(stdout);
      const std::string input = ReadFile(entry.path());
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
      ++count;
    }
  }
  std::printf("%d inputs\n", count);
  return count > 0 ? 0 : 1;
}
