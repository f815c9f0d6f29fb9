#pragma once

#include <cstdint>
#include <cstring>

/// The slave and its mask as row tables.
template <class PIXEL>
struct SLAVE_ROWS {
  const PIXEL* const* pixels;
  const unsigned char* const* mask;  ///< null when every pixel is valid
  int width;
  int height;

  /// Whether `length` pixels of each of as many lines are valid. Only with a mask.
  bool IsValid(std::int64_t line, std::int64_t sample, int length) const {
    std::uint64_t zeros = 0;
    for (int k = 0; k < length; ++k) {
      const unsigned char* valid = mask[line + k] + sample;
      int j = 0;
      for (; j + word_size <= length; j += word_size) {
        std::uint64_t word = 0;
        std::memcpy(&word, valid + j, sizeof(word));
        zeros |= ZerosOf(word);
      }
      for (; j < length; ++j) {
        zeros |= valid[j] == 0 ? 1U : 0U;
      }
    }
    return zeros == 0;
  }

 private:
  static constexpr int word_size = 8;

  /// 0 when no byte is 0.
  static std::uint64_t ZerosOf(std::uint64_t word) {
    return (word - 0x0101010101010101U) & ~word & 0x8080808080808080U;
  }
};
