#include "offsets/text_offsets.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "base/same_file.h"

namespace {

using FIELD = double OFFSET::*;

/// The members that the columns of a table belong to; null for those that do not count.
std::vector<FIELD> FieldsOf(const std::string& columns) {
  static const std::pair<const char*, FIELD> names[] = {
      {"sample", &OFFSET::x},        {"range", &OFFSET::range}, {"line", &OFFSET::y},
      {"azimuth", &OFFSET::azimuth}, {"snr", &OFFSET::snr},     {"-", nullptr}};
  std::vector<FIELD> fields;
  std::istringstream words(columns);
  for (std::string word; std::getline(words, word, ',');) {
    const auto* const found = std::find_if(std::begin(names), std::end(names),
                                           [&](const auto& name) { return word == name.first; });
    if (found == std::end(names)) {
      throw std::invalid_argument("no column of offsets is called '" + word + "'");
    }
    fields.push_back(found->second);
  }
  for (const auto& [name, field] : names) {
    const auto count = std::count(fields.begin(), fields.end(), field);
    const bool is_needed = field != nullptr && field != &OFFSET::snr;
    if ((field != nullptr && count > 1) || (is_needed && count == 0)) {
      throw std::invalid_argument(std::string("one of the columns has to be ") + name);
    }
  }
  return fields;
}

/// The words of a line: between commas or semicolons where it has any, else between blanks.
std::vector<std::string> WordsOf(const std::string& line) {
  std::vector<std::string> words;
  std::istringstream rest(line);
  const std::size_t separator = line.find_first_of(",;");
  if (separator == std::string::npos) {
    words.assign(std::istream_iterator<std::string>(rest), {});
    return words;
  }
  for (std::string word; std::getline(rest >> std::ws, word, line[separator]);) {
    words.push_back(word.substr(0, word.find_last_not_of(" \t\r") + 1));
  }
  return words;
}

std::optional<double> NumberOf(const std::string& word) {
  char* end = nullptr;
  const double number = std::strtod(word.c_str(), &end);
  return word.empty() || *end != '\0' ? std::nullopt : std::optional(number);
}

bool IsHeading(const std::vector<std::string>& words) {
  return std::none_of(words.begin(), words.end(),
                      [](const std::string& word) { return NumberOf(word).has_value(); });
}

/// None where a word that counts is missing or no number.
std::optional<OFFSET> OffsetOf(const std::vector<std::string>& words,
                               const std::vector<FIELD>& fields) {
  OFFSET offset;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const auto number = i < words.size() ? NumberOf(words[i]) : std::nullopt;
    if (i >= words.size() || (fields[i] != nullptr && !number)) {
      return std::nullopt;
    }
    if (fields[i] != nullptr) {
      offset.*fields[i] = *number;
    }
  }
  return offset;
}

std::vector<OFFSET> ReadTable(const TEXT_OFFSETS_OPTIONS& options) {
  const std::vector<FIELD> fields = FieldsOf(options.columns);
  std::ifstream file(options.path);
  if (!file) {
    throw std::runtime_error("can not open " + options.path);
  }
  const double sign = options.negate ? -1.0 : 1.0;
  std::vector<OFFSET> offsets;
  std::string text;
  for (int number = 1; std::getline(file, text); ++number) {
    const std::vector<std::string> words = WordsOf(text);
    if (words.empty() || words[0].starts_with('#') || (number == 1 && IsHeading(words))) {
      continue;
    }
    std::optional<OFFSET> offset = OffsetOf(words, fields);
    if (!offset) {
      throw std::runtime_error(options.path + ":" + std::to_string(number) + ": not the columns " +
                               options.columns);
    }
    offset->range *= sign;
    offset->azimuth *= sign;
    if (std::isfinite(offset->x) && std::isfinite(offset->y)) {
      offsets.push_back(*offset);
    }
  }
  if (offsets.empty()) {
    throw std::runtime_error("there are no offsets in " + options.path);
  }
  return offsets;
}

/// Where offsets lie along one axis.
struct AXIS {
  double first = 0.0;
  double length = 0.0;
  std::size_t places = 1;  ///< different positions

  double Posting() const { return places > 1 ? length / static_cast<double>(places - 1) : 1.0; }
  int CellOf(double position, double posting) const {
    return static_cast<int>(std::lround((position - first) / posting));
  }
};

AXIS AxisOf(const std::vector<OFFSET>& offsets, FIELD position) {
  std::vector<double> positions;
  positions.reserve(offsets.size());
  for (const OFFSET& offset : offsets) {
    positions.push_back(offset.*position);
  }
  std::sort(positions.begin(), positions.end());
  positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
  return {positions.front(), positions.back() - positions.front(), positions.size()};
}

}  // namespace

TEXT_OFFSETS::TEXT_OFFSETS(const TEXT_OFFSETS_OPTIONS& options) : path_(options.path) {
  Arrange(ReadTable(options));
}

void TEXT_OFFSETS::Arrange(std::vector<OFFSET> offsets) {
  const AXIS x = AxisOf(offsets, &OFFSET::x);
  const AXIS y = AxisOf(offsets, &OFFSET::y);
  posting_ = {x.Posting(), y.Posting()};
  // A grid of which less than a quarter is there is rather none.
  if (x.places * y.places > 4 * offsets.size()) {
    const double cell = std::sqrt(x.length * y.length / static_cast<double>(offsets.size()));
    posting_ = {std::max(cell, posting_.range), std::max(cell, posting_.azimuth)};
  }
  columns_ = x.CellOf(x.first + x.length, posting_.range) + 1;
  rows_.resize(static_cast<std::size_t>(y.CellOf(y.first + y.length, posting_.azimuth)) + 1);
  for (OFFSET& offset : offsets) {
    offset.column = x.CellOf(offset.x, posting_.range);
    rows_[static_cast<std::size_t>(y.CellOf(offset.y, posting_.azimuth))].push_back(offset);
  }
  for (std::vector<OFFSET>& row : rows_) {
    std::stable_sort(row.begin(), row.end(),
                     [](const OFFSET& a, const OFFSET& b) { return a.column < b.column; });
  }
}

bool TEXT_OFFSETS::IsMadeOf(const std::string& path) const {
  return IsSameFile(path_.c_str(), path.c_str());
}
