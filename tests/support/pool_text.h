#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/grid.h"

/// All bits of a number, as pools hold it.
std::string RealText(double value);

/// The text of a parameter pool under construction, entry by entry.
class POOL_TEXT {
 public:
  /// Sets an entry to what stands after its key: type word, value and block.
  void Set(const std::string& key, const std::string& entry);
  void SetInteger(const std::string& key, int value);
  void SetReal(const std::string& key, double value);
  void SetText(const std::string& key, const std::string& text);
  void SetReals(const std::string& key, const std::vector<double>& values);
  /// Row i of the matrix is line i of the grid.
  void SetRealMatrix(const std::string& key, const GRID<double>& values);
  void Remove(std::string_view key);

  std::string Text() const;

 private:
  std::vector<std::pair<std::string, std::string>> entries_;
};
