#pragma once

#include "base/enum_base.h"

namespace BASIC::TYPES {

/// The shape of the interpolation kernel. The "-" entries at both ends stand for no kernel.
class KernelType : public ENUMERATION<KernelType> {
 public:
  /// The ids of the shapes.
  enum SHAPE : int {
    CUBIC_CONVOLUTION = 1,
    TRUNCATED_SINC_NO_WEIGHT = 2,
    TRUNCATED_SINC_KAISER_WEIGHT = 3
  };

  /// The word for the type in parameter pools.
  static constexpr const char* type_name = "kernel_type";

  KernelType() = default;
  /// Throws ERROR_ENUM_BASE_INVALID_ID.
  explicit KernelType(int id) { Set(id); }

  /// Takes a name ("cubic_convolution") or a description ("Cubic convolution"), whatever its case.
  /// Throws ERROR_ENUM_BASE_INVALID_VALUE.
  void Assign(const char* text) override { AssignNameOrDescription(text); }

  /// From the table of the shapes, `kernel_shapes`.
  static std::span<const ENUM_ENTRY> Entries();
};

}  // namespace BASIC::TYPES
