#include "host/data/variable.h"

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/data/records.h"

namespace {

using runtime::data::ValueLabelList;
using runtime::data::VariableRecord;

MAVO_VLImplPointer NumberLabels(const std::vector<std::pair<double, std::string>>& pairs) {
  auto list = std::make_shared<ValueLabelList>();
  for (const auto& [number, label] : pairs) {
    ValueLabelList::Entry entry;
    entry.number.number = number;
    entry.label = label;
    list->entries.push_back(entry);
  }
  return MAVO_VLImplPointer(list);
}

MAVO_VLImplPointer TextLabels(int width, const std::vector<std::pair<std::string, std::string>>& pairs) {
  auto list = std::make_shared<ValueLabelList>();
  list->width = width;
  for (const auto& [text, label] : pairs) {
    ValueLabelList::Entry entry;
    entry.text = text;
    entry.text.resize(static_cast<std::size_t>(width), ' ');
    entry.label = label;
    list->entries.push_back(entry);
  }
  return MAVO_VLImplPointer(list);
}

OBS Number(double value) {
  OBS obs;
  obs.number = value;
  return obs;
}

const OBS* Text(const std::string& padded) { return reinterpret_cast<const OBS*>(padded.data()); }

TEST(ValueLabelMap, walksThePairsAndLeavesTheArgumentsAloneAtTheEnd) {
  MAVO_ValueLabelMap map(NumberLabels({{1, "one"}, {2, "two"}}));
  const OBS* value = nullptr;
  const char* label = nullptr;
  EXPECT_EQ(map.Size(), 2U);
  ASSERT_NE(map.GetNextPair(value, label), 0);
  EXPECT_EQ(value->number, 1);
  EXPECT_STREQ(label, "one");
  ASSERT_NE(map.GetNextPair(value, label), 0);
  EXPECT_EQ(map.GetNextPair(value, label), 0);
  EXPECT_EQ(value->number, 2);
  EXPECT_STREQ(label, "two");
  map.Reset();
  ASSERT_NE(map.GetNextPair(value, label), 0);
  EXPECT_STREQ(label, "one");
}

TEST(ValueLabelMap, findsNumbers) {
  const MAVO_ValueLabelMap map(NumberLabels({{-9, "refused"}, {0, "none"}, {1.5, "one and a half"}}));
  const OBS half = Number(1.5);
  const OBS negativeZero = Number(-0.0);
  const OBS unknown = Number(7);
  const OBS systemMissing = Number(std::numeric_limits<double>::quiet_NaN());
  EXPECT_STREQ(map.GetLabel(&half), "one and a half");
  EXPECT_STREQ(map.GetLabel(&negativeZero), "none");
  EXPECT_EQ(map.GetLabel(&unknown), nullptr);
  EXPECT_EQ(map.GetLabel(&systemMissing), nullptr);
}

TEST(ValueLabelMap, readsATextAsTheNumber) {
  const MAVO_ValueLabelMap map(NumberLabels({{-9, "refused"}, {1, "one"}}));
  EXPECT_STREQ(map.GetLabel(std::string("1")), "one");
  EXPECT_STREQ(map.GetLabel(std::string(" +1.0 ")), "one");
  EXPECT_STREQ(map.GetLabel(std::string("-9")), "refused");
  for (const char* text : {"", " ", "x", "1x", "+-9", "2"}) EXPECT_EQ(map.GetLabel(std::string(text)), nullptr) << text;
}

TEST(ValueLabelMap, findsTextsWithoutRegardToTrailingBlanks) {
  const MAVO_ValueLabelMap map(TextLabels(4, {{"", "blank"}, {"ab", "AB"}, {"abcd", "all"}}));
  EXPECT_STREQ(map.GetLabel(Text("ab  ")), "AB");
  EXPECT_STREQ(map.GetLabel(std::string("ab")), "AB");
  EXPECT_STREQ(map.GetLabel(std::string("ab        ")), "AB");
  EXPECT_STREQ(map.GetLabel(std::string("abcd")), "all");
  EXPECT_STREQ(map.GetLabel(std::string()), "blank");
  EXPECT_EQ(map.GetLabel(std::string("abcde")), nullptr);
  EXPECT_EQ(map.GetLabel(std::string("AB")), nullptr);
}

TEST(ValueLabelMap, ofAVariableWithoutLabelsIsEmpty) {
  const MAVO_ValueLabelMap map{MAVO_VLImplPointer()};
  const OBS one = Number(1);
  const OBS* value = nullptr;
  const char* label = nullptr;
  EXPECT_EQ(map.Size(), 0U);
  EXPECT_EQ(map.GetNextPair(value, label), 0);
  EXPECT_EQ(map.GetLabel(&one), nullptr);
  EXPECT_EQ(map.GetLabel(std::string("1")), nullptr);
}

TEST(Variable, numbersAreMissingByValueAndRange) {
  auto record = std::make_shared<VariableRecord>();
  record->missing.values = {-9};
  record->missing.ranges = {{90, 99}, {1000, std::numeric_limits<double>::infinity()}};
  const MAVO_Variable variable(record);
  for (const double missing : {-9.0, 90.0, 95.5, 99.0, 1e9}) {
    const OBS value = Number(missing);
    EXPECT_NE(variable.IsMissing(&value), 0) << missing;
  }
  for (const double valid : {9.0, 89.9, 100.0, std::numeric_limits<double>::quiet_NaN()}) {
    const OBS value = Number(valid);
    EXPECT_EQ(variable.IsMissing(&value), 0) << valid;
  }
}

TEST(Variable, textsAreMissingOverTheFullWidth) {
  auto record = std::make_shared<VariableRecord>();
  record->width = 10;
  record->missing.texts = {"", "NA"};
  const MAVO_Variable variable(record);
  EXPECT_NE(variable.IsMissing(Text("          ")), 0);
  EXPECT_NE(variable.IsMissing(Text("NA        ")), 0);
  EXPECT_EQ(variable.IsMissing(Text("NA       x")), 0);
  EXPECT_EQ(variable.IsMissing(Text("na        ")), 0);
}

TEST(Variable, givesWhatItsRecordHolds) {
  auto record = std::make_shared<VariableRecord>();
  record->name = "age";
  record->print = {8, kFormatF, 2};
  record->write = {10, kFormatComma, 1};
  record->level = MAVO_Variable_Enumerations::kLevelOrdinal;
  record->role = MAVO_Variable_Enumerations::kRoleSplit;
  const MAVO_Variable original(record);
  const MAVO_Variable copy = original;
  FormatType type = kFormatNone;
  int width = 0;
  int decimals = 0;
  copy.GetFormatEx(type, width, decimals);
  EXPECT_EQ(type, kFormatF);
  EXPECT_EQ(width, 8);
  EXPECT_EQ(decimals, 2);
  EXPECT_EQ(copy.GetWriteFormatEx().type, kFormatComma);
  EXPECT_STREQ(copy.GetName(), "age");
  EXPECT_EQ(copy.GetLabel(), nullptr);
  EXPECT_EQ(copy.GetType(), 0);
  EXPECT_EQ(copy.GetMeasurementLevel(), MAVO_Variable_Enumerations::kLevelOrdinal);
  EXPECT_EQ(copy.GetRole(), MAVO_Variable_Enumerations::kRoleSplit);
}

}  // namespace
