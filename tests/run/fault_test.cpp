#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "signalled_run.h"

namespace {

bool WriteText(const char* path, const std::string& text) {
  const int file = ::open(path, O_WRONLY);
  const bool written = ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  ::close(file);
  return written;
}

/// Lets the process mount disks of its own; needs no privileges where the system lets everybody
/// make user namespaces. The process stays the user that it is.
bool MayMount() {
  const std::string user = std::to_string(::getuid());
  const std::string group = std::to_string(::getgid());
  return ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && WriteText("/proc/self/setgroups", "deny") &&
         WriteText("/proc/self/uid_map", user + " " + user + " 1") &&
         WriteText("/proc/self/gid_map", group + " " + group + " 1");
}

bool MountDisk(const char* directory, const char* options, unsigned long flags = 0) {
  return ::mount("none", directory, "tmpfs", flags, options) == 0;
}

bool MountSmallDisk() {
  return MayMount() && MountDisk("disk", "size=64k");
}

/// Takes what room is left on a disk.
bool Fill(const char* path) {
  const int file = ::open(path, O_WRONLY | O_CREAT, 0666);
  const std::array<char, 4096> page{};
  while (::write(file, page.data(), page.size()) > 0) {
  }
  return ::close(file) == 0;
}

/// A scene in its folder with what must come out of it.
class FAULT : public testing::Test {
 protected:
  FAULT() : folder_(OrdinaryScene()) {
    ExpectSuccess(folder_, folder_.Run());
    output_ = folder_.Content("out.ras");
    output_mask_ = folder_.Content("out_mask.ras");
    folder_.parameters["log_pp"] = "log.pool";  // the INSAR pool then stays as it is
    folder_.Write("log.pool", "");
    for (const char* input :
         {"insar.pool", "slave.pool", "slave.ras", "mask.ras", "rg.map", "az.map"}) {
      inputs_[input] = folder_.Content(input);
    }
  }

  PROCESS_END RunAfter(const std::function<bool()>& prepare) {
    ClearResults();
    PROCESS_SETTINGS settings = folder_.Settings();
    settings.prepare = prepare;
    return PROCESS(settings).Wait();
  }

  void ClearResults() const {
    for (const char* file : {"OK.run", "ERROR.run", "log.run", "out.ras", "out_mask.ras"}) {
      std::filesystem::remove(folder_.Path(file));
    }
  }

  void ExpectRightResult(const PROCESS_END& end) const {
    ExpectSuccess(folder_, end);
    EXPECT_TRUE(folder_.Content("out.ras") == output_);
    EXPECT_TRUE(folder_.Content("out_mask.ras") == output_mask_);
    ExpectInputsUntouched();
  }

  void ExpectInputsUntouched() const {
    for (const auto& [name, content] : inputs_) {
      EXPECT_TRUE(folder_.Content(name) == content) << name;
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Directory())) {
      EXPECT_FALSE(entry.path().filename().string().starts_with("pool_")) << entry.path();
      EXPECT_FALSE(entry.path().filename().string().starts_with("log.XX")) << entry.path();
    }
  }

  RUN_FOLDER folder_;
  std::map<std::string, std::string> inputs_;
  std::string output_;
  std::string output_mask_;
};

/// On disks of its own.
class DISK_FAULT : public FAULT {
 protected:
  void SetUp() override {
    std::filesystem::create_directory(folder_.Path("disk"));
    PROCESS_SETTINGS settings = folder_.Settings();
    settings.prepare = MountSmallDisk;
    if (PROCESS(settings).Wait().exit_status == PROCESS::not_started) {
      GTEST_SKIP() << "no disk of its own can be mounted here without privileges";
    }
    ClearResults();
  }
};

/// With the fault injector.
class INJECTED_FAULT : public FAULT {
 protected:
  void SetUp() override {
    if (repetitions == 1) {
      GTEST_SKIP() << "the runtime of a sanitizer must be loaded before any other library";
    }
    folder_.environment["LD_PRELOAD"] = FAULT_INJECTOR;
  }
};

