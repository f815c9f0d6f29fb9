#include "compare/compare_command.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/figure_text.h"
#include "common/number_checks.h"
#include "compare/comparison.h"

namespace {

struct COMPARE_OPTIONS {
  std::string a;
  std::string b;
  std::vector<std::string> masks;
  std::int64_t margin = 0;
  std::int64_t block = 0;
  double min_coherence = 0.0;
};

/// The figures as "key=value" with the separator behind each.
void Print(const COMPARISON& comparison, char separator) {
  const auto text = [](double figure) { return FigureText(figure, 6); };
  std::cout << "compared=" << comparison.compared << separator                            //
            << "coherence=" << text(comparison.coherence) << separator                    //
            << "phase_mean=" << text(comparison.phase_mean) << separator                  //
            << "phase_rms=" << text(comparison.phase_rms) << separator                    //
            << "phase_rms_weighted=" << text(comparison.phase_rms_weighted) << separator  //
            << "amplitude_error=" << text(comparison.amplitude_error) << separator        //
            << "complex_error=" << text(comparison.complex_error) << separator            //
            << "gain=" << text(comparison.gain) << "\n";
}

REGION RegionWithin(const RASTER_READER& raster, std::int64_t margin) {
  const REGION region = {margin, margin, raster.Width() - 2 * margin, raster.Height() - 2 * margin};
  if (region.n_samples < 1 || region.n_lines < 1) {
    throw std::invalid_argument("the margin leaves no pixel of " + raster.Path());
  }
  return region;
}

/// Calls `handle(block)` for all blocks of a region; the last ones are as small as they must be.
template <class HANDLE>
void ForEachBlock(const REGION& region, std::int64_t size, HANDLE handle) {
  for (std::int64_t line = 0; line < region.n_lines; line += size) {
    for (std::int64_t sample = 0; sample < region.n_samples; sample += size) {
      handle(REGION{region.first_sample + sample, region.first_line + line,
                    std::min(size, region.n_samples - sample),
                    std::min(size, region.n_lines - line)});
    }
  }
}

void PrintComparison(const COMPARE_OPTIONS& options) {
  const RASTER_READER a(options.a);
  const RASTER_READER b(options.b);
  std::vector<std::unique_ptr<RASTER_READER>> mask_readers;
  std::vector<const RASTER_READER*> masks;
  for (const std::string& path : options.masks) {
    mask_readers.push_back(std::make_unique<RASTER_READER>(path));
    masks.push_back(mask_readers.back().get());
  }

  const PAIR_LINES pair(a, b, masks);
  const REGION region = RegionWithin(a, options.margin);
  if (options.block > 0) {
    ForEachBlock(region, options.block, [&](const REGION& block) {
      std::cout << "first_sample=" << block.first_sample << " first_line=" << block.first_line
                << " n_samples=" << block.n_samples << " n_lines=" << block.n_lines << " ";
      Print(Compare(pair, block), ' ');
    });
    return;
  }
  const COMPARISON comparison = Compare(pair, region);
  Print(comparison, '\n');
  if (comparison.compared == 0) {
    throw std::runtime_error("there is no pixel to compare");
  }
  if (!(comparison.coherence >= options.min_coherence)) {
    throw std::runtime_error("the coherence is too low");
  }
}

}  // namespace

void AddCompareCommand(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "compare", "Measure coherence, phase and amplitude between two rasters of the same size");
  const auto options = std::make_shared<COMPARE_OPTIONS>();
  command->add_option("A", options->a, "Raster to judge")->required();
  command->add_option("B", options->b, "Raster to judge it by")->required();
  command->add_option("--mask", options->masks,
                      "Compare only where this raster is not 0; more than one may be given");
  command->add_option("--margin", options->margin, "Leave out so many pixels at each edge")
      ->check(non_negative_number);
  command
      ->add_option("--block", options->block,
                   "Print a line of figures for each block of so many pixels a side")
      ->check(positive_number);
  command->add_option("--min-coherence", options->min_coherence,
                      "Fail when the coherence is lower");
  command->callback([options] { PrintComparison(*options); });
}
