#include <hdf5.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <numbers>

#include "common/binary16.h"
#include "export/export_command.h"
#include "pool/parameter_pool.h"
#include "pools/pool_setting.h"
#include "product/open_product.h"
#include "product/product_command.h"
#include "scene/periodic_signal.h"
#include "scene/random.h"
#include "tools/command_test.h"

namespace {

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
    text.replace(at, from.size(), to);
    at += to.size();
  }
  return text;
}

double NumberIn(const std::string& pool, const char* key) {
  double value = 0.0;
  PARAMETER_POOL(pool.c_str()).Read(key, value);
  return value;
}

class PRODUCT_TEST : public COMMAND_TEST {
 protected:
  std::string Product(const std::string& arguments) const {
    return Run(AddProductCommand, "product " + arguments);
  }

  /// That the product is refused with this text in the message, and no folder is made.
  void ExpectRefusal(const std::string& arguments, const std::string& text) const {
    const std::string directory = Path("refused");
    try {
      Product(arguments + " " + directory + " --as slave");
      ADD_FAILURE() << text << ": no error";
    } catch (const std::exception& error) {
      EXPECT_NE(std::string(error.what()).find(text), std::string::npos) << error.what();
    }
    EXPECT_FALSE(std::filesystem::exists(directory)) << text;
  }
};

/// Two bursts of 4 lines and 6 samples.
constexpr const char* annotation = R"(<?xml version="1.0"?>
<product><adsHeader><productType>SLC</productType><polarisation>VV</polarisation><mode>IW</mode>
<swath>IW2</swath></adsHeader><generalAnnotation>
<productInformation><rangeSamplingRate>6.4e+07</rangeSamplingRate>
<radarFrequency>5.405e+09</radarFrequency><azimuthSteeringRate>0.98</azimuthSteeringRate>
</productInformation>
<orbitList count="2"><orbit><time>2022-12-31T23:59:00.000000</time>
<velocity><x>7000.</x><y>0.</y><z>0.</z></velocity></orbit>
<orbit><time>2023-01-01T00:01:00.000000</time>
<velocity><x>7600.</x><y>0.</y><z>0.</z></velocity></orbit></orbitList>
<azimuthFmRateList count="1"><azimuthFmRate><azimuthTime>2023-01-01T00:00:00.000000</azimuthTime>
<t0>5.6e-03</t0><azimuthFmRatePolynomial count="2">-2.2e+03 4.0e+05</azimuthFmRatePolynomial>
</azimuthFmRate></azimuthFmRateList></generalAnnotation>
<imageAnnotation><imageInformation><slantRangeTime>5.6e-03</slantRangeTime>
<productFirstLineUtcTime>2022-12-31T23:59:59.000000</productFirstLineUtcTime>
<azimuthPixelSpacing>1.4e+01</azimuthPixelSpacing><azimuthTimeInterval>2.0e-03</azimuthTimeInterval>
<numberOfSamples>6</numberOfSamples><numberOfLines>8</numberOfLines></imageInformation>
</imageAnnotation>
<dopplerCentroid><dcEstimateList count="2">
<dcEstimate><azimuthTime>2022-12-31T23:59:59.000000</azimuthTime><t0>5.6e-03</t0>
<dataDcPolynomial count="1">1.0e+01</dataDcPolynomial></dcEstimate>
<dcEstimate><azimuthTime>2023-01-01T00:00:01.000000</azimuthTime><t0>5.6e-03</t0>
<dataDcPolynomial count="2">2.0e+01 1.0e+06</dataDcPolynomial></dcEstimate></dcEstimateList>
</dopplerCentroid>
<swathTiming><linesPerBurst>4</linesPerBurst><samplesPerBurst>6</samplesPerBurst>
<burstList count="2"><burst><azimuthTime>2022-12-31T23:59:59.000000</azimuthTime>
<firstValidSample count="4">-1 0 0 -1</firstValidSample>
<lastValidSample count="4">-1 5 5 -1</lastValidSample></burst>
<burst><azimuthTime>2023-01-01T00:00:00.500000</azimuthTime>
<firstValidSample count="4">-1 1 2 -1</firstValidSample>
<lastValidSample count="4">-1 4 9 -1</lastValidSample></burst></burstList></swathTiming></product>)";

