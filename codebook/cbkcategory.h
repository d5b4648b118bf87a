// What one reported item is in the dictionary.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/data/datasource.h"
#include "host/data/obs.h"

namespace codebook {

enum DescriptorKind : std::int32_t { kNoItem = 0, kVariableItem = 1, kCategorySetItem = 2, kDichotomySetItem = 3 };

/// Filled once, when the run collects its items.
struct CategoryDescriptor {
  MAVO_DataSource* dataSource = nullptr;    // not owned
  const MAVO_Variable* variable = nullptr;  // of a variable item; not owned
  /// Of a variable its dictionary index; of a set the column count plus the set's place in the list of sets.
  std::int32_t index = -1;
  std::vector<std::int32_t> memberIndices;  // of a set, in set order; members whose names do not resolve are left out
  /// The value that a dichotomy set counts: one double, or blank-padded text.
  std::vector<OBS> countedValue;
  /// 8 for a numeric counted value; for text the number of 8-byte units. Two measures, meant so: the aggregation
  /// library takes the number as it stands.
  std::int32_t countedValueWidth = 0;
  std::string text;                // the set's label, or its name as the dictionary spells it when there is none
  std::string label;               // the set's label
  bool useCategoryLabels = false;  // a dichotomy set whose categories are labelled by the members' value labels
  std::int32_t kind = kNoItem;
  /// Of a variable and of a category set (by its first member) the number of value labels, of a dichotomy set the
  /// number of members.
  std::int32_t categoryCount = 0;
};

/// One prepared item of the run.
class ItemEntry {
 public:
  enum PositionCode : std::int32_t { kValueLabelEntry = 1, kMainEntry = 2 };

  ItemEntry(std::unique_ptr<CategoryDescriptor> descriptor, std::int32_t positionCode);

  void setTreatment(std::int32_t treatment) { fTreatment = treatment; }
  void setValueLabelsAsCategories(bool flag) { fValueLabelsAsCategories = flag; }

  /// Owned by the entry; null for an item that did not resolve.
  CategoryDescriptor* descriptor() const { return fDescriptor.get(); }
  std::int32_t positionCode() const { return fPositionCode; }
  std::int32_t treatment() const { return fTreatment; }  // an ItemKind; 0 until set
  bool valueLabelsAsCategories() const { return fValueLabelsAsCategories; }

 private:
  std::unique_ptr<CategoryDescriptor> fDescriptor;
  std::int32_t fPositionCode;
  std::int32_t fTreatment = 0;
  bool fValueLabelsAsCategories = false;
};

/// Describes the variable at a dictionary index; false without a data source or for a negative index.
bool DescribeVariable(CategoryDescriptor& descriptor, MAVO_DataSource* dataSource, std::int32_t index);
/// Describes the variable or set of that name; 0 when there is none, else 1.
int DescribeItemByName(CategoryDescriptor& descriptor, MAVO_DataSource* dataSource, const std::string& name);
/// The width in bytes of the item's values, 0 for numeric ones. A numeric member of a dichotomy set counts with the
/// length of its name.
std::int32_t ItemValueWidth(const CategoryDescriptor& descriptor);
/// The item's values are strings (of a set: those of its first member).
bool IsStringItem(const CategoryDescriptor& descriptor);
/// The label of one category, given by its value when there is one, else by its text; empty when it has none.
std::string CategoryLabel(const CategoryDescriptor& descriptor, const std::string& text, const OBS* value);
/// The name under which requests and tables show the item.
std::string displayName(const ItemEntry& entry);

}  // namespace codebook
