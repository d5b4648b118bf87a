#include "runtime/data/dictionary/tableschema.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/dictionary/extras.h"

namespace runtime::data {
namespace {

constexpr std::string_view kDraft = "draft";

void ReadFieldsMatch(const JsonPlace& schema, TableDescriptor& table, Deviations& deviations) {
  static const std::unordered_map<std::string, FieldsMatch> kWords = {{"exact", FieldsMatch::Exact},
                                                                      {"equal", FieldsMatch::Equal},
                                                                      {"subset", FieldsMatch::Subset},
                                                                      {"superset", FieldsMatch::Superset},
                                                                      {"partial", FieldsMatch::Partial}};
  const auto match = schema.Find("fieldsMatch");
  if (!match) return;
  // The text of the standard has a word here, its profile a list of one.
  const std::vector<JsonPlace> words = match->isList() ? match->Entries() : std::vector<JsonPlace>{*match};
  if (words.size() != 1) match->Fail("one of exact, equal, subset, superset, partial should stand here");
  const JsonPlace* const word = &words.front();
  const auto found = kWords.find(word->Text());
  if (found == kWords.end()) {
    deviations.Add(
        Deviation::OtherFieldsMatch, *word,
        fmt::format("\"{}\" is none of exact, equal, subset, superset, partial, and is not used", word->Text()));
    return;
  }
  table.fieldsMatch = found->second;
}

SetDescriptor ReadSet(const JsonPlace& place) {
  SetDescriptor set;
  const JsonPlace name = place.Need("name");
  set.name = name.Text();
  if (set.name.empty() || set.name == "$") name.Fail("a set needs a name, such as \"$languages\"");
  set.label = place.FindText("label").value_or("");
  const JsonPlace type = place.Need("type");
  if (type.Text() != "category" && type.Text() != "dichotomy")
    type.Fail(fmt::format("\"{}\" is no type of set; write \"category\" or \"dichotomy\"", type.Text()));
  set.isDichotomy = type.Text() == "dichotomy";
  const JsonPlace variables = place.Need("variables");
  set.variables = variables.Texts();
  if (set.variables.empty()) variables.Fail("a set needs at least one variable");
  if (const auto counted = place.Find("countedValue")) set.countedValue = counted->Scalar();
  if (set.isDichotomy && !place.Find("countedValue"))
    place.Fail("a dichotomy set needs \"countedValue\", the value that stands for yes");
  if (const auto labels = place.Find("categoryLabels")) {
    if (labels->Text() != "variableLabels" && labels->Text() != "countedValues")
      labels->Fail(fmt::format("\"{}\" is not known; write \"variableLabels\" or \"countedValues\"", labels->Text()));
    set.labelledByCountedValues = set.isDichotomy && labels->Text() == "countedValues";
  }
  return set;
}

}  // namespace

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find_first_of("\r\n", at), text.size());
    lines.push_back(text.substr(at, end - at));
    const bool pair = end + 1 < text.size() && text[end] == '\r' && text[end + 1] == '\n';
    at = end + (pair ? 2 : 1);
  }
  return lines;
}

std::vector<std::vector<std::string>> ReadDocuments(const JsonPlace& list) {
  std::vector<std::vector<std::string>> documents;
  for (const JsonPlace& entry : list.Entries())
    documents.push_back(entry.isText() ? SplitLines(entry.Text()) : entry.Texts());
  return documents;
}

void NoteUnknownMembers(const JsonPlace& codebook, const std::vector<std::string>& known, std::vector<Note>& notes,
                        std::vector<ExtraProperty>& extras) {
  for (const auto& [name, member] : codebook.Members()) {
    if (std::find(known.begin(), known.end(), name) != known.end()) continue;
    extras.push_back({"codebook." + name, member.Written()});
    if (name == kDraft) continue;  // for people, and for who converts the dictionary
    notes.push_back({false, fmt::format("{}: this property is not known and not used; known here: {}", member.Where(),
                                        fmt::join(known, ", "))});
  }
}

void ReadAttributes(const JsonPlace& place, DatasourceAttributes& attributes) {
  const auto add = [&attributes](const std::string& name, const JsonPlace& value) {
    if (value.isText()) {
      attributes.Add(name, {value.Text()});
      return;
    }
    if (!value.isList()) value.Fail("the value of an attribute must be a text or a list of texts");
    attributes.Add(name, value.Texts());
  };
  if (place.isList()) {
    for (const JsonPlace& entry : place.Entries()) add(entry.Need("name").Text(), entry.Need("value"));
    return;
  }
  for (const auto& [name, value] : place.Members()) add(name, value);
}

void ReadWeightAndSets(const JsonPlace& codebook, TableDescriptor& table) {
  if (!table.weight) {
    table.weight = codebook.FindText("weight");
    if (table.weight && table.weight->empty()) table.weight.reset();
  }
  if (!table.sets.empty()) return;
  if (const auto sets = codebook.Find("multipleResponseSets"))
    for (const JsonPlace& set : sets->Entries()) table.sets.push_back(ReadSet(set));
}

void ReadTableSchema(const JsonPlace& schema, TableDescriptor& table, const SchemaContext& context) {
  Deviations& deviations = context.deviations;
  table.hasSchema = true;
  table.missingValues = FindMissingValues(schema, deviations).value_or(std::vector<LabelledValue>{LabelledValue{}});
  ReadFieldsMatch(schema, table, deviations);
  const std::vector<JsonPlace> fields = schema.Need("fields").Entries();
  table.fields.reserve(fields.size());
  std::unordered_map<std::string, std::size_t> indexOfName;
  for (const JsonPlace& place : fields) {
    table.fields.push_back(ReadField(place, table.missingValues, context));
    const std::string& name = table.fields.back().name;
    const auto [first, isNew] = indexOfName.emplace(name, table.fields.size() - 1);
    if (!isNew)
      deviations.Add(
          Deviation::RepeatedName, place,
          fmt::format("the field name \"{}\" stands twice, first as field {}; fields of one name meet columns "
                      "of that name in their order",
                      name, first->second + 1));
  }
  KeepExtras(schema,
             {"$schema", "title", "description", "fields", "fieldsMatch", "missingValues", "missing_values",
              "missingvalues", "missingValue", "codebook"},
             table.extras);
  const auto codebook = schema.Find("codebook");
  if (!codebook) return;
  NoteUnknownMembers(*codebook, {"weight", "multipleResponseSets", "documents", "attributes", "ddi"}, context.notes,
                     table.extras);
  KeepDdiExtras(*codebook, table.extras);
  ReadWeightAndSets(*codebook, table);
  if (const auto documents = codebook->Find("documents")) table.documents = ReadDocuments(*documents);
  if (const auto attributes = codebook->Find("attributes")) ReadAttributes(*attributes, table.attributes);
}

void ReadTableSchema(const JsonPlace& schema, TableDescriptor& table, std::vector<Note>& notes) {
  Deviations deviations;
  ReadTableSchema(schema, table, SchemaContext{notes, deviations, {}});
  deviations.Report(notes);
}

}  // namespace runtime::data
