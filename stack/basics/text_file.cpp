#include "basics/text_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

#include "system/file_descriptor.h"

namespace {

/// A file of a unique name beside another one, removed unless it takes its place.
class NEW_TEXT_FILE {
 public:
  explicit NEW_TEXT_FILE(const std::filesystem::path& target)
      : target_(target),
        name_(target.string() + ".XXXXXX"),
        file_(::mkostemp(name_.data(), O_CLOEXEC)) {
    ThrowUnless(file_.IsOpen());
  }
  NEW_TEXT_FILE(const NEW_TEXT_FILE&) = delete;
  NEW_TEXT_FILE& operator=(const NEW_TEXT_FILE&) = delete;
  ~NEW_TEXT_FILE() {
    if (!took_place_) {
      ::unlink(name_.c_str());
    }
  }

  void Write(std::string_view text) const { ThrowUnless(file_.Write(text.data(), text.size())); }

  /// With the permissions of other new files, and on the disk before the name leads to it.
  void TakePlace() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    constexpr mode_t all = 0666;
    ThrowUnless(::fchmod(file_.Get(), all & ~mask) == 0);
    ThrowUnless(file_.Sync());
    ThrowUnless(::rename(name_.c_str(), target_.c_str()) == 0);
    took_place_ = true;
  }

 private:
  void ThrowUnless(bool worked) const {
    if (!worked) {
      throw std::system_error(errno, std::generic_category(), "can not write " + target_.string());
    }
  }

  std::filesystem::path target_;
  std::string name_;
  FILE_DESCRIPTOR file_;
  bool took_place_ = false;
};

}  // namespace

std::optional<std::string> ReadTextFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    return std::nullopt;
  }
  return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string ReadEndOfFile(const std::filesystem::path& path, std::size_t length) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  if (!file) {
    return "";
  }
  const std::streamoff size = file.tellg();
  const auto wanted = static_cast<std::streamoff>(length);
  file.seekg(size > wanted ? size - wanted : 0);
  return {std::istreambuf_iterator<char>(file), {}};
}

void ReplaceTextFile(const std::filesystem::path& path, std::string_view text) {
  NEW_TEXT_FILE file(path);
  file.Write(text);
  file.TakePlace();
}
