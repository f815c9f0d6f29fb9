#pragma once

#include <memory>

#include "core/fast/row_functions.h"
#include "mapping/mapping_base.h"

/// The slave positions of a strip's columns, line by line: what the mapping's own operations
/// return, to the last bit, with everything worked out once that belongs to a column or a line.
class POSITION_ROWS {
 public:
  virtual ~POSITION_ROWS() = default;

  /// Goes over to the strip of `count` columns from `first_column` on.
  virtual void BeginStrip(int first_column, int count) = 0;

  /// Fills the positions on an output line for all columns of a strip. Columns beyond `count` get
  /// NaN in range.
  virtual void Fill(unsigned line, double* rg, double* az) = 0;
};

/// For any mapping: those known here the fast way, others by their own operations.
std::unique_ptr<POSITION_ROWS> MakePositionRows(const MAPPING_BASE& mapping,
                                                const ROW_FUNCTIONS& functions);
