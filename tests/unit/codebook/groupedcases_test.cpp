// Codebooks over groups of cases: the reports are those that the cases themselves give.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "host/common/check.h"

#include "runtime/common/session.h"
#include "runtime/data/builder.h"
#include "runtime/data/open.h"
#include "runtime/machine/threadpool.h"
#include "runtime/output/render/json.h"
#include "tests/unit/aggregation/support/random.h"
#include "tests/unit/codebook/commandrun.h"
#include "tests/unit/data/support/groupingsource.h"

extern "C" void CODEBOOK();

namespace codebook::test {
namespace {

using runtime::data::CountedGroups;
using runtime::data::DataError;
using runtime::data::Dataset;
using runtime::data::DatasetBuilder;
using runtime::data::GroupedDataset;
using runtime::data::test::Grouped;
using runtime::data::test::GroupingOptions;
using runtime::data::test::GroupingSource;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::string PlainNumber(double number) {
  std::ostringstream text;
  text << std::hexfloat << number;
  return text.str();
}

/// The report in full precision, with what was counted for pictures.
std::string ReportOf(const std::shared_ptr<const Dataset>& dataset, const std::string& command, int threads) {
  runtime::common::SessionOptions options;
  options.pool = std::make_shared<runtime::machine::ThreadPool>(threads);
  options.sketches = true;
  runtime::common::Session session(dataset, {{"CODEBOOK", &CODEBOOK}}, std::move(options));
  std::ostringstream text;
  try {
    session.Run(command);
  } catch (const InternalCheckFailure& failure) {
    text << failure.what();  // of a set without any category, among others
  }
  runtime::output::NewJsonRenderer({})->Render(session.report(), text);
  for (const auto& procedure : session.report().procedures) {
    for (const runtime::output::Sketch& sketch : procedure->sketches) {
      text << sketch.item;
      for (const double number : {sketch.total, sketch.missing, sketch.mean}) text << ' ' << PlainNumber(number);
      for (const double quartile : sketch.quartiles) text << ' ' << PlainNumber(quartile);
      for (const auto& bin : sketch.bins)
        text << " [" << PlainNumber(bin.from) << ' ' << PlainNumber(bin.to) << ' ' << PlainNumber(bin.weight) << ']';
      text << '\n';
    }
  }
  const std::optional<double> weight = session.report().facts->weightedCases;
  text << "weighted " << (weight ? PlainNumber(*weight) : "") << '\n';
  return text.str();
}

double AnyNumber(Random& random, std::size_t kind) {
  if (random.OneIn(9)) return kNaN;
  switch (kind) {
    case 0:
      return static_cast<double>(random.Below(4));
    case 1:
      return static_cast<double>(random.Below(9)) - 2.0;
    case 2:
      return static_cast<double>(random.Below(400)) - 100.0;
    case 3:
      return static_cast<double>(random.Below(40)) / 8.0;
    case 4:
      return static_cast<double>(random.Below(3)) * 1e6 + static_cast<double>(random.Below(3));
    case 5:
      return random.Unit() * 100.0 - 50.0;
    default:
      return random.Of<double>(
          {0.0, -0.0, 1e308, -1e308, 5e-324, -5e-324, 1e-310, 1.0, 3e9, 0x1p53, 0x1p53 + 2.0, 0.1});
  }
}

std::string AnyText(Random& random, bool few) {
  if (few) return random.Of<std::string>({"", "a", "b", "ab", "A", "\xC3\xA9", " x"});
  return "t" + std::to_string(random.Below(60));
}

double AnyWeight(Random& random, std::size_t kind) {
  if (random.OneIn(9)) return random.Of<double>({0.0, -1.0, kNaN, kInfinity});
  switch (kind) {
    case 0:
      return static_cast<double>(random.Below(4));
    case 1:
      return static_cast<double>(random.Below(16)) / 4.0;
    case 2:
      return random.Unit() * 3.0;
    case 3:
      return random.Of<double>({1e300, 1e-300, 5e-324, 1.0, 0.5, 1e17, 0x1p60, 1.7e308});
    case 4:
      return std::ldexp(random.Unit(), static_cast<int>(random.Below(60)) - 30);
    default:
      return 0.0;
  }
}

/// Cells of which the last two repeat the first: which cases come last is left to whoever counts groups, and so must
/// not matter. It would where a value is first met in the very last cases.
template <class Cell>
std::vector<Cell> Repeated(std::vector<Cell> cells) {
  if (cells.size() > 1) cells[cells.size() - 2] = cells.front();
  cells.back() = cells.front();
  return cells;
}

void AddRandomNumbers(Random& random, DatasetBuilder& builder, const std::string& name, std::size_t rows) {
  const std::size_t kind = random.Below(7);
  std::vector<double> cells;
  for (std::size_t row = 0; row < rows; ++row) cells.push_back(AnyNumber(random, kind));
  auto& variable = builder.AddNumeric(name, Repeated(std::move(cells)));
  const auto value = [&] {
    const double number = AnyNumber(random, kind);
    return std::isnan(number) ? 1.0 : number;
  };
  variable.Level(random.OneIn(2) ? MAVO_Variable_Enumerations::kLevelNominal : MAVO_Variable_Enumerations::kLevelScale);
  for (std::size_t missing = random.Below(3); missing > 0; --missing) variable.Missing(value());
  if (random.OneIn(4)) variable.MissingRange(-kInfinity, -1.0);
  for (std::size_t labels = random.Below(4); labels > 0; --labels) variable.ValueLabel(value(), "label");
}

void AddRandomTexts(Random& random, DatasetBuilder& builder, const std::string& name, std::size_t rows) {
  const bool few = !random.OneIn(3);
  std::vector<std::string> cells;
  for (std::size_t row = 0; row < rows; ++row) cells.push_back(AnyText(random, few));
  auto& variable = builder.AddString(name, Repeated(std::move(cells))).Width(5);
  if (random.OneIn(2)) variable.Missing(std::string());
  if (random.OneIn(3)) variable.Missing(AnyText(random, few));
  for (std::size_t labels = random.Below(3); labels > 0; --labels) variable.ValueLabel(AnyText(random, few), "label");
  if (random.OneIn(5)) variable.Level(MAVO_Variable_Enumerations::kLevelScale);
}

/// A dataset of `rows` cases.
std::shared_ptr<const Dataset> AnyDataset(Random& random, std::size_t rows) {
  DatasetBuilder builder;
  std::vector<std::string> numbers;
  std::vector<std::string> texts;
  for (std::size_t i = 2 + random.Below(5); i > 0; --i) {
    if (random.OneIn(3)) {
      texts.push_back("s" + std::to_string(i));
      AddRandomTexts(random, builder, texts.back(), rows);
    } else {
      numbers.push_back("n" + std::to_string(i));
      AddRandomNumbers(random, builder, numbers.back(), rows);
    }
  }
  const auto addSets = [&](const std::string& suffix, std::vector<std::string> members, const std::string& counted) {
    if (members.empty()) return;
    if (random.OneIn(4)) members.push_back(members.front());
    builder.AddCategorySet("$c" + suffix, members);
    builder.AddDichotomySet("$d" + suffix, members, counted);
  };
  addSets("n", numbers, "1");
  addSets("s", texts, "a");
  if (!random.OneIn(3)) {
    const std::size_t kind = random.Below(6);
    std::vector<double> weights;
    for (std::size_t row = 0; row < rows; ++row) weights.push_back(AnyWeight(random, kind));
    builder.AddNumeric("w", Repeated(std::move(weights)));
    builder.Weight("w");
  }
  return builder.Build(random.Of<std::int64_t>({0, 1, 3, 50}));
}

GroupingOptions AnyOptions(Random& random) {
  GroupingOptions options;
  if (random.OneIn(2)) options.mostGroups = static_cast<std::int64_t>(1 + random.Below(12));
  options.blockRows = random.Of<std::int64_t>({0, 0, 1, 3, 7});
  options.tableOfEach = random.OneIn(2);
  options.shuffles = random.OneIn(2);
  options.splits = random.OneIn(3);
  options.givesMoments = random.OneIn(2);
  return options;
}

class RandomGroups : public testing::TestWithParam<std::uint64_t> {};

TEST_P(RandomGroups, giveTheReportOfTheirCases) {
  for (std::uint64_t seed = 60 * GetParam(); seed < 60 * (GetParam() + 1); ++seed) {
    Random random(seed);
    const std::size_t rows = 1 + random.Below(random.Of<std::size_t>({4, 12, 40, 600, 3000}));
    const std::shared_ptr<const Dataset> cases = AnyDataset(random, rows);
    const GroupingOptions options = AnyOptions(random);
    const std::int64_t chunkRows = random.Of<std::int64_t>({0, 1, 3, 300});
    const int threads = 1 + static_cast<int>(random.Below(2));
    for (const std::size_t most : {random.Below(8), random.Below(70), std::size_t{200}}) {
      const std::string command =
          "CODEBOOK /FILEINFO CASECOUNT WEIGHT /VARINFO POSITION TYPE VALUELABELS MISSING "
          "/OPTIONS MAXCATS=" +
          std::to_string(most) + ".";
      ASSERT_EQ(ReportOf(Grouped(cases, options, chunkRows), command, threads), ReportOf(cases, command, 1))
          << "seed " << seed << ", MAXCATS " << most << ", at most " << options.mostGroups << " groups";
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomGroups, testing::Range<std::uint64_t>(0, 5));

/// Counts and percents of all categories of a dataset's variables and sets.
std::string CountingTo(int most) {
  return "CODEBOOK /FILEINFO CASECOUNT /VARINFO VALUELABELS /OPTIONS MAXCATS=" + std::to_string(most) + ".";
}

TEST(Groups, dropOutAtMaxcatsAsTheirCasesDo) {
  for (int values = 1; values <= 7; ++values) {
    for (const int repeated : {0, 1, 2, 5}) {
      std::vector<double> cells;
      for (int i = 0; i < values + repeated; ++i) cells.push_back(i % values);
      DatasetBuilder builder;
      builder.AddNumeric("a", cells).Level(MAVO_Variable_Enumerations::kLevelNominal);
      const std::shared_ptr<const Dataset> cases = builder.Build();
      for (int most = 1; most <= 8; ++most)
        for (const GroupingOptions& options : {GroupingOptions(), GroupingOptions{.mostGroups = 3}})
          EXPECT_EQ(ReportOf(Grouped(cases, options), CountingTo(most), 1), ReportOf(cases, CountingTo(most), 1))
              << values << " values, " << repeated << " of them repeated, MAXCATS " << most;
    }
  }
}

// A group brings as many values of a set as it has members, and there are fewer groups than values.
TEST(Groups, dropOutAtMaxcatsWithSetsOfManyValuesACase) {
  for (const int members : {1, 2, 3, 6}) {
    for (int cases = 1; cases <= 12; ++cases) {
      DatasetBuilder builder;
      std::vector<std::string> names;
      for (int member = 0; member < members; ++member) {
        names.push_back("m" + std::to_string(member));
        std::vector<double> cells;
        for (int i = 0; i < cases; ++i) cells.push_back(i % 2 == 0 ? member : 1);
        builder.AddNumeric(names.back(), cells).Level(MAVO_Variable_Enumerations::kLevelNominal);
      }
      builder.AddCategorySet("$c", names);
      builder.AddDichotomySet("$d", names, "1");
      const std::shared_ptr<const Dataset> dataset = builder.Build();
      for (int most = 1; most <= 8; ++most)
        EXPECT_EQ(ReportOf(Grouped(dataset), CountingTo(most), 1), ReportOf(dataset, CountingTo(most), 1))
            << members << " members, " << cases << " cases, MAXCATS " << most;
    }
  }
}

struct Asked {
  std::string report;
  std::vector<CountingRequest> forAll;
};

/// Of a source that gives at most ten rows of a list at first.
Asked AskedWith(const std::shared_ptr<const Dataset>& cases, const std::string& command) {
  const auto source = std::make_shared<GroupingSource>(cases, GroupingOptions{.mostGroups = 10});
  const auto dataset = std::make_shared<GroupedDataset>(cases->dictionary(), source, cases->caseCount());
  Asked asked;
  asked.report = ReportOf(dataset, command, 1);
  asked.forAll = source->askedForAll;
  return asked;
}

TEST(Groups, areAskedForInFullOnlyWhereTheyAreCounted) {
  std::vector<double> few;
  std::vector<double> many;
  std::vector<std::string> texts;
  for (int i = 0; i < 60; ++i) {
    few.push_back(i % 3);
    many.push_back(i % 20);
    texts.push_back("t" + std::to_string(i % 20));
  }
  DatasetBuilder builder;
  builder.AddNumeric("few", few).Level(MAVO_Variable_Enumerations::kLevelNominal);
  builder.AddNumeric("many", many).Level(MAVO_Variable_Enumerations::kLevelNominal);
  builder.AddString("texts", texts);
  builder.AddNumeric("scale", many);
  const std::shared_ptr<const Dataset> cases = builder.Build();
  const auto expect = [&](int most, std::size_t requests) {
    const Asked asked = AskedWith(cases, CountingTo(most));
    EXPECT_THAT(asked.forAll, SizeIs(requests)) << "MAXCATS " << most;
    EXPECT_EQ(asked.report, ReportOf(cases, CountingTo(most), 1)) << "MAXCATS " << most;
  };
  expect(5, 1);  // the scale variable's
  expect(8, 1);
  expect(10, 3);  // the eleventh value is too much
  expect(19, 3);
  expect(20, 3);
  const Asked without = AskedWith(cases, "CODEBOOK few many texts /VARINFO VALUELABELS /OPTIONS MAXCATS=5.");
  EXPECT_THAT(without.forAll, IsEmpty());
}

TEST(Groups, ofNoCaseGiveTheReportOfAnEmptyFile) {
  DatasetBuilder builder;
  builder.AddNumeric("a").ValueLabel(1, "one");
  builder.AddString("s");
  const std::shared_ptr<const Dataset> cases = builder.Build();
  for (const char* command : {"CODEBOOK /FILEINFO CASECOUNT.", "CODEBOOK /FILEINFO CASECOUNT /STATISTICS NONE."})
    EXPECT_EQ(ReportOf(Grouped(cases), command, 1), ReportOf(cases, command, 1));
}

TEST(Groups, ofWeightZeroCountNothing) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2, 1, 2}).Level(MAVO_Variable_Enumerations::kLevelNominal).ValueLabel(3, "three");
  builder.AddNumeric("x", {1, 2, 1, 2});
  builder.AddString("s", {"a", "b", "a", "a"});
  builder.AddNumeric("w", {0, -1, 0, kNaN});
  builder.AddDichotomySet("$d", {"a", "x"}, "1");
  builder.Weight("w");
  const std::shared_ptr<const Dataset> cases = builder.Build();
  for (const int most : {1, 2, 200})
    EXPECT_EQ(ReportOf(Grouped(cases), CountingTo(most), 1), ReportOf(cases, CountingTo(most), 1));
}

// Many rows of many tables: their weights are scaled, and their values looked for, by several threads.
TEST(Groups, areCountedByThreads) {
  Random random(1);
  DatasetBuilder builder;
  constexpr std::size_t kCases = 20000;
  std::vector<std::string> names;
  for (int i = 0; i < 8; ++i) {
    std::vector<double> cells;
    for (std::size_t row = 0; row < kCases; ++row)
      cells.push_back(i < 6 ? static_cast<double>(random.Below(9000)) / 8.0 : random.Unit());
    names.push_back("v" + std::to_string(i));
    auto& variable = builder.AddNumeric(names.back(), Repeated(std::move(cells)));
    variable.Level(i < 6 ? MAVO_Variable_Enumerations::kLevelNominal : MAVO_Variable_Enumerations::kLevelScale);
  }
  std::vector<double> weights;
  for (std::size_t row = 0; row < kCases; ++row) weights.push_back(static_cast<double>(random.Below(5)) / 4.0);
  builder.AddNumeric("w", Repeated(std::move(weights)));
  builder.Weight("w");
  const std::shared_ptr<const Dataset> cases = builder.Build();
  const GroupingOptions options{.shuffles = true, .splits = true, .givesMoments = true};
  const std::shared_ptr<const Dataset> groups = Grouped(cases, options);
  for (const int most : {100, 10000}) {
    const std::string ofCases = ReportOf(cases, CountingTo(most), 1);
    for (const int threads : {1, 2}) EXPECT_EQ(ReportOf(groups, CountingTo(most), threads), ofCases);
  }
}

/// The server goes away, at once or when more is asked for.
class FailingSource : public GroupingSource {
 public:
  FailingSource(const std::shared_ptr<const Dataset>& cases, bool atOnce)
      : GroupingSource(cases, GroupingOptions{.mostGroups = 2}), fAtOnce(atOnce) {}

