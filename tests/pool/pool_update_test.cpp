#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>

#include "pool/file_faults.h"
#include "pool/parameter_pool_read_write_change.h"
#include "pool/pool_test.h"

namespace {

const std::string original = "# comment\nkey STR \"old\"\nv INT_32_V 0 1\n{\n1\n}\nlast INT_32 1\n";
const std::string merged =
    "# comment\nkey                             STR             \"new and longer\"\n\n"
    "v INT_32_V 0 1\n{\n1\n}\nlast INT_32 1\n\n"
    "appended                        INT_32          2\n\n";

class POOL_UPDATE : public POOL_TEST {
 protected:
  void SetUp() override { SetPool(original); }

  static void WriteEntries(PARAMETER_POOL_READ_WRITE_CHANGE& pool) {
    pool.Write("key", STRING("new and longer"));
    pool.Write("appended", 2);
  }

  void Update() {
    PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
    WriteEntries(pool);
    pool.Update();
  }

  bool AlarmNames(const std::string& file) const {
    const std::vector<std::string> lines = log_.Lines();
    return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
      return line.rfind("ALARM", 0) == 0 && line.find(file) != std::string::npos;
    });
  }

  struct stat Status() const {
    struct stat status = {};
    ::stat(Path(), &status);
    return status;
  }
};

/// Runs the body in a child process and returns its wait status; a body that returns ends the
/// child with status 0, one that throws with 1.
template <class BODY>
pid_t Start(BODY body) {
  const pid_t child = ::fork();
  if (child == 0) {
    try {
      body();
    } catch (...) {
      ::_exit(1);
    }
    ::_exit(0);
  }
  return child;
}

int Wait(pid_t child) {
  int status = -1;
  ::waitpid(child, &status, 0);
  return status;
}

TEST_F(POOL_UPDATE, LosesNothingWhereverASystemCallFails) {
  int unchanged = 0;
  int rescued = 0;
  int completed = 0;
  bool struck = true;
  for (int victim = 0; struck; ++victim) {
    SCOPED_TRACE(victim);
    SetPool(original);
    PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
    WriteEntries(pool);
    bool failed = false;
    {
      const FILE_FAULTS faults(any_call, victim, ENOSPC);
      try {
        pool.Update();
      } catch (const ERROR_EXCEPTION&) {
        failed = true;
      }
      struck = faults.Struck();
    }
    const std::vector<std::string> others = OtherFiles();
    if (!failed) {
      EXPECT_EQ(PoolText(), merged);
      ++completed;
    } else if (PoolText() == original) {
      ++unchanged;
    } else {
      ASSERT_EQ(others.size(), 1U);
      EXPECT_EQ(ReadFile(others[0]), merged);
      ++rescued;
    }
    for (const std::string& other : others) {
      if (failed) {
        EXPECT_TRUE(AlarmNames(other)) << log_.Text();
      }
      std::filesystem::remove(other);
    }
  }
  // The pool takes several writes of each file; locking, removing the temporary file and the like
  // may fail without harm.
  EXPECT_GT(unchanged, 6);
  EXPECT_GT(rescued, 4);
  EXPECT_GT(completed, 3);
}

TEST_F(POOL_UPDATE, TruncatesThePoolWhenItsCopyIsOnTheDisk) {
  PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
  WriteEntries(pool);
  const FILE_FAULTS watch(any_call, 1000, 0);
  pool.Update();
  EXPECT_EQ(watch.Calls(),
            "flock pread mkostemp pwrite fsync close "  // the copy
            "fsync close "                              // its directory
            "ftruncate pwrite fsync unlink flock close");
}

TEST_F(POOL_UPDATE, TakesUpInterruptedCalls) {
  for (const char* call : {"flock", "pread", "pwrite"}) {
    for (const int victim : {0, 1}) {
      SetPool(original);
      const FILE_FAULTS faults(call, victim, EINTR);
      EXPECT_NO_THROW(Update()) << call << victim;
      EXPECT_TRUE(faults.Struck()) << call << victim;
      EXPECT_EQ(PoolText(), merged) << call << victim;
    }
  }
}

