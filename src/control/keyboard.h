#pragma once

#include <string>

/// Asks for a parameter on standard output ("NAME := ") and reads one word from standard input;
/// what follows the word is left for the next question. When standard error is a terminal, the hint
/// is shown there first.
///
/// SIGALRM ends the process when no word comes within 120 seconds, or the number of seconds in
/// the environment variable "SECONDS_ON_PARAMETER_INPUT"; 0 waits without limit. At the end of
/// the input an ALARM line names the parameter and a `const char*` is thrown.
std::string AskAtKeyboard(const std::string& name, const std::string& hint);
