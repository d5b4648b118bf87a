#include "codebook/cbkorder.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "codebook/cbkoutput.h"
#include "codebook/parser/cbkparser.h"

namespace codebook {

namespace {

bool nameThenIndex(const ListedItem& a, const ListedItem& b) {
  return a.name < b.name || (a.name == b.name && a.index < b.index);
}

bool nameDescending(const ListedItem& a, const ListedItem& b) { return b.name < a.name; }

void orderByName(std::vector<ListedItem>& items, bool ascending) {
  if (ascending)
    std::partial_sort(items.begin(), items.end(), items.end(), nameThenIndex);
  else
    std::stable_sort(items.begin(), items.end(), nameDescending);
}

void orderByIndex(std::vector<ListedItem>& items, bool ascending) {
  std::sort(items.begin(), items.end(), [ascending](const ListedItem& a, const ListedItem& b) {
    return ascending ? a.index < b.index : b.index < a.index;
  });
}

void orderByMeasure(const MAVO_DataSource& dataSource, std::vector<ListedItem>& items, bool ascending) {
  std::vector<std::pair<int, ListedItem>> ranked;
  ranked.reserve(items.size());
  int rank = 0;  // a level outside the four reuses the rank of the item before it
  for (ListedItem& item : items) {
    const int level = item.isSet() ? MAVO_Variable_Enumerations::kLevelNominal
                                   : dataSource.GetVariable(item.index).GetMeasurementLevel();
    switch (level) {
      case MAVO_Variable_Enumerations::kLevelNominal:
      case MAVO_Variable_Enumerations::kLevelOrdinal:
      case MAVO_Variable_Enumerations::kLevelScale:
        rank = ascending ? level : -level;
        break;
      case MAVO_Variable_Enumerations::kLevelUnknown:
        rank = ascending ? 4 : 0;  // last in both directions, meant so
        break;
      default:
        break;
    }
    ranked.emplace_back(rank, std::move(item));
  }
  // The name breaks ties upwards in both directions.
  std::stable_sort(ranked.begin(), ranked.end(), [](const auto& a, const auto& b) {
    return a.first < b.first || (a.first == b.first && a.second.name < b.second.name);
  });
  for (std::size_t i = 0; i < items.size(); ++i) items[i] = std::move(ranked[i].second);
}

/// The text by which a variable is ordered: the first value of its attribute of that name; none when it has no such
/// one.
std::optional<std::string> sortText(const MAVO_Variable& variable, const std::string& attributeName) {
  const DatasourceAttributes& attributes = variable.GetAttributes();
  for (std::size_t i = 0; i < attributes.Size(); ++i) {
    const std::string name = attributes.Name(i);
    if (!sameName(name, attributeName) || isHiddenAttribute(name)) continue;
    const std::vector<std::string> values = attributes.Values(i);
    return values.empty() ? std::string() : values.front();
  }
  return std::nullopt;
}

using ValuedItem = std::pair<std::string, ListedItem>;

// The texts run against the keyword's direction, empty texts and ties with it. Required so.
bool valuedAscending(const ValuedItem& a, const ValuedItem& b) {
  if (a.first == b.first) return a.second.name < b.second.name;
  if (a.first.empty() || b.first.empty()) return a.first.empty();
  return b.first < a.first;
}

bool valuedDescending(const ValuedItem& a, const ValuedItem& b) {
  if (a.first == b.first) return b.second.name < a.second.name;
  if (a.first.empty() || b.first.empty()) return b.first.empty();
  return a.first < b.first;
}

void orderByAttribute(const MAVO_DataSource& dataSource, std::vector<ListedItem>& items, const std::string& attribute,
                      bool ascending) {
  std::vector<ListedItem> plain;
  std::vector<ValuedItem> valued;
  for (ListedItem& item : items) {
    const std::optional<std::string> text =
        item.isSet() ? std::nullopt : sortText(dataSource.GetVariable(item.index), attribute);
    if (text)
      valued.emplace_back(*text, std::move(item));
    else
      plain.push_back(std::move(item));
  }
  orderByName(plain, ascending);
  std::stable_sort(valued.begin(), valued.end(), ascending ? valuedAscending : valuedDescending);

  items.clear();
  for (ValuedItem& item : valued) items.push_back(std::move(item.second));
  items.insert(ascending ? items.begin() : items.end(), plain.begin(), plain.end());
}

}  // namespace

void orderItems(const CodebookSettings& settings, const MAVO_DataSource& dataSource, std::vector<ListedItem>& items) {
  const bool ascending = settings.sortAscending();
  switch (settings.varOrder()) {
    case kOrderFile:
      orderByIndex(items, ascending);
      break;
    case kOrderAlpha:
      orderByName(items, ascending);
      break;
    case kOrderVarList:
      if (!ascending) std::reverse(items.begin(), items.end());
      break;
    case kOrderMeasure:
      orderByMeasure(dataSource, items, ascending);
      break;
    case kOrderAttribute:
      orderByAttribute(dataSource, items, settings.varOrderAttribute(), ascending);
      break;
    default:
      break;
  }
}

}  // namespace codebook
