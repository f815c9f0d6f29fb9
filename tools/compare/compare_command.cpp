#include "compare/compare_command.h"

void AddCompareCommand(CLI::App& app) {
  app.add_subcommand("compare", "Measure coherence, phase and amplitude between two rasters");
}
