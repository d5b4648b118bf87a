// What a DDI-Codebook says beyond what is understood, in the form that ddiwords.h tells.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/jsonfile.h"

namespace runtime::data {

/// An element with all that is in it.
Json ElementAsJson(pugi::xml_node element);
/// Whether there is a text or an attribute anywhere in an element.
bool SaysAnything(pugi::xml_node element);

/// Paths go without "ddi:". Elements that say nothing are not kept.
class KeptElements {
 public:
  void KeepElement(const std::string& path, pugi::xml_node element);
  /// Those of an element that is itself understood, but for the names given. To be called for every element of a path,
  /// in their order.
  void KeepAttributes(const std::string& path, pugi::xml_node element,
                      std::initializer_list<std::string_view> understood = {});
  void KeepText(const std::string& path, const std::string& text);
  /// What an element of several that have a key (a category's code, a set's name) says beyond its understood attributes
  /// and elements.
  void KeepRestOf(const std::string& path, const std::string& key, pugi::xml_node element,
                  std::initializer_list<std::string_view> understoodAttributes,
                  const std::vector<pugi::xml_node>& understoodElements);
  /// A property that is one already. Of two with a name the first stays.
  void KeepProperty(const std::string& name, Json value);

  std::vector<ExtraProperty> Finish() const;

 private:
  struct Entry {
    std::string name;
    std::vector<Json> values;
    std::string counted;  // the path whose elements the values are aligned with; empty: none
    Json property;        // one that is whole already, in place of the values
    // An object in place of the values, with many keys.
    std::vector<std::pair<std::string, Json>> members;
    std::unordered_map<std::string, std::size_t> indexOfKey;
  };
  Entry& EntryOf(const std::string& name);

  std::vector<Entry> fEntries;
  std::unordered_map<std::string, std::size_t> fIndexOfName;
  std::unordered_map<std::string, std::size_t> fElementsOfPath;
};

}  // namespace runtime::data
