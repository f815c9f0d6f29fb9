#include <gtest/gtest.h>

#include "run_folder.h"

namespace {

/// What the programs before this one have left in a pool.
constexpr const char* older_history = R"(# history of the product
software_names    STR_V 0 2
{
"Focus \"3\""
 "Coreg"
}
software_versions STR_V 0 2
{
1.0
2.0
}
software_dates STR_V 0 2
{
2001-01-01T00:00:00
2002-02-02T00:00:00
}
software_start_times STR_V 0 2
{
a
b
}
software_end_times STR_V 0 2
{
c
d
}
software_execution_times INT_32_V 0 2
{
11
22
}
)";

constexpr const char* local_time = R"("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}")";

using ENTRY = std::vector<std::string>;

/// What the run has to leave under a key behind what was there before.
struct HISTORY_VECTOR {
  const char* key;
  const char* type;
  std::vector<std::string> older;
  std::string run;  ///< regular expression of the run's own element
};

const std::vector<HISTORY_VECTOR> history_vectors = {
    {"software_names", "STR_V", {R"("Focus \"3\"")", R"("Coreg")"}, "\"Resample\""},
    {"software_versions", "STR_V", {R"("1.0")", R"("2.0")"}, "\"0\\.0\\.5\""},
    {"software_dates",
     "STR_V",
     {R"("2001-01-01T00:00:00")", R"("2002-02-02T00:00:00")"},
     "\"2020-02-06T13:09:23\""},
    {"software_start_times", "STR_V", {R"("a")", R"("b")"}, local_time},
    {"software_end_times", "STR_V", {R"("c")", R"("d")"}, local_time},
    {"software_execution_times", "INT_32_V", {"11", "22"}, "[0-9]+"},
};

void ExpectHistory(const std::string& pool, bool with_older) {
  for (const HISTORY_VECTOR& expected : history_vectors) {
    SCOPED_TRACE(expected.key);
    const ENTRY entry = PoolEntry(pool, expected.key);
    const std::size_t older = with_older ? expected.older.size() : 0;
    ASSERT_EQ(entry.size(), 3 + 1 + older + 1 + 1) << pool;
    EXPECT_EQ(ENTRY(entry.begin(), entry.begin() + 4),
              ENTRY({expected.type, "0", std::to_string(older + 1), "{"}));
    EXPECT_EQ(ENTRY(entry.begin() + 4, entry.end() - 2), with_older ? expected.older : ENTRY());
    EXPECT_TRUE(Matches(entry[entry.size() - 2], expected.run)) << entry[entry.size() - 2];
    EXPECT_EQ(entry.back(), "}");
  }
}

long KeyCount(const std::string& pool, const std::string& key) {
  long count = 0;
  for (const std::string& line : LinesOf(pool)) {
    count += line.starts_with(key + " ") ? 1 : 0;
  }
  return count;
}

TEST(History, BeginsInAnEmptyLogPoolAndKeepsOneEntryOverThreeRuns) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.Write("log.pool", "");
  folder.parameters["log_pp"] = "log.pool";
  const std::string insar = folder.Content("insar.pool");
  for (int run = 0; run < 3; ++run) {
    ExpectSuccess(folder, folder.Run());
    ExpectHistory(folder.Content("log.pool"), false);
    EXPECT_EQ(KeyCount(folder.Content("log.pool"), "software_names"), 1);
  }
  EXPECT_EQ(folder.Content("insar.pool"), insar) << "nothing was forced";
}

TEST(History, IsAddedToThatOfOtherProgramsInTheInsarPool) {
  RUN_FOLDER folder(OrdinaryScene());
  const std::string before = folder.Content("insar.pool");
  folder.Write("insar.pool", older_history + before);
  for (int run = 0; run < 3; ++run) {
    ExpectSuccess(folder, folder.Run());
    const std::string pool = folder.Content("insar.pool");
    ExpectHistory(pool, true);
    EXPECT_TRUE(pool.starts_with("# history of the product\nsoftware_names")) << pool;
    EXPECT_NE(pool.find(before), std::string::npos) << "the other entries stay byte for byte";
  }
}

TEST(History, PoolUnderTwoSpellingsLosesNothing) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.parameters["log_pp"] = "./insar.pool";
  folder.parameters["MAPPING_FORMAT"] = "matrix";
  POOL_TEXT pool = InsarPool(OrdinaryScene());
  pool.SetText("mapping_format", "polynomial");
  folder.Write("insar.pool", pool.Text());
  ExpectSuccess(folder, folder.Run());
  ExpectHistory(folder.Content("insar.pool"), false);
  EXPECT_EQ(PoolEntry(folder.Content("insar.pool"), "mapping_format"),
            ENTRY({"STR", "\"matrix\""}));
}

TEST(History, ThatMissesAVectorFailsTheRunAndStaysAsItIs) {
  RUN_FOLDER folder(OrdinaryScene());
  const std::string history(older_history);
  const std::string damaged =
      history.substr(0, history.find("software_end_times")) + InsarPool(OrdinaryScene()).Text();
  folder.Write("insar.pool", damaged);
  ExpectFailure(folder, folder.Run());
  EXPECT_EQ(folder.Content("insar.pool"), damaged);
  EXPECT_EQ(folder.CountLogLines(
                alarm_begin + "parameter pool: parameter key >> software_end_times << not found"),
            1);
}

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
  const std::string written = "STR             \"matrix\"\n\n";
  const std::string key = "mapping_format                  ";
  const std::string upper_case_key = "MAPPING_FORMAT                  ";

  folder.Write("insar.pool", start + "mapping_format STR polynomial\n" + others);
  ExpectSuccess(folder, folder.Run());
  EXPECT_EQ(folder.Content("insar.pool"), start + key + written + others);

  folder.Write("insar.pool", start + "MAPPING_FORMAT\tSTR polynomial\n" + others);
  ExpectSuccess(folder, folder.Run());
  EXPECT_EQ(folder.Content("insar.pool"), start + upper_case_key + written + others)
      << "a pool that knows only the upper-case key keeps it";

  folder.Write("insar.pool", others + "last INT_32 1");
  ExpectSuccess(folder, folder.Run());
  const std::string appended = folder.Content("insar.pool");
  EXPECT_TRUE(appended.starts_with(others + "last INT_32 1\n")) << appended;
  EXPECT_TRUE(appended.ends_with(key + written)) << appended;
}

TEST(ForcedMapping, IsWrittenByAFailedRunTooButNoHistoryIs) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.parameters["MAPPING_FORMAT"] = "polynomial";  // of which the pool has none
  ExpectFailure(folder, folder.Run());
  const std::string pool = folder.Content("insar.pool");
  EXPECT_EQ(PoolEntry(pool, "mapping_format"), ENTRY({"STR", "\"polynomial\""}));
  EXPECT_EQ(PoolEntry(pool, "software_names"), ENTRY());
}

TEST(ForcedMapping, MappingOfThePoolIsReadUnderEitherKey) {
  RUN_FOLDER folder(OrdinaryScene());
  POOL_TEXT pool = InsarPool(OrdinaryScene());
  pool.Remove("mapping_format");
  pool.SetText("MAPPING_FORMAT", "matrix");
  folder.Write("insar.pool", pool.Text());
  ExpectSuccess(folder, folder.Run());
  EXPECT_EQ(folder.CountLogLines(info_begin + "   - Mapping type   : matrix"), 1);
}

}  // namespace
