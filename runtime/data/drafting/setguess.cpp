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

bool GoTogether(const ColumnEvidence& a, const ColumnEvidence& b) {
  if (a.setCells == SetCells::None || b.setCells == SetCells::None) return false;
  if ((a.type == FieldType::String) != (b.type == FieldType::String)) return false;
  if (a.setCells == b.setCells) return true;
  const auto isNumeric = [](SetCells cells) { return cells >= SetCells::OneOrBlank; };
  // An option that everybody chose.
  return isNumeric(a.setCells) && isNumeric(b.setCells) &&
         (a.setCells == SetCells::OneOrBlank || b.setCells == SetCells::OneOrBlank);
}

/// The kind of several that go together two by two; None when they do not.
SetCells KindOf(const std::vector<ColumnEvidence>& evidence, std::size_t begin, std::size_t end) {
  SetCells kind = SetCells::OneOrBlank;
  for (std::size_t i = begin; i < end; ++i) {
    if (evidence[i].setCells == SetCells::OneOrBlank) continue;
    if (kind != SetCells::OneOrBlank && kind != evidence[i].setCells) return SetCells::None;
    kind = evidence[i].setCells;
  }
  return kind;
}

bool ShowsBothAnswers(const ColumnEvidence& evidence) {
  if (evidence.setCells == SetCells::OptionOrBlank) return true;
  if (evidence.setCells == SetCells::OneOrBlank) return evidence.blanks > 0;
  return evidence.numbers.size() == 2 || evidence.setCells == SetCells::OptionOrNot;
}

/// One past the last column that goes on with the stem and the kind of cells of the first.
std::size_t EndOfRun(const std::vector<std::string>& headers, const std::vector<ColumnEvidence>& evidence,
                     std::size_t begin, const Cut& cut) {
  std::size_t end = begin + 1;
  while (end < headers.size() && GoTogether(evidence[end - 1], evidence[end]) &&
         KindOf(evidence, begin, end + 1) != SetCells::None && headers[end].size() > cut.stem.size() &&
         std::string_view(headers[end]).substr(0, cut.stem.size()) == cut.stem)
    ++end;
  return end;
}

std::size_t EndOfBlankHeaders(const std::vector<std::string>& headers, const std::vector<ColumnEvidence>& evidence,
                              std::size_t begin) {
  std::size_t end = begin + 1;
  while (end < headers.size() && headers[end].empty() && GoTogether(evidence[end - 1], evidence[end]) &&
         KindOf(evidence, begin, end + 1) != SetCells::None)
    ++end;
  return end;
}

std::string_view WithoutSeparators(std::string_view stem) {
  const std::size_t last = stem.find_last_not_of(" _-.:/[");
  return stem.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

struct Run {
  std::size_t end = 0;
  std::string_view stem;  // with its separator
};

/// The best run that begins here; its end is `begin` when there is none.
Run BestRun(const std::vector<std::string>& headers, const std::vector<ColumnEvidence>& evidence, std::size_t begin) {
  if (evidence[begin].setCells == SetCells::None || headers[begin].empty()) return {begin, {}};
  const std::vector<Cut> cuts = CutsOf(headers[begin]);
  struct Try {
    bool strong;
    std::size_t least;
  };
  // Two headers may share the first word of their options by chance; hardly three.
  for (const Try& each : {Try{true, 2}, Try{false, 3}, Try{false, 2}})
    for (const Cut& cut : cuts) {
      if (cut.isStrong != each.strong || WithoutSeparators(cut.stem).empty()) continue;
      const std::size_t end = EndOfRun(headers, evidence, begin, cut);
      if (end - begin >= each.least) return {end, cut.stem};
    }
  if (const std::size_t end = EndOfBlankHeaders(headers, evidence, begin); end - begin >= 2)
    return {end, headers[begin]};
  return {begin, {}};
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
      ++begin;
      continue;
    }
    SetGuess guess;
    guess.stem = WithoutSeparators(run.stem);
    guess.question = run.stem.substr(0, run.stem.find_last_not_of(" -:[") + 1);
    guess.cells = KindOf(evidence, begin, run.end);
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
