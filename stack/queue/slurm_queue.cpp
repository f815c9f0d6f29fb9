#include "queue/slurm_queue.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <sstream>
#include <string_view>

#include "basics/child_process.h"
#include "basics/stack_error.h"
#include "basics/text_file.h"
#include "slurm/slurm_command.h"

namespace {

namespace fs = std::filesystem;

constexpr std::string_view comment_begin = "resample-stack ";

/// Options of sbatch that are the queue's own, with what to do instead.
struct OWN_OPTION {
  std::string_view name;
  char letter;  ///< 0 without one
  std::string_view reason;
};
constexpr std::array own_options = std::to_array<OWN_OPTION>({
    {"array", 'a', "the slaves are the array; --only takes some, --concurrent limits them"},
    {"chdir", 'D', "tasks run in the stack's directory"},
    {"clusters", 'M', "the tasks are looked for in this cluster alone; SLURM_CONF chooses it"},
    {"comment", 0, "the tasks are found again by their comment"},
    {"error", 'e', "what tasks print is in the stack's folder slurm"},
    {"job-name", 'J', "tasks have the stack's name; the description's \"name\" gives another one"},
    {"output", 'o', "what tasks print is in the stack's folder slurm"},
    {"parsable", 0, "it is the stack that reads what sbatch prints"},
    {"test-only", 0, "slctool check-run tests a run"},
    {"wait", 'W', "the start waits by itself, unless --no-wait is given"},
    {"wrap", 0, "what a task runs is the stack's"},
});

/// The option's name is, or abbreviates, that of an own option.
bool IsOption(const std::string& option, const OWN_OPTION& own) {
  if (option.starts_with("--")) {
    const std::string name = option.substr(2, option.find('=') - 2);
    return !name.empty() && own.name.starts_with(name);
  }
  return option.size() >= 2 && option[0] == '-' && own.letter != 0 && option[1] == own.letter;
}

/// The text as one word for a shell.
std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) {
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  }
  return quoted + "'";
}

/// The path in a pattern in which a % begins what Slurm replaces.
std::string Literal(const std::string& path) {
  std::string literal;
  for (const char c : path) {
    literal += c == '%' ? "%%" : std::string(1, c);
  }
  return literal;
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
std::string JobScript(const std::string& program, const fs::path& slave_list,
                      const fs::path& runs) {
  return "#!/bin/sh\n"
         "slave=$(sed -n \"${SLURM_ARRAY_TASK_ID}p\" " +
         Quoted(slave_list.string()) +
         ")\n"
         "PARALLEL=${SLURM_CPUS_PER_TASK:-1}\n"
         "export PARALLEL\n"
         "exec " +
         Quoted(program) + " run " + Quoted(runs.string()) + "/\"$slave\"\n";
}

/// The highest index of an array that Slurm takes.
std::size_t LargestIndex() {
  constexpr std::size_t usual = 1000;
  constexpr std::string_view name = "MaxArraySize";
  for (const std::string& line : Lines(RunSlurmCommand({"scontrol", "show", "config"}).text)) {
    if (line.starts_with(name)) {
      const std::size_t digits = line.find_first_of("0123456789");
      std::size_t size = 0;
      const bool is_number =
          digits != std::string::npos &&
          std::from_chars(line.data() + digits, line.data() + line.size(), size).ec == std::errc();
      return is_number && size > 1 ? size - 1 : usual;
    }
  }
  return usual;
}

QUEUE_ENTRY EntryOf(const std::string& state, const std::string& reason) {
  if (state != "PENDING" && state != "REQUEUED" && state != "REQUEUE_HOLD" &&
      state != "REQUEUE_FED" && state != "SPECIAL_EXIT") {
    return {.state = QUEUE_STATE::RUNNING, .reason = state == "RUNNING" ? "" : state};
  }
  std::string words = reason == "None" ? "" : reason;
  std::replace(words.begin(), words.end(), ' ', '_');
  if (words.starts_with("launch_failed")) {
    return {.state = QUEUE_STATE::NOT_LAUNCHED, .reason = words};
  }
  const bool is_held = words.starts_with("JobHeld") || words.ends_with("_held") ||
                       state == "REQUEUE_HOLD" || state == "SPECIAL_EXIT";
  return {.state = is_held ? QUEUE_STATE::HELD : QUEUE_STATE::WAITING, .reason = words};
}

/// Takes the value of an option of sbatch that may stand several times, and the option, out.
std::string TakeOption(std::vector<std::string>& options, const std::string& name,
                       const std::string& letter) {
  std::string value;
  for (auto option = options.begin(); option != options.end();) {
    std::string found;
    if (*option == name || *option == letter) {
      option = options.erase(option);
      if (option == options.end()) {
        break;
      }
      found = *option;
    } else if (option->starts_with(name + "=")) {
      found = option->substr(name.size() + 1);
    } else if (option->starts_with(letter) && !option->starts_with("--")) {
      found = option->substr(letter.size());
    } else {
      ++option;
      continue;
    }
    value += (value.empty() ? "" : ",") + found;
    option = options.erase(option);
  }
  return value;
}

}  // namespace

