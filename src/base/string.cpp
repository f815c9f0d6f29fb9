#include "base/string.h"

#include <cctype>
#include <cstring>
#include <new>

#include "base/error_exception.h"

namespace {

std::unique_ptr<char[]> CopyText(const char* text, std::size_t size) {
  std::unique_ptr<char[]> copy(new (std::nothrow) char[size]);
  if (!copy) {
    throw ERROR_NO_MEMORY();
  }
  std::memcpy(copy.get(), text, size);
  return copy;
}

}  // namespace

STRING::STRING(const char* text)
    : text_(CopyText(text, std::strlen(text) + 1)), size_(std::strlen(text) + 1) {}

STRING& STRING::operator=(const STRING& other) {
  if (this != &other) {
    *this = other.Text();
  }
  return *this;
}

STRING& STRING::operator=(const char* text) {
  const std::size_t size = std::strlen(text) + 1;
  text_ = CopyText(text, size);
  size_ = size;
  return *this;
}

void STRING::ToLower() noexcept {
  for (char* character = text_.get(); *character != '\0'; ++character) {
    *character = static_cast<char>(std::tolower(static_cast<unsigned char>(*character)));
  }
}

bool operator==(const STRING& a, const STRING& b) noexcept {
  return std::strcmp(a.Text(), b.Text()) == 0;
}
