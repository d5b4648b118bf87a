// The table of a multiple response set.
#include <algorithm>
#include <string>
#include <vector>

#include "host/common/check.h"

#include "codebook/cbkoutput.h"
#include "codebook/cbkreport.h"

namespace codebook {

/// One table while it is being built, strictly top-down.
class SetTable {
 public:
  SetTable(CodebookReport& report, const ListedItem& item, const CategoryDescriptor& descriptor,
           std::uint32_t entryPosition, bool statisticsByDefault);

  void write();

 private:
  void writeStandardAttributes();
  void writeCategoryPart();
  void writeCountedCategories(BpGroup& group);
  void writeCategoriesAlone(BpGroup& group);
  void addMember(BpGroup& group, std::int32_t member);

  const MAVO_Variable& variable(std::int32_t index) const { return fReport.fDataSource->GetVariable(index); }
  bool isDichotomySet() const { return fDescriptor.kind == kDichotomySetItem; }

  CodebookReport& fReport;
  const CodebookSettings& fSettings;
  const ListedItem& fItem;
  const CategoryDescriptor& fDescriptor;
  const std::uint32_t fEntryPosition;
  bool fShowCounts;
  bool fShowPercents;

  BpPivotTable fTable;
  BpDimension fRows;
  ValueColumns fColumns;
  const BpFormatSpec fCountFormat = BpProcedure::Count();
  const BpFormatSpec fPercentFormat = BpProcedure::Percent();
  [[maybe_unused]] const BpFormatSpec fCoefficientFormat =
      BpProcedure::Coefficient();  // fetched with the others, unused
  bool fAnyRow = false;

  std::vector<std::int32_t> fMembers;  // dictionary indices: one a category, or the set's members
  std::vector<double> fCounts;
  std::vector<double> fPercents;
  std::vector<double> fValues;
  std::vector<std::string> fValueTexts;
};

SetTable::SetTable(CodebookReport& report, const ListedItem& item, const CategoryDescriptor& descriptor,
                   std::uint32_t entryPosition, bool statisticsByDefault)
    : fReport(report),
      fSettings(*report.fSettings),
      fItem(item),
      fDescriptor(descriptor),
      fEntryPosition(entryPosition),
      fShowCounts(statisticsByDefault || fSettings.statCount()),
      fShowPercents(statisticsByDefault || fSettings.statPercent()),
      fTable(report.fProcedure->PivotTable(dataText(item.name), dataText("Variable Information"), true)),
      fRows(makeRows(fTable)),
      fColumns(fTable) {}

void SetTable::write() {
  writeStandardAttributes();
  const bool noCategories =
      !fShowCounts && !fShowPercents && fSettings.varInfoGiven() && !fSettings.varInfoValueLabels();
  if (!noCategories) writeCategoryPart();
  if (!fAnyRow) fReport.fNoInformationList += fItem.name + " ,";
}

void SetTable::writeStandardAttributes() {
  BpGroup group = fRows.Group(fixedText("Standard Attributes"), true, BpGroup::kCreationOrder);
  if (!fSettings.varInfoGiven() || fSettings.varInfoLabel()) {
    group.Category(fixedText("Label"));
    fColumns.value.Cell(fDescriptor.text.empty() ? noneText() : dataText(fDescriptor.text));
    fAnyRow = true;
  }
  if (!fSettings.varInfoGiven() || fSettings.varInfoType()) {
    group.Category(fixedText("Type"));
    fColumns.value.Cell(fixedText(isDichotomySet() ? N_("Multiple Dichotomy Set") : N_("Multiple Category Set")));
    fAnyRow = true;
  }
}

void SetTable::writeCategoryPart() {
  if (fEntryPosition < fReport.fShownFlags.size() && !fReport.fShownFlags[fEntryPosition])
    fShowCounts = fShowPercents = false;
  const bool hasEntry = fReport.fStatistics != nullptr && fEntryPosition < fReport.fStatistics->itemCount();
  if (!hasEntry) fShowCounts = fShowPercents = false;

  const bool counted = fShowCounts || fShowPercents;
  if (counted) {
    double missing = 0.0;
    fReport.fStatistics->ReadCategoryResults(static_cast<int>(fEntryPosition), fCounts, fPercents, fValues, fValueTexts,
                                             fMembers, &missing);
  } else {
    fMembers = fDescriptor.memberIndices;
  }
  HostCheck(!fMembers.empty(), "mdSetVarIndice.size() >0", kOutputSource);

  BpGroup group = fRows.Group(fixedText("Multiple Response Categories"), true, BpGroup::kCreationOrder);
  if (counted)
    writeCountedCategories(group);
  else
    writeCategoriesAlone(group);
}

/// The member's name in the row's label, its label in the cell.
void SetTable::addMember(BpGroup& group, std::int32_t member) {
  group.Category(BpVariable(variable(member), BpVariable::kName));
  fColumns.value.Cell(BpVariable(variable(member), BpVariable::kLabel));
  fAnyRow = true;
}

void SetTable::writeCountedCategories(BpGroup& group) {
  const MAVO_Variable& first = variable(fMembers.front());
  const MAVO_ValueLabelMap labels(first.GetValueLabels());
  const std::size_t count = std::min<std::size_t>(fMembers.size(), static_cast<std::size_t>(fSettings.maxCats()));
  for (std::size_t k = 0; k < count; ++k) {
    if (isDichotomySet()) {
      addMember(group, fMembers[k]);
    } else {
      const MAVO_Variable& member = variable(fMembers[k]);
      const CategoryValue value(member, fValues[k], fValueTexts[k]);
      group.Category(BpDataValue(member, value.obs(), BpDataValue::kFormattedValue));
      fAnyRow = true;
      // The first member may be narrower or wider than this one, so a text is looked up as text.
      const char* label = member.GetType() != 0 ? labels.GetLabel(fValueTexts[k]) : labels.GetLabel(value.obs());
      if (label != nullptr) fColumns.value.Cell(dataText(label));
    }
    if (fShowCounts) fColumns.count.Cell(BpNumber(fCounts[k], fCountFormat));
    if (fShowPercents) fColumns.percent.Cell(BpNumber(fPercents[k], fPercentFormat));
  }
}

void SetTable::writeCategoriesAlone(BpGroup& group) {
  const auto most = static_cast<std::size_t>(fSettings.maxCats());
  if (isDichotomySet()) {
    const std::size_t count = std::min(fMembers.size(), most);
    for (std::size_t k = 0; k < count; ++k) addMember(group, fMembers[k]);
    return;
  }
  const MAVO_Variable& first = variable(fMembers.front());
  MAVO_ValueLabelMap labels(first.GetValueLabels());
  labels.Reset();
  const OBS* value = nullptr;
  const char* label = nullptr;
  for (std::size_t k = 0; k < most && labels.GetNextPair(value, label) != 0; ++k) {
    group.Category(BpDataValue(first, value, BpDataValue::kFormattedValueFromLabels));
    fColumns.value.Cell(dataText(label));
    fAnyRow = true;
  }
}

void CodebookReport::writeSetTable(const ListedItem& item, const CategoryDescriptor& descriptor,
                                   std::uint32_t entryPosition, bool statisticsByDefault) {
  SetTable(*this, item, descriptor, entryPosition, statisticsByDefault).write();
}

}  // namespace codebook
