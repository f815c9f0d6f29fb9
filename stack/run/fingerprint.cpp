#include "run/fingerprint.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string_view>

#include "base/error_exception.h"
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

/// FNV-1a, 64 bits.
class HASH {
 public:
  void Add(std::string_view text) {
    constexpr std::uint64_t prime = 0x100000001b3;
    for (const char c : text) {
      value_ = (value_ ^ static_cast<unsigned char>(c)) * prime;
    }
  }
  std::string Text() const { return std::to_string(value_); }

 private:
  std::uint64_t value_ = 0xcbf29ce484222325;
};

/// Of the entries alone: updates may move blank lines and comments.
std::string HashOfEntries(const POOL_FILE& file, bool has_forced_mapping) {
  const POOL_LOCK lock(file, POOL_LOCK::KIND::SHARED);
  const std::vector<POOL_LINE> lines = ReadPoolLines(file);
  HASH hash;
  for (const POOL_ENTRY_LINES& entry : PoolEntryLines(lines)) {
    if (IsWrittenByRuns(lines[entry.begin].Key(), has_forced_mapping)) {
      continue;
    }
    for (std::size_t i = entry.begin; i < entry.end; ++i) {
      hash.Add(lines[i].Text());
      hash.Add("\n");
    }
  }
  return hash.Text();
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

}  // namespace

std::string Fingerprint(const SLAVE_PLAN& plan) {
  const bool has_forced_mapping = plan.parameters.contains("MAPPING_FORMAT");
  nlohmann::json inputs = nlohmann::json::object();
  for (const std::string& path : ValuesOf(plan.parameters, {PARAMETER_KIND::RASTER})) {
    inputs[path] = StateOfRaster(path);
  }
  for (const std::string& path : ValuesOf(plan.parameters, {PARAMETER_KIND::POOL})) {
    inputs[path] = StateOfPool(path, has_forced_mapping);
  }
  const nlohmann::json json = {
      {"version", plan.version}, {"parameters", plan.parameters}, {"inputs", inputs}};
  return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}