class SAFE_TEST : public PRODUCT_TEST {
 protected:
  double LowestCoherence(const RASTER_READER& expected) const;

  /// A product whose pixel at a line and sample of the TIFF is (100 line + sample, -1).
  void MakeSafe(const std::string& text, int lines = 8) const {
    MakeSafe(text, 6, lines, [](int sample, int line) { return VALUE(100 * line + sample, -1); });
  }

  template <class PIXEL>
  void MakeSafe(const std::string& text, int samples, int lines, const PIXEL& pixel) const {
    const std::string folder = Path("a.SAFE");
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder + "/annotation/calibration");
    std::filesystem::create_directories(folder + "/measurement");
    WriteFile(folder + "/manifest.safe", "");
    WriteFile(folder + "/annotation/swath.xml", text);
    Complex("slc.ras", samples, lines, pixel, PIXEL_TYPE::C_INT_16);
    Run(AddExportCommand,
        "export " + Path("slc.ras") + " " + folder + "/measurement/swath.tiff --driver GTiff");
  }
};

/// Resamples the pair, and compares each line that has pixels of mask 1 with the expected one.
double SAFE_TEST::LowestCoherence(const RASTER_READER& expected) const {
  Shell("cd " + Path("pair") +
        " && " RESAMPLE_PROGRAM
        " -INSAR_PARAMETER_POOL insar.pool -log_pp insar.pool -SLAVE_PARAMETER_POOL slave.pool"
        " -SlaveIn slave.ras -MaskIn slave_mask.ras -MAPPING_FORMAT polynomial"
        " -KERNEL_TYPE truncated_sinc_kaiser_weight -KERNEL_COEFFICIENT 2.5 -KERNEL_LENGTH 16"
        " -KERNEL_SUBPIX_POS 4096 -SlaveOut out.ras -MaskOut out_mask.ras");
  const RASTER_READER output(Path("pair/out.ras"));
  const RASTER_READER mask(Path("pair/out_mask.ras"));
  const auto width = static_cast<std::size_t>(output.Width());
  std::vector<VALUE> a(width);
  std::vector<VALUE> b(width);
  std::vector<VALUE> valid(width);
  double lowest = 1.0;
  int compared = 0;
  for (std::int64_t line = 0; line < output.Height(); ++line) {
    output.ReadLine(line, 0, a);
    expected.ReadLine(line, 0, b);
    mask.ReadLine(line, 0, valid);
    VALUE product = 0.0;
    double powers[2] = {0.0, 0.0};
    for (std::size_t i = 0; i < width; ++i) {
      product += valid[i] * a[i] * std::conj(b[i]);
      powers[0] += valid[i].real() * std::norm(a[i]);
      powers[1] += valid[i].real() * std::norm(b[i]);
    }
    if (powers[0] > 0.0) {
      lowest = std::min(lowest, std::abs(product) / std::sqrt(powers[0] * powers[1]));
      ++compared;
    }
  }
  EXPECT_GT(compared, output.Height() - 20);
  return lowest;
}

TEST_F(SAFE_TEST, ABurstIsCutMaskedAndTimedInOneEpoch) {
  MakeSafe(annotation);
  Shell("cd " + Path("") + " && python3 -m zipfile -c a.zip a.SAFE");
  for (const char* name : {"a.SAFE", "a.SAFE/manifest.safe", "a.zip"}) {
    EXPECT_NE(Product(Path(name)).find("IW2 burst 2 VV\n  size: 6 samples x 4 lines\n"),
              std::string::npos)
        << name;
    std::filesystem::remove_all(Path("pair"));
    Product(Path(name) + " " + Path("pair") + " --as master --burst 1");
    Product(Path(name) + " " + Path("pair") + " --as slave --swath IW2 --burst 2 --scale 2");
    const RASTER_READER slave(Path("pair/slave.ras"));
    const RASTER_READER mask(Path("pair/slave_mask.ras"));
    EXPECT_EQ(slave.Type(), PIXEL_TYPE::C_INT_16);
    ASSERT_EQ(slave.Width(), 6);
    ASSERT_EQ(slave.Height(), 4);
    std::vector<VALUE> pixels(6);
    std::vector<VALUE> valid(6);
    for (int line = 0; line < 4; ++line) {
      slave.ReadLine(line, 0, pixels);
      mask.ReadLine(line, 0, valid);
      for (int sample = 0; sample < 6; ++sample) {
        const auto i = static_cast<std::size_t>(sample);
        EXPECT_EQ(pixels[i], VALUE(2 * (100 * (4 + line) + sample), -2)) << line << ", " << sample;
        const bool is_valid =
            (line == 1 && sample >= 1 && sample <= 4) || (line == 2 && sample >= 2);
        EXPECT_EQ(valid[i], VALUE(is_valid ? 1 : 0)) << line << ", " << sample;
      }
    }
  }
  // The master's day is the epoch of both, the slave's begins later.
  EXPECT_EQ(NumberIn(Path("pair/master.pool"), "first_az_time"), 86399.0);
  EXPECT_EQ(NumberIn(Path("pair/insar.pool"), "slave_first_az_time"), 86400.5);
  EXPECT_EQ(NumberIn(Path("pair/insar.pool"), "slave_first_rg_time"), 5.6e-3);
  EXPECT_EQ(NumberIn(Path("pair/slave.pool"), "pixel_scale"), 2.0);
  EXPECT_EQ(NumberIn(Path("pair/slave.pool"), "prf"), 500.0);
}

