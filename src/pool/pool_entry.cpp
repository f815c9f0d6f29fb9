#include "pool/pool_entry.h"

#include <cstdlib>
#include <limits>

#include "pool/pool_block_texts.h"
#include "system/c_locale.h"

/// What an integer is checked for, with the texts of the refusals. Some texts name the next
/// smaller type; they are known to the tools that search logs and stay.
struct POOL_ENTRY::INTEGER_RULE {
  bool is_unsigned;
  long long smallest;
  long long largest;
  const char* floating_reason;
  const char* character_reason;
  const char* range_reason;  ///< null: the number is taken modulo the width of its type
};

namespace {

template <class T>
constexpr long long Smallest() {
  return std::numeric_limits<T>::min();
}
template <class T>
constexpr long long Largest() {
  return std::numeric_limits<T>::max();
}

/// The leading sign and digits; 0 when there are none.
long long LeadingInteger(const std::string& word) {
  return std::strtoll(word.c_str(), nullptr, 10);
}

/// The leading real number; 0 when there is none.
double LeadingReal(const std::string& word) {
  return RealFromText(word.c_str());
}

}  // namespace

bool FindKeyLine(POOL_LINES& lines, std::string_view key, POOL_LINE& line) {
  while (lines.Next(line)) {
    if (line.HasKey(key)) {
      return true;
    }
  }
  return false;
}

POOL_ENTRY::POOL_ENTRY(const POOL_FILE& file, const STRING& key, LOGGING_LEVEL_T not_found_level,
                       POOL_PLACE from)
    : key_(key), lock_(file, POOL_LOCK::KIND::SHARED), lines_(file, from) {
  if (!FindKeyLine(lines_, key.Text(), line_)) {
    if (not_found_level < LOGGING_LEVEL_T::NO_MESSAGE) {
      Log() << not_found_level << "parameter pool: parameter key >> " << key.Text()
            << " << not found\n";
    }
    throw PARAMETER_KEY_NOT_FOUND();
  }
  line_.NextWord();
  ExpectWord<ERROR_PARAMETER_POOL>(" << no type information found");
  type_ = PoolTypeOfWord(line_.NextWord());
}

void POOL_ENTRY::Expect(PoolValueType type) {
  if (type_ != type) {
    Refuse<WRONG_PARAMETER_TYPE>(std::string(" << type ") + PoolTypeWord(type) + " expected");
  }
}

void POOL_ENTRY::Read(bool& value) {
  const std::string word = ReadWord();
  if (word != "TRUE" && word != "FALSE") {
    RefuseValue<INVALID_PARAMETER_VALUE>(word, " but TRUE or FALSE are expected");
  }
  value = word == "TRUE";
}

void POOL_ENTRY::Read(unsigned char& value) {
  static constexpr INTEGER_RULE rule = {true,
                                        Smallest<unsigned char>(),
                                        Largest<unsigned char>(),
                                        " BYT (no floating) value expected",
                                        " BYT (no additional character) value expected",
                                        " (value is out of range) BYT expected"};
  value = static_cast<unsigned char>(ReadInteger(rule));
}

void POOL_ENTRY::Read(char& value) {
  static constexpr INTEGER_RULE rule = {false,
                                        Smallest<char>(),
                                        Largest<char>(),
                                        " BYT (no floating) value expected",
                                        " INT_8 (no additional character) value expected",
                                        " (value is out of range) INT_8 expected"};
  value = static_cast<char>(ReadInteger(rule));
}

void POOL_ENTRY::Read(short& value) {
  static constexpr INTEGER_RULE rule = {false,
                                        Smallest<short>(),
                                        Largest<short>(),
                                        " INT_8 (no floating) value expected",
                                        " INT_8 (no additional character) value expected",
                                        " (value is out of range) INT_16 expected"};
  value = static_cast<short>(ReadInteger(rule));
}

void POOL_ENTRY::Read(int& value) {
  static constexpr INTEGER_RULE rule = {false,
                                        Smallest<int>(),
                                        Largest<int>(),
                                        " INT_16 (no floating) value expected",
                                        " INT_32 (no additional character) value expected",
                                        nullptr};
  value = static_cast<int>(ReadInteger(rule));
}

void POOL_ENTRY::Read(long long& value) {
  static constexpr INTEGER_RULE rule = {false,
                                        Smallest<long long>(),
                                        Largest<long long>(),
                                        " INT_32 (no floating) value expected",
                                        " INT_64 (no additional character) value expected",
                                        nullptr};
  value = ReadInteger(rule);
}

void POOL_ENTRY::Read(float& value) {
  value = static_cast<float>(
      ReadReal(std::numeric_limits<float>::max(), " (value is out of range) FLT_6 expected"));
}

void POOL_ENTRY::Read(double& value) {
  value = ReadReal(std::numeric_limits<double>::max(), " (value is out of range) FLT_15 expected");
}

