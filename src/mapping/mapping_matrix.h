#pragma once

#include "mapping/mapping_base.h"
#include "mapping/matrix_interpolation.h"
#include "raster/mem_mgr.h"

/// The mapping of two matrix files, rasters of 32-bit real pixels on a coarse grid over the master.
///
/// Node (column c, line l) of the range file holds the range shift [slave samples] of master
/// sample c * rg_subsampling, the azimuth file the azimuth shift [slave lines] of master line
/// l * az_subsampling. Shifts between the nodes are interpolated bilinearly:
///
///     slave range   = x + shift_rg(x / rg_subsampling, y / az_subsampling)
///     slave azimuth = y + shift_az(x / rg_subsampling, y / az_subsampling)
///
/// at master sample x and line y, in double precision and in the order that
/// `MATRIX_INTERPOLATION` tells. Outside the grid, which begins at the last node of each axis, and
/// for positions that are no number, the position is returned unshifted.
class MAPPING_MATRIX : public MAPPING_BASE {
 public:
  /// An empty mapping: evaluating it throws ERROR_UNHANDLED_CASE until `Open`.
  MAPPING_MATRIX() = default;
  /// As `Open` on an empty mapping.
  MAPPING_MATRIX(const char* rg_file, const char* az_file, int rg_subsampling, int az_subsampling);
  MAPPING_MATRIX(const MAPPING_MATRIX&) = delete;
  MAPPING_MATRIX& operator=(const MAPPING_MATRIX&) = delete;
  ~MAPPING_MATRIX() override = default;

  /// Maps both files read-only and sets up the interpolations, also on a mapping that is open.
  ///
  /// Throws ERROR_ARGUMENT for a subsampling below 1, ERROR_NOT_SUPPORTED_PIXEL_TYPE for files of
  /// other pixels, ERROR_DATA for files of different sizes, and what `MEM_MGR::Map` throws.
  /// Evaluating the mapping after a failure throws as on an empty one.
  void Open(const char* rg_file, const char* az_file, int rg_subsampling, int az_subsampling);
  /// The same with copies of shifts in memory, row-major matrices of `columns` x `lines` nodes.
  /// Throws ERROR_ARGUMENT for a subsampling below 1 and matrices without nodes, ERROR_NO_MEMORY.
  void Copy(const float* rg_shifts, const float* az_shifts, unsigned columns, unsigned lines,
            int rg_subsampling, int az_subsampling);
  /// Sets up the interpolations on the open files, and prints their overviews, again.
  void InitInterpolation();

  double GetSlaveRange(double range, double azimuth) const override;
  double GetSlaveAzimuth(double range, double azimuth) const override;
  unsigned GetMaxRange() const override;
  unsigned GetMaxAzimuth() const override;

  int RgSubsampling() const noexcept { return rg_subsampling_; }
  int AzSubsampling() const noexcept { return az_subsampling_; }
  const MATRIX_INTERPOLATION<float>& RgInterpolation() const noexcept { return rg_interpolation_; }
  const MATRIX_INTERPOLATION<float>& AzInterpolation() const noexcept { return az_interpolation_; }

 private:
  /// Leaves an empty mapping of these subsamplings.
  void Restart(int rg_subsampling, int az_subsampling);
  void CheckEqualSizes() const;

  int rg_subsampling_ = 0;
  int az_subsampling_ = 0;
  MEM_MGR rg_raster_;
  MEM_MGR az_raster_;
  MATRIX_INTERPOLATION<float> rg_interpolation_;
  MATRIX_INTERPOLATION<float> az_interpolation_;
};
