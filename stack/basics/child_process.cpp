#include "basics/child_process.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <string_view>
#include <system_error>
#include <utility>

namespace {

std::vector<char*> PointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> EnvironmentOf(const CHILD_SETTINGS& settings) {
  std::vector<std::string> variables;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string_view text = *variable;
    const std::string name(text.substr(0, text.find('=')));
    const bool is_forgotten =
        std::any_of(settings.forgotten.begin(), settings.forgotten.end(),
                    [&name](const std::string& begin) { return name.starts_with(begin); });
    if (!is_forgotten && !settings.environment.contains(name)) {
      variables.emplace_back(text);
    }
  }
  for (const auto& [name, value] : settings.environment) {
    variables.emplace_back(name).append("=").append(value);
  }
  return variables;
}

/// In the new process: becomes the program, or ends.
[[noreturn]] void BecomeProgram(const CHILD_SETTINGS& settings, char* const* arguments,
                                char* const* environment, pid_t parent) {
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  ::signal(SIGPIPE, SIG_DFL);  // which this program ignores
  for (const int descriptor : settings.kept) {
    ::fcntl(descriptor, F_SETFD, 0);
  }
  const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  const bool is_ready = ::prctl(PR_SET_PDEATHSIG, SIGTERM) == 0 && ::getppid() == parent &&
                        (settings.directory.empty() || ::chdir(settings.directory.c_str()) == 0) &&
                        ::dup2(nothing, STDIN_FILENO) >= 0 &&
                        (settings.screen < 0 || (::dup2(settings.screen, STDOUT_FILENO) >= 0 &&
                                                 ::dup2(settings.screen, STDERR_FILENO) >= 0));
  if (is_ready) {
    ::execvpe(arguments[0], arguments, environment);
  }
  const std::string text =
      std::string("can not start ") + arguments[0] + ": " + std::strerror(errno) + "\n";
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
  ::_exit(CHILD_PROCESS::not_started);
}

}  // namespace

CHILD_PROCESS::CHILD_PROCESS(const CHILD_SETTINGS& settings) {
  std::vector<std::string> command = settings.command;
  std::vector<std::string> environment = EnvironmentOf(settings);
  const std::vector<char*> arguments = PointersTo(command);
  const std::vector<char*> variables = PointersTo(environment);
  const pid_t parent = ::getpid();
  id_ = ::fork();
  if (id_ == 0) {
    BecomeProgram(settings, arguments.data(), variables.data(), parent);
  }
  if (id_ < 0) {
    throw std::system_error(errno, std::generic_category(), "can not start " + command[0]);
  }
}

CHILD_PROCESS::CHILD_PROCESS(CHILD_PROCESS&& other) noexcept
    : id_(std::exchange(other.id_, -1)), end_(other.end_) {}

CHILD_PROCESS::~CHILD_PROCESS() {
  if (id_ > 0 && !end_) {
    Terminate();
    Wait();
  }
}

void CHILD_PROCESS::Terminate() const noexcept {
  if (!end_) {
    ::kill(id_, SIGTERM);
    ::kill(id_, SIGCONT);
  }
}

std::optional<CHILD_END> CHILD_PROCESS::End() {
  return WaitWith(WNOHANG);
}

CHILD_END CHILD_PROCESS::Wait() {
  return WaitWith(0).value_or(CHILD_END{});
}

std::optional<CHILD_END> CHILD_PROCESS::WaitWith(int options) {
  if (end_) {
    return end_;
  }
  int status = 0;
  pid_t ended = -1;
  do {
    ended = ::waitpid(id_, &status, options);
  } while (ended < 0 && errno == EINTR);
  if (ended == id_) {
    end_ = WIFEXITED(status) ? CHILD_END{WEXITSTATUS(status), 0} : CHILD_END{-1, WTERMSIG(status)};
  }
  return end_;
}

PRINTED_TEXT::PRINTED_TEXT() : file_(::memfd_create("printed", MFD_CLOEXEC)) {
  if (!file_.IsOpen()) {
    throw std::system_error(errno, std::generic_category(), "memfd_create");
  }
}

std::string PRINTED_TEXT::Text() const {
  std::string text;
  std::array<char, 4096> block{};
  for (ssize_t length = 0; (length = ::pread(file_.Get(), block.data(), block.size(),
                                             static_cast<off_t>(text.size()))) > 0;) {
    text.append(block.data(), static_cast<std::size_t>(length));
  }
  return text;
}

COMMAND_RESULT RunCommand(const std::vector<std::string>& command,
                          const std::vector<std::string>& forgotten,
                          const std::map<std::string, std::string>& environment) {
  const PRINTED_TEXT screen;
  CHILD_PROCESS child({.command = command,
                       .screen = screen.Descriptor(),
                       .environment = environment,
                       .forgotten = forgotten});
  const CHILD_END end = child.Wait();
  return {end, screen.Text()};
}
