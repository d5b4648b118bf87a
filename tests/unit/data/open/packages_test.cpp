// Data as packages describe them: dialects, data in the descriptor, categories in a resource of their own.
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/open.h"
#include "runtime/data/store/columnardataset.h"
#include "tests/unit/data/open/datafolder.h"
#include "tests/unit/data/support/storedcells.h"

namespace runtime::data {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class OpenedPackage : public testing::Test {
 protected:
  OpenedDataset Open(const std::string& resources) {
    fOptions.path = fFolder.Write("datapackage.json", R"({"name":"p","resources":[)" + resources + "]}");
    return OpenDataset(fOptions);
  }
  std::string Problem(const std::string& resources) {
    try {
      Open(resources);
    } catch (const DataError& error) {
      return error.what();
    }
    return "";
  }
  /// Names in the first line, then the cases; a period is system-missing. Notes stand behind.
  static std::string Written(const OpenedDataset& opened) {
    const auto& dataset = dynamic_cast<const ColumnarDataset&>(*opened.dataset);
    const auto& variables = dataset.dictionary().variables;
    std::vector<std::vector<std::string>> columns;
    std::string text;
    for (std::size_t i = 0; i < variables.size(); ++i) {
      text += (i > 0 ? "|" : "") + variables[i]->label.value_or(variables[i]->name);
      const StoredColumn& column = dataset.column(static_cast<int>(i));
      columns.emplace_back();
      if (column.isString()) {
        columns.back() = test::Texts(column);
        continue;
      }
      for (const double number : test::Numbers(column))
        columns.back().push_back(std::isnan(number) ? "." : Json(number).dump());
    }
    for (std::int64_t row = 0; row < dataset.caseCount(); ++row) {
      text += "\n";
      for (std::size_t i = 0; i < columns.size(); ++i)
        text += (i > 0 ? "|" : "") + columns[i][static_cast<std::size_t>(row)];
    }
    for (const Note& note : opened.notes) text += "\n! " + note.text;
    return text;
  }
  /// A file of that text, read with that dialect.
  std::string Read(const std::string& text, const std::string& dialect, const std::string& more = "") {
    fFolder.Write("data.csv", text);
    return Written(Open(R"({"name":"r","path":"data.csv","dialect":{)" + dialect + "}" + more + "}"));
  }
  std::string Inline(const std::string& data, const std::string& more = "") {
    return Written(Open(R"({"name":"r","data":)" + data + more + "}"));
  }

