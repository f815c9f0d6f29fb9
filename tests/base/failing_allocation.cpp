#include "failing_allocation.h"

#include <climits>
#include <cstddef>
#include <new>

namespace {

constexpr int unlimited = INT_MAX;
thread_local int granted_allocations = unlimited;

bool Granted() {
  return granted_allocations == unlimited || granted_allocations-- > 0;
}

}  // namespace

FAILING_ALLOCATION::FAILING_ALLOCATION(int granted) {
  granted_allocations = granted;
}

FAILING_ALLOCATION::~FAILING_ALLOCATION() {
  granted_allocations = unlimited;
}

// The throwing forms are asked for the memory, so that any form of delete fits.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return Granted() ? ::operator new(size) : nullptr;
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return Granted() ? ::operator new[](size) : nullptr;
}
