#include "runtime/data/dictionary/writing/descriptorjson.h"

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "runtime/data/dictionary/formattext.h"
#include "runtime/data/dictionary/keptproperties.h"
#include "runtime/data/dictionary/packagefacts.h"
#include "runtime/data/dictionary/tableschema.h"
#include "runtime/data/dictionary/typewords.h"
#include "runtime/data/dictionary/writing/profile.h"
#include "runtime/data/dictionary/writing/valuelistjson.h"

namespace runtime::data {
namespace {

constexpr std::string_view kDdi = "ddi:";
constexpr std::string_view kCodebook = "codebook";
constexpr std::string_view kOfCodebook = "codebook.";

bool Begins(std::string_view name, std::string_view prefix) { return name.substr(0, prefix.size()) == prefix; }

/// The properties of an object, put together in any order and handed out in the order in which the standard names them.
class Properties {
 public:
  using Allows = bool (*)(std::string_view name, const Json& value);

  void Set(std::string_view name, Json value) { fOwn[std::string(name)] = std::move(value); }
  Json& codebook() { return fCodebook; }
  const Json* Find(std::string_view name) const {
    const auto found = fOwn.find(name);
    return found == fOwn.end() ? nullptr : &*found;
  }

  /// The extras stand beside the own properties; those of DDI below `codebook`.
  void Add(const std::vector<ExtraProperty>& extras) {
    for (const ExtraProperty& extra : extras) {
      Json value = Json::parse(extra.json, nullptr, false);
      if (value.is_discarded()) value = extra.json;
      if (Begins(extra.name, kDdi))
        fDdi[extra.name.substr(kDdi.size())] = std::move(value);
      else if (Begins(extra.name, kOfCodebook))
        fCodebook[extra.name.substr(kOfCodebook.size())] = std::move(value);
      else if (fOwn.contains(extra.name) && fOwn[extra.name].is_object() && value.is_object())
        Merge(std::move(value), fOwn[extra.name]);
      else
        fOwn[extra.name] = std::move(value);
    }
  }

  /// What `allows` does not allow goes to `kept` of the property `codebook`, from where it is read as if it stood here.
  template <typename Check>
  Json Ordered(std::initializer_list<std::string_view> order, Check allows) {
    Json object = Json::object();
    Json kept = Json::object();
    const auto take = [&](const std::string& name) {
      const auto found = fOwn.find(name);
      if (found == fOwn.end()) return;
      Json& place = allows(name, *found) ? object : kept;
      place[name] = std::move(*found);
      fOwn.erase(found);
    };
    for (const std::string_view name : order) take(std::string(name));
    while (!fOwn.empty()) take(fOwn.begin().key());
    if (!kept.empty()) fCodebook["kept"] = std::move(kept);
    for (auto& [name, value] : fDdi) fCodebook["ddi"][name] = std::move(value);
    if (!fCodebook.empty()) object[std::string(kCodebook)] = std::move(fCodebook);
    return object;
  }

 private:
  /// The members of both; those of the second hold.
  static void Merge(Json first, Json& second) {
    first.update(second);
    second = std::move(first);
  }

  Json fOwn = Json::object();
  Json fCodebook = Json::object();
  std::map<std::string, Json> fDdi;  // by name: they come from documents in one order and from JSON in another
};

bool SameValues(const std::vector<LabelledValue>& a, const std::vector<LabelledValue>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const LabelledValue& one, const LabelledValue& other) {
    return one.value == other.value && one.isNumber == other.isNumber && one.label == other.label;
  });
}

/// A text for one value, else a list. Where a name stands twice, a list of attributes instead of an object.
Json AttributesJson(const DatasourceAttributes& attributes, std::size_t count) {
  std::set<std::string> names;
  for (std::size_t i = 0; i < count; ++i) names.insert(attributes.Name(i));
  const bool distinct = names.size() == count;
  Json json = distinct ? Json::object() : Json::array();
  for (std::size_t i = 0; i < count; ++i) {
    const std::vector<std::string> values = attributes.Values(i);
    Json value = values.size() == 1 ? Json(values.front()) : Json(values);
    if (distinct)
      json[attributes.Name(i)] = std::move(value);
    else
      json.push_back(Json{{"name", attributes.Name(i)}, {"value", std::move(value)}});
  }
  return json;
}

