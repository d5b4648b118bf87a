#include "codebook/cbkcategory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "host/data/names.h"

namespace codebook {

namespace {

/// The print format as far as it matters here.
struct PrintFormat {
  FormatType type = kFormatNone;
  int width = 0;
  int decimals = 0;
};

PrintFormat printFormat(const MAVO_Variable& variable) {
  PrintFormat format;
  variable.GetFormatEx(format.type, format.width, format.decimals);
  return format;
}

bool isPlainString(const MAVO_Variable& variable) { return printFormat(variable).type == kFormatA; }

/// The width of a variable printed as a plain string, 0 for any other print format.
std::int32_t plainStringWidth(const MAVO_Variable& variable) {
  const PrintFormat format = printFormat(variable);
  return format.type == kFormatA ? format.width : 0;
}

std::int32_t labelCount(const MAVO_Variable& variable) {
  return static_cast<std::int32_t>(MAVO_ValueLabelMap(variable.GetValueLabels()).Size());
}

const MAVO_Variable* firstMember(const CategoryDescriptor& descriptor) {
  return descriptor.memberIndices.empty() ? nullptr
                                          : &descriptor.dataSource->GetVariable(descriptor.memberIndices.front());
}

void describeCountedValue(CategoryDescriptor& descriptor, const std::string& valueText) {
  constexpr std::size_t kUnit = sizeof(OBS);
  const MAVO_Variable* first = firstMember(descriptor);
  if (first != nullptr && isPlainString(*first)) {
    const auto width = static_cast<std::size_t>(std::max(ItemValueWidth(descriptor), 1));
    const std::size_t units = (width + kUnit - 1) / kUnit;
    descriptor.countedValue.resize(units);
    char* bytes = descriptor.countedValue.front().bytes;
    std::memset(bytes, 0x20, units * kUnit);
    MAVOMBCopyToFixed_A(bytes, units * kUnit, valueText.c_str(), valueText.size());
    descriptor.countedValueWidth = static_cast<std::int32_t>(units);
    return;
  }
  OBS value;
  value.number = std::atof(valueText.c_str());  // text that is no number counts 0
  descriptor.countedValue.assign(1, value);
  descriptor.countedValueWidth = static_cast<std::int32_t>(kUnit);
}

void describeSet(CategoryDescriptor& descriptor, const VariableSet& set) {
  descriptor.label = set.GetLabel();
  for (const std::string& member : set.GetVariableNames(kKeepCase)) {
    const int index = descriptor.dataSource->FindVarIndex(member.c_str(), 0);
    if (index >= 0) descriptor.memberIndices.push_back(index);
  }
  const std::string text = descriptor.label.empty() ? set.GetName(kKeepCase) : descriptor.label;
  if (set.GetType() == VariableSet::kCategorySet) {
    descriptor.kind = kCategorySetItem;
    descriptor.text = text;
    const MAVO_Variable* first = firstMember(descriptor);
    descriptor.categoryCount = first != nullptr ? labelCount(*first) : 0;
  } else if (set.GetType() == VariableSet::kDichotomySet) {
    descriptor.categoryCount = static_cast<std::int32_t>(descriptor.memberIndices.size());
    descriptor.kind = kDichotomySetItem;
    descriptor.text = text;
    descriptor.useCategoryLabels = set.qIsEnhancedDichotomy() && set.qUseVariableCategoryLabels();
    describeCountedValue(descriptor, set.GetValue());
  }
}

std::string labelOf(const MAVO_Variable& variable, const std::string& text, const OBS* value) {
  const MAVO_ValueLabelMap labels(variable.GetValueLabels());
  const char* label = value != nullptr ? labels.GetLabel(value) : labels.GetLabel(text);
  return label != nullptr ? label : "";
}

/// The characters of a category's value, without the blanks that pad it.
std::string trimmedText(const OBS* value, std::int32_t width) {
  std::string text(value->bytes, static_cast<std::size_t>(width));
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

std::string dichotomyLabel(const CategoryDescriptor& descriptor, const std::string& text, const OBS* value) {
  const std::string name = value != nullptr ? trimmedText(value, ItemValueWidth(descriptor)) : text;
  for (const std::int32_t member : descriptor.memberIndices) {
    const MAVO_Variable& variable = descriptor.dataSource->GetVariable(member);
    if (MAVOMBstricmp_A(variable.GetName(), name.c_str()) != 0) continue;
    if (!descriptor.useCategoryLabels) return variable.GetLabel() != nullptr ? variable.GetLabel() : "";
    if (descriptor.countedValue.empty()) return "";
    if (variable.GetType() == 0) return labelOf(variable, "", &descriptor.countedValue.front());
    // By text: the counted value's buffer may be narrower than this member.
    const auto bytes = static_cast<std::int32_t>(descriptor.countedValue.size() * sizeof(OBS));
    return labelOf(variable, trimmedText(&descriptor.countedValue.front(), bytes), nullptr);
  }
  return "";
}

}  // namespace

ItemEntry::ItemEntry(std::unique_ptr<CategoryDescriptor> descriptor, std::int32_t positionCode)
    : fDescriptor(std::move(descriptor)), fPositionCode(positionCode) {}

bool DescribeVariable(CategoryDescriptor& descriptor, MAVO_DataSource* dataSource, std::int32_t index) {
  descriptor.dataSource = dataSource;
  if (dataSource == nullptr || index < 0) return false;
  descriptor.index = index;
  descriptor.variable = &dataSource->GetVariable(index);
  descriptor.categoryCount = labelCount(*descriptor.variable);
  descriptor.kind = kVariableItem;
  return true;
}

int DescribeItemByName(CategoryDescriptor& descriptor, MAVO_DataSource* dataSource, const std::string& name) {
  descriptor.dataSource = dataSource;
  if (dataSource == nullptr) return 0;
  const int variableIndex = dataSource->FindVarIndex(name.c_str(), 0);
  if (variableIndex >= 0) return DescribeVariable(descriptor, dataSource, variableIndex) ? 1 : 0;
  if (!name.starts_with("$")) return 0;
  const std::vector<VariableSet> sets = VariableSets(*dataSource, kMultipleResponseSets);
  for (std::size_t k = 0; k < sets.size(); ++k) {
    if (MAVOMBstricmp_A(sets[k].GetName(kKeepCase).c_str(), name.c_str()) != 0) continue;
    descriptor.index = static_cast<std::int32_t>(dataSource->ColumnCount() + k);
    describeSet(descriptor, sets[k]);
    return 1;
  }
  return 0;
}

std::int32_t ItemValueWidth(const CategoryDescriptor& descriptor) {
  switch (descriptor.kind) {
    case kVariableItem:
      return plainStringWidth(*descriptor.variable);
    case kCategorySetItem: {
      const MAVO_Variable* first = firstMember(descriptor);
      return first != nullptr ? plainStringWidth(*first) : 0;
    }
    case kDichotomySetItem: {
      std::int32_t width = 0;
      for (const std::int32_t member : descriptor.memberIndices) {
        const MAVO_Variable& variable = descriptor.dataSource->GetVariable(member);
        const std::int32_t memberWidth =
            variable.GetType() != 0 ? variable.GetType() : static_cast<std::int32_t>(std::strlen(variable.GetName()));
        width = std::max(width, memberWidth);
      }
      return width;
    }
    default:
      return 0;
  }
}

bool IsStringItem(const CategoryDescriptor& descriptor) {
  switch (descriptor.kind) {
    case kVariableItem:
      return isPlainString(*descriptor.variable);
    case kCategorySetItem:
    case kDichotomySetItem: {
      const MAVO_Variable* first = firstMember(descriptor);
      return first != nullptr && isPlainString(*first);
    }
    default:
      return false;
  }
}

std::string CategoryLabel(const CategoryDescriptor& descriptor, const std::string& text, const OBS* value) {
  switch (descriptor.kind) {
    case kVariableItem:
      return labelOf(*descriptor.variable, text, value);
    case kCategorySetItem:
      for (const std::int32_t member : descriptor.memberIndices) {
        std::string label = labelOf(descriptor.dataSource->GetVariable(member), text, value);
        if (!label.empty()) return label;
      }
      return "";
    case kDichotomySetItem:
      return dichotomyLabel(descriptor, text, value);
    default:
      return "";
  }
}

std::string displayName(const ItemEntry& entry) {
  const CategoryDescriptor* descriptor = entry.descriptor();
  if (descriptor == nullptr) return "";
  if (descriptor->kind != kVariableItem) return descriptor->text;
  return descriptor->variable != nullptr ? descriptor->variable->GetName() : "";
}

}  // namespace codebook
