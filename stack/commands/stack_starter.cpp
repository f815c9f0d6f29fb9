#include "commands/stack_starter.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <thread>

#include "basics/file_lock.h"
#include "basics/stack_error.h"
#include "control/processors.h"
#include "logging/printable_text.h"
#include "queue/core_split.h"
#include "queue/local_queue.h"
#include "queue/slurm_queue.h"
#include "start/supervision.h"

namespace {

/// Throws STACK_ERROR without an answer of the queue.
std::map<std::string, QUEUE_ENTRY> AnswerOf(const RUN_QUEUE& queue) {
  const ACTIVE_SLAVES active = queue.Active();
  if (!active) {
    throw STACK_ERROR("squeue does not answer, so that nobody knows what is in the queue already");
  }
  return *active;
}

/// "NAME: ", with the number of further slaves where many have the same to tell.
std::string SubjectOf(const std::vector<std::string>& names) {
  switch (names.size()) {
    case 0:
      return "";
    case 1:
      return names[0] + ": ";
    default:
      return names[0] + " and " + std::to_string(names.size() - 1) + " more: ";
  }
}

}  // namespace

std::vector<std::string> START_OPTIONS::Arguments() const {
  std::vector<std::string> words = {"--retries=" + std::to_string(retries)};
  words.emplace_back(is_local ? "--local" : "--slurm");
  if (concurrent > 0) {
    words.push_back(is_local ? std::to_string(concurrent)
                             : "--concurrent=" + std::to_string(concurrent));
  }
  if (no_wait) {
    words.emplace_back("--no-wait");
  }
  if (!program.empty()) {
    words.push_back("--program=" + (program.find('/') == std::string::npos
                                        ? program
                                        : std::filesystem::absolute(program).string()));
  }
  if (!scratch.empty()) {
    words.push_back("--scratch=" + scratch);
  }
  words.insert(words.end(), sbatch_options.begin(), sbatch_options.end());
  return words;
}

STACK_STARTER::STACK_STARTER(const START_OPTIONS& options)
    : options_(options),
      description_(ReadStackDescription(options.description)),
      stack_(description_.directory) {
  CheckSbatchOptions(options.sbatch_options);
}

bool STACK_STARTER::Start() {
  std::filesystem::create_directories(stack_.Path());
  const FILE_LOCK lock(stack_.LockFile(), FILE_LOCK::WAY::TRY);
  if (!lock.IsHeld()) {
    throw STACK_ERROR("another resample-stack is at work on " + stack_.Path().string());
  }
  stack_.MakeIdentity();
  MakeQueue();
  const STACK_WORK work = Prepare();
  const STACK_START start = ThisStart();
  WriteStackStart(stack_, start);
  watch_.emplace(stack_, start);
  const REFUSED_SLAVES refused = Submit(work);
  if (options_.no_wait) {
    for (const std::string& name : refused.names) {
      troubles_[name] = refused.reason;
    }
    TellTroubles();
    const std::size_t wanted =
        WantedSlaves(description_, {options_.only.begin(), options_.only.end()}).size();
    return troubles_.empty() &&
           work.to_run.size() + work.active.size() + static_cast<std::size_t>(work.finished) ==
               wanted;
  }
  Accompany(work, refused);
  const STACK_STATUS status =
      watch_->Look(queue_ ? queue_->Active() : ACTIVE_SLAVES(std::in_place), false);
  display_.ShowAtEnd({status});
  TellTroubles();
  return AreWantedDone(status);
}

STACK_START STACK_STARTER::ThisStart() const {
  STACK_START start = {.name = description_.name,
                       .description = description_.file.string(),
                       .arguments = options_.Arguments(),
                       .slaves = {},
                       .begun = SecondsSince1970()};
  for (const STACK_SLAVE& slave : description_.slaves) {
    start.slaves.push_back(slave.name);
  }
  return start;
}

void STACK_STARTER::MakeQueue() {
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

std::map<std::string, QUEUE_ENTRY> STACK_STARTER::ActiveSlaves(const WISHES& wishes) {
  std::map<std::string, QUEUE_ENTRY> active = AnswerOf(*queue_);
  const std::vector<std::string> outdated = OutdatedSlaves(description_, wishes, active);
  if (outdated.empty()) {
    return active;
  }
  std::cerr << outdated.size()
            << " slaves in the queue have other parameters or another program: cancelled, and "
               "submitted anew\n";
  queue_->Cancel(outdated);
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(5);
  const auto is_active = [&](const std::string& name) { return active.contains(name); };
  while (std::any_of(outdated.begin(), outdated.end(), is_active)) {
    if (std::chrono::steady_clock::now() > end) {
      throw STACK_ERROR("slaves do not leave the queue that were cancelled");
    }
    std::this_thread::sleep_for(std::chrono::seconds(1));
    active = AnswerOf(*queue_);
  }
  return active;
}

STACK_WORK STACK_STARTER::Prepare() {
  const WISHES wishes = {.program = FindProgram(options_.program),
                         .retries = options_.retries,
                         .scratch = options_.scratch,
                         .only = {options_.only.begin(), options_.only.end()},
                         .again = options_.again};
  const std::map<std::string, QUEUE_ENTRY> active = ActiveSlaves(wishes);
  RemoveStops(description_, wishes.only);
  if (!std::filesystem::exists(stack_.StartFile())) {
    WriteStackStart(stack_, ThisStart());  // else `status` and `stop` would know nothing so far
  }
  STACK_WORK work = PrepareStack(description_, wishes, active);
  for (const auto& [remark, names] : work.remarks) {
    std::cerr << PrintableText(SubjectOf(names) + remark) << "\n";
  }
  troubles_ = work.troubles;
  return work;
}

REFUSED_SLAVES STACK_STARTER::Submit(const STACK_WORK& work) {
  REFUSED_SLAVES refused = work.to_run.empty() ? REFUSED_SLAVES{} : queue_->Submit(work.to_run);
  std::cout << description_.slaves.size() << " slaves: " << work.finished << " are done, "
            << work.active.size() << " are in the queue, "
            << work.to_run.size() - refused.names.size() << " are started" << std::endl;
  return refused;
}

void STACK_STARTER::Accompany(const STACK_WORK& work, const REFUSED_SLAVES& refused) {
  std::set<std::string> names(work.to_run.begin(), work.to_run.end());
  names.insert(work.active.begin(), work.active.end());
  for (const std::string& name : refused.names) {
    names.erase(name);
  }
  SIGNALS signals;
  SUPERVISION supervision(stack_, *queue_, signals, [this](const ACTIVE_SLAVES& active) {
    display_.Show({watch_->Look(active, true)});
  });
  supervision.Accompany(std::move(names), refused);
  troubles_.insert(supervision.Troubles().begin(), supervision.Troubles().end());
  if (signals.EndAsked() != 0 && options_.is_local) {
    queue_.reset();  // what runs on this machine ends with its queue
  }
}

void STACK_STARTER::TellTroubles() const {
  for (const auto& [name, text] : troubles_) {
    std::cerr << name << ": " << PrintableText(text) << "\n";
  }
}

bool STACK_STARTER::AreWantedDone(const STACK_STATUS& status) const {
  const auto is_wanted = [this](const SLAVE_STATUS& slave) {
    return options_.only.empty() ||
           std::find(options_.only.begin(), options_.only.end(), slave.name) != options_.only.end();
  };
  return troubles_.empty() &&
         std::all_of(status.slaves.begin(), status.slaves.end(), [&](const SLAVE_STATUS& slave) {
           return slave.IsDone() || !is_wanted(slave);
         });
}
