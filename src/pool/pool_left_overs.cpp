#include "pool/pool_left_overs.h"

#include <sys/types.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <string>

#include "base/directory_of.h"
#include "logging/logging.h"
#include "system/temporary_file.h"

namespace {

using enum LOGGING_LEVEL_T;

enum class CONTENT { EMPTY, BEGINNING, OTHER };

/// What a file holds of a copy that is longer.
CONTENT ContentOf(int file, int copy) noexcept {
  std::array<char, 4096> bytes{};
  std::array<char, 4096> bytes_of_copy{};
  for (off_t offset = 0;;) {
    const ssize_t length = ::pread(file, bytes.data(), bytes.size(), offset);
    const ssize_t length_of_copy = ::pread(copy, bytes_of_copy.data(), bytes.size(), offset);
    if (length < 0 || length_of_copy < length ||
        std::memcmp(bytes.data(), bytes_of_copy.data(), static_cast<std::size_t>(length)) != 0) {
      return CONTENT::OTHER;
    }
    if (length == 0) {
      const CONTENT beginning = offset == 0 ? CONTENT::EMPTY : CONTENT::BEGINNING;
      return length_of_copy > 0 ? beginning : CONTENT::OTHER;
    }
    offset += length;
  }
}

}  // namespace

void TellCopiesOfCutPool(const POOL_FILE& pool) noexcept {
  ForEachLeftOver(
      DirectoryOf(pool.Name()), POOL_FILE::temporary_prefix,
      [&pool](const std::string& copy, int descriptor) {
        const CONTENT content = ContentOf(pool.Descriptor(), descriptor);
        if (content == CONTENT::EMPTY) {
          Log() << WARNING << "parameter file " << pool.Name()
                << " is empty; an update that was killed may have left its content in: " << copy;
        } else if (content == CONTENT::BEGINNING) {
          Log() << WARNING << "parameter file " << pool.Name()
                << " was cut by an update that was killed; its whole content is in: " << copy;
        }
      });
}

void TellLeftOverFiles(const POOL_FILE& pool) noexcept {
  ForEachLeftOver(
      DirectoryOf(pool.Name()), POOL_FILE::temporary_prefix, [](const std::string& path, int) {
        Log() << WARNING << "an update of a parameter file that did not end has left: " << path;
      });
}