TEST_F(POOL_UPDATE, NamesTheIncompleteTemporaryFile) {
  PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
  WriteEntries(pool);
  {
    const FILE_FAULTS faults("pwrite", 0, ENOSPC);
    EXPECT_THROW(pool.Update(), CORRUPTED_PARAMETER_POOL);
  }
  ASSERT_EQ(OtherFiles().size(), 1U);
  const std::vector<std::string> expected = {
      std::string("ALARM : can not update parameter pool: ") + Path() + ": No space left on device",
      "ALARM : the corrupted parameter pool is:" + OtherFiles()[0],
      "ALARM : the original parameter pool is NOT CHANGED !!"};
  const std::vector<std::string> lines = log_.Lines();
  EXPECT_EQ(std::vector<std::string>(lines.end() - 3, lines.end()), expected);
}

TEST_F(POOL_UPDATE, KeepsTheFileItself) {
  ::chmod(Path(), 0604);
  const std::string link = (Directory() / "link").string();
  const std::string second_name = (Directory() / "second").string();
  std::filesystem::create_symlink(Path(), link);
  std::filesystem::create_hard_link(Path(), second_name);
  const struct stat before = Status();
  {
    PARAMETER_POOL_READ_WRITE_CHANGE pool(link.c_str());
    WriteEntries(pool);
    pool.Update();
  }
  EXPECT_EQ(Status().st_ino, before.st_ino);
  EXPECT_EQ(Status().st_mode, before.st_mode);
  EXPECT_EQ(ReadFile(second_name), merged);
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(OtherFiles().size(), 2U) << "a temporary file is left";
}

TEST_F(POOL_UPDATE, WritesNothingWithoutEntries) {
  const FILE_FAULTS faults(any_call, 0, EIO);
  PARAMETER_POOL_READ_WRITE_CHANGE(Path()).Update();
  EXPECT_EQ(PoolText(), original);
}

TEST_F(POOL_UPDATE, GoesIntoTheFileThatHasTakenThePlaceOfThePool) {
  const auto replace_pool = [&] {
    const std::string replacement = (Directory() / "edited").string();
    WriteFile(replacement, "edited INT_32 1\n" + original);
    std::filesystem::rename(replacement, Path());
    return 0;
  };
  for (const bool while_waiting_for_the_lock : {false, true}) {
    SetPool(original);
    PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
    WriteEntries(pool);
    if (while_waiting_for_the_lock) {
      const FILE_FAULTS faults("flock", 0, replace_pool);
      pool.Update();
    } else {
      replace_pool();
      pool.Update();
    }
    EXPECT_EQ(PoolText(), "edited INT_32 1\n" + merged);
    EXPECT_TRUE(pool.Exists("edited"));
  }
}

TEST_F(POOL_UPDATE, ProcessesTakeTurns) {
  constexpr int processes = 4;
  constexpr int rounds = 20;
  std::vector<pid_t> children;
  children.reserve(processes);
  for (int process = 0; process < processes; ++process) {
    children.push_back(Start([&] {
      const std::string own_key = "process_" + std::to_string(process);
      for (int round = 1; round <= rounds; ++round) {
        PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
        pool.Write(own_key.c_str(), round);
        pool.Write("common", process);
        pool.Update();
      }
    }));
  }
  PARAMETER_POOL pool(Path());
  for (const pid_t child : children) {
    int status = 0;
    while (::waitpid(child, &status, WNOHANG) == 0) {
      ASSERT_TRUE(pool.Exists("last")) << "a reader has met a half-written pool";
    }
    EXPECT_EQ(status, 0);
  }
  for (int process = 0; process < processes; ++process) {
    int round = 0;
    pool.Read(("process_" + std::to_string(process)).c_str(), round);
    EXPECT_EQ(round, rounds);
  }
  EXPECT_TRUE(pool.Exists("common"));
  EXPECT_EQ(PoolText().rfind(original, 0), 0U);
  EXPECT_TRUE(OtherFiles().empty());
}

TEST_F(POOL_UPDATE, IsCompleteOrUntouchedWhenTheProcessIsKilled) {
  int complete = 0;
  bool struck = true;
  for (int victim = 0; struck; ++victim) {
    SCOPED_TRACE(victim);
    SetPool(original);
    const int status = Wait(Start([&] {
      PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
      WriteEntries(pool);
      const FILE_FAULTS faults(any_call, victim, [] {
        ::raise(SIGTERM);
        return 0;
      });
      pool.Update();
    }));
    struck = WIFSIGNALED(status) != 0;
    EXPECT_TRUE(PoolText() == merged || (struck && PoolText() == original)) << PoolText();
    EXPECT_TRUE(OtherFiles().empty());
    complete += PoolText() == merged ? 1 : 0;
  }
  EXPECT_GT(complete, 10);
}

}  // namespace
