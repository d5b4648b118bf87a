#include "codebook/parser/cbksettings.h"

namespace codebook {

void CodebookSettings::setItems(const std::vector<ListedItem>& items) {
  if (&items != &fItems) fItems = items;
}

void CodebookSettings::addListedSetName(const std::string& name) { fListedSetNames.push_back(name); }

void CodebookSettings::setVarInfo(bool position, bool label, bool type, bool format, bool measure, bool role,
                                  bool attributes, bool valueLabels, bool missing, bool reservedAttributes) {
  fVarInfoPosition = position;
  fVarInfoLabel = label;
  fVarInfoType = type;
  fVarInfoFormat = format;
  fVarInfoMeasure = measure;
  fVarInfoRole = role;
  fVarInfoAttributes = attributes;
  fVarInfoValueLabels = valueLabels;
  fVarInfoMissing = missing;
  fVarInfoReservedAttributes = reservedAttributes;
}

void CodebookSettings::setFileInfo(bool name, bool location, bool caseCount, bool label, bool attributes,
                                   bool documents, bool weight, bool reservedAttributes) {
  fFileInfoName = name;
  fFileInfoLocation = location;
  fFileInfoCaseCount = caseCount;
  fFileInfoLabel = label;
  fFileInfoAttributes = attributes;
  fFileInfoDocuments = documents;
  fFileInfoWeight = weight;
  fFileInfoReservedAttributes = reservedAttributes;
}

void CodebookSettings::setStatisticsNone(bool none) {
  fStatisticsNone = none;
  if (none) setStatistics(false, false, false, false, false);
}

void CodebookSettings::setStatistics(bool count, bool percent, bool mean, bool stdDev, bool quartiles) {
  fStatCount = count;
  fStatPercent = percent;
  fStatMean = mean;
  fStatStdDev = stdDev;
  fStatQuartiles = quartiles;
}

void CodebookSettings::setVarOrderAttribute(const std::string& name) {
  if (&name != &fVarOrderAttribute) fVarOrderAttribute = name;
}

void CodebookSettings::setItemKinds(const std::vector<std::int32_t>& kinds) {
  if (&kinds != &fItemKinds) fItemKinds = kinds;
}

}  // namespace codebook
