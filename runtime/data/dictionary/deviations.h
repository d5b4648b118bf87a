// What dictionary files do otherwise than their standard has it, tolerated and told once a kind.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/open.h"

namespace runtime::data {

enum class Deviation {
  EmptyTitle,
  LabelForTitle,
  OtherSpelling,  // of a property
  WrappedValue,   // a list of one value where the value should stand
  BareValue,      // a value where a list should stand
  NoType,
  OtherTypeWord,
  UnknownType,
  RepeatedName,
  OtherFieldsMatch
};

/// Collects the deviations of a dictionary: of each kind the first place, and how many there are.
class Deviations {
 public:
  /// `what` says what is there and what it is taken for; of a kind the first one is told.
  void Add(Deviation kind, const JsonPlace& place, std::string_view what);
  /// One note a kind, in the order in which the kinds were met.
  void Report(std::vector<Note>& notes) const;

 private:
  struct Kind {
    Deviation kind;
    std::string text;
    std::size_t count;
  };
  std::vector<Kind> fKinds;
};

/// A value, taken out of a list where it is the only entry.
JsonPlace Unwrapped(const JsonPlace& place, Deviations& deviations);
/// The text, number or truth value of a member, taken out of such a list.
std::optional<JsonPlace> FindUnwrapped(const JsonPlace& object, std::string_view key, Deviations& deviations);
std::optional<std::string> FindText(const JsonPlace& object, std::string_view key, Deviations& deviations);
std::optional<bool> FindFlag(const JsonPlace& object, std::string_view key, Deviations& deviations);

/// The entries of a list; a text, number or truth value that stands for a list of one.
std::vector<JsonPlace> EntriesOf(const JsonPlace& place, Deviations& deviations);
/// The same of texts.
std::vector<std::string> TextsOf(const JsonPlace& place, Deviations& deviations);

}  // namespace runtime::data
