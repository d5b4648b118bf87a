#include "runtime/data/dictionary/deviations.h"

#include <algorithm>

#include <fmt/format.h>

namespace runtime::data {
namespace {

bool IsScalar(const JsonPlace& place) { return place.isText() || place.isNumber() || place.isFlag(); }

}  // namespace

void Deviations::Add(Deviation kind, const JsonPlace& place, std::string_view what) {
  const auto met = std::find_if(fKinds.begin(), fKinds.end(), [kind](const Kind& other) { return other.kind == kind; });
  if (met != fKinds.end()) {
    ++met->count;
    return;
  }
  fKinds.push_back({kind, fmt::format("{}: {}", place.Where(), what), 1});
}

void Deviations::Report(std::vector<Note>& notes) const {
  for (const Kind& kind : fKinds)
    notes.push_back(
        {false, kind.count == 1 ? kind.text : fmt::format("{} (the first of {} such places)", kind.text, kind.count)});
}

JsonPlace Unwrapped(const JsonPlace& place, Deviations& deviations) {
  if (!place.isList()) return place;
  const std::vector<JsonPlace> entries = place.Entries();
  if (entries.size() != 1 || !IsScalar(entries.front())) return place;
  deviations.Add(Deviation::WrappedValue, place, "a list of one value stands here for the value, and is taken as such");
  return entries.front();
}

std::optional<JsonPlace> FindUnwrapped(const JsonPlace& object, std::string_view key, Deviations& deviations) {
  const std::optional<JsonPlace> member = object.Find(key);
  if (!member) return std::nullopt;
  return Unwrapped(*member, deviations);
}

std::optional<std::string> FindText(const JsonPlace& object, std::string_view key, Deviations& deviations) {
  const std::optional<JsonPlace> member = FindUnwrapped(object, key, deviations);
  if (!member) return std::nullopt;
  return member->Text();
}

std::optional<bool> FindFlag(const JsonPlace& object, std::string_view key, Deviations& deviations) {
  const std::optional<JsonPlace> member = FindUnwrapped(object, key, deviations);
  if (!member) return std::nullopt;
  return member->Flag();
}

std::vector<JsonPlace> EntriesOf(const JsonPlace& place, Deviations& deviations) {
  if (!IsScalar(place)) return place.Entries();
  deviations.Add(Deviation::BareValue, place, "a value stands here for a list of one, and is taken as such");
  return {place};
}

std::vector<std::string> TextsOf(const JsonPlace& place, Deviations& deviations) {
  std::vector<std::string> texts;
  for (const JsonPlace& entry : EntriesOf(place, deviations)) texts.push_back(entry.Text());
  return texts;
}

}  // namespace runtime::data
