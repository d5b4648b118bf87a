// What differs between two waves of a dataset.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace runtime::data {

enum class ChangeKind : std::uint8_t {
  // of the file
  FileLabelChanged,
  WeightChanged,
  DocumentsChanged,
  OrderChanged,  // variables that both have stand in another order
  SetAdded,
  SetRemoved,
  SetLabelChanged,
  SetTypeChanged,
  SetMembersChanged,
  SetCountedValueChanged,
  // of the file or of a variable
  AttributeAdded,
  AttributeRemoved,
  AttributeChanged,
  // of a variable
  NameCaseChanged,
  LabelChanged,
  TypeChanged,
  FormatChanged,
  LevelChanged,
  RoleChanged,
  ValueLabelAdded,
  ValueLabelRemoved,
  ValueLabelChanged,
  CodeMoved,  // the same label has another value
  MissingAdded,
  MissingRemoved,
  MissingShareMoved,
  ValueShareMoved,
  MeanMoved
};
inline constexpr std::size_t kChangeKinds = static_cast<std::size_t>(ChangeKind::MeanMoved) + 1;

/// The code of a kind: stable, for programs ("value-label-changed").
std::string_view ChangeCode(ChangeKind kind);

/// Whether changes of that kind are about one value, attribute or set.
bool NamesWhatItIsAbout(ChangeKind kind);

/// One difference. Texts come from the data.
struct Change {
  ChangeKind kind = ChangeKind::LabelChanged;
  /// What it is about: the value, the missing value, the attribute or the set; of a moved code the label. Empty: the
  /// variable or the file itself.
  std::string about;
  std::string aboutLabel;             // of a value whose share moved: its label or how it is shown; else empty
  std::optional<std::string> before;  // absent: there is none, or the dictionary does not say
  std::optional<std::string> after;
  /// Of what moved, instead of texts: shares in percent, or means; `size` is how far it moved, without a sign:
  /// percentage points, of a mean standard deviations (infinity where neither wave has any spread).
  std::optional<double> numberBefore;
  std::optional<double> numberAfter;
  double size = 0.0;
};

/// A change of texts.
Change TextChange(ChangeKind kind, std::string about, std::optional<std::string> before,
                  std::optional<std::string> after);

/// Why two variables of different names are taken for one. A guess, never more.
struct RenameEvidence {
  bool sameLabels = false;  // value labels, and there are some
  bool sameType = false;
  /// 1: label, value labels and type are the same; 0.9: label and value labels; 0.8: label and type, and neither has
  /// value labels; 0.6: label and type.
  double score = 0.0;
};

struct VariableComparison {
  std::string before;  // its name in the old wave; empty: added
  std::string after;   // in the new one; empty: removed
  std::string label;   // of the new wave, else of the old one; empty: none
  std::optional<RenameEvidence> renamed;
  std::vector<Change> changes;

  bool isAdded() const { return before.empty(); }
  bool isRemoved() const { return after.empty(); }
  /// Whether any of the changes is one of the distribution.
  bool hasMoved() const;
  bool differs() const { return isAdded() || isRemoved() || renamed || !changes.empty(); }
};

struct Comparison {
  std::vector<Change> file;
  /// Every variable of the new wave in its order, then the removed ones in the order of the old wave.
  std::vector<VariableComparison> variables;

  bool differs() const;
};

/// How many variables stand how.
struct ComparisonCounts {
  std::size_t added = 0;
  std::size_t removed = 0;
  std::size_t renamed = 0;  // perhaps
  std::size_t changed = 0;  // others with changes
  std::size_t same = 0;
  std::array<std::size_t, kChangeKinds> changes{};  // of file and variables, by kind
};

ComparisonCounts Count(const Comparison& comparison);

}  // namespace runtime::data
