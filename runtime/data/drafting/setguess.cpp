#include "runtime/data/drafting/setguess.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

#include "runtime/data/typing/numbertext.h"

namespace runtime::data {
namespace {

/// A header cut in two. `stem` keeps the separator, so that stems of different kinds differ.
struct Cut {
  std::string_view stem;
  std::string_view option;
  bool isStrong = false;  // the separator is no part of ordinary names
};

constexpr std::array<std::string_view, 7> kStrongSeparators = {" - ", " \u2013 ", " \u2014 ", ": ", "___", "/", "."};

std::size_t BytesOf(std::string_view separator) { return separator.size(); }

/// Ways to cut a header, the surest first: at strong separators from the last to the first, then at _ - and before the
/// digits or the letter at its end, the longest stem first.
std::vector<Cut> CutsOf(std::string_view header) {
  std::vector<Cut> cuts;
  const auto add = [&](std::size_t stem, std::size_t option, std::size_t end, bool isStrong) {
    if (stem > 0 && option < end)
      cuts.push_back({header.substr(0, option), header.substr(option, end - option), isStrong});
  };
  if (!header.empty() && header.back() == ']')
    if (const std::size_t bracket = header.rfind('['); bracket != std::string_view::npos)
      add(bracket, bracket + 1, header.size() - 1, true);
  for (const std::string_view separator : kStrongSeparators)
    for (std::size_t at = header.rfind(separator); at != std::string_view::npos && at > 0;
         at = header.rfind(separator, at - 1))
      add(at, at + BytesOf(separator), header.size(), true);

  std::size_t digits = header.size();
  while (digits > 0 && IsDigit(header[digits - 1])) --digits;
  const bool endsInLetter =
      header.size() > 2 && header.back() >= 'a' && header.back() <= 'z' && IsDigit(header[header.size() - 2]);
  if (digits < header.size() && digits > 0 && header[digits - 1] != '_' && header[digits - 1] != '-')
    add(digits, digits, header.size(), false);
  if (endsInLetter) add(header.size() - 1, header.size() - 1, header.size(), false);
  for (std::size_t at = header.find_last_of("_-"); at != std::string_view::npos && at > 0;
       at = header.find_last_of("_-", at - 1))
    add(at, at + 1, header.size(), false);
  return cuts;
}

/// The kind of cells of neighbours taken in one by one. Those of an option that everybody chose (1 or nothing) go with
/// any other numeric kind.
class CommonKind {
 public:
  explicit CommonKind(const ColumnEvidence& first) : fKind(first.setCells), fIsText(first.type == FieldType::String) {}

  SetCells kind() const { return fKind; }
  /// False, and nothing is taken in, when the column does not go with the others.
  bool Take(const ColumnEvidence& next) {
    const SetCells cells = next.setCells;
    if (cells == SetCells::None || (next.type == FieldType::String) != fIsText) return false;
    if (cells == fKind || (!fIsText && cells == SetCells::OneOrBlank)) return true;
    if (fIsText || fKind != SetCells::OneOrBlank) return false;
    fKind = cells;
    return true;
  }

 private:
  SetCells fKind;
  bool fIsText;
};

bool ShowsBothAnswers(const ColumnEvidence& evidence) {
  if (evidence.setCells == SetCells::OptionOrBlank) return true;
  if (evidence.setCells == SetCells::OneOrBlank) return evidence.blanks > 0;
  return evidence.numbers.size() == 2 || evidence.setCells == SetCells::OptionOrNot;
}

struct Run {
  std::size_t end = 0;    // one past the last column
  std::string_view stem;  // with its separator
  SetCells kind = SetCells::None;
};

/// From a column on as far as the kind of cells is the same and `goesOn` holds for the header.
template <typename GoesOn>
Run RunFrom(std::size_t begin, const std::vector<std::string>& headers, const std::vector<ColumnEvidence>& evidence,
            std::string_view stem, GoesOn goesOn) {
  CommonKind kind(evidence[begin]);
  std::size_t end = begin + 1;
  while (end < headers.size() && goesOn(headers[end]) && kind.Take(evidence[end])) ++end;
  return {end, stem, kind.kind()};
}

std::string_view WithoutSeparators(std::string_view stem) {
  const std::size_t last = stem.find_last_not_of(" _-.:/[");
  return stem.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

/// The best run that begins here; its end is `begin` when there is none.
Run BestRun(const std::vector<std::string>& headers, const std::vector<ColumnEvidence>& evidence, std::size_t begin) {
  if (evidence[begin].setCells == SetCells::None || headers[begin].empty()) return {begin, {}, SetCells::None};
  const std::vector<Cut> cuts = CutsOf(headers[begin]);
  struct Try {
    bool strong;
    std::size_t least;
  };
  // Two headers may share the first word of their options by chance; hardly three.
  for (const Try& each : {Try{true, 2}, Try{false, 3}, Try{false, 2}})
    for (const Cut& cut : cuts) {
      if (cut.isStrong != each.strong || WithoutSeparators(cut.stem).empty()) continue;
      const Run run = RunFrom(begin, headers, evidence, cut.stem, [&cut](std::string_view header) {
        return header.size() > cut.stem.size() && header.substr(0, cut.stem.size()) == cut.stem;
      });
      if (run.end - begin >= each.least) return run;
    }
  const Run run =
      RunFrom(begin, headers, evidence, headers[begin], [](std::string_view header) { return header.empty(); });
  return run.end - begin >= 2 ? run : Run{begin, {}, SetCells::None};
}

std::string OptionOf(const std::string& header, std::string_view stem, const ColumnEvidence& evidence) {
  if (!evidence.option.empty()) return evidence.option;
  std::string_view option = std::string_view(header).substr(std::min(stem.size(), header.size()));
  if (!option.empty() && option.back() == ']') option.remove_suffix(1);
  // A number or a short code says nothing; words do.
  return option.find(' ') != std::string_view::npos ? std::string(option) : std::string();
}

}  // namespace

std::vector<SetGuess> GuessSets(const std::vector<std::string>& headers, const std::vector<ColumnEvidence>& evidence) {
  std::vector<SetGuess> guesses;
  for (std::size_t begin = 0; begin < headers.size();) {
    const Run run = BestRun(headers, evidence, begin);
    const bool shown =
        run.end > begin && std::any_of(evidence.begin() + static_cast<std::ptrdiff_t>(begin),
                                       evidence.begin() + static_cast<std::ptrdiff_t>(run.end), ShowsBothAnswers);
    if (!shown) {
      begin = std::max(begin + 1, run.end);
      continue;
    }
    SetGuess guess;
    guess.stem = WithoutSeparators(run.stem);
    guess.question = run.stem.substr(0, run.stem.find_last_not_of(" -:[") + 1);
    guess.cells = run.kind;
    std::set<std::string> options;
    for (; begin < run.end; ++begin) {
      guess.columns.push_back(begin);
      guess.options.push_back(OptionOf(headers[begin], run.stem, evidence[begin]));
      options.insert(evidence[begin].option);
    }
    guess.sameOption = options.size() == 1;
    if (guess.sameOption) guess.option = *options.begin();
    guesses.push_back(std::move(guess));
  }
  return guesses;
}

}  // namespace runtime::data