/// The centroid of the second burst by the annotation, and the phase that it makes of a target.
struct SWEEP {
  double seconds_after_midnight;  ///< of the burst's middle line
  int middle_line;

  double Rate(double tau) const {
    const double velocity = 7000.0 + 600.0 * (60.0 + seconds_after_midnight) / 120.0;
    const double k_s = 2.0 * velocity * 5.405e9 * 0.98 * std::numbers::pi / 180.0 / 299792458.0;
    const double k_a = -2200.0 + 4e5 * tau;
    return k_a * k_s / (k_a - k_s);
  }
  double DataCentroid(double tau) const { return 20.0 + 1e6 * tau; }
  double ReferenceTime(double tau) const {
    return -DataCentroid(tau) / (-2200.0 + 4e5 * tau) + 20.0 / -2200.0;
  }
  double Centroid(double line, double sample) const {
    const double tau = sample / 6.4e7;
    const double eta = (line - middle_line) * 0.002;
    return DataCentroid(tau) + Rate(tau) * (eta - ReferenceTime(tau));
  }
  std::complex<double> Phasor(double line, double sample) const {
    const double tau = sample / 6.4e7;
    const double eta = (line - middle_line) * 0.002;
    return std::polar(1.0, 2.0 * std::numbers::pi *
                               (DataCentroid(tau) * eta +
                                Rate(tau) * (0.5 * eta * eta - eta * ReferenceTime(tau))));
  }
};

TEST_F(SAFE_TEST, TheSweepComesFromTheNearestEstimateAndTheOrbit) {
  MakeSafe(annotation);
  const auto product = OpenProduct(Path("a.SAFE"));
  const SLC_IMAGE image = product->Describe({"IW2", 2, "VV"});
  const SWEEP sweep = {0.5 + 2 * 0.002, 2};
  for (int line = 0; line < 4; ++line) {
    for (int sample = 0; sample < 6; ++sample) {
      EXPECT_NEAR(image.centroid.At(line * 0.002, 5.6e-3 + sample / 6.4e7),
                  sweep.Centroid(line, sample), 1e-6);
    }
  }
}

