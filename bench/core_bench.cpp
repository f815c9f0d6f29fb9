// Times every variant of the core that the processor offers on a list of cases, one thread, rasters
// in memory. See `core_bench -h`; bench/run makes a table of it.

#include <benchmark/benchmark.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>
#include <string>

#include "base/error_exception.h"
#include "core/core_variant.h"
#include "core_scene.h"

namespace {

using enum PIXEL_TYPE;
using MAPPING = CORE_CASE::MAPPING;

const CORE_CASE cases[] = {
    {.name = "L6", .length = 6},
    {.name = "L8"},
    {.name = "L8-rate-mask", .with_rate = true, .with_mask = true},
    {.name = "L16", .length = 16},
    {.name = "L8-N1024", .subpix_count = 1024},
    {.name = "L8-steep", .mapping = MAPPING::STEEP},
    {.name = "L8-cfloat16", .pixel_type = C_FLT_2},
    {.name = "L8-polynomial", .mapping = MAPPING::POLYNOMIAL},
    {.name = "L8-irregular", .mapping = MAPPING::IRREGULAR},
    {.name = "L7", .length = 7},
};

/// Made when a benchmark first asks for it, and kept: repetitions of all cases take turns.
const CORE_SCENE& SceneOf(const CORE_CASE& wanted, int size) {
  static std::map<const CORE_CASE*, CORE_SCENE> scenes;
  return scenes.try_emplace(&wanted, wanted, size).first->second;
}

void CountPixels(benchmark::State& state, int size) {
  using benchmark::Counter;
  const double pixels = static_cast<double>(size) * size;
  state.counters["per_pixel"] =
      Counter(pixels, Counter::kIsIterationInvariantRate | Counter::kInvert);
}

void TimeVariant(benchmark::State& state, const CORE_CASE& wanted, const CORE_VARIANT& variant,
                 int size) {
  const RESAMPLE_THR_ARG& argument = SceneOf(wanted, size).Argument();
  for ([[maybe_unused]] const auto iteration : state) {
    variant.Resample(argument);
  }
  CountPixels(state, size);
}

/// The least that any resampler has to do: read every pixel once, write every pixel and its mask.
void TimeCopy(benchmark::State& state, int size) {
  const RESAMPLE_JOB& job = SceneOf(cases[1], size).Argument().job;
  for ([[maybe_unused]] const auto iteration : state) {
    std::copy_n(job.input_slave->Data(), job.input_slave->DataLength(), job.output_slave->Data());
    std::fill_n(job.output_mask->Data(), job.output_mask->DataLength(),
                static_cast<unsigned char>(1));
    benchmark::ClobberMemory();
  }
  CountPixels(state, size);
}

void Register(int size) {
  for (const CORE_CASE& wanted : cases) {
    for (const CORE_VARIANT& variant : CoreVariants()) {
      if (variant.is_supported()) {
        const std::string name = std::string(wanted.name) + "/" + variant.name;
        benchmark::RegisterBenchmark(name.c_str(), [&wanted, &variant, size](auto& state) {
          TimeVariant(state, wanted, variant, size);
        })->Unit(benchmark::kMillisecond);
      }
    }
  }
  benchmark::RegisterBenchmark("copy", TimeCopy, size)->Unit(benchmark::kMillisecond);
}

int Run(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  CLI::App app("Times the core of resample. Takes the options of Google Benchmark as well.");
  app.set_help_flag("-h", "Print this; --help prints the options of Google Benchmark");
  int size = 4096;
  app.add_option("--size", size, "Width and height of the images")
      ->check(CLI::Range(16, 65536))
      ->capture_default_str();
  CLI11_PARSE(app, argc, argv);
  Register(size);
  benchmark::RunSpecifiedBenchmarks();
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const ERROR_EXCEPTION& error) {
    std::fprintf(stderr, "core_bench: %s\n", error.what());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "core_bench: %s\n", error.what());
  }
  return EXIT_FAILURE;
}
