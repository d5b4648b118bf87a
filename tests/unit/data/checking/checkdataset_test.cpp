#include "runtime/data/checking/checkdataset.h"

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/machine/threadpool.h"
#include "tests/unit/data/open/datafolder.h"

namespace runtime::data {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// Data and a dictionary, and what does not fit.
class Check : public testing::Test {
 protected:
  std::vector<Finding> Findings(const std::string& csv, const std::string& schema = {}) {
    OpenOptions options = fOptions;
    options.path = fFolder.Write("t.csv", csv);
    options.forChecking = true;
    if (!schema.empty()) options.dictionary = fFolder.Write("t.json", schema);
    return CheckDataset(OpenDataset(options), options.path, nullptr);
  }
  /// "C205 x=9 row 3 in 2": code, variable, value, first row, count.
  std::vector<std::string> Lines(const std::string& csv, const std::string& schema = {}) {
    std::vector<std::string> lines;
    for (const Finding& finding : Findings(csv, schema)) {
      std::string line = FactsOf(finding.code).id;
      if (!finding.variable.empty()) line += " " + finding.variable;
      if (finding.value) line += "=" + *finding.value;
      if (finding.row > 0) line += fmt::format(" row {}", finding.row);
      if (finding.count > 0) line += fmt::format(" in {}", finding.count);
      lines.push_back(line);
    }
    return lines;
  }
  std::vector<std::string> Codes(const std::string& csv, const std::string& schema = {}) {
    std::vector<std::string> codes;
    for (const Finding& finding : Findings(csv, schema)) codes.push_back(FactsOf(finding.code).id);
    return codes;
  }
  static std::string Schema(const std::string& fields, const std::string& codebook = {}) {
    return "{\"fields\": [" + fields + "]" + (codebook.empty() ? "" : ", \"codebook\": {" + codebook + "}") + "}";
  }

