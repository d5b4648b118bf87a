#include "host/data/names.h"

#include <cstring>
#include <string>

#include <gtest/gtest.h>

namespace {

TEST(Names, beginWithALetterAtOrHash) {
  for (const char* name : {"a", "Z", "@x", "#x", "ä", "Ωmega", "名", "я1"})
    EXPECT_EQ(ValidateMAVOName(name), 0) << name;
  for (const char* name : {"", "1a", "_a", ".a", "$a", " a", "-"}) EXPECT_NE(ValidateMAVOName(name), 0) << name;
}

TEST(Names, goOnWithLettersDigitsAndFiveMarks) {
  EXPECT_EQ(ValidateMAVOName("a1._$#@z"), 0);
  EXPECT_EQ(ValidateMAVOName("a٣"), 0);  // a decimal digit of another script
  for (const char* name : {"a b", "a-b", "a\tb", "a,b", "a\x80", "a\xC3", "a²", "a\xED\xA0\x80"})
    EXPECT_NE(ValidateMAVOName(name), 0) << name;
}

TEST(Names, haveAtMost64Bytes) {
  EXPECT_EQ(ValidateMAVOName(std::string(64, 'a').c_str()), 0);
  EXPECT_NE(ValidateMAVOName(std::string(65, 'a').c_str()), 0);
  std::string twoBytesEach;
  for (int i = 0; i < 32; ++i) twoBytesEach += "ä";
  EXPECT_EQ(ValidateMAVOName(twoBytesEach.c_str()), 0);
  EXPECT_NE(ValidateMAVOName((twoBytesEach + "a").c_str()), 0);
}

TEST(Names, doNotEndWithAPeriod) {
  EXPECT_NE(ValidateMAVOName("a."), 0);
  EXPECT_EQ(ValidateMAVOName("a.b"), 0);
}

TEST(Names, areNoneOfTheReservedWords) {
  for (const char* word : {"ALL", "AND", "BY", "EQ", "GE", "GT", "LE", "LT", "NE", "NOT", "OR", "TO", "WITH"}) {
    EXPECT_NE(ValidateMAVOName(word), 0) << word;
    std::string lower = word;
    for (char& letter : lower) letter = static_cast<char>(letter + 32);
    EXPECT_NE(ValidateMAVOName(lower.c_str()), 0) << lower;
  }
  EXPECT_EQ(ValidateMAVOName("ALLY"), 0);
}

TEST(Names, nullIsNoName) { EXPECT_NE(ValidateMAVOName(nullptr), 0); }

TEST(NameComparison, foldsCaseOfEveryScript) {
  EXPECT_EQ(MAVOMBstricmp_A("Größe", "GRÖßE"), 0);
  EXPECT_EQ(MAVOMBstricmp_A("ΣΑΣ", "σας"), 0);  // both small sigmas fold to one
  EXPECT_EQ(MAVOMBstricmp_A("ЖЁ", "жё"), 0);
  EXPECT_NE(MAVOMBstricmp_A("strasse", "straße"), 0);  // simple folding changes no length
  EXPECT_NE(MAVOMBstricmp_A("a", "ä"), 0);
}

TEST(NameComparison, givesTheOrderOfTheFoldedTexts) {
  EXPECT_LT(MAVOMBstricmp_A("alpha", "BETA"), 0);
  EXPECT_GT(MAVOMBstricmp_A("b", "A"), 0);
  EXPECT_LT(MAVOMBstricmp_A("ab", "ABC"), 0);
  EXPECT_LT(MAVOMBstricmp_A("", "a"), 0);
  EXPECT_LT(MAVOMBstricmp_A("z", "Ä"), 0);
}

TEST(NameComparison, takesBadBytesAsTheyStand) {
  EXPECT_EQ(MAVOMBstricmp_A("a\xFF", "A\xFF"), 0);
  EXPECT_NE(MAVOMBstricmp_A("a\xFF", "a\xFE"), 0);
  EXPECT_NE(MAVOMBstricmp_A("\xC3", "\xE9"), 0);
}

TEST(NameComparison, endsAtTheLengthOrTheTextsEnd) {
  EXPECT_EQ(MAVOMBstrnicmp_A("abcX", "ABCY", 3), 0);
  EXPECT_NE(MAVOMBstrnicmp_A("abcX", "ABCY", 4), 0);
  EXPECT_EQ(MAVOMBstrnicmp_A("ab", "AB", 100), 0);
  EXPECT_NE(MAVOMBstrnicmp_A("ab", "ABC", 100), 0);
  EXPECT_EQ(MAVOMBstrnicmp_A("x", "y", 0), 0);
}

TEST(FixedCopy, copiesWithoutTerminatorAndLeavesTheRest) {
  char buffer[6] = {'.', '.', '.', '.', '.', '.'};
  MAVOMBCopyToFixed_A(buffer, sizeof buffer, "abc", 3);
  EXPECT_EQ(std::string(buffer, sizeof buffer), "abc...");
}

TEST(FixedCopy, leavesOutACharacterThatDoesNotFit) {
  char buffer[4] = {'.', '.', '.', '.'};
  const std::string text = "abcäd";
  MAVOMBCopyToFixed_A(buffer, sizeof buffer, text.data(), text.size());
  EXPECT_EQ(std::string(buffer, sizeof buffer), "abc.");
}

TEST(VarName, keepsItsText) {
  const MavoVarName name("Größe");
  EXPECT_STREQ(name.c_str(), "Größe");
  EXPECT_EQ(MavoVarName(std::string("x")).text(), "x");
}

}  // namespace
