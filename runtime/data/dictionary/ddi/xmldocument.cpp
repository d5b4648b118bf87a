#include "runtime/data/dictionary/ddi/xmldocument.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/dictionary/ddi/ddispace.h"
#include "runtime/data/typing/numbertext.h"

namespace runtime::data {
namespace {

/// Elements that shape a text and say nothing else; the first ones begin a line.
constexpr std::string_view kBlocks[] = {"p",    "li", "itm", "br", "div", "head", "tr", "row", "ul",         "ol",
                                        "list", "dl", "dt",  "dd", "h1",  "h2",   "h3", "h4",  "blockquote", "pre"};
constexpr std::string_view kInline[] = {"em",    "emph",  "hi",      "strong", "b",    "i",      "u",
                                        "a",     "span",  "sub",     "sup",    "q",    "code",   "label",
                                        "small", "tt",    "acronym", "abbr",   "cite", "td",     "th",
                                        "entry", "tbody", "thead",   "table",  "Link", "ExtLink"};

template <std::size_t size>
bool IsOneOf(std::string_view name, const std::string_view (&names)[size]) {
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

void AppendText(pugi::xml_node element, std::string& text) {
  for (const pugi::xml_node node : element.children()) {
    if (node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata) text += node.value();
    if (node.type() != pugi::node_element) continue;
    const bool isBlock = IsOneOf(LocalName(node), kBlocks);
    const bool isCell = LocalName(node) == "td" || LocalName(node) == "th" || LocalName(node) == "entry";
    if (isBlock && !text.empty()) text += '\n';
    AppendText(node, text);
    if (isBlock) text += '\n';
    if (isCell) text += ' ';
  }
}

/// What is wrapped over lines in the file within a paragraph is one line of the text.
std::string ParagraphsOf(pugi::xml_node element) {
  std::string text;
  for (const pugi::xml_node node : element.children()) {
    if (node.type() != pugi::node_element || !IsOneOf(LocalName(node), kBlocks)) continue;
    // A list's items are its paragraphs.
    std::string paragraph;
    const bool holdsBlocks = std::any_of(node.begin(), node.end(), [](pugi::xml_node inner) {
      return inner.type() == pugi::node_element && IsOneOf(LocalName(inner), kBlocks);
    });
    if (holdsBlocks) {
      for (const pugi::xml_node inner : node.children()) {
        if (inner.type() == pugi::node_element && IsOneOf(LocalName(inner), kBlocks)) break;
        if (inner.type() == pugi::node_element)
          AppendText(inner, paragraph);
        else
          paragraph += inner.value();
      }
      paragraph = DdiLine(paragraph);
      const std::string inner = ParagraphsOf(node);
      if (!paragraph.empty() && !inner.empty()) paragraph += '\n';
      paragraph += inner;
    } else {
      AppendText(node, paragraph);
      paragraph = DdiLine(paragraph);
    }
    if (!text.empty() && !paragraph.empty()) text += '\n';
    text += paragraph;
  }
  return text;
}

}  // namespace

XmlDocument::XmlDocument(std::string path, std::string text)
    : fPath(std::move(path)), fText(std::move(text)), fLines(fText) {
  const unsigned int flags =
      pugi::parse_cdata | pugi::parse_escapes | pugi::parse_wconv_attribute | pugi::parse_eol | pugi::parse_ws_pcdata;
  const pugi::xml_parse_result result =
      fTree.load_buffer_inplace(fText.data(), fText.size(), flags, pugi::encoding_utf8);
  if (result) return;
  const TextLines::Place place = fLines.Of(static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0)));
  throw DataError(
      fmt::format("{}:{}:{}: this is no well-formed XML: {}", fPath, place.line, place.column, result.description()));
}

std::string XmlDocument::Where(pugi::xml_node element) const {
  const std::ptrdiff_t offset = element.offset_debug();
  if (offset < 0) return fPath;
  return fmt::format("{}:{}", fPath, fLines.Of(static_cast<std::size_t>(offset)).line);
}

void XmlDocument::Fail(pugi::xml_node element, const std::string& problem) const {
  throw DataError(Where(element) + ": " + problem);
}

std::string_view LocalName(pugi::xml_node element) {
  const std::string_view name = element.name();
  return name.substr(name.find(':') + 1);
}

bool IsElement(pugi::xml_node node, std::string_view localName) {
  return node.type() == pugi::node_element && LocalName(node) == localName;
}

std::vector<pugi::xml_node> ElementsOf(pugi::xml_node parent, std::string_view localName) {
  std::vector<pugi::xml_node> elements;
  for (const pugi::xml_node child : parent.children())
    if (IsElement(child, localName)) elements.push_back(child);
  return elements;
}

pugi::xml_node ElementOf(pugi::xml_node parent, std::string_view localName) {
  return parent.find_child([&](pugi::xml_node child) { return IsElement(child, localName); });
}

std::string AttributeOf(pugi::xml_node element, const char* name) { return DdiLine(element.attribute(name).value()); }

std::vector<std::string> ReferencesOf(pugi::xml_node element, const char* name) {
  std::vector<std::string> references;
  const std::string text = AttributeOf(element, name);
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find(' ', at), text.size());
    references.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return references;
}

std::string LineOf(pugi::xml_node element) {
  std::string text;
  AppendText(element, text);
  return DdiLine(text);
}

std::string LinesOf(pugi::xml_node element) {
  std::string own;
  bool hasBlocks = false;
  for (const pugi::xml_node node : element.children()) {
    if (node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata) own += node.value();
    hasBlocks = hasBlocks || (node.type() == pugi::node_element && IsOneOf(LocalName(node), kBlocks));
  }
  if (hasBlocks && DdiLine(own).empty()) return ParagraphsOf(element);
  std::string text;
  AppendText(element, text);
  return DdiLines(text);
}

bool IsText(pugi::xml_node element) {
  return std::all_of(element.begin(), element.end(), [](pugi::xml_node node) {
    return node.type() != pugi::node_element || IsOneOf(LocalName(node), kBlocks) || IsOneOf(LocalName(node), kInline);
  });
}

}  // namespace runtime::data
