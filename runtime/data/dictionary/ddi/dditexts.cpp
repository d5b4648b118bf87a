#include "runtime/data/dictionary/ddi/dditexts.h"

#include <algorithm>

#include "runtime/data/dictionary/ddi/xmldocument.h"

namespace runtime::data {
namespace {

bool IsAbove(std::string_view path, std::string_view other) {
  return other.size() > path.size() && other.substr(0, path.size()) == path && other[path.size()] == '/';
}

bool HoldsSomethingRead(std::string_view path, const DdiTextPaths& paths) {
  return std::any_of(paths.texts.begin(), paths.texts.end(),
                     [&](const DdiText& text) { return IsAbove(path, text.path); }) ||
         std::any_of(paths.elsewhere.begin(), paths.elsewhere.end(),
                     [&](std::string_view other) { return IsAbove(path, other); });
}

}  // namespace

void AttributeCollector::Add(std::string_view name, std::string value) {
  const auto known = std::find_if(fAttributes.begin(), fAttributes.end(),
                                  [&](const auto& attribute) { return attribute.first == name; });
  if (known != fAttributes.end())
    known->second.push_back(std::move(value));
  else
    fAttributes.push_back({std::string(name), {std::move(value)}});
}

void AttributeCollector::AddOnce(std::string_view name, const std::string& value) {
  const std::vector<std::string>* values = Find(name);
  if (values == nullptr || std::find(values->begin(), values->end(), value) == values->end()) Add(name, value);
}

const std::vector<std::string>* AttributeCollector::Find(std::string_view name) const {
  for (const auto& [known, values] : fAttributes)
    if (known == name) return &values;
  return nullptr;
}

DatasourceAttributes AttributeCollector::Finish() const {
  DatasourceAttributes attributes;
  for (const auto& [name, values] : fAttributes) attributes.Add(name, values);
  return attributes;
}

bool IsCodebookNote(pugi::xml_node element) {
  return IsElement(element, "notes") && AttributeOf(element, "type") == "codebook";
}

void ReadDdiTexts(pugi::xml_node element, const std::string& path, const DdiTextPaths& paths,
                  AttributeCollector& attributes, KeptElements& kept) {
  for (const pugi::xml_node child : element.children()) {
    if (child.type() != pugi::node_element || IsCodebookNote(child)) continue;
    const std::string childPath =
        path.empty() ? std::string(LocalName(child)) : path + "/" + std::string(LocalName(child));
    if (std::find(paths.elsewhere.begin(), paths.elsewhere.end(), childPath) != paths.elsewhere.end()) continue;
    const auto text = std::find_if(paths.texts.begin(), paths.texts.end(),
                                   [&](const DdiText& known) { return known.path == childPath; });
    if (text != paths.texts.end()) {
      std::string value = LinesOf(child);
      if (value.empty()) value = AttributeOf(child, "date");  // <timePrd date="2023"/>
      if (value.empty()) {
        kept.KeepElement(childPath, child);
        continue;
      }
      attributes.Add(text->attribute, std::move(value));
      kept.KeepAttributes(childPath, child);
    } else if (HoldsSomethingRead(childPath, paths)) {
      kept.KeepAttributes(childPath, child);
      ReadDdiTexts(child, childPath, paths, attributes, kept);
    } else {
      kept.KeepElement(childPath, child);
    }
  }
}

}  // namespace runtime::data
