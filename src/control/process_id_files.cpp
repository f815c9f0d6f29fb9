#include "control/process_id_files.h"

#include <unistd.h>

#include "control/number_file.h"
#include "logging/logging.h"

namespace {

void WriteProcessIdFile(const char* name, pid_t id) {
  if (!WriteNumberFile(name, id)) {
    Log() << LOGGING_LEVEL_T::WARNING << "Error opening file " << name;
  }
}

}  // namespace

void WriteProcessIdFiles() {
  WriteProcessIdFile(current_process_file, ::getpid());
  WriteProcessIdFile(parent_process_file, ::getppid());
}
