#pragma once

#include "product/hdf5_file.h"
#include "product/slc_product.h"

/// RSLC in HDF5: images `/science/<band>/RSLC/swaths/frequency<A|B>/<polarisation>`, `SLC` in place
/// of `RSLC` in older ones. Their parts are the frequencies: "A", or "LSAR/A" where one file holds
/// several bands.
class RSLC_PRODUCT final : public SLC_PRODUCT {
 public:
  explicit RSLC_PRODUCT(const std::string& path);

  static bool IsOne(const std::string& path) { return HDF5_FILE::IsOne(path); }

  std::string Description() const override;
  const std::vector<SLC_IMAGE_NAME>& Images() const override { return images_; }
  SLC_IMAGE Describe(const SLC_IMAGE_NAME& name) const override;
  std::unique_ptr<SLC_PIXELS> Pixels(const SLC_IMAGE_NAME& name) const override;

 private:
  /// The group of an image's product, such as "/science/LSAR/RSLC".
  std::string GroupOf(const SLC_IMAGE_NAME& name) const;
  std::string FrequencyOf(const SLC_IMAGE_NAME& name) const;
  UTC_TIME EpochOf(const std::string& times) const;
  HDF5_NUMBERS Axis(const std::string& name, hsize_t length) const;
  double Spacing(const std::string& name, const std::string& axis_name,
                 const HDF5_NUMBERS& axis) const;
  CENTROID_POLYNOMIALS Centroid(const SLC_IMAGE_NAME& name, const SLC_IMAGE& image) const;
  std::vector<std::vector<SAMPLE_RUN>> ValidSamples(const std::string& frequency,
                                                    const SLC_IMAGE& image) const;

  HDF5_FILE file_;
  std::vector<std::string> groups_;
  std::vector<SLC_IMAGE_NAME> images_;
};
