#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <set>

#include "run_folder.h"

namespace {

/// A run of the program with the fault injector, in which one call of a function fails.
class INJECTION : public testing::Test {
 protected:
  INJECTION() : folder_(OrdinaryScene()) {
    folder_.parameters["MAPPING_FORMAT"] = "matrix";  // is written into the pool
    folder_.parameters["no_of_cpu"] = "3";
    folder_.keyboard = folder_.parameters["KERNEL_LENGTH"] + "\n";  // is asked for
    folder_.parameters.erase("KERNEL_LENGTH");
    folder_.parameters["log_pp"] = "log.pool";
    folder_.Write("log.pool", "");
    ExpectSuccess(folder_, folder_.Run());
    output_ = folder_.Content("out.ras");
    output_mask_ = folder_.Content("out_mask.ras");
    log_length_ = folder_.LogLines().size();
    folder_.environment["LD_PRELOAD"] = FAULT_INJECTOR;
  }

  void SetUp() override {
    if (repetitions == 1) {
      GTEST_SKIP() << "the runtime of a sanitizer must be loaded before any other library";
    }
  }

  /// Files as they are before a run.
  void Prepare() {
    WriteSceneFiles(OrdinaryScene(), folder_.Directory());
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Directory())) {
      if (inputs_.count(entry.path().filename()) == 0) {
        std::filesystem::remove(entry.path());
      }
    }
    folder_.Write("log.pool", "");
    folder_.Write("OK.run", "0");
    for (const std::string& input : inputs_) {
      before_[input] = folder_.Content(input);
    }
  }

  /// Whether there were calls enough for the one that was to fail.
  bool Strike(const std::string& call, int number, int error) {
    Prepare();
    folder_.environment["FAULT_CALL"] = call;
    folder_.environment["FAULT_NUMBER"] = std::to_string(number);
    folder_.environment["FAULT_ERROR"] = std::to_string(error);
    end_ = folder_.Run();
    return folder_.Exists("struck");
  }

  /// What the screen and the log say.
  std::string Report() const {
    return end_.screen + (folder_.Exists("log.run") ? folder_.Content("log.run") : "");
  }
  bool Says(std::string_view text) const { return Report().find(text) != std::string::npos; }

  /// Success with the right result, or a failure that is told in every way.
  void ExpectSuccessOrReport() {
    EXPECT_EQ(end_.signal, 0);
    if (end_.exit_status == 0) {
      EXPECT_TRUE(folder_.Content("out.ras") == output_);
      EXPECT_TRUE(folder_.Content("out_mask.ras") == output_mask_);
      ExpectMarker("OK.run", "0", "ERROR.run");
    } else {
      EXPECT_EQ(end_.exit_status, 1);
      EXPECT_TRUE(Says(alarm_begin)) << Report();
      EXPECT_TRUE(Says(alarm_begin + "KVT_MSG|ERROR|")) << Report();
      ExpectMarker("ERROR.run", "1", "OK.run");
    }
    // An ERROR file that stays is a failure after a success, which the history may tell.
    const bool is_processed = end_.exit_status == 0 || Says("Can not remove file ERROR.run");
    ExpectHistory(is_processed ? 6 : 0);
    ExpectNothingLost();
  }

  /// The history that the pools hold has this many entries.
  void ExpectHistory(int entries) {
    int found = 0;
    for (const char* pool : {"insar.pool", "log.pool"}) {
      const std::string text = folder_.Content(pool);
      for (std::size_t at = 0; (at = text.find("software_", at)) != std::string::npos; ++at) {
        ++found;
      }
    }
    EXPECT_EQ(found, entries) << Report();
  }

  void ExpectMarker(const std::string& name, const std::string& text, const std::string& other) {
    if (!folder_.Exists(name) || folder_.Content(name) != text) {
      EXPECT_TRUE(Says("Can not create file " + name)) << Report();
    }
    if (folder_.Exists(other)) {
      EXPECT_TRUE(Says("Can not remove file " + other)) << Report();
    }
  }

  /// The inputs are as before; a pool that is updated is that or complete. Nothing that the run
  /// does not name is left behind.
  void ExpectNothingLost() {
    std::set<std::string> known = inputs_;
    known.insert({"out.ras", "out_mask.ras", "log.run", "OK.run", "ERROR.run",
                  "current_process.pid", "parent_process.pid", "screen", "errors", "keyboard",
                  "struck"});
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Directory())) {
      const std::string name = entry.path().filename();
      if (known.count(name) == 0) {
        EXPECT_TRUE(name.starts_with("pool_") && Says(name)) << name;
      }
    }
    for (const auto& [name, content] : before_) {
      const std::string now = folder_.Content(name);
      const bool is_updated = name == "insar.pool" || name == "log.pool";
      EXPECT_TRUE(now == content || (is_updated && now.ends_with("\n\n"))) << name << ": " << now;
    }
    EXPECT_NE(folder_.Content("insar.pool").find("slave_first_az_time"), std::string::npos);
  }

  const std::set<std::string> inputs_ = {"insar.pool", "slave.pool", "slave.ras", "mask.ras",
                                         "rg.map",     "az.map",     "pcf.run",   "log.pool"};
  RUN_FOLDER folder_;
  PROCESS_END end_;
  std::map<std::string, std::string> before_;
  std::string output_;
  std::string output_mask_;
  std::size_t log_length_ = 0;
};

