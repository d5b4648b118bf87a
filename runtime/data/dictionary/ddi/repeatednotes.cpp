#include "runtime/data/dictionary/ddi/repeatednotes.h"

#include <algorithm>

#include <fmt/format.h>

namespace runtime::data {

void RepeatedNotes::Add(DdiOddity kind, pugi::xml_node element, const std::string& text) {
  const auto known = std::find_if(fKinds.begin(), fKinds.end(), [&](const Kind& other) { return other.kind == kind; });
  if (known != fKinds.end())
    ++known->more;
  else
    fKinds.push_back({kind, fmt::format("{}: {}", fDocument.Where(element), text)});
}

void RepeatedNotes::Report(std::vector<Note>& notes) const {
  for (const Kind& kind : fKinds)
    notes.push_back({false, kind.more == 0 ? kind.first : fmt::format("{} ({} more like it)", kind.first, kind.more)});
}

}  // namespace runtime::data
