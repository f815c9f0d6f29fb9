#include "pool.h"

#include <pybind11/stl.h>

#include <string>
#include <vector>

#include "call.h"
#include "pools/pool_listing.h"
#include "pools/pool_setting.h"

namespace py = pybind11;

namespace {

/// What can be read, as a list of objects with key, type and value.
std::string PoolEntries(const std::string& path) {
  nlohmann::ordered_json entries = nlohmann::ordered_json::array();
  CallLibrary(py::none(), [&] {
    for (LISTED_ENTRY& entry : ListPool(path).entries) {
      entries.push_back({{"key", entry.key}, {"type", entry.type}, {"value", entry.value}});
    }
  });
  return entries.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace);
}

void SetEntry(const std::string& path, const std::string& key, const std::string& type,
              const std::vector<std::string>& words, int columns) {
  CallLibrary(py::none(), [&] { SetPoolEntry(path, key, type, words, columns); });
}

}  // namespace

void AddPool(py::module_& module) {
  module.def("pool_entries", &PoolEntries);
  module.def("set_pool_entry", &SetEntry);
}
