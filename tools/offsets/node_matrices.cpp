#include "offsets/node_matrices.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace {

/// The nodes that a position counts for.
struct NODE_RUN {
  int first;
  int last;
};

NODE_RUN NodesAround(const NODE_AXIS& axis, double position) {
  const double most = axis.n_nodes - 1;
  const double first = std::ceil((position - axis.reach) / axis.subsampling);
  const double last = std::floor((position + axis.reach) / axis.subsampling);
  return {static_cast<int>(std::clamp(first, 0.0, most + 1.0)),
          static_cast<int>(std::clamp(last, -1.0, most))};
}

double Weight(const NODE_AXIS& axis, int node, double position) {
  return std::max(0.0, 1.0 - std::abs(position - axis.Position(node)) / axis.reach);
}

}  // namespace

NODE_AXIS NODE_AXIS::For(std::int64_t n_pixels, int subsampling, double posting) {
  const std::int64_t n_nodes = (n_pixels - 1) / subsampling + 2;
  if (n_nodes > std::numeric_limits<int>::max()) {
    throw std::invalid_argument("more nodes than a raster can have; take a larger subsampling");
  }
  return {static_cast<int>(n_nodes), subsampling, std::max(0.5 * subsampling, posting)};
}

NODE_MATRICES::NODE_MATRICES(const NODE_AXIS& x, const NODE_AXIS& y, const POLYNOMIAL& range_trend,
                             const POLYNOMIAL& azimuth_trend)
    : x_(x),
      y_(y),
      range_trend_(range_trend),
      azimuth_trend_(azimuth_trend),
      nodes_(static_cast<std::size_t>(x.n_nodes) * static_cast<std::size_t>(y.n_nodes)) {}

void NODE_MATRICES::Add(double x, double y, double range, double azimuth, double factor) noexcept {
  const NODE_RUN columns = NodesAround(x_, x);
  const NODE_RUN rows = NodesAround(y_, y);
  const double range_deviation = range - Evaluate(range_trend_, x, y);
  const double azimuth_deviation = azimuth - Evaluate(azimuth_trend_, x, y);
  for (int row = rows.first; row <= rows.last; ++row) {
    const double row_weight = factor * Weight(y_, row, y);
    for (int column = columns.first; column <= columns.last; ++column) {
      const double weight = row_weight * Weight(x_, column, x);
      NODE& node = At(column, row);
      node.weight += weight;
      node.range += weight * range_deviation;
      node.azimuth += weight * azimuth_deviation;
    }
  }
}

NODE_COUNTS NODE_MATRICES::Finish(std::int64_t width, std::int64_t height) {
  for (NODE& node : nodes_) {
    if (node.weight > 0.0) {
      node = {1.0, node.range / node.weight, node.azimuth / node.weight};
    }
  }
  NODE_COUNTS counts;
  for (int row = 0; row < y_.n_nodes; ++row) {
    for (int column = 0; column < x_.n_nodes; ++column) {
      ++counts.nodes;
      NODE& node = At(column, row);
      if (node.weight == 0.0) {
        // The weight stays 0, so that no filled node fills another.
        node = Filled(column, row);
        const bool inside = x_.Position(column) < static_cast<double>(width) &&
                            y_.Position(row) < static_cast<double>(height);
        ++(inside ? counts.in_gaps : counts.past_edges);
      }
    }
  }
  return counts;
}

NODE_MATRICES::NODE NODE_MATRICES::Filled(int column, int row) const noexcept {
  NODE filled;
  double weights = 0.0;
  for (int step_y = -1; step_y <= 1; ++step_y) {
    for (int step_x = -1; step_x <= 1; ++step_x) {
      const int most = step_x == 0 && step_y == 0 ? 0 : std::max(x_.n_nodes, y_.n_nodes);
      for (int n = 1; n <= most; ++n) {
        const int other_column = column + n * step_x;
        const int other_row = row + n * step_y;
        if (other_column < 0 || other_column >= x_.n_nodes || other_row < 0 ||
            other_row >= y_.n_nodes) {
          break;
        }
        const NODE& other = At(other_column, other_row);
        if (other.weight > 0.0) {
          const double weight =
              1.0 / (std::pow(x_.Position(n) * step_x, 2) + std::pow(y_.Position(n) * step_y, 2));
          weights += weight;
          filled.range += weight * other.range;
          filled.azimuth += weight * other.azimuth;
          break;
        }
      }
    }
  }
  if (weights > 0.0) {
    filled.range /= weights;
    filled.azimuth /= weights;
  }
  return filled;
}

double NODE_MATRICES::Range(int column, int row) const noexcept {
  return Evaluate(range_trend_, x_.Position(column), y_.Position(row)) + At(column, row).range;
}

double NODE_MATRICES::Azimuth(int column, int row) const noexcept {
  return Evaluate(azimuth_trend_, x_.Position(column), y_.Position(row)) + At(column, row).azimuth;
}
