// The operations of this folder in a program that was built without GDAL.

#include <stdexcept>

#include "gdal/gdal_copy.h"
#include "gdal/gdal_source.h"

namespace {

[[noreturn]] void Refuse() {
  throw std::runtime_error(
      "this slctool was built without GDAL, which reads and writes files of this kind (Debian: "
      "libgdal-dev and libhdf5-dev)");
}

}  // namespace

GDAL_SOURCE::GDAL_SOURCE(const std::string&) {
  Refuse();
}

void GDAL_SOURCE::CLOSE::operator()(GDALDataset*) const noexcept {}

GDAL_WINDOW GDAL_SOURCE::Whole() const {
  Refuse();
}

bool GDAL_SOURCE::IsMadeOf(const std::string&) const {
  Refuse();
}

int GDAL_SOURCE::BandCount() const {
  Refuse();
}

bool GDAL_SOURCE::IsComplex(int) const {
  Refuse();
}

std::string GDAL_SOURCE::DataType(int) const {
  Refuse();
}

std::optional<double> GDAL_SOURCE::NoData(int) const {
  Refuse();
}

void GDAL_SOURCE::Read(int, const GDAL_WINDOW&, std::span<double>) const {
  Refuse();
}

void GDAL_SOURCE::Read(int, const GDAL_WINDOW&, std::span<std::complex<double>>) const {
  Refuse();
}

int GDAL_SOURCE::LinesAtOnce(int, const GDAL_WINDOW&) const {
  Refuse();
}

void CheckGdalFormat(const std::string&, const char*) {
  Refuse();
}

void WriteGdalCopy(const RASTER_READER&, const std::string&, const GDAL_COPY_OPTIONS&,
                   const PROGRESS&) {
  Refuse();
}
