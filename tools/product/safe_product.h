#pragma once

#include "product/annotation_file.h"
#include "product/slc_product.h"

/// SLC of Sentinel-1 in SAFE, of the modes SM, IW and EW. Its images are the bursts of each swath,
/// or the whole swath in mode SM.
class SAFE_PRODUCT final : public SLC_PRODUCT {
 public:
  /// `folder` is one that `FolderIn` told.
  explicit SAFE_PRODUCT(const std::string& folder);

  /// The folder of the product, as GDAL names it, in a folder, its manifest, or a zip; empty where
  /// there is none.
  static std::string FolderIn(const std::string& path);

  std::string Description() const override;
  const std::vector<SLC_IMAGE_NAME>& Images() const override { return images_; }
  SLC_IMAGE Describe(const SLC_IMAGE_NAME& name) const override;
  std::unique_ptr<SLC_PIXELS> Pixels(const SLC_IMAGE_NAME& name) const override;

 private:
  /// One annotation file with its measurement, which the product may lack.
  struct SWATH {
    ANNOTATION_FILE annotation;
    std::string measurement;
    std::string name;
    std::string polarisation;
    std::string mode;
    std::vector<ANNOTATION> bursts;

    bool HasBursts() const noexcept { return mode != "SM"; }
  };

  static SWATH ReadSwath(const std::string& folder, const std::string& stem);
  const SWATH& SwathOf(const SLC_IMAGE_NAME& name) const;

  std::vector<SWATH> swaths_;
  std::vector<SLC_IMAGE_NAME> images_;
};
