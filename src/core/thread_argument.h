#pragma once

#include "base/range.h"

/// What every worker's argument record holds: filled by THREADS before the worker starts.
class THREAD_ARGUMENT {
 public:
  THREAD_ARGUMENT() = default;
  THREAD_ARGUMENT(const THREAD_ARGUMENT&) = default;
  THREAD_ARGUMENT& operator=(const THREAD_ARGUMENT&) = default;
  virtual ~THREAD_ARGUMENT() = default;

  /// 0 unless the worker failed.
  int status = 0;
  /// The worker's share of the whole range.
  URANGE<unsigned int> block;
  /// 0 to number of workers - 1.
  int worker_number = 0;
};