TEST_F(INJECTION, OfEachCallOfTheSystemEndsInSuccessOrReport) {
  const std::pair<const char*, int> calls[] = {
      {"open", EMFILE},   {"open", EIO},          {"fopen", EMFILE}, {"mkostemp", ENOSPC},
      {"read", EIO},      {"pread", EIO},         {"write", ENOSPC}, {"pwrite", ENOSPC},
      {"ftruncate", EIO}, {"fsync", EIO},         {"flock", ENOLCK}, {"unlink", EPERM},
      {"stat", EACCES},   {"fstat", EIO},         {"mmap", ENOMEM},  {"munmap", EINVAL},
      {"msync", EIO},     {"flock", EWOULDBLOCK}, {"close", EIO},    {"pthread_create", EAGAIN},
      {"setenv", ENOMEM}, {"write", EINTR},       {"read", EINTR},   {"pread", EINTR}};
  int failed = 0;
  int survived = 0;
  for (const auto& [call, error] : calls) {
    int number = 0;
    const bool is_frequent = std::string_view("pread") == call || std::string_view("write") == call;
    const int step = is_frequent && error != EINTR ? 5 : 1;
    for (; Strike(call, number, error); number += step) {
      SCOPED_TRACE(std::string(call) + " " + std::to_string(number));
      ExpectSuccessOrReport();
      EXPECT_TRUE(error != EINTR || end_.exit_status == 0) << "an interruption is no failure";
      ++(end_.exit_status == 0 ? survived : failed);
    }
    EXPECT_GT(number, 0) << call;
  }
  RecordProperty("failed", failed);
  RecordProperty("survived", survived);
}

TEST_F(INJECTION, OfAnAllocationEndsInSuccessOrReport) {
  constexpr int step = 5;  // there are some thousand allocations
  int failed = 0;
  int survived = 0;
  const auto strike = [&](int number) {
    const char* const log_pool = number % 2 == 0 ? "log.pool" : "insar.pool";
    folder_.arguments = {"-pid", "run", "-log_pp", log_pool};
    return Strike("new", number, ENOMEM);
  };
  for (int number = 0; strike(number); number += step) {
    SCOPED_TRACE(number);
    if (folder_.Exists("log.run")) {
      ExpectSuccessOrReport();
      EXPECT_FALSE(Says("FATAL ERROR")) << Report();
      EXPECT_TRUE(end_.exit_status == 0 || Says("memory") || Says("can not copy array"))
          << Report();
    } else {  // before the run knew its name
      EXPECT_NE(end_.exit_status, 0);
      ExpectNothingLost();
    }
    ++(end_.exit_status == 0 ? survived : failed);
  }
  RecordProperty("failed", failed);
  RecordProperty("survived", survived);
}

}  // namespace
