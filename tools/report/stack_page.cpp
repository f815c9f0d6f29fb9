#include "report/stack_page.h"

#include <algorithm>
#include <array>
#include <vector>

#include "basics/file_lock.h"
#include "description/stack_folder.h"
#include "logging/formatted_text.h"
#include "queue/slurm_queue.h"
#include "report/html.h"
#include "report/run_log.h"
#include "status/stack_start.h"
#include "status/stack_status.h"

namespace {

constexpr const char* style = R"(
:root { color-scheme: light dark; }
body { margin: 0 auto; padding: 1.5rem 1rem 3rem; max-width: 76rem;
  font: 1rem/1.5 system-ui, sans-serif; }
h1 { margin: 0; font-size: 1.6rem; }
table { width: 100%; border-collapse: collapse; margin-top: 1rem; }
th, td { padding: .3rem .7rem; text-align: left; vertical-align: top; overflow-wrap: anywhere;
  border-bottom: 1px solid #8886; }
tbody th { font-weight: 500; }
.failed, .died, .timeout { color: #c0232c; font-weight: 600; }
.cancelled, .stopped, .held, .warned { color: #a86400; font-weight: 600; }
.succeeded { color: #16824a; }
)";

/// Those first that need somebody.
constexpr std::array order = {SLAVE_STATE::FAILED,    SLAVE_STATE::DIED,    SLAVE_STATE::TIMED_OUT,
                              SLAVE_STATE::CANCELLED, SLAVE_STATE::STOPPED, SLAVE_STATE::HELD,
                              SLAVE_STATE::WAITING,   SLAVE_STATE::RUNNING, SLAVE_STATE::SUCCEEDED};

struct ROW {
  SLAVE_STATUS slave;
  std::size_t warnings = 0;  ///< in the log of the last attempt
  RUN_FINDINGS findings;     ///< of the last attempt

  auto Rank() const {
    const auto* const place = std::find(order.begin(), order.end(), slave.state);
    return std::pair(place - order.begin(), -static_cast<long>(warnings));
  }
};

ROW RowOf(const SLAVE_STATUS& slave, const std::filesystem::path& log_file) {
  try {
    const RUN_LOG log(log_file.string());
    return {slave, log.Texts("WARN").size(), log.Findings().value_or(RUN_FINDINGS{})};
  } catch (const std::exception&) {
    return {slave, 0, {}};  // it has not begun
  }
}

std::vector<ROW> RowsOf(const STACK_FOLDER& stack, const STACK_STATUS& status) {
  std::vector<ROW> rows;
  for (const SLAVE_STATUS& slave : status.slaves) {
    rows.push_back(RowOf(slave, stack.Run(slave.name).LogFile()));
  }
  std::stable_sort(rows.begin(), rows.end(),
                   [](const ROW& a, const ROW& b) { return a.Rank() < b.Rank(); });
  return rows;
}

std::string SecondsText(const SLAVE_STATUS& slave) {
  if (slave.attempts.empty() || slave.attempts.back().ended == 0.0) {
    return "";
  }
  return FormattedText("%.1f s", slave.attempts.back().ended - slave.attempts.back().begun);
}

std::string Cell(const std::string& text, const std::string& css_class = "") {
  return (css_class.empty() ? "<td>" : "<td class=\"" + css_class + "\">") + Escaped(text) +
         "</td>";
}

std::string RowText(const ROW& row) {
  const SLAVE_STATUS& slave = row.slave;
  const std::string state = NameOf(slave.state);
  return "<tr><th scope=\"row\">" + Escaped(slave.name) + "</th>" +
         Cell(slave.IsRunning() ? state + " " + std::to_string(slave.percent) + " %" : state,
              state) +
         Cell(slave.reason) + Cell(std::to_string(slave.attempts.size())) +
         Cell(slave.attempts.empty() ? "" : slave.attempts.back().host) + Cell(SecondsText(slave)) +
         Cell(row.findings.saturated) + Cell(row.findings.non_finite) +
         (row.warnings == 0 ? Cell("") : Cell(std::to_string(row.warnings), "warned")) + "</tr>\n";
}

}  // namespace

bool IsStackDirectory(const std::filesystem::path& directory) {
  return std::filesystem::exists(STACK_FOLDER(directory).StartFile());
}

std::string MakeStackPage(const std::filesystem::path& directory) {
  const STACK_FOLDER stack(std::filesystem::canonical(directory));
  STACK_WATCH watch(stack, ReadStackStart(stack));
  const STACK_STATUS status = watch.Look(SLURM_QUEUE::ActiveOf(stack), IsLocked(stack.LockFile()));
  const std::string text = StatusText(status);
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
      Escaped(status.name) + "</title>\n<style>" + style + "</style>\n</head>\n<body>\n<h1>" +
      Escaped(status.name) + "</h1>\n<p>" + Escaped(text.substr(0, text.find('\n'))) +
      "</p>\n<table>\n<thead><tr>";
  for (const char* title : {"Slave", "State", "Reason", "Attempts", "Machine", "Duration",
                            "Saturated", "Non-finite inputs", "Warnings"}) {
    html += std::string("<th scope=\"col\">") + title + "</th>";
  }
  html += "</tr></thead>\n<tbody>\n";
  for (const ROW& row : RowsOf(stack, status)) {
    html += RowText(row);
  }
  return html + "</tbody>\n</table>\n</body>\n</html>\n";
}