TEST_F(SAFE_TEST, ASyntheticBurstIsResampledWithoutLossOnEveryLine) {
  constexpr int size = 1024;
  constexpr int width = 96;
  constexpr double range_shift = -0.61;
  constexpr double azimuth_shift = 0.37;
  std::string all_first;
  std::string all_last;
  for (int line = 0; line < size; ++line) {
    all_first += "0 ";
    all_last += "95 ";
  }
  std::string text = annotation;
  for (const auto& [from, to] : std::initializer_list<std::pair<std::string, std::string>>{
           {"-1 0 0 -1", all_first},
           {"-1 5 5 -1", all_last},
           {"-1 1 2 -1", all_first},
           {"-1 4 9 -1", all_last},
           {">4</linesPerBurst>", ">1024</linesPerBurst>"},
           {"samplesPerBurst>6", "samplesPerBurst>96"},
           {"numberOfSamples>6", "numberOfSamples>96"},
           {"numberOfLines>8", "numberOfLines>2048"}}) {
    text = Replaced(text, from, to);
  }
  PERIODIC_SIGNAL::PIXELS speckle;
  for (std::uint64_t i = 0; i < std::uint64_t{size} * size; ++i) {
    speckle.push_back(3000.0 * RandomSpeckle(1, i));
  }
  const PERIODIC_SIGNAL signal(size, 0.65, {speckle, speckle});
  const SWEEP sweep = {0.5 + 0.002 * size / 2, size / 2};
  EXPECT_LT(sweep.Centroid(0, 0), -2.0 * 500.0) << "many PRF at the ends";
  const auto slave = [&](int sample, int line) {
    return line < size ? VALUE(0.0)
                       : signal.AtPixel(line - size, sample)[0] * sweep.Phasor(line - size, sample);
  };
  const auto master = [&](int sample, int line) {
    const double x = sample + range_shift;
    const double y = line + azimuth_shift;
    return signal.At(y, x)[0] * sweep.Phasor(y, x);
  };
  MakeSafe(text, width, 2 * size, slave);
  const RASTER_READER expected = Complex("expected.ras", width, size, master);
  for (const char* role : {"master", "slave"}) {
    Product(Path("a.SAFE") + " " + Path("pair") + " --burst 2 --as " + role);
  }
  const std::string pool = Path("pair/insar.pool");
  SetPoolEntry(pool, "mapping_format", "STR", {"polynomial"}, 0);
  SetPoolEntry(pool, "respl_poly_rg", "FLT_15_V", {"-0.61", "0", "0", "0", "0", "0"}, 0);
  SetPoolEntry(pool, "respl_poly_az", "FLT_15_V", {"0.37", "0", "0", "0", "0", "0"}, 0);

  EXPECT_GT(LowestCoherence(expected), 0.999);
  // The sweep the other way round.
  MATRIX<double> coefficients;
  PARAMETER_POOL(Path("pair/slave.pool").c_str()).Read("fdc_poly_coeff", coefficients);
  std::vector<std::string> negative;
  for (int row = 0; row < 2; ++row) {
    for (int column = 0; column < coefficients.Columns().Count(); ++column) {
      negative.push_back(std::to_string(-coefficients.At(row, column)));
    }
  }
  SetPoolEntry(Path("pair/slave.pool"), "fdc_poly_coeff", "FLT_15_M", negative,
               coefficients.Columns().Count());
  EXPECT_LT(LowestCoherence(expected), 0.5);
}

TEST_F(SAFE_TEST, AStripmapIsOneImageWithTheCentroidOfItsEstimates) {
  const std::string text(annotation);
  const std::size_t bursts = text.find("<burstList");
  MakeSafe(Replaced(Replaced(text.substr(0, bursts), ">IW<", ">SM<"), "IW2", "S3") +
           "<burstList count=\"0\"/></swathTiming></product>");
  Product(Path("a.SAFE") + " " + Path("out") + " --as slave --type cfloat16");
  const RASTER_READER slave(Path("out/slave.ras"));
  EXPECT_EQ(slave.Type(), PIXEL_TYPE::C_FLT_2);
  EXPECT_EQ(slave.Height(), 8);
  const SLC_IMAGE image = OpenProduct(Path("a.SAFE"))->Describe({"S3", 0, "VV"});
  EXPECT_EQ(image.imaging_mode, "SM");
  EXPECT_NEAR(image.centroid.At(0.5, 5.6e-3), 12.5, 1e-9);
}

