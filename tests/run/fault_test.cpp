#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include "signalled_run.h"

namespace {

TEST(Fault, OfAnInputThatShrinksDuringTheRunIsReported) {
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

TEST(Fault, OfAnOutputThatMayNotGrowIsReported) {
  RUN_FOLDER folder(OrdinaryScene());
  PROCESS_SETTINGS settings = folder.Settings();
  settings.prepare = [] {
    const rlimit limit = {16000, 16000};  // less than the output, more than the log
    return ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
  };
  ExpectReported(folder, PROCESS(settings).Wait(), SIGXFSZ);
}

bool WriteText(const char* path, const std::string& text) {
  const int file = ::open(path, O_WRONLY);
  const bool written = ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  ::close(file);
  return written;
}

/// Gives the process a small disk of its own at "disk"; needs no privileges where the system
/// lets everybody make user namespaces. The process stays the user that it is.
bool MountSmallDisk() {
  const std::string user = std::to_string(::getuid());
  const std::string group = std::to_string(::getgid());
  return ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && WriteText("/proc/self/setgroups", "deny") &&
         WriteText("/proc/self/uid_map", user + " " + user + " 1") &&
         WriteText("/proc/self/gid_map", group + " " + group + " 1") &&
         ::mount("none", "disk", "tmpfs", 0, "size=64k") == 0;
}

TEST(Fault, OfADiskThatIsFullUnderAnOutputIsReported) {
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
    if (end.exit_status == PROCESS::not_started) {
      GTEST_SKIP() << "no disk of its own can be mounted here without privileges";
    }
    ExpectReported(folder, end, SIGBUS);
  }
}

}  // namespace
