#include "tests/unit/data/dictionary/writing/randomdescriptor.h"

#include <algorithm>
#include <utility>

#include "runtime/data/dictionary/formattext.h"
#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/dictionary/packagefacts.h"

namespace runtime::data {
namespace {

const std::vector<std::string>& Pieces() {
  static const std::vector<std::string> pieces = {"age",
                                                  "Größe",
                                                  "収入",
                                                  "a & b",
                                                  "<b>",
                                                  "\"quoted\"",
                                                  "'",
                                                  "]]>",
                                                  "  ",
                                                  " ",
                                                  "\t",
                                                  "\n",
                                                  "\r",
                                                  "\r\n",
                                                  "\x01",
                                                  "\x1b[31m",
                                                  "\x7f",
                                                  "\xC2\x85",
                                                  "\\",
                                                  "/",
                                                  "~",
                                                  "0",
                                                  "1",
                                                  "-9",
                                                  "1.5",
                                                  "null",
                                                  "true",
                                                  "é",
                                                  "🙂",
                                                  "ddi:",
                                                  "$",
                                                  "#",
                                                  "@",
                                                  "&#13;",
                                                  "&amp;",
                                                  "codebook.",
                                                  "a",
                                                  "b",
                                                  "c",
                                                  "d e f",
                                                  ".",
                                                  ",",
                                                  ";",
                                                  "|",
                                                  "{}",
                                                  "[]",
                                                  "Sysmiss",
                                                  std::string(1, '\0'),
                                                  "\xEF\xBF\xBE",
                                                  "\xEF\xBF\xBF",
                                                  "\xE2\x80\xA8",
                                                  "\xE2\x80\xAE",
                                                  "%Y",
                                                  std::string(300, 'x')};
  return pieces;
}

}  // namespace

std::string RandomDescriptor::Text() {
  std::string text;
  for (std::size_t i = Below(4); i > 0; --i) text += Pieces()[Below(Chance(60) ? 10 : Pieces().size())];
  return text;
}

std::string RandomDescriptor::FilledText() {
  std::string text = Text();
  return text.empty() ? "x" : text;
}

std::vector<std::string> RandomDescriptor::Texts(std::size_t most) {
  std::vector<std::string> texts;
  for (std::size_t i = Below(most + 1); i > 0; --i) texts.push_back(Text());
  return texts;
}

std::string RandomDescriptor::NumberWord() {
  static const std::vector<std::string> words = {"0",   "1",    "2",     "3",        "-1",
                                                 "-9",  "99",   "-99",   "12345678", "9007199254740993",
                                                 "1.5", "-0.1", "1e+20", "0.00001",  "18446744073709551615"};
  return words[Below(Chance(80) ? 9 : words.size())];
}

std::string RandomDescriptor::JsonValue() {
  switch (Below(6)) {
    case 0:
      return Json(Text()).dump();
    case 1:
      return NumberWord();
    case 2:
      return "true";
    case 3:
      return Json::array({Text(), 1, false}).dump();
    case 4:
      return Json{{FilledText(), Text()}, {"b", Json::array()}}.dump();
    default:
      return "{}";
  }
}

LabelledValue RandomDescriptor::Value(bool isNumber) {
  LabelledValue value{isNumber ? NumberWord() : Chance(40) ? NumberWord() : Text(), isNumber, std::nullopt};
  if (Chance(60)) value.label = FilledText();
  return value;
}

std::vector<LabelledValue> RandomDescriptor::Values(FieldType type, std::size_t most, bool alwaysText) {
  std::vector<LabelledValue> values;
  const bool isString = type == FieldType::String || type == FieldType::Inferred;
  for (std::size_t i = Below(most + 1); i > 0; --i) values.push_back(Value(!alwaysText && Chance(isString ? 5 : 90)));
  return values;
}

void RandomDescriptor::AddAttributes(DatasourceAttributes& attributes) {
  static const std::vector<std::string> names = {"Question", "Universe", "Notes", "Concept", "Description",
                                                 "Author",   "Citation", "$mine", "@hidden", "Group"};
  for (std::size_t i = Below(4); i > 0; --i) attributes.Add(Chance(70) ? names[Below(names.size())] : Text(), Texts(3));
}

void RandomDescriptor::MakeDialect(FieldDescriptor& field) {
  FieldDialect& dialect = field.dialect;
  dialect.type = static_cast<FieldType>(Below(11));
  if (Chance(10)) dialect.format = Chance(50) ? "email" : Text();
  if (Chance(10)) dialect.decimalChar = ",";
  if (Chance(10)) dialect.groupChar = dialect.decimalChar == "." ? "," : ".";
  if (Chance(10)) dialect.bareNumber = false;
  if (Chance(10)) dialect.trueValues = Texts(2);
  if (Chance(10)) dialect.falseValues = Texts(2);
  if (dialect.type != FieldType::String || !Chance(20)) return;
  static const std::vector<std::string> words = {"geopoint", "object", "array", "list", "any", "geojson", "matrix"};
  field.extras.push_back({"type", Json(words[Below(words.size())]).dump()});
}

void RandomDescriptor::AddFieldExtras(FieldDescriptor& field) {
  if (Chance(10)) field.extras.push_back({"rdfType", Chance(80) ? Json(Text()).dump() : JsonValue()});
  if (Chance(10)) field.extras.push_back({"example", Chance(50) ? Json(Text()).dump() : JsonValue()});
  if (Chance(15)) {
    Json constraints = Json::object();
    if (Chance(50)) constraints["required"] = true;
    if (Chance(30)) constraints["minimum"] = Json::parse(NumberWord());
    if (Chance(30)) constraints["pattern"] = Text();
    if (Chance(20)) constraints[FilledText()] = Text();
    if (constraints.empty()) constraints["unique"] = "perhaps";
    constraints.erase("enum");
    constraints.erase("maxLength");
    field.extras.push_back({"constraints", constraints.dump()});
  }
  if (Chance(10)) field.extras.push_back({"x-" + Text(), JsonValue()});
  if (Chance(10)) field.extras.push_back({"codebook.x-" + Text(), JsonValue()});
  static const std::vector<std::pair<std::string, std::string>> ofDdi = {
      {"ddi:@ID", R"("V7")"},
      {"ddi:@ID", R"("income 2")"},
      {"ddi:@rectype", R"("person")"},
      {"ddi:@qstn", R"("Q1")"},
      {"ddi:valrng", R"({"range": {"@min": "0", "@max": "99", "@UNITS": "INT"}})"},
      {"ddi:valrng", R"({"key": "1 = one"})"},
      {"ddi:sumStat", R"([{"@type": "vald", "#text": "12"}, {"@type": "invd", "#text": "0"}])"},
      {"ddi:sumStat", R"({"@type": "unheard", "#text": "12"})"},
      {"ddi:qstn/@seqNo", R"("3")"},
      {"ddi:qstn/forward", R"("go to 4")"},
      {"ddi:universe/@clusion", R"("I")"},
      {"ddi:catgry/catStat", R"({"1": {"@type": "freq", "#text": "5"}, "2": "7"})"},
      {"ddi:TotlResp", R"("200")"},
      {"ddi:unheard/of", R"({"@a": "b"})"},
      {"ddi:stdCatgry", R"(["A", "B"])"},
      {"ddi:varFormat/#text", R"("free words")"}};
  if (Chance(20)) {
    const auto& [name, json] = ofDdi[Below(ofDdi.size())];
    field.extras.push_back({name, json});
  }
}

FieldDescriptor RandomDescriptor::Field(const TableDescriptor& table) {
  FieldDescriptor field;
  field.name = Chance(70) ? "q" + std::to_string(Below(1000)) : Text();
  if (Chance(60)) field.title = FilledText();
  if (Chance(20)) field.description = Text();
  MakeDialect(field);
  const FieldType type = field.dialect.type;
  field.missingValues = Chance(50) ? table.missingValues : Values(type, 4, true);
  if (type == FieldType::Integer || type == FieldType::Number)
    for (std::size_t i = Chance(20) ? 1 + Below(2) : 0; i > 0; --i) {
      MissingRangeDescriptor range;
      if (Chance(70)) range.min = -1000.5 + static_cast<double>(Below(100));
      if (Chance(70) || !range.min) range.max = 0.1 * static_cast<double>(Below(100));
      field.missingRanges.push_back(range);
    }
  if (Chance(40)) {
    field.hasCategories = true;
    field.categories = Values(type, 5, false);
    field.categoriesOrdered = Chance(30);
  } else if (Chance(10)) {
    field.categories = Values(type, 5, false);
  }
  if (Chance(20)) field.valueLabels = Values(type, 4, false);
  if (Chance(10)) field.maxLength = static_cast<int>(Below(40000));
  static const std::vector<std::string> formats = {"F8.2",    "F1",        "A20",    "AHEX4",
                                                   "SDATE10", "DTIME12.2", "COMMA9", "PCT5.1"};
  if (Chance(40)) field.format = ReadFormatText(formats[Below(formats.size())]).format;
  static const std::vector<std::string> measures = {"nominal", "ordinal", "scale", "unknown"};
  if (Chance(40)) field.measure = measures[Below(measures.size())];
  static const std::vector<std::string> roles = {"input", "target", "both", "none", "partition", "split"};
  if (Chance(20)) field.role = roles[Below(roles.size())];
  if (Chance(30)) AddAttributes(field.attributes);
  AddFieldExtras(field);
  if (field.description && !field.description->empty()) field.attributes.Add("Description", {*field.description});
  return field;
}

SetDescriptor RandomDescriptor::Set(const TableDescriptor& table) {
  SetDescriptor set;
  set.name = Chance(80) ? "$set" + std::to_string(Below(10)) : "$" + FilledText();
  set.label = Text();
  set.isDichotomy = Chance(50);
  for (std::size_t i = 1 + Below(3); i > 0; --i)
    set.variables.push_back(Chance(95) ? table.fields[Below(table.fields.size())].name : FilledText());
  if (set.isDichotomy || Chance(10)) set.countedValue = Chance(50) ? "1" : Text();
  set.labelledByCountedValues = set.isDichotomy && Chance(30);
  return set;
}

void RandomDescriptor::AddPackage(TableDescriptor& table) {
  TextDialect& dialect = table.dialect;
  if (Chance(30)) dialect.delimiter = ";";
  if (Chance(20)) dialect.quoteChar = Chance(50) ? "" : "'";
  if (Chance(20)) dialect.doubleQuote = Chance(50);
  if (Chance(20)) dialect.header = true;
  if (Chance(20)) dialect.skipInitialSpace = Chance(50);
  if (Chance(20)) dialect.encoding = Chance(50) ? "windows-1252" : "utf-8";
  if (Chance(20)) dialect.commentChar = "#";
  if (Chance(20)) dialect.commentRows = {2, 3};
  if (Chance(20)) dialect.headerRows = {1, 2};
  if (Chance(20)) dialect.headerJoin = Text();
  if (Chance(10)) dialect.extras.push_back({"sheetName", Json(Text()).dump()});
  if (Chance(60)) table.resourceExtras.push_back({"name", Json(FilledText()).dump()});
  if (Chance(60))
    table.resourceExtras.push_back({"path", Chance(70) ? R"("data/survey.csv")" : R"(["a.csv", "../b.csv"])"});
  if (Chance(20)) table.resourceExtras.push_back({"bytes", NumberWord()});
  if (Chance(20)) table.resourceExtras.push_back({"x-" + Text(), JsonValue()});
  if (table.label && Chance(20)) table.packageExtras.push_back({"title", Json(FilledText()).dump()});
  if (Chance(30)) table.packageExtras.push_back({"name", Json(Text()).dump()});
  if (Chance(30))
    table.packageExtras.push_back({"licenses", Chance(50) ? R"([{"name": "CC0-1.0"}])" : R"([{"title": "free"}])"});
  if (Chance(30)) table.packageExtras.push_back({"keywords", Chance(50) ? R"(["a", "b"])" : "[]"});
  Json package = Json::object();
  for (const ExtraProperty& extra : table.packageExtras) package[extra.name] = Json::parse(extra.json);
  AddPackageAttributes({package, ""}, table.attributes);
}

TableDescriptor RandomDescriptor::Make(bool withPackage) {
  TableDescriptor table;
  table.hasSchema = true;
  table.fieldsMatch = static_cast<FieldsMatch>(Below(6));
  table.missingValues = Chance(60) ? std::vector<LabelledValue>{LabelledValue{}} : Values(FieldType::String, 3, true);
  for (std::size_t i = 1 + Below(8); i > 0; --i) table.fields.push_back(Field(table));
  if (Chance(30)) table.weight = Chance(80) ? table.fields[Below(table.fields.size())].name : FilledText();
  if (table.weight && table.weight->empty()) table.weight.reset();
  for (std::size_t i = Chance(40) ? 1 + Below(3) : 0; i > 0; --i) table.sets.push_back(Set(table));
  if (Chance(60)) table.label = FilledText();
  for (std::size_t i = Chance(50) ? Below(3) : 0; i > 0; --i) table.documents.push_back(Texts(4));
  if (Chance(40)) AddAttributes(table.attributes);
  if (Chance(20)) table.extras.push_back({"primaryKey", Chance(60) ? R"(["id", "wave"])" : R"("id")"});
  if (Chance(10)) table.extras.push_back({"uniqueKeys", Chance(50) ? R"([["a"], ["b", "c"]])" : "[]"});
  if (Chance(10)) table.extras.push_back({"foreignKeys", R"([{"fields": ["a"], "reference": {"fields": ["b"]}}])"});
  if (Chance(15)) table.extras.push_back({"x-" + Text(), JsonValue()});
  static const std::vector<std::pair<std::string, std::string>> ofDdi = {
      {"ddi:docDscr/citation/titlStmt/titl", R"("The document")"},
      {"ddi:stdyDscr/method/dataColl/collSitu", R"(["by phone", {"@ID": "C1", "#text": "by mail"}])"},
      {"ddi:stdyDscr/method/dataColl/weight/@ID", R"("W1")"},
      {"ddi:fileDscr/fileTxt/fileName", R"("other.dat")"},
      {"ddi:fileDscr/@ID", R"("file-1")"},
      {"ddi:dataDscr/varGrp", R"({"@ID": "VG1", "@type": "grid", "@var": "V1 V2", "labl": "A grid"})"},
      {"ddi:otherMat", R"({"@level": "study", "labl": "Questionnaire"})"},
      {"ddi:stdyDscr/nonsense", R"({"a": {"b": "c"}})"}};
  if (Chance(30)) {
    const auto& [name, json] = ofDdi[Below(ofDdi.size())];
    table.extras.push_back({name, json});
  }
  if (withPackage) AddPackage(table);
  return table;
}

}  // namespace runtime::data
