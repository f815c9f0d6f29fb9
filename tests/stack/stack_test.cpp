#include "stack/stack_test.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "support/wait_until.h"

namespace fs = std::filesystem;
using JSON = nlohmann::json;

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

STACK_TEST::STACK_TEST() {
  for (const char* name : {"begun", "open", "out", "single"}) {
    fs::create_directories(Path(name));
  }
  WriteProgram();
}

void STACK_TEST::MakeStack(int count, const NAMES& large) {
  SCENE scene = OrdinaryScene();
  scene.n_samples = scene.slave.width;
  scene.n_lines = scene.slave.height;
  JSON common = WriteSceneFiles(scene, Path(""));
  for (const char* name : {"SlaveIn", "MaskIn", "SlaveOut", "MaskOut", "log_pp"}) {
    common.erase(name);
  }
  // Nothing tells the folder's own place, so that all of it may move.
  for (auto& [name, value] : common.items()) {
    if (value.is_string() && value.get<std::string>().starts_with(Path("").string())) {
      value = value.get<std::string>().substr(Path("").string().size());
    }
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
      slave.update(
          {{"n_samples", large_size}, {"n_lines", large_size}, {"KERNEL_LENGTH", large_kernel}});
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

void STACK_TEST::GiveTo(unsigned user) const {
  fs::permissions(folder_.Path(), fs::perms::others_exec, fs::perm_options::add);
  for (const auto& entry : fs::recursive_directory_iterator(folder_.Path())) {
    if (::chown(entry.path().c_str(), user, user) != 0) {
      throw std::runtime_error("can not give away " + entry.path().string());
    }
  }
}

void STACK_TEST::ChangeParameter(const std::string& slave, const std::string& name,
                                 const JSON& value) {
  for (JSON& entry : description_.at("slaves")) {
    if (entry.at("name") == slave) {
      entry[name] = value;
    }
  }
  WriteFile(Path("stack.json"), description_.dump());
}

PROCESS_SETTINGS STACK_TEST::COMMAND::Settings(const STACK_TEST& stack,
                                               std::vector<std::string> arguments) const {
  PROCESS_SETTINGS settings;
  settings.program = RESAMPLE_STACK_PROGRAM;
  settings.arguments = std::move(arguments);
  settings.environment = stack.Environment();
  settings.directory = directory_.Path();
  settings.prepare = [&stack] { return stack.PrepareProcess(); };
  return settings;
}

std::unique_ptr<STACK_TEST::COMMAND> STACK_TEST::Start(
    const std::vector<std::string>& options) const {
  std::vector<std::string> arguments = {Path("stack.json"), "--program", Path("program")};
  arguments.insert(arguments.end(), options.begin(), options.end());
  return std::make_unique<COMMAND>(*this, arguments);
}

JSON STACK_TEST::Status() const {
  COMMAND command(*this, {"status", Path("stack.json"), "--json"});
  command.Wait();
  return JSON::parse(command.end.screen);
}

NAMES STACK_TEST::InState(const std::string& state) const {
  NAMES found;
  const JSON status = Status();
  for (const JSON& slave : status.at("slaves")) {
    if (slave.at("state") == state) {
      found.insert(slave.at("name"));
    }
  }
  return found;
}

JSON STACK_TEST::Slave(const std::string& name) const {
  const JSON slaves = Status().at("slaves");
  return *std::find_if(slaves.begin(), slaves.end(),
                       [&name](const JSON& slave) { return slave.at("name") == name; });
}

void STACK_TEST::Open(const NAMES& some) const {
  for (const std::string& name : some) {
    Open(name);
  }
}

void STACK_TEST::CloseAll() const {
  fs::remove_all(Path("open"));
  fs::create_directory(Path("open"));
}

std::vector<std::string> STACK_TEST::Begun(const std::string& name) const {
  std::ifstream file(Path("begun") / name);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    lines.push_back(line);
  }
  return lines;
}

std::map<std::string, std::size_t> STACK_TEST::AllBegun() const {
  std::map<std::string, std::size_t> counts;
  for (const std::string& name : names) {
    counts[name] = Begun(name).size();
  }
  return counts;
}

testing::AssertionResult STACK_TEST::AwaitBegun(const NAMES& some, std::size_t times) const {
  for (const std::string& name : some) {
    if (!WaitUntil([&] { return Begun(name).size() >= times; })) {
      return testing::AssertionFailure() << name << " has not begun";
    }
  }
  return testing::AssertionSuccess();
}

testing::AssertionResult STACK_TEST::AwaitOk(const NAMES& some) const {
  for (const std::string& name : some) {
    if (!WaitUntil([&] { return fs::exists(Path("stack.stack/status/OK." + name)); })) {
      return testing::AssertionFailure() << name << " has not succeeded";
    }
  }
  return testing::AssertionSuccess();
}

STACK_TEST::STOPPED_RUN STACK_TEST::Hold(const std::string& name) const {
  const fs::path log = Path("stack.stack/runs") / name / ("log." + name);
  if (!WaitUntil([&] {
        return fs::exists(log) && ReadFile(log).find("  - Run\n") != std::string::npos;
      })) {
    throw std::runtime_error(name + " does not compute");
  }
  std::istringstream line(Begun(name).back());
  std::string node;
  STOPPED_RUN held{};
  line >> node >> held.process >> held.starter;
  ::kill(held.process, SIGSTOP);
  return held;
}

void STACK_TEST::ExpectOutputs(const NAMES& some) const {
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

void STACK_TEST::WriteProgram() const {
  WriteFile(Path("program"),
            "#!/bin/sh\n"
            "if [ \"$1\" != --version ]; then\n"
            "  cd '" +
                Path("").string() +
                "' || exit\n"
                "  echo ${SLURMD_NODENAME:-here} $$ $PPID >>begun/$2\n"
                "  until [ -e open/$2 ] || [ -e open/all ]; do sleep 0.05; done\n"
                "  cd - >/dev/null || exit\n"
                "  export RESAMPLE_SIMD=plain\n"
                "fi\n"
                "exec '" RESAMPLE_PROGRAM "' \"$@\"\n");
  fs::permissions(Path("program"), fs::perms(0755));
}

void STACK_TEST::RunSingle(const std::string& name) const {
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
  settings.directory = Path("");
  EXPECT_EQ(PROCESS(settings).Wait().exit_status, 0) << name;
}
