#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "app/comparison/changewords.h"
#include "app/comparison/comparisonreport.h"
#include "runtime/output/render/terminaltext.h"
#include "runtime/output/render/textwidth.h"
#include "runtime/output/render/textwrap.h"

namespace app {
namespace {

using runtime::data::Change;
using runtime::data::VariableComparison;
using runtime::output::DisplayWidth;

constexpr int kNarrowestPage = 20;
constexpr int kIndent = 4;
constexpr int kWidestWhat = 24;
constexpr std::size_t kMostTextBytes = 400;  // of one text of the data; the other formats have all of it
constexpr std::size_t kBytesBeforeDifference = 40;

bool BeginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }

/// Where to begin to show two long texts: a word or so before they differ; 0 where nothing is worth leaving out.
std::size_t CommonBeginning(std::string_view a, std::string_view b) {
  if (a.size() <= kMostTextBytes && b.size() <= kMostTextBytes) return 0;
  const auto differing =
      std::mismatch(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(std::min(a.size(), b.size())), b.begin());
  auto begin = static_cast<std::size_t>(differing.first - a.begin());
  if (begin <= 2 * kBytesBeforeDifference) return 0;
  begin -= kBytesBeforeDifference;
  while (begin > 0 && a[begin - 1] != ' ' && a[begin - 1] != '\n') --begin;
  return begin;
}

class ComparisonWriter {
 public:
  ComparisonWriter(const runtime::output::RenderOptions& options, std::ostream& out)
      : fOptions(options), fWidth(std::max(options.width, kNarrowestPage)), fOut(out) {}

  void Write(const ComparisonReport& report) {
    WriteBold(CountWords(report.comparison));
    WriteWave("old", report.before);
    WriteWave("new", report.after);
    if (!report.distributionsCompared) WriteLines("Only the dictionaries were compared.", 0, "");
    if (!report.comparison.file.empty()) {
      fOut << '\n';
      WriteBold("File");
      WriteChanges(report.comparison.file);
    }
    for (const VariableComparison& variable : report.comparison.variables) {
      if (!variable.differs()) continue;
      if (!fOut) return;  // whoever reads has seen enough
      WriteVariable(variable);
    }
  }

 private:
  std::string Harmless(std::string_view text) const {
    return runtime::output::EscapeForTerminal(text, fOptions.utf8, runtime::output::LineEnds::Escape);
  }

  std::string Bold(const std::string& text) const { return fOptions.color ? "\x1b[1m" + text + "\x1b[0m" : text; }
  std::string Dim(const std::string& text) const { return fOptions.color ? "\x1b[2m" + text + "\x1b[0m" : text; }
  const char* Arrow() const { return fOptions.utf8 ? "→" : "->"; }
  const char* Ellipsis() const { return fOptions.utf8 ? "…" : "..."; }
  const char* Minus() const { return fOptions.utf8 ? "−" : "-"; }

  void WriteBold(const std::string& text) {
    for (const std::string_view line : runtime::output::WrapText(text, fWidth)) fOut << Bold(std::string(line)) << '\n';
  }

  /// Lines of a harmless text; the first one behind `first`, the others as far in.
  void WriteLines(const std::string& text, int indent, const std::string& first) {
    bool isFirst = true;
    for (const std::string_view line : runtime::output::WrapText(text, std::max(fWidth - indent, 1))) {
      fOut << (isFirst ? first : std::string(static_cast<std::size_t>(indent), ' ')) << line << '\n';
      isFirst = false;
    }
  }

  void WriteWave(const char* which, const Wave& wave) {
    std::string text = Harmless(wave.file) + ": ";
    if (wave.cases) text += Number(static_cast<std::size_t>(std::max<std::int64_t>(*wave.cases, 0)), "case") + ", ";
    text += Number(wave.variables, "variable");
    if (wave.weight) text += ", weighted by " + Harmless(*wave.weight);
    WriteLines(text, kIndent + 1, Dim(which) + "  ");
  }