void CheckSbatchOptions(const std::vector<std::string>& options) {
  for (const std::string& option : options) {
    for (const OWN_OPTION& own : own_options) {
      if (IsOption(option, own)) {
        throw STACK_ERROR("sbatch must not get " + option + ": " + std::string(own.reason));
      }
    }
  }
}

REFUSED_SLAVES SLURM_QUEUE::Submit(const std::vector<std::string>& names) {
  const auto largest = static_cast<std::ptrdiff_t>(LargestIndex());
  std::string job_before;
  for (auto begin = names.begin(); begin != names.end();) {
    const auto end = begin + std::min(largest, names.end() - begin);
    try {
      SubmitArray({begin, end}, job_before);
    } catch (const std::exception& error) {
      return {{begin, names.end()}, error.what()};
    }
    // So many at a time in all: an array with a limit waits for the one before.
    job_before = settings_.concurrent > 0 ? last_job_ : "";
    begin = end;
  }
  return {};
}

void SLURM_QUEUE::SubmitArray(const std::vector<std::string>& names,
                              const std::string& job_before) {
  const fs::path list = NewSlaveList();
  std::string text;
  for (const std::string& name : names) {
    text += name + "\n";
  }
  ReplaceTextFile(list, text);
  ReplaceTextFile(list.string() + ".sh",
                  JobScript(settings_.program, list, stack_.Run(names[0]).Path().parent_path()));
  const COMMAND_RESULT result = RunSlurmCommand(Command(names.size(), list, job_before));
  if (result.end.exit_status != 0) {
    fs::remove(list);
    fs::remove(list.string() + ".sh");
    throw STACK_ERROR("sbatch: " + result.text);
  }
  // Warnings may stand before the job's number.
  const std::vector<std::string> lines = Lines(result.text);
  last_job_ = lines.empty() ? "" : lines.back().substr(0, lines.back().find(';'));
  try {
    ReplaceTextFile(list.string() + ".job", last_job_ + "\n");
  } catch (const std::system_error&) {
    // It is submitted all the same; nobody can ask for the end of its tasks by name then.
  }
}

std::vector<std::string> SLURM_QUEUE::Command(std::size_t tasks, const std::string& list,
                                              const std::string& job_before) const {
  std::vector<std::string> options = settings_.options;
  std::string excluded = TakeOption(options, "--exclude", "-x");
  for (const std::string& node : bad_nodes_) {
    excluded += (excluded.empty() ? "" : ",") + node;
  }
  // SIGUSR1 tells the runner a minute before that its time will be over.
  std::vector<std::string> command = {"sbatch", "--parsable", "--cpus-per-task=1", "--requeue",
                                      "--signal=B:USR1@60"};
  if (!job_before.empty()) {
    const std::string dependency = TakeOption(options, "--dependency", "-d");
    command.push_back("--dependency=" + dependency + (dependency.empty() ? "" : ",") +
                      "afterany:" + job_before);
  }
  if (!excluded.empty()) {
    command.push_back("--exclude=" + excluded);
  }
  command.insert(command.end(), options.begin(), options.end());
  std::string array = "--array=1-" + std::to_string(tasks);
  if (settings_.concurrent > 0) {
    array += "%" + std::to_string(settings_.concurrent);
  }
  for (const std::string& option :
       {array, "--job-name=" + settings_.job_name,
        "--comment=" + std::string(comment_begin) + stack_.Identity() + " " +
            fs::path(list).filename().string(),
        "--chdir=" + stack_.Path().string(),
        "--output=" + Literal(stack_.SlurmDirectory().string()) + "/%A_%a.out", list + ".sh"}) {
    command.push_back(option);
  }
  return command;
}

std::map<int, fs::path> SLURM_QUEUE::SlaveLists() const {
  constexpr std::string_view begin = "slaves.";
  std::map<int, fs::path> lists;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator(stack_.SlurmDirectory(), none)) {
    const std::string name = entry.path().filename();
    int number = 0;
    const char* end = name.data() + name.size();
    if (name.starts_with(begin) &&
        std::from_chars(name.data() + begin.size(), end, number).ptr == end) {
      lists[number] = entry.path();
    }
  }
  return lists;
}

fs::path SLURM_QUEUE::NewSlaveList() const {
  fs::create_directories(stack_.SlurmDirectory());
  const auto lists = SlaveLists();
  const int number = lists.empty() ? 1 : lists.rbegin()->first + 1;
  return stack_.SlurmDirectory() / ("slaves." + std::to_string(number));
}

