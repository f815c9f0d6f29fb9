#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The controller's configuration file: lines of a name and a value, separated by white space.
/// What follows the value is ignored.
///
/// Searches go on from where the last one stopped, so that a file whose names are asked for in
/// file order is read in one pass.
class CONFIGURATION_FILE {
 public:
  /// False when the file cannot be opened for reading; there is none then. Nor is there for a pipe,
  /// which can be read but once, or a device, which may never end: an ALARM line tells it. The null
  /// device and directories are files without lines.
  bool Open(const std::string& name);
  void Close() noexcept { file_.reset(); }
  bool IsOpen() const noexcept { return file_ != nullptr; }

  /// The value of the next line with this name, wrapping once from the end to the start of the
  /// file; empty for a line that holds only the name. A read error counts as end of file.
  std::optional<std::string> Find(const std::string& name);

  /// The value of the first line with this name in the file. The next search goes on as if this one
  /// had not been.
  std::optional<std::string> FindFromStart(const std::string& name);

  /// The first words of all lines that have one, likewise without an effect on the next search.
  std::vector<std::string> Names();

 private:
  struct CLOSER {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
  };

  /// Reads from the start of the file and returns to where it was. Does nothing in a pipe.
  void LookFromStart(const std::function<void()>& look);
  bool ReadLine(std::string& line);
  /// Searches up to the end of the file.
  std::optional<std::string> FindOnward(const std::string& name);

  std::unique_ptr<std::FILE, CLOSER> file_;
};
