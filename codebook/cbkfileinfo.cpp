// The File Information table.
#include <string>
#include <vector>

#include "codebook/cbkoutput.h"
#include "codebook/cbkreport.h"

namespace codebook {

namespace {

/// Only a backslash separates the file's name from its directory; without one, or with one in front, both stay unknown.
struct FileParts {
  BpString name = noneText();
  BpString location = noneText();

  explicit FileParts(const char* fileSpec) {
    if (fileSpec == nullptr) return;
    const std::string path = fileSpec;
    const std::size_t backslash = path.rfind('\\');
    if (backslash == std::string::npos || backslash == 0) return;
    name = dataText(path.substr(backslash + 1));
    location = dataText(path.substr(0, backslash));
  }
};

/// The first line is joined to the second without a separator and every line from the second on ends one. Meant so.
std::string documentText(const DSDocument& document) {
  std::string text;
  for (std::size_t line = 0; line < document.Size(); ++line) {
    text += document[static_cast<int>(line)];
    if (line > 0) text += "\n";
  }
  return text;
}

void addCount(BpGroup& group, const char* label, double count, bool known) {
  BpCategory row = group.Category(fixedText(label));
  if (known)
    row.Cell(BpNumber(count, BpProcedure::Count()));
  else
    row.Cell(fixedText("<unknown>"));
}

/// `reservedOnly`: only names that begin with "$". Hidden attributes are in neither list.
void addAttributes(BpDimension& rows, const char* label, const DatasourceAttributes& attributes, bool reservedOnly) {
  BpGroup group = rows.Group(fixedText(label), true, BpGroup::kCreationOrder);
  for (std::size_t i = 0; i < attributes.Size(); ++i) {
    const std::string name = attributes.Name(i);
    if (isHiddenAttribute(name) || (reservedOnly && !isReservedAttribute(name))) continue;
    const std::vector<std::string> values = attributes.Values(i);
    for (std::size_t j = 0; j < values.size(); ++j)
      group.Category(dataText(elementName(name, j, values.size()))).Cell(dataText(attributeValueText(values[j])));
  }
}

}  // namespace

void CodebookReport::writeFileInformation(double weightedCaseCount) {
  BpPivotTable table = fProcedure->PivotTable(fixedText("File Information"), dataText("FileInformation"), true);
  table.MinDataColumnWidth(200);
  BpDimension rows = makeRows(table);

  const FileParts file(fDataSource->GetFileSpec());
  if (fSettings->fileInfoName()) rows.Category(fixedText("File Name")).Cell(file.name);
  if (fSettings->fileInfoLocation()) rows.Category(fixedText("Location")).Cell(file.location);
  if (fSettings->fileInfoLabel()) {
    const char* label = fDataSource->GetLabel();
    rows.Category(fixedText("Label")).Cell(label != nullptr ? dataText(label) : noneText());
  }
  if (fSettings->fileInfoDocuments()) {
    BpCategory documents = rows.Category(fixedText("Documents"));
    for (const DSDocument& document : GetDocuments(*fDataSource)) documents.Cell(dataText(documentText(document)));
  }
  if (fSettings->fileInfoWeight()) {
    const int weight = fDataSource->GetWeightVarIndex();
    rows.Category(fixedText("Weight Variable"))
        .Cell(weight >= 0 ? dataText(fDataSource->GetVariable(weight).GetName()) : noneText());
  }
  if (fSettings->fileInfoCaseCount()) {
    int count = fDataSource->NumberOfCases();
    // A dataset that is drawn from another is described by that one's size.
    if (const MAVO_DataSource* parent = fDataSource->Parent())
      count = const_cast<MAVO_DataSource*>(parent)->NumberOfCases();
    BpGroup group = rows.Group(fixedText("Number of Cases"), true, BpGroup::kCreationOrder);
    addCount(group, N_("Unweighted"), count, count >= 0);
    addCount(group, N_("Weighted"), weightedCaseCount, weightedCaseCount > 0.0);
  }
  if (fSettings->fileInfoAttributes())
    addAttributes(rows, N_("Custom Attributes"), fDataSource->GetAttributes(), false);
  if (fSettings->fileInfoReservedAttributes())
    addAttributes(rows, N_("Reserved Attributes"), fDataSource->GetAttributes(), true);
}

}  // namespace codebook
