#pragma once

#include <atomic>
#include <ctime>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "logging/log_file.h"
#include "logging/logging_level.h"
#include "logging/version_record.h"

class LOGGING;

/// One message under construction. Values are collected privately; the destructor writes the
/// whole line at once, so that lines of different threads never mix. A final line feed of the
/// text ends the line and adds no second one.
class LOG_LINE {
 public:
  LOG_LINE(LOGGING& log, LOGGING_LEVEL_T level) : log_(log), level_(level) {}
  ~LOG_LINE();
  LOG_LINE(const LOG_LINE&) = delete;
  LOG_LINE& operator=(const LOG_LINE&) = delete;

  LOG_LINE& operator<<(const char* text);
  LOG_LINE& operator<<(std::string_view text);
  LOG_LINE& operator<<(char character);
  LOG_LINE& operator<<(int value) { return *this << static_cast<long long>(value); }
  LOG_LINE& operator<<(long value) { return *this << static_cast<long long>(value); }
  LOG_LINE& operator<<(long long value);
  LOG_LINE& operator<<(unsigned value) { return *this << static_cast<unsigned long long>(value); }
  LOG_LINE& operator<<(unsigned long value) {
    return *this << static_cast<unsigned long long>(value);
  }
  LOG_LINE& operator<<(unsigned long long value);
  LOG_LINE& operator<<(double value);       ///< as "%lf"
  LOG_LINE& operator<<(long double value);  ///< as "%LG"

 private:
  LOGGING& log_;
  LOGGING_LEVEL_T level_;
  std::string text_;
};

/// The log of the process: every message goes to standard output when its level reaches the
/// screen level, and to the log file when it reaches the file level. Each line is
/// "<tag> : <program> : <text>", control characters in the text written as `PrintableText` does.
///
/// Until `Open` names the real log file, lines go to a temporary one, whose content `Open`
/// carries over. Trouble with log files is reported at ALARM and never stops the program; a file
/// that can not be written is given up. Numbers are those of the C locale, whatever the program's.
/// All operations may be called from several threads.
class LOGGING {
 public:
  /// Gets the text of messages of any level, under the log's lock; it must not log.
  using RECEIVER = std::function<void(LOGGING_LEVEL_T level, std::string_view text)>;

  /// `file_name` is only kept (empty: none given yet); `Open` opens a file.
  LOGGING(std::string_view file_name, std::string_view program_name, LOGGING_LEVEL_T screen_level,
          LOGGING_LEVEL_T file_level);
  /// A log without screen and file, whose messages only the receiver gets.
  explicit LOGGING(RECEIVER receiver);
  ~LOGGING();
  LOGGING(const LOGGING&) = delete;
  LOGGING& operator=(const LOGGING&) = delete;

  /// Starts a line: `Log() << LOGGING_LEVEL_T::INFO << "lines: " << n;`
  /// Throws a `const char*` when the level is NO_MESSAGE or above.
  LOG_LINE operator<<(LOGGING_LEVEL_T level);

  /// Writes one printf-style line. Throws a `const char*` when the level is NO_MESSAGE or above.
  void Message(LOGGING_LEVEL_T level, const char* format, ...)
      __attribute__((format(printf, 3, 4)));

  void SetScreenLevel(LOGGING_LEVEL_T level);
  void SetFileLevel(LOGGING_LEVEL_T level);
  /// By level name; the screen also knows "NO_MESSAGE". False, and nothing changed, for any
  /// other text.
  bool SetScreenLevel(std::string_view name);
  bool SetFileLevel(std::string_view name);

  /// Opens (and empties) the real log file, carries the temporary log over into it and removes
  /// the temporary one. On failure logging goes on with what is open.
  void Open(const std::string& file_name);

  /// The start block: stars, program and version, compile data, start time and host. The record
  /// is used up.
  void WriteHeader(std::unique_ptr<VERSION_RECORD> record);
  /// The end block: end time and execution time in days, hours, minutes and seconds.
  void WriteTrailer();