/// Without the one that the field's description gives by itself.
std::size_t AttributesToWrite(const FieldDescriptor& field) {
  const std::size_t count = field.attributes.Size();
  if (!field.description || field.description->empty() || count == 0) return count;
  const bool last = field.attributes.Name(count - 1) == "Description" &&
                    field.attributes.Values(count - 1) == std::vector<std::string>{*field.description};
  return last ? count - 1 : count;
}

Json RangesJson(const std::vector<MissingRangeDescriptor>& ranges) {
  Json list = Json::array();
  for (const MissingRangeDescriptor& range : ranges) {
    Json entry = Json::object();
    if (range.min) entry["min"] = *range.min;
    if (range.max) entry["max"] = *range.max;
    list.push_back(std::move(entry));
  }
  return list;
}

void SetDialect(const FieldDialect& dialect, Properties& properties) {
  static const FieldDialect kPlain;
  if (dialect.type != FieldType::Inferred) properties.Set("type", WordOfType(dialect.type));
  if (dialect.format != kPlain.format) properties.Set("format", dialect.format);
  if (dialect.decimalChar != kPlain.decimalChar) properties.Set("decimalChar", dialect.decimalChar);
  if (dialect.groupChar != kPlain.groupChar) properties.Set("groupChar", dialect.groupChar);
  if (dialect.bareNumber != kPlain.bareNumber) properties.Set("bareNumber", dialect.bareNumber);
  if (dialect.trueValues != kPlain.trueValues) properties.Set("trueValues", dialect.trueValues);
  if (dialect.falseValues != kPlain.falseValues) properties.Set("falseValues", dialect.falseValues);
}

void SetCodebook(const FieldDescriptor& field, Json& codebook) {
  if (field.format) codebook["format"] = WriteFormatText(*field.format);
  if (field.measure) codebook["measure"] = *field.measure;
  if (field.role) codebook["role"] = *field.role;
  if (!field.hasCategories && !field.categories.empty()) codebook["values"] = ValueListJson(field.categories);
  if (!field.valueLabels.empty()) codebook["valueLabels"] = ValueListJson(field.valueLabels);
  if (!field.missingRanges.empty()) codebook["missingRanges"] = RangesJson(field.missingRanges);
  const std::size_t attributes = AttributesToWrite(field);
  if (attributes > 0) codebook["attributes"] = AttributesJson(field.attributes, attributes);
}

Json SetJson(const SetDescriptor& set) {
  Json json = Json::object();
  json["name"] = set.name;
  if (!set.label.empty()) json["label"] = set.label;
  json["type"] = set.isDichotomy ? "dichotomy" : "category";
  json["variables"] = set.variables;
  if (set.isDichotomy || !set.countedValue.empty()) json["countedValue"] = set.countedValue;
  if (set.isDichotomy && set.labelledByCountedValues) json["categoryLabels"] = "countedValues";
  return json;
}

/// One document whose lines can be put together to a text, from which they are cut out again.
std::optional<std::string> AsDescription(const std::vector<std::vector<std::string>>& documents) {
  if (documents.size() != 1) return std::nullopt;
  std::string text;
  for (const std::string& line : documents.front()) text += (text.empty() ? "" : "\n") + line;
  if (text.empty() || SplitLines(text) != documents.front()) return std::nullopt;
  return text;
}

bool Holds(const std::vector<ExtraProperty>& extras, std::string_view name) {
  return std::any_of(extras.begin(), extras.end(), [name](const ExtraProperty& extra) { return extra.name == name; });
}

