#include "runtime/data/dictionary/writing/ddielements.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/dictionary/writing/ddigrammar.h"

namespace runtime::data {
namespace {

constexpr std::string_view kDdi = "ddi:";

void FillElement(const Json& json, XmlElement& element);

void AddElements(const std::string& name, const Json& json, XmlElement& parent) {
  if (!json.is_array()) {
    FillElement(json, parent.Add(name));
    return;
  }
  for (const Json& entry : json) FillElement(entry, parent.Add(name));
}

void FillElement(const Json& json, XmlElement& element) {
  if (json.is_string()) element.text = json.get<std::string>();
  if (!json.is_object()) return;
  for (auto member = json.begin(); member != json.end(); ++member) {
    const std::string& name = member.key();
    if (name.rfind('@', 0) == 0 && member.value().is_string())
      element.SetAttribute(std::string_view(name).substr(1), member.value().get<std::string>());
    else if (name == "#text" && member.value().is_string())
      element.text = member.value().get<std::string>();
    else
      AddElements(name, member.value(), element);
  }
}

/// Sets attribute or text of each element; the i-th value is for the i-th of them.
void SetPart(std::string_view part, const Json& json, const std::vector<XmlElement*>& elements) {
  const Json values = json.is_array() ? json : Json::array({json});
  for (std::size_t i = 0; i < values.size() && i < elements.size(); ++i) {
    if (!values[i].is_string()) continue;
    if (part == "#text")
      elements[i]->text = values[i].get<std::string>();
    else
      elements[i]->SetAttribute(part.substr(1), values[i].get<std::string>());
  }
}

/// The element that the key of a category or a group stands for.
XmlElement* FindByKey(XmlElement& root, std::string_view path, const std::string& key) {
  if (path == "catgry") {
    for (XmlElement* category : root.At(path)) {
      const XmlElement* code = category->Child("catValu");
      if ((code ? code->text : std::string()) == key) return category;
    }
  }
  if (path == "varGrp")
    for (XmlElement* group : root.At("dataDscr/varGrp"))
      if (const std::string* name = group->Attribute("name"); name && "$" + *name == key) return group;
  return nullptr;
}

void PlaceByKey(std::string_view path, std::string_view part, const Json& json, XmlElement& root) {
  if (!json.is_object()) return;
  for (auto entry = json.begin(); entry != json.end(); ++entry) {
    XmlElement* element = FindByKey(root, path, entry.key());
    if (!element) continue;
    if (part.front() == '@')
      SetPart(part, entry.value(), {element});
    else
      AddElements(std::string(part), entry.value(), *element);
  }
}

void PlaceExtra(std::string_view path, const Json& json, XmlElement& root) {
  const std::size_t slash = path.rfind('/');
  const std::string_view last = slash == std::string_view::npos ? path : path.substr(slash + 1);
  const std::string_view above = slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
  if (above == "catgry" || above == "varGrp") {
    PlaceByKey(above, last, json, root);
  } else if (last.front() == '@' || last == "#text") {
    SetPart(last, json, root.At(above));
  } else {
    const Json values = json.is_array() ? json : Json::array({json});
    for (const Json& value : values) FillElement(value, PlaceElement(root, path));
  }
}

}  // namespace

XmlElement& PlaceElement(XmlElement& root, std::string_view path) {
  XmlElement* parent = &root;
  for (std::size_t slash = path.find('/'); slash != std::string_view::npos; slash = path.find('/')) {
    parent = &parent->ChildOrNew(path.substr(0, slash));
    path.remove_prefix(slash + 1);
  }
  XmlElement* there = parent->Child(path);
  if (!there || !there->isReplaceable) return parent->Add(path);
  there->isReplaceable = false;
  there->text.clear();
  return *there;
}

void PlaceDdiExtras(const std::vector<ExtraProperty>& extras, XmlElement& root) {
  // By name, so that it does not matter from which file they come.
  std::vector<ExtraProperty> sorted = extras;
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const ExtraProperty& a, const ExtraProperty& b) { return a.name < b.name; });
  for (const ExtraProperty& extra : sorted) {
    if (extra.name.rfind(kDdi, 0) != 0 || extra.name.size() == kDdi.size()) continue;
    const Json json = Json::parse(extra.json, nullptr, false);
    if (json.is_discarded()) continue;
    const std::string_view path = std::string_view(extra.name).substr(kDdi.size());
    if (path.back() != '/' && path.front() != '/' && path.find("//") == std::string_view::npos)
      PlaceExtra(path, json, root);
  }
}

}  // namespace runtime::data
