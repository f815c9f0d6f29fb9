#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/error_exception.h"

/// The entry of a fuzz target: one input, always 0. libFuzzer calls it with what it makes up, the
/// corpus driver with the files of the corpus.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// The input as text.
inline std::string_view TextOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// Ends the process by SIGABRT, which is a finding, unless the condition holds.
void Require(bool condition, const std::string& what);

/// Sends all log lines to /dev/null, from the first call on.
void SilenceLog();

/// Whether the action went through. An error of the program's hierarchy is a proper refusal, and
/// so is a bare text; everything else leaves, and ends the process.
template <class ACTION>
bool Succeeds(ACTION action) {
  try {
    action();
    return true;
  } catch (const ERROR_EXCEPTION& error) {
    Require(!std::string_view(error.what()).empty(), "an error without text");
    return false;
  } catch (const char*) {
    return false;
  }
}

/// A file in memory that has a path as long as it lives.
class FUZZ_FILE {
 public:
  FUZZ_FILE();
  ~FUZZ_FILE();
  FUZZ_FILE(const FUZZ_FILE&) = delete;
  FUZZ_FILE& operator=(const FUZZ_FILE&) = delete;

  void Set(std::string_view content) const;
  const char* Path() const noexcept { return path_.c_str(); }

 private:
  int descriptor_;
  std::string path_;
};

/// Takes the front of the text up to `end`, which is dropped; all of it without `end`.
std::string_view TakeUpTo(std::string_view& text, std::string_view end);
