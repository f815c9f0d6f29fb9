#include "interpolation/interpolation_kernel.h"

#include <algorithm>
#include <cstddef>
#include <new>

#include "base/error_exception.h"
#include "interpolation/kernel_shape.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

[[noreturn]] void RefuseForMemory(int subpix_count, int length) {
  Log() << ALARM << "INTERPOLATION_KERNEL: no memory for " << subpix_count << " rows of " << length
        << " weights\n";
  throw ERROR_NO_MEMORY();
}

}  // namespace

void INTERPOLATION_KERNEL::InitKernel(const BASIC::TYPES::KernelType& type, int length,
                                      int subpix_count, float coefficient) {
  has_table_ = false;
  type_ = type;
  coefficient_ = coefficient;
  length_ = length;
  subpix_count_ = subpix_count;
  const KERNEL_SHAPE* const shape = ShapeOf(type);
  if (shape != nullptr) {
    CorrectParameters(*shape);
  }
  ResizeTable();
  if (shape != nullptr) {
    FillTable(*shape, static_cast<float>(length));
  }
}

void INTERPOLATION_KERNEL::CorrectParameters(const KERNEL_SHAPE& shape) {
  if (length_ < shape.least_length || (length_ > shape.least_length && !shape.has_other_lengths)) {
    Log() << WARNING << shape.length_warning;
    length_ = shape.least_length;
  }
  if (!shape.takes_weight) {
    coefficient_ = 0.0F;
    return;
  }
  if (!(coefficient_ >= 0.0F)) {  // NaN is no number of either kind
    Log() << WARNING
          << "Kaiser weight must be a non-negative number. Reset to zero (i.e. no weight)";
    coefficient_ = 0.0F;
  }
  RefuseEndlessWindow(coefficient_);
}

void INTERPOLATION_KERNEL::ResizeTable() {
  if (subpix_count_ < 1) {
    Log() << ALARM
          << "INTERPOLATION_KERNEL: the number of sub-pixel positions must be at least 1, not "
          << subpix_count_ << "\n";
    throw ERROR_ARGUMENT();
  }
  constexpr std::ptrdiff_t cache_line = 8;  // weights
  const int tap_count = std::max(length_, 0);
  row_stride_ = (tap_count + cache_line - 1) / cache_line * cache_line;
  try {
    table_ = ALIGNED_VALUES<double>(subpix_count_, row_stride_);
  } catch (const std::bad_alloc&) {
    RefuseForMemory(subpix_count_, tap_count);
  }
  has_table_ = true;
}

void INTERPOLATION_KERNEL::FillTable(const KERNEL_SHAPE& shape, float requested_length) {
  const KERNEL_WINDOW window = {requested_length, coefficient_};
  const auto subpix_count = static_cast<double>(static_cast<float>(subpix_count_));
  const int first_offset = -(length_ / 2 - 1);
  for (int k = 0; k < subpix_count_; ++k) {
    const double fraction = static_cast<double>(k) / subpix_count;
    double* weights = table_.Values() + k * row_stride_;
    for (int i = 0; i < length_; ++i) {
      weights[i] = shape.value(static_cast<double>(i + first_offset) - fraction, window);
    }
  }
}
