// The statistics holder over entries that the test lists.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/output/proceduredatasource.h"

#include "codebook/cbkstatistics.h"
#include "codebook/parser/cbksettings.h"

namespace codebook::test {

struct ListedEntry {
  std::string name;  // empty: an entry without descriptor
  int treatment = kNominalItem;
  bool labelsAsCategories = false;
};

/// REQUIRES: an active dataset, for as long as this lives.
class StatisticsRun {
 public:
  StatisticsRun(const std::vector<ListedEntry>& listed, const std::vector<int>& categoryCodes,
                const std::vector<int>& scaleCodes) {
    for (const ListedEntry& entry : listed) {
      std::unique_ptr<CategoryDescriptor> descriptor;
      if (!entry.name.empty()) {
        descriptor = std::make_unique<CategoryDescriptor>();
        DescribeItemByName(*descriptor, &fDataSource, entry.name);
      }
      fEntries.push_back(std::make_unique<ItemEntry>(std::move(descriptor), ItemEntry::kMainEntry));
      fEntries.back()->setTreatment(entry.treatment);
      fEntries.back()->setValueLabelsAsCategories(entry.labelsAsCategories);
    }
    for (const int code : categoryCodes)
      fCategoryStatistics.emplace_back(static_cast<TableEncryptionCodes::StatisticCodes>(code));
    fScaleCodes.assign(scaleCodes.begin(), scaleCodes.end());
    fIterator.reset(fDataSource.NewCaseIterator(0));
    fStatistics = std::make_unique<VariableStatistics>(fEntries, fCategoryStatistics, fScaleCodes);
  }

  VariableStatistics& statistics() { return *fStatistics; }
  MAVO_InputCaseIterator& iterator() { return *fIterator; }
  int setUpAndPass(int maxCategories) {
    fStatistics->SetUp(*fIterator, maxCategories);
    return fStatistics->PassCases(maxCategories);
  }
  void destroyStatistics() { fStatistics.reset(); }

 private:
  ProcedureDataSource fDataSource;
  std::vector<std::unique_ptr<ItemEntry>> fEntries;
  std::vector<AggregationStatistic> fCategoryStatistics;
  std::vector<std::int32_t> fScaleCodes;
  std::unique_ptr<MAVO_InputCaseIterator> fIterator;
  std::unique_ptr<VariableStatistics> fStatistics;
};

}  // namespace codebook::test
