#include "common/pool_values.h"

#include <algorithm>
#include <new>

ARRAY<double> VectorOf(std::span<const double> values) {
  ARRAY<double> vector;
  if (vector.Create(RANGE<int>(0, static_cast<int>(values.size()))) != CONTAINER_OK) {
    throw std::bad_alloc();
  }
  std::copy(values.begin(), values.end(), vector.Origin());
  return vector;
}

MATRIX<double> MatrixOf(const std::vector<std::vector<double>>& rows) {
  MATRIX<double> matrix;
  if (matrix.Create(RANGE<int>(0, static_cast<int>(rows.size())),
                    RANGE<int>(0, static_cast<int>(rows.front().size()))) != CONTAINER_OK) {
    throw std::bad_alloc();
  }
  double* const* const target = matrix.GetNumRecMatrix();
  for (std::size_t row = 0; row < rows.size(); ++row) {
    std::copy(rows[row].begin(), rows[row].end(), target[row]);
  }
  return matrix;
}
