#include "interpolation/kernel_type.h"

#include <algorithm>
#include <array>
#include <ranges>

#include "interpolation/kernel_shape.h"

namespace BASIC::TYPES {

namespace {

// An id that two shapes shared, or that none had, would be a type without a name.
static_assert(std::ranges::equal(kernel_shapes,
                                 std::views::iota(1, static_cast<int>(kernel_shapes.size()) + 1),
                                 {}, &KERNEL_SHAPE::id));

/// The shapes between the two entries that stand for no kernel.
constexpr auto EntriesOfShapes() {
  std::array<ENUM_ENTRY, kernel_shapes.size() + 2> entries{};
  entries.front() = entries.back() = {"-", 0, "-"};
  for (const KERNEL_SHAPE& shape : kernel_shapes) {
    entries.at(static_cast<std::size_t>(shape.id)) = {shape.name, 0, shape.description};
  }
  return entries;
}

}  // namespace

std::span<const ENUM_ENTRY> KernelType::Entries() {
  static constexpr auto entries = EntriesOfShapes();
  return entries;
}

}  // namespace BASIC::TYPES