/// Without a quote in front: all up to the end of the line. With one: all up to the next quote
/// or the end of the line; a backslash is dropped and makes the next character literal.
void POOL_ENTRY::Read(STRING& value) {
  ExpectWord<INVALID_PARAMETER_VALUE>(" << no parameter value in file");
  const std::string_view rest = line_.Rest();
  if (rest.front() != '"') {
    value = std::string(rest).c_str();
    line_.MoveBehind(rest);
    return;
  }
  std::string text;
  std::size_t end = 1;
  for (; end < rest.size() && rest[end] != '"'; ++end) {
    if (rest[end] == '\\' && ++end == rest.size()) {
      break;
    }
    text += rest[end];
  }
  value = text.c_str();
  line_.MoveBehind(rest.substr(0, end + 1));
}

void POOL_ENTRY::Read(TUPLE<STRING>& value) {
  constexpr const char* reason = " << no correct string tuple format (missing >>\"<< ?)";
  Read(value.x);
  ExpectWord<INVALID_PARAMETER_VALUE>(reason);
  line_.NextWord();  // the separator, whatever it is
  ExpectWord<INVALID_PARAMETER_VALUE>(reason);
  Read(value.y);
}

void POOL_ENTRY::ReadOpeningBrace(PoolValueType type) {
  if (!lines_.Next(line_)) {
    Refuse<ERROR_PARAMETER_POOL>(" << no { due to end of file");
  }
  if (const std::string_view word = line_.NextWord(); word != "{") {
    Refuse<ERROR_PARAMETER_POOL>(NoOpeningBraceText(type, word));
  }
}

void POOL_ENTRY::NextElementLine(PoolValueType type, int index) {
  if (!lines_.Next(line_)) {
    Refuse<ERROR_PARAMETER_POOL>(" << no value for index " + std::to_string(index) +
                                 " due to end of file");
  }
  if (type == PoolValueType::STR_V || type == PoolValueType::STR_STR_V) {
    RefuseEarlyEnd(type);
  }
}

void POOL_ENTRY::RefuseEarlyEnd(PoolValueType type) {
  const std::string_view word = line_.NextWord();
  if (word == "}" && !AtWord()) {
    Refuse<ERROR_PARAMETER_POOL>(NoClosingBraceText(type, word));
  }
  line_.MoveTo(word);
}

void POOL_ENTRY::ReadClosingBrace(PoolValueType type) {
  if (!lines_.Next(line_)) {
    Refuse<ERROR_PARAMETER_POOL>(" << no } due to end of file");
  }
  if (const std::string_view word = line_.NextWord(); word != "}") {
    Refuse<ERROR_PARAMETER_POOL>(NoClosingBraceText(type, word));
  }
}

RANGE<int> POOL_ENTRY::ReadRange() {
  constexpr const char* reason = " << no correct range for VECTOR or MATRIX";
  int first = 0;
  int count = 0;
  Read(first);
  ExpectWord<INVALID_PARAMETER_VALUE>(reason);
  Read(count);
  if (first < 0 || count < 0 || first > std::numeric_limits<int>::max() - count) {
    Refuse<INVALID_PARAMETER_VALUE>(reason);
  }
  return {first, count};
}

std::string POOL_ENTRY::ReadWord() {
  ExpectWord<INVALID_PARAMETER_VALUE>(" << no parameter value in file");
  return std::string(line_.NextWord());
}

bool POOL_ENTRY::AtWord() {
  return !line_.Rest().empty();
}

long long POOL_ENTRY::ReadInteger(const INTEGER_RULE& rule) {
  const std::string word = ReadWord();
  if (word.find('.') != std::string::npos && word.find('E') != std::string::npos) {
    RefuseValue<INVALID_PARAMETER_VALUE>(word, rule.floating_reason);
  }
  if (rule.is_unsigned && word.find('-') != std::string::npos) {
    RefuseValue<INVALID_PARAMETER_VALUE>(word, " BYT (unsigned) value expected");
  }
  if (word.find_first_not_of("+-0123456789") != std::string::npos) {
    RefuseValue<INVALID_PARAMETER_VALUE>(word, rule.character_reason);
  }
  const long long value = LeadingInteger(word);
  if (rule.range_reason != nullptr && (value < rule.smallest || value > rule.largest)) {
    RefuseValue<PARAMETER_OUT_OF_BOUNDS>(word, rule.range_reason);
  }
  return value;
}

double POOL_ENTRY::ReadReal(double limit, const char* range_reason) {
  const std::string word = ReadWord();
  const double value = LeadingReal(word);
  if (value > limit || value < -limit) {
    RefuseValue<PARAMETER_OUT_OF_BOUNDS>(word, range_reason);
  }
  return value;
}

void POOL_ENTRY::LogReason(std::string_view reason) {
  failure_reason_ = reason;
  Log() << LOGGING_LEVEL_T::ALARM << "parameter pool: parameter key >> " << key_.Text() << reason
        << "\n";
}
