// Input: a text that is assigned to a value of every enumeration, which must take it if, whatever
// the case, it is one of the names (or descriptions, where those count too), and refuse it else.

#include <algorithm>
#include <cctype>
#include <type_traits>

#include "annotation/chirp_type.h"
#include "annotation/image_mode.h"
#include "annotation/look_direction.h"
#include "annotation/orbit_direction.h"
#include "annotation/polarisation.h"
#include "annotation/product_status.h"
#include "base/data_type.h"
#include "base/pool_type.h"
#include "fuzz/fuzz_target.h"
#include "interpolation/kernel_type.h"
#include "mapping/mapping_format_type.h"

namespace {

using BASIC::TYPES::ENUM_ENTRY;

std::string LowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char character) {
    return static_cast<char>(std::tolower(character));
  });
  return text;
}

/// Id of the first entry of that name, then of that description; -1 without one.
int ExpectedId(std::span<const ENUM_ENTRY> entries, bool with_descriptions,
               const std::string& text) {
  for (const auto member : {&ENUM_ENTRY::name, &ENUM_ENTRY::description}) {
    for (std::size_t id = 0; id < entries.size(); ++id) {
      if (LowerCase(entries[id].*member) == LowerCase(text)) {
        return static_cast<int>(id);
      }
    }
    if (!with_descriptions) {
      break;
    }
  }
  return -1;
}

template <class TYPE>
void CheckAssignment(const std::string& text) {
  constexpr bool with_descriptions = std::is_same_v<TYPE, BASIC::TYPES::KernelType> ||
                                     std::is_same_v<TYPE, BASIC::TYPES::MappingFormatType>;
  const int expected = ExpectedId(TYPE::Entries(), with_descriptions, text);
  TYPE value;
  try {
    value.Assign(text.c_str());
    Require(value.Id() == expected, "taken, but not for what it names: " + text);
  } catch (const BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE& error) {
    Require(expected == -1, "refused a valid name: " + text);
    Require(value.Id() == 0, "changed by a text that was refused");
    Require(std::string_view(error.what()).ends_with(text), "the error does not show the text");
    Require(std::string_view(error.ValidValues().Text()).starts_with("Valid values are: '"),
            "no list of valid values");
  }
}

template <class... TYPES>
void CheckAll(const std::string& text) {
  (CheckAssignment<TYPES>(text), ...);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  SilenceLog();
  const std::string text(TextOf(data, size).substr(0, TextOf(data, size).find('\0')));
  CheckAll<BASIC::TYPES::DataType, BASIC::TYPES::PoolType, BASIC::TYPES::KernelType,
           BASIC::TYPES::MappingFormatType, ZARVO::ImageMode, ZARVO::ProductStatus, SAR::ChirpType,
           SAR::LookDirection, SAR::OrbitDirection, SAR::Polarisation>(text);
  return 0;
}
