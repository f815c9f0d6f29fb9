#include "support/failing_allocation.h"

#include <climits>
#include <cstddef>
#include <new>

namespace {

constexpr int unlimited = INT_MAX;
thread_local int granted_allocations = unlimited;

bool Granted() {
  return granted_allocations == unlimited || granted_allocations-- > 0;
}

/// Asks a throwing form for the memory, so that any form of delete fits.
template <class ALLOCATE>
void* Allocate(ALLOCATE allocate) noexcept {
  try {
    return Granted() ? allocate() : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace

FAILING_ALLOCATION::FAILING_ALLOCATION(int granted) {
  granted_allocations = granted;
}

FAILING_ALLOCATION::~FAILING_ALLOCATION() {
  granted_allocations = unlimited;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate([=] { return ::operator new(size); });
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate([=] { return ::operator new[](size); });
}
