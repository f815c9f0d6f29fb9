#include <gtest/gtest.h>

#include <regex>

#include "run_folder.h"

namespace {

/// A pool without the times of a run.
std::string WithoutTimes(const std::string& pool) {
  const std::regex time("\"20(2[1-9]|[3-9][0-9])-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\"");
  return std::regex_replace(std::regex_replace(pool, time, "TIME"), std::regex("    [0-9]\n"),
                            "    SECONDS\n");
}

/// The history of one run, without times.
constexpr const char* own_history = R"(software_names                  STR_V           0 1
  {
    "Resample"
  }

software_versions               STR_V           0 1
  {
    "0.0.5"
  }

software_dates                  STR_V           0 1
  {
    "2020-02-06T13:09:23"
  }

software_start_times            STR_V           0 1
  {
    TIME
  }

software_end_times              STR_V           0 1
  {
    TIME
  }

software_execution_times        INT_32_V        0 1
  {
    SECONDS
  }

)";

TEST(History, BeginsInAnEmptyLogPoolAndKeepsOneEntryOverThreeRuns) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.Write("log.pool", "");
  folder.parameters["log_pp"] = "log.pool";
  const std::string insar = folder.Content("insar.pool");
  for (int run = 0; run < 3; ++run) {
    ExpectSuccess(folder, folder.Run());
    EXPECT_EQ(WithoutTimes(folder.Content("log.pool")), own_history);
  }
  EXPECT_EQ(folder.Content("insar.pool"), insar) << "nothing was forced";
}

constexpr const char* written = "STR             \"matrix\"\n\n";
constexpr const char* key = "mapping_format                  ";

TEST(ForcedMapping, ReplacesItsEntryAndNothingElse) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.Write("log.pool", "");
  folder.parameters["log_pp"] = "log.pool";
  // Descriptions count as well; a line of the configuration file has one word for the value.
  folder.arguments.insert(folder.arguments.end(), {"-MAPPING_FORMAT", "Mapping matrix"});
  const std::string start = "# comment\r\n\n  indented\nother STR \"x\"  \n";
  POOL_TEXT without_format = InsarPool(OrdinaryScene());
  without_format.Remove("mapping_format");
  const std::string others = without_format.Text();
  const std::string upper_case_key = "MAPPING_FORMAT                  ";
  const std::vector<std::pair<std::string, std::string>> pools = {
      {start + "mapping_format STR polynomial\n" + others, start + key + written + others},
      // A pool that knows only the upper-case key keeps it.
      {start + "MAPPING_FORMAT\tSTR polynomial\n" + others,
       start + upper_case_key + written + others},
      {others + "last INT_32 1", others + "last INT_32 1\n\n" + key + written}};
  for (const auto& [before, after] : pools) {
    folder.Write("insar.pool", before);
    ExpectSuccess(folder, folder.Run());
    EXPECT_EQ(folder.Content("insar.pool"), after);
  }
}

TEST(ForcedMapping, AndHistoryInOnePoolUnderTwoSpellingsLoseNothing) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.parameters["log_pp"] = "./insar.pool";
  folder.parameters["MAPPING_FORMAT"] = "matrix";
  POOL_TEXT pool = InsarPool(OrdinaryScene());
  pool.SetText("mapping_format", "polynomial");
  folder.Write("insar.pool", pool.Text());
  ExpectSuccess(folder, folder.Run());
  const std::string found = WithoutTimes(folder.Content("insar.pool"));
  EXPECT_TRUE(found.ends_with(std::string(key) + written + own_history)) << found;
}

TEST(ForcedMapping, IsWrittenByAFailedRunTooButNoHistoryIs) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.parameters["MAPPING_FORMAT"] = "polynomial";  // of which the pool has none
  ExpectFailure(folder, folder.Run());
  const std::string pool = folder.Content("insar.pool");
  EXPECT_NE(pool.find(std::string(key) + "STR             \"polynomial\"\n"), std::string::npos);
  EXPECT_EQ(pool.find("software_names"), std::string::npos);
}

}  // namespace
