#pragma once

#include <clocale>
#include <string>

/// While it lives, the C library's conversions of the calling thread follow the C locale, whatever
/// the program around has set: numbers are read and written with a point.
class C_LOCALE {
 public:
  C_LOCALE() noexcept;
  ~C_LOCALE();
  C_LOCALE(const C_LOCALE&) = delete;
  C_LOCALE& operator=(const C_LOCALE&) = delete;

 private:
  locale_t before_;
};

/// The leading real number of a text, as `std::strtod` of the C locale reads it; 0 without one.
double RealFromText(const char* text) noexcept;

/// The system's words for an `errno`, in English.
std::string SystemErrorText(int error);
