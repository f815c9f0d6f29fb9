#pragma once

#include <cstdint>
#include <memory>

#include "annotation/annotation_types.h"
#include "core/doppler_centroid_model.h"
#include "core/resample_thr_arg.h"
#include "interpolation/interpolation_kernel.h"
#include "mapping/mapping_base.h"
#include "raster/mem_mgr.h"

/// What a resampling makes: rasters of the output's size, held before it begins.
struct RESAMPLE_OUTPUT {
  MEM_MGR slave;
  MEM_MGR mask;  ///< one byte a pixel; holds nothing when nobody wants it

  bool HasMask() const noexcept { return mask.PixelType() != PIXEL_TYPE::OTHERS; }
};

/// Everything that a resampling is made from, in one owner. Every part is needed but the mask. It
/// is filled part by part in any order: from the files of a run with `app/input_setup.h`, or from
/// memory with `MEM_MGR::CreateInMemory`, `INTERPOLATION_KERNEL::InitKernel`, any mapping, and
/// `DOPPLER_CENTROID_MODEL::Setup` of an annotation.
struct RESAMPLE_INPUT {
  MEM_MGR slave;
  MEM_MGR
  mask;  ///< one byte a pixel, 0 where invalid; holds nothing when all of the slave is valid
  INTERPOLATION_KERNEL kernel;
  std::unique_ptr<const MAPPING_BASE> mapping;
  DOPPLER_CENTROID_MODEL doppler;  ///< with the start times of the slave
  ZARVO::ImageMode imaging_mode;
  int n_samples = 0;     ///< of the output
  int n_lines = 0;       ///< of the output
  bool ps_mode = false;  ///< switches the Doppler rate term off

  bool HasMask() const noexcept { return mask.PixelType() != PIXEL_TYPE::OTHERS; }

  /// Throws ERROR_DATA for a slave of more samples or lines than positions are counted in.
  void CheckSlave() const;
  /// Throws ERROR_DATA for a mask of another size than the slave's.
  void CheckMask() const;

  /// Components of the slave that are infinite or no number, where the mask is valid.
  std::int64_t CountNonFinite() const;

  /// The job of the core, which borrows from here and from the output. Throws ERROR_ARGUMENT when a
  /// part has not been filled or a raster of the output has not the output's size, and what the
  /// checks above throw.
  RESAMPLE_JOB Job(RESAMPLE_OUTPUT& output) const;

 private:
  void CheckParts() const;
  void CheckOutput(const MEM_MGR& raster) const;
};
