#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// A moment in UTC, without leap seconds. Kept in two parts: seconds since a far epoch would leave
/// a double no fractions of a microsecond.
struct UTC_TIME {
  std::int64_t day = 0;  ///< since 1970-01-01
  double second = 0.0;   ///< of the day; may lie beyond its ends

  UTC_TIME operator+(double seconds) const noexcept { return {day, second + seconds}; }
};

/// From the first moment to the second one [s].
double SecondsBetween(const UTC_TIME& from, const UTC_TIME& to) noexcept;

/// Reads "2022-10-16T01:50:44.577283"; a blank may stand for the T, "Z" or nothing at the end, and
/// the time of day may be missing.
std::optional<UTC_TIME> UtcTimeOf(const std::string& text);

/// "2022-10-16T01:50:44.577283000"
std::string TextOf(const UTC_TIME& time);
