#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "stack/slurm_cluster.h"
#include "support/scene.h"

namespace {

namespace fs = std::filesystem;
using JSON = nlohmann::json;
using NAMES = std::set<std::string>;

/// Names of slaves from the first to the last number: s01, s02, ...
NAMES Slaves(int first, int last) {
  NAMES names;
  for (int i = first; i <= last; ++i) {
    names.insert((i < 10 ? "s0" : "s") + std::to_string(i));
  }
  return names;
}

NAMES Without(NAMES names, const NAMES& others) {
  std::erase_if(names, [&others](const std::string& name) { return others.count(name) != 0; });
  return names;
}

/// A stack on a cluster of two nodes, with two runs at a time on each. All slaves have the mapping
/// matrices and pools in common, and images of their own.
///
/// In place of resample itself a script is started, which notes the node, itself and its parent in
/// "begun/NAME", waits until "open/NAME" or "open/all" exists, and becomes resample then.
class SlurmStack : public testing::Test {
 protected:
  void SetUp() override {
    if (const auto missing = SLURM_CLUSTER::MissingProgram()) {
      GTEST_SKIP() << "no " << *missing << " here: install munge, slurmctld, slurmd, slurm-client";
    }
    for (const char* name : {"begun", "open", "out", "single"}) {
      fs::create_directory(Path(name));
    }
    WriteProgram();
    cluster.emplace(2);
  }

  fs::path Path(const std::string& name) const { return folder_.Path() / name; }

  /// Makes inputs and description of so many slaves; those named have large outputs, which take
  /// more than a second.
  void MakeStack(int count, const NAMES& large) {
    SCENE scene = OrdinaryScene();
    scene.n_samples = scene.slave.width;
    scene.n_lines = scene.slave.height;
    JSON common = WriteSceneFiles(scene, folder_.Path());
    for (const char* name : {"SlaveIn", "MaskIn", "SlaveOut", "MaskOut", "log_pp"}) {
      common.erase(name);
    }
    common["SlaveIn"] = "{name}.ras";
    common["MaskIn"] = "{name}_mask.ras";
    common["log_pp"] = "{name}.pool";
    common["SlaveOut"] = "out/{name}.ras";
    common["MaskOut"] = "out/{name}_mask.ras";
    JSON slaves = JSON::array();
    names = Slaves(1, count);
    for (const std::string& name : names) {
      JSON slave = {{"name", name}};
      if (large.count(name) != 0) {
        slave.update({{"n_samples", large_size}, {"n_lines", large_size}, {"KERNEL_LENGTH", 80}});
        scene.slave = GRID<RAW_PIXEL>(large_size, large_size, {100, 7});
        scene.mask = GRID<std::uint8_t>(large_size, large_size, 1);
      } else {
        scene.slave = OrdinaryScene().slave;
        scene.mask = OrdinaryScene().mask;
      }
      // No two slaves are alike.
      auto& pixels = scene.slave.values;
      pixels[pixels.size() / 2] = {static_cast<std::uint16_t>(1000 + slaves.size()), 30000};
      slaves.push_back(slave);
      WriteRaster(Path(name + ".ras"), scene.slave, scene.RasterType());
      WriteRaster(Path(name + "_mask.ras"), *scene.mask, RASTER_BYTE);
      fs::copy_file(Path("insar.pool"), Path(name + ".pool"));
    }
    description_ = {{"common", common}, {"slaves", slaves}};
    WriteFile(Path("stack.json"), description_.dump(2));
  }

  /// A command of the program on the stack, at work.
  class COMMAND {
   public:
    COMMAND(const SlurmStack& stack, const std::vector<std::string>& arguments)
        : process_(Settings(stack, arguments)) {}

    /// Its exit status; -1 when a signal ended it.
    int Wait() {
      end = process_.Wait();
      return end.exit_status;
    }
    void Signal(int number) const { process_.Signal(number); }

    PROCESS_END end;

   private:
    PROCESS_SETTINGS Settings(const SlurmStack& stack, std::vector<std::string> arguments) const {
      PROCESS_SETTINGS settings;
      settings.program = RESAMPLE_STACK_PROGRAM;
      settings.arguments = std::move(arguments);
      settings.environment = stack.cluster->Environment();
      settings.directory = directory_.Path();
      // One that hangs fails its test, by SIGALRM, and does not hold up all others.
      settings.prepare = [] {
        ::alarm(300);
        return true;
      };
      return settings;
    }

