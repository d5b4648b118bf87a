// The texts of a DDI-Codebook that become attributes.
#pragma once

#include <pugixml.hpp>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/data/attributes.h"

#include "runtime/data/dictionary/ddi/ddiwords.h"
#include "runtime/data/dictionary/ddi/keptelements.h"

namespace runtime::data {

/// Attributes that are found one value at a time.
class AttributeCollector {
 public:
  void Add(std::string_view name, std::string value);
  /// Adds a value unless the attribute has it.
  void AddOnce(std::string_view name, const std::string& value);
  DatasourceAttributes Finish() const;
  /// The values of an attribute, null when there is none.
  const std::vector<std::string>* Find(std::string_view name) const;

 private:
  std::vector<std::pair<std::string, std::vector<std::string>>> fAttributes;
};

/// What becomes of the elements below one.
struct DdiTextPaths {
  std::span<const DdiText> texts;
  std::span<const std::string_view> elsewhere;  // read by others
};

/// Walks through what is below `element`, which stands at `path` (empty: at the beginning): texts become attributes,
/// everything else that nobody reads is kept.
void ReadDdiTexts(pugi::xml_node element, const std::string& path, const DdiTextPaths& paths,
                  AttributeCollector& attributes, KeptElements& kept);

/// Whether an element is a note that this program wrote for itself.
bool IsCodebookNote(pugi::xml_node element);

}  // namespace runtime::data
