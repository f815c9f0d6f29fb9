#include "logging/formatted_text.h"

#include <cstdio>

#include "system/c_locale.h"

std::string FormattedText(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  // The analyzer does not see that va_start initialises its argument.
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
  std::string text = FormattedTextOf(format, arguments);
  va_end(arguments);
  return text;
}

std::string FormattedTextOf(const char* format, std::va_list arguments) {
  const C_LOCALE c_locale;
  std::va_list measured;
  va_copy(measured, arguments);
  // Nor that va_copy does.
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
  const int length = std::vsnprintf(nullptr, 0, format, measured);
  va_end(measured);
  if (length < 0) {
    return format;
  }
  std::string text(static_cast<std::size_t>(length), '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  return text;
}
