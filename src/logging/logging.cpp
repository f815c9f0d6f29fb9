#include "logging/logging.h"

#include <unistd.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include "logging/execution_time.h"
#include "logging/formatted_text.h"
#include "logging/printable_text.h"
#include "system/c_locale.h"
#include "system/whole_write.h"

namespace {

using enum LOGGING_LEVEL_T;

constexpr std::string_view star_line =
    "***********************************************************";

std::string LocalTime(std::time_t time) {
  std::array<char, 32> text{};  // ctime_r needs 26
  if (::ctime_r(&time, text.data()) == nullptr) {
    return "unknown";
  }
  text[std::strcspn(text.data(), "\n")] = '\0';
  return text.data();
}

std::string HostName() {
  std::array<char, 256> name{};  // longer than any
  ::gethostname(name.data(), name.size() - 1);
  return name.data();
}

std::string_view WithoutFinalLineFeed(std::string_view text) {
  if (text.ends_with('\n')) {
    text.remove_suffix(1);
  }
  return text;
}

}  // namespace

LOG_LINE::~LOG_LINE() {
  try {
    log_.Write(level_, text_);
  } catch (...) {  // no memory for the line: the program goes on without it
  }
}

LOG_LINE& LOG_LINE::operator<<(const char* text) {
  return *this << std::string_view(text);
}

/// A line without memory is lost here too: many are made in destructors, which no exception leaves.
LOG_LINE& LOG_LINE::operator<<(std::string_view text) {
  try {
    text_ += text;
  } catch (const std::bad_alloc&) {
  }
  return *this;
}

LOG_LINE& LOG_LINE::operator<<(char character) {
  text_ += character;
  return *this;
}

LOG_LINE& LOG_LINE::operator<<(long long value) {
  text_ += std::to_string(value);
  return *this;
}

LOG_LINE& LOG_LINE::operator<<(unsigned long long value) {
  text_ += std::to_string(value);
  return *this;
}

LOG_LINE& LOG_LINE::operator<<(double value) {
  const C_LOCALE c_locale;
  text_ += std::to_string(value);
  return *this;
}

LOG_LINE& LOG_LINE::operator<<(long double value) {
  const C_LOCALE c_locale;
  std::array<char, 64> digits{};
  std::snprintf(digits.data(), digits.size(), "%LG", value);
  text_ += digits.data();
  return *this;
}

LOGGING::LOGGING(std::string_view file_name, std::string_view program_name,
                 LOGGING_LEVEL_T screen_level, LOGGING_LEVEL_T file_level)
    : prefix_(program_name.empty() ? std::string() : std::string(program_name) + " : "),
      file_(file_name),
      screen_level_(screen_level),
      file_level_(file_level),
      start_time_(std::time(nullptr)),
      can_show_status_(::isatty(STDERR_FILENO) != 0) {}

LOGGING::LOGGING(RECEIVER receiver)
    : screen_level_(NO_MESSAGE),
      file_level_(NO_MESSAGE),
      start_time_(std::time(nullptr)),
      can_show_status_(false),
      receiver_(std::move(receiver)) {}

LOGGING::~LOGGING() {
  for (const std::string& trouble : file_.Close()) {
    Show(ALARM, trouble);
  }
}

LOG_LINE LOGGING::operator<<(LOGGING_LEVEL_T level) {
  if (level >= NO_MESSAGE) {
    throw "LOGGING::operator << (LOGGING_LEVEL_T): logging not allowed in level NO_MESSAGE. This "
          "level is only provided to totally turn off screen logging.";
  }
  return {*this, level};
}

void LOGGING::Message(LOGGING_LEVEL_T level, const char* format, ...) {
  if (level >= NO_MESSAGE) {
    throw "LOGGING::Message: logging not allowed in level NO_MESSAGE. This level is only provided "
          "to totally turn off screen logging.";
  }
  std::va_list arguments;
  va_start(arguments, format);
  const std::string text = FormattedTextOf(format, arguments);
  va_end(arguments);

  const std::lock_guard lock(mutex_);
  WriteLocked(level, text);
  if (keep_messages_ && level >= screen_level_) {
    kept_message_ = std::string(WithoutFinalLineFeed(text)) + "\n";
  }
}

void LOGGING::SetScreenLevel(LOGGING_LEVEL_T level) {
  const std::lock_guard lock(mutex_);
  screen_level_ = level;
}

void LOGGING::SetFileLevel(LOGGING_LEVEL_T level) {
  const std::lock_guard lock(mutex_);
  file_level_ = level;
}

bool LOGGING::SetScreenLevel(std::string_view name) {
  LOGGING_LEVEL_T level = NO_MESSAGE;
  if (name != "NO_MESSAGE" && !LevelFromName(name, level)) {
    return false;
  }
  SetScreenLevel(level);
  return true;
}

bool LOGGING::SetFileLevel(std::string_view name) {
  LOGGING_LEVEL_T level = NO_LEVEL;
  if (!LevelFromName(name, level)) {
    return false;
  }
  SetFileLevel(level);
  return true;
}

void LOGGING::Open(const std::string& file_name) {
  const std::lock_guard lock(mutex_);
  for (const std::string& trouble : file_.Open(file_name)) {
    WriteLocked(ALARM, trouble);
  }
}

