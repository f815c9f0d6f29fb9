#include "kernel.h"

#include <pybind11/numpy.h>

#include <algorithm>
#include <string>

namespace py = pybind11;

void KERNEL::Build(INTERPOLATION_KERNEL& kernel) const {
  BASIC::TYPES::KernelType kernel_type;
  kernel_type.Assign(type.c_str());
  kernel.InitKernel(kernel_type, length, subpixels, static_cast<float>(coefficient));
}

namespace {

py::array_t<double> Weights(const INTERPOLATION_KERNEL& kernel) {
  const py::ssize_t length = std::max(0, kernel.Length());
  py::array_t<double> weights({py::ssize_t{kernel.SubpixCount()}, length});
  for (int k = 0; k < kernel.SubpixCount(); ++k) {
    std::copy_n(kernel.Row(k), length, weights.mutable_data(k, 0));
  }
  return weights;
}

}  // namespace

void AddKernel(py::module_& module) {
  py::class_<KERNEL>(module, "Kernel", R"(An interpolation kernel.

type: "truncated_sinc_kaiser_weight", "truncated_sinc_no_weight" or "cubic_convolution".
length: taps along range and azimuth each; at least 6.
subpixels: positions a pixel is divided into; 1024 or more unless for speed.
coefficient: the Kaiser weight.)")
      .def(py::init([](std::string type, int length, int subpixels, double coefficient,
                       const PYTHON_LOG& log) {
             KERNEL kernel{std::move(type), length, subpixels, coefficient};
             // What is wrong with it is told here and not by its first use.
             CallLibrary(log, [&] {
               INTERPOLATION_KERNEL tables;
               kernel.Build(tables);
             });
             return kernel;
           }),
           py::arg("type") = "truncated_sinc_kaiser_weight", py::arg("length") = 16,
           py::arg("subpixels") = 4096, py::arg("coefficient") = 2.5, py::kw_only(),
           py::arg("log") = py::none())
      .def_readonly("type", &KERNEL::type)
      .def_readonly("length", &KERNEL::length, "As asked for; `weights` tells the corrected one.")
      .def_readonly("subpixels", &KERNEL::subpixels)
      .def_readonly("coefficient", &KERNEL::coefficient)
      .def(
          "weights",
          [](const KERNEL& kernel) {
            INTERPOLATION_KERNEL tables;
            CallLibrary(py::none(), [&] { kernel.Build(tables); });
            return Weights(tables);
          },
          "The weights, [sub-pixel position, tap].");
}
