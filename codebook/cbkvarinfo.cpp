// The Variable Information table.
#include <algorithm>
#include <string>
#include <vector>

#include "host/common/check.h"

#include "codebook/cbkoutput.h"
#include "codebook/cbkreport.h"

namespace codebook {

namespace {

const char* measurementText(int level) {
  switch (level) {
    case MAVO_Variable_Enumerations::kLevelNominal:
      return N_("Nominal");
    case MAVO_Variable_Enumerations::kLevelOrdinal:
      return N_("Ordinal");
    case MAVO_Variable_Enumerations::kLevelScale:
      return N_("Scale");
    default:
      return N_("Unknown");
  }
}

const char* roleText(int role) {
  switch (role) {
    case MAVO_Variable_Enumerations::kRoleTarget:
      return N_("Target");
    case MAVO_Variable_Enumerations::kRoleBoth:
      return N_("Both");
    case MAVO_Variable_Enumerations::kRoleNone:
      return N_("None");
    case MAVO_Variable_Enumerations::kRolePartition:
      return N_("Partition");
    case MAVO_Variable_Enumerations::kRoleSplit:
      return N_("Split");
    default:
      return N_("Input");
  }
}

constexpr double kNoRemainder = 1e-8;  // a smaller system-missing remainder is rounding

}  // namespace

/// One table while it is being built, strictly top-down.
class VariableTable {
 public:
  VariableTable(CodebookReport& report, std::uint32_t variableIndex, std::uint32_t entryPosition,
                bool statisticsByDefault, std::uint32_t treatment);

  /// Returns the position of the last entry used.
  std::uint32_t write();

 private:
  void writeStandardAttributes();
  void writeAttributes(const BpString& label, bool reserved);
  void writeScaleStatistics();
  void writeValues();
  void writeLabelledValues(std::size_t count);
  void writeCategories();
  void writeLabelledScaleCategories();

  BpCategory addRow(BpGroup& group, const BpCellText& label);
  bool shows(bool keywordGiven) const { return !fSettings.varInfoGiven() || keywordGiven; }
  bool isScale() const { return fTreatment == kScaleItem; }
  bool countsOrPercents() const { return fShowCounts || fShowPercents; }
  /// False behind an item that could not be described: such a position has no entry in the statistics.
  bool hasEntry() const { return fReport.fStatistics != nullptr && fEntryPosition < fReport.fStatistics->itemCount(); }
  /// The place of a code among the requested ones; their number when it was not requested.
  std::size_t codePosition(std::int32_t code) const;
  void writeCountCells(double count, double percent);

  CodebookReport& fReport;
  const CodebookSettings& fSettings;
  const MAVO_Variable fVariable;
  const std::uint32_t fVariableIndex;
  std::uint32_t fEntryPosition;
  const bool fStatisticsByDefault;
  const std::uint32_t fTreatment;

  BpPivotTable fTable;
  BpDimension fRows;
  ValueColumns fColumns;
  const BpFormatSpec fCountFormat = BpProcedure::Count();
  const BpFormatSpec fPercentFormat = BpProcedure::Percent();
  [[maybe_unused]] const BpFormatSpec fCoefficientFormat =
      BpProcedure::Coefficient();  // fetched with the others, unused
  const BpFormatSpec fMeanFormat;
  const BpFormatSpec fStdDevFormat;
  bool fAnyRow = false;

