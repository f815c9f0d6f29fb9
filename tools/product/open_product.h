#pragma once

#include <memory>
#include <string>

#include "product/slc_product.h"

/// Opens a product of either kind: RSLC in HDF5, or a SAFE of Sentinel-1 as folder or zip. Throws
/// std::runtime_error for anything else.
std::unique_ptr<SLC_PRODUCT> OpenProduct(const std::string& path);
