#include "pool/pool_lines.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/error_exception.h"
#include "logging/logging.h"
#include "system/c_locale.h"

namespace {

constexpr std::string_view blanks = " \t";

}  // namespace

bool POOL_LINE::IsKeyLine() const noexcept {
  return length_ > 0 && raw_[0] != '#' && blanks.find(raw_[0]) == std::string_view::npos;
}

std::string_view POOL_LINE::Key() const noexcept {
  const std::string_view text = Text();
  return text.substr(0, std::min(text.find_first_of(blanks), pool_key_length));
}

bool POOL_LINE::HasKey(std::string_view key) const noexcept {
  return IsKeyLine() && Key() == key.substr(0, pool_key_length);
}

std::string_view POOL_LINE::NextWord() noexcept {
  const std::string_view rest = Rest();
  const std::string_view word = rest.substr(0, rest.find_first_of(blanks));
  cursor_ += word.size();
  return word;
}

std::string_view POOL_LINE::Rest() noexcept {
  const std::string_view text = Text();
  cursor_ = std::min(text.find_first_not_of(blanks, cursor_), text.size());
  return text.substr(cursor_);
}

void POOL_LINE::MoveTo(std::string_view word) noexcept {
  cursor_ = static_cast<std::size_t>(word.data() - raw_.data());
}

void POOL_LINE::MoveBehind(std::string_view word) noexcept {
  MoveTo(word);
  cursor_ += word.size();
}

bool POOL_LINES::Next(POOL_LINE& line) {
  if (Buffered().empty()) {
    return false;
  }
  std::string raw;
  while (raw.size() < pool_line_length) {
    const std::string_view piece = Buffered().substr(0, pool_line_length - raw.size());
    const std::string_view text = piece.substr(0, piece.find_first_of("\r\n"));
    raw += text;
    position_ += text.size();
    if (text.size() < piece.size() || piece.empty()) {
      break;
    }
  }
  const std::size_t length = raw.size();
  for (const char part_of_end : {'\r', '\n'}) {
    if (Buffered().starts_with(part_of_end)) {
      raw += part_of_end;
      ++position_;
    }
  }
  number_ += in_long_line_ ? 0 : 1;
  line = POOL_LINE(std::move(raw), length);
  in_long_line_ = !line.HasEnd();
  return true;
}

bool POOL_LINES::CanHold(long long lines) const noexcept {
  struct stat status = {};
  if (::fstat(file_->Descriptor(), &status) != 0) {
    return false;
  }
  const long long unread = status.st_size - offset_ + static_cast<long long>(filled_ - position_);
  // One character and one line end each, which the last line may lack.
  return lines <= (unread + 1) / 2;
}

std::string_view POOL_LINES::Buffered() {
  if (position_ == filled_) {
    Fill();
  }
  return {buffer_.data() + position_, filled_ - position_};
}

void POOL_LINES::Fill() {
  ssize_t length = 0;
  do {
    length = ::pread(file_->Descriptor(), buffer_.data(), buffer_.size(), offset_);
  } while (length < 0 && errno == EINTR);
  if (length < 0) {
    Log() << LOGGING_LEVEL_T::ALARM << "can not read parameter file " << file_->Name() << ": "
          << SystemErrorText(errno);
    throw ERROR_CAN_NOT_READ_FILE();
  }
  position_ = 0;
  filled_ = static_cast<std::size_t>(length);
  offset_ += length;
}
