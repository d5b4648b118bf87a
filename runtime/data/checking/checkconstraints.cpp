// The constraints of a field: required, unique, range, length, enum and pattern.
#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>

#include <fmt/format.h>
#include <unicode/regex.h>
#include <unicode/unistr.h>

#include "runtime/data/checking/namedvalues.h"
#include "runtime/data/checking/variablecheck.h"
#include "runtime/data/dictionary/constraints.h"
#include "runtime/data/dictionary/fieldvalue.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

using Values = std::vector<const DistinctValue*>;

/// The valid values for which `test` holds.
template <typename Test>
Values ValidOnes(const VariableCheck& check, Test test) {
  Values found;
  for (const DistinctValue& value : check.values.values)
    if (!check.IsMissing(value) && test(value)) found.push_back(&value);
  return found;
}

void CheckRequired(VariableCheck& check, const char* why) {
  std::int64_t first = -1;
  const std::int64_t missing = check.MissingCells(first);
  if (missing > 0)
    check.Add(CheckCode::RequiredMissing,
              fmt::format("{} missing, and {}", Cells(missing) + (missing == 1 ? " is" : " are"), why), first, missing);
}

void CheckUnique(VariableCheck& check, const char* why) {
  check.AddValues(CheckCode::NotUnique, ValidOnes(check, [](const DistinctValue& value) { return value.count > 1; }),
                  [&](const DistinctValue& value) {
                    return fmt::format("{} stands in {}, and {}", check.Quoted(value), Cells(value.count), why);
                  });
}

/// A bound and the words for what is beyond it.
struct Bound {
  const std::optional<LabelledValue>& given;
  bool isLower;
  bool isExclusive;
  const char* name;
};

void CheckRange(VariableCheck& check, const FieldConstraints& constraints) {
  if (check.values.isString) return;
  const FieldValues reader(check.field, check.facts.type);
  const Bound bounds[] = {{constraints.minimum, true, false, "minimum"},
                          {constraints.maximum, false, false, "maximum"},
                          {constraints.exclusiveMinimum, true, true, "exclusiveMinimum"},
                          {constraints.exclusiveMaximum, false, true, "exclusiveMaximum"}};
  for (const Bound& bound : bounds) {
    const std::optional<double> limit = bound.given ? reader.Of(*bound.given) : std::nullopt;
    if (!limit) continue;
    const Values beyond = ValidOnes(check, [&](const DistinctValue& value) {
      if (value.number == *limit) return bound.isExclusive;
      return bound.isLower ? value.number < *limit : value.number > *limit;
    });
    check.AddValues(CheckCode::OutOfRange, beyond, [&](const DistinctValue& value) {
      return fmt::format("{} is {} the {}, {}", check.ValueWords(value),
                         value.number == *limit ? "at" : (bound.isLower ? "below" : "above"), bound.name,
                         NumberOfType(*limit, check.facts.type));
    });
  }
}

std::int64_t CharactersOf(std::string_view text) {
  return std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; });
}

void CheckLength(VariableCheck& check, const FieldConstraints& constraints) {
  if (!check.values.isString || (!constraints.maxLength && !constraints.minLength)) return;
  const std::int64_t least = constraints.minLength.value_or(0);
  const std::int64_t most = constraints.maxLength.value_or(std::numeric_limits<std::int64_t>::max());
  const Values wrong = ValidOnes(check, [&](const DistinctValue& value) {
    const std::int64_t length = CharactersOf(value.text);
    return length < least || length > most;
  });
  check.AddValues(CheckCode::WrongLength, wrong, [&](const DistinctValue& value) {
    const std::int64_t length = CharactersOf(value.text);
    return fmt::format("{} has {} characters; {} are allowed", check.Quoted(value), length,
                       length > most ? fmt::format("at most {}", most) : fmt::format("not less than {}", least));
  });
}

/// What is none of the categories is not told again as none of the enum, from which they may have been made.
void CheckLists(VariableCheck& check, const std::vector<LabelledValue>& enumerated) {
  const NamedValues categories(check.field->categories, check);
  const NamedValues named(enumerated, check);
  const bool hasCategories = check.field->hasCategories;
  if (hasCategories)
    check.AddValues(CheckCode::OutsideCategories,
                    ValidOnes(check, [&](const DistinctValue& value) { return !categories.Hold(value); }),
                    [&](const DistinctValue& value) { return check.Quoted(value) + " is none of the categories"; });
  if (enumerated.empty()) return;
  check.AddValues(CheckCode::NotInEnum,
                  ValidOnes(check,
                            [&](const DistinctValue& value) {
                              return !named.Hold(value) && (!hasCategories || categories.Hold(value));
                            }),
                  [&](const DistinctValue& value) { return check.Quoted(value) + " is none of the constraint enum"; });
}

/// A pattern as a whole text must match it.
class Pattern {
 public:
  explicit Pattern(const std::string& pattern)
      : fMatcher(icu::UnicodeString::fromUTF8("(?:" + pattern + ")"), 0, fStatus) {
    constexpr std::int32_t kMostSteps = 10000;  // of the matcher; ends patterns that would take for ever
    if (isGood()) fMatcher.setTimeLimit(kMostSteps, fStatus);
  }
  bool isGood() const { return U_SUCCESS(fStatus) != 0; }
  /// True also when the matcher gave up.
  bool Fits(std::string_view text) {
    const icu::UnicodeString input =
        icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
    fMatcher.reset(input);
    UErrorCode status = U_ZERO_ERROR;
    return fMatcher.matches(status) || U_FAILURE(status);
  }

 private:
  UErrorCode fStatus = U_ZERO_ERROR;
  icu::RegexMatcher fMatcher;
};

void CheckPattern(VariableCheck& check, const std::string& text) {
  if (!check.values.isString) return;
  Pattern pattern(text);
  if (!pattern.isGood()) {
    check.Add(CheckCode::Reading, fmt::format("the pattern {} cannot be read, and is not used", QuotedCell(text)))
        .file = check.dictionaryFile;
    return;
  }
  check.AddValues(CheckCode::PatternMismatch,
                  ValidOnes(check, [&](const DistinctValue& value) { return !pattern.Fits(value.text); }),
                  [&](const DistinctValue& value) {
                    return fmt::format("{} does not match the pattern {}", check.Quoted(value), QuotedCell(text));
                  });
}

}  // namespace

void CheckConstraints(VariableCheck& check, bool isKey) {
  if (check.field == nullptr) return;
  const FieldConstraints constraints = ConstraintsOf(*check.field);
  CheckLength(check, constraints);
  if (constraints.required || isKey)
    CheckRequired(check, constraints.required ? "the field is required" : "the field is the primary key");
  if (constraints.unique || isKey)
    CheckUnique(check, constraints.unique ? "the field is unique" : "the field is the primary key");
  CheckRange(check, constraints);
  CheckLists(check, constraints.values);
  if (constraints.pattern) CheckPattern(check, *constraints.pattern);
}

}  // namespace runtime::data
