#include "core/resample_input.h"

#include <limits>

#include "base/error_exception.h"
#include "logging/logging.h"

using enum LOGGING_LEVEL_T;

void RESAMPLE_INPUT::CheckSlave() const {
  constexpr std::int64_t largest = std::numeric_limits<int>::max();
  if (slave.Width() > largest || slave.Height() > largest) {
    Log() << ALARM << "slave has too many samples or lines: " << slave.Width() << "x"
          << slave.Height();
    throw ERROR_DATA();
  }
}

void RESAMPLE_INPUT::CheckMask() const {
  if (mask.Width() != slave.Width() || mask.Height() != slave.Height()) {
    Log() << ALARM << "mask has another size than the slave: " << mask.Width() << "x"
          << mask.Height() << " != " << slave.Width() << "x" << slave.Height();
    throw ERROR_DATA();
  }
}

RESAMPLE_JOB RESAMPLE_INPUT::Job(RESAMPLE_OUTPUT& output) const {
  CheckParts();
  CheckSlave();
  if (HasMask()) {
    CheckMask();
  }
  CheckOutput(output.slave);
  if (output.HasMask()) {
    CheckOutput(output.mask);
  }
  return {.input_slave = &slave,
          .input_mask = HasMask() ? &mask : nullptr,
          .input_width = static_cast<int>(slave.Width()),
          .input_height = static_cast<int>(slave.Height()),
          .output_slave = &output.slave,
          .output_mask = output.HasMask() ? &output.mask : nullptr,
          .output_width = n_samples,
          .output_height = n_lines,
          .mapping = mapping.get(),
          .kernel = &kernel,
          .doppler = &doppler,
          .imaging_mode = &imaging_mode,
          .ps_mode = ps_mode};
}

void RESAMPLE_INPUT::CheckParts() const {
  const struct {
    const char* part;
    bool is_filled;
  } parts[] = {{"slave", slave.PixelType() != PIXEL_TYPE::OTHERS},
               {"kernel", kernel.HasTable()},
               {"mapping", mapping != nullptr},
               {"Doppler centroid", doppler.CoefficientCount() > 0},
               {"output size", n_samples > 0 && n_lines > 0}};
  for (const auto& [part, is_filled] : parts) {
    if (!is_filled) {
      Log() << ALARM << "resampling without " << part;
      throw ERROR_ARGUMENT();
    }
  }
}

void RESAMPLE_INPUT::CheckOutput(const MEM_MGR& raster) const {
  if (raster.Width() != n_samples || raster.Height() != n_lines) {
    Log() << ALARM << "output raster has another size than the output: " << raster.Width() << "x"
          << raster.Height() << " != " << n_samples << "x" << n_lines;
    throw ERROR_ARGUMENT();
  }
}