TEST_F(SAFE_TEST, WhatIsMissingOrWrongIsNamedAndNothingIsWritten) {
  struct FAULT {
    const char* from;
    const char* to;
    const char* message;
  };
  for (const auto& [from, to, message] : std::initializer_list<FAULT>{
           {"<slantRangeTime>5.6e-03</slantRangeTime>", "", "slantRangeTime is missing"},
           {"5.405e+09", "nan", "radarFrequency holds what is no number"},
           {"-2.2e+03 4.0e+05", "-2.2e+03 4x", "azimuthFmRatePolynomial holds"},
           {"-1 1 2 -1", "-1 1 -1", "firstValidSample has 3 numbers in place of 4"},
           {"<numberOfSamples>6", "<numberOfSamples>7", "samplesPerBurst"},
           {"<linesPerBurst>4", "<linesPerBurst>3", "linesPerBurst"},
           {"dcEstimate>", "estimate>", "dcEstimateList holds no dcEstimate"},
           {"2023-01-01T00:00:00.500000", "yesterday", "azimuthTime is no time"},
           {"2023-01-01T00:01:00", "2022-12-31T23:59:30", "orbitList does not cover"},
           {">IW<", ">WV<", "adsHeader.mode"}}) {
    MakeSafe(Replaced(annotation, from, to));
    ExpectRefusal(Path("a.SAFE") + " --burst 2", message);
  }
  MakeSafe(annotation, 7);
  ExpectRefusal(Path("a.SAFE") + " --burst 2", "numberOfLines are not those of");
  std::filesystem::remove_all(Path("a.SAFE/measurement"));
  ExpectRefusal(Path("a.SAFE") + " --burst 2", "swath.tiff is missing");
  ExpectRefusal(Path("a.SAFE"), "choose one");
  ExpectRefusal(Path("a.SAFE") + " --burst 3", "no such image");
  ExpectRefusal(Path("slc.ras"), "neither");
  for (const char* scale : {"0", "nan", "-1", "many"}) {
    EXPECT_THROW(Product(Path("a.SAFE") + " --scale " + scale), CLI::ValidationError) << scale;
  }
}

/// Writes data sets of HDF5, with the groups that they lie in.
class HDF5_WRITER {
 public:
  explicit HDF5_WRITER(const std::string& path)
      : file_(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT)) {}
  ~HDF5_WRITER() { H5Fclose(file_); }

  void Write(const std::string& name, const std::vector<hsize_t>& lengths, hid_t file_type,
             hid_t memory_type, const void* values, const std::string& units = "") {
    const hid_t links = H5Pcreate(H5P_LINK_CREATE);
    H5Pset_create_intermediate_group(links, 1);
    const hid_t space = H5Screate_simple(static_cast<int>(lengths.size()), lengths.data(), nullptr);
    const hid_t set =
        H5Dcreate2(file_, name.c_str(), file_type, space, links, H5P_DEFAULT, H5P_DEFAULT);
    H5Dwrite(set, memory_type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values);
    if (!units.empty()) {
      const hid_t text = H5Tcopy(H5T_C_S1);
      H5Tset_size(text, units.size());
      const hid_t one = H5Screate(H5S_SCALAR);
      const hid_t attribute = H5Acreate2(set, "units", text, one, H5P_DEFAULT, H5P_DEFAULT);
      H5Awrite(attribute, text, units.data());
      H5Aclose(attribute);
      H5Sclose(one);
      H5Tclose(text);
    }
    H5Dclose(set);
    H5Sclose(space);
    H5Pclose(links);
  }
  void Numbers(const std::string& name, const std::vector<hsize_t>& lengths,
               const std::vector<double>& values, const std::string& units = "") {
    Write(name, lengths, H5T_IEEE_F64LE, H5T_NATIVE_DOUBLE, values.data(), units);
  }

 private:
  hid_t file_;
};

constexpr int n_lines = 5;
constexpr int n_samples = 8;

/// Pairs of binary16, or of binary32; the members are named r and i.
hid_t PairType(bool binary16) {
  const hid_t part = H5Tcopy(H5T_IEEE_F32LE);
  if (binary16) {
    H5Tset_fields(part, 15, 10, 5, 0, 10);
    H5Tset_size(part, 2);
    H5Tset_ebias(part, 15);
  }
  const hid_t pair = H5Tcreate(H5T_COMPOUND, 2 * H5Tget_size(part));
  H5Tinsert(pair, "r", 0, part);
  H5Tinsert(pair, "i", H5Tget_size(part), part);
  H5Tclose(part);
  return pair;
}

/// Bits of the real part of pixel i: all kinds of binary16.
std::uint16_t RealBits(std::size_t i) {
  return static_cast<std::uint16_t>(0x0155 * i);
}

