#include "mapping.h"

#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include <stdexcept>
#include <utility>

#include "mapping/mapping_matrix.h"
#include "mapping/mapping_polynomial.h"

namespace py = pybind11;

using FLOATS = py::array_t<float, py::array::c_style | py::array::forcecast>;
using DOUBLES = py::array_t<double, py::array::c_style | py::array::forcecast>;

namespace {

MAPPING MatrixMapping(const FLOATS& range_shifts, const FLOATS& azimuth_shifts,
                      std::pair<int, int> subsampling) {
  if (range_shifts.ndim() != 2 || azimuth_shifts.ndim() != 2 ||
      range_shifts.shape(0) != azimuth_shifts.shape(0) ||
      range_shifts.shape(1) != azimuth_shifts.shape(1)) {
    throw std::invalid_argument("the shifts are two matrices [line, sample] of one shape");
  }
  return {[=](int, int) {
    auto mapping = std::make_unique<MAPPING_MATRIX>();
    mapping->Copy(
        range_shifts.data(), azimuth_shifts.data(), static_cast<unsigned>(range_shifts.shape(1)),
        static_cast<unsigned>(range_shifts.shape(0)), subsampling.first, subsampling.second);
    return mapping;
  }};
}

MAPPING PolynomialMapping(const MAPPING_POLYNOMIAL::COEFFICIENTS& range,
                          const MAPPING_POLYNOMIAL::COEFFICIENTS& azimuth) {
  return {[=](int n_samples, int n_lines) {
    return std::make_unique<MAPPING_POLYNOMIAL>(range, azimuth, static_cast<unsigned>(n_samples),
                                                static_cast<unsigned>(n_lines));
  }};
}

/// Positions of master pixels in the slave.
std::pair<py::object, py::object> Positions(const MAPPING& mapping, const DOUBLES& sample,
                                            const DOUBLES& line) {
  std::unique_ptr<const MAPPING_BASE> made;
  CallLibrary(py::none(), [&] { made = mapping.make(1, 1); });
  const auto range = [&made](double x, double y) { return made->GetSlaveRange(x, y); };
  const auto azimuth = [&made](double x, double y) { return made->GetSlaveAzimuth(x, y); };
  return {py::vectorize(range)(sample, line), py::vectorize(azimuth)(sample, line)};
}

}  // namespace

void AddMapping(py::module_& module) {
  py::class_<MAPPING>(module, "Mapping", "Where master pixels lie in the slave.")
      .def_static("matrix", &MatrixMapping, py::arg("range_shifts"), py::arg("azimuth_shifts"),
                  py::arg("subsampling") = std::pair(1, 1),
                  R"(Shifts [pixels], slave minus master, [line, sample] on a grid of the master.

Node (i, j) belongs to line i * subsampling[1] and sample j * subsampling[0]; between nodes shifts are
interpolated bilinearly, and beyond the last ones they are 0.)")
      .def_static("polynomial", &PolynomialMapping, py::arg("range"), py::arg("azimuth"),
                  R"(Shifts c0 + c1 y + c2 x + c3 x y + c4 y^2 + c5 x^2 at sample x, line y.)")
      .def("positions", &Positions, py::arg("sample"), py::arg("line"),
           "(range, azimuth) positions in the slave of master samples and lines.");
}
