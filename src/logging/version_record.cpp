#include "logging/version_record.h"

#include <algorithm>

std::string DateFromKeyword(std::string_view keyword) {
  constexpr std::string_view begin = "$Date: ";
  constexpr std::size_t date_and_time = 19;  // "2020/02/06 13:09:23"
  if (!keyword.starts_with(begin) || keyword.size() < begin.size() + date_and_time) {
    return std::string(keyword);
  }
  std::string date(keyword.substr(begin.size(), date_and_time));
  std::replace(date.begin(), date.end(), '/', '-');
  std::replace(date.begin(), date.end(), ' ', 'T');
  return date;
}

std::string VersionLine(const VERSION_RECORD& record) {
  const std::string day = record.compile_date.substr(0, record.compile_date.find('T'));
  return record.display_name + " " + record.version + "  " + day + " compiled by " +
         record.compiled_by;
}
