#include "runtime/data/dictionary/writing/ddidocument.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include <fmt/format.h>

#include "runtime/data/dictionary/ddi/ddiwords.h"
#include "runtime/data/dictionary/formattext.h"
#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/dictionary/numberwords.h"
#include "runtime/data/dictionary/writing/ddielements.h"
#include "runtime/data/dictionary/writing/ddigrammar.h"

namespace runtime::data {
namespace {

constexpr const char* kFileId = "F1";

bool IsNumeric(FieldType type) { return type != FieldType::String && type != FieldType::Inferred; }

const char* CategoryOfFormat(FieldType type) {
  switch (type) {
    case FieldType::Date:
    case FieldType::DateTime:
    case FieldType::Year:
    case FieldType::YearMonth:
      return "date";
    case FieldType::Time:
    case FieldType::Duration:
      return "time";
    default:
      return nullptr;
  }
}

const ExtraProperty* FindExtra(const std::vector<ExtraProperty>& extras, std::string_view name) {
  for (const ExtraProperty& extra : extras)
    if (extra.name == name) return &extra;
  return nullptr;
}

std::optional<std::string> TextOfExtra(const std::vector<ExtraProperty>& extras, std::string_view name) {
  const ExtraProperty* extra = FindExtra(extras, name);
  const Json json = extra ? Json::parse(extra->json, nullptr, false) : Json();
  const Json& first = json.is_array() && !json.empty() ? json.front() : json;
  return first.is_string() ? std::optional(first.get<std::string>()) : std::nullopt;
}

/// Attributes that DDI has elements for.
void PlaceTexts(const DatasourceAttributes& attributes, std::span<const DdiText> texts, XmlElement& root) {
  for (std::size_t i = 0; i < attributes.Size(); ++i) {
    const std::string name = attributes.Name(i);
    const auto text =
        std::find_if(texts.begin(), texts.end(), [&name](const DdiText& known) { return known.attribute == name; });
    if (text == texts.end()) continue;
    for (const std::string& value : attributes.Values(i))
      if (!value.empty()) PlaceElement(root, text->path).text = value;
  }
}

void AddSummary(const SummaryStatistics& summary, const std::optional<std::string>& weight, XmlElement& variable) {
  const auto add = [&](const char* type, const std::optional<double>& value) {
    if (!value) return;
    XmlElement& element = variable.AddText("sumStat", NumberWords(*value));
    if (weight) {
      element.SetAttribute("wgtd", "wgtd");
      element.SetAttribute("wgt-var", *weight);
    }
    element.SetAttribute("type", type);
  };
  add("vald", summary.valid);
  add("invd", summary.invalid);
  add("mean", summary.mean);
  add("medn", summary.median);
  add("stdev", summary.deviation);
  add("min", summary.minimum);
  add("max", summary.maximum);
}

/// Builds one document.
class DdiBuilder {
 public:
  DdiBuilder(const TableDescriptor& table, const DdiStatistics* statistics)
      : fTable(table), fStatistics(statistics), fBook(std::make_unique<XmlElement>("codeBook")) {}

  std::unique_ptr<XmlElement> Build() {
    NameVariables();
    fBook->SetAttribute("xmlns", "ddi:codebook:2_5");
    fBook->SetAttribute("version", "2.5");
    AddDocument();
    AddStudy();
    AddFile();
    XmlElement& data = fBook->ChildOrNew("dataDscr");
    for (std::size_t i = 0; i < fTable.sets.size(); ++i) AddSet(i, data);
    for (std::size_t i = 0; i < fTable.fields.size(); ++i) AddVariable(i, data);
    PlaceTexts(fTable.attributes, kDdiStudyTexts, *fBook);
    PlaceDdiExtras(fTable.extras, *fBook);
    MakeValidDdi(*fBook);
    return std::move(fBook);
  }

 private:
  /// The IDs that the fields had, and others for those without.
  void NameVariables() {
    fIds.resize(fTable.fields.size());
    for (std::size_t i = 0; i < fIds.size(); ++i) {
      const std::string id = TextOfExtra(fTable.fields[i].extras, "ddi:@ID").value_or("");
      if (IsXmlName(id) && fTakenIds.insert(id).second) fIds[i] = id;
    }
    for (std::size_t i = 0; i < fIds.size(); ++i)
      if (fIds[i].empty()) fIds[i] = NewId(fmt::format("V{}", i + 1));
    for (std::size_t i = 0; i < fIds.size(); ++i) fIdOfField.emplace(fTable.fields[i].name, fIds[i]);
    if (fTable.weight)
      if (const auto found = fIdOfField.find(*fTable.weight); found != fIdOfField.end()) fWeightId = found->second;
  }

  std::string NewId(std::string id) {
    while (!fTakenIds.insert(id).second) id += '_';
    return id;
  }

  std::string Title() const {
    if (fTable.label) return *fTable.label;
    return FileName().value_or("");
  }

