#include "stack/slurm_cluster.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <exception>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <stdexcept>

#include "support/wait_until.h"

namespace {

namespace fs = std::filesystem;

const std::vector<std::string> program_folders = {"/usr/local/sbin", "/usr/local/bin", "/usr/sbin",
                                                  "/usr/bin",        "/sbin",          "/bin"};
const std::string controller_name = "slurmctld";
const std::string key_server_name = "munged";

/// The path of a program, empty when there is none. Ordinary users' PATH lacks folders of daemons.
std::string FindProgram(const std::string& name) {
  for (const std::string& folder : program_folders) {
    std::string path = fs::path(folder) / name;
    if (::access(path.c_str(), X_OK) == 0) {
      return path;
    }
  }
  return "";
}

bool IsFree(int port) {
  const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_ANY);
  const bool is_free =
      ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
  ::close(socket);
  return is_free;
}

/// The first of so many ports in a row that nobody has, below those that the system itself hands
/// out.
int FreePorts(int count) {
  std::random_device random;
  for (int attempt = 0; attempt < 1000; ++attempt) {
    const int first = 10000 + static_cast<int>(random() % 20000);
    int free = 0;
    while (free < count && IsFree(first + free)) {
      ++free;
    }
    if (free == count) {
      return first;
    }
  }
  throw std::runtime_error("no free ports for a cluster");
}

/// A process's parent, 0 when it is gone or a zombie: it can do nothing any more then.
pid_t LivingParent(const std::string& process) {
  std::ifstream file("/proc/" + process + "/stat");
  std::string stat;
  std::getline(file, stat);
  const std::size_t name_end = stat.rfind(')');
  if (name_end == std::string::npos) {
    return 0;
  }
  std::istringstream fields(stat.substr(name_end + 1));
  char state = 'Z';
  pid_t parent = 0;
  fields >> state >> parent;
  return state == 'Z' || state == 'X' ? 0 : parent;
}

std::vector<pid_t> LivingDescendants(pid_t ancestor) {
  std::multimap<pid_t, pid_t> children;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    const std::string name = entry.path().filename();
    if (std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; })) {
      children.emplace(LivingParent(name), std::stoi(name));
    }
  }
  std::vector<pid_t> found = {ancestor};
  for (std::size_t i = 0; i < found.size(); ++i) {
    const auto [begin, end] = children.equal_range(found[i]);
    std::transform(begin, end, std::back_inserter(found),
                   [](const auto& pair) { return pair.second; });
  }
  found.erase(found.begin());
  return found;
}

/// At most the last lines of a file; empty when there is none.
std::string LastLines(const fs::path& path, int count) {
  if (!fs::exists(path)) {
    return "";
  }
  const std::string text = ReadFile(path);
  std::size_t begin = text.size();
  for (; count >= 0 && begin != std::string::npos && begin > 0; --count) {
    begin = text.rfind('\n', begin - 1);
  }
  return begin == std::string::npos || begin == 0 ? text : text.substr(begin + 1);
}

std::vector<std::string> Lines(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

/// Kills a process and all others that come from it, this one excepted. It is stopped first, so
/// that it starts nothing new meanwhile.
void KillTree(pid_t root) {
  ::kill(root, SIGSTOP);
  WaitUntil([root] {
    std::vector<pid_t> descendants = LivingDescendants(root);
    std::erase(descendants, ::getpid());
    for (const pid_t id : descendants) {
      ::kill(id, SIGKILL);
    }
    return descendants.empty();
  });
  ::kill(root, SIGKILL);
}

/// Lets this process and those that come from it see an empty folder there.
bool Hide(const fs::path& folder) {
  return ::unshare(CLONE_NEWNS) == 0 &&
         ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         ::mount("none", folder.c_str(), "tmpfs", 0, nullptr) == 0;
}

/// Starts a process that kills its parent's tree once the test is gone, however it went. Itself it
/// goes with its parent.
bool StartGuard(pid_t test) {
  const pid_t parent = ::getpid();
  const pid_t guard = ::fork();
  if (guard != 0) {
    return guard > 0;
  }
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  while (LivingParent(std::to_string(test)) != 0) {
    ::sleep(1);
  }
  KillTree(parent);
  ::_exit(0);
}

}  // namespace

/// One daemon with all processes that come from it. They stay its descendants even when they are
/// made orphans, as those of jobs are, and end with it.
class SLURM_CLUSTER::DAEMON {
 public:
  DAEMON(PROCESS_SETTINGS settings, const fs::path& hidden_folder)
      : process_(Prepared(std::move(settings), hidden_folder)) {}
  ~DAEMON() { KillTree(process_.Id()); }
  DAEMON(const DAEMON&) = delete;
  DAEMON& operator=(const DAEMON&) = delete;

