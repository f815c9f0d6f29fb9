#include "system/c_locale.h"

#include <cstdlib>
#include <cstring>

namespace {

/// Lives as long as the process. The C library hands out one that it has: nothing is allocated.
locale_t TheCLocale() noexcept {
  static locale_t const c_locale = ::newlocale(LC_ALL_MASK, "C", nullptr);
  return c_locale;
}

}  // namespace

C_LOCALE::C_LOCALE() noexcept : before_(::uselocale(TheCLocale())) {}

C_LOCALE::~C_LOCALE() {
  ::uselocale(before_);
}

double RealFromText(const char* text) noexcept {
  const C_LOCALE c_locale;
  return std::strtod(text, nullptr);
}

std::string SystemErrorText(int error) {
  return ::strerror_l(error, TheCLocale());
}
