#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "pool/pool_file.h"

/// A line ends at LF, CR or CR LF and holds at most this many characters: a longer one is read in
/// pieces, each of which counts as a line.
inline constexpr std::size_t pool_line_length = 1024;
/// Only this many characters of a key take part in comparisons.
inline constexpr std::size_t pool_key_length = 100;

/// One line of a pool file and a cursor that takes its words, which any run of blanks and TABs
/// separates.
class POOL_LINE {
 public:
  POOL_LINE() = default;
  /// The first `length` characters of `raw` are the line, the others its end.
  POOL_LINE(std::string raw, std::size_t length) : raw_(std::move(raw)), length_(length) {}

  std::string_view Text() const noexcept { return std::string_view(raw_).substr(0, length_); }
  /// The line with its end, exactly as in the file.
  std::string_view Raw() const noexcept { return raw_; }
  bool HasEnd() const noexcept { return raw_.size() > length_; }

  /// Whether the line can hold a key: neither empty nor a comment ("#") nor indented.
  bool IsKeyLine() const noexcept;
  /// The first word, as far as it takes part in comparisons.
  std::string_view Key() const noexcept;
  bool HasKey(std::string_view key) const noexcept;

  /// The next word, empty at the end of the line.
  std::string_view NextWord() noexcept;
  /// All that follows the blanks at the cursor, up to the end of the line.
  std::string_view Rest() noexcept;
  /// Puts the cursor back to `word`, a part of this line, or behind it.
  void MoveTo(std::string_view word) noexcept;
  void MoveBehind(std::string_view word) noexcept;

 private:
  std::string raw_;
  std::size_t length_ = 0;
  std::size_t cursor_ = 0;
};

/// A place between two lines of a pool file.
struct POOL_PLACE {
  long long offset = 0;  ///< of the line behind it, in bytes
  long long number = 0;  ///< of the line in front of it
};

/// Reads an open pool file line by line, from its start or another place.
class POOL_LINES {
 public:
  explicit POOL_LINES(const POOL_FILE& file, POOL_PLACE from = {})
      : file_(&file), offset_(from.offset), number_(from.number) {}

  /// False at the end of the file. A read error is an ALARM line and ERROR_CAN_NOT_READ_FILE.
  bool Next(POOL_LINE& line);

  /// Number of the line read last, from 1. The pieces of a long line share one.
  long long Number() const noexcept { return number_; }

  /// Whether that many lines of at least one character can still follow.
  bool CanHold(long long lines) const noexcept;

 private:
  /// What follows in the file, as far as it is in the buffer; empty at the end of the file only.
  std::string_view Buffered();
  void Fill();

  const POOL_FILE* file_;
  std::array<char, 4096> buffer_{};
  std::size_t position_ = 0;  ///< next character in the buffer
  std::size_t filled_ = 0;
  long long offset_ = 0;  ///< place in the file behind the buffer
  long long number_ = 0;
  bool in_long_line_ = false;
};
