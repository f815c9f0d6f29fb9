#include "report/report_page.h"

#include <utility>
#include <vector>

#include "logging/formatted_text.h"
#include "report/html.h"
#include "report/quality.h"
#include "report/quicklooks.h"

namespace {

constexpr const char* style = R"(
:root { color-scheme: light dark; --ink: #1c2430; --soft: #5a6675; --paper: #f5f6f8;
  --card: #ffffff; --edge: #d9dee5; --good: #11693a; --bad: #b3141f; --open: #8a5300; }
@media (prefers-color-scheme: dark) {
  :root { --ink: #e6eaf0; --soft: #a3afbd; --paper: #12161c; --card: #1b2129; --edge: #323b47;
    --good: #5fd394; --bad: #ff7b80; --open: #f2b45c; } }
* { box-sizing: border-box; }
body { margin: 0 auto; padding: 1.5rem 1rem 3rem; max-width: 76rem; background: var(--paper);
  color: var(--ink); font: 1rem/1.5 system-ui, sans-serif; }
h1 { margin: 0; font-size: 1.6rem; line-height: 1.25; }
h2 { margin: 2rem 0 .6rem; font-size: 1.15rem; }
.soft, figcaption { color: var(--soft); }
.soft { margin: .3rem 0 0; }
.state { display: inline-block; padding: .1rem .7rem; border: 2px solid; border-radius: 1rem;
  font-size: .95rem; font-weight: 600; vertical-align: .15em; margin-left: .4rem; }
.succeeded { color: var(--good); } .failed { color: var(--bad); } .unfinished { color: var(--open); }
.card { background: var(--card); border: 1px solid var(--edge); border-radius: .6rem; }
dl { display: grid; grid-template-columns: repeat(auto-fit, minmax(9.5rem, 1fr)); gap: .75rem;
  margin: 1.2rem 0 0; }
dl div { padding: .6rem .9rem; }
dt { color: var(--soft); font-size: .85rem; }
dd { margin: 0; font-size: 1.2rem; font-weight: 600; overflow-wrap: anywhere; }
.lines { margin: 0; padding: .7rem .9rem; font: .875rem/1.5 ui-monospace, monospace;
  white-space: pre-wrap; overflow-wrap: anywhere; }
.lines.alarm { color: var(--bad); border-color: var(--bad); }
table { width: 100%; border-collapse: collapse; overflow: hidden; }
th, td { padding: .4rem .9rem; text-align: left; vertical-align: top; overflow-wrap: anywhere;
  border-bottom: 1px solid var(--edge); }
tr:last-child td, tr:last-child th { border-bottom: 0; }
tbody th { font-weight: 500; }
td:last-child { color: var(--soft); }
.pictures { display: grid; gap: 1rem;
  grid-template-columns: repeat(auto-fill, minmax(min(100%, 27rem), 1fr)); }
figure { margin: 0; padding: .6rem; }
img { display: block; max-width: 100%; height: auto; margin: 0 auto; border-radius: .3rem; }
figcaption { padding: .5rem .2rem 0; font-size: .875rem; overflow-wrap: anywhere; }
summary { cursor: pointer; margin-top: 2rem; font-weight: 600; }
details .lines { margin-top: .6rem; }
figcaption strong { color: var(--ink); }
@media (max-width: 34rem) {
  h1 { font-size: 1.35rem; }
  dd { font-size: 1.05rem; }
  thead { display: none; }
  tbody tr { display: grid; grid-template-columns: 1fr auto; padding: .35rem .8rem;
    border-bottom: 1px solid var(--edge); }
  tbody tr:last-child { border-bottom: 0; }
  tbody th, tbody td { padding: 0; border: 0; font-size: .875rem; }
  tbody td:nth-child(2) { grid-column: 1 / -1; grid-row: 2; }
  .pictures figure { padding: .35rem; } }
)";

/// With three significant digits.
std::string Number(double value) {
  return FormattedText("%.3g", value);
}

struct STATE_WORDS {
  const char* word;
  const char* css_class;
  const char* sentence;
};

STATE_WORDS WordsOf(RUN_STATE state, bool misfits) {
  switch (state) {
    case RUN_STATE::SUCCEEDED:
      return misfits ? STATE_WORDS{"succeeded, but does not fit the master", "unfinished",
                                   "The run has come to its end, but its output has little in "
                                   "common with the master: slctool check-run tells what is "
                                   "suspicious about the inputs."}
                     : STATE_WORDS{"succeeded", "succeeded",
                                   "The run has come to its end; the outputs are complete."};
    case RUN_STATE::FAILED:
      return {"failed", "failed", "The run has failed; its outputs, if any, are incomplete."};
    default:
      return {"unfinished", "unfinished",
              "The run has not come to its end: it still goes on, or was killed."};
  }
}

/// The page under construction, section by section.
class PAGE {
 public:
  PAGE(const RUN_RECORD& run, const std::string& master)
      : run_(run), master_(master), quality_(MeasureQuality(run, master)) {}

  std::string Make() && {
    AddHead();
    AddQuality();
    AddFigures();
    AddMissing();
    AddLines("ALARM", "Alarms", "lines card alarm");
    AddLines("WARN", "Warnings", "lines card");
    if (!quality_.histograms.empty()) {
      AddPictures({"Histograms of the output", quality_.histograms});
    }
    AddParameters();
    for (const QUICKLOOK_GROUP& group : DrawQuicklooks(run_, master_)) {
      AddPictures(group);
    }
    AddLog();
    html_ += "</main>\n</body>\n</html>\n";
    return std::move(html_);
  }

 private:
  void AddHead() {
    const STATE_WORDS words = WordsOf(run_.State(), quality_.misfits);
    const std::string title = Escaped(run_.Name()) + " " + words.word;
    html_ +=
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
        title + "</title>\n<style>" + style + "</style>\n</head>\n<body>\n<main>\n<h1>" +
        Escaped(run_.Name()) + " <span class=\"state " + words.css_class + "\">" + words.word +
        "</span></h1>\n<p class=\"soft\">" + words.sentence + "</p>\n<p class=\"soft\">" +
        Escaped(StartText()) + "</p>\n";
  }

  std::string StartText() const {
    constexpr std::string_view host_label = "  hostname: ";
    std::string text = run_.Log().After("start time: ").value_or("");
    if (const std::size_t host = text.find(host_label); host != std::string::npos) {
      text.replace(host, host_label.size(), " on ");
    }
    return text.empty() ? text : "Started " + text;
  }

  void AddFigure(const std::string& name, const std::string& value) {
    html_ +=
        "<div class=\"card\"><dt>" + Escaped(name) + "</dt><dd>" + Escaped(value) + "</dd></div>\n";
  }

  void AddQuality() {
    html_ += "<dl>\n";
    for (const QUALITY_FIGURE& figure : quality_.figures) {
      if (!figure.value.empty()) {
        AddFigure(figure.name, figure.value);
      }
    }
    html_ += "</dl>\n";
  }

  void AddMissing() {
    for (const QUALITY_FIGURE& figure : quality_.figures) {
      if (figure.value.empty()) {
        html_ += "<p class=\"soft\">" + Escaped(figure.name + ": " + figure.reason) + ".</p>\n";
      }
    }
  }

  void AddFigures() {
    html_ += "<dl>\n";
    const double pixels = static_cast<double>(run_.Samples()) * static_cast<double>(run_.Lines());
    if (pixels > 0.0) {
      AddFigure("Output", std::to_string(run_.Samples()) + " \u00d7 " +
                              std::to_string(run_.Lines()) + " pixels");
    }
    const auto seconds = run_.Seconds();
    if (seconds) {
      AddFigure("Duration", *seconds > 0.0 ? Number(*seconds) + " s" : "less than 1 s");
    }
    if (seconds && *seconds > 0.0 && pixels > 0.0) {
      AddFigure("Throughput", Number(pixels / *seconds / 1e6) + " Mpixel/s");
    }
    html_ += "</dl>\n";
  }

  void AddLines(const char* level, const char* title, const char* css_class) {
    const std::vector<std::string> lines = run_.Log().Texts(level);
    if (lines.empty()) {
      return;
    }
    html_ += std::string("<section><h2>") + title + "</h2>\n<pre class=\"" + css_class + "\">";
    for (const std::string& line : lines) {
      html_ += Escaped(line) + "\n";
    }
    html_ += "</pre></section>\n";
  }

  void AddParameters() {
    html_ +=
        "<section><h2>Parameters</h2>\n<table class=\"card\">\n<thead><tr><th "
        "scope=\"col\">Name</th><th scope=\"col\">Value</th><th "
        "scope=\"col\">From</th></tr></thead>\n<tbody>\n";
    for (const LOGGED_PARAMETER& parameter : run_.Log().Parameters()) {
      html_ += "<tr><th scope=\"row\">" + Escaped(parameter.name) + "</th><td>" +
               Escaped(parameter.value) + "</td><td>" + Escaped(parameter.source) + "</td></tr>\n";
    }
    html_ += "</tbody>\n</table></section>\n";
  }

  void AddPictures(const QUICKLOOK_GROUP& group) {
    html_ += "<section><h2>" + Escaped(group.title) + "</h2>\n<div class=\"pictures\">\n";
    for (const QUICKLOOK& picture : group.pictures) {
      const std::string title = Escaped(picture.title);
      const std::string caption = Escaped(picture.caption);
      html_.append("<figure class=\"card\">");
      if (picture.png.empty()) {
        html_.append("<figcaption>").append(title).append(" is not shown: ");
        html_.append(Escaped(picture.reason));
      } else {
        html_.append("<img alt=\"").append(title).append(". ").append(caption);
        html_.append("\" src=\"data:image/png;base64,").append(Base64(picture.png));
        html_.append("\"><figcaption><strong>").append(title).append(".</strong> ").append(caption);
      }
      html_.append("</figcaption></figure>\n");
    }
    html_ += "</div></section>\n";
  }

  void AddLog() {
    html_ += "<details><summary>The whole log</summary>\n<pre class=\"lines card\">";
    for (const RUN_LOG::LINE& line : run_.Log().Lines()) {
      html_ += Escaped(line.level + " " + line.text) + "\n";
    }
    html_ += "</pre></details>\n";
  }

  const RUN_RECORD& run_;
  const std::string& master_;
  const QUALITY quality_;
  std::string html_;
};

}  // namespace

std::string MakeReportPage(const RUN_RECORD& run, const std::string& master) {
  return PAGE(run, master).Make();
}
