#include "runtime/data/dictionary/writing/xmlelement.h"

#include <algorithm>
#include <cstddef>

namespace runtime::data {

const std::string* XmlElement::Attribute(std::string_view attribute) const {
  for (const auto& [known, value] : attributes)
    if (known == attribute) return &value;
  return nullptr;
}

void XmlElement::SetAttribute(std::string_view attribute, std::string value) {
  for (auto& [known, old] : attributes) {
    if (known != attribute) continue;
    old = std::move(value);
    return;
  }
  attributes.emplace_back(attribute, std::move(value));
}

void XmlElement::RemoveAttribute(std::string_view attribute) {
  const auto isIt = [attribute](const auto& known) { return known.first == attribute; };
  attributes.erase(std::remove_if(attributes.begin(), attributes.end(), isIt), attributes.end());
}

XmlElement* XmlElement::Child(std::string_view childName) const {
  for (const auto& child : children)
    if (child->name == childName) return child.get();
  return nullptr;
}

XmlElement& XmlElement::ChildOrNew(std::string_view childName) {
  XmlElement* found = Child(childName);
  return found ? *found : Add(childName);
}

XmlElement& XmlElement::Add(std::string_view childName) {
  children.push_back(std::make_unique<XmlElement>(childName));
  return *children.back();
}

XmlElement& XmlElement::AddText(std::string_view childName, std::string content) {
  XmlElement& child = Add(childName);
  child.text = std::move(content);
  return child;
}

std::vector<XmlElement*> XmlElement::At(std::string_view path) {
  if (path.empty()) return {this};
  const std::size_t slash = path.find('/');
  const std::string_view step = path.substr(0, slash);
  const std::string_view rest = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
  std::vector<XmlElement*> found;
  for (const auto& child : children) {
    if (child->name != step) continue;
    for (XmlElement* deeper : child->At(rest)) found.push_back(deeper);
  }
  return found;
}

void WriteXml(const XmlElement& element, XmlWriter& writer) {
  writer.Open(element.name);
  for (const auto& [name, value] : element.attributes) writer.Attribute(name, value);
  writer.Text(element.text);
  for (const auto& child : element.children) WriteXml(*child, writer);
  writer.Close();
}

}  // namespace runtime::data
