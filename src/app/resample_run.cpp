#include "app/resample_run.h"

#include <atomic>
#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "app/progress_line.h"
#include "app/resample_thread.h"
#include "app/threads.h"
#include "base/error_exception.h"
#include "base/same_file.h"
#include "control/processing_history.h"
#include "control/processors.h"
#include "core/core_variant.h"
#include "logging/logging.h"
#include "mapping/mapping_matrix.h"
#include "mapping/mapping_polynomial.h"

namespace {

using enum LOGGING_LEVEL_T;
using BASIC::TYPES::MappingFormatType;

constexpr int read_only = 0;

/// The path without links, dots and a relative beginning, as far as it exists.
std::filesystem::path Resolved(const std::string& path) {
  std::error_code unresolved;
  const std::filesystem::path absolute = std::filesystem::absolute(path, unresolved);
  return std::filesystem::weakly_canonical(absolute, unresolved);
}

/// Two paths that name one file, whether it exists already or not.
bool IsSamePath(const std::string& a, const std::string& b) {
  return IsSameFile(a.c_str(), b.c_str()) || Resolved(a) == Resolved(b);
}

/// Throws ERROR_ARGUMENT when creating `output` would destroy one of the files of the run. Empty
/// names stand for files that are not used.
void RefuseOverwriting(const std::string& output, const std::vector<std::string>& taken) {
  for (const std::string& file : taken) {
    if (!output.empty() && !file.empty() && IsSamePath(output, file)) {
      Log() << ALARM << "output would overwrite another file of the run: " << output << " is "
            << file;
      throw ERROR_ARGUMENT();
    }
  }
}

struct SUBSAMPLING {
  int range = 0;
  int azimuth = 0;
};

void ReadSubsampling(PARAMETER_POOL& pool, const SETUP_STEPS& steps, SUBSAMPLING& subsampling) {
  constexpr const char* range_key = "shift_matrices_subsampling_rg";
  constexpr const char* azimuth_key = "shift_matrices_subsampling_az";
  if (pool.Exists(range_key) || pool.Exists(azimuth_key)) {
    steps.TakeAll({[&] { pool.Read(range_key, subsampling.range); },
                   [&] { pool.Read(azimuth_key, subsampling.azimuth); }});
  } else {
    steps.Take([&] {
      pool.Read("shift_matrices_subsampling", subsampling.range);
      subsampling.azimuth = subsampling.range;
    });
  }
}

/// Throws ERROR_DATA for a NaN, with which the whole output would hold nothing; pools hold no
/// infinities.
double ReadTime(PARAMETER_POOL& pool, const char* key) {
  double time = 0.0;
  pool.Read(key, time);
  if (std::isnan(time)) {
    Log() << ALARM << "not a number: " << key;
    throw ERROR_DATA();
  }
  return time;
}

}  // namespace

const SETUP_STEPS RESAMPLE_RUN::first_error_ends;

void RESAMPLE_RUN::Execute(const VERSION_RECORD& version) {
  ReadParameters();
  InitializeKernels();
  MapSlaveAndMask();
  SetupMapping();
  AllocateOutput();
  SetupSlcParameters();
  PerformProcessing();
  ReleaseMemory(version);
}

void RESAMPLE_RUN::ReadParameters() {
  Log().Message(INFO, "* Read input parameters");
  OpenPools();
  parameters_ = ReadRunParameters(controller_, insar_pool_.get(), steps_);
  EchoRunParameters(parameters_, insar_pool_name_);
}

void RESAMPLE_RUN::OpenPools() {
  steps_.Take([&] {
    insar_pool_name_ = MandatoryParameter(controller_, "INSAR_PARAMETER_POOL");
    insar_pool_ = std::make_unique<PARAMETER_POOL_READ_WRITE_CHANGE>(insar_pool_name_->c_str());
  });
  steps_.Take([&] {
    const std::string log_name = MandatoryParameter(controller_, "log_pp");
    has_one_pool_ = log_name == insar_pool_name_;
    if (!has_one_pool_) {
      log_pool_ = std::make_unique<PARAMETER_POOL_READ_WRITE_CHANGE>(log_name.c_str());
    }
  });
}

