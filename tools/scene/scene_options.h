#pragma once

#include <cstdint>
#include <string>

#include "raster/pixel_type.h"

/// The kernel that the scene's configuration file asks for.
struct KERNEL_OPTIONS {
  std::string type = "truncated_sinc_kaiser_weight";
  double coefficient = 2.5;
  int length = 16;
  int subpix_positions = 4096;
};

/// What a scene is made from. Lengths are in pixels, frequencies in hertz. Master and slave have
/// the same size.
struct SCENE_OPTIONS {
  std::string directory;
  int n_samples = 1024;
  int n_lines = 1024;
  std::uint64_t seed = 1;
  PIXEL_TYPE pixel_type = PIXEL_TYPE::C_INT_16;
  double amplitude = 1000.0;  ///< RMS of the signal, the point targets aside
  int point_targets = 12;     ///< a tile
  double noise = 0.0;         ///< RMS of the noise in each image, relative to the signal's
  int tile = 0;               ///< period of the signal; 0: chosen by the size

  double bandwidth = 0.8;     ///< of the signal, as a part of PRF and range sampling frequency
  double oversampling = 1.0;  ///< pixels of the images for each pulse and range sample

  double doppler = 300.0;         ///< Doppler centroid in the middle of the slave
  double doppler_range = 40.0;    ///< its change from the first sample to the last
  double doppler_azimuth = 30.0;  ///< its change from the first line to the last
  std::string imaging_mode = "SM";
  bool ps_mode = false;

  std::string mapping_format = "matrix";
  int subsampling_range = 16;
  int subsampling_azimuth = 16;
  double shift_range = 3.37;     ///< from master to slave in the middle of the image
  double shift_azimuth = -2.61;  ///< likewise, in lines
  double warp = 4.0;             ///< largest departure from these shifts

  KERNEL_OPTIONS kernel;
};
