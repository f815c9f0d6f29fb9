#include "queue/slurm_queue.h"

#include <chrono>
#include <set>
#include <sstream>
#include <string_view>

#include "description/stack_description.h"
#include "run/child_process.h"
#include "run/text_file.h"

namespace {

constexpr std::string_view comment_begin = "resample-stack ";

/// The text as one word for a shell.
std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) {
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  }
  return quoted + "'";
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

/// A task is the runner for the slave on its line of the list, with as many threads as Slurm gives
/// it processors.
std::string JobScript(const std::string& program, const std::filesystem::path& slave_list,
                      const std::filesystem::path& runs) {
  return "#!/bin/sh\n"
         "slave=$(sed -n \"${SLURM_ARRAY_TASK_ID}p\" " +
         Quoted(slave_list.string()) +
         ")\n"
         "PARALLEL=${SLURM_CPUS_PER_TASK:-1}\n"
         "export PARALLEL\n"
         "exec " +
         Quoted(program) + " run " + Quoted(runs.string()) + "/\"$slave\"\n";
}

}  // namespace

void SLURM_QUEUE::Submit(const std::vector<std::string>& names) {
  const std::filesystem::path slave_list = NewSlaveList();
  std::string text;
  for (const std::string& name : names) {
    text += name + "\n";
  }
  ReplaceTextFile(slave_list, text);
  const std::string script = slave_list.string() + ".sh";
  ReplaceTextFile(
      script, JobScript(settings_.program, slave_list, stack_.Run(names[0]).Path().parent_path()));

  std::string array = "--array=1-" + std::to_string(names.size());
  if (settings_.concurrent > 0) {
    array += "%" + std::to_string(settings_.concurrent);
  }
  std::vector<std::string> command = {"sbatch", "--cpus-per-task=1", "--requeue"};
  command.insert(command.end(), settings_.options.begin(), settings_.options.end());
  // What the stack depends on stands last and so wins.
  for (const std::string& option :
       {array, "--job-name=" + settings_.job_name,
        "--comment=" + std::string(comment_begin) + slave_list.string(),
        "--chdir=" + stack_.Path().string(),
        "--output=" + (stack_.SlurmDirectory() / "%A_%a.out").string(), script}) {
    command.push_back(option);
  }
  const COMMAND_RESULT result = RunCommand(command);
  if (result.end.exit_status != 0) {
    throw STACK_ERROR("sbatch: " + result.text);
  }
}

std::filesystem::path SLURM_QUEUE::NewSlaveList() const {
  std::filesystem::create_directories(stack_.SlurmDirectory());
  for (int i = 1;; ++i) {
    std::filesystem::path list = stack_.SlurmDirectory() / ("slaves." + std::to_string(i));
    if (!std::filesystem::exists(list)) {
      return list;
    }
  }
}

std::optional<std::vector<SLURM_QUEUE::TASK>> SLURM_QUEUE::Tasks() const {
  const COMMAND_RESULT result =
      RunCommand({"squeue", "--me", "--noheader", "--array", "--format=%F|%K|%T|%k"});
  if (result.end.exit_status != 0) {
    return std::nullopt;
  }
  const std::string our_lists =
      std::string(comment_begin) + (stack_.SlurmDirectory() / "").string();
  std::vector<TASK> tasks;
  for (const std::string& line : Lines(result.text)) {
    std::istringstream fields(line);
    TASK task;
    std::string index;
    std::string state;
    std::string comment;
    std::getline(fields, task.job, '|');
    std::getline(fields, index, '|');
    std::getline(fields, state, '|');
    std::getline(fields, comment);
    if (comment.starts_with(our_lists)) {
      task.index = std::stoul(index);
      task.is_waiting = state == "PENDING" || state == "REQUEUED" || state == "REQUEUE_HOLD";
      task.slave_list = comment.substr(comment_begin.size());
      tasks.push_back(task);
    }
  }
  return tasks;
}

ACTIVE_SLAVES SLURM_QUEUE::Active() {
  const auto tasks = Tasks();
  if (!tasks) {
    return std::nullopt;
  }
  std::map<std::filesystem::path, std::vector<std::string>> lists;
  std::map<std::string, QUEUE_STATE> active;
  for (const TASK& task : *tasks) {
    const auto [list, is_new] = lists.try_emplace(task.slave_list);
    if (is_new) {
      list->second = Lines(ReadTextFile(task.slave_list).value_or(""));
    }
    if (task.index >= 1 && task.index <= list->second.size()) {
      active[list->second[task.index - 1]] =
          task.is_waiting ? QUEUE_STATE::WAITING : QUEUE_STATE::RUNNING;
    }
  }
  return active;
}

void SLURM_QUEUE::Wait(SIGNALS& signals) const {
  signals.EndAsked();  // takes note of the commands that have ended
  constexpr std::chrono::seconds interval(3);
  signals.Wait(interval);
}

void SLURM_QUEUE::CancelWaiting() {
  const auto tasks = Tasks();
  if (!tasks) {
    throw STACK_ERROR("squeue does not answer: what waits in the queue will find its STOP file");
  }
  std::set<std::string> jobs;
  for (const TASK& task : *tasks) {
    if (task.is_waiting) {
      jobs.insert(task.job);
    }
  }
  for (const std::string& job : jobs) {
    const COMMAND_RESULT result = RunCommand({"scancel", "--state=PENDING", job});
    if (result.end.exit_status != 0) {
      throw STACK_ERROR("scancel: " + result.text);
    }
  }
}
