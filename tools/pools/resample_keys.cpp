#include "pools/resample_keys.h"

#include <algorithm>
#include <functional>
#include <span>
#include <utility>

#include "annotation/annotation_types.h"
#include "check_run/findings.h"
#include "core/doppler_centroid_model.h"
#include "mapping/mapping_format_type.h"
#include "mapping/mapping_matrix.h"
#include "mapping/mapping_polynomial.h"

namespace {

using BASIC::TYPES::MappingFormatType;

struct NEEDED_KEY {
  const char* key;
  const char* type;
};

constexpr NEEDED_KEY size_keys[] = {{"n_samples", "INT_32"}, {"n_lines", "INT_32"}};
constexpr NEEDED_KEY time_keys[] = {{"slave_first_rg_time", "FLT_15"},
                                    {"slave_first_az_time", "FLT_15"}};
constexpr NEEDED_KEY polynomial_keys[] = {{"respl_poly_rg", "FLT_15_V"},
                                          {"respl_poly_az", "FLT_15_V"}};
constexpr NEEDED_KEY subsampling_keys[] = {{"shift_matrices_subsampling_rg", "INT_32"},
                                           {"shift_matrices_subsampling_az", "INT_32"}};
constexpr NEEDED_KEY common_subsampling_key[] = {{"shift_matrices_subsampling", "INT_32"}};
constexpr NEEDED_KEY centroid_keys[] = {{"prf", "FLT_15"},
                                        {"range_sampling_frequency", "FLT_15"},
                                        {"oversampling", "FLT_15"},
                                        {"fdc_poly_az_time", "FLT_15_V"},
                                        {"fdc_poly_rg_ref_time", "FLT_15_V"},
                                        {"fdc_poly_coeff", "FLT_15_M"}};
constexpr NEEDED_KEY mode_key[] = {{"imaging_mode", "STR"}};

const LISTED_ENTRY* Find(const POOL_LISTING& listing, const std::string& key) {
  const auto found = std::find_if(listing.entries.begin(), listing.entries.end(),
                                  [&](const LISTED_ENTRY& entry) { return entry.key == key; });
  return found == listing.entries.end() ? nullptr : &*found;
}

/// Asks a pool for what a run reads of it, and has the run's own classes judge the values.
class EXAMINATION {
 public:
  EXAMINATION(const std::string& path, const POOL_LISTING& listing)
      : listing_(listing), pool_(path.c_str()) {}

  void AsInsarPool() {
    has_size_ = Require(size_keys);
    if (has_size_ && (Integer("n_samples") < 1 || Integer("n_lines") < 1)) {
      faults_.emplace_back("n_samples and n_lines must be at least 1");
    }
    if (Require(time_keys)) {
      for (const NEEDED_KEY& time : time_keys) {
        if (Find(listing_, time.key)->value == "nan") {
          faults_.push_back(std::string(time.key) + " is not a number");
        }
      }
    }
    ExamineMapping();
  }

  void AsSlavePool() {
    if (Require(centroid_keys)) {
      Try([&] { DOPPLER_CENTROID_MODEL().Setup(pool_); });
    }
    if (Require(mode_key)) {
      ExamineMode();
    }
  }

  std::vector<std::string> TakeFaults() { return std::move(faults_); }

 private:
  bool Has(const char* key) const { return Find(listing_, key) != nullptr; }
  int Integer(const char* key) const { return Find(listing_, key)->value.get<int>(); }

  /// Whether all are there and can be read. What can not is told by the faults of the listing.
  bool Require(std::span<const NEEDED_KEY> keys) {
    bool are_readable = true;
    for (const auto& [key, type] : keys) {
      const LISTED_ENTRY* entry = Find(listing_, key);
      if (entry == nullptr) {
        faults_.push_back(std::string(key) + " " + type + " is missing");
      } else if (entry->type != type) {
        faults_.push_back(std::string(key) + " is " + entry->type + ", " + type + " is read");
      }
      are_readable =
          are_readable && entry != nullptr && entry->type == type && !entry->value.is_null();
    }
    return are_readable;
  }

  void Try(const std::function<void()>& step) {
    FINDINGS findings;
    if (findings.Take(step)) {
      return;
    }
    // The last line tells the kind of the error.
    const FINDINGS::FAILURE& lines = findings.Failures().front();
    std::string text = lines.front();
    for (std::size_t i = 1; i + 1 < lines.size(); ++i) {
      text += "; " + lines[i];
    }
    faults_.push_back(std::move(text));
  }

  void ExamineMode() {
    const char* key = mode_key[0].key;
    ZARVO::ImageMode mode;
    if (!FINDINGS().Take([&] { pool_.ReadEnumeration(key, mode); })) {
      faults_.push_back(std::string(key) + " is " + Find(listing_, key)->value.get<std::string>() +
                        ". " + mode.ValidNames().Text());
    }
  }

  void ExamineMapping() {
    const char* key =
        Has("mapping_format") || !Has("MAPPING_FORMAT") ? "mapping_format" : "MAPPING_FORMAT";
    const NEEDED_KEY format_key[] = {{key, "STR"}};
    if (!Require(format_key)) {
      return;
    }
    MappingFormatType format;
    FINDINGS().Take([&] { pool_.ReadEnumeration(key, format); });
    if (format.Id() == MappingFormatType::POLYNOMIAL) {
      if (Require(polynomial_keys) && has_size_) {
        Try([&] { const MAPPING_POLYNOMIAL refuses_bad_coefficients(pool_); });
      }
    } else if (format.Id() == MappingFormatType::MATRIX) {
      ExamineSubsampling();
    } else {
      faults_.push_back(std::string(key) + " is neither matrix nor polynomial");
    }
  }

  void ExamineSubsampling() {
    const bool has_either = Has(subsampling_keys[0].key) || Has(subsampling_keys[1].key);
    const std::span<const NEEDED_KEY> keys =
        has_either || !Has(common_subsampling_key[0].key)
            ? std::span<const NEEDED_KEY>(subsampling_keys)
            : std::span<const NEEDED_KEY>(common_subsampling_key);
    if (Require(keys)) {
      constexpr float no_shift = 0.0F;
      Try([&] {
        MAPPING_MATRIX().Copy(&no_shift, &no_shift, 1, 1, Integer(keys.front().key),
                              Integer(keys.back().key));
      });
    }
  }

  const POOL_LISTING& listing_;
  PARAMETER_POOL pool_;
  bool has_size_ = false;
  std::vector<std::string> faults_;
};

}  // namespace

std::vector<std::string> FaultsForResample(const std::string& path, const POOL_LISTING& listing,
                                           bool is_slave_pool) {
  EXAMINATION examination(path, listing);
  is_slave_pool ? examination.AsSlavePool() : examination.AsInsarPool();
  return examination.TakeFaults();
}

bool LooksLikeSlavePool(const POOL_LISTING& listing) {
  const auto is_there = [&](const NEEDED_KEY& needed) {
    return Find(listing, needed.key) != nullptr;
  };
  return std::any_of(std::begin(centroid_keys), std::end(centroid_keys), is_there) ||
         is_there(mode_key[0]);
}
