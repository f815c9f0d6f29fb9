// Input: numbers as text. Every one of them, scaled by powers of two, its neighbours and the
// decision points next to it are encoded by the codec and by the row functions of every level of
// the processor. What comes out is compared with a table of what all 65536 patterns stand for,
// which is built from the definition of the format alone.

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

#include "core/pixel_codec.h"
#include "core/supported_levels.h"
#include "fuzz/fuzz_target.h"

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr unsigned largest_finite = 0x7BFF;

/// The number of every pattern: (1024 + mantissa) 2^(exponent - 25), which ldexp gives exactly,
/// also for exponent 0, but 0 for the pattern 0; infinities and NaN for exponent 31.
std::vector<double> BuildTable() {
  std::vector<double> table(0x10000);
  for (unsigned pattern = 1; pattern < table.size(); ++pattern) {
    const int exponent = static_cast<int>((pattern & 0x7FFF) >> 10);
    const unsigned mantissa = pattern & 0x3FF;
    double magnitude = std::ldexp(1024.0 + mantissa, exponent - 25);
    if (exponent == 31) {
      magnitude = mantissa == 0 ? infinity : std::numeric_limits<double>::quiet_NaN();
    }
    table[pattern] = (pattern & 0x8000) != 0 ? -magnitude : magnitude;
  }
  return table;
}

const std::vector<double>& Table() {
  static const std::vector<double> table = BuildTable();
  return table;
}

/// The pattern of the nearest number, away from zero from half-way on; the largest finite ones for
/// what is beyond them, and 0 for what would need exponent 0.
unsigned ExpectedPattern(double value) {
  const unsigned sign = std::signbit(value) ? 0x8000 : 0;
  if (std::isnan(value)) {
    return sign | 0x7FFF;
  }
  const double magnitude = std::abs(value);
  const auto begin = Table().begin();
  // The first one that is not smaller. Half-way comparisons are exact: neighbours are less than a
  // factor of two apart.
  const auto above = std::lower_bound(begin, begin + largest_finite, magnitude);
  auto pattern = static_cast<unsigned>(above - begin);
  if (pattern > 1 && magnitude - Table()[pattern - 1] < Table()[pattern] - magnitude) {
    --pattern;
  }
  return pattern < 0x400 ? 0 : sign | pattern;
}

int ExpectedInteger(double value) {
  if (std::isnan(value)) {
    return 0;
  }
  // Exact, while adding one half is not: the largest double below 0.5 becomes 1.
  const double sum = std::abs(value) + 0.5;
  return static_cast<int>(std::clamp(std::copysign(std::floor(sum), value), -32768.0, 32767.0));
}

/// Numbers of one row, encoded by all levels of the processor.
template <class CODEC, class EXPECTED>
void CheckRow(CODEC, const ROW_FUNCTIONS& row_functions, const double (&row)[strip_columns],
              EXPECTED expected) {
  using PIXEL = typename CODEC::PIXEL;
  const PIXEL_FUNCTIONS<PIXEL>& functions = row_functions.pixels.Of<PIXEL>();
  PIXEL encoded[strip_columns] = {};
  const ENCODED_ROW result = functions.encode({row, row}, strip_columns, encoded);
  if (!result.is_complete) {
    Require(std::any_of(row, row + strip_columns,
                        [](double value) { return !(std::abs(value) < 0x1p30); }),
            "ordinary numbers were not encoded");
    return;
  }
  int at_ends = 0;
  for (int x = 0; x < strip_columns; ++x) {
    const auto pattern = static_cast<decltype(PIXEL::re)>(expected(row[x]));
    Require(encoded[x].re == pattern && encoded[x].im == pattern, "encoded row");
    at_ends += CODEC::IsAtEnd(pattern) ? 2 : 0;
  }
  Require(result.at_ends == at_ends, "components at an end of the range");
}

void CheckDecoding() {
  for (unsigned pattern = 0; pattern < 0x10000; ++pattern) {
    const double value = Table()[pattern];
    const auto component = static_cast<std::uint16_t>(pattern);
    const double decoded = BINARY_16_CODEC::Decode(component);
    Require(std::isnan(value) ? std::isnan(decoded) : decoded == value, "decoded");
    if (std::isnan(value)) {
      constexpr std::uint64_t quiet = 0x7FFFFFFFFFFFFFFF;
      Require((std::bit_cast<std::uint64_t>(decoded) & quiet) == quiet, "bits of a NaN");
    }
    for (const LEVEL& level : SupportedLevels()) {
      const BINARY_16_CODEC::PIXEL pixel = {component, component};
      double re = 0.0;
      double im = 0.0;
      level.functions->pixels.Of<BINARY_16_CODEC::PIXEL>().decode(&pixel, 1, {&re, &im});
      // Infinities may become NaN there.
      Require(std::isfinite(value) ? re == value && im == value : !std::isfinite(re),
              "decoded row");
    }
  }
}

void CheckEncoding(const double (&row)[strip_columns]) {
  for (const double value : row) {
    Require(BINARY_16_CODEC::Encode(value) == ExpectedPattern(value), "encoded");
    Require(INT_16_CODEC::Encode(value) == ExpectedInteger(value), "encoded integer");
  }
  for (const LEVEL& level : SupportedLevels()) {
    CheckRow(BINARY_16_CODEC(), *level.functions, row, ExpectedPattern);
    CheckRow(INT_16_CODEC(), *level.functions, row, ExpectedInteger);
  }
}

/// A row of numbers around one: itself and the limits between patterns above and below it, with
/// their neighbours, all with both signs.
void CheckAround(double value) {
  const unsigned pattern = std::min(ExpectedPattern(std::abs(value)), largest_finite - 1);
  const double below = Table()[pattern];
  const double above = Table()[pattern + 1];
  double row[strip_columns] = {};
  int x = 0;
  for (const double number : {value, below, above, (below + above) / 2, std::trunc(value) + 0.5}) {
    for (const double near :
         {number, std::nextafter(number, infinity), std::nextafter(number, -infinity)}) {
      row[x++] = near;
      row[x++] = -near;
    }
  }
  CheckEncoding(row);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool is_decoding_checked = (CheckDecoding(), true);
  Require(is_decoding_checked, "decoding");
  const std::string text(TextOf(data, size));
  const char* position = text.c_str();
  constexpr int number_limit = 8;
  for (int i = 0; i < number_limit; ++i) {
    char* end = nullptr;
    const double number = std::strtod(position, &end);
    if (end == position) {
      break;
    }
    position = end;
    for (int exponent = -20; exponent <= 20; ++exponent) {
      CheckAround(std::ldexp(number, exponent));
    }
  }
  return 0;
}
