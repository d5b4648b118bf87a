#include "runtime/data/dictionary/headernotes.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/dictionary/variablenames.h"

namespace runtime::data {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> Told(const std::vector<std::string>& headers) {
  std::vector<Note> notes;
  TellChangedHeaders(headers, MakeVariableNames(headers), "x.csv", notes);
  std::vector<std::string> texts;
  for (const Note& note : notes) texts.push_back(note.text);
  return texts;
}

TEST(HeaderNotes, differentHeadersAreNotTold) { EXPECT_THAT(Told({"a", "b c", "1"}), IsEmpty()); }

TEST(HeaderNotes, emptyHeadersAreToldWithTheirNames) {
  EXPECT_THAT(Told({"a", "", "c"}),
              ElementsAre("x.csv: 1 column has no header and got a name from its place: column 2 is V2; name them in "
                          "the file"));
}

TEST(HeaderNotes, headersAreTheSameWithoutRegardToCase) {
  EXPECT_THAT(Told({"a", "b", "A"}),
              ElementsAre("x.csv: 1 column has the header of an earlier column and got a number: \"A\" in column 3 is "
                          "A_2; name each column once in the file"));
}

TEST(HeaderNotes, onlyTheFirstFewAreNamed) {
  EXPECT_THAT(Told(std::vector<std::string>(8)),
              ElementsAre("x.csv: 8 columns have no header and got a name from its place: column 1 is V1, column 2 is "
                          "V2, column 3 is V3, column 4 is V4, column 5 is V5 and 3 more; name them in the file"));
}

}  // namespace
}  // namespace runtime::data
