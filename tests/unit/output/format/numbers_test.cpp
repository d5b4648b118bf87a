#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/output/format/kinds.h"
#include "runtime/output/format/valueformat.h"

using runtime::output::FormatNumber;
using runtime::output::FormatText;

namespace {

struct Case {
  double value;
  FormatType type;
  int width;
  int decimals;
  const char* text;
};

void Check(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    EXPECT_EQ(FormatNumber(c.value, {c.type, c.width, c.decimals}), c.text)
        << c.value << " as " << runtime::output::FormatSpecText({c.type, c.width, c.decimals});
  }
}

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInfinity = std::numeric_limits<double>::infinity();

}  // namespace

TEST(PlainNumber, isRoundedToItsDecimals) {
  Check({
      {0, kFormatF, 8, 0, "0"},
      {0, kFormatF, 8, 2, "0.00"},
      {1, kFormatF, 8, 2, "1.00"},
      {0.5, kFormatF, 8, 2, "0.50"},
      {-0.5, kFormatF, 8, 2, "-0.50"},
      {12345.678, kFormatF, 8, 2, "12345.68"},
      {12345.674, kFormatF, 8, 2, "12345.67"},
      {0.999, kFormatF, 8, 2, "1.00"},
      {9.995, kFormatF, 8, 2, "9.99"},  // its binary value is a little less
      {99.999, kFormatF, 8, 2, "100.00"},
      {999999.5, kFormatF, 8, 0, "1000000"},
      {1e15, kFormatF, 8, 0, "1000000000000000"},
      {9007199254740993.0, kFormatF, 8, 0, "9007199254740992"},
      {0.1, kFormatF, 40, 16, "0.1000000000000000"},
      {0.1, kFormatF, 0, 20, "0.10000000000000000555"},
      {1.0 / 3.0, kFormatF, 40, 16, "0.3333333333333333"},
      {123456789.0123456789, kFormatF, 40, 16, "123456789.0123456716537476"},
      {1e-300, kFormatF, 8, 2, "0.00"},
      {5e-324, kFormatF, 8, 4, "0.0000"},
  });
}

TEST(PlainNumber, goesAwayFromZeroExactlyHalfway) {
  Check({
      {0.5, kFormatF, 8, 0, "1"},        {1.5, kFormatF, 8, 0, "2"},
      {2.5, kFormatF, 8, 0, "3"},        {-0.5, kFormatF, 8, 0, "-1"},
      {-2.5, kFormatF, 8, 0, "-3"},      {0.125, kFormatF, 8, 2, "0.13"},
      {0.375, kFormatF, 8, 2, "0.38"},   {-0.125, kFormatF, 8, 2, "-0.13"},
      {9.5, kFormatF, 8, 0, "10"},       {99.5, kFormatF, 8, 0, "100"},
      {0.0625, kFormatF, 8, 3, "0.063"}, {2.675, kFormatF, 8, 2, "2.67"},
      {1.005, kFormatF, 8, 2, "1.00"},   {0.25, kFormatF, 8, 1, "0.3"},
      {0.75, kFormatF, 8, 1, "0.8"},     {4503599627370495.5, kFormatF, 8, 0, "4503599627370496"},
      {9.9375, kFormatF, 8, 3, "9.938"}, {999.96875, kFormatF, 8, 4, "999.9688"},
      {0.5, kFormatPct, 8, 0, "1%"},     {1234.5, kFormatComma, 8, 0, "1,235"},
  });
}

TEST(PlainNumber, neverShowsANegativeZero) {
  Check({
      {-0.0, kFormatF, 8, 0, "0"},
      {-0.0, kFormatF, 8, 2, "0.00"},
      {-0.001, kFormatF, 8, 2, "0.00"},
      {-0.4, kFormatF, 8, 0, "0"},
      {-0.004, kFormatComma, 8, 2, "0.00"},
      {-0.004, kFormatDollar, 8, 2, "$0.00"},
      {-0.04, kFormatPct, 8, 1, "0.0%"},
      {-0.0, kFormatE, 8, 2, "0.00E+00"},
      {-0.0, kFormatG, 8, 2, "0"},
      {-0.3, kFormatN, 4, 0, "0000"},
      {-1e-320, kFormatDot, 8, 2, "0,00"},
  });
}