TEST_F(FAULT, OfAnInputThatShrinksDuringTheRunIsReported) {
  for (const char* workers : {"1", "3"}) {
    for (const char* input : {"slave.ras", "mask.ras", "rg.map"}) {
      SCOPED_TRACE(input);
      SCENE scene = OrdinaryScene();
      scene.slave = GRID<RAW_PIXEL>(72, 6000);
      scene.mask = GRID<std::uint8_t>(72, 6000, 1);
      auto& matrix = std::get<MATRIX_MAPPING_DATA>(scene.mapping);
      matrix.range = matrix.azimuth = GRID<float>(300, 300);
      RUN_FOLDER folder(scene);
      folder.environment["PARALLEL"] = workers;
      HELD_RUN run(folder);
      std::filesystem::resize_file(folder.Path(input), 0);
      ExpectReported(folder, run.Release(), SIGBUS);
    }
  }
}

TEST_F(FAULT, OfAnOutputThatMayNotGrowIsReported) {
  RUN_FOLDER folder(OrdinaryScene());
  PROCESS_SETTINGS settings = folder.Settings();
  settings.prepare = [] {
    const rlimit limit = {16000, 16000};  // less than the output, more than the log
    return ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
  };
  ExpectReported(folder, PROCESS(settings).Wait(), SIGXFSZ);
}

TEST_F(DISK_FAULT, OfADiskThatIsFullUnderAnOutputIsReported) {
  RUN_FOLDER folder(OrdinaryScene());
  folder.parameters["n_samples"] = "70";
  folder.parameters["n_lines"] = "2000";
  folder.parameters["SlaveOut"] = "disk/out.ras";
  folder.parameters["KERNEL_TYPE"] = "-";
  folder.parameters["KERNEL_LENGTH"] = "-5000";  // writes every pixel
  std::filesystem::create_directory(folder.Path("disk"));
  for (const char* workers : {"1", "4"}) {
    folder.environment["PARALLEL"] = workers;
    PROCESS_SETTINGS settings = folder.Settings();
    settings.prepare = MountSmallDisk;
    const PROCESS_END end = PROCESS(settings).Wait();
    ExpectReported(folder, end, SIGBUS);
    const std::vector<std::string> warnings = folder.LogLines("WARN  : resample : MEM_MGR: ");
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_TRUE(
        warnings[0].starts_with("disk/out.ras may need 560000 bytes, its disk has room for "))
        << warnings[0];
  }
}

TEST_F(DISK_FAULT, OfADiskThatIsFullOrReadOnlyForAnOutputIsReported) {
  folder_.parameters["SlaveOut"] = "disk/out.ras";
  const PROCESS_END full = RunAfter([] { return MountSmallDisk() && Fill("disk/file"); });
  ExpectFailure(folder_, full);
  EXPECT_EQ(folder_.Alarms(),
            "MEM_MGR: can not write: disk/out.ras: No space left on device\n"
            "can not write to file 32 [bytes]\ncan not write into file\n" +
                supervisor_line + "\n");
  const PROCESS_END read_only =
      RunAfter([] { return MayMount() && MountDisk("disk", "", MS_RDONLY); });
  ExpectFailure(folder_, read_only);
  EXPECT_EQ(folder_.Alarms(),
            "MEM_MGR: can not create: disk/out.ras: Read-only file system\n"
            "open unknown system error code\ncan not create file\n" +
                supervisor_line + "\n");
  ExpectInputsUntouched();
}

TEST_F(DISK_FAULT, OfADiskThatIsFullUnderAPoolIsReported) {
  folder_.parameters["log_pp"] = "disk/log.pool";
  const PROCESS_END end = RunAfter([] {
    return MountSmallDisk() && Fill("disk/log.pool") && ::truncate("disk/log.pool", 60000) == 0 &&
           Fill("disk/file");
  });
  ExpectFailure(folder_, end);
  EXPECT_TRUE(folder_.Alarms().starts_with(
      "can not update parameter pool: disk/log.pool: No space left on device\n"))
      << folder_.Alarms();
  EXPECT_EQ(folder_.CountLogLines(alarm_begin + "the original parameter pool is NOT CHANGED !!"),
            1);
  ExpectInputsUntouched();
}

TEST_F(DISK_FAULT, OfADiskWithRoomForOneMarkerFileIsNone) {
  folder_.arguments.insert(folder_.arguments.end(), {"-status", "disk"});
  const PROCESS_END end = RunAfter([] { return MayMount() && MountDisk("disk", "size=4k"); });
  EXPECT_EQ(end.exit_status, 0);
  EXPECT_EQ(folder_.Content("log.run").find("Can not "), std::string::npos);
}