std::optional<std::vector<SLURM_QUEUE::TASK>> SLURM_QUEUE::Tasks() const {
  const COMMAND_RESULT result = RunSlurmCommand(
      {"squeue", "--me", "--all", "--noheader", "--array", "--format=%F|%K|%T|%r|%k"});
  if (result.end.exit_status != 0) {
    return std::nullopt;
  }
  const std::string our_begin = std::string(comment_begin) + stack_.Identity() + " ";
  std::map<std::string, std::vector<std::string>> lists;
  std::vector<TASK> tasks;
  for (const std::string& line : Lines(result.text)) {
    std::istringstream fields(line);
    TASK task;
    std::string state;
    std::string reason;
    std::string comment;
    std::getline(fields, task.job, '|');
    std::getline(fields, task.index, '|');
    std::getline(fields, state, '|');
    std::getline(fields, reason, '|');
    std::getline(fields, comment);
    if (!comment.starts_with(our_begin)) {
      continue;
    }
    task.entry = EntryOf(state, reason);
    task.list = comment.substr(our_begin.size());
    const auto [list, is_new] = lists.try_emplace(task.list);
    if (is_new) {
      list->second = Lines(ReadTextFile(stack_.SlurmDirectory() / task.list).value_or(""));
    }
    const std::size_t index = std::stoul(task.index);
    if (index >= 1 && index <= list->second.size()) {
      task.slave = list->second[index - 1];
    }
    tasks.push_back(task);
  }
  return tasks;
}

std::map<std::string, std::string> SLURM_QUEUE::LastTasks() const {
  std::map<std::string, std::string> tasks;
  for (const auto& [number, list] : SlaveLists()) {
    const auto job = ReadTextFile(list.string() + ".job");
    std::size_t index = 0;
    for (const std::string& name : Lines(job ? ReadTextFile(list).value_or("") : "")) {
      tasks[name] = job->substr(0, job->find('\n')) + "_" + std::to_string(++index);
    }
  }
  return tasks;
}

ACTIVE_SLAVES SLURM_QUEUE::Active() const {
  const auto tasks = Tasks();
  if (!tasks) {
    return std::nullopt;
  }
  std::map<std::string, QUEUE_ENTRY> active;
  for (const TASK& task : *tasks) {
    if (!task.slave.empty()) {
      active[task.slave] = task.entry;
    }
  }
  return active;
}

ACTIVE_SLAVES SLURM_QUEUE::ActiveOf(const STACK_FOLDER& stack) {
  return fs::exists(stack.SlurmDirectory()) ? SLURM_QUEUE(stack, {}).Active()
                                            : ACTIVE_SLAVES(std::in_place);
}

QUEUE_END SLURM_QUEUE::EndOf(const std::string& name) {
  const auto tasks = LastTasks();
  const auto task = tasks.find(name);
  const auto report = task == tasks.end() ? std::nullopt : ReportOfTask(task->second);
  if (!report) {
    return {.text = "left the queue, and Slurm does not know why"};
  }
  if (report->state == "CANCELLED" || report->state == "PREEMPTED") {
    return {.kind = QUEUE_END::KIND::CANCELLED, .text = report->Text()};
  }
  if (report->state == "TIMEOUT" || report->state == "DEADLINE") {
    return {.kind = QUEUE_END::KIND::TIMED_OUT, .text = report->Text()};
  }
  if (!report->node.empty()) {
    bad_nodes_.insert(report->node);
  }
  return {.text = report->Text()};
}

void SLURM_QUEUE::Wait(SIGNALS& signals) {
  signals.Wait(std::chrono::seconds(0));  // takes note of the commands that have ended
  signals.Wait(interval_);
  constexpr std::chrono::milliseconds longest(3000);
  interval_ = std::min(longest, interval_ * 5 / 4);
}

void SLURM_QUEUE::Cancel(const std::vector<std::string>& names) {
  std::vector<std::string> command = {"scancel"};
  const auto tasks = names.empty() ? std::map<std::string, std::string>() : LastTasks();
  for (const std::string& name : names) {
    if (const auto task = tasks.find(name); task != tasks.end()) {
      command.push_back(task->second);
    }
  }
  if (command.size() == 1) {
    return;
  }
  const COMMAND_RESULT result = RunSlurmCommand(command);
  if (result.end.exit_status != 0) {
    throw STACK_ERROR("scancel: " + result.text);
  }
}

void SLURM_QUEUE::CancelWaiting() const {
  const auto tasks = Tasks();
  if (!tasks) {
    throw STACK_ERROR("squeue does not answer: what waits in the queue will find its STOP file");
  }
  std::set<std::string> jobs;
  for (const TASK& task : *tasks) {
    if (!task.entry.IsRunning()) {
      jobs.insert(task.job);
    }
  }
  for (const std::string& job : jobs) {
    const COMMAND_RESULT result = RunSlurmCommand({"scancel", "--state=PENDING", job});
    if (result.end.exit_status != 0) {
      throw STACK_ERROR("scancel: " + result.text);
    }
  }
}

int SLURM_QUEUE::RemoveOldFiles() const {
  const auto tasks = Tasks();
  std::error_code none;
  if (!tasks) {
    return 0;
  }
  int removed = 0;
  for (const auto& entry : fs::directory_iterator(stack_.SlurmDirectory(), none)) {
    const std::string name = entry.path().filename();
    const bool is_needed = std::any_of(tasks->begin(), tasks->end(), [&](const TASK& task) {
      return name == task.list || name.starts_with(task.list + ".") || name == task.Id() + ".out";
    });
    removed += !is_needed && fs::remove(entry.path(), none);
  }
  return removed;
}
