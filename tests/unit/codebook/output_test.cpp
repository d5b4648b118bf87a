// What the tables share: element names, hidden attributes, format texts, category values.
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/data/datasource.h"

#include "codebook/cbkoutput.h"
#include "runtime/data/builder.h"
#include "runtime/output/model/report.h"

namespace codebook::test {
namespace {

using runtime::data::DatasetBuilder;

TEST(ElementNames, singleValueShowsTheBareName) { EXPECT_EQ(elementName("Note", 0, 1), "Note"); }

TEST(ElementNames, tenValuesAreNumberedWithTwoDigits) {
  EXPECT_EQ(elementName("name", 0, 10), "name[01]");
  EXPECT_EQ(elementName("name", 8, 10), "name[09]");
  EXPECT_EQ(elementName("name", 9, 10), "name[10]");
}

TEST(ElementNames, haveTheDigitsOfTheCount) {
  EXPECT_EQ(elementName("name", 0, 2), "name[1]");
  EXPECT_EQ(elementName("name", 2, 3), "name[3]");
  EXPECT_EQ(elementName("name", 8, 9), "name[9]");
  EXPECT_EQ(elementName("name", 11, 12), "name[12]");
  EXPECT_EQ(elementName("name", 0, 99), "name[01]");
  EXPECT_EQ(elementName("name", 0, 100), "name[001]");
  EXPECT_EQ(elementName("name", 99, 100), "name[100]");
  EXPECT_EQ(elementName("name", 0, 1000), "name[0001]");
}

TEST(AttributeValue, emptyValueShowsAsOneBlank) {
  EXPECT_EQ(attributeValueText(""), " ");
  EXPECT_EQ(attributeValueText(" "), " ");
  EXPECT_EQ(attributeValueText("x"), "x");
}

TEST(HiddenAttributes, beginWithAnAtOrADollarAndAnAt) {
  EXPECT_TRUE(isHiddenAttribute("@x"));
  EXPECT_TRUE(isHiddenAttribute("@"));
  EXPECT_TRUE(isHiddenAttribute("$@x"));
  EXPECT_FALSE(isHiddenAttribute("$x"));
  EXPECT_FALSE(isHiddenAttribute("x@"));
  EXPECT_FALSE(isHiddenAttribute("$ @x"));
  EXPECT_FALSE(isHiddenAttribute(""));
}

TEST(ReservedAttributes, beginWithADollar) {
  EXPECT_TRUE(isReservedAttribute("$x"));
  EXPECT_TRUE(isReservedAttribute("$@x"));
  EXPECT_FALSE(isReservedAttribute("x$"));
  EXPECT_FALSE(isReservedAttribute(""));
}

MAVO_Format format(std::uint8_t type, std::uint16_t width, std::uint8_t decimals) { return {width, type, decimals}; }

TEST(FormatText, showsDecimalsOnlyWhenThereAreAny) {
  EXPECT_EQ(formatText(format(5, 8, 2)), "F8.2");
  EXPECT_EQ(formatText(format(5, 8, 0)), "F8");
  EXPECT_EQ(formatText(format(1, 20, 0)), "A20");
  EXPECT_EQ(formatText(format(20, 11, 0)), "DATE11");
}

TEST(FormatText, unknownCodeIsABadFormatFollowedByTheWidth) {
  EXPECT_EQ(formatText(format(13, 8, 0)), "badFormat8");
  EXPECT_EQ(formatText(format(13, 8, 2)), "badFormat8.2");
  EXPECT_EQ(formatText(format(0, 4, 0)), "badFormat4");
  EXPECT_EQ(formatText(format(87, 4, 0)), "badFormat4");
  EXPECT_EQ(formatText(format(255, 4, 0)), "badFormat4");
}

TEST(FormatText, namesEveryCodeOfTheTableAndNoOther) {
  const std::map<int, std::string> names = {
      {1, "A"},      {2, "AHEX"},   {3, "COMMA"},  {4, "DOLLAR"},    {5, "F"},      {6, "IB"},     {7, "PIBHEX"},
      {8, "P"},      {9, "PIB"},    {10, "PK"},    {11, "RB"},       {12, "RBHEX"}, {15, "Z"},     {16, "N"},
      {17, "E"},     {20, "DATE"},  {21, "TIME"},  {22, "DATETIME"}, {23, "ADATE"}, {24, "JDATE"}, {25, "DTIME"},
      {26, "WKDAY"}, {27, "MONTH"}, {28, "MOYR"},  {29, "QYR"},      {30, "WKYR"},  {31, "PCT"},   {32, "DOT"},
      {33, "CCA"},   {34, "CCB"},   {35, "CCC"},   {36, "CCD"},      {37, "CCE"},   {38, "EDATE"}, {39, "SDATE"},
      {40, "G"},     {85, "MTIME"}, {86, "YMDHMS"}};
  for (int code = 0; code < 256; ++code) {
    const auto named = names.find(code);
    const std::string name = named == names.end() ? "badFormat" : named->second;
    EXPECT_EQ(formatText(format(static_cast<std::uint8_t>(code), 10, 0)), name + "10") << code;
  }
}

TEST(Texts, ownWordsAreFixedAndTextsFromTheDataAreNot) {
  EXPECT_TRUE(fixedText("Label").content()->fixed);
  EXPECT_FALSE(dataText("Label").content()->fixed);
  EXPECT_TRUE(noneText().content()->fixed);
  EXPECT_EQ(noneText().content()->text, "<none>");
}

TEST(CategoryValue, ofANumericVariableIsTheNumber) {
  DatasetBuilder builder;
  builder.AddNumeric("n", {1});
  const MAVO_DataSource source(builder.Build());
  EXPECT_EQ(CategoryValue(source.GetVariable(0), 2.5, "ignored").obs()->number, 2.5);
}

TEST(CategoryValue, ofAStringVariableIsTheTextPaddedToItsWidth) {
  DatasetBuilder builder;
  builder.AddString("s", {"ab"}).Width(5);
  const MAVO_DataSource source(builder.Build());
  const CategoryValue value(source.GetVariable(0), 0.0, "ab");
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(value.obs()), 5), "ab   ");
}

TEST(CategoryValue, cutsNothingOfATextThatIsWiderThanTheVariable) {
  DatasetBuilder builder;
  builder.AddString("s", {"ab"}).Width(2);
  const MAVO_DataSource source(builder.Build());
  const CategoryValue value(source.GetVariable(0), 0.0, "abcdefgh");
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(value.obs()), 8), "abcdefgh");
}

}  // namespace
}  // namespace codebook::test
