#include "control/processing_history.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "base/error_exception.h"
#include "logging/logging.h"

namespace {

constexpr std::array text_keys = {"software_names", "software_versions", "software_dates",
                                  "software_start_times", "software_end_times"};
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
  for (std::size_t i = 0; i < text_vectors; ++i) {
    pool.Read(Key(text_keys[i]), texts_[i]);
  }
  pool.Read(Key(execution_times_key), execution_times_);
  CheckLengths();
}

void PROCESSING_HISTORY::Write(PARAMETER_POOL_READ_WRITE_CHANGE& pool) const {
  PARAMETER_POOL_LIST entries;
  for (std::size_t i = 0; i < text_vectors; ++i) {
    entries.Add({Key(text_keys[i]), texts_[i], {}});
  }
  entries.Add({Key(execution_times_key), execution_times_, {}});
  pool.WriteAll(std::move(entries));
}

void PROCESSING_HISTORY::AddRun(PARAMETER_POOL_READ_WRITE_CHANGE& pool, const PROCESSING_RUN& run) {
  for (ARRAY<STRING>& vector : texts_) {
    vector.Free();
  }
  execution_times_.Free();
  if (pool.Exists(Key(text_keys[0]))) {
    Read(pool);
  }
  const int index = IndexOf(run.name);
  if (index == execution_times_.Size()) {
    Enlarge();
  }
  const std::time_t end_time = std::time(nullptr);
  const std::time_t seconds = std::clamp<std::time_t>(end_time - run.start_time, 0, INT_MAX);
  const std::array<STRING, text_vectors> texts = {run.name.c_str(), run.version.c_str(),
                                                  run.date.c_str(), LocalTime(run.start_time),
                                                  LocalTime(end_time)};
  for (std::size_t i = 0; i < text_vectors; ++i) {
    texts_[i].Pointer(0)[index] = texts[i];
  }
  execution_times_.Pointer(0)[index] = static_cast<int>(seconds);
  Write(pool);
}

int PROCESSING_HISTORY::IndexOf(const std::string& program_name) const {
  const STRING* const names = texts_[0].Pointer(0);
  const STRING* const end = names + texts_[0].Size();
  const auto same_name = [&](const STRING& name) { return program_name == name.Text(); };
  return static_cast<int>(std::find_if(names, end, same_name) - names);
}

void PROCESSING_HISTORY::Enlarge() {
  const int count = execution_times_.Size() + 1;
  for (ARRAY<STRING>& texts : texts_) {
    EnlargeTo(texts, count);
  }
  EnlargeTo(execution_times_, count);
}

void PROCESSING_HISTORY::CheckLengths() const {
  for (const ARRAY<STRING>& texts : texts_) {
    if (texts.Size() != execution_times_.Size()) {
      Log() << LOGGING_LEVEL_T::ALARM
            << "processing history: the vectors of the runs differ in length";
      throw ERROR_DATA();
    }
  }
}
