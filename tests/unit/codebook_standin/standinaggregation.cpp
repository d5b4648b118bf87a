// The aggregation library of the stand-in: records what is asked and answers as the test planned.
#include <set>

#include "host/aggregation/table.h"

#include "tests/unit/codebook_standin/standin.h"

using codebook::standin::Cell;
using codebook::standin::host;

namespace {

std::string codes(const std::vector<AggregationStatistic>& statistics) {
  std::string text;
  for (const AggregationStatistic& statistic : statistics) {
    if (!text.empty()) text += " ";
    text += std::to_string(static_cast<int>(statistic.GetSummaryStatistic()));
    if (statistic.GetVariable() >= 0) text += " of " + std::to_string(statistic.GetVariable());
    if (statistic.GetPTileCutPoint() > 0.0)
      text += " at " + std::to_string(static_cast<int>(statistic.GetPTileCutPoint()));
  }
  return text;
}

std::string describe(const AggregationVariable& dimension) {
  const char* const kinds[] = {"variable", "category set", "dichotomy set"};
  std::string text = std::string(kinds[static_cast<int>(dimension.kind())]) + " " + dimension.name() + " over";
  for (const int variable : dimension.variables()) text += " " + std::to_string(variable);
  text += dimension.hasTotal() ? ", total" : ", no total";
  if (!dimension.categories().empty()) {
    text += ", listed";
    for (const auto& category : dimension.categories())
      text += " " + std::to_string(static_cast<int>(category->value()->number));
  }
  if (const auto* dichotomy = dynamic_cast<const AggregationMDSet*>(&dimension))
    text += ", counted value of width " + std::to_string(dichotomy->countedValueWidth());
  return text;
}

/// One dimension over the planned column and categories; Base makes it a variable's or a set's.
template <typename Base>
class PlannedDimension : public Base {
 public:
  PlannedDimension(const codebook::standin::Table& plan, std::vector<AggregationCategory>& categories)
      : Base(kUnknown), fPlan(plan), fCategories(categories) {}
  std::vector<AggregationCategory*> GetCategoryPointers() override {
    std::vector<AggregationCategory*> pointers;
    for (AggregationCategory& category : fCategories) pointers.push_back(&category);
    return pointers;
  }

 private:
  // Nothing is known beforehand: the values are counted whenever they are asked for.
  static constexpr TableProgress kUnknown{{0, 0}, {-1, 0}};

  int CountValues() const override {
    std::set<double> met;
    for (const int row : fPlan.takenRows) met.insert(fPlan.column.at(static_cast<std::size_t>(row)));
    return static_cast<int>(met.size());
  }

  const codebook::standin::Table& fPlan;
  std::vector<AggregationCategory>& fCategories;
};

}  // namespace

namespace runtime::aggregation {

class TableEngine {
 public:
  TableEngine(AggregationTable& table, codebook::standin::Table& planned) : plan(planned), cube(*this), fTable(table) {
    for (std::size_t k = 0; k < plan.categories.size(); ++k) {
      const codebook::standin::Category& category = plan.categories[k];
      categories.emplace_back(category.value, category.code, category.text, k + 1 == plan.categories.size());
    }
  }

  void setDimension(AggregationVariable* added) {
    variable.reset(added);
    if (added->kind() == AggregationVariable::Kind::CategorySet)
      dimension = std::make_unique<PlannedDimension<TableMCSet>>(plan, categories);
    else if (added->kind() == AggregationVariable::Kind::DichotomySet)
      dimension = std::make_unique<PlannedDimension<TableMDSet>>(plan, categories);
    else
      dimension = std::make_unique<PlannedDimension<TableDimension>>(plan, categories);
    added->setTableDimension(dimension.get());
    fTable.fMetadata.fDimension = dimension.get();
  }

  StatValues* values(const std::optional<Cell>& cell) {
    if (!cell) return nullptr;
    std::vector<double> numbers;
    std::vector<AggregationStatistic> statistics;
    for (const auto& [code, value] : *cell) {
      numbers.push_back(value);
      statistics.emplace_back(static_cast<TableEncryptionCodes::StatisticCodes>(code));
    }
    return answers.emplace_back(std::make_unique<StatValues>(numbers, statistics)).get();
  }

  codebook::standin::Table& plan;
  AggregationCube cube;
  std::vector<AggregationCategory> categories;
  std::unique_ptr<AggregationVariable> variable;
  std::unique_ptr<TableDimension> dimension;
  std::vector<std::unique_ptr<StatValues>> answers;

 private:
  AggregationTable& fTable;
};

}  // namespace runtime::aggregation

AggregationTable::AggregationTable(MAVO_InputCaseIterator& iterator, bool first, bool second, int third)
    : fCursor(&iterator.Cursor()) {
  const std::size_t number = host().tablesMade++;
  if (host().tables.size() <= number) host().tables.resize(number + 1);
  codebook::standin::Table& plan = host().tables[number];
  plan.requests.push_back(std::string("table ") + (first ? "true " : "false ") + (second ? "true " : "false ") +
                          std::to_string(third));
  fEngine = std::make_unique<runtime::aggregation::TableEngine>(*this, plan);
}
AggregationTable::~AggregationTable() { fEngine->plan.requests.emplace_back("~table"); }
AggregationCube* AggregationTable::CreateCube() {
  fEngine->plan.requests.emplace_back("cube");
  return &fEngine->cube;
}
// The rows noted stay empty, so that every case comes here.
void AggregationTable::BeginPendingRows() { fEngine->plan.takenRows.push_back(static_cast<int>(fCursor->row)); }
std::vector<CubeAggregator*> AggregationTable::GetCubeAggregators() {
  fEngine->plan.requests.emplace_back("aggregators");
  return {std::make_unique<CubeAggregator>(*fEngine).release()};
}

