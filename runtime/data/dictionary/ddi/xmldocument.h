// An XML document as a tree that knows the lines of its file, without regard to name spaces.
#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/dictionary/ddi/xmltext.h"
#include "runtime/data/open.h"

namespace runtime::data {

class XmlDocument {
 public:
  /// `path` names the document in messages. REQUIRES: a text that CheckXmlText takes.
  XmlDocument(std::string path, std::string text);

  pugi::xml_node root() const { return fTree.document_element(); }
  const std::string& path() const { return fPath; }
  /// FILE:LINE of an element.
  std::string Where(pugi::xml_node element) const;
  /// Throws DataError "FILE:LINE: problem".
  [[noreturn]] void Fail(pugi::xml_node element, const std::string& problem) const;

 private:
  std::string fPath;
  std::string fText;  // the tree's names and values lie in it
  TextLines fLines;
  pugi::xml_document fTree;
};

/// The name without the prefix of a name space.
std::string_view LocalName(pugi::xml_node element);
bool IsElement(pugi::xml_node node, std::string_view localName);
/// The elements of that name right below, in their order; and the first of them, null when there is none.
std::vector<pugi::xml_node> ElementsOf(pugi::xml_node parent, std::string_view localName);
pugi::xml_node ElementOf(pugi::xml_node parent, std::string_view localName);
/// The value of an attribute without blanks around; empty when there is none. Prefixes count: "xml:lang".
std::string AttributeOf(pugi::xml_node element, const char* name);
/// The references of an attribute such as "V1 V2".
std::vector<std::string> ReferencesOf(pugi::xml_node element, const char* name);

/// The text of an element and of what is in it, each paragraph and list item a line; see ddispace.h.
std::string LineOf(pugi::xml_node element);
std::string LinesOf(pugi::xml_node element);
/// Whether what is in an element is text alone, with paragraphs, lists and emphasis.
bool IsText(pugi::xml_node element);

}  // namespace runtime::data
