#include "base/same_file.h"

#include <sys/stat.h>

bool IsSameFile(const char* a, const char* b) noexcept {
  struct stat status_a {};
  struct stat status_b {};
  return ::stat(a, &status_a) == 0 && ::stat(b, &status_b) == 0 &&
         status_a.st_dev == status_b.st_dev && status_a.st_ino == status_b.st_ino;
}
