// XML written element by element.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace runtime::data {

/// The text with everything that XML 1.0 cannot hold replaced by a visible character: control characters by their
/// pictures (U+2400 and on), U+FFFE, U+FFFF and bytes that are no UTF-8 by U+FFFD. Nothing is escaped yet.
std::string XmlCharacters(std::string_view text);

/// Writes a document of UTF-8: two spaces a level, an element with text on the lines of its text alone. Texts and
/// attribute values may hold anything; what XML cannot hold is replaced as XmlCharacters says, and carriage returns
/// and, in attributes, line ends and tabs are written as character references, so that they are read back as they were.
class XmlWriter {
 public:
  /// Writes the declaration. `out` must outlive the writer.
  explicit XmlWriter(std::ostream& out);
  XmlWriter(const XmlWriter&) = delete;
  XmlWriter& operator=(const XmlWriter&) = delete;

  /// Begins an element; its attributes come next.
  void Open(std::string_view name);
  /// REQUIRES: an element was begun, and neither a text nor another element since.
  void Attribute(std::string_view name, std::string_view value);
  void Text(std::string_view text);
  /// Ends the element begun last.
  void Close();

 private:
  struct Element {
    std::string name;
    bool hasText = false;
    bool hasElements = false;
  };

  void FinishTag();
  void BeginLine();

  std::ostream& fOut;
  std::vector<Element> fOpen;
  bool fInTag = false;
};

}  // namespace runtime::data
