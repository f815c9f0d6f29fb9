#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <functional>
#include <map>
#include <utility>

#include "pool/parameter_pool_read_write_change.h"
#include "pool/pool_left_overs.h"
#include "pool/pool_test.h"

namespace {

constexpr std::string_view any_call;

/// Interferes with the system calls of a pool's update while it lives: call number `victim` of
/// this name (or of any), counted from 0, runs `action`; what that returns, if not 0, is the errno
/// with which the call fails, as all calls behind it do when the fault stays. Writes take a few
/// bytes each, so that there are many of them.
class FILE_FAULTS {
 public:
  FILE_FAULTS(std::string_view name, int victim, std::function<int()> action)
      : name_(name), calls_left_(victim), action_(std::move(action)) {
    active = this;
  }
  FILE_FAULTS(std::string_view name, int victim, int error, bool stays = false)
      : FILE_FAULTS(name, victim, [error] { return error; }) {
    stays_ = stays;
  }
  ~FILE_FAULTS() { active = nullptr; }
  FILE_FAULTS(const FILE_FAULTS&) = delete;
  FILE_FAULTS& operator=(const FILE_FAULTS&) = delete;

  /// The names of the calls so far, repetitions left out: "flock pread mkostemp ...".
  std::string Calls() const { return calls_; }
  /// Whether there were calls enough to reach the victim.
  bool Struck() const noexcept { return calls_left_ < 0; }

  /// Counts a call down; true when it has to fail, with errno set.
  static bool Fails(std::string_view name) { return active != nullptr && active->Strikes(name); }

  static inline FILE_FAULTS* active = nullptr;

 private:
  bool Strikes(std::string_view name) {
    if (!calls_.ends_with(name)) {
      calls_ += (calls_.empty() ? "" : " ") + std::string(name);
    }
    const bool counts = name_ == any_call || name_ == name;
    if (!counts || --calls_left_ >= 0 || (calls_left_ < -1 && !stays_)) {
      return false;
    }
    active = nullptr;  // the action may use files itself
    errno = action_();
    active = this;
    return errno != 0;
  }

  std::string_view name_;
  int calls_left_;
  std::function<int()> action_;
  bool stays_ = false;
  std::string calls_;
};

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker asks for these names.
extern "C" {

int __real_mkostemp(char* name, int flags);
int __real_flock(int descriptor, int operation);
ssize_t __real_pread(int descriptor, void* buffer, size_t size, off_t offset);
ssize_t __real_pwrite(int descriptor, const void* buffer, size_t size, off_t offset);
int __real_fsync(int descriptor);
int __real_ftruncate(int descriptor, off_t length);
int __real_close(int descriptor);
int __real_unlink(const char* name);
int __real_faccessat(int directory, const char* name, int mode, int flags);

int __wrap_mkostemp(char* name, int flags) {
  return FILE_FAULTS::Fails("mkostemp") ? -1 : __real_mkostemp(name, flags);
}

int __wrap_flock(int descriptor, int operation) {
  return FILE_FAULTS::Fails("flock") ? -1 : __real_flock(descriptor, operation);
}

ssize_t __wrap_pread(int descriptor, void* buffer, size_t size, off_t offset) {
  return FILE_FAULTS::Fails("pread") ? -1 : __real_pread(descriptor, buffer, size, offset);
}

ssize_t __wrap_pwrite(int descriptor, const void* buffer, size_t size, off_t offset) {
  constexpr size_t few_bytes = 50;
  const size_t part = FILE_FAULTS::active != nullptr ? std::min(size, few_bytes) : size;
  return FILE_FAULTS::Fails("pwrite") ? -1 : __real_pwrite(descriptor, buffer, part, offset);
}

int __wrap_fsync(int descriptor) {
  return FILE_FAULTS::Fails("fsync") ? -1 : __real_fsync(descriptor);
}

int __wrap_ftruncate(int descriptor, off_t length) {
  return FILE_FAULTS::Fails("ftruncate") ? -1 : __real_ftruncate(descriptor, length);
}

/// Closes the descriptor even where it fails, as the system does.
int __wrap_close(int descriptor) {
  const bool fails = FILE_FAULTS::Fails("close");
  const int error = errno;
  const int result = __real_close(descriptor);
  errno = error;
  return fails ? -1 : result;
}

int __wrap_unlink(const char* name) {
  return FILE_FAULTS::Fails("unlink") ? -1 : __real_unlink(name);
}

int __wrap_faccessat(int directory, const char* name, int mode, int flags) {
  return FILE_FAULTS::Fails("faccessat") ? -1 : __real_faccessat(directory, name, mode, flags);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)

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
      return line.starts_with("ALARM") && line.ends_with(file);
    });
  }

  struct stat Status() const {
    struct stat status = {};
    ::stat(Path(), &status);
    return status;
  }
};

