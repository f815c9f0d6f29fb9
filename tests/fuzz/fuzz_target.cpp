#include "fuzz/fuzz_target.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "logging/logging.h"

// The sanitizers call these, if there are any. Memory is short: what a few bytes of input make the
// program ask for shows as a failed allocation, and the quarantine of freed memory stays small.
extern "C" const char* __asan_default_options();  // NOLINT(bugprone-reserved-identifier)
extern "C" const char* __tsan_default_options();  // NOLINT(bugprone-reserved-identifier)

namespace {
constexpr const char* options =
    "allocator_may_return_null=1:max_allocation_size_mb=64:quarantine_size_mb=16";
}  // namespace

extern "C" const char* __asan_default_options() {
  return options;
}
extern "C" const char* __tsan_default_options() {
  return "allocator_may_return_null=1:max_allocation_size_mb=64";
}

void Require(bool condition, const std::string& what) {
  if (!condition) {
    std::fprintf(stderr, "fuzz target: %s\n", what.c_str());
    std::abort();
  }
}

void SilenceLog() {
  using enum LOGGING_LEVEL_T;
  static const bool is_done = [] {
    Log().SetScreenLevel(NO_MESSAGE);
    Log().Open("/dev/null");
    Log().SetFileLevel(TRACE);
    return true;
  }();
  Require(is_done, "log is not silent");
}

FUZZ_FILE::FUZZ_FILE()
    : descriptor_(::memfd_create("fuzz", MFD_CLOEXEC)),
      path_("/proc/self/fd/" + std::to_string(descriptor_)) {
  Require(descriptor_ >= 0, "no memory file");
}

FUZZ_FILE::~FUZZ_FILE() {
  ::close(descriptor_);
}

void FUZZ_FILE::Set(std::string_view content) const {
  const bool done = ::ftruncate(descriptor_, 0) == 0 &&
                    ::pwrite(descriptor_, content.data(), content.size(), 0) ==
                        static_cast<ssize_t>(content.size());
  Require(done, "memory file not written");
}

std::string_view TakeUpTo(std::string_view& text, std::string_view end) {
  const std::size_t length = std::min(text.find(end), text.size());
  const std::string_view front = text.substr(0, length);
  text.remove_prefix(std::min(length + end.size(), text.size()));
  return front;
}
