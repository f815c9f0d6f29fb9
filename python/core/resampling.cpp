#include "resampling.h"

#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include <cstring>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "app/resampling.h"
#include "doppler.h"
#include "kernel.h"
#include "mapping.h"

namespace py = pybind11;

namespace {

/// An array [line, sample, ...] without gaps, and what its pixels are.
struct PIXELS {
  const void* data;
  std::int64_t n_samples;
  std::int64_t n_lines;
  PIXEL_TYPE type;
};

PIXELS PixelsOf(const py::array& array, PIXEL_TYPE type) {
  return {array.data(), array.shape(1), array.shape(0), type};
}

void CopyInto(MEM_MGR& raster, const PIXELS& pixels) {
  raster.CreateInMemory(0, 0, pixels.n_samples - 1, pixels.n_lines - 1, pixels.type);
  std::memcpy(raster.Data(), pixels.data, static_cast<std::size_t>(raster.DataLength()));
}

/// The memory of a raster as an array of bytes, which keeps the output alive.
py::object BytesOf(const std::shared_ptr<RESAMPLE_OUTPUT>& output, const MEM_MGR& raster) {
  const py::capsule owner(new std::shared_ptr(output), [](void* held) {
    delete static_cast<std::shared_ptr<RESAMPLE_OUTPUT>*>(held);
  });
  return py::array_t<std::uint8_t>({raster.Height(), raster.Width() * raster.BytesPerPixel()},
                                   raster.Data(), owner);
}

PIXEL_TYPE PixelTypeNamed(const std::string& name) {
  BASIC::TYPES::DataType type;
  type.Assign(name.c_str());
  return PixelTypeOf(type);
}

/// `slave` holds pairs of 16-bit words, [line, sample, 2].
std::pair<py::object, py::object> ResamplePairs(
    const py::array_t<std::int16_t, py::array::c_style>& slave, const std::string& pixel_type,
    const std::optional<py::array_t<std::uint8_t, py::array::c_style>>& mask,
    const MAPPING& mapping, const KERNEL& kernel, const DOPPLER& doppler, std::pair<int, int> shape,
    const std::string& imaging_mode, bool ps_mode, std::optional<int> threads,
    const PYTHON_LOG& log) {
  const int n_lines = shape.first;
  const int n_samples = shape.second;
  if (n_lines < 1 || n_samples < 1) {
    throw std::invalid_argument("the output needs at least one line and one sample");
  }
  if (threads && *threads < 1) {
    throw std::invalid_argument("threads is at least 1");
  }
  const PIXEL_TYPE type = PixelTypeNamed(pixel_type);
  const PIXELS slave_pixels = PixelsOf(slave, type);
  const std::optional<PIXELS> mask_pixels =
      mask ? std::optional(PixelsOf(*mask, PIXEL_TYPE::U_INT_8)) : std::nullopt;
  const auto output = std::make_shared<RESAMPLE_OUTPUT>();
  CallLibrary(log, [&] {
    RESAMPLE_INPUT input;
    CopyInto(input.slave, slave_pixels);
    if (mask_pixels) {
      CopyInto(input.mask, *mask_pixels);
    }
    input.n_samples = n_samples;
    input.n_lines = n_lines;
    input.ps_mode = ps_mode;
    input.imaging_mode.Assign(imaging_mode.c_str());
    input.mapping = mapping.make(n_samples, n_lines);
    kernel.Build(input.kernel);
    doppler.Build(input.doppler);
    output->slave.CreateInMemory(0, 0, n_samples - 1, n_lines - 1, type);
    output->mask.CreateInMemory(0, 0, n_samples - 1, n_lines - 1, PIXEL_TYPE::U_INT_8);
    Resample(input, *output, threads);
  });
  return {BytesOf(output, output->slave), BytesOf(output, output->mask)};
}

}  // namespace

void AddResampling(py::module_& module) {
  module.def("resample_pairs", &ResamplePairs);
}