  std::optional<std::string> FileName() const {
    if (!fTable.dataPaths.empty()) return std::filesystem::path(fTable.dataPaths.front()).filename().string();
    return TextOfExtra(fTable.resourceExtras, "path");
  }

  void AddDocument() {
    XmlElement& citation = fBook->Add("docDscr").Add("citation");
    XmlElement& title = citation.Add("titlStmt").AddText("titl", Title());
    title.isReplaceable = true;
    XmlElement& software = citation.Add("prodStmt").AddText("software", "codebook");
    software.isReplaceable = true;
  }

  void AddStudy() {
    XmlElement& study = fBook->Add("stdyDscr");
    study.Add("citation").Add("titlStmt").AddText("titl", Title());
    for (const std::vector<std::string>& lines : fTable.documents) {
      const std::string text = fmt::format("{}", fmt::join(lines, "\n"));
      if (!text.empty()) study.ChildOrNew("stdyInfo").AddText("abstract", text);
    }
  }

  void AddFile() {
    XmlElement& file = fBook->Add("fileDscr");
    file.SetAttribute("ID", kFileId);
    XmlElement& text = file.Add("fileTxt");
    const auto add = [](XmlElement& parent, const char* name, const std::string& value) {
      parent.AddText(name, value).isReplaceable = true;
    };
    if (const std::optional<std::string> name = FileName()) add(text, "fileName", *name);
    XmlElement& size = text.Add("dimensns");
    if (fStatistics && fStatistics->cases) add(size, "caseQnty", fmt::format("{}", *fStatistics->cases));
    add(size, "varQnty", fmt::format("{}", fTable.fields.size()));
    if (fTable.dialect.encoding) {
      XmlElement& type = text.AddText("fileType", "text");
      type.SetAttribute("charset", *fTable.dialect.encoding);
      type.isReplaceable = true;
    }
  }

  void AddSet(std::size_t index, XmlElement& data) {
    const SetDescriptor& set = fTable.sets[index];
    XmlElement& group = data.Add("varGrp");
    group.SetAttribute("ID", NewId(fmt::format("G{}", index + 1)));
    group.SetAttribute("type", "multipleResp");
    std::string members;
    for (const std::string& member : set.variables) {
      const auto found = fIdOfField.find(member);
      if (found != fIdOfField.end()) members += (members.empty() ? "" : " ") + found->second;
    }
    group.SetAttribute("var", members);
    group.SetAttribute("name", set.name.rfind('$', 0) == 0 ? set.name.substr(1) : set.name);
    if (!set.label.empty()) group.AddText("labl", set.label);
  }

  void AddVariable(std::size_t index, XmlElement& data) {
    const FieldDescriptor& field = fTable.fields[index];
    XmlElement& variable = data.Add("var");
    variable.SetAttribute("ID", fIds[index]);
    variable.SetAttribute("name", field.name);
    variable.SetAttribute("files", kFileId);
    SetWeight(index, variable);
    if (field.format && IsNumeric(field.dialect.type))
      variable.SetAttribute("dcml", fmt::format("{}", field.format->decimals));
    SetLevel(field, variable);
    AddLocation(field, variable);
    if (field.title && !field.title->empty()) variable.AddText("labl", *field.title);
    AddInvalid(field, variable);
    if (fStatistics && index < fStatistics->variables.size()) {
      const VariableStatistics& statistics = fStatistics->variables[index];
      AddSummary(statistics.plain, std::nullopt, variable);
      AddSummary(statistics.weighted, fWeightId, variable);
    }
    AddCategories(index, variable);
    AddFormat(field, variable);
    PlaceTexts(field.attributes, kDdiVariableTexts, variable);
    PlaceDdiExtras(field.extras, variable);
    variable.SetAttribute("ID", fIds[index]);  // two fields may have had the same
  }

  void SetWeight(std::size_t index, XmlElement& variable) {
    if (!fWeightId) return;
    if (fIds[index] == *fWeightId)
      variable.SetAttribute("wgt", "wgt");
    else
      variable.SetAttribute("wgt-var", *fWeightId);
  }

  static void SetLevel(const FieldDescriptor& field, XmlElement& variable) {
    if (!field.measure) return;
    const bool isScale = *field.measure == "scale";
    if (*field.measure != "unknown") variable.SetAttribute("intrvl", isScale ? "contin" : "discrete");
    variable.SetAttribute("nature", isScale ? "interval" : *field.measure == "unknown" ? "other" : *field.measure);
  }

  static void AddLocation(const FieldDescriptor& field, XmlElement& variable) {
    XmlElement& location = variable.Add("location");
    if (field.maxLength)
      location.SetAttribute("width", fmt::format("{}", *field.maxLength));
    else if (field.format && IsNumeric(field.dialect.type))
      location.SetAttribute("width", fmt::format("{}", field.format->width));
    location.SetAttribute("fileid", kFileId);
  }

