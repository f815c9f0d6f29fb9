#include "check_run/run_check.h"

#include <algorithm>
#include <utility>

#include "app/resample_thread.h"
#include "control/processors.h"
#include "core/core_variant.h"
#include "mapping/mapping_matrix.h"

namespace {

std::int64_t PixelBytes(const MEM_MGR& raster) {
  return raster.Width() * raster.Height() * raster.BytesPerPixel();
}

/// Samples or lines of the output in front of the last node of the matrices.
std::int64_t CoveredLength(unsigned nodes, int subsampling, int length) {
  return nodes < 1 ? 0 : std::min<std::int64_t>((std::int64_t{nodes} - 1) * subsampling, length);
}

}  // namespace

RUN_CHECK::~RUN_CHECK() {
  for (const auto& pool : {insar_pool_.get(), log_pool_.get()}) {
    if (pool != nullptr) {
      pool->Discard();
    }
  }
}

void RUN_CHECK::AllocateOutput() {
  CheckOutputPaths();
  if (parameters_.slave_out) {
    // Any type will do to look at the path.
    CheckCreate(*parameters_.slave_out,
                HasSlave() ? input_slave_.PixelType() : PIXEL_TYPE::C_INT_16);
  }
  if (parameters_.mask_out) {
    CheckCreate(*parameters_.mask_out, PIXEL_TYPE::U_INT_8);
  }
}

void RUN_CHECK::CheckCreate(const std::string& path, PIXEL_TYPE type) {
  findings_.Take([&] {
    MEM_MGR::CheckCreate(path.c_str(), 0, 0, parameters_.n_samples - 1, parameters_.n_lines - 1,
                         type);
  });
}

void RUN_CHECK::PerformProcessing() {
  if (HasSlave()) {
    findings_.Take([&] { CheckPixelTypeIsSupported(input_slave_.PixelType()); });
  }
  // Both warn about what the environment says.
  NumberOfProcessors();
  ChooseCoreVariant();
  if (findings_.Failures().empty()) {
    JudgeMapping();
    figures_ = Measure();
    JudgeFigures(*figures_);
  }
}

RUN_FIGURES RUN_CHECK::Measure() const {
  RUN_FIGURES figures;
  figures.n_samples = parameters_.n_samples;
  figures.n_lines = parameters_.n_lines;
  figures.pixel_type = input_slave_.PixelType();
  figures.coverage = MeasureCoverage({.mapping = mapping_.get(),
                                      .footprint = FOOTPRINT(kernel_->Length()),
                                      .slave_width = static_cast<int>(input_slave_.Width()),
                                      .slave_height = static_cast<int>(input_slave_.Height()),
                                      .n_samples = parameters_.n_samples,
                                      .n_lines = parameters_.n_lines},
                                     most_pixels_);
  figures.outputs = Outputs(figures.coverage.Share());
  figures.mapped_bytes = MappedInputBytes();
  for (const NEW_FILE& output : figures.outputs) {
    figures.mapped_bytes += output.length;
  }
  figures.own_bytes = OwnBytes();
  figures.disks = DiskNeeds(figures.outputs);
  return figures;
}

std::vector<NEW_FILE> RUN_CHECK::Outputs(double share) const {
  const std::int64_t pixels = std::int64_t{parameters_.n_samples} * parameters_.n_lines;
  const auto output = [&](const std::string& path, PIXEL_TYPE type) {
    constexpr std::int64_t header = 32;
    const std::int64_t length = pixels * BytesPerPixel(type);
    const auto written = static_cast<std::int64_t>(static_cast<double>(length) * share);
    return NEW_FILE{path, header + length, header + written};
  };
  std::vector<NEW_FILE> outputs = {output(*parameters_.slave_out, input_slave_.PixelType())};
  if (parameters_.mask_out) {
    outputs.push_back(output(*parameters_.mask_out, PIXEL_TYPE::U_INT_8));
  }
  return outputs;
}

std::int64_t RUN_CHECK::MappedInputBytes() const {
  std::int64_t bytes = PixelBytes(input_slave_) + PixelBytes(input_mask_);
  if (const auto* matrix = dynamic_cast<const MAPPING_MATRIX*>(mapping_.get())) {
    const auto& grid = matrix->RgInterpolation();
    constexpr std::int64_t bytes_a_node = 2 * sizeof(float);
    bytes += std::int64_t{grid.RgSize()} * grid.AzSize() * bytes_a_node;
  }
  return bytes;
}

std::int64_t RUN_CHECK::OwnBytes() const {
  const std::int64_t weights = std::int64_t{kernel_->Length()} * kernel_->SubpixCount();
  const std::int64_t rows = input_slave_.Height() + input_mask_.Height() +
                            std::int64_t{parameters_.n_lines} * (parameters_.mask_out ? 2 : 1);
  return weights * std::int64_t{sizeof(double)} + rows * std::int64_t{sizeof(void*)};
}

void RUN_CHECK::JudgeMapping() {
  const auto* matrix = dynamic_cast<const MAPPING_MATRIX*>(mapping_.get());
  if (matrix == nullptr) {
    return;
  }
  const auto& grid = matrix->RgInterpolation();
  const std::int64_t samples =
      CoveredLength(grid.RgSize(), matrix->RgSubsampling(), parameters_.n_samples);
  const std::int64_t lines =
      CoveredLength(grid.AzSize(), matrix->AzSubsampling(), parameters_.n_lines);
  if (samples < parameters_.n_samples || lines < parameters_.n_lines) {
    findings_.AddWarning("the mapping matrices cover " + std::to_string(samples) + " x " +
                         std::to_string(lines) +
                         " pixels of the output; the others are resampled "
                         "without a shift");
  }
}

void RUN_CHECK::JudgeFigures(const RUN_FIGURES& figures) {
  if (figures.coverage.computed == 0) {
    findings_.AddWarning("no output pixel will be computed: the mapping leads out of the slave");
  }
  for (const DISK_NEED& disk : figures.disks) {
    const std::string text = "disk of " + disk.path + " has " + std::to_string(disk.available) +
                             " bytes free, the outputs on it take ";
    if (disk.written > disk.available) {
      findings_.AddFailure({text + std::to_string(disk.written), "not enough disk space"});
    } else if (disk.length > disk.available) {
      findings_.AddWarning(text + "between " + std::to_string(disk.written) + " and " +
                           std::to_string(disk.length));
    }
  }
}

void RUN_CHECK::ReleaseMemory(const VERSION_RECORD& version) {
  if (has_one_pool_ ? insar_pool_ != nullptr : log_pool_ != nullptr) {
    findings_.Take([&] { RegisterHistory(version); });
  }
  for (const auto& pool : {log_pool_.get(), insar_pool_.get()}) {
    if (pool != nullptr) {
      findings_.Take([&] { pool->CheckUpdate(); });
    }
  }
}
