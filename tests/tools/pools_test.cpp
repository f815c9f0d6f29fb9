#include <filesystem>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "pool/pool_errors.h"
#include "pools/pool_command.h"
#include "pools/resample_keys.h"
#include "scene/scene_command.h"
#include "support/log_capture.h"
#include "tools/command_test.h"

namespace {

class POOLS : public COMMAND_TEST {
 protected:
  void Write(const std::string& text) const { WriteFile(Path("a.pool"), text); }
  std::string Text() const { return ReadFile(Path("a.pool")); }
  /// `arguments` follow the path of the pool.
  std::string Pool(const std::string& command, const std::string& arguments = "") const {
    return Run(AddPoolCommand, "pool " + command + " " + Path("a.pool") + " " + arguments);
  }
  /// What `check` prints without the path; it has to fail.
  std::string Faults(const std::string& arguments = "") const {
    testing::internal::CaptureStdout();
    CLI::App app;
    AddPoolCommand(app);
    EXPECT_THROW(app.parse("pool check " + Path("a.pool") + " " + arguments), std::runtime_error);
    std::string output = testing::internal::GetCapturedStdout();
    for (std::size_t at = 0; (at = output.find(Path("a.pool"), at)) != std::string::npos;) {
      output.erase(at, Path("a.pool").size());
    }
    return output;
  }

  void Apply(const std::vector<const char*>& settings) const {
    for (const char* setting : settings) {
      Pool("set", setting);
    }
  }