    TEMPORARY_DIRECTORY directory_;
    PROCESS process_;
  };

  std::unique_ptr<COMMAND> Start(const std::vector<std::string>& options = {}) const {
    std::vector<std::string> arguments = {Path("stack.json"), "--program", Path("program")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.insert(arguments.end(), {"--slurm", "--partition=debug", "--time=10", "--mem=200"});
    return std::make_unique<COMMAND>(*this, arguments);
  }

  JSON Status() const {
    COMMAND command(*this, {"status", Path("stack.json"), "--json"});
    command.Wait();
    return JSON::parse(command.end.screen);
  }

  /// The slaves that the program says are in this state.
  NAMES InState(const std::string& state) const {
    NAMES found;
    const JSON status = Status();
    for (const JSON& slave : status.at("slaves")) {
      if (slave.at("state") == state) {
        found.insert(slave.at("name"));
      }
    }
    return found;
  }

  JSON Slave(const std::string& name) const {
    const JSON slaves = Status().at("slaves");
    return *std::find_if(slaves.begin(), slaves.end(),
                         [&name](const JSON& slave) { return slave.at("name") == name; });
  }

  void Open(const std::string& name) const { WriteFile(Path("open") / name, ""); }
  void Open(const NAMES& some) const {
    for (const std::string& name : some) {
      Open(name);
    }
  }

  /// How often the slave's run has begun; a line "NODE PROCESS STARTER" each.
  std::vector<std::string> Begun(const std::string& name) const {
    std::ifstream file(Path("begun") / name);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
      lines.push_back(line);
    }
    return lines;
  }
  std::map<std::string, std::size_t> AllBegun() const {
    std::map<std::string, std::size_t> counts;
    for (const std::string& name : names) {
      counts[name] = Begun(name).size();
    }
    return counts;
  }
  testing::AssertionResult AwaitBegun(const NAMES& some, std::size_t times = 1) const {
    for (const std::string& name : some) {
      if (!WaitUntil([&] { return Begun(name).size() >= times; })) {
        return testing::AssertionFailure() << name << " has not begun";
      }
    }
    return testing::AssertionSuccess();
  }

  testing::AssertionResult AwaitOk(const NAMES& some) const {
    for (const std::string& name : some) {
      if (!WaitUntil([&] { return fs::exists(Path("stack.stack/status/OK." + name)); })) {
        return testing::AssertionFailure() << name << " has not succeeded";
      }
    }
    return testing::AssertionSuccess();
  }

  /// A run that was stopped by SIGSTOP, and what Slurm started on its node for it.
  struct HELD_RUN {
    pid_t process;
    pid_t starter;
  };

  /// Waits until a run with a large output computes, and holds it there.
  HELD_RUN Hold(const std::string& name) const {
    const fs::path log = Path("stack.stack/runs") / name / ("log." + name);
    if (!WaitUntil([&] {
          return fs::exists(log) && ReadFile(log).find("  - Run\n") != std::string::npos;
        })) {
      throw std::runtime_error(name + " does not compute");
    }
    std::istringstream line(Begun(name).back());
    std::string node;
    HELD_RUN held{};
    line >> node >> held.process >> held.starter;
    ::kill(held.process, SIGSTOP);
    return held;
  }

  /// Expects that these slaves and no others have outputs under their final names, that these are
  /// what a single run makes, and that nothing partial is left.
  void ExpectOutputs(const NAMES& some) const {
    NAMES expected;
    for (const std::string& name : some) {
      expected.insert({name + ".ras", name + "_mask.ras"});
    }
    NAMES found;
    for (const auto& entry : fs::directory_iterator(Path("out"))) {
      found.insert(entry.path().filename());
    }
    EXPECT_EQ(found, expected);
    for (const std::string& name : some) {
      RunSingle(name);
      for (const std::string& output : {name + ".ras", name + "_mask.ras"}) {
        EXPECT_EQ(ReadFile(Path("out") / output), ReadFile(Path("single") / output)) << output;
      }
    }
  }

  std::optional<SLURM_CLUSTER> cluster;
  NAMES names;

 private:
  static constexpr int large_size = 400;

  void WriteProgram() const {
    WriteFile(Path("program"),
              "#!/bin/sh\n"
              "if [ \"$1\" != --version ]; then\n"
              "  cd '" +
                  folder_.Path().string() +
                  "' || exit\n"
                  "  echo $SLURMD_NODENAME $$ $PPID >>begun/$2\n"
                  "  until [ -e open/$2 ] || [ -e open/all ]; do sleep 0.05; done\n"
                  "  cd - >/dev/null || exit\n"
                  "  export RESAMPLE_SIMD=plain\n"
                  "fi\n"
                  "exec '" RESAMPLE_PROGRAM "' \"$@\"\n");
    fs::permissions(Path("program"), fs::perms::owner_all);
  }

