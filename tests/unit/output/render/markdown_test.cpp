#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/output/render/characters.h"
#include "runtime/output/render/markdowntext.h"
#include "runtime/output/render/renderer.h"
#include "tests/unit/output/randomreport.h"
#include "tests/unit/output/surveyreport.h"

using runtime::output::Report;

namespace {

std::string Markdown(std::string_view text) {
  std::string markdown;
  runtime::output::AppendMarkdownText(markdown, text);
  return markdown;
}

std::string Rendered(const Report& report) {
  std::ostringstream out;
  runtime::output::FindReportFormat("md")->newRenderer({})->Render(report, out);
  return out.str();
}

class MarkdownReport : public SurveyReport {};

}  // namespace

TEST(MarkdownText, leavesPlainTextAsItIs) {
  for (const char* text : {"Sex of the respondent, as recorded", "12.50", "1,234.00", "60.0%", "-5", "2000/02/29",
                           "12:30:45", "R&D", "snake_case_name", "$5", "größe (東京)", "a = b + c!"})
    EXPECT_EQ(Markdown(text), text);
}

TEST(MarkdownText, takesTheMeaningFromEveryMark) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"a|b", "a\\|b"},
      {"\\|", "\\\\\\|"},
      {"`code`", "\\`code\\`"},
      {"**bold** *it* ~~gone~~", "\\*\\*bold\\*\\* \\*it\\* \\~\\~gone\\~\\~"},
      {"_low_", "\\_low\\_"},
      {"a__b", "a\\_\\_b"},
      {"[a](b)", "\\[a\\](b)"},
      {"![a](b)", "!\\[a\\](b)"},
      {"# a ##", "\\# a \\#\\#"},
      {"<b>", "&lt;b&gt;"},
      {"&lt; &#65; & &", "&amp;lt; &amp;\\#<!-- -->65; & &"},
  };
  for (const auto& [text, markdown] : cases) EXPECT_EQ(Markdown(text), markdown);
}

TEST(MarkdownText, partsWhatIsTakenForALinkWithoutMarks) {
  EXPECT_EQ(Markdown("http://a.b"), "http:<!-- -->//a.b");
  EXPECT_EQ(Markdown("see WWW.a.b"), "see WWW<!-- -->.a.b");
  EXPECT_EQ(Markdown("a@b.c"), "a@<!-- -->b.c");
  EXPECT_EQ(Markdown("at @ noon @"), "at @ noon @");
  EXPECT_EQ(Markdown("#12 #x"), "\\#<!-- -->12 \\#x");
  EXPECT_EQ(Markdown(":smile: :x :100:"), ":<!-- -->smile: :x :<!-- -->100:");
  EXPECT_EQ(Markdown("$x$"), "<span>$</span>x<span>$</span>");
}

TEST(MarkdownText, keepsLineEndsAndBlanks) {
  EXPECT_EQ(Markdown("a\nb\r\nc"), "a<br>b<br>c");
  EXPECT_EQ(Markdown("\n"), "<br>");
  EXPECT_EQ(Markdown("  a  b  "), "&#32;&#32;a  b&#32;&#32;");
  EXPECT_EQ(Markdown(" "), "&#32;");
  EXPECT_EQ(Markdown("\u00a0a\u3000"), "&#160;a&#12288;");
  EXPECT_EQ(Markdown("a\tb"), "a&#9;b");
  EXPECT_EQ(Markdown(""), "<!-- -->");
}

TEST(MarkdownText, showsWhatATerminalWouldObeyOrNotShow) {
  EXPECT_EQ(Markdown("\x1b[0m"), "\\\\x1b\\[0m");
  EXPECT_EQ(Markdown("a\rb"), "a\\\\x0db");
  EXPECT_EQ(Markdown("\u202e\u200b\ufeff"), "\\\\u202e\\\\u200b\\\\ufeff");
  EXPECT_EQ(Markdown("\xff"), "\xEF\xBF\xBD");
  EXPECT_EQ(Markdown(std::string_view("\0", 1)), "\\\\x00");
}

