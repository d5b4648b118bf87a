#include "runtime/data/source/sql/sqlgroups.h"

#include <cmath>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/open.h"
#include "tests/unit/data/source/sql/askedrows.h"
#include "tests/unit/data/source/sqlitefolder.h"

namespace runtime::data {
namespace {

using testing::_;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;
using testing::SizeIs;

/// Which question reads something else than the table.
struct Change {
  std::string question;
  std::string instead;  // of the table
};

/// A file that answers one question from other rows than all others.
class ChangingFile : public SqlConnection {
 public:
  ChangingFile(const std::string& address, const Change& change) : fFile(OpenSqlConnection(address)), fChange(change) {
    fName = fFile->name();
    fEngine = fFile->engine();
  }
  std::string Quoted(std::string_view identifier) const override { return fFile->Quoted(identifier); }
  std::unique_ptr<SqlRows> Ask(const std::string& query) override { return fFile->Ask(Changed(query)); }
  void Run(const std::string& statement) override { fFile->Run(statement); }
  std::string FindTable(const std::string& table) override { return fFile->FindTable(table); }
  std::string OnlyTable() override { return fFile->OnlyTable(); }
  std::vector<SqlColumn> ColumnsOf(const std::string& relation) override { return fFile->ColumnsOf(relation); }

 private:
  std::string Changed(std::string query) const {
    const std::string table = "FROM \"t\"";
    if (query != fChange.question) return query;
    const std::size_t at = query.find(table);
    EXPECT_NE(at, std::string::npos) << query;
    return query.replace(at, table.size(), "FROM (" + fChange.instead + ")");
  }

  std::unique_ptr<SqlConnection> fFile;
  const Change& fChange;
};

using Weights = std::map<std::string, double>;

class SqlGroupsOfFiles : public SqliteFolder {
 protected:
  static constexpr int kRows = 6000;  // more than are looked at first

  std::string Survey(int rows = kRows, const std::string& name = "t.sqlite") const {
    return "sqlite:" + Write(fmt::format("CREATE TABLE t AS WITH RECURSIVE c(i) AS (SELECT 0 UNION ALL SELECT i + 1 "
                                         "FROM c WHERE i < {}) SELECT i % 3 AS a, i % 4 AS b, 'n' || i AS s, "
                                         "(i % 7) * 0.25 AS w FROM c",
                                         rows - 1),
                             name);
  }

  OpenOptions OptionsFor(const std::string& address) {
    OpenOptions options;
    options.path = address;
    options.countInDatabase = true;
    options.connect = [this](const std::string& part) { return std::make_unique<ChangingFile>(part, fChange); };
    options.onQuery = [this](const std::string&, const std::string& query) { fQuestions.push_back(query); };
    return options;
  }

  static std::string TextOf(const ColumnView& view, std::size_t row) {
    switch (view.storage) {
      case ColumnStorage::StringCode:
        return std::string(view.strings->Text(static_cast<const std::uint32_t*>(view.cells)[row]));
      case ColumnStorage::Int8:
        return std::to_string(static_cast<const std::int8_t*>(view.cells)[row]);
      default:
        return "of another storage";
    }
  }

  /// The weights of a request's groups as its cursor gives them: the texts of the variables with a slash between.
  static Weights WalkOver(const Dataset& dataset, const CountingRequest& request) {
    Weights weights;
    const std::unique_ptr<CaseCursor> cursor = dataset.NewCursor();
    const CaseGroups* const groups = cursor->GroupsFor(request);
    while (cursor->Next()) {
      for (std::size_t row = 0; row < groups->rows(); ++row) {
        std::string key;
        for (const int variable : request.variables)
          key += (key.empty() ? "" : "/") + TextOf(groups->Column(variable), row);
        weights[key] += groups->Weights() == nullptr ? 1.0 : groups->Weights()[row];
      }
      cursor->row = cursor->chunkEnd - 1;
    }
    return weights;
  }

  static CountingRequest CategoriesOf(std::vector<int> variables) {
    return {CountingRequest::Kind::Categories, std::move(variables)};
  }

  /// All that can be asked for: a column, two together, the cases, a column of many texts.
  static std::vector<CountingRequest> AllRequests() {
    return {CategoriesOf({0}), CategoriesOf({0, 1}), CategoriesOf({}), CategoriesOf({2})};
  }

  void RunAll(const OpenOptions& options) {
    fQuestions.clear();
    const OpenedDataset opened = OpenDataset(options);
    for (const CountingRequest& request : AllRequests()) WalkOver(*opened.dataset, request);
  }

  /// Each question that groups the rows once answers from a part of them, and every time the run must stop.
  void ExpectEveryLossIsSeen(const OpenOptions& options, std::size_t fewestQuestions) {
    fChange = {};
    RunAll(options);
    std::vector<std::string> grouping;
    for (const std::string& question : fQuestions)
      if (question.find("GROUP BY") != std::string::npos && question.find("1 = 0") == std::string::npos)
        grouping.push_back(question);
    EXPECT_GE(grouping.size(), fewestQuestions);
    for (const std::string& question : grouping) {
      fChange = {question, "SELECT * FROM \"t\" WHERE s <> 'n17'"};
      EXPECT_THAT(DataErrorOf([&] { RunAll(options); }), HasSubstr("no result can be trusted")) << question;
    }
  }

