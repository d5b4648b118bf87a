// Descriptors written and read again.
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "runtime/data/dictionary/readdictionary.h"
#include "runtime/data/dictionary/writing/writeddi.h"
#include "runtime/data/dictionary/writing/writetableschema.h"
#include "tests/unit/data/dictionary/writing/randomdescriptor.h"
#include "tests/unit/data/dictionary/writing/samedescriptor.h"
#include "tests/unit/data/open/datafolder.h"

namespace runtime::data {
namespace {

/// As many as `make test-dictionaries` asks for.
unsigned int Descriptors() {
  const char* wanted = std::getenv("CODEBOOK_RANDOM_DESCRIPTORS");
  return wanted ? static_cast<unsigned int>(std::strtoul(wanted, nullptr, 10)) : 300;
}

class Files {
 public:
  TableDescriptor Read(const std::string& name, const std::string& text) {
    std::vector<Note> notes;
    return ReadDictionary({fFolder.Write(name, text), std::nullopt, "-", std::nullopt}, notes);
  }

  static std::string Schema(const TableDescriptor& table) {
    std::ostringstream out;
    WriteTableSchema(table, out);
    return out.str();
  }
  static std::string Package(const TableDescriptor& table) {
    std::ostringstream out;
    WriteDataPackage(table, "made/up.csv", out);
    return out.str();
  }
  static std::string Ddi(const TableDescriptor& table) {
    std::ostringstream out;
    WriteDdi(table, nullptr, out);
    return out.str();
  }

 private:
  DataFolder fFolder;
};

TEST(RoundTrip, tableSchemaKeepsEveryFact) {
  Files files;
  for (unsigned int seed = 1; seed <= Descriptors(); ++seed) {
    const TableDescriptor table = RandomDescriptor(seed).Make(false);
    const TableDescriptor read = files.Read("a.schema.json", Files::Schema(table));
    ASSERT_EQ(AllFacts(table), AllFacts(read)) << "seed " << seed << "\n" << Files::Schema(table);
  }
}

TEST(RoundTrip, dataPackageKeepsEveryFact) {
  Files files;
  for (unsigned int seed = 1; seed <= Descriptors(); ++seed) {
    const TableDescriptor table = RandomDescriptor(seed).Make(true);
    TableDescriptor read = files.Read("datapackage.json", Files::Package(table));
    // A resource must have a name and a path, so they are given to it.
    const auto isMadeUp = [](const ExtraProperty& extra) {
      return extra.json == R"("up")" || extra.json == R"("made/up.csv")";
    };
    auto& extras = read.resourceExtras;
    extras.erase(std::remove_if(extras.begin(), extras.end(), isMadeUp), extras.end());
    ASSERT_EQ(AllFacts(table), AllFacts(read)) << "seed " << seed << "\n" << Files::Package(table);
  }
}

TEST(RoundTrip, ddiKeepsEveryFactOfATableSchema) {
  Files files;
  for (unsigned int seed = 1; seed <= Descriptors(); ++seed) {
    const TableDescriptor table = RandomDescriptor(seed).Make(false);
    const TableDescriptor read = files.Read("a.ddi.xml", Files::Ddi(table));
    ASSERT_EQ(AllFacts(table), AllFacts(read)) << "seed " << seed << "\n" << Files::Ddi(table);
    ASSERT_EQ(Files::Schema(files.Read("a.schema.json", Files::Schema(table))), Files::Schema(read)) << "seed " << seed;
  }
}

TEST(RoundTrip, ddiKeepsEveryFactOfADataPackage) {
  Files files;
  for (unsigned int seed = 1; seed <= Descriptors(); ++seed) {
    const TableDescriptor table = RandomDescriptor(seed).Make(true);
    const TableDescriptor read = files.Read("a.ddi.xml", Files::Ddi(table));
    ASSERT_EQ(AllFacts(table), AllFacts(read)) << "seed " << seed << "\n" << Files::Ddi(table);
  }
}

TEST(RoundTrip, tableSchemaKeepsEveryFactOfADdi) {
  Files files;
  for (unsigned int seed = 1; seed <= Descriptors(); ++seed) {
    const std::string ddi = Files::Ddi(RandomDescriptor(seed).Make(false));
    const std::string schema = Files::Schema(files.Read("a.ddi.xml", ddi));
    ASSERT_EQ(ddi, Files::Ddi(files.Read("a.schema.json", schema))) << "seed " << seed;
  }
}

/// For validation by others: tests/dictionaries names the folder.
TEST(RoundTrip, writesForValidation) {
  const char* folder = std::getenv("CODEBOOK_DICTIONARY_FOLDER");
  if (folder == nullptr) GTEST_SKIP() << "nobody asked for files";
  for (unsigned int seed = 1; seed <= Descriptors(); ++seed) {
    const TableDescriptor table = RandomDescriptor(seed).Make(seed % 2 == 0);
    const std::string base = std::string(folder) + "/" + std::to_string(seed);
    std::ofstream(base + ".ddi.xml") << Files::Ddi(table);
    std::ofstream(base + ".schema.json") << Files::Schema(table);
    std::ofstream(base + ".datapackage.json") << Files::Package(table);
  }
}

}  // namespace
}  // namespace runtime::data
