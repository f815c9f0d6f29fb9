#include "control/processing_history.h"

#include <algorithm>
#include <array>
#include <climits>

#include "base/error_exception.h"
#include "logging/logging.h"

namespace {

constexpr const char* names_key = "software_names";
constexpr const char* versions_key = "software_versions";
constexpr const char* dates_key = "software_dates";
constexpr const char* start_times_key = "software_start_times";
constexpr const char* end_times_key = "software_end_times";
constexpr const char* execution_times_key = "software_execution_times";

STRING LocalTime(std::time_t time) {
  std::tm parts = {};
  std::array<char, 64> text{};
  if (::localtime_r(&time, &parts) == nullptr ||
      std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts) == 0) {
    return "unknown";
  }
  return text.data();
}

template <class T>
void EnlargeTo(ARRAY<T>& array, int count) {
  if (array.Resize(RANGE<int>(0, count)) != CONTAINER_OK) {
    Log() << LOGGING_LEVEL_T::ALARM << "no memory for the processing history";
    throw ERROR_NO_MEMORY();
  }
}

}  // namespace

void PROCESSING_HISTORY::Read(PARAMETER_POOL& pool) {
  pool.Read(Key(names_key).c_str(), names_);
  pool.Read(Key(versions_key).c_str(), versions_);
  pool.Read(Key(dates_key).c_str(), dates_);
  pool.Read(Key(start_times_key).c_str(), start_times_);
  pool.Read(Key(end_times_key).c_str(), end_times_);
  pool.Read(Key(execution_times_key).c_str(), execution_times_);
  CheckLengths();
}

void PROCESSING_HISTORY::Write(PARAMETER_POOL_READ_WRITE_CHANGE& pool) const {
  pool.Write(Key(names_key).c_str(), names_);
  pool.Write(Key(versions_key).c_str(), versions_);
  pool.Write(Key(dates_key).c_str(), dates_);
  pool.Write(Key(start_times_key).c_str(), start_times_);
  pool.Write(Key(end_times_key).c_str(), end_times_);
  pool.Write(Key(execution_times_key).c_str(), execution_times_);
}

void PROCESSING_HISTORY::AddRun(PARAMETER_POOL_READ_WRITE_CHANGE& pool, const PROCESSING_RUN& run) {
  if (pool.Exists(Key(names_key).c_str())) {
    Read(pool);
  } else {
    Clear();
  }
  const int index = IndexOf(run.name);
  if (index == names_.Size()) {
    Enlarge();
  }
  const std::time_t end_time = std::time(nullptr);
  const std::time_t seconds = std::clamp<std::time_t>(end_time - run.start_time, 0, INT_MAX);
  names_.Pointer(0)[index] = run.name.c_str();
  versions_.Pointer(0)[index] = run.version.c_str();
  dates_.Pointer(0)[index] = run.date.c_str();
  start_times_.Pointer(0)[index] = LocalTime(run.start_time);
  end_times_.Pointer(0)[index] = LocalTime(end_time);
  execution_times_.Pointer(0)[index] = static_cast<int>(seconds);
  Write(pool);
}

int PROCESSING_HISTORY::IndexOf(const std::string& program_name) const {
  const STRING* const names = names_.Pointer(0);
  const STRING* const end = names + names_.Size();
  const auto same_name = [&](const STRING& name) { return program_name == name.Text(); };
  return static_cast<int>(std::find_if(names, end, same_name) - names);
}

void PROCESSING_HISTORY::Clear() {
  names_.Free();
  versions_.Free();
  dates_.Free();
  start_times_.Free();
  end_times_.Free();
  execution_times_.Free();
}

void PROCESSING_HISTORY::Enlarge() {
  const int count = names_.Size() + 1;
  EnlargeTo(names_, count);
  EnlargeTo(versions_, count);
  EnlargeTo(dates_, count);
  EnlargeTo(start_times_, count);
  EnlargeTo(end_times_, count);
  EnlargeTo(execution_times_, count);
}

void PROCESSING_HISTORY::CheckLengths() const {
  const int count = names_.Size();
  for (const int other : {versions_.Size(), dates_.Size(), start_times_.Size(), end_times_.Size(),
                          execution_times_.Size()}) {
    if (other != count) {
      Log() << LOGGING_LEVEL_T::ALARM
            << "processing history: the vectors of the runs differ in length";
      throw ERROR_DATA();
    }
  }
}