  static bool HasMissingLabel(const FieldDescriptor& field) {
    return std::any_of(field.missingValues.begin(), field.missingValues.end(),
                       [](const LabelledValue& value) { return value.label.has_value(); });
  }

  /// Missing values are categories as soon as one has a label; otherwise they stand in a list.
  static void AddInvalid(const FieldDescriptor& field, XmlElement& variable) {
    XmlElement invalid("invalrng");
    if (!HasMissingLabel(field))
      for (const LabelledValue& value : field.missingValues)
        if (!value.value.empty()) invalid.Add("item").SetAttribute("VALUE", value.value);
    for (const MissingRangeDescriptor& range : field.missingRanges) {
      XmlElement& element = invalid.Add("range");
      element.SetAttribute("UNITS", "REAL");
      if (range.min) element.SetAttribute("min", NumberWords(*range.min));
      if (range.max) element.SetAttribute("max", NumberWords(*range.max));
    }
    if (!invalid.children.empty()) variable.children.push_back(std::make_unique<XmlElement>(std::move(invalid)));
  }

  /// A value of the variable with what is said and what was counted of it.
  struct Category {
    std::string value;
    std::optional<std::string> label;
    bool isMissing = false;
    const ValueFrequency* frequency = nullptr;
  };

  std::vector<Category> CategoriesOf(std::size_t index) const {
    const FieldDescriptor& field = fTable.fields[index];
    std::vector<Category> categories;
    std::unordered_map<std::string, std::size_t> placeOf;
    const auto add = [&](const LabelledValue& value, bool isMissing) {
      const auto [place, isNew] = placeOf.emplace(value.value, categories.size());
      if (isNew)
        categories.push_back({value.value, value.label, isMissing, nullptr});
      else if (!categories[place->second].label)
        categories[place->second].label = value.label;
      if (isMissing) categories[place->second].isMissing = true;
    };
    for (const LabelledValue& value : field.categories) add(value, false);
    for (const LabelledValue& value : field.valueLabels) add(value, false);
    const bool withMissing = HasMissingLabel(field);
    for (const LabelledValue& value : field.missingValues)
      if (!value.value.empty() && (withMissing || placeOf.count(value.value) > 0)) add(value, true);
    if (!fStatistics || index >= fStatistics->variables.size()) return categories;
    for (const ValueFrequency& frequency : fStatistics->variables[index].frequencies) {
      add({frequency.value, false, std::nullopt}, frequency.isMissing);
      categories[placeOf[frequency.value]].frequency = &frequency;
    }
    return categories;
  }

  void AddCategories(std::size_t index, XmlElement& variable) {
    for (const Category& category : CategoriesOf(index)) {
      XmlElement& element = variable.Add("catgry");
      if (category.isMissing) element.SetAttribute("missing", "Y");
      element.AddText("catValu", category.value);
      if (category.label && !category.label->empty()) element.AddText("labl", *category.label);
      if (!category.frequency) continue;
      AddFrequency(category.frequency->count, false, element);
      AddFrequency(category.frequency->weightedCount, true, element);
    }
  }

  void AddFrequency(const std::optional<double>& count, bool isWeighted, XmlElement& category) {
    if (!count) return;
    XmlElement& element = category.AddText("catStat", NumberWords(*count));
    element.SetAttribute("type", "freq");
    if (!isWeighted) return;
    element.SetAttribute("wgtd", "wgtd");
    if (fWeightId) element.SetAttribute("wgt-var", *fWeightId);
  }

  static void AddFormat(const FieldDescriptor& field, XmlElement& variable) {
    const FieldType type = field.dialect.type;
    if (type == FieldType::Inferred && !field.format) return;
    XmlElement& element = variable.Add("varFormat");
    const bool isText = field.format ? IsStringFormat(field.format->type) : type == FieldType::String;
    element.SetAttribute("type", isText ? "character" : "numeric");
    if (field.format) {
      element.SetAttribute("formatname", WriteFormatText(*field.format));
      element.SetAttribute("schema", "other");
    }
    if (const char* category = CategoryOfFormat(type)) element.SetAttribute("category", category);
  }

  const TableDescriptor& fTable;
  const DdiStatistics* fStatistics;
  std::unique_ptr<XmlElement> fBook;
  std::unordered_set<std::string> fTakenIds = {kFileId};
  std::vector<std::string> fIds;                            // of the fields
  std::unordered_map<std::string, std::string> fIdOfField;  // by its name
  std::optional<std::string> fWeightId;
};

}  // namespace

std::unique_ptr<XmlElement> BuildDdi(const TableDescriptor& table, const DdiStatistics* statistics) {
  return DdiBuilder(table, statistics).Build();
}

XmlElement& StudyOf(XmlElement& codeBook) { return codeBook.ChildOrNew("stdyDscr"); }

std::vector<XmlElement*> VariablesOf(XmlElement& codeBook) { return codeBook.At("dataDscr/var"); }

}  // namespace runtime::data
