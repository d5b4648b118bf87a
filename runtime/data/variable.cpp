#include "host/data/variable.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "runtime/data/records.h"

namespace {

std::string_view WithoutTrailingBlanks(std::string_view text) {
  const std::size_t last = text.find_last_not_of(' ');
  return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

const runtime::data::ValueLabelList& NoLabels() {
  static const runtime::data::ValueLabelList empty;
  return empty;
}

const char* FindNumber(const runtime::data::ValueLabelList& labels, double value) {
  const auto found = std::lower_bound(labels.entries.begin(), labels.entries.end(), value,
                                      [](const auto& entry, double number) { return entry.number.number < number; });
  return found != labels.entries.end() && found->number.number == value ? found->label.c_str() : nullptr;
}

/// REQUIRES: `text` has no trailing blanks. Entries are padded, so a shorter text is compared as if it were.
const char* FindText(const runtime::data::ValueLabelList& labels, std::string_view text) {
  const auto width = static_cast<std::size_t>(labels.width);
  if (text.size() > width) return nullptr;
  std::string padded(text);
  padded.resize(width, ' ');
  const auto found = std::lower_bound(labels.entries.begin(), labels.entries.end(), padded,
                                      [](const auto& entry, const std::string& value) { return entry.text < value; });
  return found != labels.entries.end() && found->text == padded ? found->label.c_str() : nullptr;
}

std::string_view TextOf(const OBS* value, int width) {
  return {reinterpret_cast<const char*>(value), static_cast<std::size_t>(width)};
}

}  // namespace

MAVO_VLImplPointer::MAVO_VLImplPointer() = default;
MAVO_VLImplPointer::MAVO_VLImplPointer(std::shared_ptr<const runtime::data::ValueLabelList> labels)
    : fLabels(std::move(labels)) {}
MAVO_VLImplPointer::~MAVO_VLImplPointer() = default;
MAVO_VLImplPointer::MAVO_VLImplPointer(const MAVO_VLImplPointer&) = default;
MAVO_VLImplPointer::MAVO_VLImplPointer(MAVO_VLImplPointer&&) noexcept = default;
MAVO_VLImplPointer& MAVO_VLImplPointer::operator=(const MAVO_VLImplPointer&) = default;
MAVO_VLImplPointer& MAVO_VLImplPointer::operator=(MAVO_VLImplPointer&&) noexcept = default;

MAVO_ValueLabelMap::MAVO_ValueLabelMap(const MAVO_VLImplPointer& labels) : fLabels(labels.fLabels) {}
MAVO_ValueLabelMap::~MAVO_ValueLabelMap() = default;

unsigned int MAVO_ValueLabelMap::Size() const {
  return fLabels ? static_cast<unsigned int>(fLabels->entries.size()) : 0;
}

void MAVO_ValueLabelMap::Reset() { fNext = 0; }

int MAVO_ValueLabelMap::GetNextPair(const OBS*& value, const char*& label) const {
  const runtime::data::ValueLabelList& labels = fLabels ? *fLabels : NoLabels();
  if (fNext >= labels.entries.size()) return 0;
  const runtime::data::ValueLabelList::Entry& entry = labels.entries[fNext++];
  value = labels.width == 0 ? &entry.number : reinterpret_cast<const OBS*>(entry.text.data());
  label = entry.label.c_str();
  return 1;
}

const char* MAVO_ValueLabelMap::GetLabel(const OBS* value) const {
  const runtime::data::ValueLabelList& labels = fLabels ? *fLabels : NoLabels();
  if (labels.entries.empty()) return nullptr;
  if (labels.width == 0) return FindNumber(labels, value->number);
  return FindText(labels, TextOf(value, labels.width));
}

const char* MAVO_ValueLabelMap::GetLabel(const std::string& text) const {
  const runtime::data::ValueLabelList& labels = fLabels ? *fLabels : NoLabels();
  if (labels.entries.empty()) return nullptr;
  if (labels.width > 0) return FindText(labels, WithoutTrailingBlanks(text));
  const std::size_t begin = text.find_first_not_of(' ');
  if (begin == std::string::npos) return nullptr;
  std::string_view digits = WithoutTrailingBlanks(text).substr(begin);
  if (digits.front() == '+' && digits.size() > 1 && digits[1] != '-') digits.remove_prefix(1);
  double number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size()) return nullptr;
  return FindNumber(labels, number);
}

MAVO_Variable::MAVO_Variable(std::shared_ptr<const runtime::data::VariableRecord> record)
    : fRecord(std::move(record)) {}
MAVO_Variable::~MAVO_Variable() = default;
MAVO_Variable::MAVO_Variable(const MAVO_Variable&) = default;
MAVO_Variable::MAVO_Variable(MAVO_Variable&&) noexcept = default;
MAVO_Variable& MAVO_Variable::operator=(const MAVO_Variable&) = default;
MAVO_Variable& MAVO_Variable::operator=(MAVO_Variable&&) noexcept = default;

const char* MAVO_Variable::GetName() const { return fRecord->name.c_str(); }

const char* MAVO_Variable::GetLabel() const { return fRecord->label ? fRecord->label->c_str() : nullptr; }

int MAVO_Variable::GetType() const { return fRecord->width; }

void MAVO_Variable::GetFormatEx(FormatType& type, int& width, int& decimals) const {
  type = static_cast<FormatType>(fRecord->print.type);
  width = fRecord->print.width;
  decimals = fRecord->print.decimals;
}

MAVO_Format MAVO_Variable::GetWriteFormatEx() const { return fRecord->write; }

MAVO_Variable::MeasurementLevel MAVO_Variable::GetMeasurementLevel() const { return fRecord->level; }

MAVO_Variable::Role MAVO_Variable::GetRole() const { return fRecord->role; }

const DatasourceAttributes& MAVO_Variable::GetAttributes() const { return fRecord->attributes; }

const MAVO_VLImplPointer& MAVO_Variable::GetValueLabels() const { return fRecord->valueLabels; }

int MAVO_Variable::IsMissing(const OBS* value) const {
  const MissingRule& rule = fRecord->missing;
  if (rule.empty()) return 0;
  if (fRecord->width == 0) return rule.holds(value->number) ? 1 : 0;
  const std::string_view text = WithoutTrailingBlanks(TextOf(value, fRecord->width));
  return std::find(rule.texts.begin(), rule.texts.end(), text) != rule.texts.end() ? 1 : 0;
}

const MissingRule& MAVO_Variable::GetMissingRule() const { return fRecord->missing; }
