#pragma once

#include <string>
#include <string_view>

/// A text as it can stand in an element or in a quoted attribute. Control characters and bytes
/// that are no UTF-8 become U+FFFD.
std::string Escaped(std::string_view text);

/// Bytes as text for a "data:" address.
std::string Base64(std::string_view bytes);
