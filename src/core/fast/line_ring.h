#pragma once

/// Places of the last `length` lines in a buffer of twice as many rows, so that they always lie one
/// after the other: what comes to lie in the second half is kept a second time in the first half,
/// where the oldest row begins again.
class LINE_RING {
 public:
  explicit LINE_RING(int length) : length_(length) {}

  int Rows() const { return 2 * length_; }

  /// Row of the oldest line when `line` is the newest one; the others follow it.
  int OldestRow(unsigned line) const {
    return static_cast<int>((line + 1) % static_cast<unsigned>(length_));
  }
  /// The other row that a line is kept in, or the same one when it needs no other.
  int Twin(int row) const { return row < length_ ? row : row - length_; }

 private:
  int length_;
};
