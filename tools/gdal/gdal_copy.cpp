#include "gdal/gdal_copy.h"

#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>

#include "common/new_files.h"
#include "gdal/gdal_errors.h"
#include "gdal/gdal_types.h"

namespace {

/// The GDAL data type of a copy that keeps the numbers, and the number of bands.
std::pair<GDALDataType, int> ExactLayout(PIXEL_TYPE type) {
  switch (type) {
    case PIXEL_TYPE::FLT_2:
      return {GDT_Float32, 1};
    case PIXEL_TYPE::C_FLT_2:
      return {GDT_CFloat32, 1};
    case PIXEL_TYPE::C_U_INT_8:
      return {GDT_CInt16, 1};
    default: {
      const GDAL_LAYOUT layout = GdalLayoutOf(type);
      return {GDALGetDataTypeByName(layout.data_type), layout.n_bands};
    }
  }
}

std::pair<GDALDataType, int> CopyLayout(const RASTER_READER& raster, const std::string& name) {
  const auto exact = ExactLayout(raster.Type());
  if (name.empty()) {
    return exact;
  }
  const GDALDataType type = GDALGetDataTypeByName(name.c_str());
  if (type == GDT_Unknown || raster.Type() == PIXEL_TYPE::RGB ||
      (raster.IsComplex() && GDALDataTypeIsComplex(type) == 0)) {
    throw std::invalid_argument(name + " is no data type of GDAL for the pixels of " +
                                raster.Path());
  }
  return {type, 1};
}

/// What becomes of the numbers of a raster on their way into a copy.
struct COPIED_NUMBERS {
  double scale = 1.0;
  std::optional<RASTER_READER> mask;

  COPIED_NUMBERS(const RASTER_READER& raster, const GDAL_COPY_OPTIONS& options)
      : scale(options.scale) {
    if (raster.Type() == PIXEL_TYPE::RGB && (scale != 1.0 || !options.mask.empty())) {
      throw std::invalid_argument(raster.Path() + " is a picture: it takes no scale and no mask");
    }
    if (options.mask.empty()) {
      return;
    }
    mask.emplace(options.mask);
    if (mask->Width() != raster.Width() || mask->Height() != raster.Height() ||
        BytesPerPixel(mask->Type()) != 1) {
      throw std::invalid_argument(options.mask + " is no mask of " + raster.Path());
    }
  }

  bool KeepAll() const noexcept { return scale == 1.0 && !mask; }
};

/// A band whose blocks are the lines of a raster.
class LINE_BAND final : public GDALRasterBand {
 public:
  LINE_BAND(const RASTER_READER& raster, const COPIED_NUMBERS& numbers, int band, GDALDataType type)
      : raster_(raster), numbers_(numbers) {
    nBand = band;
    nRasterXSize = static_cast<int>(raster.Width());
    nRasterYSize = static_cast<int>(raster.Height());
    nBlockXSize = nRasterXSize;
    nBlockYSize = 1;
    eDataType = type;
    eAccess = GA_ReadOnly;
  }

  GDALColorInterp GetColorInterpretation() override {
    constexpr std::array colours = {GCI_RedBand, GCI_GreenBand, GCI_BlueBand};
    return raster_.Type() == PIXEL_TYPE::RGB ? colours[static_cast<std::size_t>(nBand - 1)]
                                             : GCI_GrayIndex;
  }

  double GetNoDataValue(int* has_value) override {
    if (has_value != nullptr) {
      *has_value = numbers_.mask ? TRUE : FALSE;
    }
    return Gap();
  }

 protected:
  CPLErr IReadBlock(int, int line, void* target) override {
    const auto width = static_cast<std::size_t>(nBlockXSize);
    const std::byte* pixels = raster_.Pixels(line, 0, width);
    const int bytes = GDALGetDataTypeSizeBytes(eDataType);
    if (raster_.Type() == PIXEL_TYPE::RGB) {
      constexpr int colours = 3;
      GDALCopyWords(pixels + nBand - 1, eDataType, colours, target, eDataType, 1, nBlockXSize);
    } else if (numbers_.KeepAll() && eDataType == ExactLayout(raster_.Type()).first &&
               bytes == BytesPerPixel(raster_.Type())) {
      std::memcpy(target, pixels, width * static_cast<std::size_t>(bytes));
    } else {
      values_.resize(width);
      raster_.ReadLine(line, 0, values_);
      ScaleAndMask(line);
      GDALCopyWords(values_.data(), GDT_CFloat64, sizeof values_[0], target, eDataType, bytes,
                    nBlockXSize);
    }
    return CE_None;
  }

 private:
  /// What stands in place of pixels without data.
  double Gap() const noexcept {
    return GDALDataTypeIsFloating(eDataType) != 0 ? std::numeric_limits<double>::quiet_NaN() : 0.0;
  }

  void ScaleAndMask(int line) {
    for (std::complex<double>& value : values_) {
      value *= numbers_.scale;
    }
    if (numbers_.mask) {
      const std::byte* valid = numbers_.mask->Pixels(line, 0, values_.size());
      for (std::size_t i = 0; i < values_.size(); ++i) {
        values_[i] = valid[i] == std::byte{0} ? Gap() : values_[i];
      }
    }
  }

