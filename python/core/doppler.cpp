#include "doppler.h"

#include <pybind11/numpy.h>

#include <algorithm>
#include <stdexcept>

namespace py = pybind11;

using DOUBLES = py::array_t<double, py::array::c_style | py::array::forcecast>;

void DOPPLER::Build(DOPPLER_CENTROID_MODEL& model) const {
  model.Setup(annotation);
  model.azimuth_start_time = first_azimuth_time;
  model.range_start_time = first_range_time;
}

namespace {

void Fill(VECTOR<double>& vector, const DOUBLES& values, const char* name) {
  if (values.ndim() != 1) {
    throw std::invalid_argument(std::string(name) + " is a vector");
  }
  if (vector.Create(RANGE<int>(0, static_cast<int>(values.size()))) != CONTAINER_OK) {
    throw std::bad_alloc();
  }
  std::copy_n(values.data(), values.size(), vector.Pointer(0));
}

void Fill(MATRIX<double>& matrix, const DOUBLES& values, const char* name) {
  if (values.ndim() != 2) {
    throw std::invalid_argument(std::string(name) + " is a matrix");
  }
  const auto rows = static_cast<int>(values.shape(0));
  const auto columns = static_cast<int>(values.shape(1));
  if (matrix.Create(RANGE<int>(0, rows), RANGE<int>(0, columns)) != CONTAINER_OK) {
    throw std::bad_alloc();
  }
  double* const* const table = matrix.GetNumRecMatrix();
  for (int row = 0; row < rows; ++row) {
    std::copy_n(values.data(row, 0), columns, table[row]);
  }
}

DOPPLER MakeDoppler(double prf, double range_sampling_frequency, const DOUBLES& azimuth_times,
                    const DOUBLES& reference_times, const DOUBLES& coefficients,
                    double oversampling, double first_azimuth_time, double first_range_time,
                    const PYTHON_LOG& log) {
  DOPPLER doppler;
  doppler.annotation.prf = prf;
  doppler.annotation.range_sampling_frequency = range_sampling_frequency;
  doppler.annotation.oversampling = oversampling;
  Fill(doppler.annotation.azimuth_times, azimuth_times, "azimuth_times");
  Fill(doppler.annotation.reference_times, reference_times, "reference_times");
  Fill(doppler.annotation.coefficients, coefficients, "coefficients");
  doppler.first_azimuth_time = first_azimuth_time;
  doppler.first_range_time = first_range_time;
  CallLibrary(log, [&] {
    DOPPLER_CENTROID_MODEL model;
    doppler.Build(model);
  });
  return doppler;
}

/// The centroid of pixels, at the times that resampling gives them.
double FrequencyAt(const DOPPLER_CENTROID_MODEL& model, double line, double sample) {
  return model.Frequency(
      model.azimuth_start_time + line / (model.Oversampling() * model.Prf()),
      model.range_start_time + sample / (model.Oversampling() * model.RangeSamplingFrequency()));
}

}  // namespace

void AddDoppler(py::module_& module) {
  py::class_<DOPPLER>(module, "Doppler", R"(Timing of the slave and its Doppler centroid.

The centroid [Hz] is a polynomial in range time [s] around reference_times[i] at each of the rising
azimuth_times [s], coefficients[i, degree], and linear in between. range times are two-way.)")
      .def(py::init(&MakeDoppler), py::arg("prf"), py::arg("range_sampling_frequency"),
           py::arg("azimuth_times"), py::arg("reference_times"), py::arg("coefficients"),
           py::kw_only(), py::arg("oversampling") = 1.0, py::arg("first_azimuth_time") = 0.0,
           py::arg("first_range_time") = 0.0, py::arg("log") = py::none())
      .def(
          "frequency",
          [](const DOPPLER& doppler, const DOUBLES& line, const DOUBLES& sample) {
            DOPPLER_CENTROID_MODEL model;
            CallLibrary(py::none(), [&] { doppler.Build(model); });
            return py::vectorize([&model](double l, double s) { return FrequencyAt(model, l, s); })(
                line, sample);
          },
          py::arg("line"), py::arg("sample"), "The centroid [Hz] at slave pixels.");
}
