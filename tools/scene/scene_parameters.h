#pragma once

#include "scene/scene_options.h"

/// Writes insar.pool, slave.pool and pcf.resample, the program's default configuration file, into
/// the scene's directory: called there without arguments, `resample` writes resampled.ras and
/// resampled_mask.ras. Throws std::system_error when a file can not be written.
void WriteSceneParameters(const SCENE_OPTIONS& options);