void RESAMPLE_RUN::InitializeKernels() {
  Log().Message(INFO, "* Initialize Kernels");
  if (!parameters_.kernel) {
    return;
  }
  const KERNEL_PARAMETERS& kernel = *parameters_.kernel;
  Log().Message(INFO, "  -  shift raster = %d", kernel.subpix_positions);
  steps_.Take([&] {
    auto tables = std::make_unique<INTERPOLATION_KERNEL>();
    tables->InitKernel(kernel.type, kernel.length, kernel.subpix_positions,
                       static_cast<float>(kernel.coefficient));
    kernel_ = std::move(tables);
  });
}

void RESAMPLE_RUN::MapSlaveAndMask() {
  Log().Message(INFO, "* Map input slave and mask");
  const bool has_slave = parameters_.slave_in && steps_.Take([&] {
    input_slave_.Map(parameters_.slave_in->c_str(), read_only);
    Log().Message(DEBUG, "   - Pixel type : %d", static_cast<int>(input_slave_.PixelType()));
    CheckSlaveSides();
  });
  if (parameters_.mask_in) {
    const bool has_mask =
        steps_.Take([&] { input_mask_.Map(parameters_.mask_in->c_str(), read_only); });
    if (has_slave && has_mask) {
      steps_.Take([&] { CheckMaskFitsSlave(); });
    }
  }
}

void RESAMPLE_RUN::CheckSlaveSides() const {
  constexpr std::int64_t largest = std::numeric_limits<int>::max();
  if (input_slave_.Width() > largest || input_slave_.Height() > largest) {
    Log() << ALARM << "slave has too many samples or lines: " << input_slave_.Width() << "x"
          << input_slave_.Height();
    throw ERROR_DATA();
  }
}

void RESAMPLE_RUN::CheckMaskFitsSlave() const {
  if (input_mask_.BytesPerPixel() != 1) {
    Log() << ALARM << "mask is not one byte a pixel: " << *parameters_.mask_in;
    throw ERROR_DATA();
  }
  if (input_mask_.Width() != input_slave_.Width() ||
      input_mask_.Height() != input_slave_.Height()) {
    Log() << ALARM << "mask has another size than the slave: " << input_mask_.Width() << "x"
          << input_mask_.Height() << " != " << input_slave_.Width() << "x" << input_slave_.Height();
    throw ERROR_DATA();
  }
}

void RESAMPLE_RUN::SetupMapping() {
  Log().Message(INFO, "* Setup input mapping");
  if (!parameters_.mapping_format) {
    return;
  }
  switch (parameters_.mapping_format->Id()) {
    case MappingFormatType::MATRIX:
      SetupMatrixMapping();
      break;
    case MappingFormatType::POLYNOMIAL:
      if (insar_pool_) {
        mapping_ = std::make_unique<MAPPING_POLYNOMIAL>(*insar_pool_, steps_);
      }
      break;
    default:
      steps_.Take([&] {
        Log() << ALARM << "mapping type is neither matrix nor polynomial: "
              << parameters_.mapping_format->Name();
        throw ERROR_UNHANDLED_CASE();
      });
  }
}

void RESAMPLE_RUN::SetupMatrixMapping() {
  // What the files are looked at with, should the entries fail.
  SUBSAMPLING subsampling{1, 1};
  if (insar_pool_) {
    ReadSubsampling(*insar_pool_, steps_, subsampling);
  }
  if (parameters_.rg_mapping_file && parameters_.az_mapping_file) {
    mapping_ = std::make_unique<MAPPING_MATRIX>(parameters_.rg_mapping_file->c_str(),
                                                parameters_.az_mapping_file->c_str(),
                                                subsampling.range, subsampling.azimuth, steps_);
  }
}

void RESAMPLE_RUN::CheckOutputPaths() const {
  std::vector<std::string> taken = {
      parameters_.slave_in.value_or(""),        parameters_.mask_in.value_or(""),
      parameters_.rg_mapping_file.value_or(""), parameters_.az_mapping_file.value_or(""),
      parameters_.slave_pool.value_or(""),      insar_pool_name_.value_or(""),
      log_pool_ ? log_pool_->FileName() : ""};
  for (std::string& file : controller_.OwnFiles()) {
    taken.push_back(std::move(file));
  }
  const std::string slave_out = parameters_.slave_out.value_or("");
  steps_.Take([&] { RefuseOverwriting(slave_out, taken); });
  taken.push_back(slave_out);
  steps_.Take([&] { RefuseOverwriting(parameters_.mask_out.value_or(""), taken); });
}

