#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "logging/logging.h"
#include "support/temporary_directory.h"

/// Collects what the process-wide log writes to its file while it lives, at level TRACE unless
/// told otherwise.
class LOG_CAPTURE {
 public:
  explicit LOG_CAPTURE(LOGGING_LEVEL_T level = LOGGING_LEVEL_T::TRACE);
  ~LOG_CAPTURE();
  LOG_CAPTURE(const LOG_CAPTURE&) = delete;
  LOG_CAPTURE& operator=(const LOG_CAPTURE&) = delete;

  /// All lines so far, each "<tag> : <text>" without its line feed.
  std::vector<std::string> Lines() const;
  /// Whether exactly this line ("ALARM : text") was written.
  bool Has(std::string_view line) const;
  /// All lines in one text, for failure messages.
  std::string Text() const;

 private:
  TEMPORARY_DIRECTORY directory_;
};
