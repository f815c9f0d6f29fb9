#include "control/fatal_signal.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <climits>
#include <csignal>
#include <cstddef>
#include <string_view>

#include "logging/logging.h"
#include "logging/printable_text.h"

namespace {

using enum LOGGING_LEVEL_T;

constexpr std::array fatal_signals = {SIGHUP,  SIGINT, SIGQUIT, SIGILL, SIGABRT, SIGFPE, SIGBUS,
                                      SIGSEGV, SIGSYS, SIGTERM, SIGURG, SIGXCPU, SIGXFSZ};
constexpr std::array fault_signals = {SIGILL, SIGFPE, SIGBUS, SIGSEGV, SIGSYS};

/// By signal number, from 1.
constexpr std::array<std::string_view, 31> descriptions = {
    "hangup",
    "interrupt (rubout)",
    "quit (ASCII FS)",
    "illegal instruction (not reset when caught)",
    "trace trap (not reset when caught)",
    "IOT instruction",
    "bus error",
    "floating point exception",
    "kill (cannot be caught or ignored)",
    "user defined signal 1",
    "segmentation violation",
    "user defined signal 2",
    "write on a pipe with no one to read it",
    "alarm clock",
    "software termination signal from kill",
    "",
    "child status change",
    "stopped process has been continued",
    "stop (cannot be caught or ignored)",
    "user stop requested from tty",
    "background tty read attempted",
    "background tty write attempted",
    "urgent socket condition",
    "exceeded cpu limit",
    "exceeded file size limit",
    "virtual timer expired",
    "profiling timer expired",
    "window size change",
    "pollable event occurred",
    "power-fail restart",
    "bad argument to system call"};

std::string_view Description(int signal_number) noexcept {
  const bool known = signal_number >= 1 && signal_number <= static_cast<int>(descriptions.size());
  return known ? descriptions[static_cast<std::size_t>(signal_number - 1)] : "";
}

/// A line put together on the stack, to be written by one call. PIPE_BUF bytes reach a pipe
/// without mixing with the lines of other threads; an endless program name is cut.
class SIGNAL_LINE {
 public:
  /// Takes the sting out of control characters, as nothing can be allocated to spell them out.
  void MakePrintable() noexcept {
    std::replace_if(text_.begin(), text_.begin() + size_, IsControlByte, '?');
  }
  SIGNAL_LINE& operator<<(std::string_view text) noexcept {
    const std::size_t length = std::min(text.size(), text_.size() - size_);
    std::copy_n(text.data(), length, text_.data() + size_);
    size_ += length;
    return *this;
  }
  SIGNAL_LINE& operator<<(int number) noexcept {
    std::array<char, 16> digits{};
    const char* const end = std::to_chars(digits.begin(), digits.end(), number).ptr;
    return *this << std::string_view(digits.data(), end);
  }
  std::string_view Text() const noexcept { return {text_.data(), size_}; }

