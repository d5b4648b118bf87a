// What one CODEBOOK command asked for.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace codebook {

/// One listed item: a variable, or a multiple response set (its name begins with "$").
struct ListedItem {
  std::string name;
  /// Of a variable its dictionary position, from 0. Of a set a number at or above the dictionary's variable count,
  /// handed out in the order in which sets are added to the list.
  std::int32_t index = 0;

  bool isSet() const { return !name.empty() && name.front() == '$'; }
};

/// How an item is treated for statistics.
enum ItemKind : std::int32_t {
  kScaleItem = 1,    // summary statistics
  kNominalItem = 2,  // categories with counts and percents
  kOrdinalItem = 3   // the same; only an ordinal keyword in the variable list gives it
};

enum VarOrder : std::int32_t {
  kOrderFile = 0,
  kOrderAlpha = 1,
  kOrderVarList = 2,
  kOrderMeasure = 3,
  kOrderAttribute = 4
};

inline constexpr std::int32_t kDefaultMaxCats = 200;

/// A plain record: defaults from the constructor, written while the command is parsed, only read afterwards. For
/// VARINFO, FILEINFO and STATISTICS the keyword flags are always written by a parse; the given-flag tells whether the
/// user chose.
class CodebookSettings {
 public:
  const std::vector<ListedItem>& items() const { return fItems; }
  const std::vector<std::string>& listedSetNames() const { return fListedSetNames; }
  bool allSetsListed() const { return fAllSetsListed; }
  bool varInfoGiven() const { return fVarInfoGiven; }
  bool varInfoPosition() const { return fVarInfoPosition; }
  bool varInfoLabel() const { return fVarInfoLabel; }
  bool varInfoType() const { return fVarInfoType; }
  bool varInfoFormat() const { return fVarInfoFormat; }
  bool varInfoMeasure() const { return fVarInfoMeasure; }
  bool varInfoRole() const { return fVarInfoRole; }
  bool varInfoAttributes() const { return fVarInfoAttributes; }
  bool varInfoValueLabels() const { return fVarInfoValueLabels; }
  bool varInfoMissing() const { return fVarInfoMissing; }
  bool varInfoReservedAttributes() const { return fVarInfoReservedAttributes; }
  bool fileInfoGiven() const { return fFileInfoGiven; }
  bool fileInfoName() const { return fFileInfoName; }
  bool fileInfoLocation() const { return fFileInfoLocation; }
  bool fileInfoCaseCount() const { return fFileInfoCaseCount; }
  bool fileInfoLabel() const { return fFileInfoLabel; }
  bool fileInfoAttributes() const { return fFileInfoAttributes; }
  bool fileInfoDocuments() const { return fFileInfoDocuments; }
  bool fileInfoWeight() const { return fFileInfoWeight; }
  bool fileInfoReservedAttributes() const { return fFileInfoReservedAttributes; }
  bool statisticsGiven() const { return fStatisticsGiven; }
  bool statisticsNone() const { return fStatisticsNone; }
  bool statCount() const { return fStatCount; }
  bool statPercent() const { return fStatPercent; }
  bool statMean() const { return fStatMean; }
  bool statStdDev() const { return fStatStdDev; }
  bool statQuartiles() const { return fStatQuartiles; }
  std::int32_t maxCats() const { return fMaxCats; }
  bool optionsGiven() const { return fOptionsGiven; }
  bool sortAscending() const { return fSortAscending; }
  std::int32_t varOrder() const { return fVarOrder; }
  std::string varOrderAttribute() const { return fVarOrderAttribute; }
  std::vector<std::int32_t>& itemKinds() { return fItemKinds; }

  void setItems(const std::vector<ListedItem>& items);
  void addListedSetName(const std::string& name);
  void setAllSetsListed(bool listed) { fAllSetsListed = listed; }
  void setVarInfoGiven(bool given) { fVarInfoGiven = given; }
  void setVarInfo(bool position, bool label, bool type, bool format, bool measure, bool role, bool attributes,
                  bool valueLabels, bool missing, bool reservedAttributes);
  void setFileInfoGiven(bool given) { fFileInfoGiven = given; }
  void setFileInfo(bool name, bool location, bool caseCount, bool label, bool attributes, bool documents, bool weight,
                   bool reservedAttributes);
  void setStatisticsGiven(bool given) { fStatisticsGiven = given; }
  /// True also clears the five statistic flags; false leaves them as they are.
  void setStatisticsNone(bool none);
  /// Leaves statisticsNone alone.
  void setStatistics(bool count, bool percent, bool mean, bool stdDev, bool quartiles);
  void setMaxCats(std::int32_t maxCats) { fMaxCats = maxCats; }
  void setOptionsGiven(bool given) { fOptionsGiven = given; }
  void setSortAscending(bool ascending) { fSortAscending = ascending; }
  void setVarOrder(VarOrder order) { fVarOrder = order; }
  void setVarOrderAttribute(const std::string& name);
  void setItemKinds(const std::vector<std::int32_t>& kinds);

 private:
  std::vector<ListedItem> fItems;
  std::vector<std::string> fListedSetNames;
  bool fAllSetsListed = false;
  bool fVarInfoGiven = false;
  bool fVarInfoPosition = false;
  bool fVarInfoLabel = false;
  bool fVarInfoType = false;
  bool fVarInfoFormat = false;
  bool fVarInfoMeasure = false;
  bool fVarInfoRole = false;
  bool fVarInfoAttributes = false;
  bool fVarInfoValueLabels = false;
  bool fVarInfoMissing = false;
  bool fVarInfoReservedAttributes = false;
  bool fFileInfoGiven = false;
  bool fFileInfoName = false;
  bool fFileInfoLocation = false;
  bool fFileInfoCaseCount = false;
  bool fFileInfoLabel = false;
  bool fFileInfoAttributes = false;
  bool fFileInfoDocuments = false;
  bool fFileInfoWeight = false;
  bool fFileInfoReservedAttributes = false;
  bool fStatisticsGiven = false;
  bool fStatisticsNone = false;
  bool fStatCount = true;
  bool fStatPercent = true;
  bool fStatMean = true;
  bool fStatStdDev = true;
  bool fStatQuartiles = true;
  std::int32_t fMaxCats = kDefaultMaxCats;
  bool fOptionsGiven = false;
  bool fSortAscending = true;
  std::int32_t fVarOrder = kOrderVarList;
  std::string fVarOrderAttribute;
  std::vector<std::int32_t> fItemKinds;  // an ItemKind a variable, by dictionary position, then one a set
};

}  // namespace codebook
