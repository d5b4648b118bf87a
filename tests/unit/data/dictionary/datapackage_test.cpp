#include "runtime/data/dictionary/datapackage.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/data/dictionary/described.h"

namespace runtime::data {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// A package in a folder of its own, with a data file.
class Package : public testing::Test {
 protected:
  Package() { fFolder.Write("data.csv", "a\n1\n"); }

  TableDescriptor Read(const std::string& package, const std::optional<std::string>& resource = {},
                       const std::optional<std::string>& dataPath = {}) {
    fNotes.clear();
    return ReadDictionary({fFolder.Write("datapackage.json", package), resource, dataPath}, fNotes);
  }
  std::string Problem(const std::string& package, const std::optional<std::string>& resource = {},
                      const std::optional<std::string>& dataPath = {}) {
    try {
      Read(package, resource, dataPath);
    } catch (const DataError& error) {
      return error.what();
    }
    return {};
  }
  static std::string OneResource(const std::string& properties, const std::string& ofPackage = "") {
    return R"({)" + ofPackage + R"("resources":[{"name":"r",)" + properties + "}]}";
  }
  std::string PathProblem(const std::string& path) { return Problem(OneResource("\"path\":\"" + path + "\"")); }

  TemporaryFolder fFolder;
  std::vector<Note> fNotes;
};

TEST_F(Package, givesTheOnlyResource) {
  const TableDescriptor table = Read(OneResource(R"("path":"data.csv","schema":{"fields":[{"name":"a"}]})"));
  EXPECT_THAT(table.dataPaths, ElementsAre(fFolder.Path("data.csv")));
  EXPECT_EQ(table.fields.size(), 1U);
  EXPECT_TRUE(table.hasSchema);
}

TEST_F(Package, givesANamelessResourceByItsPath) {
  fFolder.Write("two.csv", "b\n");
  const std::string package = R"({"resources":[{"path":"data.csv","title":"1"},{"path":"two.csv","title":"2"}]})";
  EXPECT_EQ(Read(package, "two.csv").label, "2");
}

TEST_F(Package, withoutASchemaLeavesAllColumnsToInference) {
  const TableDescriptor table = Read(OneResource(R"("path":"data.csv")"));
  EXPECT_FALSE(table.hasSchema);
  ASSERT_EQ(table.missingValues.size(), 1U);
  EXPECT_EQ(table.missingValues[0].value, "");
}

TEST_F(Package, ofSeveralResourcesGivesTheOneThatIsNamed) {
  fFolder.Write("two.csv", "b\n");
  const std::string package =
      R"({"resources":[{"name":"one","path":"data.csv"},{"name":"two","path":"two.csv"},{"path":"data.csv"}]})";
  EXPECT_THAT(Read(package, "two").dataPaths, ElementsAre(EndsWith("/two.csv")));
  EXPECT_THAT(Problem(package), HasSubstr("choose one with --resource NAME: one, two, (no name) \"data.csv\""));
  EXPECT_THAT(Problem(package, "three"), HasSubstr("there is no resource \"three\"; the package holds: one, two"));
}

TEST_F(Package, givesTheResourceThatListsTheDataFile) {
  fFolder.Write("sub/two.csv", "b\n");
  const std::string package =
      R"({"resources":[{"name":"one","path":"data.csv","title":"1"},{"name":"two","path":["x.csv","sub/two.csv"],"title":"2"}]})";
  EXPECT_EQ(Read(package, {}, fFolder.Path("sub/../sub/two.csv")).label, "2");
  EXPECT_THAT(Read(package, {}, fFolder.Path("data.csv")).dataPaths, IsEmpty());
  EXPECT_THAT(Problem(package, {}, fFolder.Path("other.csv")), HasSubstr("choose one"));
  EXPECT_EQ(Read(OneResource(R"("path":"data.csv","title":"only")"), {}, fFolder.Path("other.csv")).label, "only");
}

TEST_F(Package, withoutResourcesIsAnError) {
  EXPECT_THAT(Problem(R"({"resources":[]})"), HasSubstr("/resources: the package holds no resource"));
  EXPECT_THAT(Problem(R"({"resources":{}})"), HasSubstr("/resources: this must be a list"));
  EXPECT_THAT(Problem(R"({"name":"x"})"), HasSubstr("this is no dictionary"));
  EXPECT_THAT(Problem("[]"), HasSubstr("this is no dictionary"));
}

TEST_F(Package, refusesAbsolutePaths) {
  fFolder.Write("../codebook-elsewhere.csv", "");
  for (const char* path : {"/etc/passwd", "\\\\server\\\\x.csv", "C:/x.csv"})
    EXPECT_THAT(PathProblem(path), HasSubstr("/resources/0/path: the path \"")) << path;
  std::filesystem::remove(fFolder.Path("../codebook-elsewhere.csv"));
}

TEST_F(Package, refusesStepsToTheParent) {
  for (const char* path : {"..", "../x.csv", "a/../../x.csv", "sub/../data.csv", "..\\\\x.csv"})
    EXPECT_THAT(PathProblem(path), HasSubstr("is refused: it must lead into the folder")) << path;
  EXPECT_THAT(PathProblem("..data.csv"), HasSubstr("there is no file"));
}

TEST_F(Package, refusesLinksThatLeaveTheFolder) {
  const TemporaryFolder elsewhere;
  elsewhere.Write("secret.csv", "a\n");
  std::filesystem::create_symlink(elsewhere.Path("secret.csv"), fFolder.Path("link.csv"));
  std::filesystem::create_symlink(elsewhere.Path(), fFolder.Path("sub"));
  std::filesystem::create_symlink(fFolder.Path("data.csv"), fFolder.Path("inside.csv"));
  std::filesystem::create_symlink(fFolder.Path("loop.csv"), fFolder.Path("loop.csv"));
  EXPECT_THAT(PathProblem("link.csv"), HasSubstr("a link in it leaves the folder"));
  EXPECT_THAT(PathProblem("sub/secret.csv"), HasSubstr("a link in it leaves the folder"));
  EXPECT_THAT(PathProblem("sub/none.csv"), HasSubstr("a link in it leaves the folder"));
  EXPECT_THAT(PathProblem("loop.csv"), Not(IsEmpty()));
  EXPECT_EQ(PathProblem("inside.csv"), "");
}

TEST_F(Package, isReadThroughALinkToItsFolder) {
  const TemporaryFolder elsewhere;
  Read(OneResource(R"("path":"data.csv")"));
  std::filesystem::create_symlink(fFolder.Path(), elsewhere.Path("here"));
  const TableDescriptor table = ReadDictionary({elsewhere.Path("here/datapackage.json"), {}, {}}, fNotes);
  EXPECT_THAT(table.dataPaths, ElementsAre(elsewhere.Path("here/data.csv")));
}

TEST_F(Package, refusesAddresses) {
  EXPECT_THAT(PathProblem("https://example.org/data.csv"), HasSubstr("is on the network, and nothing is fetched"));
  EXPECT_THAT(PathProblem("s3://bucket/data.csv"), HasSubstr("is on the network"));
}

TEST_F(Package, refusesEmptyMissingAndDamagedPaths) {
  EXPECT_THAT(PathProblem(""), HasSubstr("the path is empty"));
  EXPECT_THAT(PathProblem("none.csv"), HasSubstr("there is no file \"none.csv\""));
  EXPECT_THAT(PathProblem("data.csv\\u0000.txt"), HasSubstr("NUL"));
  EXPECT_THAT(Problem(OneResource(R"("path":1)")), HasSubstr("/resources/0/path: this must be a text"));
  EXPECT_THAT(Problem(OneResource(R"("title":"t")")), HasSubstr("the resource names no data"));
}

TEST_F(Package, checksEveryPathOfAList) {
  EXPECT_THAT(Read(OneResource(R"("path":["data.csv"])")).dataPaths, ElementsAre(fFolder.Path("data.csv")));
  EXPECT_THAT(Problem(OneResource(R"("path":["data.csv","../x.csv"])")), HasSubstr("/resources/0/path/1: "));
}

TEST_F(Package, readsASchemaInAFileOfTheFolder) {
  fFolder.Write("schemas/s.json", R"({"fields":[{"name":"a","title":"A"}]})");
  EXPECT_EQ(Read(OneResource(R"("path":"data.csv","schema":"schemas/s.json")")).fields.at(0).title, "A");
  EXPECT_THAT(Problem(OneResource(R"("path":"data.csv","schema":"../s.json")")), HasSubstr("/resources/0/schema: "));
  EXPECT_THAT(Problem(OneResource(R"("path":"data.csv","schema":"none.json")")), HasSubstr("there is no file"));
  fFolder.Write("bad.json", R"({"fields":[{"name":1}]})");
  EXPECT_THAT(Problem(OneResource(R"("path":"data.csv","schema":"bad.json")")),
              HasSubstr("bad.json: /fields/0/name: "));
  fFolder.Write("list.json", "[]");
  EXPECT_THAT(Problem(OneResource(R"("path":"data.csv","schema":"list.json")")), HasSubstr("holds no JSON object"));
}

TEST_F(Package, readsTheLocalCopyOfASchemaNamedByItsAddress) {
  const std::string package = OneResource(R"("path":"data.csv","schema":"https://example.org/1.0/s.json")");
  EXPECT_THAT(Problem(package), HasSubstr("save it beside the descriptor as \"s.json\""));
  fFolder.Write("schemas/s.json", R"({"fields":[{"name":"a","type":"any"}]})");
  EXPECT_EQ(Read(package).fields.size(), 1U);
  ASSERT_EQ(fNotes.size(), 1U);
  EXPECT_THAT(fNotes[0].text, HasSubstr("was not fetched; its local copy"));
}

TEST_F(Package, readsTheCopyInTheFolderOfSchemasFirst) {
  const TemporaryFolder schemas;
  const std::string path = fFolder.Write(
      "datapackage.json", OneResource(R"("path":"data.csv","schema":"https://example.org/1.0/s.json?v=1#top")"));
  fFolder.Write("s.json", R"({"fields":[{"name":"a","title":"beside"}]})");
  schemas.Write("s.json", R"({"fields":[{"name":"a","title":"by name"}]})");
  const auto title = [&] {
    return ReadDictionary({path, {}, {}, schemas.Path()}, fNotes).fields.at(0).title.value_or("");
  };
  EXPECT_EQ(title(), "by name");
  schemas.Write("example.org/1.0/s.json", R"({"fields":[{"name":"a","title":"by address"}]})");
  EXPECT_EQ(title(), "by address");
}

TEST_F(Package, looksForNoCopyOutsideOfItsFolders) {
  const TemporaryFolder elsewhere;
  elsewhere.Write("s.json", R"({"fields":[]})");
  std::filesystem::create_symlink(elsewhere.Path("s.json"), fFolder.Path("s.json"));
  EXPECT_THAT(Problem(OneResource(R"("path":"data.csv","schema":"http://example.org/s.json")")),
              HasSubstr("in a folder that --schemas names"));
  for (const char* address : {"http://example.org/..", "http://example.org/", "http://", "http://x/a/../.."})
    EXPECT_THAT(Problem(OneResource(std::string(R"("path":"data.csv","schema":")") + address + "\"")),
                HasSubstr("nothing is fetched"))
        << address;
}

TEST_F(Package, readsTheDialect) {
  const TextDialect dialect = Read(OneResource(R"("path":"data.csv","encoding":"ISO-8859-1","dialect":{"delimiter":";",
      "quoteChar":"'","doubleQuote":false,"header":false,"skipInitialSpace":true,"lineTerminator":"\r\n"})"))
                                  .dialect;
  EXPECT_EQ(dialect.encoding, "ISO-8859-1");
  EXPECT_EQ(dialect.delimiter, ";");
  EXPECT_EQ(dialect.quoteChar, "'");
  EXPECT_EQ(dialect.doubleQuote, false);
  EXPECT_EQ(dialect.header, false);
  EXPECT_EQ(dialect.skipInitialSpace, true);
  EXPECT_THAT(fNotes, IsEmpty());
  fFolder.Write("dialect.json", R"({"delimiter":"\t","escapeChar":"\\"})");
  EXPECT_EQ(Read(OneResource(R"("path":"data.csv","dialect":"dialect.json")")).dialect.delimiter, "\t");
  EXPECT_EQ(Read(OneResource(R"("path":"data.csv","dialect":"dialect.json")")).dialect.escapeChar, "\\");
  EXPECT_THAT(fNotes, IsEmpty());
}

TEST_F(Package, leavesTheDialectToTheDataWhereNothingIsSaid) {
  const TextDialect dialect = Read(OneResource(R"("path":"data.csv")")).dialect;
  EXPECT_FALSE(dialect.delimiter || dialect.quoteChar || dialect.doubleQuote || dialect.header || dialect.encoding);
}

TEST_F(Package, readsTheRestOfTheDialect) {
  const TextDialect dialect =
      Read(OneResource(R"("path":"data.csv","dialect":{"delimiter":"||","escapeChar":"\\","nullSequence":"\\N",
      "lineTerminator":";","commentChar":"//","commentRows":[9,4],"headerRows":[2,1],"headerJoin":"-",
      "caseSensitiveHeader":false,"csvddfVersion":1.2})"))
          .dialect;
  EXPECT_EQ(dialect.delimiter, "||");
  EXPECT_EQ(dialect.nullSequence, "\\N");
  EXPECT_EQ(dialect.lineTerminator, ";");
  EXPECT_EQ(dialect.commentChar, "//");
  EXPECT_THAT(dialect.commentRows, ElementsAre(4, 9));
  EXPECT_THAT(dialect.headerRows, ElementsAre(1, 2));
  EXPECT_EQ(dialect.headerJoin, "-");
  EXPECT_EQ(dialect.caseSensitiveHeader, false);
  ASSERT_EQ(dialect.extras.size(), 1U);
  EXPECT_EQ(dialect.extras[0].name, "csvddfVersion");
  EXPECT_EQ(dialect.extras[0].json, "1.2");
  EXPECT_THAT(fNotes, IsEmpty());
}

TEST_F(Package, refusesADialectThatCannotBeMeant) {
  const auto problem = [&](const std::string& property) {
    return Problem(OneResource(R"("path":"data.csv","dialect":{)" + property + "}"));
  };
  EXPECT_THAT(problem(R"("delimiter":"")"), HasSubstr("/dialect/delimiter: "));
  EXPECT_THAT(problem(R"("delimiter":"\n")"), HasSubstr("/dialect/delimiter: "));
  EXPECT_THAT(problem(R"("quoteChar":"''")"), HasSubstr("/dialect/quoteChar: "));
  EXPECT_THAT(problem(R"("escapeChar":"ab")"), HasSubstr("/dialect/escapeChar: "));
  EXPECT_THAT(problem(R"("headerRows":[0])"), HasSubstr("/dialect/headerRows/0: a row is given by its number"));
  EXPECT_THAT(problem(R"("commentRows":[1.5])"), HasSubstr("/dialect/commentRows/0: "));
  EXPECT_EQ(Read(OneResource(R"("path":"data.csv","dialect":{"quoteChar":"","delimiter":"é"})")).dialect.quoteChar, "");
}

TEST_F(Package, tellsOfTheDialectWhatIsForOtherFiles) {
  Read(OneResource(R"("path":"data.csv","dialect":{"sheetNumber":2,"table":"t"})"));
  ASSERT_EQ(fNotes.size(), 2U);
  EXPECT_THAT(fNotes[0].text, HasSubstr("/dialect/sheetNumber: this is for spreadsheets"));
  EXPECT_THAT(fNotes[1].text, HasSubstr("/dialect/table: this is for databases"));
  Read(OneResource(R"("path":"data.csv","dialect":{"delimiter":",","lineTerminator":","})"));
  ASSERT_EQ(fNotes.size(), 1U);
  EXPECT_THAT(fNotes[0].text, HasSubstr("/dialect/lineTerminator: it is the delimiter too"));
}

TEST_F(Package, titleOfTheResourceGoesBeforeThatOfThePackage) {
  EXPECT_EQ(Read(OneResource(R"("path":"data.csv","title":"R")", R"("title":"P",)")).label, "R");
  EXPECT_EQ(Read(OneResource(R"("path":"data.csv")", R"("title":"P",)")).label, "P");
  EXPECT_EQ(Read(OneResource(R"("path":"data.csv")")).label, std::nullopt);
}

TEST_F(Package, descriptionBecomesOneDocumentSplitAtLineEnds) {
  EXPECT_THAT(Read(OneResource(R"("path":"data.csv","description":"one\ntwo\r\n\r\nfour\n")", R"("description":"P",)"))
                  .documents,
              ElementsAre(ElementsAre("one", "two", "", "four")));
  EXPECT_THAT(Read(OneResource(R"("path":"data.csv")", R"("description":"P",)")).documents,
              ElementsAre(ElementsAre("P")));
  EXPECT_THAT(Read(OneResource(R"("path":"data.csv")")).documents, IsEmpty());
}

TEST_F(Package, documentsOfCodebookReplaceTheDescription) {
  EXPECT_THAT(
      Read(OneResource(R"("path":"data.csv","description":"no","codebook":{"documents":["a\nb",["c","","d"]]})"))
          .documents,
      ElementsAre(ElementsAre("a", "b"), ElementsAre("c", "", "d")));
  EXPECT_THAT(Problem(OneResource(R"("path":"data.csv","codebook":{"documents":"a"})")),
              HasSubstr("/codebook/documents: this must be a list"));
}

TEST_F(Package, attributesStandInOrderBehindThoseOfTheResource) {
  const DatasourceAttributes attributes =
      Read(OneResource(
               R"("path":"data.csv","codebook":{"attributes":{"r":"1"}})",
               R"("id":"I","homepage":"H","keywords":["k1","k2"],"sources":[{"title":"S","path":"p"}],"contributors":[],
        "licenses":[{"name":"CC0-1.0","path":"https://x"}],"created":"2024","version":"1","name":"n","image":"i",
        "codebook":{"attributes":{"p":["2","3"]}},)"))
          .attributes;
  std::vector<std::string> names;
  for (std::size_t i = 0; i < attributes.Size(); ++i) names.push_back(attributes.Name(i));
  EXPECT_THAT(names, ElementsAre("r", "p", "Name", "Version", "Created", "Licenses", "Contributors", "Sources",
                                 "Keywords", "Homepage", "Id"));
  EXPECT_THAT(attributes.Values(1), ElementsAre("2", "3"));
  EXPECT_THAT(attributes.Values(5), ElementsAre("CC0-1.0, https://x"));
  EXPECT_THAT(attributes.Values(6), IsEmpty());
  EXPECT_THAT(attributes.Values(7), ElementsAre("S, p"));
  EXPECT_THAT(attributes.Values(8), ElementsAre("k1", "k2"));
}

TEST_F(Package, tellsUnknownPropertiesOfCodebook) {
  Read(OneResource(R"("path":"data.csv","codebook":{"weigth":"a"})"));
  ASSERT_EQ(fNotes.size(), 1U);
  EXPECT_THAT(fNotes[0].text, HasSubstr("/resources/0/codebook/weigth: this property is not known"));
}

TEST_F(Package, saysThatXmlIsNotReadYet) {
  EXPECT_THROW(ReadDictionary({fFolder.Write("x.ddi.xml", "<codeBook/>"), {}, "x.csv"}, fNotes), DataError);
}

TEST_F(Package, aSchemaByItselfSpeaksForItsFile) {
  const std::string path =
      fFolder.Write("data.schema.json", R"({"title":"T","description":"a\nb","fields":[{"name":"a"}],
      "codebook":{"attributes":{"x":"1"}}})");
  const TableDescriptor table = ReadDictionary({path, {}, fFolder.Path("data.csv")}, fNotes);
  EXPECT_EQ(table.label, "T");
  EXPECT_THAT(table.documents, ElementsAre(ElementsAre("a", "b")));
  EXPECT_EQ(table.attributes.Size(), 1U);
  EXPECT_THROW(ReadDictionary({path, "r", fFolder.Path("data.csv")}, fNotes), DataError);
  EXPECT_THROW(ReadDictionary({path, {}, {}}, fNotes), DataError);
}

TEST_F(Package, isFoundBesideTheDataWhenItListsThem) {
  EXPECT_EQ(FindDictionary(fFolder.Path("data.csv")), std::nullopt);
  const std::string ddi = fFolder.Write("data.ddi.xml", "");
  EXPECT_EQ(FindDictionary(fFolder.Path("data.csv")), ddi);
  const std::string schema = fFolder.Write("data.schema.json", "{}");
  EXPECT_EQ(FindDictionary(fFolder.Path("data.csv")), schema);
  const std::string package = fFolder.Write("datapackage.json", OneResource(R"("path":"other.csv")"));
  EXPECT_EQ(FindDictionary(fFolder.Path("data.csv")), schema);
  fFolder.Write("datapackage.json", OneResource(R"("path":"data.csv")"));
  EXPECT_EQ(FindDictionary(fFolder.Path("data.csv")), package);
  fFolder.Write("datapackage.json", "{");
  EXPECT_THROW(FindDictionary(fFolder.Path("data.csv")), DataError);
}

TEST_F(Package, isNamedByTheEndingJson) {
  EXPECT_TRUE(NamesDataPackage("a/datapackage.json"));
  EXPECT_TRUE(NamesDataPackage("X.JSON"));
  EXPECT_FALSE(NamesDataPackage("x.jsonl"));
  EXPECT_FALSE(NamesDataPackage("json"));
}

}  // namespace
}  // namespace runtime::data
