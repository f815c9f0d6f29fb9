#include "core/resample_input.h"

#include <limits>

#include "base/error_exception.h"
#include "base/unaligned.h"
#include "core/codec_visit.h"
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

std::int64_t RESAMPLE_INPUT::CountNonFinite() const {
  const unsigned char* const* valid = HasMask() ? mask.Rows<unsigned char>() : nullptr;
  std::int64_t count = 0;
  VisitCodec(slave.PixelType(), [&]<class CODEC>(CODEC) {
    const auto* const* pixels = slave.Rows<typename CODEC::PIXEL>();
    for (std::int64_t line = 0; line < slave.Height(); ++line) {
      for (std::int64_t sample = 0; sample < slave.Width(); ++sample) {
        const typename CODEC::PIXEL pixel = LoadUnaligned(pixels[line] + sample);
        if (valid == nullptr || valid[line][sample] != 0) {
          count += (CODEC::IsFinite(pixel.re) ? 0 : 1) + (CODEC::IsFinite(pixel.im) ? 0 : 1);
        }
      }
    }
  });
  return count;
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