TEST(PlainNumber, takesTheDigitsItNeedsWhateverTheWidth) {
  Check({
      {123456, kFormatF, 3, 0, "123456"},
      {123456.789, kFormatF, 1, 2, "123456.79"},
      {-123456, kFormatComma, 2, 0, "-123,456"},
      {123456, kFormatDollar, 2, 2, "$123,456.00"},
      {123456, kFormatN, 2, 0, "123456"},
      {123456, kFormatPIBHex, 2, 0, "1E240"},
  });
  const std::string huge = FormatNumber(1e300, {kFormatF, 8, 2});
  EXPECT_EQ(huge.size(), 304u);
  EXPECT_EQ(huge.substr(0, 25), "1000000000000000052504760");
  EXPECT_EQ(huge.substr(301), ".00");
  EXPECT_EQ(FormatNumber(1e300, {kFormatF, 40, 16}).size(), 301u + 17u);
  EXPECT_EQ(FormatNumber(std::numeric_limits<double>::max(), {kFormatComma, 40, 0}).size(), 309u + 102u);
}

TEST(MissingNumber, isAPeriodInEveryFormat) {
  for (int type = 0; type <= 100; ++type) {
    for (const double value : {kNaN, kInfinity, -kInfinity}) {
      EXPECT_EQ(FormatNumber(value, {static_cast<FormatType>(type), 8, 2}), ".") << type;
    }
  }
}

TEST(DecoratedNumber, hasTheSignsOfItsType) {
  Check({
      {1234.5, kFormatComma, 10, 2, "1,234.50"},
      {999, kFormatComma, 10, 0, "999"},
      {1000, kFormatComma, 10, 0, "1,000"},
      {1234567.891, kFormatComma, 10, 1, "1,234,567.9"},
      {-1234567, kFormatComma, 10, 0, "-1,234,567"},
      {999999.999, kFormatComma, 10, 2, "1,000,000.00"},
      {0.5, kFormatComma, 10, 2, "0.50"},
      {1234.5, kFormatDot, 10, 2, "1.234,50"},
      {-1234567.891, kFormatDot, 10, 3, "-1.234.567,891"},
      {12, kFormatDot, 10, 0, "12"},
      {1234.5, kFormatDollar, 10, 2, "$1,234.50"},
      {-1234.5, kFormatDollar, 10, 2, "-$1,234.50"},
      {0, kFormatDollar, 10, 0, "$0"},
      {12.34, kFormatPct, 10, 1, "12.3%"},
      {-12.36, kFormatPct, 10, 1, "-12.4%"},
      {100, kFormatPct, 10, 0, "100%"},
      {1234567, kFormatPct, 10, 0, "1234567%"},
      {1234.5, kFormatCCA, 10, 2, "1,234.50"},
      {1234.5, kFormatCCB, 10, 2, "1,234.50"},
      {-1234.5, kFormatCCC, 10, 2, "-1,234.50"},
      {1234.5, kFormatCCD, 10, 0, "1,235"},
      {1234.25, kFormatCCE, 10, 1, "1,234.3"},
  });
}

TEST(ZeroPaddedNumber, isFilledUpToItsWidth) {
  Check({
      {42, kFormatN, 5, 0, "00042"},
      {0, kFormatN, 5, 0, "00000"},
      {42.5, kFormatN, 8, 2, "00042.50"},
      {99999.6, kFormatN, 5, 0, "100000"},
      {-42, kFormatN, 5, 0, "-42"},
      {42, kFormatN, 0, 0, "42"},
      {42, kFormatZ, 5, 0, "42"},
      {-42.25, kFormatZ, 5, 1, "-42.3"},
  });
}

TEST(ScientificNumber, hasOneDigitBeforeItsPoint) {
  Check({
      {1234.0, kFormatE, 10, 3, "1.234E+03"},
      {1234.0, kFormatE, 10, 0, "1E+03"},
      {0, kFormatE, 10, 3, "0.000E+00"},
      {-0.00012345, kFormatE, 10, 2, "-1.23E-04"},
      {9.9996, kFormatE, 10, 3, "1.000E+01"},
      {9.5, kFormatE, 10, 0, "1E+01"},
      {2.5, kFormatE, 10, 0, "3E+00"},
      {1.25, kFormatE, 10, 1, "1.3E+00"},
      {1e300, kFormatE, 10, 2, "1.00E+300"},
      {5e-324, kFormatE, 10, 3, "4.941E-324"},
      {1e10, kFormatE, 10, 1, "1.0E+10"},
      {123456.0, kFormatE, 30, 20, "1.23456000000000000000E+05"},
  });
}

