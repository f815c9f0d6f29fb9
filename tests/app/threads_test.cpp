#include "app/threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "app/resample_thread.h"
#include "base/error_exception.h"
#include "core/thread_argument.h"
#include "support/log_capture.h"

namespace {

struct COUNTING_ARG : THREAD_ARGUMENT {
  std::vector<std::atomic<int>>* visits = nullptr;
  std::vector<std::thread::id>* threads = nullptr;  ///< by line
};

using POOL = THREADS<COUNTING_ARG, unsigned int>;

void CountLines(COUNTING_ARG& argument) {
  for (unsigned line = argument.block.First(); line <= argument.block.Last(); ++line) {
    ++(*argument.visits)[line];
    (*argument.threads)[line] = std::this_thread::get_id();
  }
}

TEST(ThreadsTest, RunEveryLineOnceAndOnTheCallingThreadOnlyForOneProcessor) {
  const struct {
    unsigned lines;
    int processors;
    bool force_threads;
    bool on_calling_thread;
  } cases[] = {{10, 3, false, false},
               {10, 64, false, false},
               {1, 4, false, false},
               {10, 1, true, false},
               {10, 1, false, true}};
  for (const auto& run : cases) {
    std::vector<std::atomic<int>> visits(run.lines);
    std::vector<std::thread::id> threads(run.lines);
    COUNTING_ARG record;
    record.visits = &visits;
    record.threads = &threads;
    POOL pool(run.force_threads);
    pool.Setup(record, {0, run.lines}, CountLines, run.processors);
    pool.Run();
    pool.Join();
    for (unsigned line = 0; line < run.lines; ++line) {
      EXPECT_EQ(visits[line], 1) << run.processors;
      EXPECT_EQ(threads[line] == std::this_thread::get_id(), run.on_calling_thread) << line;
    }
  }
}

void FailInBlockTwo(COUNTING_ARG& argument) {
  if (argument.worker_number == 2) {
    throw ERROR_DATA();
  }
}

TEST(ThreadsTest, WorkersErrorIsATextAtTheJoinAndQuietWhileAnotherIsInFlight) {
  const LOG_CAPTURE log;
  const auto fail = [](bool before_join) {
    POOL pool;
    pool.Setup(COUNTING_ARG(), {0, 8}, FailInBlockTwo, 4);
    pool.Run();
    if (before_join) {
      throw ERROR_IMAGE();
    }
    pool.Join();
  };
  EXPECT_THROW(fail(false), const char*);
  EXPECT_THROW(fail(true), ERROR_IMAGE);
  EXPECT_EQ(log.Lines(), (std::vector<std::string>{"ALARM : data error", "ALARM : data error"}));
}

TEST(SplitRangeTest, RefusesWhatCanNotBeSplitOrHeld) {
  const LOG_CAPTURE log;
  ARRAY<URANGE<unsigned>> blocks;
  EXPECT_THROW(SplitRange({0, 0}, 3, blocks), ERROR_ARGUMENT);
  EXPECT_THROW(SplitRange({0, 5}, 0, blocks), ERROR_ARGUMENT);
  EXPECT_EQ(log.Lines().back(), "ALARM : can not split 5 lines into 0 blocks");
}

TEST(ResampleThreadTest, RefusesAnOutputOfAnotherTypeThanTheInput) {
  const LOG_CAPTURE log;
  MEM_MGR input;
  MEM_MGR output;
  input.CreateInMemory(0, 0, 1, 1, PIXEL_TYPE::C_INT_16);
  output.CreateInMemory(0, 0, 1, 1, PIXEL_TYPE::C_FLT_2);
  RESAMPLE_WORK work;
  work.Set({.input_slave = &input, .output_slave = &output});
  EXPECT_THROW(ResampleThread(work), ERROR_DATA);
  EXPECT_TRUE(log.Has("ALARM : ERROR : Both input images must have the same type."));
}

}  // namespace
