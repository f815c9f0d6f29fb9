#include <cstdlib>
#include <memory>

#include "commands/commands.h"
#include "commands/stack_starter.h"

namespace {

void CheckOptions(const START_OPTIONS& options) {
  if (options.description.empty()) {
    throw CLI::RequiredError("STACK.json");
  }
  if (options.is_local == options.is_slurm) {
    throw CLI::ValidationError("either --local or --slurm is needed");
  }
  if (options.is_local && !options.sbatch_options.empty()) {
    throw CLI::ExtrasError(options.sbatch_options);
  }
}

}  // namespace

void AddStart(CLI::App& app) {
  const auto options = std::make_shared<START_OPTIONS>();
  app.add_option("STACK", options->description, "The stack's description, a JSON file");
  CLI::Option* local = app.add_option("--local", options->concurrent,
                                      "Run on this machine, so many slaves at a time")
                           ->expected(0, 1)
                           ->check(CLI::Range(1, 1 << 20));
  app.add_flag("--slurm", options->is_slurm,
               "Run as a Slurm job array; options that are not listed here are those of sbatch");
  app.add_option("--concurrent", options->concurrent, "Run so many slaves at a time under Slurm")
      ->check(CLI::Range(1, 1 << 20))
      ->excludes(local);
  app.add_option("--retries", options->retries,
                 "Repeat a run so often that died of a signal or with its machine")
      ->check(CLI::Range(0, 1000))
      ->capture_default_str();
  app.add_flag("--no-wait", options->no_wait, "Under Slurm, end after the submission")
      ->excludes(local);
  app.add_option("--program", options->program,
                 "The resample to run, else that beside this program");
  app.add_option("--scratch", options->scratch,
                 "Folder on a run's own machine, or a variable of its environment as '$TMPDIR': "
                 "rasters are copied there, and outputs copied back and compared");
  app.add_option("--only", options->only, "Start these slaves alone")->delimiter(',');
  app.add_flag("--again", options->again, "Start also what is done already");
  app.callback([&app, local, options] {
    if (!app.get_subcommands().empty()) {
      return;
    }
    options->is_local = !local->empty();
    options->sbatch_options = app.remaining();
    CheckOptions(*options);
    if (!STACK_STARTER(*options).Start()) {
      throw CLI::RuntimeError(EXIT_FAILURE);
    }
  });
}
