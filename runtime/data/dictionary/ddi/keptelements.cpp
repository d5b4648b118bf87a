#include "runtime/data/dictionary/ddi/keptelements.h"

#include <algorithm>

#include "runtime/data/dictionary/ddi/ddispace.h"
#include "runtime/data/dictionary/ddi/xmldocument.h"

namespace runtime::data {
namespace {

/// Names of name spaces and places of schemas say nothing of the data; `source` is given up, for it stands everywhere.
bool IsKeptAttribute(std::string_view name) {
  return name != "source" && name != "xmlns" && name.substr(0, 6) != "xmlns:" && name.substr(0, 4) != "xsi:";
}

void AppendTo(Json& values, Json value) {
  if (values.is_null()) {
    values = std::move(value);
    return;
  }
  if (!values.is_array()) values = Json::array({std::move(values)});
  values.push_back(std::move(value));
}

bool Holds(std::initializer_list<std::string_view> names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

/// Written here, because an object that keeps the order of its members looks for each of them one by one.
std::string ObjectText(const std::vector<std::pair<std::string, Json>>& members) {
  std::string text = "{";
  for (const auto& [key, value] : members) {
    if (text.size() > 1) text += ',';
    text += Json(key).dump() + ':' + value.dump();
  }
  return text + '}';
}

}  // namespace

Json ElementAsJson(pugi::xml_node element) {
  const bool isText = IsText(element);
  std::string text = isText ? LinesOf(element) : std::string();
  Json object = Json::object();
  for (const pugi::xml_attribute attribute : element.attributes())
    if (IsKeptAttribute(attribute.name())) object[std::string("@") + attribute.name()] = attribute.value();
  if (isText && object.empty()) return text;
  if (isText) {
    if (!text.empty()) object["#text"] = std::move(text);
    return object;
  }
  std::string own;
  for (const pugi::xml_node node : element.children()) {
    if (node.type() == pugi::node_element)
      AppendTo(object[std::string(LocalName(node))], ElementAsJson(node));
    else
      own += node.value();
  }
  own = DdiLines(own);
  if (!own.empty()) object["#text"] = std::move(own);
  return object;
}

bool SaysAnything(pugi::xml_node element) {
  const auto attributes = element.attributes();
  if (std::any_of(attributes.begin(), attributes.end(), [](pugi::xml_attribute attribute) {
        return IsKeptAttribute(attribute.name()) && *attribute.value() != '\0';
      }))
    return true;
  return std::any_of(element.begin(), element.end(), [](pugi::xml_node node) {
    return node.type() == pugi::node_element ? SaysAnything(node) : !DdiLines(node.value()).empty();
  });
}

KeptElements::Entry& KeptElements::EntryOf(const std::string& name) {
  const auto [found, isNew] = fIndexOfName.emplace(name, fEntries.size());
  if (isNew) fEntries.push_back({name, {}, {}, {}, {}, {}});
  return fEntries[found->second];
}

void KeptElements::KeepElement(const std::string& path, pugi::xml_node element) {
  if (SaysAnything(element)) EntryOf("ddi:" + path).values.push_back(ElementAsJson(element));
}

void KeptElements::KeepAttributes(const std::string& path, pugi::xml_node element,
                                  std::initializer_list<std::string_view> understood) {
  const std::size_t index = fElementsOfPath[path]++;
  for (const pugi::xml_attribute attribute : element.attributes()) {
    const std::string_view name = attribute.name();
    if (!IsKeptAttribute(name) || *attribute.value() == '\0' || Holds(understood, name)) continue;
    Entry& entry = EntryOf("ddi:" + path + (path.empty() ? "@" : "/@") + std::string(name));
    entry.counted = path;
    entry.values.resize(index + 1);
    entry.values[index] = attribute.value();
  }
}

void KeptElements::KeepText(const std::string& path, const std::string& text) {
  if (!text.empty()) EntryOf("ddi:" + path + "/#text").values.emplace_back(text);
}

void KeptElements::KeepRestOf(const std::string& path, const std::string& key, pugi::xml_node element,
                              std::initializer_list<std::string_view> understoodAttributes,
                              const std::vector<pugi::xml_node>& understoodElements) {
  const auto keep = [&](const std::string& name, Json value) {
    Entry& entry = EntryOf("ddi:" + path + "/" + name);
    const auto [found, isNew] = entry.indexOfKey.emplace(key, entry.members.size());
    if (isNew) entry.members.emplace_back(key, nullptr);
    AppendTo(entry.members[found->second].second, std::move(value));
  };
  for (const pugi::xml_attribute attribute : element.attributes())
    if (IsKeptAttribute(attribute.name()) && *attribute.value() != '\0' &&
        !Holds(understoodAttributes, attribute.name()))
      keep(std::string("@") + attribute.name(), attribute.value());
  for (const pugi::xml_node node : element.children()) {
    if (node.type() != pugi::node_element || !SaysAnything(node)) continue;
    if (std::find(understoodElements.begin(), understoodElements.end(), node) != understoodElements.end()) continue;
    keep(std::string(LocalName(node)), ElementAsJson(node));
  }
}

void KeptElements::KeepProperty(const std::string& name, Json value) {
  Entry& entry = EntryOf(name);
  if (entry.property.is_null()) entry.property = std::move(value);
}

std::vector<ExtraProperty> KeptElements::Finish() const {
  std::vector<ExtraProperty> extras;
  for (const Entry& entry : fEntries) {
    if (!entry.property.is_null()) {
      extras.push_back({entry.name, entry.property.dump()});
      continue;
    }
    if (!entry.members.empty()) {
      extras.push_back({entry.name, ObjectText(entry.members)});
      continue;
    }
    std::vector<Json> values = entry.values;
    if (!entry.counted.empty()) values.resize(fElementsOfPath.at(entry.counted));
    extras.push_back({entry.name, (values.size() == 1 ? values.front() : Json(values)).dump()});
  }
  return extras;
}

}  // namespace runtime::data
