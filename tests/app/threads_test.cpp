#include "app/threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <string>

#include "base/error_exception.h"
#include "core/thread_argument.h"
#include "support/log_capture.h"

namespace {

struct COUNTING_ARG : THREAD_ARGUMENT {
  std::vector<std::atomic<int>>* visits = nullptr;
  std::set<std::thread::id>* threads = nullptr;
  std::mutex* mutex = nullptr;
};

using POOL = THREADS<COUNTING_ARG, unsigned int>;

void CountLines(COUNTING_ARG& argument) {
  for (unsigned line = argument.block.First(); line <= argument.block.Last(); ++line) {
    ++(*argument.visits)[line];
  }
  const std::lock_guard lock(*argument.mutex);
  argument.threads->insert(std::this_thread::get_id());
}

class ThreadsTest : public testing::Test {
 protected:
  void Run(unsigned lines, int processors, bool force_threads = false) {
    visits_ = std::vector<std::atomic<int>>(lines);
    COUNTING_ARG record;
    record.visits = &visits_;
    record.threads = &threads_;
    record.mutex = &mutex_;
    POOL pool(force_threads);
    pool.Setup(record, {0, lines}, CountLines, processors);
    pool.Run();
    pool.Join();
  }

  void ExpectEachLineOnce() const {
    for (const std::atomic<int>& visits : visits_) {
      ASSERT_EQ(visits, 1);
    }
  }

  std::vector<std::atomic<int>> visits_;
  std::set<std::thread::id> threads_;
  std::mutex mutex_;
};

TEST_F(ThreadsTest, RunsEveryLineOnceForAnyNumberOfWorkers) {
  for (const int processors : {2, 3, 7, 64}) {
    Run(10, processors);
    ExpectEachLineOnce();
  }
  EXPECT_FALSE(threads_.contains(std::this_thread::get_id()));
}

TEST_F(ThreadsTest, RunsASingleRecordOnTheCallingThreadUnlessThreadsAreForced) {
  Run(10, 1);
  ExpectEachLineOnce();
  EXPECT_EQ(threads_, std::set{std::this_thread::get_id()});

  threads_.clear();
  Run(10, 1, true);
  ExpectEachLineOnce();
  EXPECT_FALSE(threads_.contains(std::this_thread::get_id()));
}

TEST_F(ThreadsTest, CreatesAThreadForOneLineOnSeveralProcessors) {
  Run(1, 4);
  EXPECT_FALSE(threads_.contains(std::this_thread::get_id()));
}

void FailInBlockTwo(COUNTING_ARG& argument) {
  if (argument.worker_number == 2) {
    throw ERROR_DATA();
  }
}

TEST(ThreadsFailureTest, TurnsAWorkersErrorIntoATextAtTheJoin) {
  const LOG_CAPTURE log;
  POOL pool;
  pool.Setup(COUNTING_ARG(), {0, 8}, FailInBlockTwo, 4);
  pool.Run();
  try {
    pool.Join();
    FAIL() << "the failed worker was not reported";
  } catch (const char* text) {
    EXPECT_STREQ(text, "error in thread execution");
  }
  EXPECT_TRUE(log.Has("ALARM : data error")) << log.Text();
}

TEST(ThreadsFailureTest, ASingleRecordsErrorPassesThrough) {
  POOL pool;
  pool.Setup(
      COUNTING_ARG(), {0, 8}, [](COUNTING_ARG&) { throw ERROR_DATA(); }, 1);
  EXPECT_THROW(pool.Run(), ERROR_DATA);
}

TEST(ThreadsFailureTest, DestructionJoinsQuietlyWhileAnotherErrorIsInFlight) {
  const LOG_CAPTURE log;
  const auto fail_before_join = [] {
    POOL pool;
    pool.Setup(COUNTING_ARG(), {0, 8}, FailInBlockTwo, 4);
    pool.Run();
    throw ERROR_IMAGE();
  };
  EXPECT_THROW(fail_before_join(), ERROR_IMAGE);
  EXPECT_TRUE(log.Has("ALARM : data error")) << log.Text();
}

}  // namespace
