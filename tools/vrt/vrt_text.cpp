#include "vrt/vrt_text.h"

#include <array>
#include <bit>
#include <cstdint>
#include <filesystem>
#include <map>
#include <sstream>

#include "common/read_raster_header.h"
#include "gdal/gdal_types.h"
#include "raster/mem_mgr.h"

namespace {

std::string EscapedForXml(const std::string& text) {
  static const std::map<char, const char*> escapes = {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}};
  std::string escaped;
  for (const char character : text) {
    const auto found = escapes.find(character);
    escaped += found == escapes.end() ? std::string(1, character) : found->second;
  }
  return escaped;
}

/// What the bands of a pixel type without a data type of its own hold.
std::string BandMeaning(PIXEL_TYPE type, int band) {
  constexpr std::array colours = {"Red", "Green", "Blue"};
  constexpr std::array parts = {"real part", "imaginary part"};
  const auto index = static_cast<std::size_t>(band);
  switch (type) {
    case PIXEL_TYPE::RGB:
      return std::string("    <ColorInterp>") + colours[index] + "</ColorInterp>\n";
    case PIXEL_TYPE::C_U_INT_8:
      return std::string("    <Description>") + parts[index] + "</Description>\n";
    default:
      return "";
  }
}

}  // namespace

std::string VrtText(const std::string& path) {
  MEM_MGR raster;
  constexpr int read_only = 0;
  raster.Map(path.c_str(), read_only);
  const PIXEL_TYPE type = raster.PixelType();
  const GDAL_LAYOUT layout = GdalLayoutOf(type);
  const std::int64_t header = ReadRasterHeader(path).PixelOffset();
  const std::int64_t pixel = raster.BytesPerPixel();
  const std::string name = EscapedForXml(std::filesystem::path(path).filename());
  const char* byte_order = std::endian::native == std::endian::little ? "LSB" : "MSB";

  std::ostringstream text;
  text << "<VRTDataset rasterXSize=\"" << raster.Width() << "\" rasterYSize=\"" << raster.Height()
       << "\">\n";
  for (int band = 0; band < layout.n_bands; ++band) {
    text << "  <VRTRasterBand dataType=\"" << layout.data_type << "\" band=\"" << band + 1
         << "\" subClass=\"VRTRawRasterBand\">\n"
         << BandMeaning(type, band)  //
         << "    <SourceFilename relativeToVRT=\"1\">" << name << "</SourceFilename>\n"
         << "    <ImageOffset>" << header + band << "</ImageOffset>\n"
         << "    <PixelOffset>" << pixel << "</PixelOffset>\n"
         << "    <LineOffset>" << pixel * raster.Width() << "</LineOffset>\n"
         << "    <ByteOrder>" << byte_order << "</ByteOrder>\n"
         << "  </VRTRasterBand>\n";
  }
  text << "</VRTDataset>\n";
  return text.str();
}
