#include "product/utc_time.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace {

constexpr double day_length = 86400.0;

}  // namespace

double SecondsBetween(const UTC_TIME& from, const UTC_TIME& to) noexcept {
  return static_cast<double>(to.day - from.day) * day_length + (to.second - from.second);
}

std::optional<UTC_TIME> UtcTimeOf(const std::string& text) {
  int year = 0;
  unsigned month = 0;
  unsigned day = 0;
  int length = 0;
  if (std::sscanf(text.c_str(), "%4d-%2u-%2u%n", &year, &month, &day, &length) != 3) {
    return std::nullopt;
  }
  const auto date = std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day);
  int hour = 0;
  int minute = 0;
  double second = 0.0;
  const char* rest = text.c_str() + length;
  if (*rest == 'T' || (*rest == ' ' && rest[1] != '\0')) {
    if (std::sscanf(rest + 1, "%2d:%2d:%lf%n", &hour, &minute, &second, &length) != 3) {
      return std::nullopt;
    }
    rest += 1 + length;
  }
  const std::string end(rest);
  const bool is_time = hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0.0 &&
                       second < 61.0 && (end.empty() || end == "Z");
  if (!date.ok() || !is_time) {
    return std::nullopt;
  }
  return UTC_TIME{std::chrono::sys_days(date).time_since_epoch().count(),
                  3600.0 * hour + 60.0 * minute + second};
}

std::string TextOf(const UTC_TIME& time) {
  const double days = std::floor(time.second / day_length);
  const std::chrono::year_month_day date(
      std::chrono::sys_days(std::chrono::days(time.day + static_cast<std::int64_t>(days))));
  const double second = time.second - days * day_length;
  const int minutes = static_cast<int>(second / 60.0);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%012.9f", int(date.year()),
                unsigned(date.month()), unsigned(date.day()), minutes / 60, minutes % 60,
                second - 60.0 * minutes);
  return text.data();
}
