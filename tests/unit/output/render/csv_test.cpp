#include <cmath>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/output/language/catalog.h"
#include "runtime/output/model/grid.h"
#include "runtime/output/render/csvtext.h"
#include "runtime/output/render/renderer.h"
#include "tests/unit/output/randomreport.h"
#include "tests/unit/output/surveyreport.h"

using runtime::output::Report;

namespace {

constexpr std::size_t kFields = 16;

std::string Field(std::string_view text) {
  std::string csv;
  runtime::output::AppendCsvText(csv, text);
  return csv;
}

std::string NumberField(double number) {
  std::string csv;
  runtime::output::AppendCsvNumber(csv, number);
  return csv;
}

std::string Rendered(const Report& report) {
  std::ostringstream out;
  runtime::output::FindReportFormat("csv")->newRenderer({})->Render(report, out);
  return out.str();
}

/// The lines behind the header.
std::string Body(const Report& report) {
  const std::string csv = Rendered(report);
  return csv.substr(csv.find('\n') + 1);
}

// By the rules of RFC 4180.
std::vector<std::vector<std::string>> Parsed(const std::string& csv) {
  std::vector<std::vector<std::string>> records(1, std::vector<std::string>(1));
  bool quoted = false;
  for (std::size_t at = 0; at < csv.size(); ++at) {
    const char c = csv[at];
    if (quoted && c == '"' && at + 1 < csv.size() && csv[at + 1] == '"') {
      records.back().back() += csv[++at];
    } else if (c == '"') {
      quoted = !quoted;
    } else if (!quoted && c == ',') {
      records.back().emplace_back();
    } else if (!quoted && c == '\n') {
      records.emplace_back(1);
    } else {
      records.back().back() += c;
    }
  }
  EXPECT_FALSE(quoted);
  records.pop_back();
  return records;
}

class CsvReport : public SurveyReport {};

}  // namespace

TEST(CsvText, isQuotedWhereItMustBe) {
  EXPECT_EQ(Field("plain text"), "plain text");
  EXPECT_EQ(Field("a,b"), "\"a,b\"");
  EXPECT_EQ(Field("say \"a\""), "\"say \"\"a\"\"\"");
  EXPECT_EQ(Field("a\nb"), "\"a\nb\"");
  EXPECT_EQ(Field("a\r\nb"), "\"a\r\nb\"");
  EXPECT_EQ(Field(" a"), "\" a\"");
  EXPECT_EQ(Field(""), "\"\"");
}

TEST(CsvText, isNoFormula) {
  for (const std::string begin : {"=", "+", "-", "@", "\uFF1D", "\uFF0B", "\uFF0D", "\uFF20"})
    EXPECT_EQ(Field(begin + "1"), "'" + begin + "1");
  EXPECT_EQ(Field("\t1"), "\"'\t1\"");
  EXPECT_EQ(Field("\n1"), "\"'\n1\"");
  EXPECT_EQ(Field("\r\n1"), "\"'\r\n1\"");
  EXPECT_EQ(Field("a=1"), "a=1");
}

TEST(CsvText, saysWhetherAnApostropheIsItsOwn) {
  EXPECT_EQ(Field("'quoted'"), "'quoted'");
  EXPECT_EQ(Field("'=1"), "''=1");
  EXPECT_EQ(Field("'"), "'");
}

TEST(CsvText, showsWhatATerminalWouldObey) {
  EXPECT_EQ(Field("\x1b[0m"), "\\x1b[0m");
  EXPECT_EQ(Field("a\rb"), "\"a\\x0db\"");
  EXPECT_EQ(Field("\u202ea"), "\\u202ea");
  EXPECT_EQ(Field("a\u200bb"), "a\u200bb");
  EXPECT_EQ(Field("\xff"), "\xEF\xBF\xBD");
}

TEST(CsvNumber, readsBackTheSameAndIsShort) {
  EXPECT_EQ(NumberField(-5), "-5");
  EXPECT_EQ(NumberField(0.1), "0.1");
  EXPECT_EQ(NumberField(1.0 / 3), "0.3333333333333333");
  EXPECT_EQ(NumberField(1e300), "1e+300");
  EXPECT_EQ(NumberField(std::numeric_limits<double>::quiet_NaN()), "");
  EXPECT_EQ(NumberField(std::numeric_limits<double>::infinity()), "");
}

TEST_F(CsvReport, hasALineForEachRow) {
  AddCategorical();
  EXPECT_EQ(
      Rendered(report),
      R"(kind,procedure,table_number,table,title,variable,row_number,section,row,value,label,count,percent,text,number,column
row,Codebook,1,Variable Information,sex,sex,1,Standard Attributes,Position,,,,,1,1,
row,Codebook,1,Variable Information,sex,sex,2,Standard Attributes,Label,,,,,"Sex of the respondent, as recorded",,
value,Codebook,1,Variable Information,sex,sex,3,Valid Values,1,1,Male,4931,48.9,,,
value,Codebook,1,Variable Information,sex,sex,4,Valid Values,2,2,Female,12,0.1,,,
value,Codebook,1,Variable Information,sex,sex,5,Missing Values,-9,-9,No answer,7,0.7,,,
row,Codebook,1,Variable Information,sex,sex,6,Missing Values,System,,,20,0.2,,,
)");
}

TEST_F(CsvReport, hasNumbersInFullBesideTheirTexts) {
  AddScale();
  EXPECT_EQ(Body(report), R"(row,Codebook,1,Variable Information,income,income,1,N,Valid,,,,,9931,9931,
row,Codebook,1,Variable Information,income,income,2,Central Tendency and Dispersion,Mean,,,,,"12,931.500",12931.5,
row,Codebook,1,Variable Information,income,income,3,Central Tendency and Dispersion,Standard Deviation,,,,,431.1234,431.12345,
row,Codebook,1,Variable Information,income,income,4,Central Tendency and Dispersion,Percentile 25,,,,,.,,
)");
}

