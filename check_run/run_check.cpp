#include "check_run/run_check.h"

#include <algorithm>
#include <utility>

#include "app/input_setup.h"
#include "app/output_setup.h"
#include "app/parameter_check.h"
#include "check_run/kernel_cost.h"
#include "control/processors.h"
#include "core/codec_visit.h"
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
  for (const auto& pool : {pools_.insar, pools_.log}) {
    if (pool) {
      pool->Discard();
    }
  }
}

void RUN_CHECK::Execute(const VERSION_RECORD& version) {
  ReadParameters();
  CheckKernel();
  MapInputs();
  if (is_read_.mapping) {
    findings_.Take([&] { OpenMapping(parameters_.mapping, *pools_.insar, input_); });
  }
  CheckOutput();
  if (is_read_.inputs && pools_.insar) {
    findings_.Take([&] { ReadAnnotation(parameters_.inputs.slave_pool, *pools_.insar, input_); });
  }
  CheckProcessing();
  CheckPoolUpdates(version);
}

void RUN_CHECK::ReadParameters() {
  findings_.Take([&] { pools_.OpenInsarPool(controller_); });
  findings_.Take([&] { pools_.OpenLogPool(controller_); });
  is_read_.inputs = findings_.Take([&] { parameters_.inputs = ReadInputFiles(controller_); });
  is_read_.mapping = pools_.insar && findings_.Take([&] {
    parameters_.mapping = ReadMappingParameters(controller_, *pools_.insar);
  });
  findings_.Take([&] {
    pools_.RefuseInputs({controller_.ConfigurationFileName(), parameters_.inputs.slave,
                         parameters_.inputs.mask.value_or(""), parameters_.mapping.rg_file,
                         parameters_.mapping.az_file});
  });
  is_read_.kernel = findings_.Take([&] { parameters_.kernel = ReadKernelParameters(controller_); });
  is_read_.size = pools_.insar && findings_.Take([&] {
    parameters_.size = ReadOutputSize(controller_, *pools_.insar);
  });
  findings_.Take([&] { ApplyNumberOfCpus(controller_); });
  is_read_.outputs = findings_.Take([&] { parameters_.outputs = ReadOutputFiles(controller_); });
  findings_.Take([&] { parameters_.ps_mode = ReadPsMode(controller_); });
  findings_.Take([&] { parameters_.flush_outputs = ReadFlushOutputs(controller_); });
  WarnOfUnknownParameters(controller_);
  input_.n_samples = parameters_.size.n_samples;
  input_.n_lines = parameters_.size.n_lines;
  input_.ps_mode = parameters_.ps_mode;
}

void RUN_CHECK::CheckKernel() {
  if (is_read_.kernel && findings_.Take([&] { BuildKernel(parameters_.kernel, input_); })) {
    if (std::string cost = CostOfSubpixelPositions(input_.kernel); !cost.empty()) {
      findings_.AddWarning(std::move(cost));
    }
  }
}

void RUN_CHECK::MapInputs() {
  if (!is_read_.inputs) {
    return;
  }
  has_slave_ = findings_.Take([&] { MapSlave(parameters_.inputs.slave, input_); });
  if (parameters_.inputs.mask) {
    const bool has_mask = findings_.Take([&] { MapMask(*parameters_.inputs.mask, input_); });
    if (has_slave_ && has_mask) {
      findings_.Take([&] { input_.CheckMask(); });
    }
  }
}

void RUN_CHECK::CheckOutput() {
  if (!is_read_.outputs) {
    return;
  }
  const OUTPUT_FILES& outputs = parameters_.outputs;
  findings_.Take([&] { CheckOutputPaths(outputs, FilesInUse(parameters_, pools_, controller_)); });
  if (!is_read_.size) {
    return;
  }
  // Any type will do to look at the path.
  CheckCreate(outputs.slave, has_slave_ ? input_.slave.PixelType() : PIXEL_TYPE::C_INT_16);
  if (outputs.mask) {
    CheckCreate(*outputs.mask, PIXEL_TYPE::U_INT_8);
  }
}

void RUN_CHECK::CheckCreate(const std::string& path, PIXEL_TYPE type) {
  findings_.Take([&] {
    MEM_MGR::CheckCreate(path.c_str(), 0, 0, input_.n_samples - 1, input_.n_lines - 1, type);
  });
}

