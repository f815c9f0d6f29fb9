#pragma once

#include <pthread.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <system_error>
#include <thread>
#include <vector>

#include "app/error_report.h"
#include "app/work_ranges.h"
#include "base/array.h"
#include "logging/logging.h"

/// Runs a function over the blocks of a range, one thread a block. `ARG` derives from
/// THREAD_ARGUMENT. A pool is set up, run and joined once.
template <class ARG, class INDEX_TYPE>
class THREADS {
 public:
  using FUNCTION = void (*)(ARG&);

  /// `force_threads`: create a thread even for a single worker.
  explicit THREADS(bool force_threads = false) : force_threads_(force_threads) {}
  THREADS(const THREADS&) = delete;
  THREADS& operator=(const THREADS&) = delete;
  /// Joins what still runs. A failed worker is then only logged: it must not throw here.
  virtual ~THREADS();

  /// Makes one copy of the record for each block. With one processor there is a single record
  /// and no thread. Throws as `SplitRange` does.
  void Setup(const ARG& record, const URANGE<INDEX_TYPE>& whole, FUNCTION function, int processors);

  /// Starts the workers; a single record runs here and now, its errors pass through.
  /// Throws the text "can not create thread".
  void Run();

  /// Waits for the workers in their order. Throws the text "error in thread execution" when one
  /// has set its status word.
  void Join();

 private:
  void RunSingle();
  void Start(ARG& record);
  static void Work(FUNCTION function, ARG& record, LOGGING& log) noexcept;

  const bool force_threads_;
  bool single_ = false;
  FUNCTION function_ = nullptr;
  URANGE<INDEX_TYPE> whole_;
  ARRAY<URANGE<INDEX_TYPE>> sub_ranges_;
  std::vector<ARG> records_;
  std::vector<std::thread> threads_;
};

template <class ARG, class INDEX_TYPE>
THREADS<ARG, INDEX_TYPE>::~THREADS() {
  for (std::thread& thread : threads_) {
    if (thread.joinable()) {
      thread.join();
    }
  }
}

template <class ARG, class INDEX_TYPE>
void THREADS<ARG, INDEX_TYPE>::Setup(const ARG& record, const URANGE<INDEX_TYPE>& whole,
                                     FUNCTION function, int processors) {
  function_ = function;
  whole_ = whole;
  single_ = !force_threads_ && processors == 1;
  int count = 1;
  if (!single_) {
    count = SplitRange(whole, processors, sub_ranges_);
    ::pthread_setconcurrency(std::min(count, std::numeric_limits<int>::max() - 1) + 1);
  }
  records_.assign(static_cast<std::size_t>(count), record);
  threads_.reserve(records_.size());
}

template <class ARG, class INDEX_TYPE>
void THREADS<ARG, INDEX_TYPE>::Run() {
  if (single_) {
    RunSingle();
    return;
  }
  int number = 0;
  for (ARG& record : records_) {
    record.status = 0;
    record.worker_number = number;
    record.block = sub_ranges_.Origin()[number];
    Start(record);
    ++number;
  }
}

template <class ARG, class INDEX_TYPE>
void THREADS<ARG, INDEX_TYPE>::Join() {
  for (std::size_t i = 0; i < threads_.size(); ++i) {
    threads_[i].join();
    if (records_[i].status != 0) {
      throw "error in thread execution";
    }
  }
}

template <class ARG, class INDEX_TYPE>
void THREADS<ARG, INDEX_TYPE>::RunSingle() {
  ARG& record = records_.front();
  record.status = 0;
  record.block = whole_;
  record.worker_number = 0;
  function_(record);
}

template <class ARG, class INDEX_TYPE>
void THREADS<ARG, INDEX_TYPE>::Start(ARG& record) {
  using enum LOGGING_LEVEL_T;
  try {
    threads_.emplace_back(&THREADS::Work, function_, std::ref(record), std::ref(Log()));
  } catch (const std::system_error& error) {
    const int number = error.code().value();
    Log().Message(ALARM, "can not create thread due to error number: %d", number);
    Log().Message(ALARM, "reason: %s", error.code().message().c_str());
    throw "can not create thread";
  }
}

/// An error must not leave a thread, or it would end the process without a word: it is reported
/// here and handed on through the status word.
template <class ARG, class INDEX_TYPE>
void THREADS<ARG, INDEX_TYPE>::Work(FUNCTION function, ARG& record, LOGGING& log) noexcept {
  const LOG_SCOPE scope(log);
  try {
    function(record);
  } catch (...) {
    LogCurrentException();
    record.status = 1;
  }
}
