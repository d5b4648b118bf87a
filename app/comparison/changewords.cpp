#include "app/comparison/changewords.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include <fmt/format.h>

namespace app {
namespace {

using runtime::data::Change;
using runtime::data::ChangeKind;

struct KindWords {
  const char* what;
  bool isQuoted;
};

KindWords WordsOf(ChangeKind kind) {
  switch (kind) {
    case ChangeKind::FileLabelChanged:
    case ChangeKind::LabelChanged:
      return {"label", true};
    case ChangeKind::WeightChanged:
      return {"weight", false};
    case ChangeKind::DocumentsChanged:
      return {"documents", true};
    case ChangeKind::OrderChanged:
      return {"order, first at", false};
    case ChangeKind::SetAdded:
    case ChangeKind::SetRemoved:
      return {"set", false};
    case ChangeKind::SetLabelChanged:
      return {"label of set", true};
    case ChangeKind::SetTypeChanged:
      return {"type of set", false};
    case ChangeKind::SetMembersChanged:
      return {"members of set", false};
    case ChangeKind::SetCountedValueChanged:
      return {"counted value of set", true};
    case ChangeKind::AttributeAdded:
    case ChangeKind::AttributeRemoved:
    case ChangeKind::AttributeChanged:
      return {"attribute", true};
    case ChangeKind::NameCaseChanged:
      return {"name", false};
    case ChangeKind::TypeChanged:
      return {"type", false};
    case ChangeKind::FormatChanged:
      return {"format", false};
    case ChangeKind::LevelChanged:
      return {"level", false};
    case ChangeKind::RoleChanged:
      return {"role", false};
    case ChangeKind::ValueLabelAdded:
    case ChangeKind::ValueLabelRemoved:
    case ChangeKind::ValueLabelChanged:
      return {"value", true};
    case ChangeKind::CodeMoved:
      return {"code of", false};
    case ChangeKind::MissingAdded:
    case ChangeKind::MissingRemoved:
      return {"missing value", false};
    case ChangeKind::MissingShareMoved:
      return {"missing share", false};
    case ChangeKind::ValueShareMoved:
      return {"share of", false};
    default:
      return {"mean", false};
  }
}

/// Enough digits to tell the two apart.
void SetShares(double before, double after, ChangeWords& words) {
  constexpr int kMostDigits = 6;
  for (int digits = 1; digits <= kMostDigits; ++digits) {
    words.before = fmt::format("{:.{}f}%", before, digits);
    words.after = fmt::format("{:.{}f}%", after, digits);
    words.extent = fmt::format("{:+.{}f} points", after - before, digits);
    if (*words.before != *words.after) return;
  }
}

std::string Blank(const std::string& value) { return value.empty() ? "(blank)" : value; }

void SetFigures(const Change& change, ChangeWords& words) {
  const double before = change.numberBefore.value_or(0.0);
  const double after = change.numberAfter.value_or(0.0);
  if (change.kind != ChangeKind::MeanMoved) {
    SetShares(before, after, words);
    return;
  }
  words.before = change.before;
  words.after = change.after;
  if (std::isfinite(change.size))
    words.extent = fmt::format("{}{:.2f} standard deviations", after < before ? "-" : "+", change.size);
  else
    words.extent = "no spread";
}

}  // namespace

ChangeWords WordsOf(const Change& change) {
  const KindWords kind = WordsOf(change.kind);
  ChangeWords words;
  words.what = kind.what;
  words.isQuoted = kind.isQuoted;
  if (NamesWhatItIsAbout(change.kind)) words.about = Blank(change.about);
  words.aboutLabel = change.aboutLabel;
  words.before = change.before;
  words.after = change.after;
  if (change.kind == ChangeKind::MissingAdded) words.after.swap(words.about);
  if (change.kind == ChangeKind::MissingRemoved) words.before.swap(words.about);
  if (change.numberBefore) SetFigures(change, words);
  return words;
}

std::string WordsOf(const runtime::data::RenameEvidence& evidence) {
  const char* const shared = evidence.sameLabels && evidence.sameType ? "same label, value labels and type"
                             : evidence.sameLabels                    ? "same label and value labels"
                                                                      : "same label and type";
  return fmt::format("{}; score {:.1f}", shared, evidence.score);
}

std::string Grouped(std::size_t count) {
  std::string digits = std::to_string(count);
  for (std::size_t at = digits.size(); at > 3;) digits.insert(at -= 3, ",");
  return digits;
}

std::string Number(std::size_t count, const std::string& noun) {
  return fmt::format("{} {}{}", Grouped(count), noun, count == 1 ? "" : "s");
}

std::string CountWords(const runtime::data::Comparison& comparison) {
  const runtime::data::ComparisonCounts counts = Count(comparison);
  if (!comparison.differs()) return "No differences: " + Number(counts.same, "variable") + " the same";
  const std::array<std::pair<std::size_t, const char*>, 4> parts = {{{counts.added, "added"},
                                                                     {counts.removed, "removed"},
                                                                     {counts.renamed, "perhaps renamed"},
                                                                     {counts.changed, "changed"}}};
  std::string words;
  for (const auto& [count, what] : parts) {
    if (count == 0) continue;
    words += words.empty() ? Number(count, "variable") : ", " + Grouped(count);
    words += std::string(" ") + what;
  }
  if (!comparison.file.empty()) words += words.empty() ? "The file differs" : ", the file differs";
  return words + ", " + (counts.same > 0 ? Grouped(counts.same) + " the same" : "none the same");
}

}  // namespace app