class RSLC_TEST : public PRODUCT_TEST {
 protected:
  /// Without the data set of the name `left_out`.
  void MakeRslc(const std::string& left_out = "", const std::string& epoch = "2020-02-29") const {
    HDF5_WRITER file(Path("a.h5"));
    const std::string swaths = "/science/SSAR/RSLC/swaths/";
    const std::string parameters = "/science/SSAR/RSLC/metadata/processingInformation/parameters/";
    const auto numbers = [&](const std::string& name, const std::vector<hsize_t>& lengths,
                             const std::vector<double>& values, const std::string& units = "") {
      if (!name.ends_with(left_out) || left_out.empty()) {
        file.Numbers(name, lengths, values, units);
      }
    };
    numbers(swaths + "zeroDopplerTime", {n_lines}, {3600.0, 3600.5, 3601.0, 3601.5, 3602.0},
            "seconds since " + epoch + " 00:00:00.000000000");
    numbers(swaths + "zeroDopplerTimeSpacing", {}, {0.5});
    std::vector<double> ranges;
    for (int i = 0; i < n_samples; ++i) {
      ranges.push_back(900000.0 + 5.0 * i);
    }
    numbers(swaths + "frequencyB/slantRange", {n_samples}, ranges);
    numbers(swaths + "frequencyB/slantRangeSpacing", {}, {5.0});
    numbers(swaths + "frequencyB/numberOfSubSwaths", {}, {2.0});
    numbers(swaths + "frequencyB/validSamplesSubSwath1", {n_lines, 2},
            {0, 3, 0, 3, 0, 0, 1, 3, 0, 4});
    numbers(swaths + "frequencyB/validSamplesSubSwath2", {n_lines, 2},
            {5, 99, 5, 7, 0, 0, 3, 5, 2, 5});
    // An hour is left to the image: the table counts from its own epoch.
    numbers(parameters + "zeroDopplerTime", {3}, {-2.0, 0.0, 4.0},
            "seconds since 2020-02-29T01:00:00");
    numbers(parameters + "slantRange", {4}, {899000.0, 900000.0, 901000.0, 902000.0});
    std::vector<double> centroid;
    for (const double time : {-2.0, 0.0, 4.0}) {
      for (const double x : {-1.0, 0.0, 1.0, 2.0}) {
        centroid.push_back(0.1 * time * time + 0.3 * x * x);
      }
    }
    numbers(parameters + "frequencyB/dopplerCentroid", {3, 4}, centroid);

    std::vector<std::uint16_t> bits(2 * n_lines * n_samples, 0xC000);
    std::vector<float> values(bits.size(), 0.1F);
    for (std::size_t i = 0; i < bits.size(); i += 2) {
      bits[i] = RealBits(i);
    }
    values[2 * n_samples] = NAN;
    const auto image = [&](const char* name, bool binary16, const void* pixels) {
      const hid_t type = PairType(binary16);
      file.Write(swaths + "frequencyB/" + name, {n_lines, n_samples}, type, type, pixels);
      H5Tclose(type);
    };
    image("HV", true, bits.data());
    image("VV", false, values.data());
  }
};

TEST_F(RSLC_TEST, Binary16StaysAsItIsAndOtherNumbersAreRounded) {
  MakeRslc();
  Product(Path("a.h5") + " " + Path("hv") + " --as slave --frequency B --polarisation HV");
  const RASTER_READER slave(Path("hv/slave.ras"));
  std::vector<VALUE> pixels(n_samples);
  for (std::size_t i = 0; i < n_lines * n_samples; ++i) {
    slave.ReadLine(static_cast<std::int64_t>(i / n_samples), 0, pixels);
    const double real = Binary16ToDouble(RealBits(2 * i));
    EXPECT_EQ(pixels[i % n_samples], VALUE(real, -2.0)) << i;
  }
  const std::string report =
      Product(Path("a.h5") + " " + Path("vv") + " --as master --polarisation VV --scale auto");
  const double scale = NumberIn(Path("vv/master.pool"), "pixel_scale");
  EXPECT_EQ(scale, 8192.0) << "0.1 times this is just below 1024";
  EXPECT_NE(report.find("pixels that were no number: 1\n"), std::string::npos) << report;
  const RASTER_READER master(Path("vv/master.ras"));
  master.ReadLine(1, 0, pixels);
  EXPECT_EQ(pixels[0], VALUE(0.0));
  EXPECT_NEAR(pixels[1].real(), 0.1 * scale, 0.25);
  int count = 0;
  PARAMETER_POOL(Path("vv/insar.pool").c_str()).Read("n_lines", count);
  EXPECT_EQ(count, n_lines);
}

