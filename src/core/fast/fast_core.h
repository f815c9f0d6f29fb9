#pragma once

// The room of the fast core. A block is resampled in strips of 64 columns (strip.h), each of them
// line by line downwards. On every line of a strip, in this order:
//
//   position_rows   the mapping's positions in the slave, for all columns
//   column_tracker  where the taps lie, what has changed since the line before, and runs of columns
//                   that read side by side
//   slave_lines     slave lines that runs read, with validity, decoded once a strip into a ring
//   range_sums      sums along range: a new one where a column stays, all where it moves; columns
//                   without a run are filtered from the slave itself (slave_rows)
//   line_centroids  the centroid along range of a slave line; deramp_phasors makes phasors of it
//   azimuth_sums    sums along azimuth, which are the pixels before they are encoded
//
// weight_rows holds kernel rows as vectors need them, column_set some columns of a strip. What is
// done for many columns at once are row functions: row_functions.h tells what they promise, the
// folder rows has one file a topic, compiled for every level of the processor, and rows/lanes.h
// alone knows the processors.

#include "core/fast/row_functions.h"
#include "core/resample_thr_arg.h"

/// Does what `ResampleBlock` does, several times faster. Results before encoding differ from those
/// of the plain core by less than 1e-12 of the footprint's absolute weighted sum; which pixels are
/// computed, what they read, and their masks are equal. They do not depend on the block.
void ResampleBlockFast(const RESAMPLE_THR_ARG& argument, const ROW_FUNCTIONS& functions);
