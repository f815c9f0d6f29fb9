#pragma once

#include <initializer_list>
#include <list>
#include <utility>

/// A list with a virtual destructor, the base of the pool's list of items.
template <class T>
class LIST {
 public:
  LIST() = default;
  LIST(std::initializer_list<T> items) : items_(items) {}
  LIST(const LIST&) = default;
  LIST& operator=(const LIST&) = default;
  LIST(LIST&&) noexcept = default;
  LIST& operator=(LIST&&) noexcept = default;
  virtual ~LIST() = default;

  void Append(T item) { items_.push_back(std::move(item)); }
  /// Takes over all items of the other list, without any allocation.
  void AppendAll(LIST&& other) noexcept { items_.splice(items_.end(), other.items_); }
  bool Empty() const noexcept { return items_.empty(); }

  auto begin() noexcept { return items_.begin(); }
  auto end() noexcept { return items_.end(); }
  auto begin() const noexcept { return items_.begin(); }
  auto end() const noexcept { return items_.end(); }

 private:
  std::list<T> items_;
};
