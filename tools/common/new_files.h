#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// Files in the making. They lie in a hidden folder within the one that they are made for, and get
/// there by renaming once all of them are whole: what stands under a final name is never half-made.
/// What is not finished is removed, by the destructor or by `RemoveNewFiles`; a process that is
/// killed leaves the hidden folder `.slctool-XXXXXX`.
class NEW_FILES {
 public:
  /// Throws std::system_error when nothing can be made in `directory`; empty is the current one.
  explicit NEW_FILES(const std::filesystem::path& directory);
  NEW_FILES(const NEW_FILES&) = delete;
  NEW_FILES& operator=(const NEW_FILES&) = delete;
  ~NEW_FILES();

  /// The hidden folder.
  const std::filesystem::path& Directory() const noexcept { return hidden_; }
  std::string PathOf(const std::filesystem::path& name) const { return hidden_ / name; }

  /// Renames all files of the hidden folder to the same names in the final one, where they replace
  /// older ones. Throws std::system_error.
  void Finish();

 private:
  std::filesystem::path directory_;
  std::filesystem::path hidden_;
};

/// One file in the making, which replaces any older one of its name. A symbolic link stays, and the
/// file that it leads to is replaced.
class NEW_FILE {
 public:
  /// Throws std::system_error where no file of this name can be made, also when the name is that of
  /// a folder or device.
  explicit NEW_FILE(const std::string& path);

  /// Where the file is to be written.
  std::string Path() const { return files_.PathOf(final_path_.filename()); }
  /// After that it has its name. Throws std::system_error.
  void Finish() { files_.Finish(); }

 private:
  std::filesystem::path final_path_;
  NEW_FILES files_;
};

/// Makes a file that holds these bytes. Throws std::system_error.
void WriteWholeFile(const std::string& path, std::string_view bytes);

/// Removes the files that are in the making, in all threads, and lets no other begin or be finished
/// any more: for a process that is about to end.
void RemoveNewFiles() noexcept;