void LOGGING::WriteHeader(std::unique_ptr<VERSION_RECORD> record) {
  const std::lock_guard lock(mutex_);
  WriteLocked(INFO, "");
  WriteLocked(INFO, star_line);
  WriteLocked(INFO, record->display_name + " " + record->version);
  WriteLocked(INFO, star_line);
  WriteLocked(INFO,
              "compile date: " + record->compile_date + "  compiled by: " + record->compiled_by);
  WriteLocked(INFO, "start time: " + LocalTime(start_time_) + "  hostname: " + HostName());
  if (const char* supervisor = std::getenv("PROC_NAME"); supervisor != nullptr) {
    WriteLocked(INFO, std::string("started by: ") + supervisor);
    const std::string version_variable = std::string(supervisor) + "_VERSION";
    supervisor_version_known_ = std::getenv(version_variable.c_str()) != nullptr;
  }
  WriteLocked(INFO, "using configuration file " + record->configuration_file);
  if (!record->full_version.empty()) {
    WriteLocked(DEBUG, "full version: " + record->full_version);
  }
}

void LOGGING::WriteTrailer() {
  const std::time_t end_time = std::time(nullptr);
  const std::lock_guard lock(mutex_);
  WriteLocked(INFO, star_line);
  WriteLocked(INFO, "end time: " + LocalTime(end_time));
  WriteLocked(INFO, "execution time:" + ExecutionTime(end_time - start_time_));
}

void LOGGING::SetReceiver(RECEIVER receiver) {
  const std::lock_guard lock(mutex_);
  receiver_ = std::move(receiver);
}

std::string LOGGING::FileName() const {
  const std::lock_guard lock(mutex_);
  return file_.Name();
}

void LOGGING::ShowStatus(std::string_view text) {
  if (!can_show_status_) {
    return;
  }
  const std::lock_guard lock(mutex_);
  HideStatus();
  status_ = text;
  DrawStatus();
}

void LOGGING::HideStatus() const {
  if (!status_.empty()) {
    WriteWhole(STDERR_FILENO, "\r\033[K");
  }
}

void LOGGING::DrawStatus() const {
  if (!status_.empty()) {
    WriteWhole(STDERR_FILENO, status_);
  }
}

void LOGGING::KeepMessages(bool on) {
  const std::lock_guard lock(mutex_);
  keep_messages_ = on;
}

std::string LOGGING::KeptMessage() const {
  const std::lock_guard lock(mutex_);
  return kept_message_;
}

void LOGGING::Write(LOGGING_LEVEL_T level, std::string_view text) {
  const std::lock_guard lock(mutex_);
  WriteLocked(level, text);
}

void LOGGING::WriteLocked(LOGGING_LEVEL_T level, std::string_view text) {
  if (level == QA_WARNING) {
    qa_warning_logged_ = true;
  }
  if (level < screen_level_ && level < file_level_ && !receiver_) {
    return;
  }
  const std::string line = Show(level, text);
  if (level >= file_level_) {
    for (const std::string& trouble : file_.Write(line + "\n")) {
      Show(ALARM, trouble);
    }
  }
}

std::string LOGGING::Show(LOGGING_LEVEL_T level, std::string_view text) {
  const std::string printable = PrintableText(WithoutFinalLineFeed(text));
  if (receiver_) {
    receiver_(level, printable);
  }
  std::string line = std::string(LevelTag(level)) + " : " + prefix_ + printable;
  if (level >= screen_level_) {
    HideStatus();
    WriteWhole(STDOUT_FILENO, ScreenHighlight(level) + line + ScreenReset(level) + "\n");
    DrawStatus();
  }
  return line;
}

namespace {

struct SHARED_LOG {
  std::mutex mutex;
  std::unique_ptr<LOGGING> log;
  int users = 0;
};

/// Of the innermost scope of this thread.
constinit thread_local LOGGING* scoped_log = nullptr;

/// The log of `SharedLog`, readable without its mutex.
constinit std::atomic<const LOGGING*> existing_log = nullptr;

/// Never destroyed itself, so that users in static objects may end in any order.
SHARED_LOG& SharedLog() {
  static SHARED_LOG& shared = *new SHARED_LOG;
  return shared;
}

void ReleaseSharedLog() {
  SHARED_LOG& shared = SharedLog();
  const std::lock_guard lock(shared.mutex);
  if (--shared.users == 0) {
    existing_log = nullptr;
    shared.log.reset();
  }
}

}  // namespace

LOGGING_USER::LOGGING_USER(std::string_view file_name, std::string_view program_name,
                           LOGGING_LEVEL_T screen_level, LOGGING_LEVEL_T file_level) {
  SHARED_LOG& shared = SharedLog();
  const std::lock_guard lock(shared.mutex);
  if (shared.users++ == 0) {
    shared.log = std::make_unique<LOGGING>(file_name, program_name, screen_level, file_level);
    existing_log = shared.log.get();
  }
}

LOGGING_USER::~LOGGING_USER() {
  ReleaseSharedLog();
}

LOG_SCOPE::LOG_SCOPE(LOGGING& log) noexcept : outer_(std::exchange(scoped_log, &log)) {}

LOG_SCOPE::~LOG_SCOPE() {
  scoped_log = outer_;
}

LOGGING& Log() {
  if (scoped_log != nullptr) {
    return *scoped_log;
  }
  SHARED_LOG& shared = SharedLog();
  const std::lock_guard lock(shared.mutex);
  if (!shared.log) {
    shared.log = std::make_unique<LOGGING>("", "", ALARM, DEBUG);
    existing_log = shared.log.get();
    ++shared.users;
    // Not a static object: a destructor that runs after it could not log any more.
    std::atexit(ReleaseSharedLog);
  }
  return *shared.log;
}

const LOGGING* ExistingLog() noexcept {
  return existing_log;
}