  bool HasEnded() const { return process_.HasEnded(); }
  void Signal(int number) const { process_.Signal(number); }

 private:
  static PROCESS_SETTINGS Prepared(PROCESS_SETTINGS settings, const fs::path& hidden_folder) {
    settings.prepare = [test = ::getpid(), hidden_folder] {
      return ::prctl(PR_SET_CHILD_SUBREAPER, 1) == 0 && StartGuard(test) &&
             (hidden_folder.empty() || Hide(hidden_folder));
    };
    return settings;
  }

  PROCESS process_;
};

std::optional<std::string> SLURM_CLUSTER::MissingProgram() {
  for (const char* name :
       {"munged", "slurmctld", "slurmd", "sbatch", "squeue", "scancel", "sinfo", "scontrol"}) {
    if (FindProgram(name).empty()) {
      return name;
    }
  }
  return std::nullopt;
}

SLURM_CLUSTER::SLURM_CLUSTER(const SETTINGS& settings) : settings_(settings) {
  // munged refuses a socket that others could not reach.
  fs::permissions(directory_.Path(), fs::perms::group_exec | fs::perms::others_exec,
                  fs::perm_options::add);
  WriteConfiguration();
  StartDaemon(
      key_server_name, key_server_name,
      {"--foreground", "--num-threads=2", "--key-file=" + directory_.File("munge.key"),
       "--socket=" + directory_.File("munge.socket"), "--pid-file=" + directory_.File("munged.pid"),
       "--seed-file=" + directory_.File("munged.seed")});
  Await("munged listens", [this] { return fs::exists(directory_.Path() / "munge.socket"); });
  StartController();
  for (int i = 1; i <= nodes; ++i) {
    const std::string name = "n" + std::to_string(i);
    StartDaemon(name, "slurmd", {"-D", "-N", name});
  }
  Await("all nodes take jobs", [this] {
    const std::vector<std::string> idle = Lines(Command(
        "sinfo", {"--noheader", "--Node", "--partition=debug", "--states=idle", "--format=%N"}));
    return idle.size() == static_cast<std::size_t>(nodes);
  });
}

SLURM_CLUSTER::~SLURM_CLUSTER() {
  if (testing::Test::HasFailure() || std::uncaught_exceptions() > 0) {
    std::cerr << LogEnds();
  }
}

void SLURM_CLUSTER::WriteConfiguration() const {
  std::random_device random;
  std::string key(128, '\0');
  std::generate(key.begin(), key.end(), [&random] { return static_cast<char>(random()); });
  WriteFile(directory_.Path() / "munge.key", key);
  fs::permissions(directory_.Path() / "munge.key", fs::perms::owner_read);

  fs::create_directory(directory_.Path() / "state");
  const std::string user = std::to_string(::geteuid());
  const std::string last_node = std::to_string(nodes);
  const int port = FreePorts(nodes + 1);
  std::ostringstream text;
  text << "ClusterName=test\n"
       << "SlurmctldHost=localhost(127.0.0.1)\n"
       << "SlurmctldPort=" << port << "\n"
       << "SlurmUser=" << user << "\n"
       << "SlurmdUser=" << user << "\n"
       << "AuthType=auth/munge\n"
       << "CredType=cred/munge\n"
       // Jobs of a lost node wait as long as a credential lives before they begin again.
       << "AuthInfo=socket=" << directory_.File("munge.socket") << ",cred_expire=5\n"
       << "StateSaveLocation=" << directory_.File("state") << "\n"
       << "SlurmdSpoolDir=" << directory_.File("%n") << "/spool\n"
       << "SlurmctldPidFile=" << directory_.File("slurmctld.pid") << "\n"
       << "SlurmdPidFile=" << directory_.File("%n.pid") << "\n"
       << "SlurmctldLogFile=" << directory_.File("slurmctld.log") << "\n"
       << "SlurmdLogFile=" << directory_.File("%n.log") << "\n"
       << "MailProg=/bin/true\n"
       << "ProctrackType=proctrack/linuxproc\n"
       << "TaskPlugin=task/none\n"
       << "MpiDefault=none\n"
       << "SelectType=select/cons_tres\n"
       << "SelectTypeParameters=CR_Core_Memory\n"
       << "DefMemPerCPU=100\n"
       // Nodes are believed to be what stands here.
       << "SlurmdParameters=config_overrides\n"
       << "SchedulerParameters=sched_interval=1,bf_interval=1\n"
       << "ReturnToService=2\n"
       << "SlurmdTimeout=3\n"
       << "SlurmctldTimeout=3\n"
       << "MessageTimeout=5\n"
       << "MinJobAge=60\n"
       << "KillWait=2\n"
       << "NodeName=n[1-" << last_node << "] NodeHostname=localhost NodeAddr=127.0.0.1 Port=["
       << port + 1 << "-" << port + nodes << "] CPUs=" << processors_a_node
       << " RealMemory=4000 State=UNKNOWN\n"
       << "PartitionName=debug Nodes=ALL Default=YES MaxTime=INFINITE State=UP\n"
       << "PartitionName=hidden Nodes=ALL Hidden=YES State=UP\n"
       << settings_.configuration;
  WriteFile(directory_.Path() / "slurm.conf", text.str());
}