void RESAMPLE_RUN::AllocateOutput() {
  Log().Message(INFO, "* Allocate output resampled image and its mask");
  CheckOutputPaths();
  const int last_sample = parameters_.n_samples - 1;
  const int last_line = parameters_.n_lines - 1;
  output_slave_.Create(parameters_.slave_out->c_str(), 0, 0, last_sample, last_line,
                       input_slave_.PixelType());
  if (parameters_.mask_out) {
    output_mask_.Create(parameters_.mask_out->c_str(), 0, 0, last_sample, last_line,
                        PIXEL_TYPE::U_INT_8);
  }
}

void RESAMPLE_RUN::SetupSlcParameters() {
  Log().Message(INFO, "* Setup SLC parameters");
  const bool has_slave_pool = parameters_.slave_pool && steps_.Take([&] {
    slave_pool_ = std::make_unique<PARAMETER_POOL>(parameters_.slave_pool->c_str());
  });
  if (has_slave_pool) {
    doppler_.Setup(*slave_pool_, steps_);
  }
  if (insar_pool_) {
    steps_.TakeAll(
        {[&] { doppler_.range_start_time = ReadTime(*insar_pool_, "slave_first_rg_time"); },
         [&] { doppler_.azimuth_start_time = ReadTime(*insar_pool_, "slave_first_az_time"); }});
  }
  Log().Message(PARAMETER, "fDC: t_rg_start = %f", doppler_.range_start_time);
  Log().Message(PARAMETER, "fDC: t_az_start = %f", doppler_.azimuth_start_time);
  if (has_slave_pool) {
    steps_.Take([&] { slave_pool_->ReadEnumeration("imaging_mode", imaging_mode_); });
  }
}

void RESAMPLE_RUN::PerformProcessing() {
  Log().Message(INFO, "* Perform processing");
  Log().Message(INFO, "  - Define work range");
  const URANGE<unsigned int> lines(0, static_cast<unsigned>(parameters_.n_lines));

  Log().Message(INFO, "  - Set thread argument");
  std::atomic<std::int64_t> pixels_done = 0;
  RESAMPLE_THR_ARG record;
  record.Set({.input_slave = &input_slave_,
              .input_mask = parameters_.mask_in ? &input_mask_ : nullptr,
              .input_width = static_cast<int>(input_slave_.Width()),
              .input_height = static_cast<int>(input_slave_.Height()),
              .output_slave = &output_slave_,
              .output_mask = parameters_.mask_out ? &output_mask_ : nullptr,
              .output_width = parameters_.n_samples,
              .output_height = parameters_.n_lines,
              .core = &ChooseCoreVariant(),
              .mapping = mapping_.get(),
              .kernel = kernel_.get(),
              .doppler = &doppler_,
              .imaging_mode = &imaging_mode_,
              .ps_mode = parameters_.ps_mode,
              .pixels_done = &pixels_done});

  Log().Message(INFO, "  - Setup threads");
  THREADS<RESAMPLE_THR_ARG, unsigned int> workers;
  workers.Setup(record, lines, ResampleThread, NumberOfProcessors());
  Log().Message(INFO, "  - Run");
  const PROGRESS_LINE progress(pixels_done,
                               std::int64_t{parameters_.n_samples} * parameters_.n_lines);
  workers.Run();
  workers.Join();
}

PARAMETER_POOL_READ_WRITE_CHANGE& RESAMPLE_RUN::HistoryPool() const {
  return has_one_pool_ ? *insar_pool_ : *log_pool_;
}

void RESAMPLE_RUN::RegisterHistory(const VERSION_RECORD& version) {
  PROCESSING_HISTORY().AddRun(HistoryPool(), {.name = version.display_name,
                                              .version = version.version,
                                              .date = version.compile_date,
                                              .start_time = Log().StartTime()});
}

void RESAMPLE_RUN::WriteHistory(const VERSION_RECORD& version) {
  PARAMETER_POOL_READ_WRITE_CHANGE& pool = HistoryPool();
  const POOL_LOCK lock = pool.LockForUpdate();
  RegisterHistory(version);
  pool.Update();
}

void RESAMPLE_RUN::ReleaseMemory(const VERSION_RECORD& version) {
  Log().Message(INFO, "* Memory de-allocation");
  mapping_.reset();
  if (log_pool_) {  // whatever can fail does so before the history tells of a success
    insar_pool_->Update();
  }
  WriteHistory(version);
  log_pool_.reset();
  slave_pool_.reset();
  kernel_.reset();
  insar_pool_.reset();
}
