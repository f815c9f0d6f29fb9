#include "check_run/kernel_cost.h"

#include <array>
#include <iomanip>
#include <sstream>

namespace {

constexpr int few = 256;

/// The coherence with the truth that Kaiser kernels of 8 and 16 taps and weight 2.5 reach with so
/// many positions, as measured on noise at an oversampling of 1.25: see docs/algorithm.md.
struct MEASURED {
  int positions;
  double coherence_8;
  double coherence_16;
};
constexpr std::array<MEASURED, 3> measured = {
    {{16, 0.9440, 0.9502}, {64, 0.9807, 0.9875}, {1024, 0.9920, 0.9987}}};

}  // namespace

std::string CostOfSubpixelPositions(const INTERPOLATION_KERNEL& kernel) {
  const int positions = kernel.SubpixCount();
  if (positions >= few) {
    return "";
  }
  const MEASURED& likely = positions < 64 ? measured[0] : measured[1];
  const auto coherence = [&](const MEASURED& row) {
    return kernel.Length() < 12 ? row.coherence_8 : row.coherence_16;
  };
  std::ostringstream text;
  text << std::fixed << std::setprecision(4) << "KERNEL_SUBPIX_POS " << positions
       << " costs coherence: with " << likely.positions << " it was measured to be "
       << coherence(likely) << ", with 1024 " << coherence(measured[2]) << ". Take 1024 or more";
  return text.str();
}
