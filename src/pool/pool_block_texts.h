#pragma once

#include <string>
#include <string_view>

#include "pool/pool_value_type.h"

/// What is said of a vector or matrix whose block begins with `word` instead of "{", ends with
/// `word` instead of "}", or, with texts as elements, holds another number of them than the key
/// line says.
std::string NoOpeningBraceText(PoolValueType type, std::string_view word);
std::string NoClosingBraceText(PoolValueType type, std::string_view word);
