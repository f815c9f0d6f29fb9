#pragma once

#include <string_view>

#include "base/list.h"
#include "pool/parameter_pool_item.h"

/// The entries that wait to be written into one pool, in the order of their first `Add`. A key
/// occurs at most once.
class PARAMETER_POOL_LIST : public LIST<PARAMETER_POOL_ITEM> {
 public:
  /// Throws PARAMETER_KEY_EXISTS.
  void Add(PARAMETER_POOL_ITEM item);
  /// Adds all of the other list's items or, when it throws PARAMETER_KEY_EXISTS, none.
  void AddAll(PARAMETER_POOL_LIST items);
  /// Replaces the item of the same key; throws PARAMETER_KEY_NOT_FOUND.
  void Change(PARAMETER_POOL_ITEM item);
  /// The item of the key, null without one.
  const PARAMETER_POOL_ITEM* Find(std::string_view key) const noexcept;
};
