#include "run/fingerprint.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string_view>

#include "base/error_exception.h"
#include "basics/content_hash.h"
#include "description/slave_files.h"
#include "pool/pool_contents.h"
#include "pool/pool_errors.h"
#include "pool/pool_file.h"

namespace {

constexpr const char* absent = "absent";

/// Size and time of modification [ns].
std::string StateOfRaster(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) {
    return absent;
  }
  constexpr std::int64_t nanoseconds = 1'000'000'000;
  const std::int64_t time = status.st_mtim.tv_sec * nanoseconds + status.st_mtim.tv_nsec;
  return std::to_string(status.st_size) + " bytes of " + std::to_string(time);
}

/// Entries that a run writes: its history, and the mapping format that it was forced to.
bool IsWrittenByRuns(std::string_view key, bool has_forced_mapping) {
  return key.starts_with("software_") ||
         (has_forced_mapping && (key == "mapping_format" || key == "MAPPING_FORMAT"));
}

/// Of the entries alone: updates may move blank lines and comments.
std::string HashOfEntries(const POOL_FILE& file, bool has_forced_mapping) {
  const POOL_LOCK lock(file, POOL_LOCK::KIND::SHARED);
  const std::vector<POOL_LINE> lines = ReadPoolLines(file);
  std::string text;
  for (const POOL_ENTRY_LINES& entry : PoolEntryLines(lines)) {
    if (IsWrittenByRuns(lines[entry.begin].Key(), has_forced_mapping)) {
      continue;
    }
    for (std::size_t i = entry.begin; i < entry.end; ++i) {
      text.append(lines[i].Text()).append("\n");
    }
  }
  return ContentHash(text);
}

std::string StateOfPool(const std::string& path, bool has_forced_mapping) {
  const POOL_FILE file(path.c_str(), O_RDONLY);
  if (!file.IsOpen()) {
    return absent;
  }
  try {
    return HashOfEntries(file, has_forced_mapping);
  } catch (const ERROR_EXCEPTION& error) {
    return error.what();
  }
}

/// Counted from the base where it lies below.
std::string PlaceOf(const std::string& path, const std::string& base) {
  return path.starts_with(base + "/") ? path.substr(base.size() + 1) : path;
}

std::map<std::string, std::string> ParametersBelow(const SLAVE_PLAN& plan) {
  std::map<std::string, std::string> parameters = plan.parameters;
  for (const std::string& name :
       ParametersOf({PARAMETER_KIND::POOL, PARAMETER_KIND::RASTER, PARAMETER_KIND::OUTPUT})) {
    if (const auto found = parameters.find(name); found != parameters.end()) {
      found->second = PlaceOf(found->second, plan.base);
    }
  }
  return parameters;
}

}  // namespace

std::string Fingerprint(const SLAVE_PLAN& plan) {
  const bool has_forced_mapping = plan.parameters.contains("MAPPING_FORMAT");
  nlohmann::json inputs = nlohmann::json::object();
  for (const std::string& path : ValuesOf(plan.parameters, {PARAMETER_KIND::RASTER})) {
    inputs[PlaceOf(path, plan.base)] = StateOfRaster(path);
  }
  for (const std::string& path : ValuesOf(plan.parameters, {PARAMETER_KIND::POOL})) {
    inputs[PlaceOf(path, plan.base)] = StateOfPool(path, has_forced_mapping);
  }
  const nlohmann::json json = {{"version", plan.version},
                               {"build", plan.build},
                               {"parameters", ParametersBelow(plan)},
                               {"inputs", inputs}};
  return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string DifferenceOf(const std::string& fingerprint, const std::string& other) {
  const nlohmann::json changes =
      nlohmann::json::diff(nlohmann::json::parse(fingerprint), nlohmann::json::parse(other));
  if (changes.empty()) {
    return "";
  }
  const nlohmann::json::json_pointer place(changes.front().at("path").get<std::string>());
  return place.back();
}