void SLURM_CLUSTER::StartDaemon(const std::string& name, const std::string& program,
                                const std::vector<std::string>& arguments) {
  const fs::path folder = directory_.Path() / name;
  fs::create_directories(folder / "spool");
  PROCESS_SETTINGS settings;
  settings.program = FindProgram(program);
  settings.arguments = arguments;
  settings.environment = Environment();
  settings.directory = folder;
  daemons_[name] =
      std::make_unique<DAEMON>(settings, name == "n2" ? settings_.hidden_folder : fs::path());
}

std::map<std::string, std::string> SLURM_CLUSTER::Environment() const {
  std::string path;
  for (const std::string& folder : program_folders) {
    path += (path.empty() ? "" : ":") + folder;
  }
  return {{"PATH", path}, {"SLURM_CONF", directory_.File("slurm.conf")}};
}

PROCESS_END SLURM_CLUSTER::Run(const std::string& name,
                               const std::vector<std::string>& arguments) const {
  TEMPORARY_DIRECTORY folder;
  PROCESS_SETTINGS settings;
  settings.program = FindProgram(name);
  settings.arguments = arguments;
  settings.environment = Environment();
  settings.directory = folder.Path();
  return PROCESS(settings).Wait();
}

std::string SLURM_CLUSTER::Command(const std::string& name,
                                   const std::vector<std::string>& arguments) const {
  const PROCESS_END end = Run(name, arguments);
  if (end.exit_status != 0) {
    Fail(name + " failed: " + end.errors);
  }
  return end.screen;
}

std::vector<std::string> SLURM_CLUSTER::Queue(const std::string& format) const {
  return Lines(Command("squeue", {"--noheader", "--array", "--format=" + format}));
}

void SLURM_CLUSTER::AwaitIdle() const {
  Await("no job is left", [this] { return Queue("%i").empty(); });
}

void SLURM_CLUSTER::StopController() {
  const DAEMON& controller = *daemons_.at(controller_name);
  controller.Signal(SIGTERM);
  Await("the controller ends", [&controller] { return controller.HasEnded(); });
}

void SLURM_CLUSTER::StartController() {
  StartDaemon(controller_name, controller_name, {"-D"});
  Await("the controller answers", [this] { return Run("scontrol", {"ping"}).exit_status == 0; });
}

void SLURM_CLUSTER::KillNode(const std::string& name) {
  daemons_.at(name).reset();
}

void SLURM_CLUSTER::StartNode(const std::string& name) {
  StartDaemon(name, "slurmd", {"-D", "-N", name});
  // Waiting jobs may be there already.
  Await("node " + name + " takes jobs", [this, &name] {
    const std::string state = NodeState(name);
    return state == "idle" || state == "mixed" || state == "allocated";
  });
}

std::string SLURM_CLUSTER::NodeState(const std::string& name) const {
  const std::vector<std::string> lines =
      Lines(Command("sinfo", {"--noheader", "--Node", "--nodes=" + name, "--format=%T"}));
  return lines.empty() ? "" : lines.front();
}

void SLURM_CLUSTER::Await(const std::string& what, const std::function<bool()>& condition) const {
  if (!WaitUntil(condition)) {
    Fail("waited in vain until " + what);
  }
}

void SLURM_CLUSTER::Fail(const std::string& what) const {
  throw std::runtime_error(what + "\n" + LogEnds());
}

std::string SLURM_CLUSTER::LogEnds() const {
  std::string text;
  for (const auto& [name, daemon] : daemons_) {
    const bool has_log = name != key_server_name;
    const fs::path log = directory_.Path() / (has_log ? name + ".log" : name + "/errors");
    text += "--- " + name + "\n" + LastLines(log, 25);
  }
  return text;
}
