#include "runtime/data/csv/inputtext.h"

#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "runtime/data/csv/encoding.h"
#include "tests/unit/data/open/datafolder.h"

namespace runtime::data {
namespace {

using testing::HasSubstr;
using namespace std::string_view_literals;

struct Reading {
  std::string text;
  std::vector<Note> notes;
};

Reading Read(std::string_view bytes, const std::optional<std::string>& encoding = std::nullopt) {
  const DataFolder folder;
  Reading reading;
  const InputText input(folder.Write("x.csv", bytes), encoding, reading.notes);
  reading.text = input.text();
  return reading;
}

std::string ErrorOf(const std::string& path, const std::optional<std::string>& encoding = std::nullopt) {
  std::vector<Note> notes;
  try {
    const InputText input(path, encoding, notes);
  } catch (const DataError& error) {
    return error.what();
  }
  return "";
}

TEST(InputText, isTheFileAsItStands) {
  EXPECT_EQ(Read("a,b\r\n\xC3\xA9,\0\n"sv).text, "a,b\r\n\xC3\xA9,\0\n"sv);
  EXPECT_TRUE(Read("a,b\n").notes.empty());
}

TEST(InputText, hasNoByteOrderMark) {
  EXPECT_EQ(Read("\xEF\xBB\xBF"
                 "a,b\n")
                .text,
            "a,b\n");
}

TEST(InputText, readsUtf16WithAByteOrderMark) {
  EXPECT_EQ(Read("\xFF\xFE"
                 "a\0\xE9\0\x3D\xD8\x00\xDE\n\0"sv)
                .text,
            "a\xC3\xA9\xF0\x9F\x98\x80\n");
  EXPECT_EQ(Read("\xFE\xFF\0a\0\xE9\n"sv.substr(0, 6)).text, "a\xC3\xA9");
}

TEST(InputText, keepsPairsTogetherOverItsBuffer) {
  // An odd beginning moves the pairs to every position of the conversion's buffer.
  for (const std::size_t odd : {0U, 1U}) {
    std::string bytes = "\xFF\xFE";
    std::string expected;
    for (std::size_t i = 0; i < odd; ++i) bytes.append("a\0"sv), expected += 'a';
    for (int i = 0; i < 50'000; ++i) bytes.append("\x3D\xD8\x00\xDE"sv), expected += "\xF0\x9F\x98\x80";
    EXPECT_TRUE(Read(bytes).text == expected) << odd;
  }
}

TEST(InputText, readsTheEncodingThatTheDictionaryNames) {
  EXPECT_EQ(Read("for\xEAt\n", "ISO-8859-1").text, "for\xC3\xAAt\n");
  EXPECT_EQ(Read("\x80 5\n", "windows-1252").text, "\xE2\x82\xAC 5\n");
  EXPECT_EQ(Read("\x80 5\n", "cp1252").text, "\xE2\x82\xAC 5\n");
  EXPECT_TRUE(Read("for\xEAt\n", "latin1").notes.empty());
  EXPECT_EQ(Read("\xC3\xA9\n", "utf8").text, "\xC3\xA9\n");
}

TEST(InputText, replacesWhatIsNoUtf8AndCountsIt) {
  const std::string valid = "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9";
  const Reading reading = Read("a" + valid + "\nfor\xEAt,\xE2\x82\n\xED\xA0\x80\n");
  EXPECT_EQ(reading.text,
            "a" + valid + "\nfor\xEF\xBF\xBDt,\xEF\xBF\xBD\xEF\xBF\xBD\n\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\n");
  ASSERT_EQ(reading.notes.size(), 1U);
  EXPECT_FALSE(reading.notes[0].isError);
  EXPECT_THAT(reading.notes[0].text, HasSubstr("x.csv:2: 6 bytes or characters are not UTF-8"));
  EXPECT_THAT(reading.notes[0].text, HasSubstr("windows-1252"));
}

TEST(InputText, replacesWhatTheNamedEncodingDoesNotKnow) {
  const Reading reading = Read("a\n\x81\x82\xFF\n", "Shift_JIS");
  EXPECT_THAT(reading.text, HasSubstr("\xEF\xBF\xBD"));
  ASSERT_EQ(reading.notes.size(), 1U);
  EXPECT_THAT(reading.notes[0].text, HasSubstr("x.csv:2:"));
}

TEST(InputText, refusesAnUnknownEncoding) {
  const DataFolder folder;
  const std::string path = folder.Write("x.csv", "a\n");
  EXPECT_THAT(ErrorOf(path, "klingon-8"), HasSubstr("its encoding \"klingon-8\" is unknown"));
  EXPECT_THAT(ErrorOf(path, ""), HasSubstr("is unknown"));
}

TEST(InputText, refusesWhatIsNoTextTable) {
  const DataFolder folder;
  std::mt19937 random(3);
  std::string bytes = "PK\3\4";
  for (int i = 0; i < 5'000; ++i) bytes += static_cast<char>(random());
  EXPECT_THAT(ErrorOf(folder.Write("x.csv", bytes)), HasSubstr("not a table of text"));
  EXPECT_THAT(ErrorOf(folder.Write("y.csv", "a\0,\0b\0\n\0c,d\n"sv)), HasSubstr("not a table of text"));
}

TEST(InputText, readsWideTextWithoutAMarkAndTellsSo) {
  const Reading reading = Read("a\0,\0b\0\n\0c\0,\0\xE9\0\n\0"sv);
  EXPECT_EQ(reading.text, "a,b\nc,\xC3\xA9\n");
  ASSERT_EQ(reading.notes.size(), 1U);
  EXPECT_THAT(reading.notes[0].text, HasSubstr("read as UTF-16LE"));
}

TEST(InputText, readsTextThatIsNoUtf8AsWhatItsBytesSuggestAndTellsSo) {
  const Reading reading = Read("a\nfor\xEAt\n");
  EXPECT_EQ(reading.text, "a\nfor\xC3\xAAt\n");
  ASSERT_EQ(reading.notes.size(), 1U);
  EXPECT_THAT(reading.notes[0].text, HasSubstr("x.csv: it is not UTF-8 and was read as windows-1252, by its 1 byte"));
  EXPECT_THAT(Read("a\nfor\xEAt\n", "utf-8").text, HasSubstr("\xEF\xBF\xBD")) << "what is said holds";
}

TEST(InputText, readsWideTextThatTheDictionaryNames) { EXPECT_EQ(Read("a\0,\0b\0\n\0"sv, "UTF-16LE").text, "a,b\n"); }

TEST(InputText, namesWhatIsWrongWithAFile) {
  const DataFolder folder;
  EXPECT_THAT(ErrorOf(folder.path() + "/none.csv"), HasSubstr("none.csv: there is no such file"));
  EXPECT_THAT(ErrorOf(folder.path()), HasSubstr("this is a directory"));
  EXPECT_THAT(ErrorOf(folder.Write("empty.csv", "")), HasSubstr("empty.csv: the file is empty"));
}

TEST(InputText, tellsWhyAFileCannotBeOpened) {
  if (geteuid() == 0) GTEST_SKIP() << "the superuser reads every file";
  const DataFolder folder;
  const std::string locked = folder.Write("locked.csv", "a\n");
  std::filesystem::permissions(locked, std::filesystem::perms::none);
  EXPECT_THAT(ErrorOf(locked), HasSubstr("Permission denied"));
}

TEST(InputText, readsWhatIsNoRegularFile) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  ASSERT_EQ(write(ends[1], "a,b\n1,2\n", 8), 8);
  close(ends[1]);
  std::vector<Note> notes;
  const InputText input("/dev/fd/" + std::to_string(ends[0]), std::nullopt, notes);
  EXPECT_EQ(input.text(), "a,b\n1,2\n");
  close(ends[0]);
}

TEST(InputText, readsStandardInput) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  ASSERT_EQ(write(ends[1], "a\n1\n", 4), 4);
  close(ends[1]);
  const int saved = dup(STDIN_FILENO);
  dup2(ends[0], STDIN_FILENO);
  close(ends[0]);
  std::vector<Note> notes;
  const InputText input("-", std::nullopt, notes);
  dup2(saved, STDIN_FILENO);
  close(saved);
  EXPECT_EQ(input.text(), "a\n1\n");
  EXPECT_EQ(input.name(), "standard input");
}

TEST(Utf8, isCheckedTheSameAtEveryPosition) {
  // The check goes over eight bytes at once where it can: a bad byte must be found wherever it stands.
  for (std::size_t at = 0; at < 40; ++at) {
    std::string text(40, 'a');
    text[at] = '\xFF';
    EXPECT_EQ(FirstInvalidUtf8(text), at);
    text.replace(at, 1, "\xF0\x9F\x98\x80");
    EXPECT_EQ(FirstInvalidUtf8(text), std::string_view::npos);
  }
}

}  // namespace
}  // namespace runtime::data
