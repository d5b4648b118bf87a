#include "runtime/data/dictionary/writing/profile.h"

#include <algorithm>
#include <initializer_list>
#include <set>

namespace runtime::data {
namespace {

using Shape = bool (*)(const Json& value);

bool IsText(const Json& value) { return value.is_string(); }
bool IsFlag(const Json& value) { return value.is_boolean(); }
bool IsWhole(const Json& value) { return value.is_number_integer(); }
bool IsNumber(const Json& value) { return value.is_number(); }
bool IsObject(const Json& value) { return value.is_object(); }
bool IsList(const Json& value) { return value.is_array(); }
bool IsPositive(const Json& value) { return value.is_number_integer() && value > 0; }

template <Shape entry>
bool IsListOf(const Json& value) {
  return value.is_array() && std::all_of(value.begin(), value.end(), entry);
}

template <Shape entry>
bool IsFilledListOf(const Json& value) {
  return IsListOf<entry>(value) && !value.empty();
}

/// No entry stands twice.
template <Shape entry>
bool IsDistinctListOf(const Json& value) {
  if (!IsFilledListOf<entry>(value)) return false;
  std::set<std::string> seen;
  return std::all_of(value.begin(), value.end(), [&seen](const Json& one) { return seen.insert(one.dump()).second; });
}

template <Shape either, Shape other>
bool IsEither(const Json& value) {
  return either(value) || other(value);
}

bool Anything(const Json&) { return true; }

struct Property {
  std::string_view name;
  Shape shape;
};

bool Allows(std::initializer_list<Property> properties, std::string_view name, const Json& value) {
  for (const Property& property : properties)
    if (property.name == name) return property.shape(value);
  return true;
}

/// An object whose members are as `allows` has it.
template <typename Check>
bool IsObjectOf(const Json& value, Check allows) {
  if (!value.is_object()) return false;
  for (auto member = value.begin(); member != value.end(); ++member)
    if (!allows(member.key(), member.value())) return false;
  return true;
}

/// An object with a `value` and perhaps a `label`.
template <Shape entry>
bool IsLabelledValue(const Json& value) {
  return IsObjectOf(value,
                    [](std::string_view name, const Json& part) {
                      return Allows({{"value", entry}, {"label", IsText}}, name, part);
                    }) &&
         value.contains("value");
}

template <Shape entry>
bool IsValueList(const Json& value) {
  return IsListOf<entry>(value) || IsListOf<IsLabelledValue<entry>>(value);
}

bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

bool IsTypeWord(const Json& value) {
  return value.is_string() && IsOneOf(value.get_ref<const std::string&>(),
                                      {"string", "number", "integer", "date", "time", "datetime", "year", "yearmonth",
                                       "boolean", "object", "geopoint", "geojson", "array", "duration", "any"});
}

bool AllowsFormat(std::string_view type, const Json& value) {
  if (IsOneOf(type, {"date", "time", "datetime", "any", "list"})) return true;
  if (!value.is_string()) return false;
  const std::string& word = value.get_ref<const std::string&>();
  if (word == "default") return true;
  if (type.empty() || type == "string") return IsOneOf(word, {"email", "uri", "binary", "uuid"});
  if (type == "geopoint") return IsOneOf(word, {"array", "object"});
  return type == "geojson" && word == "topojson";
}

bool AllowsEnum(std::string_view type, const Json& value) {
  if (type == "number") return IsDistinctListOf<IsText>(value) != IsDistinctListOf<IsNumber>(value);
  if (type == "integer" || type == "year") return IsDistinctListOf<IsText>(value) != IsDistinctListOf<IsWhole>(value);
  if (type == "boolean") return IsDistinctListOf<IsFlag>(value);
  if (type == "any") return IsDistinctListOf<Anything>(value);
  if (type == "object" || type == "geojson")
    return IsDistinctListOf<IsText>(value) != IsDistinctListOf<IsObject>(value);
  if (type == "array") return IsDistinctListOf<IsText>(value) != IsDistinctListOf<IsList>(value);
  if (type == "geopoint")
    return IsDistinctListOf<IsText>(value) || IsDistinctListOf<IsObject>(value) || IsDistinctListOf<IsList>(value);
  return IsDistinctListOf<IsText>(value);
}

bool AllowsConstraint(std::string_view type, std::string_view name, const Json& value) {
  if (name == "enum") return AllowsEnum(type, value);
  const bool isString = type.empty() || type == "string";
  if (IsOneOf(name, {"minimum", "maximum", "exclusiveMinimum", "exclusiveMaximum"})) {
    if (type == "number") return IsEither<IsText, IsNumber>(value);
    if (type == "integer" || type == "year") return IsEither<IsText, IsWhole>(value);
    return !IsOneOf(type, {"date", "time", "datetime", "yearmonth", "duration"}) || IsText(value);
  }
  if (IsOneOf(name, {"minLength", "maxLength"}))
    return !(isString || IsOneOf(type, {"object", "geojson", "array"})) || IsWhole(value);
  if (name == "pattern") return !isString || IsText(value);
  if (name == "jsonSchema") return !IsOneOf(type, {"object", "array"}) || IsObject(value);
  if (name == "unique" && type == "boolean") return true;
  return Allows({{"required", IsFlag}, {"unique", IsFlag}}, name, value);
}

bool AllowsCategories(std::string_view type, const Json& value) {
  if (type.empty() || type == "string") return IsValueList<IsText>(value);
  return type != "integer" || IsValueList<IsWhole>(value);
}

bool IsKey(const Json& value) { return IsText(value) || IsDistinctListOf<IsText>(value); }

bool IsForeignKey(const Json& key) {
  if (!key.is_object() || !key.contains("fields") || !key.contains("reference")) return false;
  const Json& reference = key["reference"];
  if (!reference.is_object() || !reference.contains("fields")) return false;
  const auto areBoth = [&](Shape shape) { return shape(key["fields"]) && shape(reference["fields"]); };
  return Allows({{"resource", IsText}}, "resource", reference.value("resource", Json(""))) &&
         areBoth(IsText) != areBoth(IsFilledListOf<IsText>);
}

/// The pattern of a path: an address, or a path below the folder of the descriptor.
bool IsPath(const Json& value) {
  if (!value.is_string()) return false;
  const std::string& path = value.get_ref<const std::string&>();
  if (path.find('\n') != std::string::npos) return false;
  for (const std::string_view scheme : {"http://", "https://", "ftp://", "ftps://"})
    if (path.rfind(scheme, 0) == 0) return true;
  if (path.empty() || path.rfind("file:", 0) == 0 || path.find_first_of("./~") == 0) return false;
  return path.find("/../") == std::string::npos && path.find('\\') == std::string::npos &&
         path.find("://") == std::string::npos;
}

bool IsSource(const Json& value) {
  return !value.empty() && IsObjectOf(value, [](std::string_view name, const Json& part) {
    return Allows({{"title", IsText}, {"path", IsPath}, {"email", IsText}, {"version", IsText}}, name, part);
  });
}

bool IsLicenceName(const Json& value) {
  if (!value.is_string() || value.get_ref<const std::string&>().empty()) return false;
  const std::string& name = value.get_ref<const std::string&>();
  return std::all_of(name.begin(), name.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '.' ||
           c == '_';
  });
}

bool IsLicence(const Json& value) {
  return IsObjectOf(value,
                    [](std::string_view name, const Json& part) {
                      return Allows({{"name", IsLicenceName}, {"path", IsPath}, {"title", IsText}}, name, part);
                    }) &&
         (value.contains("name") || value.contains("path"));
}

bool IsContributor(const Json& value) {
  if (!value.is_object()) return true;
  return !value.empty() && IsObjectOf(value, [](std::string_view name, const Json& part) {
    return Allows({{"title", IsText},
                   {"path", IsPath},
                   {"email", IsText},
                   {"givenName", IsText},
                   {"familyName", IsText},
                   {"organization", IsText},
                   {"roles", IsFilledListOf<IsText>}},
                  name, part);
  });
}

bool IsHash(const Json& value) {
  if (!value.is_string()) return false;
  const std::string& hash = value.get_ref<const std::string&>();
  const auto isHex = [](std::string_view digits) {
    return digits.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
  };
  if (hash.empty() || (hash.size() == 32 && isHex(hash))) return true;
  const std::size_t colon = hash.find(':');
  return colon != std::string::npos && colon > 0 && colon + 1 < hash.size() && isHex(hash.substr(colon + 1)) &&
         hash.find('\n') == std::string::npos;
}

bool IsMediaType(const Json& value) {
  if (!value.is_string()) return false;
  const std::string& type = value.get_ref<const std::string&>();
  const std::size_t slash = type.find('/', 1);
  return slash != std::string::npos && slash + 1 < type.size() && type.find('\n') == std::string::npos;
}

bool IsDialect(const Json& value) {
  return IsObjectOf(value, [](std::string_view name, const Json& part) {
    return Allows({{"$schema", IsText},
                   {"header", IsFlag},
                   {"headerRows", IsListOf<IsPositive>},
                   {"headerJoin", IsText},
                   {"commentRows", IsListOf<IsPositive>},
                   {"commentChar", IsText},
                   {"delimiter", IsText},
                   {"lineTerminator", IsText},
                   {"quoteChar", IsText},
                   {"doubleQuote", IsFlag},
                   {"escapeChar", IsText},
                   {"nullSequence", IsText},
                   {"skipInitialSpace", IsFlag},
                   {"property", IsText},
                   {"itemType", [](const Json& word) { return word == "array" || word == "object"; }},
                   {"itemKeys", IsListOf<IsText>},
                   {"sheetNumber", IsPositive},
                   {"sheetName", IsText},
                   {"table", IsText}},
                  name, part);
  });
}

}  // namespace