  /// Those that came and went follow each other in a list.
  void WriteVariable(const VariableComparison& variable) {
    const bool isOneLine = variable.isAdded() || variable.isRemoved();
    if (!isOneLine || !fInList) fOut << '\n';
    fInList = isOneLine;
    std::string head = variable.isAdded() ? "+ " : variable.isRemoved() ? std::string(Minus()) + " " : "  ";
    if (variable.renamed) {
      WriteHead(head, Harmless(variable.before) + " " + Arrow() + " " + Harmless(variable.after) + " ?",
                Shortened(variable.label));
      WriteRow("renamed?", WordsOf(*variable.renamed), static_cast<int>(kWidestWhat) / 2);
    } else {
      WriteHead(head, Harmless(variable.isRemoved() ? variable.before : variable.after), Shortened(variable.label));
    }
    WriteChanges(variable.changes);
  }

  void WriteHead(const std::string& mark, const std::string& name, const std::string& label) {
    const int indent = DisplayWidth(mark) + DisplayWidth(name) + 2;
    if (label.empty()) {
      fOut << mark << Bold(name) << '\n';
    } else if (indent + kWidestWhat <= fWidth) {
      WriteLines(label, indent, mark + Bold(name) + "  ");
    } else {
      fOut << mark << Bold(name) << '\n';
      WriteLines(label, kIndent, std::string(kIndent, ' '));
    }
  }

  /// As it stands in the page: harmless, and no longer than is worth reading there.
  std::string Shortened(std::string_view text) const {
    if (text.size() <= kMostTextBytes) return Harmless(text);
    std::size_t end = kMostTextBytes;
    while (end > 0 && !BeginsCharacter(text[end])) --end;
    return Harmless(text.substr(0, end)) + Ellipsis();
  }

  std::string Shown(std::string_view text, bool isQuoted) const {
    return isQuoted ? '"' + Shortened(text) + '"' : Shortened(text);
  }

  std::string ShownPair(const std::string& before, const std::string& after, bool isQuoted) const {
    const std::size_t begin = CommonBeginning(before, after);
    if (begin == 0) return Shown(before, isQuoted) + " " + Arrow() + " " + Shown(after, isQuoted);
    const auto rest = [&](std::string_view text) { return Ellipsis() + Shown(text.substr(begin), isQuoted); };
    return rest(before) + " " + Arrow() + " " + rest(after);
  }

  void WriteChanges(const std::vector<Change>& changes) {
    std::vector<std::pair<std::string, std::string>> rows;
    int width = 0;
    for (const Change& change : changes) {
      const ChangeWords words = WordsOf(change);
      std::string what = words.what;
      if (words.about) what += " " + Shortened(*words.about);
      if (!words.aboutLabel.empty()) what += " \"" + Shortened(words.aboutLabel) + '"';
      std::string text;
      if (words.before && words.after)
        text = ShownPair(*words.before, *words.after, words.isQuoted);
      else if (words.after)
        text = "+ " + Shown(*words.after, words.isQuoted);
      else if (words.before)
        text = std::string(Minus()) + " " + Shown(*words.before, words.isQuoted);
      if (!words.extent.empty()) text += "  (" + words.extent + ")";
      if (const int wide = DisplayWidth(what); wide <= kWidestWhat) width = std::max(width, wide);
      rows.emplace_back(std::move(what), std::move(text));
    }
    for (const auto& [what, text] : rows) WriteRow(what, text, std::max(width, kWidestWhat / 2));
  }

  void WriteRow(const std::string& what, const std::string& text, int width) {
    const std::string margin(kIndent, ' ');
    const int indent = kIndent + width + 2;
    if (indent + kWidestWhat > fWidth || DisplayWidth(what) > width) {
      WriteLines(what, kIndent, margin);
      WriteLines(text, kIndent + 2, margin + "  ");
      return;
    }
    const auto blanks = static_cast<std::size_t>(width - DisplayWidth(what) + 2);
    WriteLines(text, indent, margin + Dim(what) + std::string(blanks, ' '));
  }

  const runtime::output::RenderOptions fOptions;
  const int fWidth;
  std::ostream& fOut;
  bool fInList = false;
};

}  // namespace

void WriteComparisonText(const ComparisonReport& report, const runtime::output::RenderOptions& options,
                         std::ostream& out) {
  ComparisonWriter(options, out).Write(report);
}

}  // namespace app
