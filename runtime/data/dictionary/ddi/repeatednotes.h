// Notes that a document of thousands of variables would repeat.
#pragma once

#include <cstddef>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "runtime/data/dictionary/ddi/xmldocument.h"
#include "runtime/data/open.h"

namespace runtime::data {

/// What may be odd about an element; each kind is told once, with the first place and the number.
enum class DdiOddity {
  NoName,
  RepeatedName,
  RepeatedId,
  UnknownReference,
  CategoryWithoutCode,
  RepeatedCode,
  TextCodes,
  NoCategories,
  UnknownWord,
  UnusableRange,
  UnusableWidth,
  UnusableNote,
  UnusableSet,
  UnknownElement,
  AbsentMember
};

class RepeatedNotes {
 public:
  explicit RepeatedNotes(const XmlDocument& document) : fDocument(document) {}

  void Add(DdiOddity kind, pugi::xml_node element, const std::string& text);
  /// Appends a note of each kind, in the order in which they came up.
  void Report(std::vector<Note>& notes) const;

 private:
  struct Kind {
    DdiOddity kind;
    std::string first;
    std::size_t more = 0;
  };
  const XmlDocument& fDocument;
  std::vector<Kind> fKinds;
};

}  // namespace runtime::data