  /// Hands the text of every message, whatever its level, to the receiver besides; an empty one
  /// ends that.
  void SetReceiver(RECEIVER receiver);

  std::string FileName() const;
  std::time_t StartTime() const noexcept { return start_time_; }
  bool QaWarningLogged() const noexcept { return qa_warning_logged_; }
  /// Whether the environment told the supervisor's version when the header was written.
  bool SupervisorVersionKnown() const noexcept { return supervisor_version_known_; }

  /// Whether standard error is a terminal, where a status line can be shown.
  bool CanShowStatus() const noexcept { return can_show_status_; }
  /// Keeps one line, rewritten in place, below the lines of the screen: on standard error, and only
  /// when this is a terminal. An empty text takes the line away.
  void ShowStatus(std::string_view text);

  /// While on, the text of each printf-style message that reaches the screen is kept, with a
  /// line feed, for a receiver that forwards it.
  void KeepMessages(bool on);
  std::string KeptMessage() const;

  /// Descriptor of the open log file, -1 without one; for the fatal-signal handler, which must
  /// write without taking the lock.
  int FileDescriptor() const noexcept { return file_.Descriptor(); }
  /// Removes the temporary log file, if there is one; for the same handler.
  void RemoveTemporaryFile() const noexcept { file_.RemoveTemporaryFile(); }
  /// The thresholds and the prefix, readable without the lock for the same reason.
  LOGGING_LEVEL_T ScreenLevel() const noexcept { return screen_level_; }
  LOGGING_LEVEL_T FileLevel() const noexcept { return file_level_; }
  const char* Prefix() const noexcept { return prefix_.c_str(); }

 private:
  friend class LOG_LINE;

  void Write(LOGGING_LEVEL_T level, std::string_view text);
  void WriteLocked(LOGGING_LEVEL_T level, std::string_view text);
  /// What concerns screen and receiver of a line. Returns the line.
  std::string Show(LOGGING_LEVEL_T level, std::string_view text);
  void HideStatus() const;
  void DrawStatus() const;

  mutable std::mutex mutex_;
  const std::string prefix_;
  LOG_FILE file_;
  std::atomic<LOGGING_LEVEL_T> screen_level_;
  std::atomic<LOGGING_LEVEL_T> file_level_;
  const std::time_t start_time_;
  std::atomic<bool> qa_warning_logged_ = false;
  std::atomic<bool> supervisor_version_known_ = false;
  const bool can_show_status_;
  std::string status_;
  bool keep_messages_ = false;
  std::string kept_message_;
  RECEIVER receiver_;
};

/// A share in the one log of the process: the first user creates it with its own settings, each
/// further one only raises the use count, the last one destroys it.
class LOGGING_USER {
 public:
  LOGGING_USER(std::string_view file_name, std::string_view program_name,
               LOGGING_LEVEL_T screen_level, LOGGING_LEVEL_T file_level);
  ~LOGGING_USER();
  LOGGING_USER(const LOGGING_USER&) = delete;
  LOGGING_USER& operator=(const LOGGING_USER&) = delete;
};

/// While it lives, `Log` gives this thread another log: for work whose messages somebody else than
/// the process's log receives. Scopes of one thread nest. Threads that are started meanwhile have
/// to be given the log of their starter by a scope of their own.
class LOG_SCOPE {
 public:
  explicit LOG_SCOPE(LOGGING& log) noexcept;
  ~LOG_SCOPE();
  LOG_SCOPE(const LOG_SCOPE&) = delete;
  LOG_SCOPE& operator=(const LOG_SCOPE&) = delete;

 private:
  LOGGING* outer_;
};

/// The log of this thread's `LOG_SCOPE`, or else that of the process. Without a user so far that is
/// created here, without program name, with screen level ALARM and file level DEBUG, and lives
/// until the process ends.
LOGGING& Log();

/// The log of the process, null without one. Takes no lock and creates nothing, so that the
/// fatal-signal handler can call it.
const LOGGING* ExistingLog() noexcept;