TEST_F(MarkdownReport, isATableOfGithubsForEachTable) {
  AddCategorical();
  AddScale();
  EXPECT_EQ(Rendered(report), R"(# Codebook

## sex

| Attributes | | Value | Count | Percent |
|:---|:---|:---|---:|---:|
| **Standard Attributes** | Position | 1 | | |
| | Label | Sex of the respondent, as recorded | | |
| **Valid Values** | 1 | Male | 4931 | 48.9% |
| | 2 | Female | 12 | 0.1% |
| **Missing Values** | -9 | No answer | 7 | 0.7% |
| | System | | 20 | 0.2% |

## income

| Attributes | | Value |
|:---|:---|---:|
| **N** | Valid | 9931 |
| **Central Tendency and Dispersion** | Mean | 12,931.500 |
| | Standard Deviation | 431.1234 |
| | Percentile 25 | . |
)");
}

TEST_F(MarkdownReport, keepsCellsAtOnePlaceApart) {
  AddFile();
  EXPECT_EQ(Rendered(report), R"(# Codebook

## File Information

| Attributes | | |
|:---|:---|:---|
| File Name | | survey.csv |
| Documents | | Field work in March.<br>Weighted by age.<br><hr>東京 |
| **Number of Cases** | Unweighted | 12345 |
| | Weighted | &lt;unknown&gt; |
)");
}

TEST_F(MarkdownReport, saysThatATableHasNoRows) {
  Open("empty");
  EXPECT_EQ(Rendered(report), "# Codebook\n\n## empty\n\n(no rows)\n");
}

TEST_F(MarkdownReport, endsWithMethodAndMessages) {
  report.facts.emplace();
  report.facts->notes.push_back({"Weight", "The cases are weighted by ^1.", {"a|b"}});
  report.messages.push_back({runtime::output::Severity::Warning, runtime::output::Source::Data, "two\nlines"});
  report.messages.push_back({runtime::output::Severity::Error, runtime::output::Source::Command, "*"});
  EXPECT_EQ(Rendered(report), R"(# Codebook

# Method

- **Weight**: The cases are weighted by a\|b.

# Messages

- **Warning**: two<br>lines
- **Error**: \*
)");
}

TEST_F(MarkdownReport, marksTheDepthOfARow) {
  BpPivotTable table = procedure->PivotTable(Data("t"), Data("s"), false);
  BpDimension rows = table.Dimension(Fixed("r"), BpPivotTable::kCreationOrder);
  BpGroup outer = rows.Group(Fixed("outer"), true, BpGroup::kCreationOrder);
  outer.Group(Fixed("inner"), true, BpGroup::kCreationOrder).Category(Fixed("deep")).Cell(Data(""));
  outer.Category(Fixed("middle"));
  rows.Category(Fixed("flat"));
  EXPECT_EQ(Rendered(report), R"(# Codebook

## t

| r | | | |
|:---|:---|:---|:---|
| **outer** | **inner** | deep | <!-- --> |
| | middle | | |
| flat | | | |
)");
}

// Whatever the texts are, each table has rows of as many cells as its header, and no line breaks off.
TEST(Markdown, keepsItsShapeForRandomReports) {
  for (std::uint64_t seed = 1; seed <= 300; ++seed) {
    std::istringstream lines(Rendered(RandomReport(seed).Report()));
    std::size_t bars = 0;
    for (std::string line; std::getline(lines, line);) {
      for (std::size_t at = 0; at < line.size();) {
        bool valid = true;
        const char32_t character = runtime::output::NextCharacter(line, at, valid);
        ASSERT_TRUE(valid && !runtime::output::IsHidden(character)) << seed << ": " << line;
      }
      if (line.rfind("|", 0) != 0) {
        bars = 0;
        const bool known = line.empty() || line == "(no rows)" || line.rfind("# ", 0) == 0 ||
                           line.rfind("## ", 0) == 0 || line.rfind("- **", 0) == 0;
        ASSERT_TRUE(known) << seed << ": " << line;
        continue;
      }
      std::size_t here = 0;
      for (std::size_t at = 0; at < line.size(); ++at) {
        if (line[at] == '\\') {
          ++at;
        } else if (line[at] == '|') {
          ++here;
        }
      }
      if (bars == 0) bars = here;
      ASSERT_EQ(here, bars) << seed << ": " << line;
    }
  }
}
