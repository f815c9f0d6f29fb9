#include "pools/pool_listing.h"

#include <fcntl.h>

#include <array>
#include <charconv>
#include <cmath>
#include <map>
#include <optional>
#include <stdexcept>

#include "pool/parameter_pool.h"
#include "pool/pool_contents.h"
#include "pool/pool_entry.h"
#include "pools/pool_words.h"

namespace {

using JSON = nlohmann::ordered_json;

/// The shortest text that reads back as the number, so that 0.1f is told as 0.1.
template <class REAL>
JSON RealToJson(REAL value) {
  if (std::isnan(value)) {
    return "nan";
  }
  std::array<char, 64> text{};
  *std::to_chars(text.data(), text.data() + text.size() - 1, value).ptr = '\0';
  return std::strtod(text.data(), nullptr);
}

template <class T>
JSON ToJson(const T& value) {
  if constexpr (std::is_floating_point_v<T>) {
    return RealToJson(value);
  } else if constexpr (std::is_same_v<T, bool>) {
    return value;
  } else if constexpr (std::is_integral_v<T>) {
    return static_cast<long long>(value);
  } else if constexpr (std::is_same_v<T, STRING>) {
    return value.Text();
  } else if constexpr (requires { value.re; }) {
    return {ToJson(value.re), ToJson(value.im)};
  } else if constexpr (requires { value.x; }) {
    return {ToJson(value.x), ToJson(value.y)};
  } else {
    return {ToJson(value.key), ToJson(value.value)};
  }
}

template <class T>
JSON ToJson(const ARRAY<T>& vector) {
  JSON elements = JSON::array();
  for (int i = 0; i < vector.Size(); ++i) {
    elements.push_back(ToJson(vector.Pointer(0)[i]));
  }
  return elements;
}

template <class T>
JSON ToJson(const MATRIX<T>& matrix) {
  JSON rows = JSON::array();
  for (int row = matrix.Rows().First(); row <= matrix.Rows().Last(); ++row) {
    JSON elements = JSON::array();
    for (int column = matrix.Columns().First(); column <= matrix.Columns().Last(); ++column) {
      elements.push_back(ToJson(matrix.At(row, column)));
    }
    rows.push_back(elements);
  }
  return rows;
}

std::vector<std::string> WordsOf(POOL_LINE line) {
  std::vector<std::string> words;
  for (std::string_view word = line.NextWord(); !word.empty(); word = line.NextWord()) {
    words.emplace_back(word);
  }
  return words;
}

template <class T>
struct ELEMENT {
  using TYPE = T;
};
template <class T>
struct ELEMENT<ARRAY<T>> {
  using TYPE = T;
};
template <class T>
struct ELEMENT<MATRIX<T>> {
  using TYPE = T;
};

/// Texts are whatever stands there.
template <class T>
constexpr bool is_text = std::is_same_v<T, STRING> || std::is_same_v<T, TUPLE<STRING>>;

/// Silence for the log while it lives: what is found is told in another way.
class SILENT_SCREEN {
 public:
  SILENT_SCREEN() { Log().SetScreenLevel(LOGGING_LEVEL_T::NO_MESSAGE); }
  ~SILENT_SCREEN() { Log().SetScreenLevel(before_); }
  SILENT_SCREEN(const SILENT_SCREEN&) = delete;
  SILENT_SCREEN& operator=(const SILENT_SCREEN&) = delete;

 private:
  LOGGING_LEVEL_T before_ = Log().ScreenLevel();
};

class LISTER {
 public:
  explicit LISTER(const POOL_FILE& file)
      : file_(file), lines_(ReadPoolLines(file)), numbers_(lines_.size()) {
    POOL_PLACE place;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
      const bool goes_on = i > 0 && !lines_[i - 1].HasEnd();
      numbers_[i] = place.number + (goes_on ? 0 : 1);
      if (lines_[i].IsKeyLine()) {
        found_.try_emplace(std::string(lines_[i].Key()), place);
      }
      place = {place.offset + static_cast<long long>(lines_[i].Raw().size()), numbers_[i]};
    }
  }

  POOL_LISTING List() {
    std::size_t behind = 0;
    for (const POOL_ENTRY_LINES& entry : PoolEntryLines(lines_)) {
      // What a damaged block leaves behind it is told by the fault of its entry.
      if (in_damaged_block_ && TypeOnKeyLine(lines_[entry.begin]) == PoolValueType::UNKNOWN) {
        behind = entry.end;
        continue;
      }
      FindStrayLines(behind, entry.begin);
      Add(entry);
      behind = entry.end;
    }
    FindStrayLines(behind, lines_.size());
    return std::move(listing_);
  }

