#include "runtime/data/dictionary/variablenames.h"

#include <random>
#include <string>
#include <unordered_set>
#include <vector>

#include <gtest/gtest.h>

#include "host/data/names.h"

#include "runtime/data/foldedname.h"

namespace runtime::data {
namespace {

using Names = std::vector<std::string>;

TEST(VariableNames, keepsWhatIsANameAlready) {
  EXPECT_EQ(MakeVariableNames({"age", "Größe", "@1", "q1.a"}), (Names{"age", "Größe", "@1", "q1.a"}));
}

TEST(VariableNames, makesOneUnderscoreOfARunOfOtherCharacters) {
  EXPECT_EQ(MakeWellFormed("body mass (kg)"), "body_mass_kg_");
  EXPECT_EQ(MakeWellFormed("ISO3166-1-Alpha-2"), "ISO3166_1_Alpha_2");
  EXPECT_EQ(MakeWellFormed("a \t\n b"), "a_b");
  EXPECT_EQ(MakeWellFormed("a_ b"), "a__b");
  EXPECT_EQ(MakeWellFormed("a\xFF\xFE"
                           "b"),
            "a_b");
}

TEST(VariableNames, putsAtBeforeWhatMayNotBeginAName) {
  EXPECT_EQ(MakeWellFormed("1st"), "@1st");
  EXPECT_EQ(MakeWellFormed("_x"), "@_x");
  EXPECT_EQ(MakeWellFormed("(x"), "@_x");
  EXPECT_EQ(MakeWellFormed("%"), "@_");
}

TEST(VariableNames, numbersAClashWithoutRegardToCase) {
  EXPECT_EQ(MakeVariableNames({"x", "X", "x"}), (Names{"x", "X_2", "x_3"}));
  EXPECT_EQ(MakeVariableNames({"a b", "a-b", "a_b_2"}), (Names{"a_b", "a_b_3", "a_b_2"}));
}

TEST(VariableNames, leavesANameToTheColumnThatHasItAlready) {
  EXPECT_EQ(MakeVariableNames({"a b", "a_b"}), (Names{"a_b_2", "a_b"}));
}

TEST(VariableNames, cutsAtACharacterWithin64Bytes) {
  EXPECT_EQ(MakeWellFormed(std::string(100, 'a')), std::string(64, 'a'));
  const std::string cut = MakeWellFormed(std::string(63, 'a') + "äb");
  EXPECT_EQ(cut, std::string(63, 'a'));
  const Names names = MakeVariableNames({std::string(80, 'a'), std::string(90, 'a')});
  EXPECT_EQ(names[0], std::string(64, 'a'));
  EXPECT_EQ(names[1], std::string(62, 'a') + "_2");
}

TEST(VariableNames, changesAPeriodAtTheEndAndAReservedWord) {
  EXPECT_EQ(MakeWellFormed("Dr."), "Dr_");
  EXPECT_EQ(MakeWellFormed("with"), "with_");
  EXPECT_EQ(MakeWellFormed(std::string(63, 'a') + ".b"), std::string(63, 'a') + "_");
}

TEST(VariableNames, numbersEmptyHeadersByTheirColumn) {
  EXPECT_EQ(MakeVariableNames({"", "x", ""}), (Names{"V1", "x", "V3"}));
  EXPECT_EQ(MakeVariableNames({"v2", ""}), (Names{"v2", "V2_2"}));
}

TEST(VariableNames, takesANulForAForeignCharacter) {
  EXPECT_EQ(MakeVariableNames({std::string("a\0b", 3)}), Names{"a_b"});
}

TEST(VariableNames, namesManyEqualHeadersInLinearTime) {
  const Names names = MakeVariableNames(Names(100000, "same"));
  EXPECT_EQ(names.back(), "same_100000");
}

TEST(VariableNames, givesDistinctWellFormedNamesToAnyHeaders) {
  std::mt19937 random(20240107);
  const Names pieces = {"a", "A", "ä", "Σ", "1", "_", ".", "$", "@", "#", " ", "-", "\xFF", "to", "名", "\xE2\x80\xAE"};
  for (int round = 0; round < 2000; ++round) {
    Names headers(1 + random() % 8);
    for (std::string& header : headers)
      for (std::size_t length = random() % (round % 10 == 0 ? 60 : 4); length > 0; --length)
        header += pieces[random() % pieces.size()];
    std::unordered_set<std::string> folded;
    for (const std::string& name : MakeVariableNames(headers)) {
      EXPECT_EQ(ValidateMAVOName(name.c_str()), 0) << name;
      EXPECT_TRUE(folded.insert(FoldName(name)).second) << name;
    }
  }
}

}  // namespace
}  // namespace runtime::data
