#include "codebook/cbkreport.h"

#include <utility>

#include "codebook/cbkorder.h"

namespace codebook {

namespace {

std::unique_ptr<ItemEntry> makeEntry(std::unique_ptr<CategoryDescriptor> descriptor, ItemEntry::PositionCode code,
                                     std::int32_t treatment) {
  auto entry = std::make_unique<ItemEntry>(std::move(descriptor), code);
  entry->setTreatment(treatment);
  return entry;
}

unsigned int valueLabelCount(const MAVO_Variable& variable) {
  return MAVO_ValueLabelMap(variable.GetValueLabels()).Size();
}

void cutTrailingComma(std::string& names) {
  if (names.ends_with(',')) names.pop_back();
}

}  // namespace

/// What the run prepares for its items; released before it returns. A scale variable with value labels has two entries,
/// its own and one for the labelled values, when counts or percents are wanted.
struct CodebookReport::Preparation {
  std::vector<std::unique_ptr<ItemEntry>> entries;
  std::vector<std::int32_t> kinds;  // an ItemKind an entry
  std::vector<AggregationStatistic> categoryStatistics;
};

CodebookReport::CodebookReport(CodebookSettings* settings, ProcedureDataSource* dataSource, BpProcedure* procedure,
                               ParserMessage* parserMessage)
    : fSettings(settings), fDataSource(dataSource), fProcedure(procedure), fParserMessage(parserMessage) {}

CodebookReport::~CodebookReport() = default;

void CodebookReport::run() {
  const bool noStatistics = fSettings->statisticsNone();
  const bool byDefault = !fSettings->statisticsGiven();

  std::vector<ListedItem> items = fSettings->items();
  orderItems(*fSettings, *fDataSource, items);

  fShownFlags.clear();
  Preparation prepared;
  if (!noStatistics) prepareItems(items, byDefault, prepared);

  // Made whether or not statistics are wanted.
  const std::unique_ptr<MAVO_InputCaseIterator> iterator(fDataSource->NewCaseIterator(0));
  if (!noStatistics && !passCases(prepared, byDefault, dynamic_cast<ProcDSIterator*>(iterator.get()))) {
    fParserMessage->GenericError("Empty dataset.", nullptr, nullptr, nullptr, nullptr, nullptr);
    return;
  }

  if (fSettings->fileInfoGiven()) writeFileInformation(fStatistics == nullptr ? -1.0 : fStatistics->CaseCount());
  writeItemTables(items, prepared, byDefault);
  warnNoInformation();
  warnNotDisplayed(items, prepared);
}

void CodebookReport::prepareItems(const std::vector<ListedItem>& items, bool byDefault, Preparation& prepared) {
  const std::vector<std::int32_t>& itemKinds = fSettings->itemKinds();
  const auto addEntry = [this, &prepared](std::unique_ptr<ItemEntry> entry) {
    prepared.kinds.push_back(entry->treatment());
    prepared.entries.push_back(std::move(entry));
    fShownFlags.push_back(true);
  };

  for (const ListedItem& item : items) {
    auto descriptor = std::make_unique<CategoryDescriptor>();
    std::int32_t treatment = kNominalItem;
    bool described = false;
    if (item.isSet()) {
      described = DescribeItemByName(*descriptor, fDataSource, item.name) != 0;
    } else {
      treatment = itemKinds[static_cast<std::size_t>(item.index)];
      described = DescribeVariable(*descriptor, fDataSource, item.index);
    }
    if (!described) return;  // the items behind it get no entry
    addEntry(makeEntry(std::move(descriptor), ItemEntry::kMainEntry, treatment));

    const bool labelsWanted = byDefault || fSettings->statCount() || fSettings->statPercent();
    if (treatment != kScaleItem || !labelsWanted) continue;
    if (valueLabelCount(fDataSource->GetVariable(item.index)) == 0) continue;
    auto labelled = std::make_unique<CategoryDescriptor>();
    if (!DescribeVariable(*labelled, fDataSource, item.index)) return;
    auto entry = makeEntry(std::move(labelled), ItemEntry::kValueLabelEntry, kNominalItem);
    entry->setValueLabelsAsCategories(true);
    addEntry(std::move(entry));
  }
}

bool CodebookReport::passCases(Preparation& prepared, bool byDefault, ProcDSIterator* iterator) {
  fScaleStatCodes = {TableEncryptionCodes::kValid, TableEncryptionCodes::kMissing};
  if (byDefault || fSettings->statMean()) fScaleStatCodes.push_back(TableEncryptionCodes::kMean);
  if (byDefault || fSettings->statStdDev()) fScaleStatCodes.push_back(TableEncryptionCodes::kStdDev);
  if (byDefault || fSettings->statQuartiles()) fScaleStatCodes.push_back(TableEncryptionCodes::kPercentile);

  // Percents always bring counts with them.
  if (byDefault || fSettings->statCount() || fSettings->statPercent())
    prepared.categoryStatistics.emplace_back(TableEncryptionCodes::kCount);
  if (byDefault || fSettings->statPercent()) prepared.categoryStatistics.emplace_back(TableEncryptionCodes::kPercent);

  if (iterator == nullptr) return false;
  fStatistics = std::make_unique<VariableStatistics>(prepared.entries, prepared.categoryStatistics, fScaleStatCodes);
  fStatistics->SetUp(*iterator, fSettings->maxCats());
  if (fStatistics->PassCases(fSettings->maxCats()) == 0) return false;
  fShownFlags = fStatistics->shownFlags();
  return true;
}

void CodebookReport::writeItemTables(const std::vector<ListedItem>& items, const Preparation& prepared,
                                     bool byDefault) {
  const std::vector<std::int32_t>& itemKinds = fSettings->itemKinds();
  std::uint32_t position = 0;
  for (const ListedItem& item : items) {
    if (item.isSet()) {
      if (position < prepared.entries.size()) {
        writeSetTable(item, *prepared.entries[position]->descriptor(), position, byDefault);
      } else {
        CategoryDescriptor descriptor;
        DescribeItemByName(descriptor, fDataSource, item.name);
        writeSetTable(item, descriptor, position, byDefault);
      }
    } else {
      // With STATISTICS NONE, and behind an item that could not be described, there is no entry.
      const std::int32_t treatment =
          position < prepared.kinds.size() ? prepared.kinds[position] : itemKinds[static_cast<std::size_t>(item.index)];
      position = writeVariableTable(static_cast<std::uint32_t>(item.index), position, byDefault,
                                    static_cast<std::uint32_t>(treatment));
    }
    ++position;  // may wrap from one below zero
  }
}

void CodebookReport::warnNoInformation() {
  if (fNoInformationList.empty()) return;
  cutTrailingComma(fNoInformationList);  // the blank before it stays
  fParserMessage->GenericWarning("No Variable Information for ^1.", fNoInformationList.c_str(), nullptr, nullptr,
                                 nullptr, nullptr);
}

void CodebookReport::warnNotDisplayed(const std::vector<ListedItem>& items, const Preparation& prepared) {
  std::string names;
  for (std::size_t i = 0; i < fShownFlags.size(); ++i) {
    if (!fShownFlags[i] && !prepared.categoryStatistics.empty()) names += displayName(*prepared.entries[i]) + ",";
  }

  const bool labelsShown = !fSettings->varInfoGiven() || fSettings->varInfoValueLabels();
  const bool countsComputed = !fSettings->statisticsNone() &&
                              (!fSettings->statisticsGiven() || fSettings->statCount() || fSettings->statPercent());
  if (labelsShown && !countsComputed) {
    for (const ListedItem& item : items) {
      if (item.isSet()) continue;
      const MAVO_Variable& variable = fDataSource->GetVariable(item.index);
      if (valueLabelCount(variable) > static_cast<unsigned int>(fSettings->maxCats()))
        names += std::string(variable.GetName()) + ",";
    }
  }

  if (names.empty()) return;
  cutTrailingComma(names);
  fParserMessage->GenericWarning("Value labels, counts, and/or percents not displayed for ^1.", names.c_str(), nullptr,
                                 nullptr, nullptr, nullptr);
}

}  // namespace codebook