AggregationCube::AggregationCube(runtime::aggregation::TableEngine& engine) : fEngine(engine) {}
AggregationCube::~AggregationCube() = default;
void AggregationCube::AddCategoricalVariable(AggregationVariable* dimension,
                                             TableEncryptionCodes::DimensionPosition position) {
  fEngine.plan.requests.push_back(describe(*dimension) + ", at " + std::to_string(static_cast<int>(position)));
  fEngine.setDimension(dimension);
}
void AggregationCube::CreateCubeAggregator() { fEngine.plan.requests.emplace_back("aggregator"); }
void AggregationCube::AddScaleStatistics(const std::vector<AggregationStatistic>& statistics) {
  fEngine.plan.requests.push_back("scale " + codes(statistics));
}
void AggregationCube::AddCategoryAndTotalStatistics(const std::vector<AggregationStatistic>& perCategory,
                                                    AggregationVariable* dimension,
                                                    const std::vector<AggregationStatistic>& inTotal) {
  fEngine.plan.requests.push_back("categories of " + dimension->name() + ": " + codes(perCategory) +
                                  "; total: " + codes(inTotal));
}

CubeAggregator::CubeAggregator(runtime::aggregation::TableEngine& engine) : fEngine(engine) {}
CubeAggregator::~CubeAggregator() { fEngine.plan.requests.emplace_back("~aggregator"); }
StatValues* CubeAggregator::GetStatValues(const std::vector<const AggregationCategory*>& categories, int) const {
  if (categories.empty()) return fEngine.values(fEngine.plan.wholeCell);
  const auto k = static_cast<std::size_t>(categories.front() - fEngine.categories.data());
  return fEngine.values(fEngine.plan.categories[k].cell);
}

TableDimension::~TableDimension() = default;
TableMCSet::~TableMCSet() = default;
TableMDSet::~TableMDSet() = default;

AggregationVariable::AggregationVariable(int variable, const std::string& name)
    : AggregationVariable(Kind::Variable, {variable}, name) {}
AggregationVariable::AggregationVariable(Kind kind, std::vector<int> variables, const std::string& name)
    : fKind(kind), fVariables(std::move(variables)), fName(name) {}
AggregationVariable::~AggregationVariable() = default;
void AggregationVariable::SetCategoryList(const std::vector<ParsedCategory*>& categories) {
  for (ParsedCategory* category : categories) fCategories.emplace_back(category);
}
void AggregationVariable::SetSecondaryFlag(bool flag) { fSecondaryFlag = flag; }
TableDimension* AggregationVariable::GetTableDimension() const { return fDimension; }

AggregationMCSet::AggregationMCSet(const std::vector<int>& members, const std::string& name)
    : AggregationVariable(Kind::CategorySet, members, name) {}
AggregationMCSet::~AggregationMCSet() = default;
AggregationMDSet::AggregationMDSet(const std::vector<int>& members, const std::string& name, const OBS* countedValue,
                                   int width, bool)
    : AggregationVariable(Kind::DichotomySet, members, name), fCountedValue(countedValue), fWidth(width) {}
AggregationMDSet::~AggregationMDSet() = default;

AggregationStatistic::AggregationStatistic(TableEncryptionCodes::StatisticCodes code) : fCode(code) {}
AggregationStatistic::AggregationStatistic(int variable, TableEncryptionCodes::StatisticCodes code)
    : fCode(code), fVariable(variable) {}
CellStatistics::CellStatistics(std::vector<AggregationStatistic> statistics) : fStatistics(std::move(statistics)) {}
CellStatistics::~CellStatistics() = default;
CellStatistics::CellStatistics(const CellStatistics&) = default;
CellStatistics::CellStatistics(CellStatistics&&) noexcept = default;
CellStatistics& CellStatistics::operator=(const CellStatistics&) = default;
CellStatistics& CellStatistics::operator=(CellStatistics&&) noexcept = default;
StatValues::StatValues(std::vector<double> values, std::vector<AggregationStatistic> statistics)
    : fValues(std::move(values)), fStatistics(std::move(statistics)) {}
StatValues::~StatValues() = default;
AggregationResult StatValues::GetStatValue(int j) const {
  return AggregationResult(fValues[static_cast<std::size_t>(j)]);
}
CellStatistics StatValues::GetCellStatistics() const { return CellStatistics(fStatistics); }
AggregationCategory::~AggregationCategory() = default;
AggregationCategory::AggregationCategory(const AggregationCategory&) = default;
AggregationCategory::AggregationCategory(AggregationCategory&&) noexcept = default;
AggregationCategory& AggregationCategory::operator=(const AggregationCategory&) = default;
AggregationCategory& AggregationCategory::operator=(AggregationCategory&&) noexcept = default;