TEST(BinaryFormats, showTheNumberTheyHold) {
  Check({
      {258, kFormatIB, 4, 0, "258"},
      {-1.5, kFormatIB, 4, 1, "-1.5"},
      {7, kFormatP, 4, 0, "7"},
      {7.25, kFormatPK, 4, 2, "7.25"},
      {255, kFormatPIB, 2, 0, "255"},
      {0.1, kFormatRB, 8, 2, "0.1"},
      {1.0 / 3.0, kFormatRB, 8, 2, "0.3333333333333333"},
      {255, kFormatPIBHex, 4, 0, "00FF"},
      {0, kFormatPIBHex, 2, 0, "00"},
      {65535, kFormatPIBHex, 0, 0, "FFFF"},
      {18446744073709549568.0, kFormatPIBHex, 16, 0, "FFFFFFFFFFFFF800"},
      {18446744073709551616.0, kFormatPIBHex, 16, 0, "18446744073709551616"},
      {-1, kFormatPIBHex, 4, 0, "-1"},
      {1.5, kFormatPIBHex, 4, 1, "1.5"},
      {1, kFormatRBHex, 16, 0, "3FF0000000000000"},
      {-2, kFormatRBHex, 4, 0, "C000000000000000"},
      {0, kFormatRBHex, 16, 0, "0000000000000000"},
  });
}

TEST(GeneralNumber, isTheShortestThatReadsBack) {
  Check({
      {0.1, kFormatG, 8, 2, "0.1"},
      {12, kFormatG, 8, 2, "12"},
      {-1e300, kFormatG, 8, 2, "-1E+300"},
      {1234567.125, kFormatG, 8, 2, "1234567.125"},
      {3, kFormatA, 8, 0, "3"},
      {0.25, kFormatNone, 8, 0, "0.25"},
      {0.25, static_cast<FormatType>(13), 8, 0, "0.25"},
      {0.25, static_cast<FormatType>(99), 8, 0, "0.25"},
  });
}

TEST(TextValue, standsAsItIsOrInHexadecimal) {
  EXPECT_EQ(FormatText("abc", kFormatA), "abc");
  EXPECT_EQ(FormatText("", kFormatA), "");
  EXPECT_EQ(FormatText("Köln", kFormatA), "Köln");
  EXPECT_EQ(FormatText("abc", kFormatF), "abc");
  EXPECT_EQ(FormatText("aZ 0", kFormatAHex), "615A2030");
  EXPECT_EQ(FormatText("\xff", kFormatAHex), "FF");
  EXPECT_EQ(FormatText("", kFormatAHex), "");
}

TEST(FormatSpecText, showsWidthAndDecimalsWhereTheyTellSomething) {
  using runtime::output::FormatSpecText;
  EXPECT_EQ(FormatSpecText({kFormatF, 0, 2}), "F.2");
  EXPECT_EQ(FormatSpecText({kFormatF, 0, 0}), "F.0");
  EXPECT_EQ(FormatSpecText({kFormatPct, 0, 1}), "PCT.1");
  EXPECT_EQ(FormatSpecText({kFormatComma, 0, 4}), "COMMA.4");
  EXPECT_EQ(FormatSpecText({kFormatSDate, 10, 0}), "SDATE10");
  EXPECT_EQ(FormatSpecText({kFormatDTime, 12, 2}), "DTIME12.2");
  EXPECT_EQ(FormatSpecText({static_cast<FormatType>(13), 8, 0}), "badFormat8");
}

TEST(FormatTypeName, isKnownForExactlyTheFormatsThereAre) {
  int known = 0;
  for (int code = 0; code <= 255; ++code) {
    if (runtime::output::FormatTypeName(static_cast<FormatType>(code)) != nullptr) ++known;
  }
  EXPECT_EQ(known, 38);
  EXPECT_STREQ(runtime::output::FormatTypeName(kFormatYMDHMS), "YMDHMS");
  EXPECT_STREQ(runtime::output::FormatTypeName(kFormatPIBHex), "PIBHEX");
}
