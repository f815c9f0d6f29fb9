#include <gtest/gtest.h>

#include <climits>
#include <functional>

#include "run_checks.h"
#include "signalled_run.h"

namespace {

using CAUSE = std::function<void(RUN_FOLDER&)>;

CAUSE Parameter(const std::string& name, const std::string& value) {
  return [=](RUN_FOLDER& folder) { folder.parameters[name] = value; };
}

CAUSE Size(const std::string& n_samples, const std::string& n_lines) {
  return [=](RUN_FOLDER& folder) {
    folder.parameters["n_samples"] = n_samples;
    folder.parameters["n_lines"] = n_lines;
  };
}

/// Another entry in a pool, or none without a text.
CAUSE Entry(const std::string& file, const std::string& key, const std::string& entry = "") {
  return [=](RUN_FOLDER& folder) {
    const SCENE scene = OrdinaryScene();
    POOL_TEXT pool = file == "insar.pool" ? InsarPool(scene) : SlavePool(scene);
    pool.Remove(key);
    if (!entry.empty()) {
      pool.Set(key, entry);
    }
    folder.Write(file, pool.Text());
  };
}

/// A polynomial mapping with this entry for azimuth.
CAUSE Polynomial(const std::string& azimuth) {
  return [=](RUN_FOLDER& folder) {
    Entry("insar.pool", "respl_poly_az", azimuth)(folder);
    folder.parameters["MAPPING_FORMAT"] = "polynomial";
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

template <class T>
CAUSE Raster(const std::string& name, int width, int height, unsigned type) {
  return [=](RUN_FOLDER& folder) { WriteRaster(folder.Path(name), GRID<T>(width, height), type); };
}

/// A run of the ordinary scene with one thing wrong.
struct FAILURE {
  CAUSE cause;
  std::string alarms;  ///< lines, all of them but the supervisor's
  bool output_exists = false;
};

void ExpectFailures(const std::vector<FAILURE>& failures) {
  for (const FAILURE& failure : failures) {
    SCOPED_TRACE(failure.alarms);
    RUN_FOLDER folder(OrdinaryScene());
    folder.Write("OK.run", "0");
    failure.cause(folder);
    ExpectCheckSays(folder, failure.alarms);
    const PROCESS_END end = folder.Run();
    ExpectFailure(folder, end);
    EXPECT_EQ(folder.Alarms(), failure.alarms + "\n" + supervisor_line + "\n");
    EXPECT_NE(end.screen.find("\033[7m" + alarm_begin + supervisor_line + "\033[0m\n"),
              std::string::npos);
    EXPECT_EQ(folder.CountLogLines(info_begin + std::string(59, '*')), 2) << "a trailer stands";
    EXPECT_EQ(folder.Exists("out.ras"), failure.output_exists);
    EXPECT_EQ(folder.Exists("out_mask.ras"), failure.output_exists);
    EXPECT_TRUE(!std::filesystem::is_regular_file(folder.Path("insar.pool")) ||
                folder.Content("insar.pool").find("software_names") == std::string::npos);
  }
}

const std::string wrong_argument = "\nwrong argument";
const std::string data_error = "\ndata error";
const std::string no_pool = "\npool error - can not open parameter pool";
const std::string no_open = "\nMEM_MGR: No such file or directory\ncan not open file";
const std::string no_read = "\ncan not read from file";
const std::string short_file = "MEM_MGR: file is shorter than its header declares: ";
const std::string no_header = "MEM_MGR: can not read header from: ";

std::string PoolText(const std::string& key, const std::string& text) {
  return "parameter pool: parameter key >> " + key + " << " + text;
}

std::string NoKey(const std::string& key) {
  return PoolText(key, "not found\npool error - key not found");
}

std::string NoValue(const std::string& type, const std::string& value, const std::string& valid) {
  return "enumeration data type - invalid value of class " + type + ": " + value +
         "\nValid values are: " + valid;
}

std::string NotCreated(const std::string& path, const std::string& reason,
                       const std::string& name) {
  return "MEM_MGR: can not create: " + path + ": " + reason + "\n" + name +
         ": see: man page of open\ncan not create file";
}

TEST(Failure, OfAParameter) {
  ExpectFailures({
      {Parameter("KERNEL_TYPE", "foo"),
       NoValue("N5BASIC5TYPES10KernelTypeE", "foo",
               "'cubic_convolution' 'truncated_sinc_no_weight' 'truncated_sinc_kaiser_weight' ")},
      {Parameter("MAPPING_FORMAT", "foo"),
       NoValue("N5BASIC5TYPES17MappingFormatTypeE", "foo", "'matrix' 'polynomial' ")},
      {Parameter("MAPPING_FORMAT", "-"),
       "mapping type is neither matrix nor polynomial: -\ncase not handled in if or switch block"},
      {Size("0", "5"), "output without pixels: n_samples = 0, n_lines = 5" + wrong_argument},
      {Size("5", "many"), "output without pixels: n_samples = 5, n_lines = 0" + wrong_argument},
      {Size("2147483647", "2147483647"),
       "MEM_MGR: impossible image bounds: columns 0 .. 2147483646, rows 0 .. 2147483646" +
           wrong_argument},
      {Parameter("KERNEL_COEFFICIENT", "1e30"),  // finite, but the sums of its window are not
       "INTERPOLATION_KERNEL: Kaiser weight is too large: 1e+30" + wrong_argument},
      {Parameter("KERNEL_COEFFICIENT", "inf"),
       "INTERPOLATION_KERNEL: Kaiser weight is too large: inf" + wrong_argument},
      {Parameter("KERNEL_SUBPIX_POS", "-3"),
       "INTERPOLATION_KERNEL: the number of sub-pixel positions must be at least 1, not -3" +
           wrong_argument},
      {[](RUN_FOLDER& folder) { folder.parameters.erase("SlaveIn"); },
       "end of standard input, no value for parameter SlaveIn\nmissing parameter"},
      {Parameter("SlaveOut", "missing/out.ras"),
       NotCreated("missing/out.ras", "No such file or directory", "ENOENT")},
      {[](RUN_FOLDER& folder) {
         std::filesystem::create_symlink("missing/out.ras", folder.Path("link.ras"));
         folder.parameters["SlaveOut"] = "link.ras";
       },
       NotCreated("link.ras", "No such file or directory", "ENOENT")},
      {Parameter("SlaveOut", "missing/"), NotCreated("missing/", "Is a directory", "EISDIR")},
      {Parameter("SlaveOut", "."), NotCreated(".", "Is a directory", "EISDIR")},
      {Parameter("KERNEL_COEFFICIENT", "1e30"),
       "INTERPOLATION_KERNEL: Kaiser weight is too large: 1e+30" + wrong_argument},
  });
}

TEST(Failure, OfAPool) {
  ExpectFailures({
      {WithoutFile("insar.pool"), "can not open pool file for update insar.pool" + no_pool},
      {FolderInPlaceOf("insar.pool"), "can not open pool file for update insar.pool" + no_pool},
      {Parameter("log_pp", "log.pool"), "can not open pool file for update log.pool" + no_pool},
      {Parameter("log_pp", "/dev/null"),
       "pool file for update /dev/null is not a regular file!" + no_pool},
      {Parameter("SLAVE_PARAMETER_POOL", "/dev/zero"),
       "parameter file /dev/zero is not a regular file!" + no_pool, true},
      {WithoutFile("slave.pool"), "can not open parameter file slave.pool" + no_pool, true},
      {FolderInPlaceOf("slave.pool"), "parameter file slave.pool is a directory!" + no_pool, true},
      {Entry("insar.pool", "n_samples"), NoKey("n_samples")},
      {Entry("insar.pool", "n_samples", "FLT_15 5"),
       PoolText("n_samples", "type INT_32 expected\npool error - wrong parameter type")},
      {Entry("insar.pool", "n_lines", "INT_32 1.5"),
       PoolText("n_lines",
                "read value is : 1.5 INT_32 (no additional character) value expected\n"
                "pool error - no or invalid parameter value in file")},
      {Entry("insar.pool", "mapping_format"), NoKey("mapping_format")},
      {Entry("insar.pool", "mapping_format", "STR foo"),
       NoValue("N5BASIC5TYPES17MappingFormatTypeE", "foo", "'matrix' 'polynomial' ")},
      {Entry("insar.pool", "slave_first_az_time"), NoKey("slave_first_az_time"), true},
      {Entry("insar.pool", "slave_first_az_time", "FLT_15 nan"),
       "not a number: slave_first_az_time" + data_error, true},
      {Entry("slave.pool", "prf"), NoKey("prf"), true},
      {Entry("slave.pool", "prf", "FLT_15 1e999"),
       PoolText("prf",
                "read value is : 1e999 (value is out of range) FLT_15 expected\n"
                "pool error - parameter value out of bounds"),
       true},
  });
}

TEST(Failure, OfAnInputRaster) {
  ExpectFailures({
      {WithoutFile("slave.ras"), "MEM_MGR: can not open: slave.ras" + no_open},
      {WithoutFile("mask.ras"), "MEM_MGR: can not open: mask.ras" + no_open},
      {FolderInPlaceOf("slave.ras"), no_header + "slave.ras" + no_read},
      {CutFile("slave.ras", 31), no_header + "slave.ras" + no_read},
      {CutFile("slave.ras", 32 + 72 * 60 * 4 - 1), short_file + "slave.ras" + no_read},
      {CutFile("mask.ras", 32 + 72 * 60 - 1), short_file + "mask.ras" + no_read},
      {Raster<float>("slave.ras", 72, 60, 7),
       "MEM_MGR: unknown pixeltype\nnot supported pixel type"},
      {Raster<float>("slave.ras", 72, 60, RASTER_FLOAT),
       "ERROR : Non supported pixel type has been provided.\nnot supported pixel type", true},
      {[](RUN_FOLDER& folder) {
         folder.Write("slave.ras", RasterHeader(INT_MIN, 0, 4, RASTER_COMPLEX_INT_16));
       },
       "slave has too many samples or lines: 2147483648x0" + data_error},
      {Raster<char>("mask.ras", 71, 60, RASTER_BYTE),
       "mask has another size than the slave: 71x60 != 72x60" + data_error},
      {Raster<char>("mask.ras", 72, 59, RASTER_BYTE),
       "mask has another size than the slave: 72x59 != 72x60" + data_error},
      {Raster<short>("mask.ras", 72, 60, RASTER_BYTE),
       "mask is not one byte a pixel: mask.ras" + data_error},
  });
}

TEST(Failure, OfTheMapping) {
  ExpectFailures({
      {WithoutFile("rg.map"), "MEM_MGR: can not open: rg.map" + no_open},
      {CutFile("az.map", 32 + 11 * 10 * 4 - 1), short_file + "az.map" + no_read},
      {Raster<float>("az.map", 12, 10, RASTER_FLOAT),
       "mapping files have diffent width: 11 != 12 " + data_error},
      {Raster<float>("az.map", 11, 9, RASTER_FLOAT),
       "mapping files have diffent height: 10 != 9 " + data_error},
      {Raster<float>("az.map", 11, 10, RASTER_BYTE),
       "pixels of the mapping file are not 32-bit real: az.map\nnot supported pixel type"},
      {Entry("insar.pool", "shift_matrices_subsampling"), NoKey("shift_matrices_subsampling")},
      {Entry("insar.pool", "shift_matrices_subsampling_rg", "INT_32 8"),
       NoKey("shift_matrices_subsampling_az")},
      {Entry("insar.pool", "shift_matrices_subsampling", "INT_32 0"),
       "subsampling of the mapping files must be at least 1, not 0 in range and 0 in azimuth" +
           wrong_argument},
      {Parameter("MAPPING_FORMAT", "polynomial"), NoKey("respl_poly_az")},
      {Polynomial("FLT_15_V 0 1\n{\n1\n}"),
       "mapping polynomial \"respl_poly_az\" needs 6 coefficients, it has 1" + data_error},
      {Polynomial("FLT_15_V 0 6\n{\n1\n0\nnan\n0\n0\n0\n}"),
       "mapping polynomial \"respl_poly_az\" has coefficients that are no numbers" + data_error},
  });
}

TEST(Failure, OfTheSlavesAnnotation) {
  // The ordinary scene has two polynomials of two coefficients.
  const std::string not_positive =
      "fDC: prf, range_sampling_frequency and oversampling must be positive numbers" + data_error;
  const std::string no_number =
      "fDC: the centroid's times and coefficients must be numbers" + data_error;
  ExpectFailures({
      {Entry("slave.pool", "imaging_mode", "STR foo"),
       NoValue("N5ZARVO9ImageModeE", "foo",
               "'SM' 'SL' 'HS' 'HS300' 'ST' 'SC' 'WS' 'TS' 'TOPS' 'IW' 'EW' 'WV' 'ATI' 'ATIS' "),
       true},
      {Entry("slave.pool", "fdc_poly_az_time", "FLT_15_V 0 0\n{\n}"),
       "fDC: fdc_poly_az_time holds no polynomial" + data_error, true},
      {Entry("slave.pool", "fdc_poly_rg_ref_time", "FLT_15_V 0 1\n{\n1\n}"),
       "fDC: fdc_poly_rg_ref_time and fdc_poly_az_time have different lengths" + data_error, true},
      {Entry("slave.pool", "fdc_poly_coeff", "FLT_15_M 0 1 0 1\n{\n{\n1\n}\n}"),
       "fDC: fdc_poly_coeff has fewer rows than there are polynomials" + data_error, true},
      {Entry("slave.pool", "fdc_poly_coeff", "FLT_15_M 0 2 0 0\n{\n{\n}\n{\n}\n}"),
       "fDC: fdc_poly_coeff holds no coefficient" + data_error, true},
      {Entry("slave.pool", "fdc_poly_az_time", "FLT_15_V 0 2\n{\n1\n1\n}"),
       "fDC: fdc_poly_az_time does not rise strictly" + data_error, true},
      {Entry("slave.pool", "prf", "FLT_15 0"), not_positive, true},
      {Entry("slave.pool", "oversampling", "FLT_15 -1"), not_positive, true},
      {Entry("slave.pool", "range_sampling_frequency", "FLT_15 nan"), not_positive, true},
      {Entry("slave.pool", "prf", "FLT_15 1e-200"), not_positive, true},  // its square is 0
      {Entry("slave.pool", "fdc_poly_rg_ref_time", "FLT_15_V 0 2\n{\n1\nnan\n}"), no_number, true},
      {Entry("slave.pool", "fdc_poly_coeff", "FLT_15_M 0 2 0 1\n{\n{\nnan\n}\n{\n1\n}\n}"),
       no_number, true},
  });
}

/// Whether the screen shows a line at ALARM.
bool ShowsAlarm(const PROCESS_END& end, const std::string& text) {
  return end.screen.find(alarm_begin + text + "\033") != std::string::npos;
}

/// A run with an output that would take the place of another file of the run.
void ExpectOverwritingRefused(const RUN_FOLDER& folder, const std::string& output,
                              const std::string& file) {
  SCOPED_TRACE(output);
  ExpectFailure(folder, folder.Run());
  EXPECT_EQ(folder.Alarms(), "output would overwrite another file of the run: " + output + " is " +
                                 file + wrong_argument + "\n" + supervisor_line + "\n");
  EXPECT_FALSE(folder.Exists("out.ras"));
}

TEST(Failure, OfAnOutputThatIsAnInputLeavesTheInputAlone) {
  const char* const cases[][3] = {
      {"SlaveOut", "slave.ras", "slave.ras"},  {"SlaveOut", "./mask.ras", "mask.ras"},
      {"SlaveOut", "symbolic", "rg.map"},      {"MaskOut", "hard", "az.map"},
      {"MaskOut", "insar.pool", "insar.pool"}, {"MaskOut", "slave.pool", "slave.pool"},
      {"MaskOut", "./out.ras", "out.ras"}};
  for (const auto& [parameter, output, input] : cases) {
    RUN_FOLDER folder(OrdinaryScene());
    std::filesystem::create_symlink("rg.map", folder.Path("symbolic"));
    std::filesystem::create_hard_link(folder.Path("az.map"), folder.Path("hard"));
    const std::string before = folder.Exists(input) ? folder.Content(input) : "";
    folder.parameters[parameter] = output;
    ExpectCheckSays(folder, "output would overwrite another file of the run: " +
                                std::string(output) + " is " + input + wrong_argument);
    ExpectOverwritingRefused(folder, output, input);
    EXPECT_TRUE((folder.Exists(input) ? folder.Content(input) : "") == before);
  }
}

TEST(Failure, OfOutputsThatAreOneFile) {
  RUN_FOLDER folder(OrdinaryScene());
  std::filesystem::create_symlink("new.ras", folder.Path("a"));
  std::filesystem::create_symlink("./new.ras", folder.Path("b"));
  folder.parameters["SlaveOut"] = "a";
  folder.parameters["MaskOut"] = "b";
  ExpectOverwritingRefused(folder, "b", "a");
  EXPECT_FALSE(folder.Exists("new.ras"));
}

TEST(Failure, OfAnOutputThatIsTheScreen) {
  for (const char* parameter : {"SlaveOut", "MaskOut"}) {
    RUN_FOLDER folder(OrdinaryScene());
    folder.Write("out.ras", "earlier result");
    folder.parameters[parameter] = "/proc/self/fd/1";
    const PROCESS_END end = folder.Run();  // its screen is a file
    ExpectFailure(folder, end);
    EXPECT_EQ(folder.Alarms(),
              "output would overwrite another file of the run: /proc/self/fd/1 is standard output" +
                  wrong_argument + "\n" + supervisor_line + "\n");
    EXPECT_TRUE(end.screen.find("* Read input parameters") != std::string::npos);
    EXPECT_EQ(folder.Content("out.ras"), "earlier result");
    EXPECT_FALSE(folder.Exists("out_mask.ras"));
  }
}

TEST(Failure, OfAPoolThatIsAnotherInputLeavesItAlone) {
  for (const char* const input : {"slave.ras", "mask.ras", "rg.map", "pcf.run"}) {
    for (const char* const pool : {"INSAR_PARAMETER_POOL", "log_pp"}) {
      RUN_FOLDER folder(OrdinaryScene());
      if (pool == std::string("INSAR_PARAMETER_POOL")) {
        folder.Write(input, folder.Content("insar.pool"));
      }
      folder.parameters[pool] = std::string("./") + input;
      folder.parameters["MAPPING_FORMAT"] = "matrix";  // is written into the INSAR pool
      folder.Settings();                               // writes the configuration file
      const std::string before = folder.Content(input);
      const PROCESS_END end = folder.Run();
      ExpectFailure(folder, end);
      EXPECT_TRUE(folder.Content(input) == before);
      if (input != std::string("pcf.run") || pool == std::string("log_pp")) {
        EXPECT_TRUE(ShowsAlarm(end, std::string("pool would be written into another file of the "
                                                "run: ./") +
                                        input + " is " + input));
      }
    }
  }
}

TEST(Failure, OfAnOutputThatAnotherRunWrites) {
  RUN_FOLDER folder(OrdinaryScene());
  HELD_RUN first(folder);
  folder.arguments = {"-pid", "second", "-pcf", "pcf.run"};
  const PROCESS_END second = folder.Run();
  EXPECT_EQ(second.exit_status, 1);
  EXPECT_EQ(folder.Content("ERROR.second"), "1");
  EXPECT_TRUE(ShowsAlarm(second, "MEM_MGR: another run is writing this output: out_mask.ras"))
      << second.screen;
  const PROCESS_END end = first.Release();
  EXPECT_EQ(end.exit_status, 0);
  EXPECT_EQ(folder.Content("OK.run"), "0");
}

TEST(Failure, OfAnOutputThatIsAFileOfTheRunsControl) {
  for (const std::string file : {"pcf.run", "OK.run", "ERROR.run", "STOP.run",
                                 "current_process.pid", "parent_process.pid"}) {
    RUN_FOLDER folder(OrdinaryScene());
    folder.parameters["MaskOut"] = "./" + file;
    ExpectOverwritingRefused(folder, "./" + file, file);
    EXPECT_TRUE(folder.Content("pcf.run").starts_with("AZ_MAPPING_FILE"));
  }
}

TEST(Failure, OfALogThatIsAnOutputLeavesAnEarlierResultAlone) {
  for (const char* const log : {"out.ras", "link"}) {
    RUN_FOLDER folder(OrdinaryScene());
    folder.Write("out.ras", "earlier result");
    std::filesystem::create_symlink("out.ras", folder.Path("link"));
    folder.arguments.insert(folder.arguments.end(), {"-lfn", log});
    const PROCESS_END end = folder.Run();
    ExpectFailure(folder, end);
    EXPECT_TRUE(ShowsAlarm(end, "logging would overwrite another file of the run: out.ras"));
    EXPECT_TRUE(ShowsAlarm(
        end, std::string("output would overwrite another file of the run: out.ras is ") + log));
    EXPECT_EQ(folder.Content("out.ras"), "earlier result");
  }
}

TEST(Failure, NoneForALogThatIsAFileOfTheRunsControl) {
  for (const std::string file : {"OK.run", "ERROR.run", "STOP.run", "current_process.pid"}) {
    RUN_FOLDER folder(OrdinaryScene());
    folder.arguments.insert(folder.arguments.end(), {"-lfn", "./" + file});
    const PROCESS_END end = folder.Run();
    ExpectSuccess(folder, end);
    EXPECT_TRUE(ShowsAlarm(end, "logging would overwrite another file of the run: " + file));
  }
}

TEST(Failure, OfAnInputNamedLikeAFileThatTheRunWritesLeavesItAlone) {
  for (const std::string own : {"OK.run", "ERROR.run", "current_process.pid"}) {
    for (const bool is_link : {false, true}) {
      SCOPED_TRACE(own);
      RUN_FOLDER folder(OrdinaryScene());
      const std::string slave = folder.Content("slave.ras");
      std::filesystem::rename(folder.Path("slave.ras"), folder.Path(own));
      std::filesystem::create_symlink(own, folder.Path("link"));
      const std::string input = is_link ? "link" : "./" + own;
      folder.parameters["SlaveIn"] = input;
      const std::string alarm =
          "input has the name of a file that the run writes: " + input + " is " + own;
      ExpectCheckSays(folder, alarm + wrong_argument);
      const PROCESS_END end = folder.Run();
      EXPECT_EQ(end.exit_status, 1);
      EXPECT_TRUE(ShowsAlarm(end, alarm));
      EXPECT_TRUE(folder.Content(own) == slave);
      EXPECT_TRUE(own == "ERROR.run" || folder.Content("ERROR.run") == "1");
    }
  }
}

TEST(Failure, NoneForMarkersThatAreLinksToAnInputWhichStaysAsItIs) {
  for (const char* own : {"OK.run", "ERROR.run", "parent_process.pid"}) {
    for (const bool is_symbolic : {false, true}) {
      RUN_FOLDER folder(OrdinaryScene());
      const std::string slave = folder.Content("slave.ras");
      if (is_symbolic) {
        std::filesystem::create_symlink("slave.ras", folder.Path(own));
      } else {
        std::filesystem::create_hard_link(folder.Path("slave.ras"), folder.Path(own));
      }
      ExpectSuccess(folder, folder.Run());
      EXPECT_TRUE(folder.Content("slave.ras") == slave);
    }
  }
}

TEST(Failure, OfAMarkerOfAnEarlierRunThatStays) {
  for (const std::string marker : {"OK.run", "ERROR.run"}) {
    RUN_FOLDER folder(OrdinaryScene());
    std::filesystem::create_directory(folder.Path(marker));
    const PROCESS_END end = folder.Run();
    EXPECT_EQ(end.exit_status, 1);
    EXPECT_EQ(folder.Alarms(), "Can not remove file " + marker +
                                   "!\nreason: Is a directory\ncan not write into file\n" +
                                   supervisor_line + "\n");
    EXPECT_EQ(folder.Exists("out.ras"), marker == "ERROR.run");
    EXPECT_EQ(folder.Exists("OK.run"), marker == "OK.run");
  }
}

TEST(Failure, OfAValueWithANulCharacter) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.parameters["MaskOut"] = std::string("out.ras\0x", 9);
  ExpectFailure(folder, folder.Run());
  EXPECT_TRUE(folder.Alarms().starts_with(
      "value with a NUL character for parameter MaskOut: out.ras\\x00x\n"))
      << folder.Alarms();
}

TEST(Failure, NoneForALogThatIsAnInputWhichStaysAsItIs) {
  struct {
    const char* log;
    const char* input;
  } const cases[] = {{"./slave.ras", "slave.ras"}, {"symbolic", "mask.ras"},
                     {"hard", "rg.map"},           {"az.map", "az.map"},
                     {"pcf.run", "pcf.run"},       {"slave.pool", "slave.pool"},
                     {"insar.pool", "insar.pool"}, {"log.pool", "log.pool"}};
  for (const auto& [log, input] : cases) {
    SCOPED_TRACE(input);
    RUN_FOLDER folder(OrdinaryScene());
    std::filesystem::create_symlink("mask.ras", folder.Path("symbolic"));
    std::filesystem::create_hard_link(folder.Path("rg.map"), folder.Path("hard"));
    folder.Write("log.pool", "# kept\n");
    folder.parameters["log_pp"] = "log.pool";
    folder.parameters.erase("SlaveIn");
    folder.parameters.erase("MaskIn");
    folder.environment["MaskIn"] = "mask.ras";
    folder.arguments.insert(folder.arguments.end(), {"-SlaveIn", "slave.ras", "-lfn", log});
    folder.Settings();  // writes the configuration file
    const std::string before = folder.Content(input);
    const PROCESS_END end = folder.Run();
    ExpectSuccess(folder, end);
    EXPECT_TRUE(folder.Content(input).starts_with(before));
    EXPECT_TRUE(
        ShowsAlarm(end, std::string("logging would overwrite another file of the run: ") + input));
  }
}

TEST(Failure, OfWorkersEndsTheRunOnce) {
  RUN_FOLDER folder(OrdinaryScene());
  Raster<float>("slave.ras", 72, 60, RASTER_FLOAT)(folder);
  folder.environment["PARALLEL"] = "3";
  ExpectFailure(folder, folder.Run());
  EXPECT_EQ(
      folder.CountLogLines(alarm_begin + "ERROR : Non supported pixel type has been provided."), 3);
  EXPECT_TRUE(folder.Alarms().ends_with("error in thread execution\n" + supervisor_line + "\n"));
}

TEST(Failure, NoneForASlaveWithoutPixels) {
  RUN_FOLDER folder(OrdinaryScene());
  Raster<RAW_PIXEL>("slave.ras", 0, 0, RASTER_COMPLEX_INT_16)(folder);
  folder.parameters.erase("MaskIn");
  ExpectSuccess(folder, folder.Run());
  EXPECT_EQ(ReadRaster<std::uint8_t>(folder.Path("out_mask.ras"), 70, 60, RASTER_BYTE).values,
            std::vector<std::uint8_t>(70 * 60));
}

}  // namespace
