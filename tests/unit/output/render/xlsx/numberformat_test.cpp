#include "runtime/output/render/xlsx/numberformat.h"

#include <gtest/gtest.h>

using runtime::output::WorkbookNumberFormat;

TEST(WorkbookNumberFormat, showsAsManyDecimalsAsTheFormat) {
  EXPECT_EQ(WorkbookNumberFormat({kFormatF, 0, 0}), "0");
  EXPECT_EQ(WorkbookNumberFormat({kFormatF, 8, 2}), "0.00");
  EXPECT_EQ(WorkbookNumberFormat({kFormatComma, 12, 1}), "#,##0.0");
  EXPECT_EQ(WorkbookNumberFormat({kFormatDollar, 0, 2}), "\"$\"#,##0.00");
  EXPECT_EQ(WorkbookNumberFormat({kFormatE, 0, 3}), "0.000E+00");
  EXPECT_EQ(WorkbookNumberFormat({kFormatF, 0, 200}), "0." + std::string(30, '0'));
}

TEST(WorkbookNumberFormat, percentsAreNotMultiplied) {
  EXPECT_EQ(WorkbookNumberFormat({kFormatPct, 0, 1}), "0.0\"%\"");
}

TEST(WorkbookNumberFormat, zerosBeforeANumberAreOnlyBeforePositiveOnes) {
  EXPECT_EQ(WorkbookNumberFormat({kFormatN, 6, 0}), "000000;-0");
  EXPECT_EQ(WorkbookNumberFormat({kFormatN, 6, 2}), "000.00;-0.00");
}

TEST(WorkbookNumberFormat, whatIsShownByWordsOrDatesHasNone) {
  for (const FormatType type :
       {kFormatDate, kFormatDateTime, kFormatTime, kFormatWkDay, kFormatMonth, kFormatPIBHex, kFormatRBHex})
    EXPECT_EQ(WorkbookNumberFormat({type, 10, 0}), "");
}
