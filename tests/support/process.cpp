#include "support/process.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include "support/temporary_directory.h"

namespace {

std::vector<std::string> EnvironmentTexts(const PROCESS_SETTINGS& settings) {
  std::vector<std::string> texts;
  for (const auto& [name, value] : settings.environment) {
    texts.push_back(name + "=" + value);
  }
  // The threads of a process that a signal ends are never joined, and a search for leaks as it ends
  // would wait for the allocator's lock that the interrupted thread may hold.
  for (const std::string option :
       {"ASAN_OPTIONS=detect_leaks=0:", "LSAN_OPTIONS=", "TSAN_OPTIONS=report_thread_leaks=0:",
        "UBSAN_OPTIONS=", "GCOV_ERROR_FILE="}) {
    const char* own = std::getenv(option.substr(0, option.find('=')).c_str());
    texts.push_back(option + (own != nullptr ? own : ""));
  }
  return texts;
}

void Redirect(int descriptor, const char* path, int flags) {
  const int file = ::open(path, flags, 0666);
  if (file < 0 || ::dup2(file, descriptor) < 0) {
    ::_exit(PROCESS::not_started);
  }
  ::close(file);
}

[[noreturn]] void BecomeProgram(const PROCESS_SETTINGS& settings, char** arguments,
                                char** environment) {
  constexpr int write_flags = O_WRONLY | O_CREAT | O_APPEND | O_TRUNC;
  if (::chdir(settings.directory.c_str()) == 0) {
    Redirect(STDIN_FILENO, "keyboard", O_RDONLY);
    Redirect(STDERR_FILENO, "errors", write_flags);
    if (settings.screen >= 0) {
      ::dup2(settings.screen, STDOUT_FILENO);
    } else {
      Redirect(STDOUT_FILENO, "screen", write_flags);
    }
    if (!settings.prepare || settings.prepare()) {
      ::execve(settings.program.c_str(), arguments, environment);
    }
  }
  ::_exit(PROCESS::not_started);
}

}  // namespace

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

PROCESS::PROCESS(const PROCESS_SETTINGS& settings) : directory_(settings.directory) {
  WriteFile(directory_ / "keyboard", settings.keyboard);
  std::vector<std::string> argument_texts = {settings.program};
  argument_texts.insert(argument_texts.end(), settings.arguments.begin(), settings.arguments.end());
  std::vector<std::string> environment_texts = EnvironmentTexts(settings);
  const std::vector<char*> arguments = Pointers(argument_texts);
  const std::vector<char*> environment = Pointers(environment_texts);
  std::fflush(nullptr);
  id_ = ::fork();
  if (id_ < 0) {
    throw std::runtime_error("can not start a process");
  }
  if (id_ == 0) {
    BecomeProgram(settings, const_cast<char**>(arguments.data()),
                  const_cast<char**>(environment.data()));
  }
}

PROCESS::~PROCESS() {
  if (!waited_) {
    ::kill(id_, SIGKILL);
    ::waitpid(id_, nullptr, 0);
  }
}

bool PROCESS::HasEnded() const {
  siginfo_t info = {};
  return ::waitid(P_PID, static_cast<id_t>(id_), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
         info.si_pid == id_;
}

void PROCESS::Signal(int number) const {
  ::kill(id_, number);
}

void PROCESS::SignalThread(unsigned index, int number) const {
  std::vector<pid_t> threads;
  std::error_code ended;
  const std::string tasks = "/proc/" + std::to_string(id_) + "/task";
  for (const auto& entry : std::filesystem::directory_iterator(tasks, ended)) {
    threads.push_back(std::stoi(entry.path().filename()));
  }
  if (!threads.empty()) {
    ::syscall(SYS_tgkill, id_, threads[index % threads.size()], number);
  }
}

PROCESS_END PROCESS::Wait() {
  int status = 0;
  if (::waitpid(id_, &status, 0) != id_) {
    throw std::runtime_error("can not wait for a process");
  }
  waited_ = true;
  PROCESS_END end;
  end.exit_status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  end.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  end.errors = ReadFile(directory_ / "errors");
  if (std::filesystem::exists(directory_ / "screen")) {
    end.screen = ReadFile(directory_ / "screen");
  }
  return end;
}