/// Runs the body in a child process, which ends with status 0 unless it throws.
template <class BODY>
pid_t Start(BODY body) {
  const pid_t child = ::fork();
  if (child == 0) {
    [&]() noexcept { body(); }();
    ::_exit(0);
  }
  return child;
}

TEST_F(POOL_UPDATE, LosesNothingWhereSystemCallsFail) {
  std::map<std::string, int> ends;
  for (const bool stays : {false, true}) {
    bool struck = true;
    for (int victim = 0; struck; ++victim) {
      SCOPED_TRACE(victim);
      SetPool(original);
      PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
      WriteEntries(pool);
      bool failed = false;
      {
        const FILE_FAULTS faults(any_call, victim, ENOSPC, stays);
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
        ++ends["updated"];
      } else if (PoolText() == original) {
        ++ends["unchanged"];
      } else {
        EXPECT_TRUE(stays) << "the pool could have got its content back";
        ASSERT_EQ(others.size(), 1U);
        EXPECT_EQ(ReadFile(others[0]), merged);
        ++ends["rescued"];
      }
      for (const std::string& other : others) {
        if (failed) {
          EXPECT_TRUE(AlarmNames(other)) << log_.Text();
        }
        std::filesystem::remove(other);
      }
    }
  }
  // The pool takes several writes of each file; locking, removing the temporary file and the like
  // may fail without harm.
  EXPECT_GT(ends["unchanged"], 10);
  EXPECT_GT(ends["rescued"], 4);
  EXPECT_GT(ends["updated"], 6);
}

TEST_F(POOL_UPDATE, GoesOnAfterAnInterruption) {
  for (const char* call : {"flock", "pread", "pwrite"}) {
    SetPool(original);
    const FILE_FAULTS faults(call, 0, EINTR);
    Update();
    EXPECT_EQ(PoolText(), merged) << call;
    EXPECT_TRUE(faults.Struck()) << call;
  }
}

TEST_F(POOL_UPDATE, TellsThatItWaitsForTheLock) {
  const FILE_FAULTS faults("flock", 0, EWOULDBLOCK);
  Update();
  EXPECT_EQ(PoolText(), merged);
  EXPECT_TRUE(log_.Has(std::string("WARN  : waiting for the lock of parameter file ") + Path()));
}

TEST_F(POOL_UPDATE, IsRefusedBeforehandWhereItCouldNotBeDone) {
  PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
  WriteEntries(pool);
  pool.CheckUpdate();
  const std::string reason = std::string("ALARM : no permission to change pool file: ") + Path();
  {
    const FILE_FAULTS faults("faccessat", 0, EACCES);
    EXPECT_THROW(pool.CheckUpdate(), NO_UPDATE_PERMISSION_FOR_POOL);
  }
  EXPECT_TRUE(log_.Has(std::string("ALARM : can not update parameter pool: ") + Path()));
  EXPECT_TRUE(log_.Has(reason + ": Permission denied")) << log_.Text();
  std::filesystem::remove(Path());
  EXPECT_THROW(pool.CheckUpdate(), NO_UPDATE_PERMISSION_FOR_POOL);
  EXPECT_TRUE(log_.Has(reason + ": No such file or directory")) << log_.Text();
  SetPool(original);
}

TEST_F(POOL_UPDATE, TruncatesThePoolWhenItsCopyIsOnTheDisk) {
  PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
  WriteEntries(pool);
  const FILE_FAULTS watch(any_call, 1000, 0);
  pool.Update();
  EXPECT_EQ(watch.Calls(),
            "close flock pread mkostemp flock pwrite fsync close "  // the copy
            "fsync close "                                          // its directory
            "ftruncate pwrite fsync unlink close flock");
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
  for (const int flock_call : {-1, 0}) {  // before the update or while it waits for the lock
    SetPool(original);
    PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
    WriteEntries(pool);
    if (flock_call < 0) {
      replace_pool();
    }
    const FILE_FAULTS faults("flock", flock_call, replace_pool);
    pool.Update();
    EXPECT_EQ(PoolText(), "edited INT_32 1\n" + merged);
    EXPECT_TRUE(pool.Exists("edited"));
  }
}