void RUN_CHECK::CheckProcessing() {
  if (has_slave_) {
    findings_.Take([&] { CheckPixelTypeIsSupported(input_.slave.PixelType()); });
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
  figures.n_samples = input_.n_samples;
  figures.n_lines = input_.n_lines;
  figures.pixel_type = input_.slave.PixelType();
  figures.coverage = MeasureCoverage({.mapping = input_.mapping.get(),
                                      .footprint = FOOTPRINT(input_.kernel.Length()),
                                      .slave_width = static_cast<int>(input_.slave.Width()),
                                      .slave_height = static_cast<int>(input_.slave.Height()),
                                      .n_samples = input_.n_samples,
                                      .n_lines = input_.n_lines},
                                     most_pixels_);
  figures.physics = LookAtPhysics(input_, PairsOfLines());
  figures.outputs = Outputs(figures.coverage.Share());
  figures.mapped_bytes = MappedInputBytes();
  for (const EXPECTED_FILE& output : figures.outputs) {
    figures.mapped_bytes += output.length;
  }
  figures.own_bytes = OwnBytes();
  figures.disks = DiskNeeds(figures.outputs);
  return figures;
}

/// As many as give the centroid of the data to a hundredth of the PRF, and as few as are read in no
/// more time than the mapping is looked at in.
std::int64_t RUN_CHECK::PairsOfLines() const {
  constexpr std::int64_t enough = 512;
  return std::min(enough, most_pixels_ / (2 * std::max<std::int64_t>(1, input_.slave.Width())));
}

std::vector<EXPECTED_FILE> RUN_CHECK::Outputs(double share) const {
  const std::int64_t pixels = std::int64_t{input_.n_samples} * input_.n_lines;
  const auto output = [&](const std::string& path, PIXEL_TYPE type) {
    constexpr std::int64_t header = 32;
    const std::int64_t length = pixels * BytesPerPixel(type);
    const auto written = static_cast<std::int64_t>(static_cast<double>(length) * share);
    return EXPECTED_FILE{path, header + length, header + written};
  };
  std::vector<EXPECTED_FILE> outputs = {
      output(parameters_.outputs.slave, input_.slave.PixelType())};
  if (parameters_.outputs.mask) {
    outputs.push_back(output(*parameters_.outputs.mask, PIXEL_TYPE::U_INT_8));
  }
  return outputs;
}

std::int64_t RUN_CHECK::MappedInputBytes() const {
  std::int64_t bytes = PixelBytes(input_.slave) + PixelBytes(input_.mask);
  if (const auto* matrix = dynamic_cast<const MAPPING_MATRIX*>(input_.mapping.get())) {
    const auto& grid = matrix->RgInterpolation();
    constexpr std::int64_t bytes_a_node = 2 * sizeof(float);
    bytes += std::int64_t{grid.RgSize()} * grid.AzSize() * bytes_a_node;
  }
  return bytes;
}

std::int64_t RUN_CHECK::OwnBytes() const {
  const std::int64_t weights = std::int64_t{input_.kernel.Length()} * input_.kernel.SubpixCount();
  const std::int64_t rows = input_.slave.Height() + input_.mask.Height() +
                            std::int64_t{input_.n_lines} * (parameters_.outputs.mask ? 2 : 1);
  return weights * std::int64_t{sizeof(double)} + rows * std::int64_t{sizeof(void*)};
}

void RUN_CHECK::JudgeMapping() {
  const auto* matrix = dynamic_cast<const MAPPING_MATRIX*>(input_.mapping.get());
  if (matrix == nullptr) {
    return;
  }
  const auto& grid = matrix->RgInterpolation();
  const std::int64_t samples =
      CoveredLength(grid.RgSize(), matrix->RgSubsampling(), input_.n_samples);
  const std::int64_t lines = CoveredLength(grid.AzSize(), matrix->AzSubsampling(), input_.n_lines);
  if (samples < input_.n_samples || lines < input_.n_lines) {
    findings_.AddWarning("the mapping matrices cover " + std::to_string(samples) + " x " +
                         std::to_string(lines) +
                         " pixels of the output; the others are resampled "
                         "without a shift");
  }
}

void RUN_CHECK::JudgeFigures(const RUN_FIGURES& figures) {
  for (std::string& suspicion : Suspicions(figures.physics, input_.imaging_mode.IsStripmap())) {
    findings_.AddWarning(std::move(suspicion));
  }
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

void RUN_CHECK::CheckPoolUpdates(const VERSION_RECORD& version) {
  if (pools_.log) {
    findings_.Take([&] { pools_.AddRunToHistory(version); });
  }
  for (const auto& pool : pools_.log == pools_.insar ? std::vector{pools_.insar}
                                                     : std::vector{pools_.log, pools_.insar}) {
    if (pool) {
      findings_.Take([&] { pool->CheckUpdate(); });
    }
  }
}