  const RASTER_READER& raster_;
  const COPIED_NUMBERS& numbers_;
  std::vector<std::complex<double>> values_;
};

class LINE_DATASET final : public GDALDataset {
 public:
  LINE_DATASET(const RASTER_READER& raster, const GDAL_COPY_OPTIONS& options)
      : numbers_(raster, options) {
    constexpr int most = std::numeric_limits<int>::max();
    if (raster.Width() > most || raster.Height() > most) {
      throw std::runtime_error(raster.Path() + " is larger than GDAL can take");
    }
    nRasterXSize = static_cast<int>(raster.Width());
    nRasterYSize = static_cast<int>(raster.Height());
    const auto [type, bands] = CopyLayout(raster, options.type);
    for (int band = 1; band <= bands; ++band) {
      SetBand(band, std::make_unique<LINE_BAND>(raster, numbers_, band, type).release());
    }
  }

 private:
  COPIED_NUMBERS numbers_;
};

/// Whether a word is among those that a driver tells of itself.
bool Lists(GDALDriver& driver, const char* item, const std::string& word) {
  const char* text = driver.GetMetadataItem(item);
  const CPLStringList words(CSLTokenizeString2(text != nullptr ? text : "", " ", 0));
  return words.FindString(word.c_str()) >= 0;
}

/// Not VRT, whose copies refer to the pixels of what they were made of, and not MEM, which makes no
/// files.
bool CanCopyRasters(GDALDriver& driver) {
  const std::string_view name = driver.GetDescription();
  const auto has = [&](const char* item) { return driver.GetMetadataItem(item) != nullptr; };
  return has(GDAL_DCAP_RASTER) && (has(GDAL_DCAP_CREATECOPY) || has(GDAL_DCAP_CREATE)) &&
         name != "VRT" && name != "MEM";
}

/// The first with the extension of a path, null where there is none.
GDALDriver* DriverForExtension(const std::string& path) {
  GDALDriverManager& drivers = *GetGDALDriverManager();
  const std::string extension = std::filesystem::path(path).extension();
  for (int i = 0; i < drivers.GetDriverCount(); ++i) {
    GDALDriver& driver = *drivers.GetDriver(i);
    if (extension.size() > 1 && CanCopyRasters(driver) &&
        Lists(driver, GDAL_DMD_EXTENSIONS, extension.substr(1))) {
      return &driver;
    }
  }
  return nullptr;
}

GDALDriver& Driver(const std::string& name, const std::string& path) {
  GDALDriver* driver = name.empty() ? DriverForExtension(path)
                                    : GetGDALDriverManager()->GetDriverByName(name.c_str());
  if (driver == nullptr && name.empty()) {
    throw std::runtime_error("no GDAL driver goes with the name " + path +
                             "; name one by --driver");
  }
  if (driver == nullptr || !CanCopyRasters(*driver)) {
    throw std::runtime_error("GDAL has no driver " + name +
                             " that writes rasters; gdalinfo --formats lists those that it has");
  }
  return *driver;
}

CPLStringList CreationOptions(const std::vector<std::string>& options, const GDALDriver& driver) {
  CPLStringList list;
  for (const std::string& option : options) {
    list.AddString(option.c_str());
  }
  // Compressed files do not tell beforehand whether they will outgrow the 4 GiB of plain TIFF.
  if (std::string_view(driver.GetDescription()) == "GTiff" &&
      list.FetchNameValue("BIGTIFF") == nullptr) {
    list.SetNameValue("BIGTIFF", "IF_SAFER");
  }
  return list;
}

/// Some drivers store other pixels than they were given, and call that a success.
bool HasSameType(GDALDataset& copy, GDALDataset& source) {
  return copy.GetRasterCount() > 0 &&
         copy.GetRasterBand(1)->GetRasterDataType() == source.GetRasterBand(1)->GetRasterDataType();
}

int Report(double part, const char*, void* progress) {
  (*static_cast<const PROGRESS*>(progress))(part);
  return TRUE;
}

}  // namespace

void CheckGdalFormat(const std::string& path, const char* type) {
  GDALAllRegister();
  GDALDriver* const driver = DriverForExtension(path);
  if (driver == nullptr) {
    throw std::runtime_error("no GDAL driver goes with the ending of " + path);
  }
  if (!Lists(*driver, GDAL_DMD_CREATIONDATATYPES, type)) {
    throw std::runtime_error(std::string("GDAL's driver ") + driver->GetDescription() +
                             ", which goes with the ending of " + path + ", does not write " +
                             type);
  }
}

void WriteGdalCopy(const RASTER_READER& raster, const std::string& path,
                   const GDAL_COPY_OPTIONS& options, const PROGRESS& progress) {
  GDALAllRegister();
  GDALDriver& writer = Driver(options.driver, path);
  CPLStringList creation_options = CreationOptions(options.creation_options, writer);
  LINE_DATASET source(raster, options);
  NEW_FILE file(path);
  const GDAL_ERRORS errors;
  constexpr int strict = TRUE;
  GDALDatasetUniquePtr copy(writer.CreateCopy(file.Path().c_str(), &source, strict,
                                              creation_options.List(), Report,
                                              const_cast<PROGRESS*>(&progress)));
  const bool is_created = copy != nullptr;
  const bool same_type = is_created && HasSameType(*copy, source);
  // The last blocks are written here: a full disk may show only now.
  copy.reset();
  if (errors.HasFailure() || !same_type) {
    errors.Throw("can not write " + path);
  }
  file.Finish();
}
