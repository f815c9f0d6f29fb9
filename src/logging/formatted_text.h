#pragma once

#include <cstdarg>
#include <string>

/// What printf would print, with a dot as decimal point in every locale; the format itself where it
/// can not be printed.
__attribute__((format(printf, 1, 2))) std::string FormattedText(const char* format, ...);
__attribute__((format(printf, 1, 0))) std::string FormattedTextOf(const char* format,
                                                                  std::va_list arguments);