 private:
  std::array<char, PIPE_BUF> text_;
  std::size_t size_ = 0;
};

/// Gives up when the receiver takes nothing for a while: a pipe that nobody empties must not keep
/// the process.
void WriteSoon(int file, std::string_view line) noexcept {
  constexpr int patience_ms = 100;
  pollfd ready = {.fd = file, .events = POLLOUT, .revents = 0};
  if (::poll(&ready, 1, patience_ms) == 1) {
    // There is nobody left to tell that the line could not be written.
    [[maybe_unused]] const ssize_t written = ::write(file, line.data(), line.size());
  }
}

/// Leaves room for the escapes and the line feed that end the line.
constexpr std::size_t longest_message = PIPE_BUF - 128;

void WriteAlarm(const LOGGING& log, std::string_view text) noexcept {
  text = text.substr(0, longest_message);
  if (ALARM >= log.ScreenLevel()) {
    SIGNAL_LINE line;
    line << ScreenHighlight(ALARM) << LevelTag(ALARM) << " : " << log.Prefix() << text
         << ScreenReset(ALARM) << "\n";
    WriteSoon(STDOUT_FILENO, line.Text());
  }
  if (log.FileDescriptor() >= 0 && ALARM >= log.FileLevel()) {
    SIGNAL_LINE line;
    line << LevelTag(ALARM) << " : " << log.Prefix() << text << "\n";
    WriteSoon(log.FileDescriptor(), line.Text());
  }
}

void ReportSignal(int signal_number, const LOGGING& log, const SIGNALLED_RUN* run) noexcept {
  if (log.CanShowStatus()) {
    WriteSoon(STDERR_FILENO, "\r\033[K");
  }
  SIGNAL_LINE message;
  message << "got fatal signal " << signal_number << ": " << Description(signal_number);
  WriteAlarm(log, message.Text());
  if (run != nullptr && run->tells_supervisor) {
    SIGNAL_LINE supervisor_message;
    supervisor_message << "KVT_MSG|ERROR|" << run->program.load() << " " << message.Text();
    supervisor_message.MakePrintable();
    WriteAlarm(log, supervisor_message.Text());
  }
  log.RemoveTemporaryFile();
}

std::atomic<const SIGNALLED_RUN*> published_run = nullptr;
std::atomic_flag signal_taken = ATOMIC_FLAG_INIT;
/// Whether the process ends as it has decided to.
std::atomic<bool> end_is_decided = false;

bool IsFaultSignal(int signal_number) noexcept {
  return std::find(fault_signals.begin(), fault_signals.end(), signal_number) !=
         fault_signals.end();
}

/// Whether somebody has sent the signal, instead of the kernel for a cause of its own.
bool IsSent(const siginfo_t& info) noexcept {
  return info.si_code <= 0;
}

extern "C" void HandleFatalSignal(int signal_number, siginfo_t* info, void* /*context*/) {
  if (end_is_decided && IsFaultSignal(signal_number) && IsSent(*info)) {
    return;
  }
  if (signal_taken.test_and_set()) {
    for (;;) {  // another thread is ending the process
      ::pause();
    }
  }
  const SIGNALLED_RUN* const run = published_run;
  if (const LOGGING* const log = ExistingLog(); log != nullptr) {
    ReportSignal(signal_number, *log, run);
  }
  if (run == nullptr) {
    ::_exit(255);
  }
  if (const STATUS_FILES* const status_files = run->status_files; status_files != nullptr) {
    status_files->MarkFailed();
  }
  ::_exit(1);
}

/// A stack of its own for the handler in the main thread, which makes a stack overflow there
/// reportable.
void UseSignalStack() {
  static std::array<std::byte, 65536> storage;
  stack_t stack = {};
  stack.ss_sp = storage.data();
  stack.ss_size = storage.size();
  ::sigaltstack(&stack, nullptr);
}

}  // namespace

void PublishRun(const SIGNALLED_RUN* run) noexcept {
  published_run = run;
}

const SIGNALLED_RUN* PublishedRun() noexcept {
  return published_run;
}

void InstallFatalSignalHandler() {
  UseSignalStack();
  struct sigaction action = {};
  action.sa_sigaction = HandleFatalSignal;
  action.sa_flags = SA_ONSTACK | SA_SIGINFO;
  ::sigfillset(&action.sa_mask);
  for (const int signal_number : fatal_signals) {
    ::sigaction(signal_number, &action, nullptr);
  }
}

void BlockFatalSignals() noexcept {
  sigset_t blocked;
  sigemptyset(&blocked);
  for (const int signal_number : fatal_signals) {
    sigaddset(&blocked, signal_number);
  }
  end_is_decided = true;
  // A fault can not wait; it still ends the process as failed.
  for (const int signal_number : fault_signals) {
    sigdelset(&blocked, signal_number);
  }
  ::pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
}
