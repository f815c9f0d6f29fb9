#include "annotation/annotation_types.h"

#include <array>

using BASIC::TYPES::ENUM_ENTRY;

namespace SAR {

std::span<const ENUM_ENTRY> ChirpType::Entries() {
  static constexpr std::array<ENUM_ENTRY, 4> entries = {{{"-", 0, "-"},
                                                         {"UP", 0, "rising frequency"},
                                                         {"DOWN", 0, "falling frequency"},
                                                         {"-", 0, "-"}}};
  return entries;
}

std::span<const ENUM_ENTRY> LookDirection::Entries() {
  static constexpr std::array<ENUM_ENTRY, 4> entries = {
      {{"-", 0, "-"},
       {"LEFT", 0, "left of the flight direction"},
       {"RIGHT", 0, "right of the flight direction"},
       {"-", 0, "-"}}};
  return entries;
}

std::span<const ENUM_ENTRY> OrbitDirection::Entries() {
  static constexpr std::array<ENUM_ENTRY, 4> entries = {{{"-", 0, "-"},
                                                         {"ASCENDING", 0, "northwards"},
                                                         {"DESCENDING", 0, "southwards"},
                                                         {"-", 0, "-"}}};
  return entries;
}

std::span<const ENUM_ENTRY> Polarisation::Entries() {
  static constexpr std::array<ENUM_ENTRY, 10> entries = {
      {{"-", 0, "-"},
       {"HH", 0, "horizontal transmitted, horizontal received"},
       {"HV", 0, "horizontal transmitted, vertical received"},
       {"VH", 0, "vertical transmitted, horizontal received"},
       {"VV", 0, "vertical transmitted, vertical received"},
       {"RH", 0, "right circular transmitted, horizontal received"},
       {"RV", 0, "right circular transmitted, vertical received"},
       {"LH", 0, "left circular transmitted, horizontal received"},
       {"LV", 0, "left circular transmitted, vertical received"},
       {"-", 0, "-"}}};
  return entries;
}

}  // namespace SAR

namespace ZARVO {

std::span<const ENUM_ENTRY> ImageMode::Entries() {
  static constexpr std::array<ENUM_ENTRY, 16> entries = {
      {{"-", 0, "-"},
       {"SM", 1, "stripmap"},
       {"SL", 0, "spotlight"},
       {"HS", 0, "high-resolution spotlight"},
       {"HS300", 0, "high-resolution spotlight, 300 MHz"},
       {"ST", 0, "staring spotlight"},
       {"SC", 0, "ScanSAR"},
       {"WS", 0, "wide ScanSAR"},
       {"TS", 0, "TOPS ScanSAR"},
       {"TOPS", 0, "terrain observation by progressive scans"},
       {"IW", 0, "interferometric wide swath"},
       {"EW", 0, "extra wide swath"},
       {"WV", 0, "wave"},
       {"ATI", 1, "along-track interferometry"},
       {"ATIS", 1, "along-track interferometry, split antenna"},
       {"-", 0, "-"}}};
  return entries;
}

std::span<const ENUM_ENTRY> ProductStatus::Entries() {
  static constexpr std::array<ENUM_ENTRY, 10> entries = {
      {{"-", 0, "-"},
       {"POTENTIAL", 0, "acquisition is possible"},
       {"PLANNED", 0, "acquisition is planned"},
       {"ACQUIRED", 0, "acquired, not processed"},
       {"CANCELED", 0, "acquisition was given up"},
       {"FAILED", 0, "acquisition or processing failed"},
       {"ARCHIVED", 0, "processed and archived"},
       {"QUALITYDEGRADED", 0, "archived with degraded quality"},
       {"REJECTED", 0, "refused by quality control"},
       {"-", 0, "-"}}};
  return entries;
}

}  // namespace ZARVO
