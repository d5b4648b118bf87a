#include "runtime/data/dictionary/jsonfile.h"

#include <chrono>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/data/dictionary/described.h"

namespace runtime::data {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string ProblemOf(const std::string& text) {
  try {
    ParseJson(text, "d.json");
  } catch (const DataError& error) {
    return error.what();
  }
  return {};
}

std::string FileProblem(const std::string& path) {
  try {
    ReadJsonFile(path);
  } catch (const DataError& error) {
    return error.what();
  }
  return {};
}

TEST(JsonFile, namesLineAndColumnOfWhatIsNoJson) {
  EXPECT_THAT(ProblemOf("{\"a\": 1,\n  \"b\": }"), StartsWith("d.json:2:8: this is no JSON: "));
  EXPECT_THAT(ProblemOf("id,name\n1,2\n"), StartsWith("d.json:1:1: this is no JSON: "));
  EXPECT_THAT(ProblemOf("{\"a\": 1"), StartsWith("d.json:1:8: this is no JSON: "));
  EXPECT_THAT(ProblemOf("{} {}"), StartsWith("d.json:1:4: this is no JSON: "));
  EXPECT_THAT(ProblemOf("{\"a\": \"\xFF\"}"), StartsWith("d.json:1:8: this is no JSON: "));
}

TEST(JsonFile, toleratesAByteOrderMark) { EXPECT_EQ(ParseJson("\xEF\xBB\xBF{\"a\":1}", "d.json")["a"], 1); }

TEST(JsonFile, refusesAnEmptyText) {
  EXPECT_THAT(ProblemOf(""), HasSubstr("d.json: the dictionary is empty"));
  EXPECT_THAT(ProblemOf(" \n\t"), HasSubstr("is empty"));
  EXPECT_THAT(ProblemOf("\xEF\xBB\xBF"), HasSubstr("is empty"));
}

TEST(JsonFile, refusesNesting100000DeepWithoutCrashing) {
  const int deep = 100000;
  const auto begun = std::chrono::steady_clock::now();
  EXPECT_THAT(ProblemOf(std::string(deep, '[') + std::string(deep, ']')), HasSubstr("d.json:1:101: lists and objects"));
  std::string objects;
  for (int i = 0; i < deep; ++i) objects += "{\"a\":";
  EXPECT_THAT(ProblemOf(objects), HasSubstr("nested more than 100 deep"));
  EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(2));
}

TEST(JsonFile, countsNoBracketsInTexts) {
  EXPECT_EQ(ProblemOf("[\"" + std::string(1000, '[') + "\\\"" + std::string(1000, '{') + "\"]"), "");
  EXPECT_EQ(ProblemOf(std::string(100, '[') + std::string(100, ']')), "");
  std::string wide = "[";
  for (int i = 0; i < 1000; ++i) wide += "[],";
  EXPECT_EQ(ProblemOf(wide + "[]]"), "");
}

TEST(JsonFile, refusesANumberThatNoDoubleHolds) {
  EXPECT_THAT(ProblemOf("{\"a\": 1e999}"), StartsWith("d.json:1:11: this is no JSON: number overflow"));
}

TEST(JsonFile, refusesANulCharacterWhereverItStands) {
  EXPECT_EQ(ProblemOf(std::string("{\"a\":1}\0 {", 10)), "d.json:1:8: a NUL character; JSON has none");
  EXPECT_THAT(ProblemOf(std::string("{\n\"a\0\":1}", 10)), StartsWith("d.json:2:3: a NUL character"));
}

TEST(JsonFile, saysThatUtf16IsNotUtf8) {
  EXPECT_THAT(ProblemOf(std::string("\xFF\xFE{\0}\0", 6)), HasSubstr("this is JSON in UTF-16"));
}

TEST(JsonFile, takesTheLastOfPropertiesOfOneNameAndTellsThemOnce) {
  std::vector<Note> notes;
  const Json tree = ParseJson(R"({"a":[{},{"x/y":1,"b":2,"x/y":3,"b":4}],"c":{"d":1}})", "d.json", &notes);
  EXPECT_EQ(tree["a"][1]["x/y"], 3);
  EXPECT_EQ(tree["a"][1]["b"], 4);
  EXPECT_EQ(tree["a"][1].size(), 2U);
  ASSERT_EQ(notes.size(), 1U);
  EXPECT_EQ(notes[0].text,
            "d.json: /a/1/x~1y: this property stands twice in its object, and the last one holds (one of 2 such)");
}

TEST(JsonFile, readsAnObjectOfVeryManyPropertiesInTime) {
  std::string text = "{";
  for (int i = 0; i < 200000; ++i) text += "\"k" + std::to_string(i) + "\":" + std::to_string(i) + ",";
  text += "\"k7\":-1}";
  const auto begun = std::chrono::steady_clock::now();
  std::vector<Note> notes;
  const Json tree = ParseJson(text, "d.json", &notes);
  EXPECT_EQ(tree.size(), 200000U);
  EXPECT_EQ(tree["k7"], -1);
  EXPECT_EQ(notes.size(), 1U);
  EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(20));
}

TEST(JsonFile, keepsTheOrderOfProperties) {
  EXPECT_EQ(ParseJson(R"({"z":1,"a":{"y":[true,null,-2,1.5,"t"],"b":{}}})", "d.json").dump(),
            R"({"z":1,"a":{"y":[true,null,-2,1.5,"t"],"b":{}}})");
}

TEST(JsonFile, namesAFileThatCannotBeRead) {
  const TemporaryFolder folder;
  EXPECT_THAT(FileProblem(folder.Path("none.json")), HasSubstr("none.json: cannot open the dictionary: No such file"));
  EXPECT_THAT(FileProblem(folder.Path()), HasSubstr("this is a directory"));
}

TEST(JsonPlace, writesItsPlaceAsAPointer) {
  const Json tree = ParseJson(R"({"a/b":[{"c~d":1}]})", "d.json");
  const JsonPlace place = JsonPlace(tree, "d.json").Need("a/b").Entries().at(0).Need("c~d");
  EXPECT_EQ(place.Where(), "d.json: /a~1b/0/c~0d");
}

TEST(JsonPlace, takesNullForAbsent) {
  const Json tree = ParseJson(R"({"a":null})", "d.json");
  EXPECT_FALSE(JsonPlace(tree, "d.json").Find("a"));
  EXPECT_THROW(JsonPlace(tree, "d.json").Need("a"), DataError);
}

TEST(JsonPlace, writesScalarsSoThatTheyReadBackTheSame) {
  const Json tree = ParseJson(R"([1,-9,18446744073709551615,0.1,1e300,1.0,-99.5,"x",true,1000000])", "d.json");
  std::string all;
  for (const JsonPlace& entry : JsonPlace(tree, "d.json").Entries()) all += entry.Scalar() + " ";
  EXPECT_EQ(all, "1 -9 18446744073709551615 0.1 1e+300 1 -99.5 x true 1000000 ");
}

}  // namespace
}  // namespace runtime::data
