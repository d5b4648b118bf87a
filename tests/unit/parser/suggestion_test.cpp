#include "runtime/parser/suggestion.h"

#include <gtest/gtest.h>

namespace {

using runtime::parser::NearestKeyword;

const std::vector<std::string> kKeywords = {"POSITION", "LABEL", "TYPE", "MEASURE", "VALUELABELS", "NONE", "MEAN"};

TEST(NearestKeyword, findsALetterLeftOutAddedChangedOrSwapped) {
  EXPECT_EQ(NearestKeyword("LABL", kKeywords), "LABEL");
  EXPECT_EQ(NearestKeyword("LABELL", kKeywords), "LABEL");
  EXPECT_EQ(NearestKeyword("LAVEL", kKeywords), "LABEL");
  EXPECT_EQ(NearestKeyword("LABLE", kKeywords), "LABEL");
  EXPECT_EQ(NearestKeyword("TPYE", kKeywords), "TYPE");
}

TEST(NearestKeyword, isBlindForCase) { EXPECT_EQ(NearestKeyword("positoin", kKeywords), "POSITION"); }

TEST(NearestKeyword, findsWhatAnAbbreviationStandsFor) {
  EXPECT_EQ(NearestKeyword("POS", kKeywords), "POSITION");
  EXPECT_EQ(NearestKeyword("ME", kKeywords), "MEASURE");
}

TEST(NearestKeyword, allowsMoreEditsInALongWord) {
  EXPECT_EQ(NearestKeyword("VALULABLES", kKeywords), "VALUELABELS");
  EXPECT_EQ(NearestKeyword("MODE", kKeywords), "");
}

TEST(NearestKeyword, givesTheNearestOfSeveral) { EXPECT_EQ(NearestKeyword("MEAM", kKeywords), "MEAN"); }

TEST(NearestKeyword, findsNothingForWhatIsFarFromAll) {
  EXPECT_EQ(NearestKeyword("", kKeywords), "");
  EXPECT_EQ(NearestKeyword("X", kKeywords), "");
  EXPECT_EQ(NearestKeyword("KURTOSIS", kKeywords), "");
  EXPECT_EQ(NearestKeyword("5", kKeywords), "");
  EXPECT_EQ(NearestKeyword("X", {"N", "O", "S"}), "");
  EXPECT_EQ(NearestKeyword("LABEL", {}), "");
}

TEST(NearestKeyword, doesNotLookAtAVeryLongWord) {
  EXPECT_EQ(NearestKeyword(std::string(10'000'000, 'L'), kKeywords), "");
}

}  // namespace
