#include "product/open_product.h"

#include <filesystem>
#include <stdexcept>

#include "product/rslc_product.h"
#include "product/safe_product.h"

std::unique_ptr<SLC_PRODUCT> OpenProduct(const std::string& path) {
  if (!std::filesystem::exists(path)) {
    throw std::runtime_error("there is no product " + path);
  }
  if (RSLC_PRODUCT::IsOne(path)) {
    return std::make_unique<RSLC_PRODUCT>(path);
  }
  if (const std::string folder = SAFE_PRODUCT::FolderIn(path); !folder.empty()) {
    return std::make_unique<SAFE_PRODUCT>(folder);
  }
  throw std::runtime_error(path + " is neither an RSLC in HDF5 nor a SAFE of Sentinel-1");
}