/// Label and documents, as title and description where these are not taken by something else.
void SetTexts(const TableDescriptor& table, bool isPackage, Properties& properties, Json& codebook) {
  if (table.label) properties.Set("title", *table.label);
  if (table.documents.empty()) return;
  const bool isTaken = Holds(table.resourceExtras, "description") || Holds(table.packageExtras, "description") ||
                       (!isPackage && Holds(table.extras, "description"));
  const std::optional<std::string> description = isTaken ? std::nullopt : AsDescription(table.documents);
  if (description)
    properties.Set("description", *description);
  else
    codebook["documents"] = table.documents;
}

/// Weight, sets and the first `attributes` attributes.
void SetFacts(const TableDescriptor& table, std::size_t attributes, Json& codebook) {
  if (table.weight) codebook["weight"] = *table.weight;
  for (const SetDescriptor& set : table.sets) codebook["multipleResponseSets"].push_back(SetJson(set));
  if (attributes > 0) codebook["attributes"] = AttributesJson(table.attributes, attributes);
}

/// All but those at the end that the properties of the package give by themselves.
std::size_t AttributesToWrite(const TableDescriptor& table, Json package) {
  RestoreKeptProperties(package);
  DatasourceAttributes given;
  AddPackageAttributes({package, table.origin}, given);
  const std::size_t count = table.attributes.Size();
  if (given.Size() > count) return count;
  const std::size_t own = count - given.Size();
  for (std::size_t i = 0; i < given.Size(); ++i)
    if (given.Name(i) != table.attributes.Name(own + i) || given.Values(i) != table.attributes.Values(own + i))
      return count;
  return own;
}

Json DialectJson(const TextDialect& dialect) {
  Properties properties;
  const auto setText = [&properties](std::string_view name, const std::optional<std::string>& text) {
    if (text) properties.Set(name, *text);
  };
  const auto setFlag = [&properties](std::string_view name, std::optional<bool> flag) {
    if (flag) properties.Set(name, *flag);
  };
  setText("delimiter", dialect.delimiter);
  setText("quoteChar", dialect.quoteChar);
  setFlag("doubleQuote", dialect.doubleQuote);
  setFlag("header", dialect.header);
  setFlag("skipInitialSpace", dialect.skipInitialSpace);
  setText("escapeChar", dialect.escapeChar);
  setText("nullSequence", dialect.nullSequence);
  setText("lineTerminator", dialect.lineTerminator);
  setText("commentChar", dialect.commentChar);
  if (!dialect.commentRows.empty()) properties.Set("commentRows", dialect.commentRows);
  if (!dialect.headerRows.empty()) properties.Set("headerRows", dialect.headerRows);
  setText("headerJoin", dialect.headerJoin);
  setFlag("caseSensitiveHeader", dialect.caseSensitiveHeader);
  properties.Add(dialect.extras);
  return properties.Ordered({"delimiter", "lineTerminator", "quoteChar", "doubleQuote", "escapeChar", "nullSequence",
                             "skipInitialSpace", "header", "headerRows", "headerJoin", "commentRows", "commentChar"},
                            [](std::string_view, const Json&) { return true; });
}

}  // namespace

Json FieldJson(const FieldDescriptor& field, const std::vector<LabelledValue>* missingOfSchema) {
  Properties properties;
  properties.Set("name", field.name);
  if (field.title) properties.Set("title", *field.title);
  if (field.description) properties.Set("description", *field.description);
  SetDialect(field.dialect, properties);
  if (!missingOfSchema || !SameValues(field.missingValues, *missingOfSchema))
    properties.Set("missingValues", MissingValuesJson(field.missingValues, field.dialect));
  if (field.hasCategories) properties.Set("categories", ValueListJson(field.categories));
  if (field.categoriesOrdered) properties.Set("categoriesOrdered", true);
  if (field.maxLength) properties.Set("constraints", Json{{"maxLength", *field.maxLength}});
  SetCodebook(field, properties.codebook());
  properties.Add(field.extras);
  // A type of its own that is read as text stands among the extras.
  std::string type(WordOfType(field.dialect.type));
  const Json* word = properties.Find("type");
  if (word && word->is_string() && ProfileAllowsInField({}, "type", *word)) type = *word;
  return properties.Ordered(
      {"name", "title", "type", "format", "description", "example", "rdfType", "decimalChar", "groupChar", "bareNumber",
       "trueValues", "falseValues", "missingValues", "categories", "categoriesOrdered", "constraints"},
      [&type](std::string_view name, const Json& value) { return ProfileAllowsInField(type, name, value); });
}

