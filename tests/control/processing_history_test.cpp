#include "control/processing_history.h"

#include <gtest/gtest.h>

#include <ctime>
#include <sstream>
#include <vector>

#include "support/log_capture.h"
#include "support/temporary_directory.h"

namespace {

class PROCESSING_HISTORY_TEST : public ::testing::Test {
 protected:
  void AddRun(const std::string& name, const std::string& version, std::time_t start_time,
              const std::string& prefix = "") {
    PARAMETER_POOL_READ_WRITE_CHANGE pool(path_.c_str());
    PROCESSING_HISTORY(prefix).AddRun(pool, {name, version, "2020-02-06T13:09:23", start_time});
    pool.Update();
  }

  /// The texts of a vector of the pool, each followed by a "|".
  std::string Texts(const char* key) const {
    ARRAY<STRING> vector;
    PARAMETER_POOL(path_.c_str()).Read(key, vector);
    std::string texts;
    for (int i = 0; i < vector.Size(); ++i) {
      texts += std::string(vector.Pointer(0)[i].Text()) + "|";
    }
    return texts;
  }

  /// A vector of local times.
  std::vector<std::time_t> Times(const char* key) const {
    std::istringstream texts(Texts(key));
    std::vector<std::time_t> times;
    for (std::string text; std::getline(texts, text, '|');) {
      std::tm parts = {};
      const char* const end = ::strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &parts);
      EXPECT_TRUE(end != nullptr && *end == '\0') << text;
      parts.tm_isdst = -1;
      times.push_back(std::mktime(&parts));
    }
    return times;
  }

  ARRAY<int> ExecutionTimes() const {
    ARRAY<int> times;
    PARAMETER_POOL(path_.c_str()).Read("software_execution_times", times);
    return times;
  }

  LOG_CAPTURE log_;
  TEMPORARY_DIRECTORY directory_;
  std::string path_ = directory_.File("pool.txt");
};

TEST_F(PROCESSING_HISTORY_TEST, AppendsNewProgramsAndReplacesKnownOnes) {
  const std::string others = "# products\nn_lines INT_32 5\n";
  WriteFile(path_, others);
  const std::time_t now = std::time(nullptr);
  AddRun("coregister", "1", now - 10);
  AddRun("Resample", "2", now - 20);
  AddRun("coregister", "3", now - 3000);
  EXPECT_EQ(Texts("software_names"), "coregister|Resample|");
  EXPECT_EQ(Texts("software_versions"), "3|2|");
  EXPECT_EQ(Texts("software_dates"), "2020-02-06T13:09:23|2020-02-06T13:09:23|");
  const std::vector<std::time_t> starts = Times("software_start_times");
  const std::vector<std::time_t> ends = Times("software_end_times");
  EXPECT_EQ(starts, std::vector<std::time_t>({now - 3000, now - 20}));
  const ARRAY<int> seconds = ExecutionTimes();
  ASSERT_EQ(seconds.Size(), 2);
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_GE(ends[i], now);
    EXPECT_EQ(seconds.Origin()[i], ends[i] - starts[i]);
  }
  EXPECT_EQ(ReadFile(path_).rfind(others, 0), 0U);
}

TEST_F(PROCESSING_HISTORY_TEST, GrowsByThePrograms) {
  WriteFile(path_, "");
  for (const char* program : {"a", "b", "a", "B", "c"}) {
    AddRun(program, "1", std::time(nullptr));
  }
  EXPECT_EQ(Texts("software_names"), "a|b|B|c|");
  const std::size_t size = ReadFile(path_).size();
  AddRun("b", "2", std::time(nullptr));
  EXPECT_EQ(ReadFile(path_).size(), size);
}

TEST_F(PROCESSING_HISTORY_TEST, TimesDoNotRunBackwards) {
  WriteFile(path_, "");
  AddRun("early", "1", std::time(nullptr) + 1000);
  EXPECT_EQ(ExecutionTimes().Origin()[0], 0);
}

TEST_F(PROCESSING_HISTORY_TEST, PrefixesKeepHistoriesApart) {
  WriteFile(path_, "");
  AddRun("one", "1", std::time(nullptr));
  AddRun("two", "1", std::time(nullptr), "slave_");
  EXPECT_EQ(Texts("software_names"), "one|");
  EXPECT_EQ(Texts("slave_software_names"), "two|");
}

TEST_F(PROCESSING_HISTORY_TEST, LeavesAPoolAloneWhoseHistoryIsIncomplete) {
  WriteFile(path_, "");
  AddRun("one", "1", std::time(nullptr));
  const std::string whole = ReadFile(path_);
  std::string incomplete = whole;
  incomplete.replace(incomplete.find("software_dates"), 8, "SOFTWARE");
  WriteFile(path_, incomplete);
  EXPECT_THROW(AddRun("two", "1", std::time(nullptr)), PARAMETER_KEY_NOT_FOUND);
  EXPECT_EQ(ReadFile(path_), incomplete);
  EXPECT_TRUE(log_.Has("ALARM : parameter pool: parameter key >> software_dates << not found"));

  std::string uneven = whole;
  const std::size_t times = uneven.find("INT_32_V        0 1");
  uneven.replace(times, uneven.find('}') - uneven.find('{'), "INT_32_V        0 2\n{\n1\n2\n} #");
  WriteFile(path_, uneven);
  EXPECT_THROW(AddRun("two", "1", std::time(nullptr)), ERROR_DATA);
  EXPECT_EQ(ReadFile(path_), uneven);
}

}  // namespace