bool ProfileAllowsInField(std::string_view type, std::string_view name, const Json& value) {
  if (name == "type") return IsTypeWord(value);
  if (name == "format") return AllowsFormat(type, value);
  if (name == "categories") return AllowsCategories(type, value);
  if (name == "categoriesOrdered") return !(type.empty() || type == "string" || type == "integer") || IsFlag(value);
  if (name == "constraints")
    return IsObjectOf(value, [type](std::string_view constraint, const Json& bound) {
      return AllowsConstraint(type, constraint, bound);
    });
  if (name == "bareNumber") return !(type == "number" || type == "integer") || IsFlag(value);
  if (name == "groupChar") return !(type == "number" || type == "integer") || IsText(value);
  if (name == "decimalChar") return type != "number" || IsText(value);
  if (name == "trueValues" || name == "falseValues") return type != "boolean" || IsFilledListOf<IsText>(value);
  return Allows({{"name", IsText},
                 {"title", IsText},
                 {"description", IsText},
                 {"example", IsText},
                 {"rdfType", IsText},
                 {"missingValues", IsValueList<IsText>}},
                name, value);
}

bool ProfileAllowsInSchema(std::string_view name, const Json& value) {
  return Allows({{"$schema", IsText},
                 {"fieldsMatch", IsList},
                 {"primaryKey", IsKey},
                 {"uniqueKeys", IsDistinctListOf<IsDistinctListOf<IsText>>},
                 {"foreignKeys", IsFilledListOf<IsForeignKey>},
                 {"missingValues", IsValueList<IsText>}},
                name, value);
}