namespace {

std::string_view MatchWord(FieldsMatch match) {
  switch (match) {
    case FieldsMatch::ByName:
    case FieldsMatch::Equal:
      return "equal";
    case FieldsMatch::Exact:
      return "exact";
    case FieldsMatch::Subset:
      return "subset";
    case FieldsMatch::Superset:
      return "superset";
    case FieldsMatch::Partial:
      return "partial";
  }
  return "equal";
}

/// The fields and what holds for all of them.
void SetFields(const TableDescriptor& table, Properties& properties) {
  static const std::vector<LabelledValue> kEmptyIsMissing = {LabelledValue{}};
  properties.Set("$schema", kTableSchemaProfile);
  if (table.fieldsMatch != FieldsMatch::ByName)
    properties.Set("fieldsMatch", Json::array({MatchWord(table.fieldsMatch)}));
  Json fields = Json::array();
  for (const FieldDescriptor& field : table.fields) fields.push_back(FieldJson(field, &table.missingValues));
  properties.Set("fields", std::move(fields));
  if (!SameValues(table.missingValues, kEmptyIsMissing))
    properties.Set("missingValues", MissingValuesJson(table.missingValues, {}));
  properties.Add(table.extras);
}

Json OrderedSchema(Properties& properties) {
  return properties.Ordered({"$schema", "title", "description", "fieldsMatch", "fields", "missingValues", "primaryKey",
                             "uniqueKeys", "foreignKeys"},
                            ProfileAllowsInSchema);
}

}  // namespace

Json SchemaJson(const TableDescriptor& table) {
  Properties properties;
  SetTexts(table, false, properties, properties.codebook());
  SetFacts(table, table.attributes.Size(), properties.codebook());
  SetFields(table, properties);
  return OrderedSchema(properties);
}

Json PackageJson(const TableDescriptor& table, const std::string& data) {
  Properties package;
  package.Set("$schema", kDataPackageProfile);
  package.Add(table.packageExtras);
  Json ordered = package.Ordered({"$schema", "name", "id", "title", "description", "homepage", "version", "created",
                                  "licenses", "contributors", "sources", "keywords", "image"},
                                 ProfileAllowsInPackage);

  Properties resource;
  resource.Set("name", std::filesystem::path(data).stem().string());
  resource.Set("type", "table");
  Json facts = Json::object();
  SetTexts(table, true, resource, facts);
  Json dialect = DialectJson(table.dialect);
  if (!dialect.empty()) resource.Set("dialect", std::move(dialect));
  if (table.dialect.encoding) resource.Set("encoding", *table.dialect.encoding);
  if (table.hasSchema) {
    Properties schema;
    schema.codebook() = std::move(facts);
    SetFacts(table, AttributesToWrite(table, ordered), schema.codebook());
    SetFields(table, schema);
    resource.Set("schema", OrderedSchema(schema));
  } else {
    resource.codebook() = std::move(facts);
    SetFacts(table, AttributesToWrite(table, ordered), resource.codebook());
    resource.Add(table.extras);
  }
  resource.Add(table.resourceExtras);
  Json written =
      resource.Ordered({"$schema", "name", "type", "path", "data", "title", "description", "homepage", "sources",
                        "licenses", "format", "mediatype", "encoding", "bytes", "hash", "dialect", "schema"},
                       ProfileAllowsInResource);
  // The profile wants one of the two, and allows no other path than those below the folder.
  if (!written.contains("path") && !written.contains("data")) written["path"] = data;
  ordered["resources"] = Json::array({std::move(written)});
  return ordered;
}

}  // namespace runtime::data
