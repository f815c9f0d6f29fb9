#include <cmath>
#include <cstdint>
#include <random>

#include "export/export_command.h"
#include "import/import_command.h"
#include "mask/mask_command.h"
#include "raster/mem_mgr.h"
#include "tools/command_test.h"
#include "vrt/vrt_command.h"

namespace {

/// Makes rasters on both ways between our files and those of GDAL's own programs.
class GDAL_TEST : public COMMAND_TEST {
 protected:
  std::string Import(const std::string& source, const std::string& options = "") const {
    return Run(AddImportCommand,
               "import " + Path(source.c_str()) + " " + Path("back.ras") + " " + options);
  }
  void Export(const std::string& raster, const std::string& target,
              const std::string& options = "") const {
    Run(AddExportCommand,
        "export " + Path(raster.c_str()) + " " + Path(target.c_str()) + " " + options);
  }
  void Vrt(const std::string& raster) const { Run(AddVrtCommand, "vrt " + Path(raster.c_str())); }

  void Translate(const std::string& source, const std::string& target,
                 const std::string& options = "") const {
    Shell("gdal_translate -q " + options + " " + Path(source.c_str()) + " " + Path(target.c_str()));
  }
  /// The values of all bands of a pixel, one a line.
  std::string ValuesAt(const std::string& file, int sample, int line) const {
    return Shell("gdallocationinfo -valonly " + Path(file.c_str()) + " " + std::to_string(sample) +
                 " " + std::to_string(line));
  }
  std::string Bytes(const char* name) const { return ReadFile(Path(name)); }

  /// A raster of random numbers over and beyond the range of the type.
  void MakeRaster(const char* name, PIXEL_TYPE type, double range) const {
    std::mt19937 random;
    std::uniform_real_distribution<double> number(-range, range);
    std::vector<std::complex<double>> values(width * height);
    for (std::complex<double>& value : values) {
      value = {number(random), number(random)};
    }
    const auto pixel = [&](int sample, int line) {
      return values[static_cast<std::size_t>(line * width + sample)];
    };
    if (HoldsPairs(type)) {
      Complex(name, width, height, pixel, type);
    } else {
      Real(
          name, width, height, [&](int sample, int line) { return pixel(sample, line).real(); },
          type);
    }
  }

