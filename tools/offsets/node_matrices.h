#pragma once

#include <cstdint>
#include <vector>

#include "common/polynomial_fit.h"

/// Where dense offsets lie and where the nodes of mapping matrices do, both in master samples or
/// lines along one axis. Node i belongs to position i * subsampling.
struct NODE_AXIS {
  int n_nodes = 0;
  int subsampling = 1;
  double reach = 1.0;  ///< an offset closer than this to a node counts for it

  /// Nodes for an image of `n_pixels`: one past the last pixel, as bilinear interpolation needs it.
  /// `posting` is the spacing of the offsets. Throws std::invalid_argument for more nodes than a
  /// raster can have.
  static NODE_AXIS For(std::int64_t n_pixels, int subsampling, double posting);

  double Position(int node) const noexcept { return static_cast<double>(node) * subsampling; }
};

/// How many nodes got their shift from elsewhere.
struct NODE_COUNTS {
  std::int64_t nodes = 0;
  std::int64_t in_gaps = 0;
  std::int64_t past_edges = 0;  ///< beyond the last sample or line of the image
};

/// The shifts at the nodes, made of scattered offsets.
///
/// The shift is the trend, a polynomial, plus the mean of what the offsets around the node deviate
/// from theirs, with weights that fall linearly from 1 at the node to 0 at the axes' reach. Where
/// there are no offsets, it is the trend plus the mean of the deviations at the nearest nodes with
/// offsets in the eight directions along axes and diagonals, weighted by 1 / distance^2; with none
/// in any direction, the trend.
class NODE_MATRICES {
 public:
  NODE_MATRICES(const NODE_AXIS& x, const NODE_AXIS& y, const POLYNOMIAL& range_trend,
                const POLYNOMIAL& azimuth_trend);

  /// An offset that counts `factor` times as much as others.
  void Add(double x, double y, double range, double azimuth, double factor = 1.0) noexcept;

  /// To be called once, after the last `Add`. `width` and `height` are those of the image.
  NODE_COUNTS Finish(std::int64_t width, std::int64_t height);

  /// After `Finish`.
  double Range(int column, int row) const noexcept;
  double Azimuth(int column, int row) const noexcept;

 private:
  struct NODE {
    double weight = 0.0;
    double range = 0.0;    ///< deviation from the trend, a weighted sum until `Finish`
    double azimuth = 0.0;  ///< likewise
  };

  NODE& At(int column, int row) noexcept {
    return nodes_[static_cast<std::size_t>(row) * static_cast<std::size_t>(x_.n_nodes) +
                  static_cast<std::size_t>(column)];
  }
  const NODE& At(int column, int row) const noexcept {
    return const_cast<NODE_MATRICES&>(*this).At(column, row);
  }
  NODE Filled(int column, int row) const noexcept;

  NODE_AXIS x_;
  NODE_AXIS y_;
  POLYNOMIAL range_trend_;
  POLYNOMIAL azimuth_trend_;
  std::vector<NODE> nodes_;
};
