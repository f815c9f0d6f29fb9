#include "raster/memory_mapping.h"

#include <sys/mman.h>

#include <algorithm>
#include <utility>

MEMORY_MAPPING::MEMORY_MAPPING(void* start, std::size_t length) noexcept {
  if (start != MAP_FAILED) {
    start_ = static_cast<unsigned char*>(start);
    length_ = length;
  }
}

MEMORY_MAPPING::MEMORY_MAPPING(MEMORY_MAPPING&& other) noexcept
    : start_(std::exchange(other.start_, nullptr)), length_(std::exchange(other.length_, 0)) {}

MEMORY_MAPPING& MEMORY_MAPPING::operator=(MEMORY_MAPPING&& other) noexcept {
  std::swap(start_, other.start_);
  std::swap(length_, other.length_);
  return *this;
}

MEMORY_MAPPING MEMORY_MAPPING::OfFile(int descriptor, std::size_t length, int protection) noexcept {
  return {::mmap(nullptr, length, protection, MAP_SHARED, descriptor, 0), length};
}

MEMORY_MAPPING MEMORY_MAPPING::OfZeros(std::size_t length) noexcept {
  // The system maps no empty ranges; an image without pixels still has a place of its own.
  length = std::max<std::size_t>(length, 1);
  return {::mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0),
          length};
}

bool MEMORY_MAPPING::Sync(int flags) const noexcept {
  return ::msync(start_, length_, flags) == 0;
}

bool MEMORY_MAPPING::Unmap() noexcept {
  return start_ == nullptr ||
         ::munmap(std::exchange(start_, nullptr), std::exchange(length_, 0)) == 0;
}
