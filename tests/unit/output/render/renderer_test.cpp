#include "runtime/output/render/renderer.h"

#include <sstream>

#include <gtest/gtest.h>

#include "tests/unit/output/randomreport.h"

using runtime::output::FindReportFormat;
using runtime::output::ReportFormatOfFile;
using runtime::output::ReportFormats;

TEST(ReportFormats, areFoundByNameAndByFileName) {
  ASSERT_FALSE(ReportFormats().empty());
  EXPECT_EQ(ReportFormats().front().name, "text");
  for (const auto& format : ReportFormats()) {
    EXPECT_EQ(FindReportFormat(format.name), &format);
    EXPECT_EQ(ReportFormatOfFile("/tmp/a report" + std::string(format.ending)), &format);
  }
  EXPECT_EQ(ReportFormatOfFile("report.JSON"), FindReportFormat("json"));
  EXPECT_EQ(FindReportFormat("jso"), nullptr);
  EXPECT_EQ(FindReportFormat(""), nullptr);
  EXPECT_EQ(ReportFormatOfFile("json"), nullptr);
  EXPECT_EQ(ReportFormatOfFile(".json"), nullptr);
  EXPECT_EQ(ReportFormatOfFile("report.json.bak"), nullptr);
}

TEST(ReportFormats, tellAFailedWriteByTheStreamsState) {
  const auto report = RandomReport(12).Report();
  for (const auto& format : ReportFormats()) {
    std::ostringstream closed;
    closed.setstate(std::ios::badbit);
    format.newRenderer({})->Render(report, closed);
    EXPECT_TRUE(closed.bad());
    EXPECT_TRUE(closed.str().empty());
  }
}
