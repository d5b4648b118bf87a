// An XML element with all that is in it, before it is written.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "runtime/data/dictionary/writing/xmlwriter.h"

namespace runtime::data {

struct XmlElement {
  explicit XmlElement(std::string_view elementName) : name(elementName) {}

  std::string name;
  std::vector<std::pair<std::string, std::string>> attributes;
  std::string text;  // before the elements
  std::vector<std::unique_ptr<XmlElement>> children;
  bool isReplaceable = false;  // written for its reader's sake; gives way to what the descriptor says

  /// Null when there is none.
  const std::string* Attribute(std::string_view attribute) const;
  /// Sets or replaces it.
  void SetAttribute(std::string_view attribute, std::string value);
  void RemoveAttribute(std::string_view attribute);

  /// The first element of that name right below; null when there is none.
  XmlElement* Child(std::string_view childName) const;
  /// The first one, put in at the end when there is none.
  XmlElement& ChildOrNew(std::string_view childName);
  XmlElement& Add(std::string_view childName);
  XmlElement& AddText(std::string_view childName, std::string text);
  /// All elements at a path such as "qstn/qstnLit", in their order; the element itself for an empty path.
  std::vector<XmlElement*> At(std::string_view path);
};

void WriteXml(const XmlElement& element, XmlWriter& writer);

}  // namespace runtime::data
