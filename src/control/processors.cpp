#include "control/processors.h"

#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "logging/logging.h"

namespace {

int OnlineProcessors() {
  return static_cast<int>(std::clamp<long>(::sysconf(_SC_NPROCESSORS_ONLN), 1, INT_MAX));
}

}  // namespace

int NumberOfProcessors() {
  const char* parallel = std::getenv("PARALLEL");
  if (parallel == nullptr) {
    return OnlineProcessors();
  }
  const long wanted = std::strtol(parallel, nullptr, 10);
  if (wanted >= 1) {
    return static_cast<int>(std::min<long>(wanted, INT_MAX));
  }
  const int online = OnlineProcessors();
  Log() << LOGGING_LEVEL_T::WARNING << "PARALLEL is not a number of at least 1: \"" << parallel
        << "\", using the " << online << " online processors";
  return online;
}