TEST_F(POOL_UPDATE, ProcessesTakeTurns) {
  constexpr int rounds = 20;
  const std::string own_keys[] = {"a", "b", "c", "d"};
  std::vector<pid_t> children;
  for (const std::string& own_key : own_keys) {
    children.push_back(Start([&] {
      for (int round = 1; round <= rounds; ++round) {
        PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
        pool.Write(own_key.c_str(), round);
        pool.Write("common", round);
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
  for (const std::string& own_key : own_keys) {
    int round = 0;
    pool.Read(own_key.c_str(), round);
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
    const pid_t child = Start([&] {
      PARAMETER_POOL_READ_WRITE_CHANGE pool(Path());
      WriteEntries(pool);
      const FILE_FAULTS faults(any_call, victim, [] { return ::raise(SIGTERM); });
      pool.Update();
    });
    int status = -1;
    ::waitpid(child, &status, 0);
    struck = WIFSIGNALED(status) != 0;
    EXPECT_TRUE(PoolText() == merged || (struck && PoolText() == original)) << PoolText();
    EXPECT_TRUE(OtherFiles().empty());
    complete += PoolText() == merged ? 1 : 0;
  }
  EXPECT_GT(complete, 10);
}

TEST_F(POOL_UPDATE, ThatWasKilledIsToldWithTheCopyThatItHasLeft) {
  int emptied = 0;
  int told = 0;
  bool struck = true;
  for (int victim = 0; struck; ++victim) {
    SCOPED_TRACE(victim);
    SetPool(original);
    const pid_t child = Start([&] {
      const FILE_FAULTS faults(any_call, victim, [] { return ::raise(SIGKILL); });
      Update();
    });
    int status = -1;
    ::waitpid(child, &status, 0);
    struck = WIFSIGNALED(status) != 0;
    const bool is_empty = PoolText().empty();
    const std::vector<std::string> copies = OtherFiles();
    ASSERT_LE(copies.size(), 1U);
    Update();
    for (const std::string& copy : copies) {
      const bool is_named =
          log_.Has(std::string("WARN  : parameter file ") + Path() +
                   " is empty; an update that was killed may have left its content in: " + copy);
      EXPECT_EQ(is_named, is_empty) << log_.Text();
      emptied += is_named && ReadFile(copy) == merged ? 1 : 0;
      // An empty one can be of any program until it is locked.
      const bool is_told =
          log_.Has("WARN  : an update of a parameter file that did not end has left: " + copy);
      EXPECT_TRUE(is_told || ReadFile(copy).empty()) << log_.Text();
      told += is_told ? 1 : 0;
      std::filesystem::remove(copy);
    }
  }
  EXPECT_GE(emptied, 1);
  EXPECT_GT(told, emptied + 10);
}

TEST_F(POOL_UPDATE, ThatWasKilledInMidWriteIsToldAtTheNextOpen) {
  const std::string copy = (Directory() / "pool_000000").string();
  WriteFile(copy, merged);
  ::chmod(copy.c_str(), S_ISVTX | 0600);
  for (const std::string& whole : {merged, original}) {
    SetPool(whole);
    const PARAMETER_POOL pool(Path());
    EXPECT_EQ(log_.Text().find("WARN"), std::string::npos) << log_.Text();
  }
  SetPool(merged.substr(0, merged.size() / 2));
  const PARAMETER_POOL pool(Path());
  EXPECT_TRUE(log_.Has(std::string("WARN  : parameter file ") + Path() +
                       " was cut by an update that was killed; its whole content is in: " + copy))
      << log_.Text();
}

TEST_F(POOL_UPDATE, IsNoKilledOneWhileItLastsNorWhereAFileHasSuchAName) {
  const std::string own = (Directory() / "pool_master").string();
  WriteFile(own, original);
  ::chmod(own.c_str(), 0600);
  bool struck = true;
  for (int victim = 0; struck; ++victim) {
    SetPool(original);
    const FILE_FAULTS look(any_call, victim, [&] {
      TellCopiesOfCutPool(POOL_FILE(Path(), O_RDONLY));
      TellLeftOverFiles(POOL_FILE(Path(), O_RDONLY));
      return 0;
    });
    Update();
    struck = look.Struck();
  }
  EXPECT_EQ(log_.Text().find("WARN"), std::string::npos) << log_.Text();
}

}  // namespace
