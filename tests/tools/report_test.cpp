#include <gtest/gtest.h>

#include <algorithm>
#include <stack>

#include "common/offset_record.h"
#include "report/html.h"
#include "report/report_command.h"
#include "report/report_page.h"
#include "tools/command_test.h"

namespace {

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

/// The first element that is not closed where it must be, or a stray angle bracket; "" for none.
std::string Fault(const std::string& html) {
  std::stack<std::string> open;
  std::size_t at = html.find("<html");
  while ((at = html.find_first_of("<>", at)) != std::string::npos) {
    const std::size_t end = html.find('>', at);
    if (html[at] == '>' || end == std::string::npos) {
      return html.substr(at, 40);
    }
    const bool closes = html[at + 1] == '/';
    const std::size_t name_begin = at + (closes ? 2 : 1);
    const std::string name =
        html.substr(name_begin, html.find_first_of(" >", name_begin) - name_begin);
    if (closes) {
      if (open.empty() || open.top() != name) {
        return "</" + name;
      }
      open.pop();
    } else if (name != "meta" && name != "img") {
      open.push(name);
    }
    at = end + 1;
  }
  return open.empty() ? "" : open.top();
}

/// A directory that a run has left, made by hand.
class REPORT_TEST : public COMMAND_TEST {
 protected:
  REPORT_TEST() {
    const auto signal = [](int sample, int line) { return VALUE(10.0 + sample, line - 20.0); };
    Complex("master.ras", 40, 30, signal);
    Complex("slave.ras", 40, 30, [](int sample, int line) { return VALUE(line - 3.5, sample); });
    Complex("out.ras", 40, 30, signal);
    Real("rg.map", 6, 5, [](int sample, int line) { return sample - line; });
    Real(
        "out_mask.ras", 40, 30, [](int sample, int) { return sample < 30 ? 1.0 : 0.0; },
        PIXEL_TYPE::U_INT_8);
  }

  void Log(const std::string& lines) {
    std::string log;
    std::istringstream texts(lines);
    for (std::string text; std::getline(texts, text);) {
      log += text.substr(0, 5) + " : resample : " + text.substr(6) + "\n";
    }
    WriteFile(Path("log.run"), log);
  }

  std::string Page(const std::string& master = "") const {
    const std::string page = MakeReportPage(RUN_RECORD(Path(""), ""), master);
    EXPECT_EQ(Fault(page), "");
    EXPECT_EQ(Count(page, "<img "), Count(page, "<img alt=\""));
    EXPECT_EQ(Count(page, " src=\"") + Count(page, "href"),
              Count(page, " src=\"data:image/png;base64,iVBORw0KGgo"))
        << "the page refers to other files";
    return page;
  }

