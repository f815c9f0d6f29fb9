#include "run/slave_record.h"

#include <array>
#include <chrono>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "description/slave_files.h"
#include "run/fingerprint.h"
#include "run/text_file.h"

namespace {

using JSON = nlohmann::json;

constexpr std::array state_names =
    std::to_array<std::pair<RUN_STATE, const char*>>({{RUN_STATE::WAITING, "waiting"},
                                                      {RUN_STATE::RUNNING, "running"},
                                                      {RUN_STATE::SUCCEEDED, "succeeded"},
                                                      {RUN_STATE::FAILED, "failed"},
                                                      {RUN_STATE::DIED, "died"},
                                                      {RUN_STATE::CANCELLED, "cancelled"},
                                                      {RUN_STATE::STOPPED, "stopped"}});

RUN_STATE StateNamed(const std::string& name) {
  for (const auto& [state, its_name] : state_names) {
    if (name == its_name) {
      return state;
    }
  }
  return RUN_STATE::WAITING;
}

/// Throws JSON::exception.
SLAVE_RECORD RecordOf(const JSON& json) {
  SLAVE_RECORD record;
  record.state = StateNamed(json.value("state", ""));
  record.reason = json.value("reason", "");
  record.fingerprint = json.value("fingerprint", JSON()).dump();
  for (const JSON& attempt : json.value("attempts", JSON::array())) {
    record.attempts.push_back({.begun = attempt.value("begun", 0.0),
                               .ended = attempt.value("ended", 0.0),
                               .host = attempt.value("host", ""),
                               .how = attempt.value("how", "")});
  }
  return record;
}

}  // namespace

std::string NameOf(RUN_STATE state) {
  for (const auto& [each, name] : state_names) {
    if (each == state) {
      return name;
    }
  }
  return "";
}

SLAVE_RECORD ReadSlaveRecord(const SLAVE_FOLDER& folder) {
  try {
    return RecordOf(JSON::parse(ReadTextFile(folder.RecordFile()).value_or("{}")));
  } catch (const JSON::exception&) {
    return {};
  }
}

double SecondsSince1970() {
  return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

JSON AttemptsJson(const std::vector<RUN_ATTEMPT>& attempts) {
  JSON json = JSON::array();
  for (const RUN_ATTEMPT& attempt : attempts) {
    json.push_back({{"begun", attempt.begun},
                    {"ended", attempt.ended},
                    {"host", attempt.host},
                    {"how", attempt.how}});
  }
  return json;
}

void WriteSlaveRecord(const SLAVE_FOLDER& folder, const SLAVE_RECORD& record) {
  const JSON json = {{"state", NameOf(record.state)},
                     {"reason", record.reason},
                     {"fingerprint", JSON::parse(record.fingerprint)},
                     {"attempts", AttemptsJson(record.attempts)}};
  constexpr int indent = 2;
  // What a message quotes may hold bytes of any encoding.
  ReplaceTextFile(folder.RecordFile(),
                  json.dump(indent, ' ', false, JSON::error_handler_t::replace) + "\n");
}

bool IsFinished(const SLAVE_FOLDER& folder, const SLAVE_PLAN& plan) {
  if (!std::filesystem::exists(folder.OkFile()) ||
      ReadSlaveRecord(folder).fingerprint != Fingerprint(plan)) {
    return false;
  }
  try {
    PublishOutputs(plan);
    return true;
  } catch (const std::filesystem::filesystem_error&) {
    return false;
  }
}

void PublishOutputs(const SLAVE_PLAN& plan) {
  for (const std::filesystem::path& output : plan.Outputs()) {
    const std::filesystem::path partial = PartialOutput(output);
    if (std::filesystem::exists(partial) || !std::filesystem::exists(output)) {
      std::filesystem::rename(partial, output);
    }
  }
}

void RemovePartialOutputs(const SLAVE_FOLDER& folder, const SLAVE_PLAN& plan) {
  if (std::filesystem::exists(folder.OkFile())) {
    return;
  }
  for (const std::filesystem::path& output : plan.Outputs()) {
    std::error_code ignored;
    std::filesystem::remove(PartialOutput(output), ignored);
  }
}
