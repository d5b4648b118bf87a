#include "runtime/data/dictionary/writing/xmlwriter.h"

#include <cstddef>

#include "runtime/data/utf8walk.h"

namespace runtime::data {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// U+2400 and on: the picture of a control character below U+0020.
std::string PictureOf(unsigned char control) { return {'\xE2', '\x90', static_cast<char>(0x80 + control)}; }

/// U+FFFE and U+FFFF are characters of UTF-8 and none of XML.
bool IsNoncharacter(std::string_view character) { return character == "\xEF\xBF\xBE" || character == "\xEF\xBF\xBF"; }

void AppendEscaped(std::string& out, char byte, bool inAttribute) {
  switch (byte) {
    case '&':
      out += "&amp;";
      return;
    case '<':
      out += "&lt;";
      return;
    case '>':
      out += "&gt;";
      return;
    case '\r':
      out += "&#13;";
      return;
    case '"':
      out += inAttribute ? "&quot;" : "\"";
      return;
    case '\n':
      out += inAttribute ? "&#10;" : "\n";
      return;
    case '\t':
      out += inAttribute ? "&#9;" : "\t";
      return;
    default:
      out += byte;
  }
}

std::string Escaped(std::string_view text, bool inAttribute) {
  std::string out;
  for (const char byte : XmlCharacters(text)) AppendEscaped(out, byte, inAttribute);
  return out;
}

}  // namespace

std::string XmlCharacters(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Step step = StepUtf8(text, at);
    const std::string_view character = text.substr(at, step.length);
    const auto first = static_cast<unsigned char>(text[at]);
    if (!step.valid || IsNoncharacter(character))
      out += kReplacement;
    else if (first < 0x20 && first != '\t' && first != '\n' && first != '\r')
      out += PictureOf(first);
    else
      out += character;
    at += step.length;
  }
  return out;
}

XmlWriter::XmlWriter(std::ostream& out) : fOut(out) { fOut << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"; }

void XmlWriter::FinishTag() {
  if (fInTag) fOut << '>';
  fInTag = false;
}

void XmlWriter::BeginLine() {
  fOut << '\n';
  for (std::size_t level = 0; level < fOpen.size(); ++level) fOut << "  ";
}

void XmlWriter::Open(std::string_view name) {
  FinishTag();
  const bool inText = !fOpen.empty() && fOpen.back().hasText;
  if (!inText) BeginLine();
  if (!fOpen.empty()) fOpen.back().hasElements = true;
  fOut << '<' << name;
  fOpen.push_back({std::string(name), false, false});
  fInTag = true;
}

void XmlWriter::Attribute(std::string_view name, std::string_view value) {
  fOut << ' ' << name << "=\"" << Escaped(value, true) << '"';
}

void XmlWriter::Text(std::string_view text) {
  if (text.empty()) return;
  FinishTag();
  fOpen.back().hasText = true;
  fOut << Escaped(text, false);
}

void XmlWriter::Close() {
  const Element element = fOpen.back();
  fOpen.pop_back();
  if (fInTag) {
    fOut << "/>";
    fInTag = false;
  } else {
    if (element.hasElements && !element.hasText) BeginLine();
    fOut << "</" << element.name << '>';
  }
  if (fOpen.empty()) fOut << '\n';
}

}  // namespace runtime::data
