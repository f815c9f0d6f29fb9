#pragma once

/// Places of the last `length` lines in a buffer of twice as many rows. Every line is kept twice,
/// `length` rows apart, so that the last ones always lie one after the other.
class LINE_RING {
 public:
  explicit LINE_RING(int length) : length_(length) {}

  int Length() const { return length_; }
  int Rows() const { return 2 * length_; }

  /// Row of the oldest line when `line` is the newest one; the others follow it.
  int OldestRow(unsigned line) const {
    return static_cast<int>((line + 1) % static_cast<unsigned>(length_));
  }
  /// The other row of the same line.
  int Twin(int row) const { return row < length_ ? row + length_ : row - length_; }

 private:
  int length_;
};