TEST_F(CsvReport, givesASecondCellAtAPlaceALineOfItsOwn) {
  AddFile();
  EXPECT_EQ(Body(report), R"(row,Codebook,1,FileInformation,File Information,,1,,File Name,,,,,survey.csv,,
row,Codebook,1,FileInformation,File Information,,2,,Documents,,,,,"Field work in March.
Weighted by age.
",,
row,Codebook,1,FileInformation,File Information,,2,,Documents,,,,,東京,,
row,Codebook,1,FileInformation,File Information,,3,Number of Cases,Unweighted,,,,,12345,12345,
row,Codebook,1,FileInformation,File Information,,4,Number of Cases,Weighted,,,,,<unknown>,,
)");
}

TEST_F(CsvReport, namesTheColumnOfACellThatHasNoPlace) {
  BpPivotTable table = procedure->PivotTable(Data("t"), Data("s"), false);
  BpDimension rows = table.Dimension(Fixed("r"), BpPivotTable::kCreationOrder);
  BpDimension columns = table.Dimension(Fixed("c"), BpPivotTable::kCreationOrder);
  columns.Position(BpDimension::kColumns, 1, true, false);
  BpCategory range = columns.Group(Fixed("outer"), true, BpGroup::kCreationOrder).Category(Fixed("Range"));
  BpCategory count = columns.Category(Fixed("Count"));
  BpCategory fromData = columns.Category(Data("Percent"));
  rows.Category(Fixed("a"));
  count.Cell(BpNumber(3, BpProcedure::Count()));
  range.Cell(BpNumber(7.5, BpProcedure::Percent()));
  count.Cell(Fixed("none"));
  fromData.Cell(Data("=1"));
  EXPECT_EQ(Body(report), R"(row,Codebook,1,s,t,t,1,,a,,,3,,,,
row,Codebook,1,s,t,t,1,,a,,,,,7.5%,7.5,outer > Range
row,Codebook,1,s,t,t,1,,a,,,,,none,,Count
row,Codebook,1,s,t,t,1,,a,,,,,'=1,,Percent
)");
}

// The words that name the columns are those of the report's language; the header is not.
TEST_F(CsvReport, hasCountsAndPercentsInTheirColumnsInEveryLanguage) {
  const auto german = runtime::output::Catalog::Of("de");
  ASSERT_NE(german, nullptr);
  BpPivotTable table = procedure->PivotTable(Data("t"), Data("s"), false);
  BpDimension rows = table.Dimension(Fixed("r"), BpPivotTable::kCreationOrder);
  BpDimension columns = table.Dimension(Fixed("c"), BpPivotTable::kCreationOrder);
  columns.Position(BpDimension::kColumns, 1, true, false);
  binding.catalog = german.get();
  BpCategory value = columns.Category(Fixed("Value"));
  BpCategory count = columns.Category(Fixed("Count"));
  BpCategory percent = columns.Category(Fixed("Percent"));
  rows.Category(Data("a"));
  value.Cell(Data("b"));
  count.Cell(BpNumber(3, BpProcedure::Count()));
  percent.Cell(BpNumber(7.5, BpProcedure::Percent()));
  runtime::output::RenderOptions options;
  options.catalog = german.get();
  std::ostringstream out;
  runtime::output::FindReportFormat("csv")->newRenderer(options)->Render(report, out);
  const auto records = Parsed(out.str());
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0][11], "count");
  EXPECT_EQ(records[1], (std::vector<std::string>{"row", "Codebook", "1", "s", "t", "t", "1", "", "a", "", "", "3",
                                                  "7.5", "b", "", ""}));
}

TEST_F(CsvReport, hasALineForATableWithoutRows) {
  Open("empty");
  EXPECT_EQ(Body(report), "table,Codebook,1,Variable Information,empty,empty,,,,,,,,,,\n");
}

TEST_F(CsvReport, endsWithMethodAndMessages) {
  report.facts.emplace();
  report.facts->notes.push_back({"Weight", "By ^1.", {"wgt"}});
  report.messages.push_back({runtime::output::Severity::Warning, runtime::output::Source::Data, "=1"});
  report.messages.push_back({runtime::output::Severity::Error, runtime::output::Source::Command, "a, b"});
  EXPECT_EQ(Body(report), R"(note,,,,,,,,Weight,,,,,By wgt.,,
message,,,,,,,warning,data,,,,,'=1,,
message,,,,,,,error,command,,,,,"a, b",,
)");
}

// Every record has all the fields, and no text of theirs is taken for a formula.
TEST(Csv, keepsItsShapeForRandomReports) {
  for (std::uint64_t seed = 1; seed <= 300; ++seed) {
    const Report report = RandomReport(seed).Report();
    std::size_t rows = 0;
    for (const auto& procedure : report.procedures)
      for (const auto& table : procedure->tables) rows += runtime::output::Grid(*table).rows().size();
    std::size_t first = 0;  // lines that begin a row
    std::string before;
    for (const auto& record : Parsed(Rendered(report))) {
      ASSERT_EQ(record.size(), kFields) << seed;
      if (record[0] == "row" || record[0] == "value" || record[0] == "member") {
        const std::string place = record[2] + "/" + record[6];
        if (place != before) ++first;
        before = place;
      }
      for (const std::size_t text : {1U, 3U, 5U, 7U})
        ASSERT_TRUE(record[text].empty() || std::string_view("=+@").find(record[text][0]) == std::string_view::npos);
    }
    ASSERT_EQ(first, rows) << seed;
  }
}
