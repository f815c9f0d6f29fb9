#include "annotation/image_mode.h"

#include <array>

namespace ZARVO {

std::span<const BASIC::TYPES::ENUM_ENTRY> ImageMode::Entries() {
  static constexpr std::array<BASIC::TYPES::ENUM_ENTRY, 16> entries = {
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

}  // namespace ZARVO
