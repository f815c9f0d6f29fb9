#include "app/output_setup.h"

#include <filesystem>
#include <utility>

#include "base/error_exception.h"
#include "base/memory_for.h"
#include "base/same_file.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

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

void RefuseOverwriting(const std::string& output, const std::vector<std::string>& taken) {
  for (const std::string& file : taken) {
    if (!output.empty() && !file.empty() && IsSamePath(output, file)) {
      Log() << ALARM << "output would overwrite another file of the run: " << output << " is "
            << file;
      throw ERROR_ARGUMENT();
    }
  }
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
  WithMemoryFor("raster", files.slave, [&] {
    output.slave.Create(files.slave.c_str(), 0, 0, last_sample, last_line, input.slave.PixelType());
  });
  if (files.mask) {
    WithMemoryFor("raster", *files.mask, [&] {
      output.mask.Create(files.mask->c_str(), 0, 0, last_sample, last_line, PIXEL_TYPE::U_INT_8);
    });
  }
}
