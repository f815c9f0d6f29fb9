#include "control/processing_history.h"

#include <gtest/gtest.h>

#include <ctime>
#include <vector>

#include "support/log_capture.h"
#include "support/temporary_directory.h"

namespace {

STRING LocalTime(std::time_t time) {
  char text[32] = {};
  std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", std::localtime(&time));
  return text;
}

class PROCESSING_HISTORY_TEST : public ::testing::Test {
 protected:
  PROCESSING_HISTORY_TEST() { WriteFile(path_, ""); }

  void AddRun(const std::string& name, const std::string& version, std::time_t start_time,
              const std::string& prefix = "") {
    PARAMETER_POOL_READ_WRITE_CHANGE pool(path_.c_str());
    PROCESSING_HISTORY(prefix).AddRun(pool, {name, version, "2020-02-06T13:09:23", start_time});
    pool.Update();
  }

  /// A vector of the pool.
  template <class T = STRING>
  std::vector<T> Vector(const char* key) const {
    ARRAY<T> vector;
    PARAMETER_POOL(path_.c_str()).Read(key, vector);
    return {vector.Pointer(0), vector.Pointer(0) + vector.Size()};
  }

  TEMPORARY_DIRECTORY directory_;
  std::string path_ = directory_.File("pool.txt");
};

TEST_F(PROCESSING_HISTORY_TEST, AppendsNewProgramsAndReplacesKnownOnes) {
  const std::time_t now = std::time(nullptr);
  AddRun("focus \"3\"", "1", now - 10);
  AddRun("Resample", "2", now - 20);
  AddRun("focus \"3\"", "3", now - 3000);
  AddRun("resample", "4", now + 1000);
  AddRun("other", "5", now, "slave_");
  EXPECT_EQ(Vector("software_names"), (std::vector<STRING>{"focus \"3\"", "Resample", "resample"}));
  EXPECT_EQ(Vector("software_versions"), (std::vector<STRING>{"3", "2", "4"}));
  EXPECT_EQ(Vector("slave_software_names"), std::vector<STRING>{"other"});
  EXPECT_EQ(
      Vector("software_start_times"),
      (std::vector<STRING>{LocalTime(now - 3000), LocalTime(now - 20), LocalTime(now + 1000)}));
  const std::vector<int> seconds = Vector<int>("software_execution_times");
  ASSERT_EQ(seconds.size(), 3U);
  EXPECT_GE(seconds[0], 3000);
  EXPECT_EQ(seconds[2], 0) << "an end before the start";
  EXPECT_TRUE(Vector("software_end_times")[0] == LocalTime(now - 3000 + seconds[0]));
}

TEST_F(PROCESSING_HISTORY_TEST, LeavesAPoolAloneWhoseHistoryCanNotBeExtended) {
  const LOG_CAPTURE log;
  AddRun("one", "1", std::time(nullptr));
  const std::string history = ReadFile(path_);
  const std::size_t times = history.find("software_execution_times");
  // A line that long can be read, but not written: it would have to be indented and quoted.
  std::string long_date = history;
  long_date.replace(long_date.find("\"2020-02"), 21, std::string(1019, 'x'));
  const std::string pools[] = {
      long_date, history.substr(0, times),
      history.substr(0, times) + "software_execution_times INT_32_V 0 2\n{\n1\n2\n}\n"};
  for (const std::string& pool : pools) {
    WriteFile(path_, pool);
    EXPECT_THROW(AddRun("two", "1", std::time(nullptr)), ERROR_EXCEPTION);
    EXPECT_EQ(ReadFile(path_), pool);
  }
  EXPECT_TRUE(log.Has("ALARM : processing history: the vectors of the runs differ in length"));
}

}  // namespace
