#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <random>
#include <thread>

#include "run_folder.h"

namespace {

const std::map<int, std::string> caught_signals = {
    {SIGHUP, "hangup"},
    {SIGINT, "interrupt (rubout)"},
    {SIGQUIT, "quit (ASCII FS)"},
    {SIGILL, "illegal instruction (not reset when caught)"},
    {SIGABRT, "IOT instruction"},
    {SIGBUS, "bus error"},
    {SIGFPE, "floating point exception"},
    {SIGSEGV, "segmentation violation"},
    {SIGTERM, "software termination signal from kill"},
    {SIGURG, "urgent socket condition"},
    {SIGXCPU, "exceeded cpu limit"},
    {SIGXFSZ, "exceeded file size limit"},
    {SIGSYS, "bad argument to system call"}};

/// What a run that a signal ended must leave.
void ExpectReported(const RUN_FOLDER& folder, const PROCESS_END& end, int signal) {
  ExpectFailure(folder, end);
  const std::string text =
      "got fatal signal " + std::to_string(signal) + ": " + caught_signals.at(signal);
  EXPECT_EQ(folder.CountLogLines(alarm_begin + text), 1) << folder.Content("log.run");
  EXPECT_EQ(folder.CountLogLines(alarm_begin + "KVT_MSG|ERROR|resample " + text), 1)
      << "the supervisor knows the program, not the run";
  std::vector<std::string> lines = folder.LogLines();
  lines.pop_back();  // the only one that may be cut
  for (const std::string& line : lines) {
    EXPECT_EQ(line.find(" : resample : "), 5U) << line;
  }
}

void Pause(unsigned microseconds) {
  std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
}

/// Waits until the log has grown to a size or the process has ended.
void AwaitLog(const RUN_FOLDER& folder, const PROCESS& process, std::uintmax_t size) {
  std::error_code missing;
  for (;;) {
    const std::uintmax_t length = std::filesystem::file_size(folder.Path("log.run"), missing);
    if ((!missing && length >= size) || process.HasEnded()) {
      return;
    }
    Pause(20);
  }
}

/// A pool that is updated in place must be there as it was or as it is to be, or else as the
/// complete temporary file beside it.
void ExpectNothingLost(const RUN_FOLDER& folder, const std::string& before) {
  const std::string last_entry = before.substr(before.rfind("\n\n", before.size() - 3));
  bool found = false;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Directory())) {
    const std::string name = entry.path().filename();
    found = found || ((name == "insar.pool" || name.starts_with("pool_")) &&
                      ReadFile(entry.path()).find(last_entry) != std::string::npos);
  }
  EXPECT_TRUE(found) << folder.Content("insar.pool");
}

constexpr int kills = 52 * repetitions;

