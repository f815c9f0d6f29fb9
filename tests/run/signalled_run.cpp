#include "signalled_run.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <chrono>
#include <thread>
#include <utility>

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

HELD_RUN::HELD_RUN(const RUN_FOLDER& folder) {
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

PROCESS_END HELD_RUN::Release() {
  std::array<char, capacity> block{};
  while (::read(pipe_[0], block.data(), block.size()) > 0) {
  }
  return process->Wait();
}

void HELD_RUN::CloseScreen() {
  ::close(std::exchange(pipe_[0], -1));
}
