#pragma once

#include "scene/scene_options.h"

/// Writes master.ras, slave.ras, slave_mask.ras, rg_map.ras and az_map.ras into the scene's
/// directory, line by line. Throws std::invalid_argument for impossible options and the errors
/// of MEM_MGR.
void WriteSceneRasters(const SCENE_OPTIONS& options);
