#pragma once

#include <filesystem>
#include <string>

/// Where everything about one slave's run lies.
class SLAVE_FOLDER {
 public:
  /// `stack` is the directory of the stack.
  SLAVE_FOLDER(const std::filesystem::path& stack, const std::string& name)
      : name_(name), path_(stack / "runs" / name), status_(stack / "status") {}
  /// The run whose folder this is.
  explicit SLAVE_FOLDER(const std::filesystem::path& path)
      : SLAVE_FOLDER(path.parent_path().parent_path(), path.filename().string()) {}

  const std::string& Name() const noexcept { return name_; }
  const std::filesystem::path& Path() const noexcept { return path_; }
  const std::filesystem::path& StatusDirectory() const noexcept { return status_; }

  std::filesystem::path PlanFile() const { return path_ / "plan.json"; }
  std::filesystem::path RecordFile() const { return path_ / "run.json"; }
  std::filesystem::path LockFile() const { return path_ / "lock"; }
  std::filesystem::path ConfigurationFile() const { return path_ / ("pcf." + name_); }
  /// Links to log and screen of the last attempt.
  std::filesystem::path LogFile() const { return path_ / ("log." + name_); }
  std::filesystem::path ScreenFile() const { return path_ / "screen"; }
  std::filesystem::path OkFile() const { return status_ / ("OK." + name_); }
  std::filesystem::path ErrorFile() const { return status_ / ("ERROR." + name_); }
  std::filesystem::path StopFile() const { return status_ / ("STOP." + name_); }

 private:
  std::string name_;
  std::filesystem::path path_;
  std::filesystem::path status_;
};

/// The directory of a stack: one folder a run, one for all status files, and what the stack as a
/// whole keeps.
class STACK_FOLDER {
 public:
  explicit STACK_FOLDER(std::filesystem::path path) : path_(std::move(path)) {}

  const std::filesystem::path& Path() const noexcept { return path_; }
  SLAVE_FOLDER Run(const std::string& name) const { return {path_, name}; }
  std::filesystem::path StatusDirectory() const { return path_ / "status"; }
  /// Job scripts, the slaves of each job array, and what its tasks print.
  std::filesystem::path SlurmDirectory() const { return path_ / "slurm"; }
  std::filesystem::path LockFile() const { return path_ / "lock"; }
  std::filesystem::path StartFile() const { return path_ / "start.json"; }

  /// One word by which queues and records know the stack, whatever path leads to it; a copy of it
  /// is another one. Empty for a stack that was never started.
  std::string Identity() const;
  /// The same, and gives it to a stack that has none. Throws std::system_error.
  std::string MakeIdentity() const;

  /// Whether the path, absolute and without links, is the stack's own, so that no output may have
  /// it.
  bool Owns(const std::filesystem::path& file) const;

 private:
  std::filesystem::path IdentityFile() const { return path_ / "identity"; }

  std::filesystem::path path_;
};
