#pragma once

#include <cstddef>
#include <memory>

/// A heap-owned, NUL-terminated text. Every STRING, the empty one too, owns an allocation of
/// exactly its text and the NUL. A failed allocation throws ERROR_NO_MEMORY.
class STRING {
 public:
  STRING() : STRING("") {}
  STRING(const char* text);
  STRING(const STRING& other) : STRING(other.Text()) {}
  STRING& operator=(const STRING& other);
  STRING& operator=(const char* text);
  ~STRING() = default;

  const char* Text() const noexcept { return text_.get(); }
  /// Allocated size in bytes: text length + 1.
  std::size_t Size() const noexcept { return size_; }
  std::size_t Length() const noexcept { return size_ - 1; }

  /// Lower-cases in place, character by character.
  void ToLower() noexcept;

  friend bool operator==(const STRING& a, const STRING& b) noexcept;

 private:
  std::unique_ptr<char[]> text_;
  std::size_t size_ = 0;
};
