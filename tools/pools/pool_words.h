#pragma once

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "pool/pool_value_type.h"

/// Makes values of words and takes nothing for granted: every word has to be one number, TRUE,
/// FALSE or text that the type holds. Throws std::invalid_argument, which tells the word and why.
class POOL_WORDS {
 public:
  explicit POOL_WORDS(std::span<const std::string> words) : words_(words) {}

  bool Empty() const noexcept { return words_.empty(); }

  /// Takes the words of one value.
  template <class T>
  void Take(T& value) {
    if constexpr (std::is_same_v<T, bool>) {
      value = TakeTruth();
    } else if constexpr (std::is_integral_v<T>) {
      value =
          static_cast<T>(TakeInteger(std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
    } else if constexpr (std::is_floating_point_v<T>) {
      value = static_cast<T>(TakeReal(std::numeric_limits<T>::max()));
    } else if constexpr (std::is_same_v<T, STRING>) {
      value = TakeWord().c_str();
    } else if constexpr (requires { value.re; }) {
      Take(value.re);
      Take(value.im);
    } else if constexpr (requires { value.x; }) {
      Take(value.x);
      Take(value.y);
    } else {
      Take(value.key);
      Take(value.value);
    }
  }

 private:
  const std::string& TakeWord() {
    if (words_.empty()) {
      throw std::invalid_argument("a value is missing");
    }
    const std::string& word = words_.front();
    words_ = words_.subspan(1);
    return word;
  }

  bool TakeTruth() {
    const std::string& word = TakeWord();
    if (word != "TRUE" && word != "FALSE") {
      throw std::invalid_argument(word + " is neither TRUE nor FALSE");
    }
    return word == "TRUE";
  }

  long long TakeInteger(long long least, long long most) {
    const std::string& word = TakeWord();
    const char* begin = word.c_str() + (word.starts_with('+') ? 1 : 0);
    const char* end = word.c_str() + word.size();
    long long value = 0;
    const auto [rest, error] = std::from_chars(begin, end, value);
    if (error == std::errc::invalid_argument || rest != end) {
      throw std::invalid_argument(word + " is no integer");
    }
    if (error != std::errc() || value < least || value > most) {
      throw std::invalid_argument(word + " is beyond the type");
    }
    return value;
  }

  double TakeReal(double most) {
    const std::string& word = TakeWord();
    char* rest = nullptr;
    const double value = std::strtod(word.c_str(), &rest);
    if (word.empty() || rest != word.c_str() + word.size()) {
      throw std::invalid_argument(word + " is no number");
    }
    if (std::abs(value) > most) {
      throw std::invalid_argument(word + " is beyond the type");
    }
    return value;
  }

  std::span<const std::string> words_;
};
