#include <gtest/gtest.h>

#include <functional>

#include "run_folder.h"
#include "support/raster_file.h"

namespace {

using CAUSE = std::function<void(RUN_FOLDER&)>;

/// A run of the ordinary scene with one thing wrong.
struct FAILURE {
  const char* name;
  CAUSE cause;
  std::vector<std::string> alarms;  ///< all of them but the supervisor's line, in their order
  bool output_exists = false;
};

const std::string supervisor_line = "KVT_MSG|ERROR|Resample terminated with error!";

std::vector<std::string> Alarms(const RUN_FOLDER& folder) {
  std::vector<std::string> alarms;
  for (const std::string& line : folder.LogLines()) {
    if (line.starts_with(alarm_begin)) {
      alarms.push_back(line.substr(alarm_begin.size()));
    }
  }
  return alarms;
}

void ExpectFailures(const std::vector<FAILURE>& failures) {
  for (const FAILURE& failure : failures) {
    SCOPED_TRACE(failure.name);
    RUN_FOLDER folder(OrdinaryScene());
    folder.Write("OK.run", "0");
    failure.cause(folder);
    const PROCESS_END end = folder.Run();
    ExpectFailure(folder, end);
    std::vector<std::string> alarms = failure.alarms;
    alarms.push_back(supervisor_line);
    EXPECT_EQ(Alarms(folder), alarms);
    EXPECT_NE(end.screen.find("\033[7m" + alarm_begin + supervisor_line + "\033[0m\n"),
              std::string::npos);
    EXPECT_EQ(folder.CountLogLines(info_begin + std::string(59, '*')), 2) << "a trailer stands";
    EXPECT_EQ(folder.Exists("out.ras"), failure.output_exists);
    EXPECT_EQ(folder.Exists("out_mask.ras"), failure.output_exists);
    EXPECT_EQ(PoolEntry(folder.Content("insar.pool"), "software_names").size(), 0U);
  }
}

CAUSE Parameter(const std::string& name, const std::string& value) {
  return [=](RUN_FOLDER& folder) { folder.parameters[name] = value; };
}

CAUSE InsarEntry(const std::string& key, const std::string& entry) {
  return [=](RUN_FOLDER& folder) {
    POOL_TEXT pool = InsarPool(OrdinaryScene());
    pool.Set(key, entry);
    folder.Write("insar.pool", pool.Text());
  };
}

CAUSE SlaveEntry(const std::string& key, const std::string& entry) {
  return [=](RUN_FOLDER& folder) {
    POOL_TEXT pool = SlavePool(OrdinaryScene());
    pool.Set(key, entry);
    folder.Write("slave.pool", pool.Text());
  };
}

CAUSE WithoutInsarEntry(const std::string& key) {
  return [=](RUN_FOLDER& folder) {
    POOL_TEXT pool = InsarPool(OrdinaryScene());
    pool.Remove(key);
    folder.Write("insar.pool", pool.Text());
  };
}

CAUSE WithoutSlaveEntry(const std::string& key) {
  return [=](RUN_FOLDER& folder) {
    POOL_TEXT pool = SlavePool(OrdinaryScene());
    pool.Remove(key);
    folder.Write("slave.pool", pool.Text());
  };
}

CAUSE WithoutFile(const std::string& name) {
  return [=](RUN_FOLDER& folder) { std::filesystem::remove(folder.Path(name)); };
}

CAUSE FolderInPlaceOf(const std::string& name) {
  return [=](RUN_FOLDER& folder) {
    std::filesystem::remove(folder.Path(name));
    std::filesystem::create_directory(folder.Path(name));
  };
}

CAUSE CutFile(const std::string& name, std::size_t size) {
  return [=](RUN_FOLDER& folder) { std::filesystem::resize_file(folder.Path(name), size); };
}

CAUSE CutLastByte(const std::string& name) {
  return [=](RUN_FOLDER& folder) {
    std::filesystem::resize_file(folder.Path(name),
                                 std::filesystem::file_size(folder.Path(name)) - 1);
  };
}

CAUSE TypeWord(const std::string& name, unsigned type) {
  return [=](RUN_FOLDER& folder) {
    const std::string bytes = folder.Content(name);
    RASTER_HEADER header = ParseHeader(bytes);
    header.type = type;
    folder.Write(name, HeaderBytes(header) + bytes.substr(raster_header_size));
  };
}

template <class T>
CAUSE Raster(const std::string& name, int width, int height, unsigned type) {
  return [=](RUN_FOLDER& folder) { WriteRaster(folder.Path(name), GRID<T>(width, height), type); };
}

std::string PoolText(const std::string& key, const std::string& text) {
  return "parameter pool: parameter key >> " + key + " << " + text;
}

TEST(Failure, OfAParameter) {
  const auto no_rows = [](const std::string& count) {
    return std::vector<std::string>{
        "INTERPOLATION_KERNEL: the number of sub-pixel positions must be at least 1, not " + count,
        "wrong argument"};
  };
  ExpectFailures({
      {"unknown kernel",
       Parameter("KERNEL_TYPE", "foo"),
       {"enumeration data type - invalid value of class N5BASIC5TYPES10KernelTypeE: foo",
        "Valid values are: 'cubic_convolution' 'truncated_sinc_no_weight' "
        "'truncated_sinc_kaiser_weight' "}},
      {"unknown mapping format",
       Parameter("MAPPING_FORMAT", "foo"),
       {"enumeration data type - invalid value of class N5BASIC5TYPES17MappingFormatTypeE: foo",
        "Valid values are: 'matrix' 'polynomial' "}},
      {"no mapping format",
       Parameter("MAPPING_FORMAT", "-"),
       {"mapping type is neither matrix nor polynomial: -",
        "case not handled in if or switch block"}},
      {"no width",
       [](RUN_FOLDER& folder) {
         folder.parameters["n_samples"] = "0";
         folder.parameters["n_lines"] = "5";
       },
       {"output without pixels: n_samples = 0, n_lines = 5", "wrong argument"}},
      {"height that is no number",
       [](RUN_FOLDER& folder) {
         folder.parameters["n_samples"] = "5";
         folder.parameters["n_lines"] = "many";
       },
       {"output without pixels: n_samples = 5, n_lines = 0", "wrong argument"}},
      {"no rows", Parameter("KERNEL_SUBPIX_POS", "0"), no_rows("0")},
      {"less than no rows", Parameter("KERNEL_SUBPIX_POS", "-3"), no_rows("-3")},
      {"rows that are no number", Parameter("KERNEL_SUBPIX_POS", "abc"), no_rows("0")},
      {"nobody to ask",
       [](RUN_FOLDER& folder) { folder.parameters.erase("SlaveIn"); },
       {"end of standard input, no value for parameter SlaveIn", "missing parameter"}},
  });
}

TEST(Failure, OfAPool) {
  const std::string no_pool = "pool error - can not open parameter pool";
  const std::string no_key = "pool error - key not found";
  ExpectFailures({
      {"missing slave pool",
       WithoutFile("slave.pool"),
       {"can not open parameter file slave.pool", no_pool},
       true},
      {"folder as slave pool",
       FolderInPlaceOf("slave.pool"),
       {"parameter file slave.pool is a directory!", no_pool},
       true},
      {"missing log pool",
       Parameter("log_pp", "log.pool"),
       {"can not open pool file for update log.pool", no_pool}},
      {"missing width",
       WithoutInsarEntry("n_samples"),
       {PoolText("n_samples", "not found"), no_key}},
      {"real width",
       InsarEntry("n_samples", "FLT_15 5"),
       {PoolText("n_samples", "type INT_32 expected"), "pool error - wrong parameter type"}},
      {"fractional height",
       InsarEntry("n_lines", "INT_32 1.5"),
       {PoolText("n_lines", "read value is : 1.5 INT_32 (no additional character) value expected"),
        "pool error - no or invalid parameter value in file"}},
      {"negative height",
       InsarEntry("n_lines", "INT_32 -1"),
       {"output without pixels: n_samples = 70, n_lines = -1", "wrong argument"}},
      {"missing mapping format",
       WithoutInsarEntry("mapping_format"),
       {PoolText("mapping_format", "not found"), no_key}},
      {"unknown mapping format",
       InsarEntry("mapping_format", "STR foo"),
       {"enumeration data type - invalid value of class N5BASIC5TYPES17MappingFormatTypeE: foo",
        "Valid values are: 'matrix' 'polynomial' "}},
      {"missing start time",
       WithoutInsarEntry("slave_first_az_time"),
       {PoolText("slave_first_az_time", "not found"), no_key},
       true},
      {"missing rate", WithoutSlaveEntry("prf"), {PoolText("prf", "not found"), no_key}, true},
      {"infinite rate",
       SlaveEntry("prf", "FLT_15 1e999"),
       {PoolText("prf", "read value is : 1e999 (value is out of range) FLT_15 expected"),
        "pool error - parameter value out of bounds"},
       true},
      {"unfinished vector",
       SlaveEntry("fdc_poly_az_time", "FLT_15_V 0 3\n{\n1\n2\n}"),
       {PoolText("fdc_poly_az_time", "no } at end of FLT_8_V"), "parameter pool error"},
       true},
  });
}

TEST(Failure, OfThePoolThatTheRunNeedsFirst) {
  for (const bool folder_instead : {false, true}) {
    RUN_FOLDER folder(OrdinaryScene());
    (folder_instead ? FolderInPlaceOf("insar.pool") : WithoutFile("insar.pool"))(folder);
    ExpectFailure(folder, folder.Run());
    EXPECT_EQ(Alarms(folder), (std::vector<std::string>{
                                  "can not open pool file for update insar.pool",
                                  "pool error - can not open parameter pool", supervisor_line}));
  }
}

TEST(Failure, OfAnUnknownImagingModeListsTheKnownOnes) {
  RUN_FOLDER folder(OrdinaryScene());
  SlaveEntry("imaging_mode", "STR foo")(folder);
  ExpectFailure(folder, folder.Run());
  const std::vector<std::string> alarms = Alarms(folder);
  ASSERT_EQ(alarms.size(), 3U);
  EXPECT_EQ(alarms[0], "enumeration data type - invalid value of class N5ZARVO9ImageModeE: foo");
  for (const char* mode : {"SM", "SL", "HS", "HS300", "ST", "SC", "WS", "TS", "TOPS", "IW", "EW",
                           "WV", "ATI", "ATIS"}) {
    EXPECT_NE(alarms[1].find("'" + std::string(mode) + "'"), std::string::npos) << mode;
  }
  EXPECT_TRUE(alarms[1].starts_with("Valid values are: '"));
}

TEST(Failure, OfAnInputRaster) {
  const std::string no_open = "can not open file";
  const std::string no_file = "MEM_MGR: No such file or directory";
  const std::string no_read = "can not read from file";
  const std::string short_file = "MEM_MGR: file is shorter than its header declares: ";
  const std::string no_header = "MEM_MGR: can not read header from: ";
  ExpectFailures({
      {"missing slave",
       WithoutFile("slave.ras"),
       {"MEM_MGR: can not open: slave.ras", no_file, no_open}},
      {"missing mask",
       WithoutFile("mask.ras"),
       {"MEM_MGR: can not open: mask.ras", no_file, no_open}},
      {"folder as slave", FolderInPlaceOf("slave.ras"), {no_header + "slave.ras", no_read}},
      {"empty mask", CutFile("mask.ras", 0), {no_header + "mask.ras", no_read}},
      {"short header", CutFile("slave.ras", 31), {no_header + "slave.ras", no_read}},
      {"no pixels", CutFile("slave.ras", 32), {short_file + "slave.ras", no_read}},
      {"last byte missing", CutLastByte("slave.ras"), {short_file + "slave.ras", no_read}},
      {"last byte of the mask missing",
       CutLastByte("mask.ras"),
       {short_file + "mask.ras", no_read}},
      {"unknown pixel type",
       TypeWord("slave.ras", 7),
       {"MEM_MGR: unknown pixeltype", "not supported pixel type"}},
      {"real slave",
       TypeWord("slave.ras", RASTER_FLOAT),
       {"ERROR : Non supported pixel type has been provided.", "not supported pixel type"},
       true},
      {"narrow mask",
       Raster<char>("mask.ras", 71, 60, RASTER_BYTE),
       {"mask has another size than the slave: 71x60 != 72x60", "data error"}},
      {"low mask",
       Raster<char>("mask.ras", 72, 59, RASTER_BYTE),
       {"mask has another size than the slave: 72x59 != 72x60", "data error"}},
      {"wide mask pixels",
       Raster<short>("mask.ras", 72, 60, RASTER_BYTE),
       {"mask is not one byte a pixel: mask.ras", "data error"}},
  });
}

TEST(Failure, OfTheMapping) {
  const std::string short_file = "MEM_MGR: file is shorter than its header declares: ";
  const std::string no_key = "pool error - key not found";
  ExpectFailures({
      {"missing file",
       WithoutFile("rg.map"),
       {"MEM_MGR: can not open: rg.map", "MEM_MGR: No such file or directory",
        "can not open file"}},
      {"cut file", CutLastByte("az.map"), {short_file + "az.map", "can not read from file"}},
      {"widths",
       Raster<float>("az.map", 12, 10, RASTER_FLOAT),
       {"mapping files have diffent width: 11 != 12 ", "data error"}},
      {"heights",
       Raster<float>("az.map", 11, 9, RASTER_FLOAT),
       {"mapping files have diffent height: 10 != 9 ", "data error"}},
      {"whole numbers",
       TypeWord("az.map", 1),
       {"pixels of the mapping file are not 32-bit real: az.map", "not supported pixel type"}},
      {"no subsampling",
       WithoutInsarEntry("shift_matrices_subsampling"),
       {PoolText("shift_matrices_subsampling", "not found"), no_key}},
      {"one subsampling of two",
       InsarEntry("shift_matrices_subsampling_rg", "INT_32 8"),
       {PoolText("shift_matrices_subsampling_az", "not found"), no_key}},
      {"subsampling 0",
       InsarEntry("shift_matrices_subsampling", "INT_32 0"),
       {"subsampling of the mapping files must be at least 1, not 0 in range and 0 in azimuth",
        "wrong argument"}},
      {"missing polynomial",
       Parameter("MAPPING_FORMAT", "polynomial"),
       {PoolText("respl_poly_az", "not found"), no_key}},
      {"short polynomial",
       [](RUN_FOLDER& folder) {
         POOL_TEXT pool = InsarPool(OrdinaryScene());
         pool.SetReals("respl_poly_az", {0, 0, 0, 0, 0, 0});
         pool.SetReals("respl_poly_rg", {0, 0, 0, 0, 0});
         folder.Write("insar.pool", pool.Text());
         folder.parameters["MAPPING_FORMAT"] = "polynomial";
       },
       {"mapping polynomial \"respl_poly_rg\" needs 6 coefficients, it has 5", "data error"}},
  });
}

TEST(Failure, OfTheDopplerAnnotation) {
  const auto refusal = [](const std::string& reason) {
    return std::vector<std::string>{"fDC: " + reason, "data error"};
  };
  // The ordinary scene has two polynomials of two coefficients.
  ExpectFailures({
      {"no polynomial", SlaveEntry("fdc_poly_az_time", "FLT_15_V 0 0\n{\n}"),
       refusal("fdc_poly_az_time holds no polynomial"), true},
      {"one reference time for two", SlaveEntry("fdc_poly_rg_ref_time", "FLT_15_V 0 1\n{\n1\n}"),
       refusal("fdc_poly_rg_ref_time and fdc_poly_az_time have different lengths"), true},
      {"one row for two", SlaveEntry("fdc_poly_coeff", "FLT_15_M 0 1 0 1\n{\n{\n1\n}\n}"),
       refusal("fdc_poly_coeff has fewer rows than there are polynomials"), true},
      {"no coefficient", SlaveEntry("fdc_poly_coeff", "FLT_15_M 0 2 0 0\n{\n{\n}\n{\n}\n}"),
       refusal("fdc_poly_coeff holds no coefficient"), true},
      {"one time for two", SlaveEntry("fdc_poly_az_time", "FLT_15_V 0 2\n{\n1\n1\n}"),
       refusal("fdc_poly_az_time does not rise strictly"), true},
      {"no rate", SlaveEntry("prf", "FLT_15 0"),
       refusal("prf, range_sampling_frequency and oversampling must be positive numbers"), true},
  });
}

TEST(Failure, OfAnOutput) {
  ExpectFailures({
      {"missing folder",
       Parameter("SlaveOut", "missing/out.ras"),
       {"ENOENT: see: man page of open", "MEM_MGR: can not create: missing/out.ras",
        "can not create file"}},
      {"folder as output",
       [](RUN_FOLDER& folder) {
         std::filesystem::create_directory(folder.Path("folder"));
         folder.parameters["SlaveOut"] = "folder";
       },
       {"EISDIR: see: man page of open", "MEM_MGR: can not create: folder", "can not create file"}},
  });
}

TEST(Failure, OfAnOutputThatIsAnInputLeavesTheInputAlone) {
  struct {
    const char* parameter;
    const char* output;
    const char* input;
  } const cases[] = {
      {"SlaveOut", "slave.ras", "slave.ras"},  {"SlaveOut", "./mask.ras", "mask.ras"},
      {"SlaveOut", "symbolic", "rg.map"},      {"MaskOut", "hard", "az.map"},
      {"MaskOut", "insar.pool", "insar.pool"}, {"MaskOut", "slave.pool", "slave.pool"},
      {"MaskOut", "./out.ras", "out.ras"}};
  for (const auto& [parameter, output, input] : cases) {
    SCOPED_TRACE(output);
    RUN_FOLDER folder(OrdinaryScene());
    std::filesystem::create_symlink("rg.map", folder.Path("symbolic"));
    std::filesystem::create_hard_link(folder.Path("az.map"), folder.Path("hard"));
    const std::string before = folder.Exists(input) ? folder.Content(input) : "";
    folder.parameters[parameter] = output;
    ExpectFailure(folder, folder.Run());
    EXPECT_EQ(Alarms(folder),
              (std::vector<std::string>{"output would overwrite another file of the run: " +
                                            std::string(output) + " is " + input,
                                        "wrong argument", supervisor_line}));
    EXPECT_FALSE(folder.Exists("out.ras"));
    if (!before.empty()) {
      EXPECT_EQ(folder.Content(input) == before, true);
    }
  }
}

TEST(Failure, OfWorkersEndsTheRunOnce) {
  RUN_FOLDER folder(OrdinaryScene());
  TypeWord("slave.ras", RASTER_FLOAT)(folder);
  folder.environment["PARALLEL"] = "3";
  ExpectFailure(folder, folder.Run());
  EXPECT_EQ(
      folder.CountLogLines(alarm_begin + "ERROR : Non supported pixel type has been provided."), 3);
  const std::vector<std::string> alarms = Alarms(folder);
  ASSERT_GE(alarms.size(), 2U);
  EXPECT_EQ(alarms[alarms.size() - 2], "error in thread execution");
  EXPECT_EQ(alarms.back(), supervisor_line);
}

TEST(Failure, NoneForASlaveWithoutPixels) {
  RUN_FOLDER folder(OrdinaryScene());
  WriteRaster(folder.Path("slave.ras"), GRID<RAW_PIXEL>(0, 0), RASTER_COMPLEX_INT_16);
  folder.parameters.erase("MaskIn");
  ExpectSuccess(folder, folder.Run());
  const std::vector<std::uint8_t> nothing(std::size_t{70} * 60, 0);
  EXPECT_EQ(folder.Mask().values, nothing);
}

}  // namespace
