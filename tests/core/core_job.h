#pragma once

#include <functional>
#include <memory>
#include <random>
#include <vector>

#include "core/core_variant.h"
#include "core/resample_thr_arg.h"
#include "support/grid.h"
#include "support/temporary_directory.h"

/// Looks every position up in a table.
class TABLE_MAPPING : public MAPPING_BASE {
 public:
  using POSITION = std::function<double(double x, double y)>;

  TABLE_MAPPING(int width, int height, const POSITION& range, const POSITION& azimuth);

  double GetSlaveRange(double range, double azimuth) const override;
  double GetSlaveAzimuth(double range, double azimuth) const override;
  unsigned GetMaxRange() const override { return 0; }
  unsigned GetMaxAzimuth() const override { return 0; }

 private:
  GRID<double> range_;
  GRID<double> azimuth_;
};

/// What a random job is drawn around.
struct CORE_JOB_KIND {
  PIXEL_TYPE pixel_type = PIXEL_TYPE::C_INT_16;
  int length = 8;
  bool with_rate = false;
  bool with_mask = false;
};

/// A resampling with everything that it needs, drawn at random: sizes of 1 to 300 columns and up
/// to 40 lines, mappings that are smooth, steep, scaled, folded, noisy, constant or hit whole
/// pixels, and always reach beyond the slave.
class CORE_JOB {
 public:
  /// Written nowhere by the core: what outputs hold before they are resampled.
  static constexpr unsigned char untouched = 77;

  CORE_JOB(const CORE_JOB_KIND& kind, unsigned seed);

  RESAMPLE_JOB& Job() { return job_; }

  /// Sets one component in a hundred to the given bit pattern.
  void Scatter(std::uint16_t pattern);
  /// A centroid of this many hertz everywhere.
  void SetConstantCentroid(double frequency) {
    SetDoppler({0.0}, {0.0}, GRID<double>(1, 1, frequency));
  }

  void ClearOutputs();
  /// Resamples blocks that end before the given lines; the last one ends with the output.
  template <class CODEC>
  void Resample(RESAMPLE_FUNCTION<CODEC> resample, std::vector<unsigned> block_ends = {});
  /// The same for the job's own type of pixels.
  void Resample(const CORE_VARIANT& variant, std::vector<unsigned> block_ends = {});

  std::vector<unsigned char> OutputBytes() const;
  std::vector<unsigned char> MaskBytes() const;

 private:
  int Draw(int first, int last) { return std::uniform_int_distribution(first, last)(random_); }
  double DrawReal(double from, double to) {
    return std::uniform_real_distribution(from, to)(random_);
  }
  void FillSlave();
  void FillMask();
  void DrawDoppler();
  void SetDoppler(const std::vector<double>& azimuth_times,
                  const std::vector<double>& reference_times, const GRID<double>& coefficients);
  void DrawMapping();

  std::mt19937 random_;
  TEMPORARY_DIRECTORY directory_;
  MEM_MGR input_;
  MEM_MGR output_;
  MEM_MGR input_mask_;
  MEM_MGR output_mask_;
  DOPPLER_CENTROID_MODEL doppler_;
  INTERPOLATION_KERNEL kernel_;
  ZARVO::ImageMode imaging_mode_;
  std::unique_ptr<MAPPING_BASE> mapping_;
  RESAMPLE_JOB job_;
};

template <class CODEC>
void CORE_JOB::Resample(RESAMPLE_FUNCTION<CODEC> resample, std::vector<unsigned> block_ends) {
  using PIXEL = typename CODEC::PIXEL;
  RESAMPLE_THR_ARG argument;
  argument.worker_number = 1;
  argument.Set(job_);
  block_ends.push_back(static_cast<unsigned>(job_.output_height));
  unsigned first = 0;
  for (const unsigned end : block_ends) {
    argument.block = URANGE<unsigned int>(first, end - first);
    resample(argument, input_.Rows<PIXEL>(), output_.Rows<PIXEL>());
    first = end;
  }
}