  bool fShowCounts;
  bool fShowPercents;
  const bool fShowValid;  // settled here: counts that are dropped later leave the labelled values
  const bool fShowMissing;
  std::vector<double> fCounts;
  std::vector<double> fPercents;
  std::vector<double> fValues;
  std::vector<std::string> fValueTexts;
  std::vector<std::int32_t> fSetCodes;
  double fMissing = 0.0;
  double fTotal = 0.0;
};

VariableTable::VariableTable(CodebookReport& report, std::uint32_t variableIndex, std::uint32_t entryPosition,
                             bool statisticsByDefault, std::uint32_t treatment)
    : fReport(report),
      fSettings(*report.fSettings),
      fVariable(report.fDataSource->GetVariable(static_cast<int>(variableIndex))),
      fVariableIndex(variableIndex),
      fEntryPosition(entryPosition),
      fStatisticsByDefault(statisticsByDefault),
      fTreatment(treatment),
      fTable(report.fProcedure->PivotTable(dataText(fVariable.GetName()), dataText("Variable Information"), false)),
      fRows(makeRows(fTable)),
      fColumns(fTable),
      fMeanFormat(report.fProcedure->Mean(static_cast<int>(variableIndex))),
      fStdDevFormat(report.fProcedure->StdDev(static_cast<int>(variableIndex))),
      fShowCounts(statisticsByDefault || fSettings.statCount()),
      fShowPercents(statisticsByDefault || fSettings.statPercent()),
      fShowValid(countsOrPercents() || shows(fSettings.varInfoValueLabels())),
      fShowMissing(countsOrPercents() || shows(fSettings.varInfoMissing())) {}

std::uint32_t VariableTable::write() {
  writeStandardAttributes();
  if (shows(fSettings.varInfoAttributes())) writeAttributes(fixedText("Custom Attributes"), false);
  // Never by default, and its label is marked as data, unlike the file's. Kept as it is.
  if (fSettings.varInfoReservedAttributes()) writeAttributes(dataText("Reserved Attributes"), true);
  if (isScale() && !fSettings.statisticsNone() && !fReport.fScaleStatCodes.empty() && hasEntry())
    writeScaleStatistics();

  const bool noValues =
      !countsOrPercents() && fSettings.varInfoGiven() && !fSettings.varInfoValueLabels() && !fSettings.varInfoMissing();
  if (!noValues) writeValues();

  if (!fAnyRow) fReport.fNoInformationList += std::string(fVariable.GetName()) + " ,";
  return fEntryPosition;
}

BpCategory VariableTable::addRow(BpGroup& group, const BpCellText& label) {
  fAnyRow = true;
  return group.Category(label);
}

void VariableTable::writeStandardAttributes() {
  BpGroup group = fRows.Group(fixedText("Standard Attributes"), true, BpGroup::kCreationOrder);
  const auto add = [this, &group](const char* label, const BpCellText& cell) {
    addRow(group, fixedText(label));
    fColumns.value.Cell(cell);
  };
  if (shows(fSettings.varInfoPosition())) add(N_("Position"), BpNumber(fVariableIndex + 1.0, fCountFormat));
  if (shows(fSettings.varInfoLabel())) {
    const char* label = fVariable.GetLabel();
    add(N_("Label"), label != nullptr ? dataText(label) : noneText());
  }
  if (shows(fSettings.varInfoType()))
    add(N_("Type"), fixedText(fVariable.GetType() == 0 ? N_("Numeric") : N_("String")));
  if (shows(fSettings.varInfoFormat())) add(N_("Format"), dataText(formatText(fVariable.GetWriteFormatEx())));
  if (shows(fSettings.varInfoMeasure()))
    add(N_("Measurement"), fixedText(measurementText(fVariable.GetMeasurementLevel())));
  if (shows(fSettings.varInfoRole())) add(N_("Role"), fixedText(roleText(fVariable.GetRole())));
}

/// Of the reserved ones no hidden test is made here, unlike in the file's table.
void VariableTable::writeAttributes(const BpString& label, bool reserved) {
  BpGroup group = fRows.Group(label, true, BpGroup::kCreationOrder);
  const DatasourceAttributes& attributes = fVariable.GetAttributes();
  for (std::size_t i = 0; i < attributes.Size(); ++i) {
    const std::string name = attributes.Name(i);
    if (reserved ? !isReservedAttribute(name) : isHiddenAttribute(name)) continue;
    const std::vector<std::string> values = attributes.Values(i);
    for (std::size_t j = 0; j < values.size(); ++j) {
      addRow(group, dataText(elementName(name, j, values.size())));
      fColumns.value.Cell(dataText(attributeValueText(values[j])));
    }
  }
}

std::size_t VariableTable::codePosition(std::int32_t code) const {
  const std::vector<std::int32_t>& codes = fReport.fScaleStatCodes;
  return static_cast<std::size_t>(std::find(codes.begin(), codes.end(), code) - codes.begin());
}

void VariableTable::writeScaleStatistics() {
  const std::size_t codeCount = fReport.fScaleStatCodes.size();
  std::vector<double> results;
  fReport.fStatistics->ReadScaleResults(static_cast<int>(fEntryPosition), results);
  HostCheck(results.size() == codeCount || results.size() == codeCount + 2,
            "results.size() == fScaleStatCodes.size() || (results.size() == fScaleStatCodes.size()+2)", kOutputSource);

  const auto add = [this, codeCount, &results](BpGroup& group, const char* label, std::int32_t code, bool wanted,
                                               const BpFormatSpec& format) {
    const std::size_t position = codePosition(code);
    if (!wanted || position == codeCount) return;
    addRow(group, fixedText(label));
    fColumns.value.Cell(BpNumber(results[position], format));
  };

  BpGroup counts = fRows.Group(fixedText("N"), true, BpGroup::kCreationOrder);
  add(counts, N_("Valid"), TableEncryptionCodes::kValid, true, fCountFormat);
  add(counts, N_("Missing"), TableEncryptionCodes::kMissing, true, fCountFormat);

  BpGroup moments = fRows.Group(fixedText("Central Tendency and Dispersion"), true, BpGroup::kCreationOrder);
  add(moments, N_("Mean"), TableEncryptionCodes::kMean, fStatisticsByDefault || fSettings.statMean(), fMeanFormat);
  add(moments, N_("Standard Deviation"), TableEncryptionCodes::kStdDev, fStatisticsByDefault || fSettings.statStdDev(),
      fStdDevFormat);
  const std::size_t percentiles = codePosition(TableEncryptionCodes::kPercentile);
  if ((fStatisticsByDefault || fSettings.statQuartiles()) && results.size() == percentiles + 3) {
    constexpr const char* kLabels[] = {N_("Percentile 25"), N_("Percentile 50"), N_("Percentile 75")};
    for (std::size_t j = 0; j < 3; ++j) {
      addRow(moments, fixedText(kLabels[j]));
      fColumns.value.Cell(BpNumber(results[percentiles + j], fMeanFormat));
    }
  }
}

void VariableTable::writeValues() {
  const std::size_t labelCount = MAVO_ValueLabelMap(fVariable.GetValueLabels()).Size();

  // The value list of a scale variable has the entry behind the variable's own. Without value labels the position goes
  // one back whether or not it went forward: with counts and percents off it ends one below where it began, so that the
  // next item reads this one's statistics. Required so.
  if (isScale() && countsOrPercents()) ++fEntryPosition;
  if (isScale() && labelCount == 0) {
    --fEntryPosition;
    return;
  }
  if (fEntryPosition < fReport.fShownFlags.size() && !fReport.fShownFlags[fEntryPosition])
    fShowCounts = fShowPercents = false;
  if (countsOrPercents() && !hasEntry()) fShowCounts = fShowPercents = false;

  std::size_t count = labelCount;
  if (countsOrPercents()) {
    fTotal = fReport.fStatistics->ReadCategoryResults(static_cast<int>(fEntryPosition), fCounts, fPercents, fValues,
                                                      fValueTexts, fSetCodes, &fMissing);
    count = fValues.size();
  }
  if (count < 1 || count > static_cast<std::size_t>(fSettings.maxCats())) return;

  if (!countsOrPercents())
    writeLabelledValues(count);
  else if (isScale())
    writeLabelledScaleCategories();
  else
    writeCategories();
}

void VariableTable::writeLabelledValues(std::size_t count) {
  BpGroup labelled = fRows.Group(fixedText("Labeled Values"), true, BpGroup::kCreationOrder);
  BpGroup valid = fRows.Group(fixedText("Valid Values"), true, BpGroup::kCreationOrder);
  BpGroup missing = fRows.Group(fixedText("Missing Values"), true, BpGroup::kCreationOrder);

  MAVO_ValueLabelMap labels(fVariable.GetValueLabels());
  labels.Reset();
  const OBS* value = nullptr;
  const char* label = nullptr;
  for (std::size_t k = 0; k < count && labels.GetNextPair(value, label) != 0; ++k) {
    BpGroup* group = &labelled;
    if (!isScale()) {
      const bool isMissing = fVariable.IsMissing(value) != 0;
      if (!(isMissing ? fShowMissing : fShowValid)) continue;
      group = isMissing ? &missing : &valid;
    }
    addRow(*group, BpDataValue(fVariable, value, BpDataValue::kFormattedValue));
    fColumns.value.Cell(dataText(label));
  }
}

void VariableTable::writeCountCells(double count, double percent) {
  if (fShowCounts) fColumns.count.Cell(BpNumber(count, fCountFormat));
  if (fShowPercents) fColumns.percent.Cell(BpNumber(percent, fPercentFormat));
}

void VariableTable::writeCategories() {
  BpGroup valid = fRows.Group(fixedText("Valid Values"), true, BpGroup::kCreationOrder);
  BpGroup missing = fRows.Group(fixedText("Missing Values"), true, BpGroup::kCreationOrder);
  const MAVO_ValueLabelMap labels(fVariable.GetValueLabels());

  double userMissing = 0.0;
  for (std::size_t k = 0; k < fValues.size(); ++k) {
    const CategoryValue value(fVariable, fValues[k], fValueTexts[k]);
    const bool isMissing = fVariable.IsMissing(value.obs()) != 0;
    if (isMissing) userMissing += fCounts[k];
    addRow(isMissing ? missing : valid, BpDataValue(fVariable, value.obs(), BpDataValue::kFormattedValue));
    if (const char* label = labels.GetLabel(value.obs())) fColumns.value.Cell(dataText(label));
    writeCountCells(fCounts[k], fShowPercents ? fPercents[k] : 0.0);
  }

  const double systemMissing = fMissing - userMissing;
  if (systemMissing > kNoRemainder && fTotal > 0.0) {
    addRow(missing, fixedText("System"));
    writeCountCells(systemMissing, systemMissing / fTotal * 100.0);
  }
}

void VariableTable::writeLabelledScaleCategories() {
  const double caseCount = fReport.fStatistics->CaseCount();
  BpGroup labelled = fRows.Group(fixedText("Labeled Values"), true, BpGroup::kCreationOrder);
  const MAVO_ValueLabelMap labels(fVariable.GetValueLabels());
  const std::size_t most = std::min<std::size_t>(labels.Size(), static_cast<std::size_t>(fSettings.maxCats()));

  std::size_t written = 0;
  for (std::size_t k = 0; k < fValues.size() && written < most; ++k) {
    const CategoryValue value(fVariable, fValues[k], fValueTexts[k]);
    const char* label = labels.GetLabel(value.obs());
    if (label == nullptr) continue;
    addRow(labelled, BpDataValue(fVariable, value.obs(), BpDataValue::kFormattedValue));
    fColumns.value.Cell(dataText(label));
    const double percent = !fShowPercents ? 0.0 : caseCount > 0.0 ? fCounts[k] / caseCount * 100.0 : fPercents[k];
    writeCountCells(fCounts[k], percent);
    ++written;
  }
}

std::uint32_t CodebookReport::writeVariableTable(std::uint32_t variableIndex, std::uint32_t entryPosition,
                                                 bool statisticsByDefault, std::uint32_t treatment) {
  return VariableTable(*this, variableIndex, entryPosition, statisticsByDefault, treatment).write();
}

}  // namespace codebook