  const std::string parameters =
      "DEBUG Found parameter in argument list SlaveIn = slave.ras\n"
      "DEBUG Found parameter RG_MAPPING_FILE=rg.map\n"
      "INFO     - n_samples      : 40\n"
      "INFO     - n_lines        : 30\n"
      "INFO     - SlaveOut       : out.ras\n"
      "INFO     - MaskOut        : out_mask.ras\n";
  const std::string good_end =
      "INFO  * Setup SLC parameters\n"
      "INFO  execution time: 1 minute(s) 40 second(s)\n";
};

TEST_F(REPORT_TEST, TellsFiguresParametersAndPicturesOfARun) {
  Log(parameters + good_end);
  WriteFile(Path("OK.run"), "0");
  const std::string page = Page(Path("master.ras"));
  for (const char* text : {">succeeded</span>", "<dd>40 \u00d7 30 pixels</dd>", "<dd>100 s</dd>",
                           "<dd>1.2e-05 Mpixel/s</dd>", "<dd>75.00 %</dd>",
                           "<th scope=\"row\">SlaveIn</th><td>slave.ras</td><td>arguments</td>",
                           "<th scope=\"row\">n_lines</th><td>30</td><td>INSAR pool</td>",
                           "<strong>Coherence after.</strong> Mean coherence 1.000."}) {
    EXPECT_NE(page.find(text), std::string::npos) << text;
  }
  // Three amplitudes, two pairs, a shift, the mask and two histograms.
  EXPECT_EQ(Count(page, "<img "), 11U);
  EXPECT_EQ(Count(Page(), "<img "), 5U) << "without a master";
}

TEST_F(REPORT_TEST, OpensWithTheQualityOfTheOutput) {
  // Signals that have nothing in common, and one that turns by a fringe every 20 samples.
  const auto noise = [](double seed, int sample, int line) {
    const double turn = seed * (sample * 37.3 + line * 91.7);
    return std::polar(1000.0, turn * turn);
  };
  Complex("master.ras", 40, 30, [&](int x, int y) { return noise(0.1, x, y); });
  WriteFile(Path("insar.pool"),
            "respl_poly_rg FLT_15_V 0 6\n{\n2.5\n0\n0.1\n0\n0\n0\n}\n"
            "respl_poly_az FLT_15_V 0 6\n{\n-1\n0\n0\n0\n0\n0\n}\n"
            "n_samples INT_32 40\nn_lines INT_32 30\n"
            "slave_first_rg_time FLT_15 0\nslave_first_az_time FLT_15 0\n");
  WriteFile(Path("slave.pool"),
            "imaging_mode STR \"SM\"\nprf FLT_15 1000\nrange_sampling_frequency FLT_15 1e7\n"
            "oversampling FLT_15 1\nfdc_poly_az_time FLT_15_V 0 2\n{\n0\n1\n}\n"
            "fdc_poly_rg_ref_time FLT_15_V 0 2\n{\n0\n0\n}\n"
            "fdc_poly_coeff FLT_15_M 0 2 0 1\n{\n{\n250\n}\n{\n250\n}\n}\n");
  Log(parameters + good_end +
      "INFO    - Saturated output components: 12, non-finite inputs under valid mask: 7\n"
      "INFO     - Mapping type   : polynomial\n"
      "INFO     - InsarPoolName  : insar.pool\n"
      "INFO     - SlavePoolName  : slave.pool\n");
  WriteFile(Path("OK.run"), "0");
  const auto page_of = [&](PIXEL_TYPE type, auto pixel) {
    Complex("out.ras", 40, 30, pixel, type);
    return Page(Path("master.ras"));
  };
  constexpr const char* misfit =
      "<span class=\"state unfinished\">succeeded, but does not fit the master</span>";

  // Half of the measured shifts are a quarter of a sample off; a weak one is far off.
  OFFSET_RECORD{.posting = {10, 10}, .first = {0.0, 0.0}, .master_size = {40, 30}}.Write(
      Path("match.pool"));
  Real("match_range.ras", 4, 3,
       [](int x, int y) { return 2.5 + x + (x % 2) * 0.25 + (y / 2) * 9; });
  Real("match_azimuth.ras", 4, 3, [](int, int) { return -1.0; });
  Real("match_snr.ras", 4, 3, [](int, int y) { return y < 2 ? 9.0 : 4.0; });
  const std::string bad =
      page_of(PIXEL_TYPE::C_FLT_6, [&](int x, int y) { return noise(0.17, x, y); });
  EXPECT_EQ(Count(bad, misfit), 1U);
  EXPECT_EQ(Count(bad, "Saturated components: pixels of the output"), 1U);
  for (const char* text :
       {"<dd>250 to 250 Hz, 0.25 to 0.25 PRF</dd>", "<dd>2.5 to 6.4 samples</dd>",
        "<dd>-1 to -1 lines</dd>", "<dt>Saturated, by the run</dt><dd>12</dd>",
        "<dt>Non-finite inputs</dt><dd>7</dd>",
        "<dt>Range shifts, mapping less polynomial</dt><dd>0.000 samples RMS, 0.000 at most, of "
        "4096<",
        "<dt>Range shifts, match less mapping</dt><dd>0.177 samples RMS, 0.250 at most, of 8<"}) {
    EXPECT_NE(bad.find(text), std::string::npos) << text;
  }
  const std::string fringes = page_of(PIXEL_TYPE::C_INT_16, [&](int x, int y) {
    return x == 0 ? VALUE(1e5, 1.0) : noise(0.1, x, y) * std::polar(1.0, x * 0.314159);
  });
  EXPECT_EQ(Count(fringes, misfit), 0U) << "of a signal with fringes";
  EXPECT_EQ(Count(fringes, "<dd>1.25 % (30)</dd>"), 1U) << "half the components of a column in 40";
  EXPECT_EQ(Count(page_of(PIXEL_TYPE::C_FLT_6, [](int, int) { return VALUE(1e-45, 0.0); }),
                  "<strong>Signal-to-noise ratio of the shifts, match_snr.ras.</strong>"),
            1U);
  EXPECT_EQ(Count(Page("none.ras"), "Fit to the master: MEM_MGR: can not open: none.ras."), 1U);
}

TEST_F(REPORT_TEST, ShowsAFailedRunWithoutTheOutputsOfAnEarlierOne) {
  Log(parameters +
      "WARN  kernel corrected\n"
      "ALARM MEM_MGR: can not open: az.map\n");
  const std::string page = Page();
  EXPECT_NE(page.find(">failed</span>"), std::string::npos);
  EXPECT_NE(page.find("<pre class=\"lines card alarm\">MEM_MGR: can not open: az.map\n</pre>"),
            std::string::npos);
  EXPECT_NE(page.find("kernel corrected\n</pre>"), std::string::npos);
  EXPECT_EQ(Count(page, "<img "), 2U);  // slave and shifts

  Log(parameters);
  EXPECT_NE(Page().find(">unfinished</span>"), std::string::npos);
}

TEST_F(REPORT_TEST, LetsNoTextOfTheRunBecomePartOfThePage) {
  const std::string hostile = "\"><script>alert('1&2')</script>\x1b[7m\xff.ras";
  Log("DEBUG Found parameter SlaveIn=" + hostile +
      "\n"
      "ALARM can not open: " +
      hostile + "\n");
  const std::string page = Page();
  EXPECT_EQ(Count(page, "<script"), 0U);
  EXPECT_EQ(page.find_first_of("\x1b\xff"), std::string::npos);
  EXPECT_NE(page.find("&quot;&gt;&lt;script&gt;alert(&#39;1&amp;2&#39;)&lt;/script&gt;"
                      "\ufffd[7m\ufffd.ras"),
            std::string::npos);
  EXPECT_NE(page.find("Slave before is not shown: can not open file"), std::string::npos);
}

TEST_F(REPORT_TEST, CommandWritesThePageWithTheShiftsOfAPolynomial) {
  WriteFile(Path("a.pool"),
            "respl_poly_rg FLT_15_V 0 6\n{\n1\n0\n0\n0\n0\n0\n}\n"
            "respl_poly_az FLT_15_V 0 6\n{\n0\n1\n0\n0\n0\n0\n}\n"
            "n_samples INT_32 40\nn_lines INT_32 30\n");
  Log("DEBUG Found parameter INSAR_PARAMETER_POOL=a.pool\n"
      "INFO     - Mapping type   : polynomial\n"
      "INFO     - n_samples      : 40\n"
      "INFO     - n_lines        : 30\n");
  const auto report = [&](const std::string& page) {
    return Run(AddReportCommand, "report " + Path("") + " --out " + page);
  };
  EXPECT_EQ(report(Path("page.html")), Path("page.html") + "\n");
  const std::string page = ReadFile(Path("page.html"));
  EXPECT_EQ(Count(page, "<img "), 2U);
  EXPECT_EQ(Count(page, "Centroid and shifts: the log tells no SlaveIn."), 1U);
  EXPECT_THROW(report("/no/such/directory/page.html"), std::runtime_error);
}

TEST_F(REPORT_TEST, NeedsALog) {
  EXPECT_THROW(RUN_RECORD(Path(""), ""), std::runtime_error);
  WriteFile(Path("log.a"), "no line of a log\n");
  EXPECT_THROW(RUN_RECORD(Path(""), ""), std::runtime_error);
  Log(parameters);
  EXPECT_THROW(RUN_RECORD(Path(""), ""), std::runtime_error) << "two logs";
  EXPECT_THROW(RUN_RECORD(Path(""), "missing"), std::runtime_error);
  EXPECT_EQ(RUN_RECORD(Path(""), "log.run").Samples(), 40);
}

TEST(Html, EncodesBytesInBase64AndKeepsUtf8) {
  const std::pair<std::string_view, const char*> encoded[] = {{"", ""},
                                                              {"M", "TQ=="},
                                                              {"Ma", "TWE="},
                                                              {"Man", "TWFu"},
                                                              {"\xff\xef\xbe\xfb",
                                                               "/+++"
                                                               "+w=="}};
  for (const auto& [bytes, text] : encoded) {
    EXPECT_EQ(Base64(bytes), text);
  }
  EXPECT_EQ(Escaped("\u00e4\u20ac\U0001f6f0\ta"), "\u00e4\u20ac\U0001f6f0\ta");
  for (const char* invalid : {"\xc0", "\xc3", "\x80", "\x7f", "\x01"}) {
    EXPECT_EQ(Escaped(invalid), "\ufffd");
  }
  EXPECT_EQ(Escaped("\xed\xa0\x80"), "\ufffd\ufffd\ufffd");  // a surrogate
}

}  // namespace
