#include "runtime/output/model/methodnotes.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "runtime/output/format/valueformat.h"
#include "runtime/output/language/catalog.h"

namespace runtime::output {

namespace {

/// What the tables of a report show.
struct Shown {
  bool counts = false;
  bool percents = false;
  bool setPercents = false;
  bool missingCodes = false;
  bool systemMissing = false;
  bool validAndMissing = false;
  bool mean = false;
  bool deviation = false;
  bool percentiles = false;
};

/// Looks for the fixed words by which the tables name what they show.
class Reader {
 public:
  explicit Reader(const Catalog* catalog)
      : fCount(Translate(catalog, "Count")),
        fPercent(Translate(catalog, "Percent")),
        fSet(Translate(catalog, "Multiple Response Categories")),
        fMissingValues(Translate(catalog, "Missing Values")),
        fSystem(Translate(catalog, "System")),
        fNumbers(Translate(catalog, "N")),
        fMean(Translate(catalog, "Mean")),
        fDeviation(Translate(catalog, "Standard Deviation")),
        fPercentiles{Translate(catalog, "Percentile 25"), Translate(catalog, "Percentile 50"),
                     Translate(catalog, "Percentile 75")} {}

  Shown Read(const Report& report) {
    for (const auto& procedure : report.procedures)
      for (const auto& table : procedure->tables)
        for (const auto& dimension : table->dimensions)
          if (!dimension->inColumns) ReadRows(dimension->root, false);
    return fShown;
  }

 private:
  void ReadRows(const Item& group, bool isSet) {
    for (const auto& item : group.items) {
      if (!item->isGroup)
        ReadCells(*item, isSet);
      else if (!item->items.empty())
        ReadGroup(*item);
    }
  }

  void ReadGroup(const Item& group) {
    if (Is(group.label, fMissingValues)) ReadMissing(group);
    if (Is(group.label, fNumbers)) fShown.validAndMissing = true;
    for (const auto& item : group.items) {
      if (item->isGroup) continue;
      if (Is(item->label, fMean)) fShown.mean = true;
      if (Is(item->label, fDeviation)) fShown.deviation = true;
      for (const std::string_view percentile : fPercentiles)
        if (Is(item->label, percentile)) fShown.percentiles = true;
    }
    ReadRows(group, Is(group.label, fSet));
  }

  void ReadMissing(const Item& group) {
    for (const auto& item : group.items) (Is(item->label, fSystem) ? fShown.systemMissing : fShown.missingCodes) = true;
  }

  void ReadCells(const Item& row, bool isSet) {
    for (const Cell& cell : row.cells) {
      if (cell.column == nullptr) continue;
      if (Is(cell.column->label, fCount)) fShown.counts = true;
      if (Is(cell.column->label, fPercent)) (isSet ? fShown.setPercents : fShown.percents) = true;
    }
  }

  static bool Is(const SharedContent& label, std::string_view word) { return label->fixed && label->text == word; }

