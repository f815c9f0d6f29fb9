#include "child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "logging/logging.h"

namespace {

void Redirect(int descriptor, const std::string& path, int flags) {
  const int file = ::open(path.c_str(), flags, 0666);
  if (file < 0 || ::dup2(file, descriptor) < 0) {
    ::_exit(99);
  }
  ::close(file);
}

[[noreturn]] void RunBody(const std::function<void()>& body, const std::filesystem::path& place) {
  using enum LOGGING_LEVEL_T;
  std::filesystem::current_path(place);
  Redirect(STDOUT_FILENO, "screen", O_WRONLY | O_CREAT | O_APPEND | O_TRUNC);
  static const LOGGING_USER log("", "resample", INFO, DEBUG);
  body();
  std::exit(body_returned);
}

}  // namespace

CHILD_PROCESS_TEST::~CHILD_PROCESS_TEST() {
  for (const pid_t child : running_) {
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
  }
}

CHILD_END CHILD_PROCESS_TEST::Run(const std::function<void()>& body, std::string_view keyboard) {
  WriteFile(Path("keyboard"), keyboard);
  return Wait(Start([&] {
    Redirect(STDIN_FILENO, "keyboard", O_RDONLY);
    body();
  }));
}

pid_t CHILD_PROCESS_TEST::Start(const std::function<void()>& body) {
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    RunBody(body, directory_.Path());
  }
  running_.push_back(child);
  return child;
}

CHILD_END CHILD_PROCESS_TEST::Wait(pid_t child) {
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  std::erase(running_, child);
  CHILD_END end;
  end.exit_status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  end.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  end.screen = Content("screen");
  return end;
}

bool CHILD_PROCESS_TEST::Exists(std::string_view name) const {
  return std::filesystem::exists(Path(name));
}

std::vector<std::string> CHILD_PROCESS_TEST::Lines(std::string_view name) const {
  std::vector<std::string> lines;
  std::istringstream text(Content(name));
  for (std::string line; std::getline(text, line);) {
    lines.push_back(line);
  }
  return lines;
}

long CHILD_PROCESS_TEST::Count(std::string_view name, std::string_view line) const {
  const std::vector<std::string> lines = Lines(name);
  return std::count(lines.begin(), lines.end(), line);
}

ARGUMENTS::ARGUMENTS(std::initializer_list<std::string> texts) : texts_(texts) {
  for (std::string& text : texts_) {
    pointers_.push_back(text.data());
  }
  pointers_.push_back(nullptr);
}