  /// Runs resample by itself on the slave as the description gives it, with outputs in "single".
  void RunSingle(const std::string& name) const {
    JSON parameters = description_.at("common");
    for (const JSON& slave : description_.at("slaves")) {
      if (slave.at("name") == name) {
        parameters.update(slave);
      }
    }
    parameters["SlaveOut"] = "single/{name}.ras";
    parameters["MaskOut"] = "single/{name}_mask.ras";
    fs::copy_file(Path("insar.pool"), Path("single.pool"), fs::copy_options::overwrite_existing);
    parameters["log_pp"] = "single.pool";
    std::string configuration;
    for (const auto& [key, value] : parameters.items()) {
      std::string text = value.is_string() ? value.get<std::string>() : value.dump();
      if (const std::size_t place = text.find("{name}"); place != std::string::npos) {
        text.replace(place, std::string_view("{name}").size(), name);
      }
      configuration.append(key).append(" ").append(text).append("\n");
    }
    WriteFile(Path("pcf.single"), configuration);
    PROCESS_SETTINGS settings;
    settings.program = RESAMPLE_PROGRAM;
    settings.arguments = {"-pid", "single"};
    settings.environment = {{"RESAMPLE_SIMD", "plain"}, {"PARALLEL", "1"}};
    settings.directory = folder_.Path();
    EXPECT_EQ(PROCESS(settings).Wait().exit_status, 0) << name;
  }