  const LOG_CAPTURE log_;
};

TEST_F(POOLS, EntriesAreListedAndPrinted) {
  Write(
      "# comment\n"
      "n_samples INT_32 4096\n"
      "single FLT_6 0.1\n"
      "name STR \"two words\"\n"
      "gain CPL_15 1.5 -2\n"
      "times FLT_15_V 1 2\n{\n  0.25\n  nan\n}\n"
      "m INT_32_M 0 2 0 3\n{\n{\n1\n2\n3\n}\n{\n4\n5\n6\n}\n}\n"
      "flag BOL TRUE\n"
      "later NEW_TYPE 5\n");
  EXPECT_EQ(Pool("list"),
            "n_samples  INT_32    4096\n"
            "single     FLT_6     0.1\n"
            "name       STR       \"two words\"\n"
            "gain       CPL_15    [1.5,-2.0]\n"
            "times      FLT_15_V  [0.0,0.25,\"nan\"]\n"
            "m          INT_32_M  2 x 3 [[1,2,3],[4,5,6]]\n"
            "flag       BOL       true\n"
            "later      NEW_TYPE  (can not be read)\n");
  const auto json = nlohmann::json::parse(Pool("list", "--json"));
  EXPECT_EQ(json.size(), 8U);
  EXPECT_EQ(json[5]["line"], 11);
  EXPECT_EQ(json[5]["value"][1][2], 6);
  EXPECT_EQ(json[7]["value"], nullptr);

  EXPECT_EQ(Pool("get", "name"), "two words\n");
  EXPECT_EQ(Pool("get", "gain"), "1.5 -2.0\n");
  EXPECT_EQ(Pool("get", "times"), "0.0\n0.25\nnan\n");
  EXPECT_EQ(Pool("get", "m"), "1 2 3\n4 5 6\n");
  EXPECT_EQ(Pool("get", "flag"), "TRUE\n");
  EXPECT_THROW(Pool("get", "missing"), std::runtime_error);
  EXPECT_THROW(Pool("get", "later"), std::runtime_error);
}

TEST_F(POOLS, WhatIsSetReadsBackAndLeavesTheRest) {
  Write("# first\nprf FLT_15 1\n# last\n");
  const std::pair<const char*, const char*> settings[] = {
      {"prf FLT_15 -1652.5", "-1652.5\n"},
      {"small INT_8 -128", "-128\n"},
      {"text STR \"a b\"", "a b\n"},
      {"point INT_32_INT_32 3 -4", "3 -4\n"},
      {"flags BOL_V TRUE FALSE", "TRUE\nFALSE\n"},
      {"none INT_32_V", ""},
      {"sparse IDX_FLT_6_V 7 0.5 9 1e-3", "7 0.5\n9 0.001\n"},
      {"m CPL_6_M 1 2 3 4 5 6 7 8 --columns 2", "1.0 2.0 3.0 4.0\n5.0 6.0 7.0 8.0\n"},
      {"names STR_V x \"y z\"", "x\ny z\n"}};
  for (const auto& [setting, value] : settings) {
    Pool("set", setting);
    const std::string text = setting;
    EXPECT_EQ(Pool("get", text.substr(0, text.find(' '))), value) << setting;
  }
  EXPECT_TRUE(Text().starts_with("# first\nprf")) << Text();
  EXPECT_NE(Text().find("\n# last\n"), std::string::npos);
  EXPECT_NE(Pool("check").find("faults: 0\n"), std::string::npos);
}

TEST_F(POOLS, ValuesThatTheTypeCanNotHoldAreRefused) {
  Write("prf FLT_15 1\n");
  for (const char* setting :
       {"a INT_16 32768", "a BYT -1", "a INT_32 1.5", "a INT_32 4294967296", "a INT_32",
        "a INT_32 1 2", "a FLT_15 1e999", "a FLT_15 abc", "a FLT_6 1e39", "a BOL yes", "a CPL_6 1",
        "a CPL_6_V 1 2 3", "a INT_32_M 1 2 3 --columns 2", "a INT_32_M 1 2", "a INT_33 1",
        "a UNKNOWN 1"}) {
    EXPECT_THROW(Pool("set", setting), std::invalid_argument) << setting;
  }
  EXPECT_THROW(Pool("set", "a FLT_15 inf"), std::exception);
  EXPECT_EQ(Text(), "prf FLT_15 1\n");
  EXPECT_THROW(Run(AddPoolCommand, "pool set " + Path("missing") + " a INT_32 1"),
               CAN_NOT_OPEN_POOL);
}

TEST_F(POOLS, CheckTellsEachFaultWithItsLine) {
  Write(
      "good INT_32 5\n"
      "bad INT_32 5x\n"
      "wide INT_32 4294967297\n"
      " lost INT_32 5\n"
      "typeless\n"
      "odd INT_9 1\n"
      "good INT_32 6\n"
      "v FLT_15_V 0 3\n{\n 1\n two\n 3\n}\n"
      "short FLT_15_V 0 2\n{\n 1\n}\n"
      "broken INT_32_V 0 2\n{\n 1\n"
      "last INT_32 1\n"
      "keys STR_V 0 3\n{\nfoo STR bar\nhidden\n{\n}\n"
      "hidden INT_32 1\n"
      "\x1b[2J STR x\n");
  EXPECT_EQ(Faults(),
            ":2: bad: read value is : 5x INT_32 (no additional character) value expected\n"
            ":3: wide: 4294967297 is beyond the type\n"
            ":4: lost: indented line outside of any block\n"
            ":5: typeless: no type information found\n"
            ":6: odd: INT_9 is no type\n"
            ":7: good: stands on line 1 already, which counts\n"
            ":11: v: two is no number\n"
            ":18: short: no } at end of FLT_8_V\n"
            ":21: broken: read value is : last INT_32 (no additional character) value expected\n"
            ":28: hidden: is hidden by line 25, in the block of another entry\n"
            "entries: 12\nfaults: 10\n");
  EXPECT_NE(Pool("list").find("\n\\x1b[2J  "), std::string::npos);
}

TEST_F(POOLS, CheckTellsWhatARunWouldMiss) {
  Run(AddSceneCommand, "scene " + Path("") + " --samples 40 --lines 40");
  for (const char* pool : {"insar.pool", "slave.pool"}) {
    EXPECT_NE(Run(AddPoolCommand, "pool check --for resample " + Path(pool)).find("faults: 0\n"),
              std::string::npos);
  }
  Write("n_samples INT_32 5\nn_lines FLT_15 6\nslave_first_rg_time FLT_15 1\n");
  EXPECT_EQ(Faults("--for resample"),
            ": as INSAR pool: n_lines is FLT_15, INT_32 is read\n"
            ": as INSAR pool: slave_first_az_time FLT_15 is missing\n"
            ": as INSAR pool: mapping_format STR is missing\n"
            "entries: 3\nfaults: 3\n");
  Write("MAPPING_FORMAT STR matrix\nshift_matrices_subsampling_az INT_32 6\n");
  EXPECT_NE(Faults("--for resample").find("shift_matrices_subsampling_rg INT_32 is missing"),
            std::string::npos);
  Write("mapping_format STR polynomial\n");
  EXPECT_NE(Faults("--for resample").find("respl_poly_rg FLT_15_V is missing"), std::string::npos);
  EXPECT_NE(Faults("--for resample --as slave").find("as slave pool: prf FLT_15 is missing"),
            std::string::npos);
}

TEST_F(POOLS, ATemplateIsRefusedUntilItIsFilledIn) {
  Pool("new", "--for resample --as slave");
  EXPECT_EQ(
      Faults("--for resample"),
      ": as slave pool: fDC: prf, range_sampling_frequency and oversampling must be positive "
      "numbers\n"
      ": as slave pool: imaging_mode is ?. Valid values are: 'SM' 'SL' 'HS' 'HS300' 'ST' 'SC' 'WS' "
      "'TS' 'TOPS' 'IW' 'EW' 'WV' 'ATI' 'ATIS' \n"
      "entries: 7\nfaults: 2\n");
  EXPECT_THROW(Pool("new", "--for resample"), std::runtime_error) << "is there already";
  Apply({"prf FLT_15 1652", "range_sampling_frequency FLT_15 1.1e8",
         "fdc_poly_az_time FLT_15_V 1 2", "fdc_poly_rg_ref_time FLT_15_V 0.1 0.1",
         "fdc_poly_coeff FLT_15_M 1 2 3 4 --columns 2", "imaging_mode STR SM"});
  EXPECT_NE(Pool("check", "--for resample").find("faults: 0\n"), std::string::npos);

  std::filesystem::remove(Path("a.pool"));
  Pool("new", "--for resample");
  EXPECT_EQ(
      Faults("--for resample"),
      ": as INSAR pool: n_samples and n_lines must be at least 1\n"
      ": as INSAR pool: slave_first_rg_time is not a number\n"
      ": as INSAR pool: slave_first_az_time is not a number\n"
      ": as INSAR pool: subsampling of the mapping files must be at least 1, not 0 in range and "
      "0 in azimuth\n"
      "entries: 9\nfaults: 4\n");
  Apply({"n_samples INT_32 5", "n_lines INT_32 6", "slave_first_rg_time FLT_15 0",
         "slave_first_az_time FLT_15 0", "shift_matrices_subsampling_rg INT_32 8",
         "shift_matrices_subsampling_az INT_32 8"});
  EXPECT_NE(Pool("check", "--for resample").find("faults: 0\n"), std::string::npos);
}

TEST_F(POOLS, CheckTellsWhatARunWouldRefuse) {
  Run(AddSceneCommand, "scene " + Path("") + " --samples 40 --lines 40");
  struct CASE {
    const char* pool;
    const char* setting;
    const char* fault;  ///< empty for none
  };
  const CASE cases[] = {
      {"slave.pool", "imaging_mode STR ATI", ""},
      {"slave.pool", "imaging_mode STR stripmap", "imaging_mode is stripmap. Valid values"},
      {"slave.pool", "prf FLT_15 -1652", "must be positive numbers"},
      {"slave.pool", "fdc_poly_rg_ref_time FLT_15_V 1", "have different lengths"},
      {"slave.pool", "fdc_poly_coeff FLT_15_M 1 --columns 1", "fewer rows than there are"},
      {"insar.pool", "n_lines INT_32 -1", "n_samples and n_lines must be at least 1"},
      {"insar.pool", "slave_first_az_time FLT_15 nan", "slave_first_az_time is not a number"},
      {"insar.pool", "mapping_format STR other", "is neither matrix nor polynomial"},
      {"insar.pool", "mapping_format STR MATRIX", ""}};
  for (const auto& [pool, setting, fault] : cases) {
    std::filesystem::copy_file(Path(pool), Path("a.pool"),
                               std::filesystem::copy_options::overwrite_existing);
    Pool("set", setting);
    if (*fault == '\0') {
      EXPECT_NO_THROW(Pool("check", "--for resample")) << setting;
    } else {
      EXPECT_NE(Faults("--for resample").find(fault), std::string::npos) << setting;
    }
  }
  Write("mapping_format STR polynomial\nn_samples INT_32 5\nn_lines INT_32 6\n");
  Apply({"respl_poly_rg FLT_15_V 0 0 0 0 0 0", "respl_poly_az FLT_15_V 0 0 0 0 0"});
  EXPECT_NE(Faults("--for resample").find("needs 6 coefficients, it has 5"), std::string::npos);
}

TEST_F(POOLS, TheCopyThatAKilledUpdateHasLeftIsTold) {
  const std::string copy = Path("pool_000000");
  WriteFile(copy, "key INT_32 1\n");
  std::filesystem::permissions(copy, std::filesystem::perms(01600));
  Write("");
  const std::string pool = Path("a.pool");
  for (const std::string command : {"list ", "check "}) {
    const std::string output = Shell(std::string(SLCTOOL_PROGRAM) + " pool " + command + pool);
    const std::string warning = "slctool: warning: parameter file " + pool + " is empty; ";
    EXPECT_TRUE(output.starts_with(warning) && output.find(copy) != std::string::npos) << output;
    EXPECT_EQ(output.find("WARN"), std::string::npos) << output;
  }
}

TEST_F(POOLS, SetMakesAPoolWhereItIsToldTo) {
  EXPECT_THROW(Pool("set", "--create a INT_32 x"), std::invalid_argument);
  EXPECT_FALSE(std::filesystem::exists(Path("a.pool")));
  Pool("set", "--create a INT_32 1");
  Pool("set", "--create b INT_32 2");
  EXPECT_EQ(Pool("get", "a") + Pool("get", "b"), "1\n2\n");
}

}  // namespace