  Change fChange;
  std::vector<std::string> fQuestions;
};

TEST_F(SqlGroupsOfFiles, haveTheCasesOfTheTable) {
  const OpenedDataset opened = OpenDataset(OptionsFor(Survey()));
  EXPECT_EQ(opened.dataset->caseCount(), kRows);
  EXPECT_THAT(WalkOver(*opened.dataset, CategoriesOf({0})),
              ElementsAre(Pair("0", 2000.0), Pair("1", 2000.0), Pair("2", 2000.0)));
  EXPECT_THAT(WalkOver(*opened.dataset, CategoriesOf({0, 1})), AllOf(SizeIs(12), Each(Pair(_, 500.0))));
  EXPECT_THAT(WalkOver(*opened.dataset, CategoriesOf({})), ElementsAre(Pair("", 6000.0)));
  EXPECT_THAT(WalkOver(*opened.dataset, CategoriesOf({2})), AllOf(SizeIs(kRows), Each(Pair(_, 1.0))));
}

TEST_F(SqlGroupsOfFiles, haveTheWeightsOfTheirCases) {
  OpenOptions options = OptionsFor(Survey(21));
  options.weight = "w";
  const OpenedDataset opened = OpenDataset(options);
  EXPECT_EQ(opened.dataset->caseCount(), 21);
  EXPECT_THAT(WalkOver(*opened.dataset, CategoriesOf({})), ElementsAre(Pair("", 15.75)));
  EXPECT_THAT(WalkOver(*opened.dataset, CategoriesOf({0})),
              ElementsAre(Pair("0", 5.25), Pair("1", 5.25), Pair("2", 5.25)));
}

TEST_F(SqlGroupsOfFiles, addUpTheSameGroupsOfSeveralPlaces) {
  OpenOptions options = OptionsFor(Survey(12, "first"));
  options.furtherPaths = {Survey(6, "second")};
  const OpenedDataset opened = OpenDataset(options);
  EXPECT_EQ(opened.dataset->caseCount(), 18);
  EXPECT_THAT(WalkOver(*opened.dataset, CategoriesOf({0})),
              ElementsAre(Pair("0", 6.0), Pair("1", 6.0), Pair("2", 6.0)));
  EXPECT_THAT(WalkOver(*opened.dataset, CategoriesOf({0, 1})), Contains(Pair("1/1", 2.0)));
}

TEST_F(SqlGroupsOfFiles, stopTheRunWhenOneQuestionLosesRows) { ExpectEveryLossIsSeen(OptionsFor(Survey()), 3); }

TEST_F(SqlGroupsOfFiles, stopTheRunWhenOneQuestionOfASmallTableLosesRows) {
  ExpectEveryLossIsSeen(OptionsFor(Survey(40)), 4);
}

TEST_F(SqlGroupsOfFiles, stopTheRunWhenOneWeightedQuestionLosesRows) {
  OpenOptions options = OptionsFor(Survey());
  options.weight = "w";
  ExpectEveryLossIsSeen(options, 4);
}

TEST_F(SqlGroupsOfFiles, stopTheRunWhenRowsAreLostAsTheyAreCounted) {
  const OpenOptions options = OptionsFor(Survey());
  fChange = {"SELECT COUNT(*) FROM (SELECT 1 AS one FROM \"t\") s", "SELECT * FROM \"t\" WHERE s <> 'n17'"};
  EXPECT_THAT(DataErrorOf([&] { RunAll(options); }),
              AllOf(HasSubstr("have 6000 rows and the table has 5999"), HasSubstr("no result can be trusted"),
                    HasSubstr("t.sqlite"), HasSubstr("column \"")));
}

TEST_F(SqlGroupsOfFiles, stopTheRunWhenAQuestionCountsRowsTwice) {
  const OpenOptions options = OptionsFor(Survey(40));
  RunAll(options);
  const std::string groupsOfA =
      "SELECT v, n FROM (SELECT c AS v, COUNT(*) AS n FROM (SELECT \"a\" AS c FROM \"t\") s GROUP BY c) g";
  ASSERT_THAT(fQuestions, Contains(HasSubstr(groupsOfA)));
  fChange = {groupsOfA, "SELECT * FROM \"t\" UNION ALL SELECT * FROM \"t\""};
  EXPECT_THAT(DataErrorOf([&] { RunAll(options); }), HasSubstr("have 80 rows and the table has 40"));
}

TEST_F(SqlGroupsOfFiles, stopTheRunWhenValuesComeUpThatWereNotThereBefore) {
  const OpenOptions options = OptionsFor(Survey());
  const OpenedDataset sound = OpenDataset(options);
  fQuestions.clear();
  WalkOver(*sound.dataset, CategoriesOf({0, 1}));
  ASSERT_THAT(fQuestions, SizeIs(1));
  fChange = {fQuestions.front(), "SELECT a + 100 AS a, b FROM \"t\""};
  EXPECT_THAT(DataErrorOf([&] {
                WalkOver(*OpenDataset(options).dataset, CategoriesOf({0, 1}));
              }),
              AllOf(HasSubstr("column \"a\""), HasSubstr("a value that it had not before")));
}

}  // namespace
}  // namespace runtime::data