  static constexpr int width = 37;
  static constexpr int height = 23;
};

struct TYPE_CASE {
  PIXEL_TYPE type;
  double range;
};

class GDAL_ROUND_TRIP : public GDAL_TEST, public testing::WithParamInterface<TYPE_CASE> {};

TEST_P(GDAL_ROUND_TRIP, EveryBitComesBack) {
  const auto [type, range] = GetParam();
  const std::string type_option = std::string("--type ") + DataTypeOf(type).Name();
  const bool is_binary16 = type == PIXEL_TYPE::FLT_2 || type == PIXEL_TYPE::C_FLT_2;
  MakeRaster("a&b.ras", type, range);

  Export("a&b.ras", "out.tif", "--creation-option COMPRESS=DEFLATE --creation-option TILED=YES");
  EXPECT_NE(Shell("gdalinfo " + Path("out.tif")).find("COMPRESSION=DEFLATE"), std::string::npos);
  Import("out.tif", type_option);
  EXPECT_EQ(Bytes("back.ras"), Bytes("a&b.ras")) << "exported";

  if (is_binary16) {
    EXPECT_THROW(Vrt("a&b.ras"), std::invalid_argument);
    return;
  }
  const bool is_complex_float = type == PIXEL_TYPE::C_FLT_6 || type == PIXEL_TYPE::C_FLT_15;
  const std::string options = type == PIXEL_TYPE::C_U_INT_8 ? " --band 1,2"
                              : is_complex_float            ? type_option
                                                            : "";
  Vrt("a&b.ras");
  Translate("'a&b.ras.vrt'", "translated.tif");
  const std::string report = Import("translated.tif", options);
  EXPECT_EQ(Bytes("back.ras"), Bytes("a&b.ras")) << "opened in place, type chosen";
  EXPECT_NE(report.find("clipped: 0\nrounded: 0\n"), std::string::npos) << report;
}

INSTANTIATE_TEST_SUITE_P(
    Types, GDAL_ROUND_TRIP,
    testing::Values(TYPE_CASE{PIXEL_TYPE::U_INT_8, 300}, TYPE_CASE{PIXEL_TYPE::INT_16, 4e4},
                    TYPE_CASE{PIXEL_TYPE::INT_32, 3e9}, TYPE_CASE{PIXEL_TYPE::FLT_2, 7e4},
                    TYPE_CASE{PIXEL_TYPE::FLT_6, 1e30}, TYPE_CASE{PIXEL_TYPE::FLT_15, 1e300},
                    TYPE_CASE{PIXEL_TYPE::C_U_INT_8, 300}, TYPE_CASE{PIXEL_TYPE::C_INT_16, 4e4},
                    TYPE_CASE{PIXEL_TYPE::C_FLT_2, 7e4}, TYPE_CASE{PIXEL_TYPE::C_FLT_6, 1e30},
                    TYPE_CASE{PIXEL_TYPE::C_FLT_15, 1e300}),
    [](const auto& tested) { return std::string(DataTypeOf(tested.param.type).Name()); });

TEST_F(GDAL_TEST, PicturesAndColourMapsKeepTheirPlaces) {
  MEM_MGR colours;
  colours.Create(Path("rgb.ras").c_str(), 0, 0, 3, 1, PIXEL_TYPE::RGB);
  for (int i = 0; i < 24; ++i) {
    colours.Data()[i] = static_cast<unsigned char>(10 * i);
  }
  Vrt("rgb.ras");
  Export("rgb.ras", "rgb.tif");
  for (const char* file : {"rgb.ras.vrt", "rgb.tif"}) {
    EXPECT_EQ(ValuesAt(file, 1, 1), "150\n160\n170\n") << file;
  }

  const std::string planes(12, '\x07');
  MEM_MGR mapped;
  mapped.Create(Path("mapped.ras").c_str(), 0, 0, 3, 1, PIXEL_TYPE::U_INT_8,
                COLOR_MAP::FromPlanes(reinterpret_cast<const unsigned char*>(planes.data()), 4));
  mapped.Data()[6] = 42;
  Vrt("mapped.ras");
  EXPECT_EQ(ValuesAt("mapped.ras.vrt", 2, 1), "42\n");
}

TEST_F(GDAL_TEST, ImportTakesAScaledWindowAndCountsWhatChanges) {
  const double values[] = {NAN, 700.0, -2.0, 0.6, 512.0, 11.0};
  Real("map.ras", 8, 5, [&](int sample, int line) {
    return line == 2 && sample >= 1 && sample < 7 ? values[sample - 1] : 1e9;
  });
  Vrt("map.ras");
  EXPECT_EQ(Import("map.ras.vrt", "--type u_int_8 --scale 0.5 --window 1,2,6,1"),
            "pixel type: u_int_8\nwidth: 6\nheight: 1\n"
            "scale: 0.5\nclipped: 3\nrounded: 2\nrounded to zero: 1\nno data: 0\nnot finite: 1\n");
  EXPECT_EQ(Bytes("back.ras").substr(32), std::string("\0\xFF\0\0\xFF\x06", 6));
  EXPECT_NE(Import("map.ras.vrt", "--type c_flt_2").find("clipped: 34\n"), std::string::npos);
}

TEST_F(GDAL_TEST, ImportReadsEnviAndPutsPartsTogether) {
  MakeRaster("slc.ras", PIXEL_TYPE::C_INT_16, 4e4);
  Vrt("slc.ras");
  Translate("slc.ras.vrt", "slc.img", "-of ENVI -ot CFloat32");
  Import("slc.img", "--type c_int_16");
  EXPECT_EQ(Bytes("back.ras"), Bytes("slc.ras"));

  MEM_MGR bytes;
  bytes.Create(Path("rgb.ras").c_str(), 0, 0, 0, 0, PIXEL_TYPE::RGB);
  std::copy_n("\x05\x06\x07", 3, bytes.Data());
  Vrt("rgb.ras");
  Import("rgb.ras.vrt", "--band 3,1 --type c_int_16");
  EXPECT_EQ(Bytes("back.ras").substr(32), std::string("\7\0\5\0", 4));
}

TEST_F(GDAL_TEST, PixelsWithoutDataAreZeroInImageAndMask) {
  const double values[] = {NAN, 700.0, -9999.0, 0.0, HUGE_VAL, 11.0};
  Real("map.ras", 6, 1, [&](int sample, int) { return values[sample]; });
  Export("map.ras", "map.tif", "--creation-option PROFILE=GDALGeoTIFF");
  Shell("gdal_translate -q -a_nodata -9999 " + Path("map.tif") + " " + Path("with.tif"));
  const std::string report = Import("with.tif", "--scale auto --type int_16 --mask-out " +
                                                    Path("mask.ras") + " --pool " + Path("a.pool"));
  EXPECT_NE(report.find("scale: 8\n"), std::string::npos) << report;
  EXPECT_NE(report.find("no data: 1\nnot finite: 2\n"), std::string::npos) << report;
  EXPECT_NE(Bytes("a.pool").find("pixel_scale "), std::string::npos);
  EXPECT_EQ(Bytes("mask.ras").substr(32), std::string("\0\1\0\1\0\1", 6));
  EXPECT_EQ(Bytes("back.ras").substr(32), std::string("\0\0\xE0\x15\0\0\0\0\0\0\x58\0", 12));

  // The way back.
  Export("back.ras", "out.tif", "--type Float32 --scale 0.125 --mask " + Path("mask.ras"));
  EXPECT_EQ(ValuesAt("out.tif", 0, 0), "nan\n");
  EXPECT_EQ(ValuesAt("out.tif", 1, 0), "700\n");
  EXPECT_NE(Import("out.tif").find("no data: 0\nnot finite: 3\n"), std::string::npos);

  // A mask of bytes; -9999 and 0 become the byte 0.
  Shell("gdal_translate -q -b 1 -mask 1 " + Path("map.tif") + " " + Path("masked.tif"));
  Import("masked.tif", "--type int_16 --mask-out " + Path("mask.ras"));
  EXPECT_EQ(Bytes("mask.ras").substr(32), std::string("\0\1\0\0\0\1", 6));
}

TEST_F(GDAL_TEST, ImportTurnsRowsOfRangeIntoColumns) {
  Complex(
      "rows.ras", 40, 30, [](int x, int y) { return VALUE(x, y); }, PIXEL_TYPE::C_INT_16);
  Vrt("rows.ras");
  struct TURN {
    const char* options;
    VALUE corner;  ///< what the first pixel was
    VALUE next;    ///< the second one of the first line
  };
  for (const auto& [options, corner, next] : std::initializer_list<TURN>{
           {"", VALUE(0, 0), VALUE(1, 0)},
           {"--flip samples", VALUE(39, 0), VALUE(38, 0)},
           {"--flip lines", VALUE(0, 29), VALUE(1, 29)},
           {"--transpose", VALUE(0, 0), VALUE(0, 1)},
           {"--transpose --flip samples", VALUE(0, 29), VALUE(0, 28)},
           {"--transpose --flip lines,samples", VALUE(39, 29), VALUE(39, 28)}}) {
    Import("rows.ras.vrt", options);
    const RASTER_READER raster(Path("back.ras"));
    EXPECT_EQ(raster.Width(), std::string_view(options).starts_with("--transpose") ? 30 : 40);
    std::vector<VALUE> pixels(2);
    raster.ReadLine(0, 0, pixels);
    EXPECT_EQ(pixels, (std::vector<VALUE>{corner, next})) << options;
  }
}

TEST_F(GDAL_TEST, MasksAreMadeOfValuesAndOfMasks) {
  const double values[] = {NAN, 0.0, 3.0, -1.0};
  const double others[] = {1.0, 1.0, 0.0, 1.0};
  Real("a.ras", 4, 1, [&](int sample, int) { return values[sample]; });
  Real(
      "b.ras", 4, 1, [&](int sample, int) { return others[sample]; }, PIXEL_TYPE::U_INT_8);
  const auto mask = [&](const std::string& arguments) {
    Run(AddMaskCommand, "mask " + Path("m.ras") + " " + arguments);
    std::string text;
    for (const char byte : Bytes("m.ras").substr(32)) {
      text += static_cast<char>('0' + byte);
    }
    return text;
  };
  const std::string a = Path("a.ras");
  const std::string b = Path("b.ras");
  EXPECT_EQ(mask(a), "0011");
  EXPECT_EQ(mask(a + " --finite"), "0111");
  EXPECT_EQ(mask(a + " --invalid -1 --invalid 3"), "0100");
  EXPECT_EQ(mask(a + " " + b), "0001");
  EXPECT_EQ(mask(a + " " + b + " --any"), "1111");
  EXPECT_EQ(mask(b + " --invert"), "0010");
  EXPECT_THROW(mask(a + " " + Real("c.ras", 3, 1, [](int, int) { return 1; }).Path()),
               std::invalid_argument);
}

TEST_F(GDAL_TEST, WhatCanNotBeDoneIsRefusedAndLeavesNothing) {
  MakeRaster("slc.ras", PIXEL_TYPE::C_INT_16, 4e4);
  Vrt("slc.ras");
  for (const char* options : {"--type int_16", "--band 1,1", "--window 0,0,38,1",
                              "--window 36,22,2,1", "--window 0,0,0,1", "--window -1,0,2,2"}) {
    EXPECT_THROW(Import("slc.ras.vrt", options), std::invalid_argument) << options;
  }
  for (const char* taken : {"slc.ras.vrt", "back.ras", "./back.ras"}) {
    for (const char* option : {"--pool ", "--mask-out "}) {
      EXPECT_THROW(Import("slc.ras.vrt", option + Path(taken)), std::invalid_argument);
    }
  }
  EXPECT_THROW(Import("slc.ras.vrt", "--band 2"), std::runtime_error);
  EXPECT_THROW(Import("slc.ras.vrt", "--type rgb"), CLI::ValidationError);
  EXPECT_THROW(Import("missing.tif"), std::runtime_error);
  Export("slc.ras", "cut.tif");
  std::filesystem::resize_file(Path("cut.tif"), 2000);
  EXPECT_THROW(Import("cut.tif"), std::runtime_error);
  EXPECT_FALSE(std::filesystem::exists(Path("back.ras")));

  // Of two real bands a complex raster is made.
  Real("real.ras", 4, 4, [](int, int) { return 1.0; });
  Vrt("real.ras");
  EXPECT_THROW(Import("real.ras.vrt", "--band 1,1 --type flt_6"), std::invalid_argument);
  EXPECT_THROW(Run(AddImportCommand, "import " + Path("real.ras.vrt") + " " + Path("real.ras")),
               std::invalid_argument);
  Shell("gdal_translate -q -b 1 -b 1 " + Path("real.ras.vrt") + " " + Path("two.tif"));
  EXPECT_THROW(Import("two.tif"), std::invalid_argument);
  for (const char* scale : {"0", "nan", "-2", "inf", "2x"}) {
    const std::string option = std::string("--scale ") + scale;
    EXPECT_THROW(Import("real.ras.vrt", option), CLI::ValidationError) << scale;
    EXPECT_THROW(Export("real.ras", "real.tif", option), CLI::ValidationError) << scale;
  }
  for (const char* options : {"--type Nothing", "--mask slc.ras"}) {
    EXPECT_ANY_THROW(Export("real.ras", "real.tif", options)) << options;
  }
  EXPECT_THROW(Export("slc.ras", "slc.tif", "--type Float32"), std::invalid_argument);
  EXPECT_NE(Import("real.ras.vrt", "--band 1,1").find("type: c_flt_2\n"), std::string::npos);
  WriteFile(Path("many.vrt"),
            "<VRTDataset rasterXSize='1' rasterYSize='1'><Metadata domain='SUBDATASETS'>"
            "<MDI key='SUBDATASET_1_NAME'>part</MDI></Metadata></VRTDataset>");
  EXPECT_THROW(Import("many.vrt"), std::runtime_error);
  EXPECT_THROW(Export("slc.ras", "slc.tif", "--driver NONE"), std::runtime_error);
  std::filesystem::create_directory(Path("slc.ras.vrt.vrt"));
  std::filesystem::copy_file(Path("slc.ras"), Path("slc.ras.vrt"),
                             std::filesystem::copy_options::overwrite_existing);
  EXPECT_THROW(Vrt("slc.ras.vrt"), std::system_error);

  for (const char* target : {"slc.png", "slc.vrt", "slc.nothing", "missing/slc.tif"}) {
    EXPECT_THROW(Export("slc.ras", target), std::runtime_error) << target;
  }
  // This driver knows no complex integers and would store bytes.
  EXPECT_THROW(Export("slc.ras", "slc.img", "--driver ENVI"), std::runtime_error);
  EXPECT_FALSE(std::filesystem::exists(Path("slc.img")));
  EXPECT_THROW(Export("slc.ras", "slc.ras", "--driver GTiff"), std::invalid_argument);
}

}  // namespace
