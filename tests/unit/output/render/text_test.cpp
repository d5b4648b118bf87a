#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "host/output/procedure.h"

#include "runtime/output/model/grid.h"
#include "runtime/output/render/renderer.h"
#include "runtime/output/render/terminaltext.h"
#include "runtime/output/render/textwidth.h"
#include "tests/unit/output/randomreport.h"
#include "tests/unit/output/surveyreport.h"

using runtime::output::DisplayWidth;
using runtime::output::Grid;
using runtime::output::RenderOptions;
using runtime::output::Report;

namespace {

std::string Rendered(const Report& report, RenderOptions options) {
  std::ostringstream out;
  runtime::output::FindReportFormat("text")->newRenderer(options)->Render(report, out);
  return out.str();
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

class TextReport : public SurveyReport {};

}  // namespace

TEST_F(TextReport, putsGroupsBesideTheirRows) {
  AddCategorical();
  EXPECT_EQ(Rendered(report, {80, true, false}), R"(sex
┌────────────────────────────────┬──────────────────┬───────┬─────────┐
│                                │ Value            │ Count │ Percent │
├─────────────────────┬──────────┼──────────────────┴───────┴─────────┤
│ Standard Attributes │ Position │ 1                                  │
│                     │ Label    │ Sex of the respondent, as recorded │
├─────────────────────┼──────────┼──────────────────┬───────┬─────────┤
│ Valid Values        │ 1        │ Male             │  4931 │   48.9% │
│                     │ 2        │ Female           │    12 │    0.1% │
├─────────────────────┼──────────┼──────────────────┼───────┼─────────┤
│ Missing Values      │ -9       │ No answer        │     7 │    0.7% │
│                     │ System   │                  │    20 │    0.2% │
└─────────────────────┴──────────┴──────────────────┴───────┴─────────┘
)");
}

TEST_F(TextReport, putsGroupsAboveTheirRowsOnANarrowPage) {
  AddCategorical();
  EXPECT_EQ(Rendered(report, {50, true, false}), R"(sex
┌────────────┬─────────────────┬───────┬─────────┐
│            │ Value           │ Count │ Percent │
├────────────┴─────────────────┴───────┴─────────┤
│ Standard Attributes                            │
│   Position │ 1                                 │
│   Label    │ Sex of the respondent, as         │
│            │ recorded                          │
├────────────┴───────────────────────────────────┤
│ Valid Values                                   │
│   1        │ Male            │  4931 │   48.9% │
│   2        │ Female          │    12 │    0.1% │
├────────────┴─────────────────┴───────┴─────────┤
│ Missing Values                                 │
│   -9       │ No answer       │     7 │    0.7% │
│   System   │                 │    20 │    0.2% │
└────────────┴─────────────────┴───────┴─────────┘
)");
}

TEST_F(TextReport, drawsNoBarsOnAVeryNarrowPage) {
  AddCategorical();
  EXPECT_EQ(Rendered(report, {34, true, false}), R"(sex
──────────────────────────────────
            Value   Count  Percent
──────────────────────────────────
Standard Attributes               
  Position  1                     
  Label     Sex of the respondent,
            as recorded           
──────────────────────────────────
Valid Values                      
  1         Male     4931    48.9%
  2         Female     12     0.1%
──────────────────────────────────
Missing Values                    
  -9        No          7     0.7%
            answer                
  System               20     0.2%
──────────────────────────────────
)");
}

TEST_F(TextReport, linesNumbersUpAtTheirDecimalSigns) {
  AddScale();
  EXPECT_EQ(Rendered(report, {80, true, false}), R"(income
┌───────────────────────────────────────────┬─────────────┐
│                                           │       Value │
├──────────────────────┬────────────────────┼─────────────┤
│ N                    │ Valid              │   9931      │
├──────────────────────┼────────────────────┼─────────────┤
│ Central Tendency and │ Mean               │ 12,931.500  │
│ Dispersion           │ Standard Deviation │    431.1234 │
│                      │ Percentile 25      │      .      │
└──────────────────────┴────────────────────┴─────────────┘
)");
}

TEST_F(TextReport, showsTheFileWithItsDocumentsOneBelowAnother) {
  AddFile();
  EXPECT_EQ(Rendered(report, {60, true, false}), R"(File Information
┌──────────────────────────────┬──────────────────────┐
│ File Name                    │ survey.csv           │
│ Documents                    │ Field work in March. │
│                              │ Weighted by age.     │
│                              │                      │
│                              │ 東京                 │
├─────────────────┬────────────┼──────────────────────┤
│ Number of Cases │ Unweighted │ 12345                │
│                 │ Weighted   │ <unknown>            │
└─────────────────┴────────────┴──────────────────────┘
)");
}

TEST_F(TextReport, isAsciiOnlyWithoutUtf8) {
  AddFile();
  EXPECT_EQ(Rendered(report, {60, false, false}), R"(File Information
+------------------------------+----------------------+
| File Name                    | survey.csv           |
| Documents                    | Field work in March. |
|                              | Weighted by age.     |
|                              |                      |
|                              | \u6771\u4eac         |
+-----------------+------------+----------------------+
| Number of Cases | Unweighted | 12345                |
|                 | Weighted   | <unknown>            |
+-----------------+------------+----------------------+
)");
}

TEST_F(TextReport, coloursOnlyAddEscapeSequences) {
  AddCategorical();
  AddFile();
  const std::string plain = Rendered(report, {80, true, false});
  std::string coloured = Rendered(report, {80, true, true});
  EXPECT_NE(coloured, plain);
  for (const std::string sequence : {"\x1b[1m", "\x1b[2m", "\x1b[0m"}) {
    for (std::size_t at; (at = coloured.find(sequence)) != std::string::npos;) coloured.erase(at, sequence.size());
  }
  EXPECT_EQ(coloured, plain);
}

TEST_F(TextReport, saysThatATableHasNoRows) {
  VariableTable table = Open("empty");
  table.rows.Group(Fixed("Standard Attributes"), true, BpGroup::kCreationOrder);
  EXPECT_EQ(Rendered(report, {80, true, false}), "empty\n(no rows)\n");
}

TEST_F(TextReport, honoursTheLeastWidthOfDataColumns) {
  BpPivotTable table = procedure->PivotTable(Data("t"), Data("s"), true);
  table.MinDataColumnWidth(140);
  table.Dimension(Fixed("Attributes"), BpPivotTable::kCreationOrder).Category(Fixed("a")).Cell(Data("b"));
  EXPECT_EQ(Lines(Rendered(report, {80, true, false}))[2], "│ a │ b                    │");
  EXPECT_EQ(DisplayWidth(Lines(Rendered(report, {20, true, false}))[2]), 20);
}

TEST_F(TextReport, headsProceduresOnlyWhenThereAreSeveral) {
  AddScale();
  EXPECT_EQ(Rendered(report, {80, true, false}).find("Codebook"), std::string::npos);
  const BpProcedure second("Second", 0);
  const std::string text = Rendered(report, {80, true, false});
  EXPECT_EQ(text.substr(0, text.find("income")), "Codebook\n════════\n\n");
  EXPECT_NE(text.find("\n\nSecond\n══════\n"), std::string::npos);
}

TEST_F(TextReport, survivesHostileLabels) {
  VariableTable table = Open("\x1b]0;title\x07\xe2\x80\xae");
  BpGroup group = table.rows.Group(Data(std::string(40000, 'x')), true, BpGroup::kCreationOrder);
  std::string emoji;
  for (int i = 0; i < 4000; ++i) emoji += "👩‍👩‍👧‍👦";
  for (const std::string& label :
       {std::string(40000, 'y'), emoji, std::string("a\n\n\nb"), std::string("\xe2\x80\x8b"),
        std::string("\r\x08\x1b[2J"), std::string("שלום"), std::string(5000, '\n'), std::string()}) {
    group.Category(Data(label));
    table.value.Cell(Data(label));
    table.count.Cell(BpNumber(1e300, BpProcedure::Count()));
  }
  for (const int width : {20, 40, 80, 200}) {
    const std::string text = Rendered(report, {width, true, false});
    for (const std::string& line : Lines(text)) {
      ASSERT_LE(DisplayWidth(line), width);
      for (const char c : line) ASSERT_TRUE(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F);
    }
    const auto count = [&](char letter) { return std::count(text.begin(), text.end(), letter); };
    EXPECT_GE(count('x'), 40000);
    EXPECT_GE(count('y'), 80000);
    EXPECT_EQ(text.find("\xe2\x80\xae"), std::string::npos);
  }
}

namespace {

constexpr const char* kBoxCharacters[] = {"│", "─", "┌", "┬", "┐", "├", "┼", "┤", "└", "┴", "┘"};

// How often each byte occurs that is neither a blank nor part of the frame.
std::map<char, std::size_t> BytesShown(std::string text) {
  for (const char* character : kBoxCharacters) {
    const std::string_view box = character;
    std::string kept;
    for (std::size_t at = 0; at < text.size();) {
      if (std::string_view(text).substr(at, box.size()) == box) {
        at += box.size();
      } else {
        kept += text[at++];
      }
    }
    text = std::move(kept);
  }
  std::map<char, std::size_t> bytes;
  for (const char c : text)
    if (c != ' ' && c != '\n') ++bytes[c];
  return bytes;
}

void AppendLabel(std::string& all, const runtime::output::SharedContent& content) {
  all += runtime::output::EscapeForTerminal(content->text, true, runtime::output::LineEnds::Keep);
}

// Every label and cell that a table's text has to show, each once.
std::string EverythingIn(const runtime::output::Table& table) {
  std::string all;
  AppendLabel(all, table.title);
  const Grid grid(table);
  if (grid.rows().empty()) return all + "(no rows)";
  std::vector<const runtime::output::Item*> seen;
  bool anyUsed = false;
  for (std::size_t c = 0; c < grid.columns().size(); ++c) anyUsed = anyUsed || grid.IsUsed(c);
  for (std::size_t c = 0; c < grid.columns().size(); ++c) {
    const auto& column = grid.columns()[c];
    if (column.category == nullptr || !(grid.IsUsed(c) || (!anyUsed && c == 0))) continue;
    for (const auto* group : column.groups) AppendLabel(all, group->label);
    AppendLabel(all, column.category->label);
  }
  for (const auto& row : grid.rows()) {
    for (const auto* group : row.groups) {
      if (std::find(seen.begin(), seen.end(), group) != seen.end()) continue;
      seen.push_back(group);
      AppendLabel(all, group->label);
    }
    AppendLabel(all, row.category->label);
    for (const auto& cell : row.category->cells) AppendLabel(all, cell.content);
  }
  return all;
}

}  // namespace

// The narrowest a table can be: two columns of the page for each of its own, and the gaps between them.
TEST(TextTables, keepToTheWidthAndLoseNothing) {
  for (std::uint64_t seed = 0; seed < 2500; ++seed) {
    RandomReport random(seed);
    Report report;
    report.procedures.push_back(std::make_shared<runtime::output::Procedure>());
    const auto table = random.Table();
    report.procedures[0]->tables.push_back(table);
    const int width = 20 + static_cast<int>(random.Below(110));
    const std::string text = Rendered(report, {width, true, false});
    const auto columns = static_cast<int>(Grid(*table).columns().size()) + 1;
    const int possible = std::max(width, 4 * columns - 2);
    int tableWidth = -1;
    for (const std::string& line : Lines(text)) {
      ASSERT_LE(DisplayWidth(line), possible) << "seed " << seed << " width " << width << "\n" << text;
      const bool isTop = line.rfind("┌", 0) == 0 || line.rfind("─", 0) == 0;
      if (tableWidth < 0 && isTop) tableWidth = DisplayWidth(line);
      if (tableWidth < 0) continue;
      ASSERT_EQ(DisplayWidth(line), tableWidth) << "seed " << seed << "\n" << text;
    }
    ASSERT_EQ(BytesShown(text), BytesShown(EverythingIn(*table))) << "seed " << seed << " width " << width << "\n"
                                                                  << text;
  }
}
