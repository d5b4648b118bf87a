// The method notes at the end of a text report.
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/output/language/catalog.h"
#include "runtime/output/render/renderer.h"
#include "runtime/output/render/textwidth.h"

using runtime::output::Catalog;
using runtime::output::DisplayWidth;
using runtime::output::MethodNote;
using runtime::output::RenderOptions;
using runtime::output::Report;
using ::testing::HasSubstr;

namespace {

Report ReportWith(std::vector<MethodNote> notes) {
  Report report;
  report.facts.emplace();
  report.facts->notes = std::move(notes);
  return report;
}

std::string Rendered(const Report& report, const RenderOptions& options) {
  std::ostringstream out;
  runtime::output::FindReportFormat("text")->newRenderer(options)->Render(report, out);
  return out.str();
}

}  // namespace

TEST(TextNotes, standUnderAHeadingNamedOnceAndSetIn) {
  const Report report =
      ReportWith({{"Cases", "Number of cases in the file: ^1.", {"12"}},
                  {"Weight", "The cases are weighted by the variable ^1 (^2).", {"w", "Weight"}},
                  {"Weight", "A case whose weight is missing, zero or negative does not count.", {}}});
  EXPECT_EQ(Rendered(report, {50, true, false}), R"(Method
══════
Cases
  Number of cases in the file: 12.
Weight
  The cases are weighted by the variable w
  (Weight).
  A case whose weight is missing, zero or negative
  does not count.
)");
}

TEST(TextNotes, areLeftOutWhereThereAreNone) {
  EXPECT_EQ(Rendered(ReportWith({}), {80, true, false}), "");
  EXPECT_EQ(Rendered(Report(), {80, true, false}), "");
}

TEST(TextNotes, areInTheLanguageOfTheReport) {
  const auto catalog = Catalog::Of("de");
  const Report report = ReportWith({{"Cases", "Number of cases in the file: ^1.", {"Cases"}}});
  EXPECT_EQ(Rendered(report, {80, true, false, catalog.get()}),
            "Methode\n═══════\nFälle\n  Anzahl der Fälle in der Datei: Cases.\n");
}

TEST(TextNotes, headingsAreBoldOnATerminalWithColours) {
  const Report report = ReportWith({{"Cases", "Number of cases in the file: ^1.", {"12"}}});
  EXPECT_EQ(Rendered(report, {80, false, true}),
            "\x1b[1mMethod\x1b[0m\n======\n\x1b[1mCases\x1b[0m\n  Number of cases in the file: 12.\n");
}

TEST(TextNotes, escapeWhatTheDataSay) {
  const Report report = ReportWith({{"Weight", "The cases are weighted by the variable ^1.", {"\x1b[31m^1\u202e"}}});
  EXPECT_THAT(Rendered(report, {80, true, false}), HasSubstr("variable \\x1b[31m^1\\u202e."));
}

TEST(TextNotes, keepToTheWidthWhateverTheDataSay) {
  std::string families;  // each one picture of seven characters
  for (int i = 0; i < 7; ++i) families += "\U0001F469\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466";
  const std::string labels[] = {
      std::string(40'000, 'x'), "漢字かな交じり文漢字かな交じり文漢字かな交じり文", families,
      "e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301",
      "משקל הנשאלים לפי מפקד האוכלוסין"};
  for (const std::string& label : labels) {
    const Report report = ReportWith({{"Weight", "The cases are weighted by the variable ^1 (^2).", {"w", label}}});
    for (const int width : {1, 20, 21, 80, 10'000}) {
      std::istringstream lines(Rendered(report, {width, true, false}));
      for (std::string line; std::getline(lines, line);) EXPECT_LE(DisplayWidth(line), width < 20 ? 20 : width) << line;
    }
  }
}
