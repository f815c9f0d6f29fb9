#include "product/utc_time.h"

#include <chrono>
#include <cmath>
#include <regex>

#include "logging/formatted_text.h"

namespace {

constexpr double day_length = 86400.0;

}  // namespace

double SecondsBetween(const UTC_TIME& from, const UTC_TIME& to) noexcept {
  return static_cast<double>(to.day - from.day) * day_length + (to.second - from.second);
}

std::optional<UTC_TIME> UtcTimeOf(const std::string& text) {
  static const std::regex pattern(
      R"((\d{4})-(\d{2})-(\d{2})(?:[T ](\d{2}):(\d{2}):(\d{2}(?:\.\d*)?))?Z?)");
  std::smatch parts;
  if (!std::regex_match(text, parts, pattern)) {
    return std::nullopt;
  }
  const auto number = [&](std::size_t part) {
    return parts[part].matched ? std::stod(parts[part]) : 0.0;
  };
  const auto date = std::chrono::year(static_cast<int>(number(1))) /
                    std::chrono::month(static_cast<unsigned>(number(2))) /
                    std::chrono::day(static_cast<unsigned>(number(3)));
  if (!date.ok() || number(4) >= 24.0 || number(5) >= 60.0 || number(6) >= 61.0) {
    return std::nullopt;
  }
  return UTC_TIME{std::chrono::sys_days(date).time_since_epoch().count(),
                  3600.0 * number(4) + 60.0 * number(5) + number(6)};
}

std::string TextOf(const UTC_TIME& time) {
  const double days = std::floor(time.second / day_length);
  const std::chrono::year_month_day date(
      std::chrono::sys_days(std::chrono::days(time.day + static_cast<std::int64_t>(days))));
  const double second = time.second - days * day_length;
  const int minutes = static_cast<int>(second / 60.0);
  return FormattedText("%04d-%02u-%02uT%02d:%02d:%012.9f", int(date.year()), unsigned(date.month()),
                       unsigned(date.day()), minutes / 60, minutes % 60, second - 60.0 * minutes);
}
