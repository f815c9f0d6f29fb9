// Input: the text of a pool, a line "====", and the text of a second pool, whose entries are
// written into the first one with the comment lines that stand in front of them.
//
// A value that is not refused must read back the same, unless a warning tells that a line of
// another entry's block is found first. A second update must change nothing but blank lines, which
// follow an entry as one; but an entry that has replaced a line of a block may be another block's
// the next time. Where the pool had none of the entries it must only grow.

#include <vector>

#include "fuzz/pool_target.h"
#include "logging/logging.h"
#include "pool/parameter_pool_read_write_change.h"
#include "support/temporary_directory.h"

namespace {

/// The comment lines of a pool in front of the first line of this key.
LIST<STRING> CommentsOf(std::string_view text, const std::string& key) {
  LIST<STRING> comments;
  while (!text.empty() && !text.starts_with(key)) {
    const std::string line(TakeUpTo(text, "\n"));
    if (line.starts_with('#')) {
      comments.Append(line.c_str() + 1);
    }
  }
  return comments;
}

/// Hands the entries of one pool over to another.
class ENTRY_WRITER {
 public:
  explicit ENTRY_WRITER(std::string_view text) : text_(text) { file_.Set(text); }

  /// One update. Returns the keys that were written.
  std::vector<STRING> WriteInto(const char* path) const {
    std::vector<STRING> written;
    PARAMETER_POOL source(file_.Path());
    PARAMETER_POOL_READ_WRITE_CHANGE target(path);
    constexpr std::size_t key_limit = 6;
    for (const std::string& name : KeysOf(text_, key_limit)) {
      const STRING key(name.c_str());
      VisitEntry(source, key, [&](const auto& value) {
        const bool is_taken = Succeeds([&] { target.Write(key, value, CommentsOf(text_, name)); });
        if (is_taken) {
          Require(Succeeds([&] { target.Change(key, value, CommentsOf(text_, name)); }),
                  "a registered entry can not be changed");
          written.push_back(key);
        }
      });
    }
    Require(Succeeds([&] { target.Update(); }), "update failed");
    return written;
  }

  void CheckReadBack(const char* path, const std::vector<STRING>& keys) const {
    PARAMETER_POOL source(file_.Path());
    PARAMETER_POOL target(path);
    for (const STRING& key : keys) {
      VisitEntry(source, key, [&]<class T>(const T& value) {
        T again{};
        const bool is_read = Succeeds([&] { target.Read(key, again); });
        Require(is_read && AreEqualInPools(value, again), "a written entry does not read back");
      });
    }
  }

 private:
  std::string_view text_;
  FUZZ_FILE file_;
};

std::string WithoutBlankLines(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::string_view line = TakeUpTo(text, "\n");
    if (line.find_first_not_of(" \t\r\v\f") != std::string_view::npos) {
      result.append(line).append("\n");
    }
  }
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const TEMPORARY_DIRECTORY directory;
  static const std::string path = directory.File("pool");
  SilenceLog();
  std::string_view second = TextOf(data, size);
  const std::string_view first = TakeUpTo(second, "====\n");
  WriteFile(path, first);
  const ENTRY_WRITER writer(second);
  const std::set<std::string> old_keys = KeysOf(first, first.size());

  bool is_hidden = false;
  Log().SetReceiver([&is_hidden](LOGGING_LEVEL_T, std::string_view line) {
    is_hidden = is_hidden || line.find("<< is still found first in line") != std::string_view::npos;
  });
  const std::vector<STRING> written = writer.WriteInto(path.c_str());
  Log().SetReceiver({});
  const std::string updated = ReadFile(path);
  if (!is_hidden) {
    writer.CheckReadBack(path.c_str(), written);
  }
  bool any_existed = false;
  for (const STRING& key : written) {
    any_existed = any_existed || old_keys.count(key.Text()) > 0;
  }
  Require(any_existed || updated.starts_with(first), "an update changed what it did not write");

  writer.WriteInto(path.c_str());
  const bool may_be_in_block = any_existed && first.find('{') != std::string_view::npos;
  Require(may_be_in_block || WithoutBlankLines(ReadFile(path)) == WithoutBlankLines(updated),
          "the same update once more changed the file");
  return 0;
}