TEST_F(RSLC_TEST, TheMaskIsTheUnionOfTheSubswathsAndTheTableIsFitted) {
  MakeRslc();
  const SLC_IMAGE image = OpenProduct(Path("a.h5"))->Describe({"B", 0, "HV"});
  const std::vector<std::vector<std::array<std::int64_t, 2>>> expected = {
      {{0, 3}, {5, 8}}, {{0, 3}, {5, 7}}, {}, {{1, 5}}, {{0, 5}}};
  for (std::size_t line = 0; line < n_lines; ++line) {
    std::vector<std::array<std::int64_t, 2>> runs;
    for (const SAMPLE_RUN& run : image.valid[line]) {
      runs.push_back({run.first, run.end});
    }
    EXPECT_EQ(runs, expected[line]) << line;
  }
  EXPECT_NEAR(image.first_range_time, 2.0 * 900000.0 / 299792458.0, 1e-15);
  EXPECT_NEAR(image.range_sampling_frequency, 299792458.0 / 10.0, 1e-6);
  // The second row of the table is the time of the first line, which is not that of its epoch.
  EXPECT_NEAR(image.centroid.At(0.0, 2.0 * 901000.0 / 299792458.0), 0.3, 1e-9);
  EXPECT_NEAR(image.centroid.At(2.0, 2.0 * 902000.0 / 299792458.0), 0.8 + 1.2, 1e-9);
}

TEST_F(RSLC_TEST, WhatIsMissingOrWrongIsNamedAndNothingIsWritten) {
  for (const char* name : {"swaths/zeroDopplerTime", "zeroDopplerTimeSpacing", "dopplerCentroid",
                           "validSamplesSubSwath2", "parameters/slantRange"}) {
    MakeRslc(name);
    ExpectRefusal(Path("a.h5") + " --polarisation HV", std::string(name) + " is missing");
  }
  MakeRslc("", "2020-03-01");
  ExpectRefusal(Path("a.h5") + " --polarisation HV", "dopplerCentroid lies elsewhere");
  MakeRslc("", "once");
  ExpectRefusal(Path("a.h5") + " --polarisation HV", "not seconds since a date");
}

/// Products that lie beside the repository.
class REAL_PRODUCTS : public PRODUCT_TEST {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists(directory_)) {
      GTEST_SKIP() << "the real products are not there: " << directory_;
    }
  }
  const std::string directory_ = REAL_PRODUCTS_DIRECTORY;
};

TEST_F(REAL_PRODUCTS, TheCentroidOfTopsBurstsIsThatOfAnIndependentComputation) {
  const auto product =
      OpenProduct(directory_ +
                  "/S1A_IW_SLC__1SDV_20221016T015043_20221016T015111_045461_056FC0_"
                  "6681.zip");
  ASSERT_EQ(product->Images().size(), 9U);
  struct FIGURE {
    int burst;
    int line;
    int sample;
    double centroid;
  };
  for (const auto& [burst, line, sample, centroid] :
       std::initializer_list<FIGURE>{{1, 0, 0, -2320.07},
                                     {1, 754, 12735, -3.30},
                                     {1, 1507, 25469, 2201.09},
                                     {5, 0, 0, -2327.67},
                                     {5, 754, 0, -9.93},
                                     {5, 1507, 25469, 2194.96},
                                     {9, 0, 0, -2323.55},
                                     {9, 1507, 25469, 2199.51}}) {
    const SLC_IMAGE image = product->Describe({"IW2", burst, "VV"});
    EXPECT_NEAR(image.centroid.At(line / image.line_rate,
                                  image.first_range_time + sample / image.range_sampling_frequency),
                centroid, 0.1)
        << burst << ": " << line << ", " << sample;
  }
}

TEST_F(REAL_PRODUCTS, RslcPixelsAndCentroidsAreTaken) {
  const std::string report = Product(directory_ + "/SanAnd_129.h5 " + Path("a") +
                                     " --as slave --frequency B --scale auto --type cint16");
  EXPECT_NE(report.find("clipped: 0\n"), std::string::npos) << report;
  const SLC_IMAGE image = OpenProduct(directory_ + "/REE_RSLC_out17.h5")->Describe({"A", 0, "HH"});
  EXPECT_LT(image.centroid.departure, 0.01 * image.line_rate);
}

}  // namespace