  DataFolder fFolder;
  OpenOptions fOptions;
};

// The examples of the Table Dialect standard, version 2.0.
TEST_F(OpenedPackage, readsTheExamplesOfTheDialectStandard) {
  const std::string fruits = "id|name\n1.0|apple\n2.0|orange";
  EXPECT_EQ(Read("1,apple\n2,orange\n", R"("header":false)"), "V1|V2\n1.0|apple\n2.0|orange");
  EXPECT_EQ(Read("fruit\nid,name\n1,apple\n2,orange\n", R"("headerRows":[1,2])"),
            "fruit id|fruit name\n1.0|apple\n2.0|orange");
  EXPECT_EQ(Read("fruit\nid,name\n1,apple\n2,orange\n", R"("headerRows":[1,2],"headerJoin":"-")"),
            "fruit-id|fruit-name\n1.0|apple\n2.0|orange");
  EXPECT_EQ(Read("id,name\n#fruits\n1,apple\n2,orange\n", R"("commentRows":[2])"), fruits);
  EXPECT_EQ(Read("id,name\n#fruits\n1,apple\n2,orange\n", R"("commentChar":"#")"), fruits);
  EXPECT_EQ(Read("id|name\n1|apple\n2|orange\n", R"("delimiter":"|")"), fruits);
  EXPECT_EQ(Read("id,name;1,apple;2,orange\n", R"("lineTerminator":";")"), fruits);
  EXPECT_EQ(Read("id,name\n1,'apple,fruits'\n2,'orange,fruits'\n", R"("quoteChar":"'")"),
            "id|name\n1.0|apple,fruits\n2.0|orange,fruits");
  EXPECT_EQ(Read("id,name\n1,\"apple\"\"fruits\"\n2,\"orange\"\"fruits\"\n", R"("doubleQuote":true)"),
            "id|name\n1.0|apple\"fruits\n2.0|orange\"fruits");
  EXPECT_EQ(Read("id,name\n1,apple|,fruits\n2,orange|,fruits\n", R"("escapeChar":"|")"),
            "id|name\n1.0|apple,fruits\n2.0|orange,fruits");
  EXPECT_EQ(Read("id,name\n1,apple\n2,NA\n", R"("nullSequence":"NA")"), "id|name\n1.0|apple\n2.0|");
  EXPECT_EQ(Read("id, name\n1, apple\n2, orange\n", R"("skipInitialSpace":true)"), fruits);
}

TEST_F(OpenedPackage, readsDelimitersOfSeveralCharacters) {
  EXPECT_EQ(Read("a||b\n1||\"x||y\"\n2||p|q\n", R"("delimiter":"||")"), "a|b\n1.0|x||y\n2.0|p|q");
  EXPECT_EQ(Read("a·b\n1·ä\n", R"("delimiter":"·")"), "a|b\n1.0|ä");
}

TEST_F(OpenedPackage, takesAnEscapedCharacterAsItIs) {
  const std::string mysql =
      R"("delimiter":",","quoteChar":"\"","doubleQuote":false,"escapeChar":"\\","nullSequence":"\\N")";
  EXPECT_EQ(Read("a,b\n1,\"x\\\"y\"\n2,p\\,q\\\\\n\\N,\"\\N\"\n3,\"l\\\n1\"\n", mysql),
            "a|b\n1.0|x\"y\n2.0|p,q\\\n.|N\n3.0|l\n1");
  EXPECT_EQ(Read("a;b\n1;say \"hi\"\\; bye\n", R"("escapeChar":"\\")"), "a|b\n1.0|say \"hi\"; bye");
}

TEST_F(OpenedPackage, tellsTheLineOfAQuoteThatIsNeverClosed) {
  fFolder.Write("data.csv", "a,b\n1,\"x\ny\"\n2,\"z\n\n");
  EXPECT_THAT(Problem(R"({"name":"r","path":"data.csv","dialect":{"quoteChar":"\"","escapeChar":"\\"}})"),
              HasSubstr("data.csv:4: the quote that opens cell 2 of this record is not closed"));
}

TEST_F(OpenedPackage, refusesADialectWithOneSignInTwoMeanings) {
  fFolder.Write("data.csv", "a,b\n");
  EXPECT_THAT(Problem(R"({"name":"r","path":"data.csv","dialect":{"delimiter":"\\","escapeChar":"\\"}})"),
              HasSubstr("the same sign"));
}

TEST_F(OpenedPackage, countsLinesOfCommentWhereItNamesLines) {
  const std::string schema = R"(,"schema":{"fields":[{"name":"a","type":"integer"},{"name":"b","type":"string"}]})";
  EXPECT_THAT(Read("# one \"quote\n#\na,b\n# two, \" cells\n1,x\n#\nz,y\n", R"("commentChar":"#")", schema),
              HasSubstr("data.csv:7: column \"a\", row 2: \"z\" does not read as an integer"));
  EXPECT_EQ(Read("# x\n\"# no\",b\n#,\n\"#1\",y\n", R"("commentChar":"#")"), "# no|b\n#1|y");
}

TEST_F(OpenedPackage, leavesOutRowsByTheirNumbers) {
  EXPECT_EQ(Read("made by us\na,b\nunit,\"of\nmeasure\"\n1,x\n2,y\nsum,3\n", R"("commentRows":[1,3,6])"),
            "a|b\n1.0|x\n2.0|y");
  EXPECT_EQ(Read("junk\n1,x\n--,--\n2,y\n", R"("header":false,"commentRows":[1,3])"), "V1|V2\n1.0|x\n2.0|y");
}

TEST_F(OpenedPackage, joinsRowsOfAHeaderUnderMergedCells) {
  EXPECT_EQ(Read("report\nwho,,income,\nid,name,2020,2021\n1,Ann,5,6\n", R"("headerRows":[2,3])"),
            "who id|who name|income 2020|income 2021\n1.0|Ann|5.0|6.0");
  fFolder.Write("data.csv", "a\nb\n");
  EXPECT_THAT(Problem(R"({"name":"r","path":"data.csv","dialect":{"headerRows":[1,5]}})"),
              HasSubstr("the dialect says that row 5 belongs to the header, and the file has 2"));
}

TEST_F(OpenedPackage, readsCommentsTheSameHoweverTheTextIsCut) {
  std::mt19937 random(20261121);
  std::string text = "#\na,b,c\n";
  for (int row = 0; row < 3000; ++row) {
    if (random() % 3 == 0) text += "# a \"comment\", " + std::to_string(row) + "\n";
    text +=
        std::to_string(row) + ",\"t\n#" + std::to_string(random() % 5) + "\"," + (random() % 7 == 0 ? "" : "z") + "\n";
  }
  fFolder.Write("data.csv", text);
  const std::string resource = R"({"name":"r","path":"data.csv","dialect":{"commentChar":"#","commentRows":[7,900]}})";
  const std::string whole = Written(Open(resource));
  for (const std::size_t bytes : {64U, 1000U, 5000U}) {
    fOptions.segmentBytes = bytes;
    fOptions.pool = std::make_shared<machine::ThreadPool>(2);
    EXPECT_EQ(Written(Open(resource)), whole) << bytes;
  }
}

TEST_F(OpenedPackage, readsDataInTheDescriptor) {
  EXPECT_EQ(Inline(R"([["A","B","C"],[1,2,3],[4,null,"x"]])"), "A|B|C\n1.0|2.0|3\n4.0|.|x");
  EXPECT_EQ(Inline(R"([{"A":1,"B":true,"C":"07"},{"C":" x, \"y\"","D":[1,{"k":2}],"A":null}])"),
            "A|B|C|D\n1.0|1.0|07|\n.|.| x, \"y\"|[1,{\"k\":2}]");
  EXPECT_EQ(Inline(R"("A,B\n1,2\n")", R"(,"format":"csv")"), "A|B\n1.0|2.0");
  EXPECT_EQ(Inline(R"("A\tB\n1\t2,5\n")", R"(,"mediatype":"text/tab-separated-values")"), "A|B\n1.0|2,5");
  EXPECT_EQ(Inline(R"("A;B\n1;2")", R"(,"format":"csv","dialect":{"delimiter":";"})"), "A|B\n1.0|2.0");
  EXPECT_EQ(Inline(R"("[{\"A\":5}]")", R"(,"format":"json")"), "A\n5.0");
  EXPECT_EQ(Inline(R"([[1,"x"],[2,"y"]])", R"(,"dialect":{"header":false})"), "field1|field2\n1.0|x\n2.0|y");
}

TEST_F(OpenedPackage, keepsTextsOfJsonThatLookLikeNumbers) {
  EXPECT_EQ(Inline(R"([{"a":"1","b":"2020-01-02"},{"a":"2","b":null}])"), "a|b\n1|1577923200.0\n2|.");
  EXPECT_EQ(Inline(R"([{"a":"1"}])", R"(,"schema":{"fields":[{"name":"a","type":"integer"}]})"), "a\n1.0");
}

TEST_F(OpenedPackage, makesNullMissingWhateverTheMissingValuesAre) {
  EXPECT_EQ(
      Inline(
          R"([{"a":null,"b":null},{"a":-9,"b":"x"}])",
          R"(,"schema":{"missingValues":["-9"],"fields":[{"name":"a","type":"integer"},{"name":"b","type":"string"}]})"),
      "a|b\n.|\n-9.0|x");
  EXPECT_EQ(
      Read(
          "a,b\n\\N,x\n-9,\\N\n", R"("nullSequence":"\\N")",
          R"(,"schema":{"missingValues":["-9"],"fields":[{"name":"a","type":"integer"},{"name":"b","type":"string"}]})"),
      "a|b\n.|x\n-9.0|");
}

TEST_F(OpenedPackage, refusesDataInTheDescriptorThatAreNoTable) {
  const auto problem = [&](const std::string& data) { return Problem(R"({"name":"r","data":)" + data + "}"); };
  EXPECT_THAT(problem(R"({"a":1})"), HasSubstr("/resources/0/data: the data must be a list"));
  EXPECT_THAT(problem("[]"), HasSubstr("/resources/0/data: the list is empty"));
  EXPECT_THAT(problem("[1]"), HasSubstr("/resources/0/data/0: this must be a list, and is a number"));
  EXPECT_THAT(problem("[[]]"), HasSubstr("/resources/0/data/0: the first row has no cell"));
  EXPECT_THAT(problem("[{}]"), HasSubstr("/resources/0/data/0: no item has a property"));
  EXPECT_THAT(problem(R"([{"a":1},[2]])"), HasSubstr("/resources/0/data/1: this must be an object, and is a list"));
  EXPECT_THAT(problem(R"([["a"],[1,2]])"), HasSubstr("the header has 1 names, and a row has 2 cells"));
  EXPECT_THAT(problem("7"), HasSubstr("/resources/0/data: this must be a list, and is a number"));
  EXPECT_THAT(problem(R"("  ")"), HasSubstr("the data are empty"));
  EXPECT_THAT(problem(R"("[{\"a\":]")"), HasSubstr("/resources/0/data:1:7: this is no JSON"));
}

TEST_F(OpenedPackage, readsAJsonFileByTheDialect) {
  fFolder.Write("data.json", R"({"meta":{},"rows":[{"name":"apple","id":1,"count":2},{"id":2,"name":"orange"}]})");
  const auto read = [&](const std::string& dialect) {
    return Written(Open(R"({"name":"r","path":"data.json","format":"json","dialect":{)" + dialect + "}}"));
  };
  EXPECT_EQ(read(R"("property":"rows")"), "name|id|count\napple|1.0|2.0\norange|2.0|.");
  EXPECT_EQ(read(R"("property":"rows","itemType":"object","itemKeys":["id","name"])"),
            "id|name\n1.0|apple\n2.0|orange");
  EXPECT_THAT(Problem(R"({"name":"r","path":"data.json","dialect":{"property":"cells"}})"),
              HasSubstr("data.json: the property \"cells\" is missing"));
  EXPECT_THAT(Problem(R"({"name":"r","path":"data.json"})"), HasSubstr("name it in the dialect (\"property\")"));
}

std::string LabelsOf(const OpenedDataset& opened) {
  std::string text;
  MAVO_ValueLabelMap map(opened.dataset->dictionary().variables.at(0)->valueLabels);
  const OBS* value = nullptr;
  const char* label = nullptr;
  while (map.GetNextPair(value, label) != 0) text += Json(value->number).dump() + "=" + label + ";";
  return text;
}

const char* const kAsking = R"({"name":"main","data":[{"f":1}],"schema":{"fields":[{"name":"f","type":"integer",
    "categories":{"resource":"fruits","valueField":"code","labelField":"fruit"}}]}})";

TEST_F(OpenedPackage, takesCategoriesFromAResource) {
  fFolder.Write("fruits.csv", "fruit;code\napple;1\n;2\norange;3\nnone;\n");
  fOptions.resource = "main";
  const OpenedDataset opened = Open(std::string(kAsking) + R"(,{"name":"fruits","path":"fruits.csv"})");
  EXPECT_EQ(LabelsOf(opened), "1.0=apple;3.0=orange;");
  EXPECT_EQ(opened.dataset->dictionary().variables.at(0)->level, MAVO_Variable::MeasurementLevel::kLevelNominal);
  EXPECT_EQ(LabelsOf(Open(std::string(kAsking) + R"(,{"name":"fruits","data":[{"code":2,"fruit":"pear"}]})")),
            "2.0=pear;");
}

TEST_F(OpenedPackage, refusesCategoriesThatCannotBeFound) {
  fOptions.resource = "main";
  const std::string asking = kAsking;
  EXPECT_THAT(Problem(asking),
              HasSubstr("/schema/fields/0/categories: there is no resource \"fruits\"; the package holds: main"));
  EXPECT_THAT(Problem(asking + R"(,{"name":"fruits","data":[{"code":2,"name":"pear"}]})"),
              HasSubstr("/categories/labelField: the resource \"fruits\" has no column \"fruit\"; it has: code, name"));
  EXPECT_THAT(Problem(asking + R"(,{"name":"fruits","path":"../fruits.csv"})"), HasSubstr("is refused"));
}

TEST_F(OpenedPackage, refusesCategoriesThatGoRoundInACircle) {
  fOptions.resource = "main";
  const std::string back = R"("schema":{"fields":[{"name":"code","type":"integer",
      "categories":{"resource":"main","valueField":"f"}}]})";
  EXPECT_THAT(Problem(std::string(kAsking) + R"(,{"name":"fruits","data":[{"code":2,"fruit":"pear"}],)" + back + "}"),
              HasSubstr("the categories go round in a circle: main -> fruits -> main"));
  EXPECT_THAT(Problem(R"({"name":"main","data":[{"f":1}],"schema":{"fields":[{"name":"f","type":"integer",
      "categories":{"resource":"main","valueField":"f"}}]}})"),
              HasSubstr("in a circle: main -> main"));
}

TEST_F(OpenedPackage, tellsLeadingZerosThatANumberDoesNotKeep) {
  EXPECT_EQ(
      Read(
          "a,b,c\n004,0,-01\n08,0.5,7\n10,00,-0\n", R"("delimiter":",")",
          R"(,"schema":{"fields":[{"name":"a","type":"number"},{"name":"b","type":"number"},{"name":"c","type":"integer"}]})"),
      "a|b|c\n4.0|0.0|-1.0\n8.0|0.5|7.0\n10.0|0.0|0.0\n! " + fFolder.path() +
          "/data.csv: column \"a\": 2 cells are written with leading zeros, such as \"004\", which a number does not "
          "keep; a field of type string does\n! " +
          fFolder.path() +
          "/data.csv: column \"b\": 1 cell is written with leading zeros, such as \"00\", which a number does not "
          "keep; a field of type string does\n! " +
          fFolder.path() +
          "/data.csv: column \"c\": 1 cell is written with leading zeros, such as \"-01\", which a number does not "
          "keep; a field of type string does");
}

}  // namespace
}  // namespace runtime::data
