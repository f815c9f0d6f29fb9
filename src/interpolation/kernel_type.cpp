#include "interpolation/kernel_type.h"

#include <array>

namespace BASIC::TYPES {

std::span<const ENUM_ENTRY> KernelType::Entries() {
  static constexpr std::array<ENUM_ENTRY, 5> entries = {
      {{"-", 0, "-"},
       {"cubic_convolution", 0, "Cubic convolution"},
       {"truncated_sinc_no_weight", 0, "Truncated Sinc."},
       {"truncated_sinc_kaiser_weight", 0, "Truncated Sinc with Kaiser weight"},
       {"-", 0, "-"}}};
  return entries;
}

}  // namespace BASIC::TYPES
