#include "runtime/output/render/xlsx/xlsx.h"

#include <cstdlib>
#include <filesystem>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/machine/spillfile.h"
#include "runtime/output/language/catalog.h"
#include "runtime/output/render/xlsx/sheet.h"
#include "runtime/output/render/xlsx/workbook.h"
#include "tests/unit/output/randomreport.h"

using runtime::output::CellContent;
using runtime::output::Report;
using runtime::output::Sheet;
using runtime::output::SheetCell;
using runtime::output::SheetLimits;
using runtime::output::Workbook;
using ::testing::HasSubstr;

namespace {

std::string Rendered(const Report& report, const runtime::output::RenderOptions& options = {}) {
  std::ostringstream out;
  runtime::output::NewXlsxRenderer(options)->Render(report, out);
  return out.str();
}

/// TMPDIR while it lives.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(const char* folder) {
    if (const char* before = std::getenv("TMPDIR")) fBefore = before;
    ::setenv("TMPDIR", folder, 1);
  }
  ~TemporaryFolder() {
    if (fBefore)
      ::setenv("TMPDIR", fBefore->c_str(), 1);
    else
      ::unsetenv("TMPDIR");
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

 private:
  std::optional<std::string> fBefore;
};

SheetCell OfNumber(double number, BpFormatSpec format) {
  CellContent content;
  content.kind = CellContent::Kind::Number;
  content.number = number;
  content.format = format;
  content.text = "shown";
  return SheetCell::Of(content);
}

}  // namespace

TEST(Xlsx, sameReportSameBytes) {
  for (std::uint64_t seed = 1; seed < 20; ++seed) {
    const std::string first = Rendered(RandomReport(seed).Report());
    EXPECT_THAT(first, ::testing::StartsWith("PK"));
    EXPECT_EQ(first, Rendered(RandomReport(seed).Report())) << seed;
  }
}

TEST(Xlsx, sheetsHaveNamesInEveryLanguage) {
  const Report report = RandomReport(3).Report();
  for (const std::string& language : runtime::output::Catalog::Languages()) {
    const auto catalog = runtime::output::Catalog::Of(language);
    runtime::output::RenderOptions options;
    options.catalog = catalog.get();
    EXPECT_THAT(Rendered(report, options), ::testing::StartsWith("PK")) << language;
  }
}

TEST(Xlsx, temporaryFilesThatCannotBeMadeStopIt) {
  const TemporaryFolder nowhere("/nonexistent/folder");
  EXPECT_THROW(Rendered(RandomReport(5).Report()), runtime::machine::SpillError);
}

TEST(Xlsx, temporaryFilesLeaveNothingInAnyFolder) {
  const auto folder = std::filesystem::temp_directory_path() / ("xlsx_test." + std::to_string(std::rand()));
  std::filesystem::create_directory(folder);
  {
    const TemporaryFolder ours(folder.c_str());
    Rendered(RandomReport(6).Report());
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder));
  std::filesystem::remove_all(folder);
}

TEST(SheetCell, numbersStayNumbersAndMissingOnesAreText) {
  EXPECT_EQ(OfNumber(12.5, {kFormatF, 0, 2}).kind, SheetCell::Kind::Number);
  EXPECT_EQ(OfNumber(12.5, {kFormatF, 0, 2}).look.numberFormat, "0.00");
  EXPECT_EQ(OfNumber(0.0, {kFormatDate, 11, 0}).kind, SheetCell::Kind::Text);
  EXPECT_EQ(OfNumber(std::numeric_limits<double>::quiet_NaN(), {kFormatF, 0, 2}).kind, SheetCell::Kind::Text);
  EXPECT_EQ(OfNumber(std::numeric_limits<double>::infinity(), {kFormatF, 0, 2}).kind, SheetCell::Kind::Text);
  // Rounded to 16 digits it would be greater than any double.
  EXPECT_EQ(OfNumber(std::numeric_limits<double>::max(), {kFormatF, 0, 2}).kind, SheetCell::Kind::Text);
}

TEST(Sheet, goesOnOnAFurtherSheetWhenItIsFull) {
  Workbook workbook("~");
  SheetLimits limits;
  limits.rows = 3;
  Sheet sheet(workbook, "Values", {SheetCell::Text("head")}, 1, limits);
  const std::vector<SheetCell> row = {SheetCell::Text("row")};
  EXPECT_EQ(sheet.AddRow(row).Link(), "internal:'Values'!A2");
  EXPECT_EQ(sheet.AddRow(row).Link(), "internal:'Values'!A3");
  EXPECT_EQ(sheet.AddRow(row).Link(), "internal:'Values 2'!A2");
  EXPECT_EQ(sheet.rows(), 3U);
  sheet.Finish();
  std::ostringstream out;
  workbook.WriteTo(out);
  EXPECT_THAT(out.str(), HasSubstr("xl/worksheets/sheet2.xml"));
}

TEST(Sheet, linksBeyondTheMostAreTexts) {
  Workbook workbook("~");
  SheetLimits limits;
  limits.links = 1;
  Sheet sheet(workbook, "Index", {}, 0, limits);
  SheetCell cell = SheetCell::Text("text");
  cell.link = "internal:'Index'!A1";
  for (int i = 0; i < 3; ++i) sheet.AddRow({cell});
  sheet.Finish();
  std::ostringstream out;
  EXPECT_NO_THROW(workbook.WriteTo(out));
}

TEST(Workbook, tellsWhereTextsWereCut) {
  Workbook workbook("~");
  Sheet sheet(workbook, "Tables", {}, 0, {});
  sheet.AddRow({SheetCell::Text("short"), SheetCell::Text(std::string(40000, 'a'))});
  ASSERT_EQ(workbook.cuts().size(), 1U);
  EXPECT_EQ(workbook.cuts()[0].place.Link(), "internal:'Tables'!B1");
  EXPECT_EQ(workbook.cuts()[0].characters, 40000U);
}

TEST(Workbook, namesOfSheetsAreAllowedAndDiffer) {
  Workbook workbook("~");
  std::string first;
  std::string second;
  workbook.AddSheet("a[b]:*?/\\'c with a name that is much too long", first);
  workbook.AddSheet("a[b]:*?/\\'c with a name that is much too long", second);
  EXPECT_EQ(first, "a_b_______c with a name that is");
  EXPECT_EQ(second, "a_b_______c with a name that  2");
}
