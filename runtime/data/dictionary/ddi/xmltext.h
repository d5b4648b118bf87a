// XML files as text that is safe to build a tree of.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/open.h"

namespace runtime::data {

/// Where an offset of a text lies; lines end with LF, CR or CRLF.
class TextLines {
 public:
  explicit TextLines(std::string_view text);
  struct Place {
    std::size_t line = 1;
    std::size_t column = 1;  // in bytes
  };
  Place Of(std::size_t offset) const;

 private:
  std::vector<std::size_t> fBegins;
};

/// The deepest nesting of elements that is read; a DDI-Codebook needs about fifteen.
inline constexpr std::size_t kDeepestXml = 100;

/// The file in UTF-8, without a byte order mark: the mark tells the encoding, else its first bytes where they can only
/// be UTF-16, else the XML declaration, else it is UTF-8. Throws DataError when it cannot be read, and for what
/// CheckXmlText refuses.
std::string ReadXmlText(const std::string& path, std::vector<Note>& notes);

/// Refuses what is no well-formed document and what could make reading one costly: a document type declaration, and
/// with it entities of its own; references to any but the five entities of XML; NUL characters; nesting beyond
/// kDeepestXml. Stops at the first of them, and costs no memory but one place a level. Throws DataError
/// "origin:line:column: ...".
void CheckXmlText(std::string_view text, const std::string& origin);

}  // namespace runtime::data
