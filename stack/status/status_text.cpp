#include <algorithm>
#include <cmath>
#include <iomanip>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "logging/printable_text.h"
#include "status/stack_status.h"

namespace {

using JSON = nlohmann::json;

/// Hours, minutes and seconds.
std::string Duration(double seconds) {
  constexpr int sixty = 60;
  const auto whole = static_cast<long long>(std::ceil(seconds));
  std::ostringstream text;
  text << std::setfill('0') << std::setw(2) << whole / sixty / sixty << ":" << std::setw(2)
       << whole / sixty % sixty << ":" << std::setw(2) << whole % sixty;
  return text.str();
}

std::string LastHost(const SLAVE_STATUS& slave) {
  return slave.attempts.empty() ? "" : slave.attempts.back().host;
}

/// What is worth a line: neither the done ones nor those that only wait.
std::string Detail(const SLAVE_STATUS& slave) {
  if (slave.IsRunning()) {
    return std::to_string(slave.percent) + " %  " + LastHost(slave);
  }
  return slave.IsDone() || slave.IsWaiting() ? "" : slave.reason;
}

/// Of those that wait, how many for which reason.
std::map<std::string, int> WaitingReasons(const STACK_STATUS& status) {
  std::map<std::string, int> counts;
  for (const SLAVE_STATUS& slave : status.slaves) {
    if (slave.IsWaiting() && !slave.reason.empty()) {
      ++counts[NameOf(slave.state) + "  " + slave.reason];
    }
  }
  return counts;
}

JSON ToJson(const SLAVE_STATUS& slave) {
  JSON json = {{"name", slave.name},
               {"state", NameOf(slave.state)},
               {"attempts", AttemptsJson(slave.attempts)}};
  if (slave.IsRunning()) {
    json["percent"] = slave.percent;
  }
  if (!slave.reason.empty()) {
    json["reason"] = slave.reason;
  }
  return json;
}

}  // namespace

std::string StatusText(const STACK_STATUS& status) {
  std::size_t name_width = 0;
  for (const SLAVE_STATUS& slave : status.slaves) {
    name_width = std::max(name_width, slave.name.size());
  }
  std::ostringstream text;
  text << status.name << ": " << status.slaves.size() << " slaves, " << status.done << " done, "
       << status.running << " running, " << status.failed << " failed, " << status.waiting
       << " waiting";
  if (status.slaves_an_hour) {
    text << "; " << std::fixed << std::setprecision(1) << *status.slaves_an_hour
         << " slaves an hour";
  }
  if (status.seconds_left) {
    text << ", " << Duration(*status.seconds_left) << " left";
  }
  text << (status.queue_answers ? "\n" : "; the queue does not answer\n");
  for (const auto& [reason, count] : WaitingReasons(status)) {
    text << "  " << count << " " << PrintableText(reason) << "\n";
  }
  constexpr int state_width = 9;
  for (const SLAVE_STATUS& slave : status.slaves) {
    if (const std::string detail = Detail(slave); !detail.empty()) {
      text << "  " << std::left << std::setw(state_width) << NameOf(slave.state) << "  "
           << std::setw(static_cast<int>(name_width)) << slave.name << "  " << PrintableText(detail)
           << "\n";
    }
  }
  return text.str();
}

JSON StatusJson(const STACK_STATUS& status) {
  JSON slaves = JSON::array();
  for (const SLAVE_STATUS& slave : status.slaves) {
    slaves.push_back(ToJson(slave));
  }
  JSON json = {{"name", status.name},
               {"done", status.done},
               {"running", status.running},
               {"failed", status.failed},
               {"waiting", status.waiting},
               {"queued", status.queued},
               {"queue_answers", status.queue_answers},
               {"slaves", slaves}};
  if (status.slaves_an_hour) {
    json["slaves_an_hour"] = *status.slaves_an_hour;
  }
  if (status.seconds_left) {
    json["seconds_left"] = *status.seconds_left;
  }
  return json;
}
