#include "pool/parameter_pool_list.h"

#include <algorithm>
#include <utility>

#include "pool/pool_errors.h"

void PARAMETER_POOL_LIST::Add(PARAMETER_POOL_ITEM item) {
  if (Find(item.Key().Text()) != nullptr) {
    throw PARAMETER_KEY_EXISTS();
  }
  Append(std::move(item));
}

void PARAMETER_POOL_LIST::AddAll(PARAMETER_POOL_LIST items) {
  for (const PARAMETER_POOL_ITEM& item : items) {
    if (Find(item.Key().Text()) != nullptr) {
      throw PARAMETER_KEY_EXISTS();
    }
  }
  AppendAll(std::move(items));
}

void PARAMETER_POOL_LIST::Change(PARAMETER_POOL_ITEM item) {
  const auto same_key = [&](const PARAMETER_POOL_ITEM& other) { return other.Key() == item.Key(); };
  const auto found = std::find_if(begin(), end(), same_key);
  if (found == end()) {
    throw PARAMETER_KEY_NOT_FOUND();
  }
  *found = std::move(item);
}

const PARAMETER_POOL_ITEM* PARAMETER_POOL_LIST::Find(std::string_view key) const noexcept {
  const auto same_key = [key](const PARAMETER_POOL_ITEM& item) { return key == item.Key().Text(); };
  const auto found = std::find_if(begin(), end(), same_key);
  return found == end() ? nullptr : &*found;
}
