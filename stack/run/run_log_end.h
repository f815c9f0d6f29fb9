#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// What a run's log and screen tell about how it goes.

/// The percentage reported last, of 0 to 100; nothing before the first one.
std::optional<int> PercentDone(const std::filesystem::path& log);

/// What these ALARM texts of a failure, in their order, say to a person: the first one that names a
/// file, else the first one, with the system's own words where a text only has its code. Empty
/// without texts.
std::string ReasonAmong(const std::vector<std::string>& alarms);

/// The same of the log. Without any, the last line on the screen, as of a program that could not be
/// loaded; empty without that as well.
std::string ReasonOfFailure(const std::filesystem::path& log, const std::filesystem::path& screen);

/// The number of the signal that the log says the run has ended with, 0 for none. Of most signals a
/// run tells itself, and ends with an ordinary exit status.
int SignalInLog(const std::filesystem::path& log);
