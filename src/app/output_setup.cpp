#include "app/output_setup.h"

#include <unistd.h>

#include <optional>
#include <utility>

#include "base/error_exception.h"
#include "base/memory_for.h"
#include "base/same_file.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

[[noreturn]] void ThrowOverwriting(const std::string& output, const std::string& file) {
  Log() << ALARM << "output would overwrite another file of the run: " << output << " is " << file;
  throw ERROR_ARGUMENT();
}

void RefuseOverwriting(const std::string& output, const std::vector<std::string>& taken) {
  for (const std::string& file : taken) {
    if (!output.empty() && !file.empty() && IsSamePath(output, file)) {
      ThrowOverwriting(output, file);
    }
  }
}

/// The same for what is behind an output's name now, by whatever way it got there.
void RefuseOpenFiles(const RASTER_OUTPUT& output) {
  const std::pair<int, const char*> open_files[] = {{STDOUT_FILENO, "standard output"},
                                                    {STDERR_FILENO, "standard error"},
                                                    {Log().FileDescriptor(), "the log"}};
  for (const auto& [descriptor, name] : open_files) {
    if (descriptor >= 0 && output.IsFileOf(descriptor)) {
      ThrowOverwriting(output.Path(), name);
    }
  }
}

RASTER_OUTPUT OpenOutput(const std::string& path) {
  RASTER_OUTPUT output = MEM_MGR::OpenOutput(path.c_str());
  RefuseOpenFiles(output);
  return output;
}

}  // namespace

std::vector<std::string> FilesInUse(const RUN_PARAMETERS& parameters, const RUN_POOLS& pools,
                                    const CONTROLLER_IFC& controller) {
  std::vector<std::string> files = {parameters.inputs.slave,
                                    parameters.inputs.mask.value_or(""),
                                    parameters.mapping.rg_file,
                                    parameters.mapping.az_file,
                                    parameters.inputs.slave_pool,
                                    pools.insar_name,
                                    pools.log ? pools.log->FileName() : ""};
  for (std::string& file : controller.OwnFiles()) {
    files.push_back(std::move(file));
  }
  return files;
}

void CheckOutputPaths(const OUTPUT_FILES& outputs, std::vector<std::string> files_in_use) {
  RefuseOverwriting(outputs.slave, files_in_use);
  files_in_use.push_back(outputs.slave);
  RefuseOverwriting(outputs.mask.value_or(""), files_in_use);
}

void CreateOutput(const OUTPUT_FILES& files, const RESAMPLE_INPUT& input, RESAMPLE_OUTPUT& output) {
  const int last_sample = input.n_samples - 1;
  const int last_line = input.n_lines - 1;
  // Neither is emptied before both are known to be right.
  RASTER_OUTPUT slave = OpenOutput(files.slave);
  std::optional<RASTER_OUTPUT> mask;
  if (files.mask) {
    mask.emplace(OpenOutput(*files.mask));
    if (mask->IsSameAs(slave)) {
      ThrowOverwriting(*files.mask, files.slave);
    }
    mask->Lock();
  }
  slave.Lock();
  WithMemoryFor("raster", files.slave, [&] {
    output.slave.Create(std::move(slave), 0, 0, last_sample, last_line, input.slave.PixelType());
  });
  if (mask) {
    WithMemoryFor("raster", *files.mask, [&] {
      output.mask.Create(std::move(*mask), 0, 0, last_sample, last_line, PIXEL_TYPE::U_INT_8);
    });
  }
}
