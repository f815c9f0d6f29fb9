// Times every variant of the core on a list of cases and prints one table: nanoseconds of
// processor time a pixel, and how many times faster than the plain variant in the same run.
//
//   core_bench [size [repetitions [part of a case's name [variant]]]]

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "core/core_variant.h"
#include "core_scene.h"

namespace {

using enum PIXEL_TYPE;
using MAPPING = CORE_CASE::MAPPING;

const CORE_CASE cases[] = {
    {.name = "code 8, L 6, N 64", .length = 6},
    {.name = "code 8, L 8, N 64, no rate"},
    {.name = "code 8, L 8, N 64, with rate, mask", .with_rate = true, .with_mask = true},
    {.name = "code 8, L 16, N 64", .length = 16},
    {.name = "code 8, L 8, N 1024", .subpix_count = 1024},
    {.name = "code 8, L 8, N 64, steep", .mapping = MAPPING::STEEP},
    {.name = "code 9, L 8, N 64", .pixel_type = C_FLT_2},
    {.name = "code 8, L 8, N 64, polynomial", .mapping = MAPPING::POLYNOMIAL},
    {.name = "code 8, L 8, N 64, irregular", .mapping = MAPPING::IRREGULAR},
    {.name = "code 8, L 7, N 64", .length = 7},
};

double ThreadSeconds() {
  timespec now{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

template <class CODEC>
void Run(const RESAMPLE_THR_ARG& argument, RESAMPLE_FUNCTION<CODEC> function) {
  using PIXEL = typename CODEC::PIXEL;
  function(argument, argument.job.input_slave->Rows<PIXEL>(),
           argument.job.output_slave->Rows<PIXEL>());
}

double SecondsOf(const CORE_SCENE& scene, const CORE_VARIANT& variant) {
  const double start = ThreadSeconds();
  if (scene.Argument().job.input_slave->PixelType() == C_INT_16) {
    Run<INT_16_CODEC>(scene.Argument(), variant.int_16);
  } else {
    Run<BINARY_16_CODEC>(scene.Argument(), variant.binary_16);
  }
  return ThreadSeconds() - start;
}

void PrintHeader() {
  std::printf("%-32s", "ns a pixel (times plain)");
  for (const CORE_VARIANT& variant : CoreVariants()) {
    if (variant.is_supported()) {
      std::printf("%20s", variant.name);
    }
  }
  std::printf("\n");
}

/// The variants take turns, so that all see the same machine; the best time of each counts.
void RunCase(const CORE_CASE& wanted, int size, int repetitions, const char* variant_name) {
  const CORE_SCENE scene(wanted, size);
  std::vector<double> best(CoreVariants().size(), 1e9);
  for (int i = 0; i < repetitions; ++i) {
    for (std::size_t v = 0; v < best.size(); ++v) {
      const CORE_VARIANT& variant = CoreVariants()[v];
      const bool is_plain = v == 0;
      const bool is_wanted =
          variant_name == nullptr || std::strcmp(variant.name, variant_name) == 0;
      if (variant.is_supported() && is_wanted && (!is_plain || i < 2)) {
        best[v] = std::min(best[v], SecondsOf(scene, variant));
      }
    }
  }
  std::printf("%-32s", wanted.name);
  for (std::size_t v = 0; v < best.size(); ++v) {
    if (CoreVariants()[v].is_supported()) {
      std::printf("%10.2f (%6.1fx)", best[v] * 1e9 / size / size, best[0] / best[v]);
    }
  }
  std::printf("\n");
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const int size = argc > 1 ? std::atoi(argv[1]) : 2048;
  const int repetitions = argc > 2 ? std::atoi(argv[2]) : 5;
  const char* wanted = argc > 3 ? argv[3] : "";
  PrintHeader();
  for (const CORE_CASE& c : cases) {
    if (std::strstr(c.name, wanted) != nullptr) {
      RunCase(c, size, repetitions, argc > 4 ? argv[4] : nullptr);
    }
  }
}
