#include "run/slave_record.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "basics/text_file.h"
#include "run/fingerprint.h"

namespace {

using JSON = nlohmann::json;

constexpr std::array state_names =
    std::to_array<std::pair<SLAVE_STATE, const char*>>({{SLAVE_STATE::WAITING, "waiting"},
                                                        {SLAVE_STATE::RUNNING, "running"},
                                                        {SLAVE_STATE::SUCCEEDED, "succeeded"},
                                                        {SLAVE_STATE::FAILED, "failed"},
                                                        {SLAVE_STATE::DIED, "died"},
                                                        {SLAVE_STATE::CANCELLED, "cancelled"},
                                                        {SLAVE_STATE::TIMED_OUT, "timeout"},
                                                        {SLAVE_STATE::STOPPED, "stopped"},
                                                        {SLAVE_STATE::HELD, "held"}});

SLAVE_STATE StateNamed(const std::string& name) {
  for (const auto& [state, its_name] : state_names) {
    if (name == its_name) {
      return state;
    }
  }
  return SLAVE_STATE::WAITING;
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
                               .task = attempt.value("task", ""),
                               .log = attempt.value("log", ""),
                               .how = attempt.value("how", ""),
                               .died = attempt.value("died", false)});
  }
  for (const JSON& output : json.value("outputs", JSON::array())) {
    record.outputs.push_back({.size = output.value("size", std::int64_t{0}),
                              .time = output.value("time", std::int64_t{0}),
                              .inode = output.value("inode", std::uint64_t{0})});
  }
  record.stack = json.value("stack", "");
  return record;
}

}  // namespace

std::string NameOf(SLAVE_STATE state) {
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
                    {"task", attempt.task},
                    {"log", attempt.log},
                    {"how", attempt.how},
                    {"died", attempt.died}});
  }
  return json;
}

void WriteSlaveRecord(const SLAVE_FOLDER& folder, const SLAVE_RECORD& record) {
  JSON outputs = JSON::array();
  for (const OUTPUT_FILE& output : record.outputs) {
    outputs.push_back({{"size", output.size}, {"time", output.time}, {"inode", output.inode}});
  }
  const JSON json = {{"state", NameOf(record.state)},
                     {"reason", record.reason},
                     {"fingerprint", JSON::parse(record.fingerprint)},
                     {"attempts", AttemptsJson(record.attempts)},
                     {"outputs", outputs},
                     {"stack", record.stack}};
  constexpr int indent = 2;
  // What a message quotes may hold bytes of any encoding.
  ReplaceTextFile(folder.RecordFile(),
                  json.dump(indent, ' ', false, JSON::error_handler_t::replace) + "\n");
}

bool SLAVE_RECORD::MayRetry(const SLAVE_PLAN& plan) const noexcept {
  return std::count_if(attempts.begin(), attempts.end(), [](const RUN_ATTEMPT& attempt) {
           return attempt.died || attempt.ended == 0.0;
         }) <= plan.retries;
}

OUTPUTS_PLACE PlaceOfOutputs(const STACK_FOLDER& stack, const SLAVE_RECORD& record,
                             const SLAVE_PLAN& plan) {
  // Record and outputs are copied together when a stack moves to another file system.
  return FindOutputs(plan.Outputs(), record.outputs, record.stack != stack.Identity());
}

namespace {

/// Where the outputs are that belong to the plan and the inputs.
OUTPUTS_PLACE PlaceOfValidOutputs(const STACK_FOLDER& stack, const SLAVE_FOLDER& folder,
                                  const SLAVE_PLAN& plan) {
  const SLAVE_RECORD record = ReadSlaveRecord(folder);
  const OUTPUTS_PLACE place = PlaceOfOutputs(stack, record, plan);
  const bool are_valid = place != OUTPUTS_PLACE::GONE && std::filesystem::exists(folder.OkFile()) &&
                         record.fingerprint == Fingerprint(plan);
  return are_valid ? place : OUTPUTS_PLACE::GONE;
}

}  // namespace

bool IsFinished(const STACK_FOLDER& stack, const SLAVE_FOLDER& folder, const SLAVE_PLAN& plan) {
  return PlaceOfValidOutputs(stack, folder, plan) == OUTPUTS_PLACE::FINAL;
}

bool CompletePublication(const STACK_FOLDER& stack, const SLAVE_FOLDER& folder,
                         const SLAVE_PLAN& plan) {
  const OUTPUTS_PLACE place = PlaceOfValidOutputs(stack, folder, plan);
  if (place != OUTPUTS_PLACE::PARTIAL) {
    return place == OUTPUTS_PLACE::FINAL;
  }
  try {
    const SLAVE_RECORD record = ReadSlaveRecord(folder);
    PublishOutputs(plan.Outputs(), record.outputs, record.stack != stack.Identity());
    return true;
  } catch (const std::filesystem::filesystem_error&) {
    return false;
  }
}