  std::string_view fCount;
  std::string_view fPercent;
  std::string_view fSet;
  std::string_view fMissingValues;
  std::string_view fSystem;
  std::string_view fNumbers;
  std::string_view fMean;
  std::string_view fDeviation;
  std::string_view fPercentiles[3];
  Shown fShown;
};

/// As the tables show a count.
std::string WholeNumber(double number) { return FormatNumber(number, {kFormatF, 0, 0}); }

bool HasTables(const Report& report) {
  return std::any_of(report.procedures.begin(), report.procedures.end(),
                     [](const auto& procedure) { return !procedure->tables.empty(); });
}

bool HasHistograms(const Report& report) {
  for (const auto& procedure : report.procedures)
    for (const Sketch& sketch : procedure->sketches)
      if (!sketch.bins.empty()) return true;
  return false;
}

void AddCases(const ReportFacts& facts, std::vector<MethodNote>& notes) {
  const char* const name = N_("Cases");
  if (facts.cases < 0) return;
  const std::string cases = WholeNumber(static_cast<double>(facts.cases));
  if (facts.weight.empty() || !facts.weightedCases)
    notes.push_back({name, N_("Number of cases in the file: ^1."), {cases}});
  else
    notes.push_back({name,
                     N_("Number of cases in the file: ^1. The sum of their weights, the weighted number of cases: ^2."),
                     {cases, WholeNumber(*facts.weightedCases)}});
}

void AddWeight(const ReportFacts& facts, std::vector<MethodNote>& notes) {
  const char* const name = N_("Weight");
  if (facts.weight.empty()) {
    notes.push_back({name, N_("The cases are not weighted: each counts as 1."), {}});
    return;
  }
  if (facts.weightLabel.empty())
    notes.push_back({name, N_("The cases are weighted by the variable ^1."), {facts.weight}});
  else
    notes.push_back({name, N_("The cases are weighted by the variable ^1 (^2)."), {facts.weight, facts.weightLabel}});
  notes.push_back({name, N_("A case whose weight is missing, zero or negative does not count."), {}});
}

void AddMissing(const Shown& shown, std::vector<MethodNote>& notes) {
  const char* const name = N_("Missing values");
  if (shown.missingCodes)
    notes.push_back({name, N_("Codes that are declared as missing stand under Missing Values."), {}});
  if (shown.systemMissing)
    notes.push_back(
        {name,
         N_("The row System counts the cases without a value: empty cells, and cells that cannot be read as a value."),
         {}});
  if (shown.validAndMissing)
    notes.push_back(
        {name,
         N_("Valid counts the cases with a value that is not declared as missing, Missing counts all others."),
         {}});
  if (shown.mean || shown.deviation || shown.percentiles)
    notes.push_back({name, N_("Only valid values enter means, standard deviations and percentiles."), {}});
}

void AddStatistics(const Shown& shown, bool weighted, std::vector<MethodNote>& notes) {
  if (shown.mean)
    notes.push_back({N_("Mean"),
                     weighted ? N_("Each value counts as often as its weight says: the sum of weight times value, "
                                   "divided by the sum of the weights.")
                              : N_("The sum of the values, divided by their number."),
                     {}});
  if (shown.deviation)
    notes.push_back({N_("Standard Deviation"),
                     weighted ? N_("The divisor is W - 1, where W is the sum of the weights of the valid cases.")
                              : N_("The divisor is N - 1, where N is the number of valid cases."),
                     {}});
  if (shown.percentiles)
    notes.push_back(
        {N_("Percentiles"),
         weighted ? N_("Weighted average at (W + 1) p: with the valid values in rising order and W the sum of their "
                       "weights, the value at that place, or between its neighbours.")
                  : N_("Weighted average at (N + 1) p: with the N valid values in rising order, the value at that "
                       "place, or between its neighbours."),
         {}});
}

}  // namespace

std::vector<MethodNote> MethodNotes(const Report& report, const Catalog* catalog) {
  std::vector<MethodNote> notes;
  if (!report.facts || !HasTables(report)) return notes;
  const ReportFacts& facts = *report.facts;
  const Shown shown = Reader(catalog).Read(report);
  const bool weighted = !facts.weight.empty();

  AddCases(facts, notes);
  AddWeight(facts, notes);
  if (shown.counts && weighted)
    notes.push_back({N_("Counts"), N_("Counts are sums of weights, shown rounded to whole numbers."), {}});
  if (shown.percents)
    notes.push_back({N_("Percents"), N_("Percents are of all cases, those with missing values included."), {}});
  if (shown.setPercents)
    notes.push_back({N_("Percents"),
                     N_("Percents of a multiple response set are of all cases. A case may count in several rows, so "
                        "they may add up to more than 100."),
                     {}});
  AddMissing(shown, notes);
  AddStatistics(shown, weighted, notes);
  if (HasHistograms(report))
    notes.push_back({N_("Histograms"),
                     N_("Classes of equal width after Freedman and Diaconis, rounded to 1, 2 or 5 times a power of "
                        "ten; where there are few whole numbers, one class for each. Only valid values enter."),
                     {}});
  return notes;
}

std::string NoteName(const MethodNote& note, const Catalog* catalog) {
  return std::string(Translate(catalog, note.name));
}

std::string NoteText(const MethodNote& note, const Catalog* catalog) {
  const std::string_view text = Translate(catalog, note.text);
  std::string filled;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::size_t argument = at + 1 < text.size() ? static_cast<std::size_t>(text[at + 1] - '1') : text.size();
    if (text[at] != '^' || argument >= note.arguments.size()) {
      filled += text[at];
      continue;
    }
    filled += note.arguments[argument];
    ++at;
  }
  return filled;
}

}  // namespace runtime::output
