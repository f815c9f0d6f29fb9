#pragma once

#include <memory>
#include <string>

#include "app/run_parameters.h"
#include "core/resample_input.h"
#include "mapping/mapping_base.h"
#include "pool/parameter_pool.h"

// The parts of a resampling's input from files. Every function fills one part and logs what a run
// tells of it. Nothing here needs a controller.

void BuildKernel(const KERNEL_PARAMETERS& parameters, RESAMPLE_INPUT& input);

/// Throws what `MEM_MGR::Map` and `RESAMPLE_INPUT::CheckSlave` throw.
void MapSlave(const std::string& path, RESAMPLE_INPUT& input);
/// Throws what `MEM_MGR::Map` throws, and ERROR_DATA for a raster of other pixels than single
/// bytes. Whether it fits the slave is left to `RESAMPLE_INPUT::CheckMask`.
void MapMask(const std::string& path, RESAMPLE_INPUT& input);

/// Matrices with the subsampling that the INSAR pool tells, or the pool's polynomials. Throws the
/// errors of the pool and the mapping, and ERROR_UNHANDLED_CASE for any other format.
void OpenMapping(const MAPPING_PARAMETERS& parameters, PARAMETER_POOL& insar_pool,
                 RESAMPLE_INPUT& input);

/// The Doppler centroid, the slave's start times from the INSAR pool, and the imaging mode. Throws
/// the errors of pools, enumeration and model, and ERROR_DATA for a time that is no number.
void ReadAnnotation(const std::string& slave_pool, PARAMETER_POOL& insar_pool,
                    RESAMPLE_INPUT& input);