  std::vector<CountedGroups> Count(const std::vector<CountingRequest>& requests) override {
    if (fAtOnce) throw DataError("The server is gone.");
    return GroupingSource::Count(requests);
  }
  CountedGroups CountAll(const CountingRequest&) override { throw DataError("The server is gone."); }

 private:
  bool fAtOnce;
};

TEST(Groups, thatCannotBeCountedStopTheRun) {
  DatasetBuilder builder;
  builder.AddNumeric("x", {1, 2, 3, 4, 5});
  builder.AddString("s", {"a", "b", "c", "a", "b"});
  const std::shared_ptr<const Dataset> cases = builder.Build();
  for (const bool atOnce : {true, false}) {
    const auto source = std::make_shared<FailingSource>(cases, atOnce);
    const auto dataset = std::make_shared<GroupedDataset>(cases->dictionary(), source, 5);
    for (const int threads : {1, 2}) EXPECT_THROW(ReportOf(dataset, CountingTo(200), threads), DataError);
  }
}

/// One variable with the values 1 and 2, which very many cases have.
class SourceOfManyCases : public runtime::data::GroupSource {
 public:
  std::vector<CountedGroups> Count(const std::vector<CountingRequest>& requests) override {
    std::vector<CountedGroups> answers;
    for (const auto& request : requests) answers.push_back(CountAll(request));
    return answers;
  }
  CountedGroups CountAll(const CountingRequest& request) override {
    CountedGroups counted;
    if (request.variables.empty()) {
      counted.rows = 1;
      counted.weights = {3e9};
      return counted;
    }
    DatasetBuilder builder;
    builder.AddNumeric("a", {1, 2});
    const std::shared_ptr<const Dataset> stored = builder.Build();
    counted.columns = {dynamic_cast<const runtime::data::ColumnarDataset&>(*stored).column(0)};
    counted.rows = 2;
    counted.weights = {1e9, 2e9};
    return counted;
  }
};

TEST(Groups, mayStandForMoreCasesThanAFileHas) {
  DatasetBuilder builder;
  builder.AddNumeric("a").Level(MAVO_Variable_Enumerations::kLevelNominal);
  const auto dataset = std::make_shared<GroupedDataset>(builder.Build()->dictionary(),
                                                        std::make_shared<SourceOfManyCases>(), 3'000'000'000);
  const CommandRun run(dataset, CountingTo(200));
  // The interface counts cases in an int.
  EXPECT_THAT(run.rows("File Information"),
              ElementsAre("Number of Cases > Unweighted | <unknown>", "Number of Cases > Weighted | 3000000000"));
  EXPECT_THAT(run.rowsOf("a", "Valid"), ElementsAre("Valid Values > 1.00 | Count: 1000000000 | Percent: 33.3%",
                                                    "Valid Values > 2.00 | Count: 2000000000 | Percent: 66.7%"));
  EXPECT_EQ(run.report().facts->cases, 3'000'000'000);
  EXPECT_EQ(run.report().facts->weightedCases, 3e9);
}

}  // namespace
}  // namespace codebook::test
