#pragma once

#include <array>
#include <cstddef>
#include <ctime>
#include <string>

#include "base/array.h"
#include "base/string.h"
#include "pool/parameter_pool_read_write_change.h"

/// What a program says about its own run.
struct PROCESSING_RUN {
  std::string name;
  std::string version;
  std::string date;            ///< compile date, "YYYY-MM-DDThh:mm:ss"
  std::time_t start_time = 0;  ///< seconds since the epoch
};

/// Which programs have worked on a product, in which versions, when and for how long: six
/// parallel vectors of a pool, "software_names", "software_versions", "software_dates",
/// "software_start_times", "software_end_times" (local times "YYYY-MM-DDThh:mm:ss") and
/// "software_execution_times" (whole seconds). The keys may have a prefix in front.
class PROCESSING_HISTORY {
 public:
  explicit PROCESSING_HISTORY(std::string key_prefix = "") : key_prefix_(std::move(key_prefix)) {}
  PROCESSING_HISTORY(const PROCESSING_HISTORY&) = delete;
  PROCESSING_HISTORY& operator=(const PROCESSING_HISTORY&) = delete;
  ~PROCESSING_HISTORY() = default;

  /// Reads the six vectors. A vector that is missing is the pool's error; vectors of different
  /// lengths are an ALARM line and ERROR_DATA.
  void Read(PARAMETER_POOL& pool);
  /// Hands the six vectors to the pool, which writes them with its next update. Throws what
  /// `PARAMETER_POOL_READ_WRITE_CHANGE::Write` throws; the pool has got none of them then.
  void Write(PARAMETER_POOL_READ_WRITE_CHANGE& pool) const;
  /// Reads the history of the pool, if it has one, adds the run, which ends now, and hands all
  /// of it back. A program that the history knows has its first entry replaced. Runs of others
  /// are not lost when the caller holds the pool's lock from here to the update.
  void AddRun(PARAMETER_POOL_READ_WRITE_CHANGE& pool, const PROCESSING_RUN& run);

 private:
  static constexpr std::size_t text_vectors = 5;

  STRING Key(const char* name) const { return (key_prefix_ + name).c_str(); }
  int IndexOf(const std::string& program_name) const;
  void Enlarge();
  void CheckLengths() const;

  std::string key_prefix_;
  std::array<ARRAY<STRING>, text_vectors> texts_;  ///< from the names to the end times
  ARRAY<int> execution_times_;
};
