#pragma once

#include <optional>
#include <string>

/// The answer to "--help" or "--version" when this is the only argument: nothing is run then.
/// Otherwise none.
std::optional<std::string> HelpOrVersion(int argc, const char* const* argv);