  TEMPORARY_DIRECTORY folder_;
  JSON description_;
};

TEST_F(SlurmStack, ComesToItsEndThroughFaultsAndResumptions) {
  MakeStack(24, {"s05", "s12"});
  const NAMES bad = {"s03", "s07"};
  fs::rename(Path("s07.ras"), Path("later"));
  const std::string whole = ReadFile(Path("s03.ras"));

  std::unique_ptr<COMMAND> start = Start();
  ASSERT_TRUE(AwaitBegun(Slaves(1, 4)));
  EXPECT_EQ(InState("failed"), NAMES{"s07"});
  EXPECT_EQ(InState("running"), Slaves(1, 4));
  EXPECT_EQ(InState("waiting"), Without(Slaves(5, 24), bad));
  fs::resize_file(Path("s03.ras"), whole.size() - 1);
  Open(Slaves(1, 5));

  // A run is killed, and repeated.
  ::kill(Hold("s05").process, SIGKILL);
  ASSERT_TRUE(AwaitBegun({"s05"}, 2));

  // Runs end while the controller is away.
  ASSERT_TRUE(AwaitBegun({"s06", "s08", "s09"}));
  cluster->StopController();
  Open(NAMES{"s06", "s08", "s09"});
  ASSERT_TRUE(AwaitOk({"s06", "s08", "s09"}));
  cluster->StartController();

  // What computes when the stop comes goes on; nothing else begins.
  ASSERT_TRUE(AwaitBegun(Slaves(10, 13)));
  Open(NAMES{"s10", "s11", "s13"});
  ASSERT_TRUE(AwaitBegun(Slaves(14, 16)));
  Open("s12");
  const HELD_RUN held = Hold("s12");
  COMMAND stop(*this, {"stop", Path("stack.json")});
  EXPECT_EQ(stop.Wait(), 0) << stop.end.screen << stop.end.errors;
  ::kill(held.process, SIGCONT);
  Open("all");
  EXPECT_EQ(start->Wait(), 1) << start->end.screen << start->end.errors;
  cluster->AwaitIdle();
  EXPECT_EQ(InState("failed"), bad);
  EXPECT_EQ(InState("succeeded"), Without(Slaves(1, 13), bad));
  EXPECT_EQ(InState("stopped"), Slaves(14, 24));
  const JSON status = Status();
  EXPECT_EQ(status.at("done"), 11);
  EXPECT_EQ(status.at("failed"), 2);
  EXPECT_EQ(status.at("waiting"), 11);
  EXPECT_EQ(status.at("queued"), 0);
  EXPECT_EQ(Slave("s05").at("attempts").size(), 2U);
  EXPECT_EQ(Slave("s03").at("reason"),
            "MEM_MGR: file is shorter than its header declares: " + Path("s03.ras").string());
  ExpectOutputs(Without(Slaves(1, 13), bad));
  auto begun = AllBegun();

  // The second start goes on, and a node is lost with all that runs there.
  fs::remove_all(Path("open"));
  fs::create_directory(Path("open"));
  start = Start();
  for (const std::string& name : Slaves(14, 17)) {
    ASSERT_TRUE(AwaitBegun({name}, begun[name] + 1));
  }
  for (const std::string& name : Without(Slaves(14, 24), bad)) {
    const bool is_lost = name < "s18" && Begun(name).back().starts_with("n2 ");
    begun[name] += is_lost ? 2 : 1;
  }
  cluster->KillNode("n2");
  ASSERT_TRUE(WaitUntil([this] { return cluster->NodeState("n2") == "down*"; }));
  cluster->StartNode("n2");
  Open("all");
  EXPECT_EQ(start->Wait(), 1) << start->end.screen << start->end.errors;
  EXPECT_EQ(InState("failed"), bad);
  EXPECT_EQ(InState("succeeded"), Without(names, bad));
  EXPECT_EQ(AllBegun(), begun);

  // With good inputs the rest is run, and then nothing any more.
  WriteFile(Path("s03.ras"), whole);
  fs::rename(Path("later"), Path("s07.ras"));
  EXPECT_EQ(Start()->Wait(), 0);
  ++begun["s03"];
  ++begun["s07"];
  EXPECT_EQ(AllBegun(), begun);
  EXPECT_EQ(Start()->Wait(), 0);
  EXPECT_EQ(AllBegun(), begun);

  // A changed input is run again.
  std::string image = ReadFile(Path("s10.ras"));
  image[image.size() / 2] = static_cast<char>(image[image.size() / 2] ^ 1);
  WriteFile(Path("s10.ras"), image);
  EXPECT_EQ(Start()->Wait(), 0);
  ++begun["s10"];
  EXPECT_EQ(AllBegun(), begun);
  EXPECT_EQ(InState("succeeded"), names);
  ExpectOutputs(names);
}

TEST_F(SlurmStack, IsTakenOverFromAStarterThatWasKilled) {
  MakeStack(6, {"s02"});
  const std::unique_ptr<COMMAND> first = Start();
  ASSERT_TRUE(AwaitBegun(Slaves(1, 4)));
  EXPECT_EQ(Start()->Wait(), 2) << "two starters";
  first->Signal(SIGKILL);
  first->Wait();
  const std::unique_ptr<COMMAND> second = Start();

  // What Slurm has started dies, and tells nobody.
  Open("s02");
  const HELD_RUN held = Hold("s02");
  ::kill(held.starter, SIGKILL);
  ::kill(held.process, SIGCONT);
  Open("all");
  EXPECT_EQ(second->Wait(), 0) << second->end.screen << second->end.errors;
  for (const auto& [name, times] : AllBegun()) {
    EXPECT_EQ(times, name == "s02" ? 2U : 1U) << name;
  }
  ExpectOutputs(names);
}

TEST_F(SlurmStack, RepeatsNoMoreThanItMay) {
  MakeStack(3, {"s01", "s02"});
  const auto start = Start({"--retries", "1", "--concurrent", "1"});
  Open("all");
  for (std::size_t attempt = 1; attempt <= 2; ++attempt) {
    ASSERT_TRUE(AwaitBegun({"s01"}, attempt));
    const HELD_RUN held = Hold("s01");
    const std::vector<std::string> reasons = cluster->Queue("%r");
    EXPECT_EQ(std::count(reasons.begin(), reasons.end(), "JobArrayTaskLimit"), 2);
    ::kill(held.process, SIGKILL);
  }
  // What an operator cancels is not repeated either.
  const HELD_RUN held = Hold("s02");
  cluster->Command("scancel", {"--state=RUNNING", "--user=" + std::to_string(::geteuid())});
  ::kill(held.process, SIGCONT);
  EXPECT_EQ(start->Wait(), 1) << start->end.screen << start->end.errors;
  EXPECT_EQ(InState("died"), NAMES{"s01"});
  EXPECT_EQ(InState("cancelled"), NAMES{"s02"});
  EXPECT_EQ(Slave("s01").at("attempts").size(), 2U);
  ExpectOutputs({"s03"});
  EXPECT_EQ(Start()->Wait(), 0);
  ExpectOutputs(names);
}

}  // namespace
