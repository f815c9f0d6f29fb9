#include "base/pool_type.h"

#include <array>

namespace BASIC::TYPES {

std::span<const ENUM_ENTRY> PoolType::Entries() {
  static constexpr std::array<ENUM_ENTRY, 8> entries = {
      {{"-"}, {"PPOOL"}, {"IIP"}, {"WQD"}, {"CFG"}, {"ORDER"}, {"GEOCODING"}, {"-"}}};
  return entries;
}

const PoolType PoolType::ppool(1);
const PoolType PoolType::geocoding(6);

}  // namespace BASIC::TYPES