bool ProfileAllowsInResource(std::string_view name, const Json& value) {
  return Allows({{"$schema", IsText},
                 {"name", IsText},
                 {"path", IsEither<IsPath, IsFilledListOf<IsPath>>},
                 {"type", [](const Json& word) { return word == "table"; }},
                 {"title", IsText},
                 {"description", IsText},
                 {"homepage", IsText},
                 {"sources", IsListOf<IsSource>},
                 {"licenses", IsFilledListOf<IsLicence>},
                 {"format", IsText},
                 {"mediatype", IsMediaType},
                 {"encoding", IsText},
                 {"bytes", IsWhole},
                 {"hash", IsHash},
                 {"dialect", IsDialect}},
                name, value);
}

bool ProfileAllowsInPackage(std::string_view name, const Json& value) {
  return Allows({{"$schema", IsText},
                 {"name", IsText},
                 {"id", IsText},
                 {"title", IsText},
                 {"description", IsText},
                 {"homepage", IsText},
                 {"version", IsText},
                 {"created", IsText},
                 {"contributors", IsFilledListOf<IsContributor>},
                 {"keywords", IsFilledListOf<IsText>},
                 {"image", IsText},
                 {"licenses", IsFilledListOf<IsLicence>},
                 {"sources", IsListOf<IsSource>}},
                name, value);
}

}  // namespace runtime::data