TEST(Kill, AtAnyMomentIsReported) {
  if (repetitions == 1) {
    GTEST_SKIP() << "signals meet the locks of the sanitizers' own runtimes, which then hang";
  }
  SCENE scene = OrdinaryScene();
  scene.kernel_length = 40;  // takes the workers some time
  // Polynomials stand at the end of the pool, behind the entry that the run replaces.
  scene.mapping = POLYNOMIAL_MAPPING_DATA{{1.5, 0, 0, 0, 0, 0}, {0.5, 0, 0, 0, 0, 0}};
  RUN_FOLDER folder(scene);
  const std::string pool = folder.Content("insar.pool");
  folder.parameters["lfl"] = "TRACE";
  folder.parameters["lsl"] = "TRACE";
  folder.parameters["MAPPING_FORMAT"] = "polynomial";
  folder.environment["PARALLEL"] = "4";
  ExpectSuccess(folder, folder.Run());
  const std::string log = folder.Content("log.run");
  const std::size_t start_of_workers = log.find("  - Run\n");

  std::mt19937 random(20200206);
  int reported = 0;
  for (unsigned round = 0; reported < kills && !testing::Test::HasFailure(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    const int signal = std::next(caught_signals.begin(), round % caught_signals.size())->first;
    folder.Write("insar.pool", pool);
    folder.Write("OK.run", "0");
    std::filesystem::remove(folder.Path("ERROR.run"));
    std::filesystem::remove(folder.Path("log.run"));
    PROCESS process(folder.Settings());
    // Any line of the log may be the last one, every other time one from the workers on, and
    // any time may have passed since.
    const std::size_t first = round % 2 == 0 ? 1 : start_of_workers;
    AwaitLog(folder, process, first + random() % (log.size() - first));
    Pause(static_cast<unsigned>(random() % 500));
    process.SignalThread(static_cast<unsigned>(random()), signal);
    const PROCESS_END end = process.Wait();
    ExpectNothingLost(folder, pool);
    if (end.exit_status == 0) {  // the run was faster
      ExpectSuccess(folder, end);
    } else {
      ExpectReported(folder, end, signal);
      ++reported;
    }
  }
}

/// A run that waits in front of its workers until its screen is read on: the screen is a pipe with
/// exactly as much room as the lines before take.
class HELD_RUN {
 public:
  explicit HELD_RUN(const RUN_FOLDER& folder) {
    const std::size_t room = folder.Run().screen.find(info_begin + "  - Run");
    if (room > capacity || ::pipe2(pipe_.data(), O_CLOEXEC) != 0 ||
        ::fcntl(pipe_[1], F_SETPIPE_SZ, capacity) != capacity ||
        ::write(pipe_[1], std::string(capacity, '.').data(), capacity - room) < 0) {
      throw std::runtime_error("can not hold a run");
    }
    PROCESS_SETTINGS settings = folder.Settings();
    settings.screen = pipe_[1];
    process.emplace(settings);
    ::close(pipe_[1]);
    for (int filled = 0; filled != capacity && !process->HasEnded();) {
      Pause(100);
      ::ioctl(pipe_[0], FIONREAD, &filled);
    }
  }
  ~HELD_RUN() { ::close(pipe_[0]); }
  HELD_RUN(const HELD_RUN&) = delete;
  HELD_RUN& operator=(const HELD_RUN&) = delete;

  /// Reads the screen to its end, which lets the run go on.
  PROCESS_END Release() {
    std::array<char, capacity> block{};
    while (::read(pipe_[0], block.data(), block.size()) > 0) {
    }
    return process->Wait();
  }

  std::optional<PROCESS> process;

 private:
  static constexpr int capacity = 4096;
  std::array<int, 2> pipe_{};
};

TEST(Kill, OfARunWhoseScreenNobodyReadsIsReported) {
  RUN_FOLDER folder(OrdinaryScene());
  HELD_RUN run(folder);
  run.process->Signal(SIGTERM);  // while the run holds the log
  ExpectReported(folder, run.process->Wait(), SIGTERM);
}

TEST(Fault, OfAnInputThatShrinksDuringTheRunIsReported) {
  for (const char* workers : {"1", "3"}) {
    for (const char* input : {"slave.ras", "mask.ras", "rg.map"}) {
      SCOPED_TRACE(input);
      SCENE scene = OrdinaryScene();
      scene.slave = GRID<RAW_PIXEL>(72, 6000);
      scene.mask = GRID<std::uint8_t>(72, 6000, 1);
      auto& matrix = std::get<MATRIX_MAPPING_DATA>(scene.mapping);
      matrix.range = matrix.azimuth = GRID<float>(300, 300);
      RUN_FOLDER folder(scene);
      folder.environment["PARALLEL"] = workers;
      HELD_RUN run(folder);
      std::filesystem::resize_file(folder.Path(input), 0);
      ExpectReported(folder, run.Release(), SIGBUS);
    }
  }
}

TEST(Fault, OfAnOutputThatMayNotGrowIsReported) {
  RUN_FOLDER folder(OrdinaryScene());
  PROCESS_SETTINGS settings = folder.Settings();
  settings.prepare = [] {
    const rlimit limit = {16000, 16000};  // less than the output, more than the log
    return ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
  };
  ExpectReported(folder, PROCESS(settings).Wait(), SIGXFSZ);
}

bool WriteText(const char* path, const std::string& text) {
  const int file = ::open(path, O_WRONLY);
  const bool written = ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  ::close(file);
  return written;
}

/// Gives the process a small disk of its own at "disk"; needs no privileges where the system
/// lets everybody make user namespaces. The process stays the user that it is.
bool MountSmallDisk() {
  const std::string user = std::to_string(::getuid());
  const std::string group = std::to_string(::getgid());
  return ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && WriteText("/proc/self/setgroups", "deny") &&
         WriteText("/proc/self/uid_map", user + " " + user + " 1") &&
         WriteText("/proc/self/gid_map", group + " " + group + " 1") &&
         ::mount("none", "disk", "tmpfs", 0, "size=64k") == 0;
}

TEST(Fault, OfADiskThatIsFullUnderAnOutputIsReported) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.parameters["n_samples"] = "70";
  folder.parameters["n_lines"] = "2000";
  folder.parameters["SlaveOut"] = "disk/out.ras";
  folder.parameters["KERNEL_TYPE"] = "-";
  folder.parameters["KERNEL_LENGTH"] = "-5000";  // writes every pixel
  std::filesystem::create_directory(folder.Path("disk"));
  for (const char* workers : {"1", "4"}) {
    folder.environment["PARALLEL"] = workers;
    PROCESS_SETTINGS settings = folder.Settings();
    settings.prepare = MountSmallDisk;
    const PROCESS_END end = PROCESS(settings).Wait();
    if (end.exit_status == PROCESS::not_started) {
      GTEST_SKIP() << "no disk of its own can be mounted here without privileges";
    }
    ExpectReported(folder, end, SIGBUS);
  }
}

}  // namespace
