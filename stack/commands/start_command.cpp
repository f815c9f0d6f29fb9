#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <set>

#include "commands/commands.h"
#include "commands/status_display.h"
#include "control/processors.h"
#include "description/stack_description.h"
#include "queue/core_split.h"
#include "queue/local_queue.h"
#include "queue/slurm_queue.h"
#include "run/file_lock.h"
#include "start/preparation.h"
#include "start/supervision.h"
#include "status/stack_status.h"

namespace {

/// What the command line says.
struct START_OPTIONS {
  std::string description;
  bool is_local = false;
  bool is_slurm = false;
  int concurrent = 0;  ///< runs at a time; 0: as many as are best
  int retries = 2;
  bool no_wait = false;
  std::string program;
  std::vector<std::string> sbatch_options;
};

class STACK_STARTER {
 public:
  explicit STACK_STARTER(const START_OPTIONS& options)
      : options_(options),
        description_(ReadStackDescription(options.description)),
        stack_(description_.directory) {}

  /// Whether every slave has been resampled, or with `no_wait` whether none has failed so far.
  bool Start() {
    std::filesystem::create_directories(stack_.Path());
    const FILE_LOCK lock(stack_.LockFile(), FILE_LOCK::WAY::TRY);
    if (!lock.IsHeld()) {
      throw STACK_ERROR("another resample-stack is at work on " + stack_.Path().string());
    }
    MakeQueue();
    const STACK_WORK work = Prepare();
    start_.begun = SecondsSince1970();
    WriteStackStart(stack_, start_);
    watch_.emplace(stack_, start_);
    Submit(work);
    if (options_.no_wait) {
      return work.to_run.size() + work.active.size() + static_cast<std::size_t>(work.finished) ==
             description_.slaves.size();
    }
    Accompany(work);
    const STACK_STATUS status = watch_->Look(queue_ ? queue_->Active() : std::nullopt);
    display_.ShowAtEnd(status);
    return status.IsComplete();
  }

 private:
  void MakeQueue() {
    const std::string own_program = std::filesystem::read_symlink("/proc/self/exe").string();
    if (options_.is_slurm) {
      queue_ = std::make_unique<SLURM_QUEUE>(
          stack_, SLURM_QUEUE::SETTINGS{.program = own_program,
                                        .job_name = description_.name,
                                        .concurrent = options_.concurrent,
                                        .options = options_.sbatch_options});
    } else {
      const CORE_SPLIT split = SplitOf(NumberOfProcessors(), options_.concurrent);
      queue_ = std::make_unique<LOCAL_QUEUE>(stack_, own_program, split.concurrent, split.threads);
    }
  }

  STACK_WORK Prepare() {
    const auto active = queue_->Active();
    if (!active) {
      throw STACK_ERROR(
          "squeue does not answer, so that nobody knows what is in the queue already");
    }
    STACK_WORK work =
        PrepareStack(description_, FindProgram(options_.program), options_.retries, *active);
    for (const std::string& remark : work.remarks) {
      std::cerr << remark << "\n";
    }
    start_.name = description_.name;
    for (const STACK_SLAVE& slave : description_.slaves) {
      start_.slaves.push_back(slave.name);
    }
    return work;
  }

  void Submit(const STACK_WORK& work) {
    if (!work.to_run.empty()) {
      queue_->Submit(work.to_run);
    }
    std::cout << description_.slaves.size() << " slaves: " << work.finished << " are done, "
              << work.active.size() << " are in the queue, " << work.to_run.size() << " are started"
              << std::endl;
  }

  void Accompany(const STACK_WORK& work) {
    std::set<std::string> names(work.to_run.begin(), work.to_run.end());
    names.insert(work.active.begin(), work.active.end());
    SIGNALS signals;
    SUPERVISION(stack_, *queue_, signals, [this](const ACTIVE_SLAVES& active) {
      display_.Show(watch_->Look(active));
    }).Accompany(std::move(names));
    if (signals.EndAsked() != 0) {
      // What runs on this machine ends with its queue, what Slurm has goes on.
      queue_.reset();
    }
  }

  const START_OPTIONS& options_;
  STACK_DESCRIPTION description_;
  STACK_FOLDER stack_;
  STACK_START start_;
  std::optional<STACK_WATCH> watch_;
  std::unique_ptr<RUN_QUEUE> queue_;
  STATUS_DISPLAY display_;
};

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
