// A library to be loaded before all others into the program under test (LD_PRELOAD). One call of a
// function of the system or the language runtime fails, or the clock runs backwards:
//
//   FAULT_CALL    name of the function; "new" for every form of allocation
//   FAULT_NUMBER  which of its calls fails, counted from 0
//   FAULT_ERROR   the errno with which it fails
//   FAULT_CLOCK   seconds by which each reading of the clock is earlier than the one before
//
// The file "struck" in the current directory tells that the call has failed.

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>

namespace {

std::atomic<long> calls = 0;

/// Counts a call; true when it has to fail, with errno set.
bool Fails(const char* name) {
  const char* const victim = std::getenv("FAULT_CALL");
  if (victim == nullptr || std::strcmp(victim, name) != 0 ||
      calls++ != std::atol(std::getenv("FAULT_NUMBER"))) {
    return false;
  }
  ::syscall(SYS_close, ::syscall(SYS_open, "struck", O_CREAT | O_WRONLY, 0666));
  errno = std::atoi(std::getenv("FAULT_ERROR"));
  return true;
}

/// The function that this library stands in front of.
template <class FUNCTION>
FUNCTION* Next(FUNCTION* /*function*/, const char* name) {
  return reinterpret_cast<FUNCTION*>(::dlsym(RTLD_NEXT, name));
}

std::time_t SetBack(std::time_t seconds) {
  static std::atomic<long> readings = 0;
  const char* const step = std::getenv("FAULT_CLOCK");
  return step == nullptr ? seconds : seconds - readings++ * std::atol(step);
}

void* Allocate(std::size_t size) {
  return Fails("new") ? nullptr : std::malloc(size);
}

void* AllocateOrThrow(std::size_t size) {
  void* const memory = Allocate(size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

}  // namespace

#define NEXT(function) Next(&function, #function)

extern "C" {

int open(const char* path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return Fails("open") ? -1 : static_cast<int>(::syscall(SYS_open, path, flags, mode));
}

FILE* fopen(const char* path, const char* mode) {
  return Fails("fopen") ? nullptr : NEXT(fopen)(path, mode);
}

int mkostemp(char* name, int flags) {
  return Fails("mkostemp") ? -1 : NEXT(mkostemp)(name, flags);
}

int close(int file) {
  const long result = ::syscall(SYS_close, file);
  return Fails("close") ? -1 : static_cast<int>(result);
}

ssize_t read(int file, void* bytes, std::size_t size) {
  return Fails("read") ? -1 : ::syscall(SYS_read, file, bytes, size);
}

ssize_t pread(int file, void* bytes, std::size_t size, off_t offset) {
  return Fails("pread") ? -1 : ::syscall(SYS_pread64, file, bytes, size, offset);
}

ssize_t write(int file, const void* bytes, std::size_t size) {
  return Fails("write") ? -1 : ::syscall(SYS_write, file, bytes, size);
}

ssize_t pwrite(int file, const void* bytes, std::size_t size, off_t offset) {
  return Fails("pwrite") ? -1 : ::syscall(SYS_pwrite64, file, bytes, size, offset);
}

int ftruncate(int file, off_t length) noexcept {
  return Fails("ftruncate") ? -1 : static_cast<int>(::syscall(SYS_ftruncate, file, length));
}

int fsync(int file) {
  return Fails("fsync") ? -1 : static_cast<int>(::syscall(SYS_fsync, file));
}

// Under its own name it would hide the structure of this name. Giving a lock back does not fail.
int LockFile(int file, int operation) noexcept __asm__("flock");
int LockFile(int file, int operation) noexcept {
  return operation != LOCK_UN && Fails("flock")
             ? -1
             : static_cast<int>(::syscall(SYS_flock, file, operation));
}

int unlink(const char* path) noexcept {
  return Fails("unlink") ? -1 : static_cast<int>(::syscall(SYS_unlink, path));
}

int stat(const char* path, struct stat* status) noexcept {
  return Fails("stat") ? -1 : NEXT(stat)(path, status);
}

int fstat(int file, struct stat* status) noexcept {
  return Fails("fstat") ? -1 : NEXT(fstat)(file, status);
}

void* mmap(void* address, std::size_t length, int protection, int flags, int file,
           off_t offset) noexcept {
  return Fails("mmap") ? reinterpret_cast<void*>(-1)
                       : reinterpret_cast<void*>(
                             ::syscall(SYS_mmap, address, length, protection, flags, file, offset));
}

int msync(void* address, std::size_t length, int flags) {
  return Fails("msync") ? -1 : static_cast<int>(::syscall(SYS_msync, address, length, flags));
}

int munmap(void* address, std::size_t length) noexcept {
  return Fails("munmap") ? -1 : static_cast<int>(::syscall(SYS_munmap, address, length));
}

int setenv(const char* name, const char* value, int overwrites) noexcept {
  return Fails("setenv") ? -1 : NEXT(setenv)(name, value, overwrites);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                   void* argument) noexcept {
  return Fails("pthread_create") ? errno
                                 : NEXT(pthread_create)(thread, attributes, start, argument);
}

std::time_t time(std::time_t* seconds) noexcept {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  const std::time_t result = SetBack(now.tv_sec);
  if (seconds != nullptr) {
    *seconds = result;
  }
  return result;
}

}  // extern "C"

void* operator new(std::size_t size) {
  return AllocateOrThrow(size);
}

void* operator new[](std::size_t size) {
  return AllocateOrThrow(size);
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return Allocate(size);
}

void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return Allocate(size);
}
