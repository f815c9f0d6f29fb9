#pragma once

#include <string>

#include "base/list.h"
#include "base/string.h"
#include "pool/pool_entry_text.h"
#include "pool/pool_value_type.h"

/// One entry that waits to be written: its key, its type, its value in the form in which a pool
/// file holds it, and the comment lines in front of it.
class PARAMETER_POOL_ITEM {
 public:
  /// `comments` come without "#". Throws what POOL_ENTRY_TEXT throws.
  template <POOL_VALUE T>
  PARAMETER_POOL_ITEM(const STRING& key, const T& value, const LIST<STRING>& comments)
      : key_(key), type_(pool_type_of<T>) {
    POOL_ENTRY_TEXT text(key, type_);
    comments_ = text.CommentLines(comments);
    text.Write(value);
    entry_ = text.Finish();
  }

  const STRING& Key() const noexcept { return key_; }
  PoolValueType Type() const noexcept { return type_; }
  /// The comment lines and the entry, each line with its line feed.
  const std::string& Comments() const noexcept { return comments_; }
  const std::string& Entry() const noexcept { return entry_; }

 private:
  STRING key_;
  PoolValueType type_;
  std::string comments_;
  std::string entry_;
};
