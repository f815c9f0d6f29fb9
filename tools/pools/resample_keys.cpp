#include "pools/resample_keys.h"

#include <algorithm>
#include <span>

namespace {

struct NEEDED_KEY {
  const char* key;
  const char* type;
};

constexpr NEEDED_KEY insar_keys[] = {{"n_samples", "INT_32"},
                                     {"n_lines", "INT_32"},
                                     {"slave_first_rg_time", "FLT_15"},
                                     {"slave_first_az_time", "FLT_15"}};
constexpr NEEDED_KEY polynomial_keys[] = {{"respl_poly_rg", "FLT_15_V"},
                                          {"respl_poly_az", "FLT_15_V"}};
constexpr NEEDED_KEY subsampling_keys[] = {{"shift_matrices_subsampling_rg", "INT_32"},
                                           {"shift_matrices_subsampling_az", "INT_32"}};
constexpr NEEDED_KEY common_subsampling_key[] = {{"shift_matrices_subsampling", "INT_32"}};
constexpr NEEDED_KEY slave_keys[] = {{"prf", "FLT_15"},
                                     {"range_sampling_frequency", "FLT_15"},
                                     {"oversampling", "FLT_15"},
                                     {"fdc_poly_az_time", "FLT_15_V"},
                                     {"fdc_poly_rg_ref_time", "FLT_15_V"},
                                     {"fdc_poly_coeff", "FLT_15_M"},
                                     {"imaging_mode", "STR"}};

const LISTED_ENTRY* Find(const POOL_LISTING& listing, const std::string& key) {
  const auto found = std::find_if(listing.entries.begin(), listing.entries.end(),
                                  [&](const LISTED_ENTRY& entry) { return entry.key == key; });
  return found == listing.entries.end() ? nullptr : &*found;
}

class SEARCH {
 public:
  explicit SEARCH(const POOL_LISTING& listing) : listing_(listing) {}

  void Require(std::span<const NEEDED_KEY> keys) {
    for (const auto& [key, type] : keys) {
      const LISTED_ENTRY* entry = Find(listing_, key);
      if (entry == nullptr) {
        missing.push_back(std::string(key) + " " + type + " is missing");
      } else if (entry->type != type) {
        missing.push_back(std::string(key) + " is " + entry->type + ", " + type + " is read");
      }
    }
  }

  void RequireMapping() {
    const char* key =
        Has("mapping_format") || !Has("MAPPING_FORMAT") ? "mapping_format" : "MAPPING_FORMAT";
    const NEEDED_KEY format[] = {{key, "STR"}};
    Require(format);
    const LISTED_ENTRY* entry = Find(listing_, key);
    const std::string name =
        entry != nullptr && entry->value.is_string() ? entry->value.get<std::string>() : "";
    if (name == "polynomial") {
      Require(polynomial_keys);
    } else if (name == "matrix") {
      const bool has_either = Has(subsampling_keys[0].key) || Has(subsampling_keys[1].key);
      Require(has_either || !Has(common_subsampling_key[0].key)
                  ? std::span<const NEEDED_KEY>(subsampling_keys)
                  : std::span<const NEEDED_KEY>(common_subsampling_key));
    } else if (entry != nullptr) {
      missing.push_back(std::string(key) + " is neither matrix nor polynomial");
    }
  }

  std::vector<std::string> missing;

 private:
  bool Has(const char* key) const { return Find(listing_, key) != nullptr; }

  const POOL_LISTING& listing_;
};

}  // namespace

std::vector<std::string> MissingForResample(const POOL_LISTING& listing, bool is_slave_pool) {
  SEARCH search(listing);
  if (is_slave_pool) {
    search.Require(slave_keys);
  } else {
    search.Require(insar_keys);
    search.RequireMapping();
  }
  return search.missing;
}

bool LooksLikeSlavePool(const POOL_LISTING& listing) {
  return std::any_of(std::begin(slave_keys), std::end(slave_keys), [&](const NEEDED_KEY& needed) {
    return Find(listing, needed.key) != nullptr;
  });
}
