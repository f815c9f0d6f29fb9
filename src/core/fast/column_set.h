#pragma once

#include <bit>
#include <cstdint>

#include "core/fast/row_functions.h"

/// Some columns of a strip. Going through them yields them in rising order.
class COLUMN_SET {
 public:
  COLUMN_SET() = default;
  /// Bit x stands for column x.
  explicit COLUMN_SET(std::uint64_t bits) : bits_(bits) {}
  static COLUMN_SET First(int count) {
    return COLUMN_SET(count < strip_columns ? (std::uint64_t{1} << count) - 1 : ~std::uint64_t{0});
  }

  static COLUMN_SET Column(int x) { return COLUMN_SET(Bit(x)); }
  /// The group that begins at column `first`.
  static COLUMN_SET Group(int first) { return COLUMN_SET(GroupBits() << first); }

  void Add(int x) { bits_ |= Bit(x); }
  bool Holds(int x) const { return (bits_ & Bit(x)) != 0; }
  bool IsEmpty() const { return bits_ == 0; }
  std::uint64_t Bits() const { return bits_; }
  /// Counting all of them takes longer where the processor need not have an instruction for it.
  bool HoldsMoreThan(int count) const {
    std::uint64_t rest = bits_;
    for (; count > 0; --count) {
      rest &= rest - 1;
    }
    return rest != 0;
  }

  /// The part that lies in the group that begins at column `first`.
  COLUMN_SET OfGroup(int first) const { return COLUMN_SET(bits_ & (GroupBits() << first)); }
  bool HoldsGroup(int first) const { return (~bits_ & (GroupBits() << first)) == 0; }

  COLUMN_SET Without(COLUMN_SET other) const { return COLUMN_SET(bits_ & ~other.bits_); }
  COLUMN_SET Or(COLUMN_SET other) const { return COLUMN_SET(bits_ | other.bits_); }
  COLUMN_SET And(COLUMN_SET other) const { return COLUMN_SET(bits_ & other.bits_); }
  friend bool operator==(COLUMN_SET a, COLUMN_SET b) = default;

  class ITERATOR {
   public:
    explicit ITERATOR(std::uint64_t bits) : bits_(bits) {}
    int operator*() const { return std::countr_zero(bits_); }
    ITERATOR& operator++() {
      bits_ &= bits_ - 1;
      return *this;
    }
    friend bool operator==(ITERATOR a, ITERATOR b) = default;

   private:
    std::uint64_t bits_;
  };
  ITERATOR begin() const { return ITERATOR(bits_); }
  ITERATOR end() const { return ITERATOR(0); }

 private:
  static_assert(strip_columns == 64 && group_columns == 8);
  static std::uint64_t Bit(int x) { return std::uint64_t{1} << x; }
  static std::uint64_t GroupBits() { return (std::uint64_t{1} << group_columns) - 1; }

  std::uint64_t bits_ = 0;
};
