#include "info/raster_report.h"

#include <cmath>
#include <complex>
#include <cstdint>
#include <iomanip>
#include <vector>

#include "common/raster_reader.h"
#include "common/read_raster_header.h"
#include "info/amplitude_histogram.h"
#include "info/type_ends.h"
#include "info/value_statistics.h"
#include "logging/printable_text.h"

namespace {

void WriteHeader(const RASTER_HEADER& header, std::ostream& report) {
  report << "magic: 0x" << std::hex << std::setw(8) << std::setfill('0') << header.magic << std::dec
         << (header.magic == RASTER_HEADER::raster_magic ? "" : " (not that of a raster)") << "\n";
  report << "width: " << header.width << "\n";
  report << "height: " << header.height << "\n";
  report << "depth: " << header.depth << "\n";
  report << "length: " << header.length << "\n";
  report << "type: " << header.type << "\n";
  report << "map type: " << header.map_type << "\n";
  report << "map length: " << header.map_length << "\n";
  report << "pixel type: " << DataTypeOf(header.PixelType()).Name() << "\n";
  report << "bytes per pixel: " << BytesPerPixel(header.PixelType()) << "\n";
}

struct RASTER_STATISTICS {
  explicit RASTER_STATISTICS(PIXEL_TYPE type) : ends(type) {}

  TYPE_ENDS ends;
  std::int64_t saturated = 0;
  std::int64_t finite = 0;
  std::int64_t zeros = 0;
  VALUE_STATISTICS real;
  VALUE_STATISTICS imaginary;
  VALUE_STATISTICS amplitude;
  AMPLITUDE_HISTOGRAM amplitudes;

  void Add(std::complex<double> value) noexcept {
    if (!std::isfinite(value.real()) || !std::isfinite(value.imag())) {
      return;
    }
    ++finite;
    zeros += value == 0.0 ? 1 : 0;
    real.Add(value.real());
    imaginary.Add(value.imag());
    saturated += ends.Saturated(value);
    const double magnitude = std::abs(value);
    amplitude.Add(magnitude);
    amplitudes.Add(magnitude);
  }
};

RASTER_STATISTICS Measure(const RASTER_READER& raster) {
  RASTER_STATISTICS statistics(raster.Type());
  if (raster.Width() == 0 || raster.Height() == 0) {
    return statistics;  // the other side may be billions long
  }
  std::vector<std::complex<double>> values(static_cast<std::size_t>(raster.Width()));
  for (std::int64_t line = 0; line < raster.Height(); ++line) {
    raster.ReadLine(line, 0, values);
    for (const std::complex<double>& value : values) {
      statistics.Add(value);
    }
  }
  return statistics;
}

void WriteValues(const std::string& name, const VALUE_STATISTICS& values, std::ostream& report) {
  report << name << " min: " << values.Min() << "\n";
  report << name << " max: " << values.Max() << "\n";
  report << name << " mean: " << values.Mean() << "\n";
  report << name << " rms: " << values.Rms() << "\n";
}

void WritePercentiles(const AMPLITUDE_HISTOGRAM& amplitudes, std::ostream& report) {
  for (const int percent : {1, 5, 25, 50, 75, 95, 99}) {
    report << "amplitude percentile " << percent << ": " << amplitudes.Quantile(percent / 100.0)
           << "\n";
  }
}

}  // namespace

void WriteRasterReport(const std::string& path, std::ostream& report) {
  const RASTER_HEADER header = ReadRasterHeader(path);
  report << "file: " << PrintableText(path) << "\n";
  WriteHeader(header, report);
  report.flush();
  const RASTER_READER raster(path);
  if (raster.Type() == PIXEL_TYPE::RGB) {
    return;
  }
  const RASTER_STATISTICS statistics = Measure(raster);
  report << std::setprecision(8);
  report << "pixels: " << raster.Width() * raster.Height() << "\n";
  report << "finite: " << statistics.finite << "\n";
  report << "zeros: " << statistics.zeros << "\n";
  if (statistics.ends.Exist()) {
    report << "saturated: " << statistics.saturated << "\n";
  }
  if (statistics.finite == 0) {
    return;
  }
  if (!raster.IsComplex()) {
    WriteValues("value", statistics.real, report);
    return;
  }
  WriteValues("real", statistics.real, report);
  WriteValues("imaginary", statistics.imaginary, report);
  WriteValues("amplitude", statistics.amplitude, report);
  WritePercentiles(statistics.amplitudes, report);
}