TEST_F(DISK_FAULT, OfAllPlacesForTheTemporaryLogIsNone) {
  // The program may lie in a place that is hidden here, its working directory may not.
  std::filesystem::copy_file(RESAMPLE_PROGRAM, folder_.Path("program"));
  PROCESS_SETTINGS settings = folder_.Settings();
  settings.program = "./program";
  settings.prepare = [] {
    return MayMount() && MountDisk("/var/tmp", "", MS_RDONLY) && MountDisk("/tmp", "nr_inodes=1");
  };
  ExpectRightResult(PROCESS(settings).Wait());
  EXPECT_EQ(folder_.Alarms(), "");
}

TEST_F(FAULT, OfAScreenThatTakesNothingIsNone) {
  PROCESS_SETTINGS settings = folder_.Settings();
  settings.screen = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
  ClearResults();
  ExpectRightResult(PROCESS(settings).Wait());
  ::close(settings.screen);
}

TEST_F(FAULT, OfALogThatTakesNothingIsToldAndTheTemporaryLogIsKept) {
  folder_.arguments.insert(folder_.arguments.end(), {"-lfn", "/dev/full"});
  const PROCESS_END end = folder_.Run();
  ExpectRightResult(end);
  const std::string kept_in = alarm_begin + "the log is kept in: ";
  const std::size_t start = end.screen.find(kept_in);
  ASSERT_NE(start, std::string::npos) << end.screen;
  EXPECT_NE(end.screen.find(alarm_begin + "can not write logging file: /dev/full"),
            std::string::npos);
  const std::size_t name = start + kept_in.size();
  const std::string kept = end.screen.substr(name, end.screen.find('\033', name) - name);
  EXPECT_NE(ReadFile(kept).find(info_begin + "execution time:"), std::string::npos);
  std::filesystem::remove(kept);
}

TEST_F(FAULT, OfAnOutputDirectoryIsReported) {
  std::filesystem::create_directory(folder_.Path("locked"));
  ::chmod(folder_.Path("locked").c_str(), 0555);
  folder_.Write("file", "");
  struct {
    const char* output;
    const char* reason;
    const char* name;
  } const cases[] = {{"locked/out.ras", "Permission denied", "EACCES"},
                     {"file/out.ras", "Not a directory", "ENOTDIR"}};
  for (const auto& [output, reason, name] : cases) {
    folder_.parameters["SlaveOut"] = output;
    const PROCESS_END end = RunAfter([] {
      ::prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE);  // else permissions do not concern root
      return true;
    });
    ExpectFailure(folder_, end);
    EXPECT_EQ(folder_.Alarms(), std::string("MEM_MGR: can not create: ") + output + ": " + reason +
                                    "\n" + name + ": see: man page of open\ncan not create file\n" +
                                    supervisor_line + "\n");
    ExpectInputsUntouched();
  }
}

TEST_F(INJECTED_FAULT, OfAThreadThatCanNotBeCreatedIsReported) {
  folder_.environment.insert(
      {{"FAULT_CALL", "pthread_create"}, {"FAULT_ERROR", std::to_string(EAGAIN)}});
  folder_.environment["PARALLEL"] = "4";
  for (const char* thread : {"1", "2", "4"}) {  // the first one writes back
    folder_.environment["FAULT_NUMBER"] = thread;
    ClearResults();
    ExpectFailure(folder_, folder_.Run());
    EXPECT_EQ(folder_.Alarms(),
              "can not create thread due to error number: 11\n"
              "reason: Resource temporarily unavailable\ncan not create thread\n" +
                  supervisor_line + "\n");
    ExpectInputsUntouched();
  }
}

TEST_F(INJECTED_FAULT, OfAClockThatLeapsBackOrFarAheadIsNone) {
  folder_.environment["FAULT_CLOCK"] = "100000";
  ClearResults();
  ExpectRightResult(folder_.Run());
  EXPECT_EQ(folder_.CountLogLines(info_begin + "execution time: less than 1 second"), 1);
  const std::string pool = folder_.Content("log.pool");
  const std::string history = pool.substr(pool.find("software_execution_times"));
  EXPECT_NE(history.find("{\n    0\n  }"), std::string::npos) << history;

  folder_.environment["FAULT_CLOCK"] = "-90000000000000000";  // beyond what a year can be
  folder_.Write("log.pool", "");
  ClearResults();
  ExpectRightResult(folder_.Run());
  EXPECT_EQ(folder_.CountLogLines(info_begin + "end time: unknown"), 1);
  EXPECT_NE(folder_.Content("log.pool").find("\"unknown\""), std::string::npos);
}

