#include "runtime/data/dictionary/ddinotes.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string_view>
#include <utility>

#include "runtime/data/dictionary/datapackage.h"
#include "runtime/data/dictionary/keptproperties.h"
#include "runtime/data/dictionary/writing/descriptorjson.h"

namespace runtime::data {
namespace {

constexpr std::string_view kOfCodebook = "codebook.";
constexpr std::string_view kOfDdi = "ddi:";

/// The descriptor with every property where it belongs, every field with its missing values, and the resource without
/// what was made up for it.
Json WholeJson(const TableDescriptor& table) {
  Json package = PackageJson(table, "data.csv");
  if (table.hasSchema) {
    Json fields = Json::array();
    for (const FieldDescriptor& field : table.fields) fields.push_back(FieldJson(field, nullptr));
    package["resources"][0]["schema"]["fields"] = std::move(fields);
  }
  RestoreKeptProperties(package);
  for (const char* made : {"name", "path"}) {
    const auto isSaid = [made](const ExtraProperty& extra) { return extra.name == made; };
    if (std::none_of(table.resourceExtras.begin(), table.resourceExtras.end(), isSaid))
      package["resources"][0].erase(made);
  }
  return package;
}

bool Begins(std::string_view text, std::string_view prefix) { return text.substr(0, prefix.size()) == prefix; }

/// The properties of an object one by one, by the subjects of their notes.
Json FlatProperties(const Json& object) {
  Json flat = Json::object();
  for (auto property = object.begin(); property != object.end(); ++property) {
    if (property.key() == "fields" || property.key() == "resources" || property.key() == "schema") continue;
    if (property.key() != "codebook" || !property.value().is_object()) {
      flat[property.key()] = property.value();
      continue;
    }
    for (auto own = property.value().begin(); own != property.value().end(); ++own) {
      if (own.key() != "ddi" || !own.value().is_object()) {
        flat[std::string(kOfCodebook) + own.key()] = own.value();
        continue;
      }
      for (auto element = own.value().begin(); element != own.value().end(); ++element)
        flat[std::string(kOfDdi) + element.key()] = element.value();
    }
  }
  return flat;
}

void Put(Json& object, const std::string& name, const Json& value) {
  if (value.is_null())
    object.erase(name);
  else
    object[name] = value;
}

void PutFlat(Json& object, const std::string& subject, const Json& value) {
  if (Begins(subject, kOfDdi))
    Put(object["codebook"]["ddi"], subject.substr(kOfDdi.size()), value);
  else if (Begins(subject, kOfCodebook))
    Put(object["codebook"], subject.substr(kOfCodebook.size()), value);
  else
    Put(object, subject, value);
}

void Apply(const DdiNoteList& notes, Json& object) {
  for (auto note = notes.properties.begin(); note != notes.properties.end(); ++note)
    PutFlat(object, note.key(), note.value());
}

void Remove(const std::vector<std::string>& generated, Json& object) {
  if (generated.empty() || !object.contains("codebook") || !object["codebook"].contains("ddi")) return;
  for (const std::string& name : generated) object["codebook"]["ddi"].erase(name.substr(kOfDdi.size()));
}

/// What differs goes to notes; elements that only the first has, to `generated`.
void Compare(const Json& said, const Json& wanted, DdiNoteList& notes, std::set<std::string>& generated) {
  for (auto property = wanted.begin(); property != wanted.end(); ++property) {
    const auto found = said.find(property.key());
    if (found == said.end() || *found != property.value()) notes.properties[property.key()] = property.value();
  }
  for (auto property = said.begin(); property != said.end(); ++property) {
    if (wanted.contains(property.key())) continue;
    if (Begins(property.key(), kOfDdi))
      generated.insert(property.key());
    else
      notes.properties[property.key()] = nullptr;
  }
}

/// Elements that are real in one field and made up in others need a note where they are real.
void Protect(const std::set<std::string>& generated, const Json& wanted, DdiNoteList& notes) {
  for (const std::string& name : generated)
    if (const auto found = wanted.find(name); found != wanted.end()) notes.properties[name] = *found;
}

}  // namespace

bool DdiNotes::empty() const {
  const auto isEmpty = [](const DdiNoteList& list) { return list.properties.empty(); };
  return isEmpty(table) && isEmpty(resource) && isEmpty(package) && generated.empty() && generatedInFields.empty() &&
         std::all_of(fields.begin(), fields.end(), isEmpty);
}

void ApplyDdiNotes(const DdiNotes& notes, TableDescriptor& table) {
  if (notes.empty()) return;
  Json whole = WholeJson(table);
  // From the inside out: an object that gets a property moves what is in it.
  const auto resource = [&]() -> Json& { return whole["resources"][0]; };
  const auto schema = [&]() -> Json& { return table.hasSchema ? resource()["schema"] : resource(); };
  for (std::size_t i = 0; i < notes.fields.size() && i < table.fields.size(); ++i) {
    Remove(notes.generatedInFields, schema()["fields"][i]);
    Apply(notes.fields[i], schema()["fields"][i]);
  }
  Remove(notes.generated, schema());
  Apply(notes.table, schema());
  Apply(notes.resource, resource());
  Apply(notes.package, whole);
  std::vector<Note> ignored;  // they were told when the properties were read first
  TableDescriptor read = ReadPackage({whole, table.origin}, {table.origin, std::nullopt, "-", std::nullopt}, ignored);
  read.dataPaths = std::move(table.dataPaths);
  read.inlineData = std::move(table.inlineData);
  table = std::move(read);
}

DdiNotes FindDdiNotes(const TableDescriptor& said, const TableDescriptor& wanted) {
  const Json saidWhole = WholeJson(said);
  const Json wantedWhole = WholeJson(wanted);
  const Json& saidResource = saidWhole["resources"][0];
  const Json& wantedResource = wantedWhole["resources"][0];
  DdiNotes notes;
  std::set<std::string> generated;
  Compare(FlatProperties(saidWhole), FlatProperties(wantedWhole), notes.package, generated);
  Compare(FlatProperties(saidResource), FlatProperties(wantedResource), notes.resource, generated);
  if (said.hasSchema && wanted.hasSchema)
    Compare(FlatProperties(saidResource["schema"]), FlatProperties(wantedResource["schema"]), notes.table, generated);
  notes.generated.assign(generated.begin(), generated.end());

  notes.fields.resize(wanted.fields.size());
  std::set<std::string> generatedInFields;
  std::vector<Json> wantedFields;
  for (std::size_t i = 0; i < wanted.fields.size(); ++i) {
    wantedFields.push_back(FlatProperties(wantedResource["schema"]["fields"][i]));
    Compare(FlatProperties(saidResource["schema"]["fields"][i]), wantedFields[i], notes.fields[i], generatedInFields);
  }
  for (std::size_t i = 0; i < wanted.fields.size(); ++i) Protect(generatedInFields, wantedFields[i], notes.fields[i]);
  notes.generatedInFields.assign(generatedInFields.begin(), generatedInFields.end());
  return notes;
}

}  // namespace runtime::data