 private:
  void FindStrayLines(std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end && !in_damaged_block_; ++i) {
      const std::vector<std::string> words = WordsOf(lines_[i]);
      if (!words.empty() && !words[0].starts_with('#')) {
        listing_.faults.push_back({numbers_[i], words[0], "indented line outside of any block"});
      }
    }
  }

  void Add(const POOL_ENTRY_LINES& place) {
    const std::vector<std::string> words = WordsOf(lines_[place.begin]);
    const std::string key(lines_[place.begin].Key());
    LISTED_ENTRY entry = {key, words.size() > 1 ? words[1] : "", numbers_[place.begin], nullptr};
    if (const auto [first, is_new] = first_lines_.emplace(key, entry.line); !is_new) {
      AddFault(entry, entry.line,
               "stands on line " + std::to_string(first->second) + " already, which counts");
      return;
    }
    const std::size_t n_faults = listing_.faults.size();
    if (const long long read_line = found_.at(key).number + 1; read_line < entry.line) {
      AddFault(
          entry, entry.line,
          "is hidden by line " + std::to_string(read_line) + ", in the block of another entry");
      listing_.entries.push_back(std::move(entry));
      return;
    }
    if (!lines_[place.begin].HasEnd() && place.begin + 1 < lines_.size()) {
      AddFault(entry, entry.line,
               "only " + std::to_string(pool_line_length) + " characters of the line are read");
    }
    const PoolValueType type = PoolTypeOfWord(entry.type);
    if (entry.type.empty()) {
      AddFault(entry, entry.line, "no type information found");
    } else if (!VisitPoolType(type, [&](auto value) { Read(place, entry, value); })) {
      AddFault(entry, entry.line, entry.type + " is no type");
    }
    in_damaged_block_ =
        listing_.faults.size() > n_faults && (IsVectorType(type) || IsMatrixType(type));
    listing_.entries.push_back(std::move(entry));
  }

  template <class T>
  void Read(const POOL_ENTRY_LINES& place, LISTED_ENTRY& entry, T& value) {
    std::optional<POOL_ENTRY> reader;
    try {
      reader.emplace(file_, STRING(entry.key.c_str()), LOGGING_LEVEL_T::NO_MESSAGE,
                     found_.at(entry.key));
      reader->Read(value);
      entry.value = ToJson(value);
      CheckWords<typename ELEMENT<T>::TYPE>(place, entry);
    } catch (const ERROR_EXCEPTION& error) {
      const std::string reason = reader ? reader->FailureReason() : "";
      AddFault(entry, reader ? reader->LineNumber() : entry.line,
               reason.empty() ? error.what() : reason);
    }
  }

  /// Readers take the number at the beginning of a word, 0 without one, and integers modulo the
  /// width of their type.
  template <class T>
  void CheckWords(const POOL_ENTRY_LINES& place, const LISTED_ENTRY& entry) {
    constexpr std::size_t words_before_value = 2;
    if constexpr (!is_text<T>) {
      const bool has_block =
          IsVectorType(PoolTypeOfWord(entry.type)) || IsMatrixType(PoolTypeOfWord(entry.type));
      for (std::size_t i = place.begin + (has_block ? 1 : 0); i < place.end; ++i) {
        const std::vector<std::string> words = WordsOf(lines_[i]);
        if (has_block && (words.empty() || words[0] == "{" || words[0] == "}")) {
          continue;
        }
        try {
          T value{};
          POOL_WORDS(std::span(words).subspan(has_block ? 0 : words_before_value)).Take(value);
        } catch (const std::invalid_argument& error) {
          AddFault(entry, numbers_[i], error.what());
        }
      }
    }
  }

  /// Reasons of the reader begin with a separator.
  void AddFault(const LISTED_ENTRY& entry, long long line, std::string_view reason) {
    reason.remove_prefix(std::min(reason.find_first_not_of(" <"), reason.size()));
    listing_.faults.push_back({line, entry.key, std::string(reason)});
  }

  const POOL_FILE& file_;
  std::vector<POOL_LINE> lines_;
  std::vector<long long> numbers_;
  std::map<std::string, POOL_PLACE> found_;       ///< where readers find a key, blocks included
  std::map<std::string, long long> first_lines_;  ///< of the entries
  bool in_damaged_block_ = false;
  POOL_LISTING listing_;
};

}  // namespace

POOL_LISTING ListPool(const std::string& path) {
  const PARAMETER_POOL refuses_what_is_no_pool(path.c_str());
  const SILENT_SCREEN silence;
  const POOL_FILE file(path.c_str(), O_RDONLY);
  const POOL_LOCK lock(file, POOL_LOCK::KIND::SHARED);
  return LISTER(file).List();
}
