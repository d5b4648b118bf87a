// DDI-Codebooks that were damaged at random: they are read or refused with their name, and nothing else happens.
#include <fstream>
#include <random>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/unit/data/dictionary/ddi/ddi.h"

namespace runtime::data {
namespace {

std::string ContentOf(const std::string& name) {
  std::ifstream file(DdiPath(name), std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  EXPECT_FALSE(text.str().empty());
  return text.str();
}

/// Reads; true when the document was taken.
bool Taken(const std::string& text, const TemporaryFolder& folder) {
  DdiOptions options;
  options.headers = [] { return std::vector<std::string>{"hid", "age", "geschlecht_weiblich"}; };
  const std::string path = folder.Write("study.xml", text);
  const DdiReading reading = ReadDdiFile(path, options);
  if (reading.error.empty()) {
    EXPECT_FALSE(reading.table.fields.empty());
    return true;
  }
  EXPECT_NE(reading.error.find(path), std::string::npos) << reading.error;
  return false;
}

const char* const kDocuments[] = {"german/studies/cdl_instrumente.xml", "german/rules/valid_sample.xml",
                                  "tiny/101.xml"};

TEST(DamagedDdi, cutAnywhereIsRefused) {
  const TemporaryFolder folder;
  for (const char* name : kDocuments) {
    const std::string whole = ContentOf(name);
    EXPECT_TRUE(Taken(whole, folder));
    const std::size_t end = whole.rfind('>');
    for (std::size_t length = 1; length < end; length += 1 + end / 150)
      EXPECT_FALSE(Taken(whole.substr(0, length), folder)) << name << " " << length;
  }
}

TEST(DamagedDdi, isReadOrRefusedWhateverBytesChange) {
  const TemporaryFolder folder;
  std::mt19937 random(20261121);
  const std::string bytes("<>/&;\"'= \n!?-[]:a1\0\x80\xFF\xC3", 24);
  int taken = 0;
  int rounds = 0;
  for (const char* name : kDocuments) {
    const std::string whole = ContentOf(name);
    for (int round = 0; round < 300; ++round, ++rounds) {
      std::string text = whole;
      for (std::size_t changes = 1 + random() % 4; changes > 0; --changes) {
        const std::size_t at = random() % text.size();
        switch (random() % 4) {
          case 0:
            text[at] = bytes[random() % bytes.size()];
            break;
          case 1:
            text.erase(at, 1 + random() % 30);
            break;
          case 2:
            text.insert(at, 1, bytes[random() % bytes.size()]);
            break;
          default: {  // a part goes elsewhere
            const std::string part = text.substr(at, 1 + random() % 80);
            text.insert(random() % text.size(), part);
          }
        }
        if (text.empty()) text = " ";
      }
      taken += Taken(text, folder) ? 1 : 0;
    }
  }
  EXPECT_GT(taken, rounds / 50);
  EXPECT_LT(taken, rounds);
}

TEST(DamagedDdi, isReadOrRefusedWhateverWordsChange) {
  const TemporaryFolder folder;
  std::mt19937 random(20261122);
  const std::string whole = ContentOf("german/studies/cdl_instrumente.xml");
  const char* const words[] = {"var",   "varGrp",       "catgry", "labl",     "missing='Y'", "files='F9'",
                               "",      "multipleResp", "V_nps",  "type",     "name",        "ID",
                               "notes", "codeBook",     "1e999",  "character"};
  int taken = 0;
  for (int round = 0; round < 300; ++round) {
    std::string text = whole;
    for (int changes = 0; changes < 3; ++changes) {
      const std::string from = words[random() % std::size(words)];
      const std::size_t at = from.empty() ? 0 : text.find(from, random() % text.size());
      if (at != std::string::npos) text.replace(at, from.size(), words[random() % std::size(words)]);
    }
    taken += Taken(text, folder) ? 1 : 0;
  }
  EXPECT_GT(taken, 10);
}

}  // namespace
}  // namespace runtime::data
