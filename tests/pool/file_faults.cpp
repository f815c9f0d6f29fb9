#include "pool/file_faults.h"

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {

bool armed = false;
std::string_view victim_name;
std::string calls;
int calls_left = 0;
std::function<int()> strike;

/// Counts a call down; true when it has to fail, with errno set.
bool Fails(std::string_view name) {
  if (armed && !calls.ends_with(name)) {
    calls += (calls.empty() ? "" : " ") + std::string(name);
  }
  const bool counts = armed && (victim_name == any_call || victim_name == name);
  if (!counts || calls_left-- != 0) {
    return false;
  }
  armed = false;  // the action may use files itself
  errno = strike();
  const bool fails = errno != 0;
  armed = true;
  return fails;
}

}  // namespace

FILE_FAULTS::FILE_FAULTS(std::string_view name, int victim, std::function<int()> action) {
  victim_name = name;
  calls.clear();
  calls_left = victim;
  strike = std::move(action);
  armed = true;
}

FILE_FAULTS::~FILE_FAULTS() {
  armed = false;
}

std::string FILE_FAULTS::Calls() const {
  return calls;
}

bool FILE_FAULTS::Struck() const noexcept {
  return calls_left < 0;
}

// NOLINTBEGIN(bugprone-reserved-identifier): the linker asks for these names.
extern "C" {

int __real_mkostemp(char* name, int flags);
int __real_flock(int descriptor, int operation);
ssize_t __real_pread(int descriptor, void* buffer, size_t size, off_t offset);
ssize_t __real_pwrite(int descriptor, const void* buffer, size_t size, off_t offset);
int __real_fsync(int descriptor);
int __real_ftruncate(int descriptor, off_t length);
int __real_close(int descriptor);
int __real_unlink(const char* name);

int __wrap_mkostemp(char* name, int flags) {
  return Fails("mkostemp") ? -1 : __real_mkostemp(name, flags);
}

int __wrap_flock(int descriptor, int operation) {
  return Fails("flock") ? -1 : __real_flock(descriptor, operation);
}

ssize_t __wrap_pread(int descriptor, void* buffer, size_t size, off_t offset) {
  return Fails("pread") ? -1 : __real_pread(descriptor, buffer, size, offset);
}

ssize_t __wrap_pwrite(int descriptor, const void* buffer, size_t size, off_t offset) {
  constexpr size_t few_bytes = 50;
  const size_t part = armed ? std::min(size, few_bytes) : size;
  return Fails("pwrite") ? -1 : __real_pwrite(descriptor, buffer, part, offset);
}

int __wrap_fsync(int descriptor) {
  return Fails("fsync") ? -1 : __real_fsync(descriptor);
}

int __wrap_ftruncate(int descriptor, off_t length) {
  return Fails("ftruncate") ? -1 : __real_ftruncate(descriptor, length);
}

/// Closes the descriptor even where it fails, as the system does.
int __wrap_close(int descriptor) {
  const bool fails = Fails("close");
  const int error = errno;
  const int result = __real_close(descriptor);
  errno = error;
  return fails ? -1 : result;
}

int __wrap_unlink(const char* name) {
  return Fails("unlink") ? -1 : __real_unlink(name);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
