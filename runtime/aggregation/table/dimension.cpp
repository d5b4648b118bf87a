#include "host/aggregation/dimension.h"

#include <utility>

TableDimension::~TableDimension() = default;
TableMCSet::~TableMCSet() = default;
TableMDSet::~TableMDSet() = default;

AggregationVariable::AggregationVariable(int variable, const std::string& name)
    : AggregationVariable(Kind::Variable, {variable}, name) {}

AggregationVariable::AggregationVariable(Kind kind, std::vector<int> variables, const std::string& name)
    : fKind(kind), fVariables(std::move(variables)), fName(name) {}

AggregationVariable::~AggregationVariable() = default;

void AggregationVariable::SetCategoryList(const std::vector<ParsedCategory*>& categories) {
  fCategories.clear();
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
