#include "failing_allocation.h"

#include <cstddef>
#include <new>

namespace {

thread_local bool limited = false;
thread_local int granted_allocations = 0;

bool Granted() {
  return !limited || granted_allocations-- > 0;
}

}  // namespace

FAILING_ALLOCATION::FAILING_ALLOCATION(int granted) {
  granted_allocations = granted;
  limited = true;
}

FAILING_ALLOCATION::~FAILING_ALLOCATION() {
  limited = false;
}

// The throwing forms are asked for the memory, so that any form of delete fits.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return Granted() ? ::operator new(size) : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return Granted() ? ::operator new[](size) : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
