#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "description/stack_description.h"

/// The parameters of resample that name files.
inline constexpr std::array pool_parameters = {"INSAR_PARAMETER_POOL", "log_pp",
                                               "SLAVE_PARAMETER_POOL"};
inline constexpr std::array raster_parameters = {"SlaveIn", "MaskIn", "RG_MAPPING_FILE",
                                                 "AZ_MAPPING_FILE"};
inline constexpr std::array output_parameters = {"SlaveOut", "MaskOut"};

/// An output has this name until its run has succeeded.
std::filesystem::path PartialOutput(const std::filesystem::path& output);

/// Those of the named parameters that the slave has.
template <std::size_t count>
std::vector<std::string> ValuesOf(const std::map<std::string, std::string>& parameters,
                                  const std::array<const char*, count>& names) {
  std::vector<std::string> values;
  for (const char* name : names) {
    if (const auto found = parameters.find(name); found != parameters.end()) {
      values.push_back(found->second);
    }
  }
  return values;
}

/// A line for each output that is, under its final or its partial name, another output or an input
/// of any of the slaves.
std::vector<std::string> ClashingOutputs(const std::vector<STACK_SLAVE>& slaves);