  DataFolder fFolder;
  OpenOptions fOptions;
};

/// Of each code data in which it is found, and nearly the same in which it is not.
struct PlantedFault {
  const char* code;
  const char* csv;
  const char* fields;
  const char* soundCsv;
  const char* soundFields;
  const char* codebook = "";
};

const PlantedFault kFaults[] = {
    {"C001", "x,y\n1,2\n3\n", "", "x,y\n1,2\n3,4\n", ""},
    {"C101", "x\n1\n2\n", R"({"name": "x", "type": "integer"}, {"name": "gone", "type": "integer"})",
     "x,gone\n1,3\n2,4\n", R"({"name": "x", "type": "integer"}, {"name": "gone", "type": "integer"})"},
    {"C102", "x,new\n1,3\n2,4\n", R"({"name": "x", "type": "integer"})", "x\n1\n2\n",
     R"({"name": "x", "type": "integer"})"},
    {"C103", "x,x\n1,3\n2,4\n", "", "x,y\n1,3\n2,4\n", ""},
    {"C104", "x,X\n1,3\n2,4\n", "", "x,y\n1,3\n2,4\n", ""},
    {"C201", "x\n1\nfive\n2\n", R"({"name": "x", "type": "integer"})", "x\n1\n5\n2\n",
     R"({"name": "x", "type": "integer"})"},
    {"C202", "x\nabc\nd\n", R"({"name": "x", "type": "string", "constraints": {"maxLength": 2}})",
     "x\n\xc3\xa4\xc3\xb6\nd\n", R"({"name": "x", "type": "string", "constraints": {"maxLength": 2}})"},
    {"C203", "x,y\n1,1\n,2\n",
     R"({"name": "x", "type": "integer", "constraints": {"required": true}}, {"name": "y", "type": "integer"})",
     "x,y\n1,1\n2,2\n",
     R"({"name": "x", "type": "integer", "constraints": {"required": true}}, {"name": "y", "type": "integer"})"},
    {"C204", "x\n1\n2\n1\n", R"({"name": "x", "type": "integer", "constraints": {"unique": true}})", "x\n1\n2\n3\n",
     R"({"name": "x", "type": "integer", "constraints": {"unique": true}})"},
    {"C205", "x\n1\n2\n8\n", R"({"name": "x", "type": "integer", "constraints": {"maximum": 7}})", "x\n1\n2\n7\n",
     R"({"name": "x", "type": "integer", "constraints": {"maximum": 7}})"},
    {"C206", "x\n1\n2\n3\n",
     R"({"name": "x", "type": "integer", "categories": [1, 2, 3], "constraints": {"enum": [1, 2]}})", "x\n1\n2\n2\n",
     R"({"name": "x", "type": "integer", "categories": [1, 2, 3], "constraints": {"enum": [1, 2]}})"},
    {"C207", "x\nA1\nxB2\n", R"({"name": "x", "type": "string", "constraints": {"pattern": "[A-Z][0-9]"}})",
     "x\nA1\nB2\n", R"({"name": "x", "type": "string", "constraints": {"pattern": "[A-Z][0-9]"}})"},
    {"C301", "x\n1\n2\n3\n", R"({"name": "x", "type": "integer", "categories": [1, 2]})", "x\n1\n2\n2\n",
     R"({"name": "x", "type": "integer", "categories": [1, 2]})"},
    {"C302", "x\n1\n2\n",
     R"({"name": "x", "type": "integer", "codebook": {"valueLabels": [{"value": 1, "label": "yes"}]}})", "x\n1\n2\n",
     R"({"name": "x", "type": "integer", "codebook": {"measure": "scale", "valueLabels": [{"value": 1, "label": "low"}]}})"},
    {"C303", "x\n1\n2\n",
     R"({"name": "x", "type": "integer", "categories": [{"value": 1, "label": "a"}, {"value": 2, "label": "b"}, {"value": 3, "label": "c"}]})",
     "x\n1\n2\n3\n",
     R"({"name": "x", "type": "integer", "categories": [{"value": 1, "label": "a"}, {"value": 2, "label": "b"}, {"value": 3, "label": "c"}]})"},
    {"C304", "x\n1\n2\n-9\n", "", "x\n1\n2\n9\n", ""},
    {"C305", "x\n1\n2\n",
     R"({"name": "x", "type": "integer", "categories": [{"value": 1, "label": "a"}, {"value": 2, "label": "a"}]})",
     "x\n1\n2\n",
     R"({"name": "x", "type": "integer", "categories": [{"value": 1, "label": "a"}, {"value": 2, "label": "b"}]})"},
    {"C401", "x,y\n4,1\n4,2\n", "", "x,y\n4,1\n,2\n", ""},
    {"C402", "x,y\n,1\n,2\n", "", "x,y\n,1\n4,2\n", ""},
    {"C501", "w\n1.5\n-1\n", R"({"name": "w", "type": "number"})", "w\n1.5\n1\n", R"({"name": "w", "type": "number"})",
     R"("weight": "w")"},
    {"C502", "w,x\n1.5,1\n,2\n", R"({"name": "w", "type": "number"}, {"name": "x", "type": "integer"})",
     "w,x\n1.5,1\n2,2\n", R"({"name": "w", "type": "number"}, {"name": "x", "type": "integer"})", R"("weight": "w")"},
    {"C503", "w\n1.5\n0\n", R"({"name": "w", "type": "number"})", "w\n1.5\n0.1\n", R"({"name": "w", "type": "number"})",
     R"("weight": "w")"},
    {"C504", "a\n1\n0\n", R"({"name": "a", "type": "integer"})", "a,b\n1,0\n0,1\n",
     R"({"name": "a", "type": "integer"}, {"name": "b", "type": "integer"})",
     R"("multipleResponseSets": [{"name": "$s", "type": "dichotomy", "variables": ["a", "b"], "countedValue": 1}])"},
    {"C505", "a,b\n1,0\n0,0\n", R"({"name": "a", "type": "integer"}, {"name": "b", "type": "integer"})",
     "a,b\n1,0\n0,1\n", R"({"name": "a", "type": "integer"}, {"name": "b", "type": "integer"})",
     R"("multipleResponseSets": [{"name": "$s", "type": "dichotomy", "variables": ["a", "b"], "countedValue": 1}])"},
};

TEST_F(Check, everyPlantedFaultIsFoundAndNothingWhereThereIsNone) {
  std::set<std::string> tried;
  for (const PlantedFault& fault : kFaults) {
    SCOPED_TRACE(fault.code);
    const auto schema = [&](const char* fields) {
      return *fields == '\0' ? std::string() : Schema(fields, fault.codebook);
    };
    EXPECT_THAT(Codes(fault.csv, schema(fault.fields)), Contains(std::string(fault.code)));
    EXPECT_THAT(Codes(fault.soundCsv, schema(fault.soundFields)), Not(Contains(std::string(fault.code))));
    tried.insert(fault.code);
  }
  for (const CodeFacts& facts : CheckCodes()) EXPECT_EQ(tried.count(facts.id), 1u) << facts.id << " is never planted";
}

TEST_F(Check, dataThatFitHaveNoFinding) {
  EXPECT_THAT(Lines("id,q\n1,1\n2,2\n3,-9\n",
                    Schema(R"({"name": "id", "type": "integer", "constraints": {"required": true, "unique": true}},
                       {"name": "q", "type": "integer", "missingValues": ["", "-9"],
                        "categories": [{"value": 1, "label": "yes"}, {"value": 2, "label": "no"}]})")),
              IsEmpty());
}

TEST_F(Check, findingsTellValueFirstRowAndCount) {
  EXPECT_THAT(Lines("x\n1\n8\n2\n8\n9\n", Schema(R"({"name": "x", "type": "integer", "constraints": {"maximum": 7}})")),
              ElementsAre("C205 x=8 row 2 in 2", "C205 x=9 row 5 in 1"));
}

TEST_F(Check, missingValuesAreOutsideEveryConstraint) {
  EXPECT_THAT(
      Lines("x\n1\n-9\n2\n", Schema(R"({"name": "x", "type": "integer", "missingValues": ["-9"], "categories": [1, 2],
                                                "constraints": {"minimum": 0, "unique": true}})")),
      IsEmpty());
}

TEST_F(Check, datesAreToldAsDates) {
  EXPECT_THAT(Lines("d\n2020-02-29\n2021-06-30\n",
                    Schema(R"({"name": "d", "type": "date", "constraints": {"maximum": "2020-12-31"}})")),
              ElementsAre("C205 d=2021-06-30 row 2 in 1"));
}

TEST_F(Check, beyondTwentyValuesTheRestIsCounted) {
  std::string csv = "x\n";
  for (int i = 0; i < 30; ++i) csv += fmt::format("{}\n{}\n", 100 + i, 100 + i);
  const std::vector<std::string> lines =
      Lines(csv, Schema(R"({"name": "x", "type": "integer", "constraints": {"maximum": 7}})"));
  ASSERT_EQ(lines.size(), 21u);
  EXPECT_EQ(lines[19], "C205 x=119 row 39 in 2");
  EXPECT_EQ(lines[20], "C205 x row 41 in 20");
}

TEST_F(Check, unreadableCellsTellTheirLine) {
  const std::vector<Finding> findings = Findings("x\n1\nfive\n2\n", Schema(R"({"name": "x", "type": "integer"})"));
  ASSERT_EQ(findings.size(), 1u);
  EXPECT_EQ(findings[0].line, 3);
  EXPECT_EQ(findings[0].row, 2);
  EXPECT_THAT(findings[0].what, HasSubstr("\"five\" does not read as an integer"));
}

TEST_F(Check, primaryKeyIsUniqueAndComplete) {
  const std::string csv = "k,x\n1,1\n1,2\n,3\n";
  const std::string schema =
      R"({"fields": [{"name": "k", "type": "integer"}, {"name": "x", "type": "integer"}], "primaryKey": "k"})";
  EXPECT_THAT(Lines(csv, schema), ElementsAre("C203 k row 3 in 1", "C204 k=1 row 1 in 2"));
}

TEST_F(Check, oneTextOrNothingIsNoConstant) { EXPECT_THAT(Lines("q,r\nYes,1\n,2\n"), IsEmpty()); }

TEST_F(Check, minusOneOfASetIsNoMissingCode) {
  const std::string set =
      R"("multipleResponseSets": [{"name": "$s", "type": "dichotomy", "variables": ["a", "b"], "countedValue": 1}])";
  EXPECT_THAT(Lines("a,b\n1,-1\n2,1\n-1,2\n",
                    Schema(R"({"name": "a", "type": "integer"}, {"name": "b", "type": "integer"})", set)),
              IsEmpty());
}

TEST_F(Check, patternThatCannotBeReadIsTold) {
  EXPECT_THAT(Codes("x\na\nb\n", Schema(R"({"name": "x", "type": "string", "constraints": {"pattern": "("}})")),
              ElementsAre("C001"));
}

TEST_F(Check, patternThatWouldTakeForEverEnds) {
  const std::string csv = "x\n" + std::string(60, 'a') + "!\nb\n";
  EXPECT_THAT(Codes(csv, Schema(R"({"name": "x", "type": "string", "constraints": {"pattern": "(a+)+b|b"}})")),
              IsEmpty());
}

TEST_F(Check, schemaMayAllowOtherFieldsAndColumns) {
  const char* const fields = R"("fields": [{"name": "x", "type": "integer"}, {"name": "gone", "type": "integer"}])";
  const std::string csv = "x,new\n1,1\n2,2\n";
  EXPECT_THAT(Codes(csv, fmt::format(R"({{{}, "fieldsMatch": "partial"}})", fields)), IsEmpty());
  EXPECT_THAT(Codes(csv, fmt::format(R"({{{}, "fieldsMatch": "subset"}})", fields)), ElementsAre("C101"));
  EXPECT_THAT(Codes(csv, fmt::format(R"({{{}, "fieldsMatch": "superset"}})", fields)), ElementsAre("C102"));
}

TEST_F(Check, threadsAndChunksChangeNothing) {
  std::string csv;
  for (int c = 0; c < 12; ++c) csv += fmt::format("{}v{}", c > 0 ? "," : "", c);
  csv += "\n";
  for (int r = 0; r < 500; ++r) {
    for (int c = 0; c < 12; ++c) csv += fmt::format("{}{}", c > 0 ? "," : "", (r * 7 + c) % 50 == 0 ? -9 : (r + c) % 5);
    csv += "\n";
  }
  const std::vector<std::string> alone = Lines(csv);
  EXPECT_FALSE(alone.empty());
  fOptions.chunkRows = 7;
  EXPECT_EQ(Lines(csv), alone);
  OpenOptions options;
  options.path = fFolder.Write("t.csv", csv);
  options.forChecking = true;
  options.pool = std::make_shared<machine::ThreadPool>(3);
  EXPECT_EQ(CheckDataset(OpenDataset(options), options.path, options.pool.get()).size(), alone.size());
}

TEST_F(Check, emptyTableHasNoFindingOfValues) { EXPECT_THAT(Lines("x,y\n"), IsEmpty()); }

}  // namespace
}  // namespace runtime::data