TEST_F(FAULT, OfARunThatIsStoppedNowAndThenIsNone) {
  folder_.environment["PARALLEL"] = "3";
  ClearResults();
  PROCESS process(folder_.Settings());
  for (int stops = 0; stops < 20 && !process.HasEnded(); ++stops) {
    process.Signal(SIGSTOP);
    Pause(500);
    process.Signal(SIGCONT);
    Pause(500);
  }
  ExpectRightResult(process.Wait());
}

TEST_F(FAULT, OfInputsThatAreRemovedDuringTheRunIsNoneButOfAPoolIsReported) {
  folder_.parameters["log_pp"] = "insar.pool";
  HELD_RUN run(folder_);
  for (const char* input : {"slave.ras", "mask.ras", "rg.map", "az.map", "slave.pool"}) {
    std::filesystem::remove(folder_.Path(input));
  }
  ExpectSuccess(folder_, run.Release());
  EXPECT_TRUE(folder_.Content("out.ras") == output_);

  WriteSceneFiles(OrdinaryScene(), folder_.Directory());
  HELD_RUN run_without_pool(folder_);
  std::filesystem::remove(folder_.Path("insar.pool"));
  ExpectFailure(folder_, run_without_pool.Release());
  EXPECT_EQ(folder_.Alarms(),
            "no permission to change pool file: insar.pool: No such file or directory\n"
            "pool error - parameter pool update(): insufficient file permission\n" +
                supervisor_line + "\n");
}

TEST_F(FAULT, OfAScreenWhoseReaderGoesEndsTheRunAsFailed) {
  HELD_RUN run(folder_);
  run.CloseScreen();
  EXPECT_EQ(run.process->Wait().signal, SIGPIPE);
  EXPECT_EQ(folder_.Content("ERROR.run"), "1");
  EXPECT_FALSE(folder_.Exists("OK.run"));
}

TEST_F(FAULT, OfClosedStandardDescriptorsIsNone) {
  for (int closed = 1; closed < 8; ++closed) {
    SCOPED_TRACE(closed);
    folder_.Write("log.pool", "");
    ExpectRightResult(RunAfter([closed] {
      for (int descriptor = 0; descriptor < 3; ++descriptor) {
        if ((closed >> descriptor & 1) != 0) {
          ::close(descriptor);
        }
      }
      return true;
    }));
    EXPECT_EQ(folder_.Content("log.pool").find("INFO"), std::string::npos);
  }
}

TEST_F(FAULT, OfAStatusDirectoryThatIsMissingIsAWarning) {
  folder_.arguments.insert(folder_.arguments.end(), {"-status", "nowhere"});
  ClearResults();
  EXPECT_EQ(folder_.Run().exit_status, 0);
  EXPECT_EQ(folder_.LogLines("WARN  : resample : "),
            (std::vector<std::string>{"Can not create file nowhere/ERROR.run!",
                                      "Can not create file nowhere/OK.run!"}));
  EXPECT_TRUE(folder_.Content("out.ras") == output_);
}

TEST_F(FAULT, OfAFifoInPlaceOfAFileNeverHangs) {
  const auto run_with_fifo = [&](const std::string& name) {
    ClearResults();
    const bool existed = std::filesystem::remove(folder_.Path(name));
    EXPECT_EQ(::mkfifo(folder_.Path(name).c_str(), 0666), 0);
    const PROCESS_END end = folder_.Run();
    std::filesystem::remove(folder_.Path(name));
    if (existed && inputs_.count(name) > 0) {
      folder_.Write(name, inputs_[name]);
    }
    return end;
  };
  for (const auto& [name, content] : inputs_) {
    SCOPED_TRACE(name);
    ExpectFailure(folder_, run_with_fifo(name));
  }
  for (const char* name : {"log.run", "ERROR.run", "OK.run", "current_process.pid"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(run_with_fifo(name).exit_status, 0);
    EXPECT_TRUE(folder_.Content("out.ras") == output_);
  }
  ExpectInputsUntouched();
}

}  // namespace
