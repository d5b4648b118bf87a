#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "app/comparison/changewords.h"
#include "app/comparison/comparisonreport.h"
#include "runtime/output/render/html/htmltext.h"
#include "runtime/output/render/terminaltext.h"

namespace runtime::output {
std::string_view ComparisonStyle();  // embedded: app/comparison/comparison.css
}

namespace app {
namespace {

using runtime::data::Change;
using runtime::data::Distribution;
using runtime::data::ValueWeight;
using runtime::data::VariableComparison;

constexpr std::size_t kMostShownValues = 30;  // of one distribution; JSON has all

/// A text of the data: nothing that a page would hide or obey, line ends kept.
std::string Safe(std::string_view text) {
  return runtime::output::HtmlText(runtime::output::EscapeForTerminal(text, true, runtime::output::LineEnds::Keep));
}

std::string Percent(double share) { return fmt::format("{:.1f}%", share); }

class ComparisonPage {
 public:
  ComparisonPage(const ComparisonReport& report, std::ostream& out) : fReport(report), fOut(out) {}

  void Write() {
    const std::string_view style = runtime::output::ComparisonStyle();
    const std::string title = Safe(fReport.before.file) + " → " + Safe(fReport.after.file);
    fOut << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
         << "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
         << runtime::output::HashSource(style) << "; base-uri 'none'; form-action 'none'\">\n"
         << "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
         << "<meta name=\"color-scheme\" content=\"light dark\">\n<meta name=\"referrer\" content=\"no-referrer\">\n"
         << "<title>" << title << " – differences</title>\n<style>" << style << "</style>\n</head>\n<body>\n"
         << "<header>\n<h1>" << title << "</h1>\n<p class=\"outcome\">" << CountWords(fReport.comparison) << ".</p>\n";
    WriteWaves();
    WriteRule();
    fOut << "</header>\n<main>\n";
    if (!fReport.comparison.file.empty()) {
      fOut << "<h2 id=\"file\">File</h2>\n";
      WriteChanges(fReport.comparison.file, "What changed of the file");
    }
    WriteVariables();
    fOut << "</main>\n</body>\n</html>\n";
  }

 private:
  void WriteWaves() {
    fOut << "<div class=\"wide\"><table>\n<caption>The two waves</caption>\n<thead><tr><th scope=\"col\">Wave</th><th "
            "scope=\"col\">File</th><th scope=\"col\">Label</th><th scope=\"col\" class=\"amount\">Cases</th><th "
            "scope=\"col\" class=\"amount\">Variables</th><th scope=\"col\">Weight</th></tr></thead>\n<tbody>\n";
    WriteWave("Old", fReport.before);
    WriteWave("New", fReport.after);
    fOut << "</tbody>\n</table></div>\n";
  }

  void WriteWave(const char* which, const Wave& wave) {
    const auto orNone = [](const std::optional<std::string>& text) {
      return text ? Safe(*text) : std::string("<span class=\"none\">none</span>");
    };
    fOut << "<tr><th scope=\"row\">" << which << "</th><td>" << Safe(wave.file) << "</td><td>" << orNone(wave.label)
         << "</td><td class=\"amount\">"
         << (wave.cases ? Grouped(static_cast<std::size_t>(*wave.cases)) : "<span class=\"none\">no data</span>")
         << "</td><td class=\"amount\">" << Grouped(wave.variables) << "</td><td>" << orNone(wave.weight)
         << "</td></tr>\n";
  }

  void WriteRule() {
    const runtime::data::Thresholds& least = fReport.thresholds;
    fOut << "<p class=\"quiet\">";
    if (fReport.distributionsCompared)
      fOut << fmt::format(
          "Distributions differ where the share of missing values moved by at least {:g} percentage point{}, a value's "
          "share of the valid ones by at least {:g}, or a mean by at least {:g} standard deviations.",
          least.missing, least.missing == 1.0 ? "" : "s", least.value, least.mean);
    else
      fOut << "Only the dictionaries were compared.";
    fOut << "</p>\n";
  }

  void WriteVariables() {
    std::vector<const VariableComparison*> shown;
    for (const VariableComparison& variable : fReport.comparison.variables)
      if (variable.differs()) shown.push_back(&variable);
    if (shown.empty()) return;
    fOut << "<h2>Variables</h2>\n<nav aria-label=\"Variables that differ\"><ul class=\"jump\">\n";
    for (std::size_t i = 0; i < shown.size(); ++i)
      fOut << "<li><a href=\"#v" << i + 1 << "\">" << Safe(NameOf(*shown[i])) << "</a></li>\n";
    fOut << "</ul></nav>\n";
    for (std::size_t i = 0; i < shown.size() && fOut; ++i) WriteVariable(*shown[i], i + 1);
  }

  static const std::string& NameOf(const VariableComparison& variable) {
    return variable.isRemoved() ? variable.before : variable.after;
  }

  void WriteVariable(const VariableComparison& variable, std::size_t number) {
    const char* const status = variable.isAdded()     ? "added"
                               : variable.isRemoved() ? "removed"
                               : variable.renamed     ? "renamed"
                                                      : "changed";
    fOut << "<article id=\"v" << number << "\" class=\"" << status << "\">\n<h3>";
    if (variable.renamed) fOut << Safe(variable.before) << " → ";
    fOut << Safe(NameOf(variable)) << "<span class=\"status\">" << (variable.renamed ? "perhaps renamed" : status)
         << "</span></h3>\n";
    if (!variable.label.empty()) fOut << "<p class=\"label\">" << Safe(variable.label) << "</p>\n";
    if (variable.renamed) fOut << "<p class=\"quiet\">Taken for one by: " << WordsOf(*variable.renamed) << "</p>\n";
    if (!variable.changes.empty()) WriteChanges(variable.changes, "What changed of " + NameOf(variable));
    if (variable.hasMoved()) WriteDistributions(variable);
    fOut << "</article>\n";
  }

  void WriteChanges(const std::vector<Change>& changes, const std::string& caption) {
    fOut << "<div class=\"wide\"><table class=\"changes\">\n<caption>" << Safe(caption)
         << "</caption>\n<thead><tr><th scope=\"col\" class=\"what\">What</th><th scope=\"col\">Old</th><th "
            "scope=\"col\">New</th><th scope=\"col\" class=\"extent\">By</th></tr></thead>\n<tbody>\n";
    for (const Change& change : changes) {
      const ChangeWords words = WordsOf(change);
      fOut << "<tr><th scope=\"row\">" << words.what;
      if (words.about) fOut << ' ' << Safe(*words.about);
      if (!words.aboutLabel.empty()) fOut << " “" << Safe(words.aboutLabel) << "”";
      fOut << "</th>";
      WriteSide("old", words.before);
      WriteSide("new", words.after);
      fOut << "<td>" << words.extent << "</td></tr>\n";
    }
    fOut << "</tbody>\n</table></div>\n";
  }

  void WriteSide(const char* side, const std::optional<std::string>& text) {
    if (text)
      fOut << "<td class=\"" << side << "\">" << Safe(*text) << "</td>";
    else
      fOut << "<td class=\"none\">–</td>";
  }

  void WriteDistributions(const VariableComparison& variable) {
    const auto before = fReport.before.distributions.find(variable.before);
    const auto after = fReport.after.distributions.find(variable.after);
    if (before == fReport.before.distributions.end() || after == fReport.after.distributions.end()) return;
    fOut << "<div class=\"wide\"><table>\n<caption>Distribution of " << Safe(NameOf(variable))
         << (before->second.isScale ? "" : ", percent of the valid")
         << "</caption>\n<thead><tr><th scope=\"col\" class=\"what\">"
         << (before->second.isScale ? "Statistic" : "Value")
         << "</th><th scope=\"col\" class=\"amount\">Old</th><th scope=\"col\" class=\"amount\">New</th></tr></thead>\n"
            "<tbody>\n";
    if (before->second.isScale && after->second.isScale)
      WriteStatistics(before->second, after->second);
    else
      WriteShares(before->second, after->second);
    WriteAmounts("Missing, percent of all", Percent(before->second.missingShare()),
                 Percent(after->second.missingShare()));
    fOut << "</tbody>\n</table></div>\n";
  }

  void WriteAmounts(const std::string& what, const std::string& before, const std::string& after) {
    fOut << "<tr><th scope=\"row\">" << Safe(what) << "</th><td class=\"amount\">" << Safe(before)
         << "</td><td class=\"amount\">" << Safe(after) << "</td></tr>\n";
  }

  void WriteStatistics(const Distribution& before, const Distribution& after) {
    const auto shown = [](const std::optional<runtime::data::Figure>& figure) {
      return figure ? figure->shown : std::string("–");
    };
    WriteAmounts("Mean", shown(before.mean), shown(after.mean));
    WriteAmounts("Standard deviation", shown(before.deviation), shown(after.deviation));
    constexpr const char* kQuartiles[] = {"Percentile 25", "Percentile 50", "Percentile 75"};
    for (std::size_t i = 0; i < 3; ++i)
      if (before.quartiles.size() == 3 && after.quartiles.size() == 3)
        WriteAmounts(kQuartiles[i], before.quartiles[i].shown, after.quartiles[i].shown);
  }

  /// By value, those of the new wave first.
  void WriteShares(const Distribution& before, const Distribution& after) {
    std::map<std::string, double> old;
    for (const ValueWeight& value : before.values) old.emplace(value.value, 100.0 * value.weight / before.valid);
    std::size_t rows = 0;
    const auto write = [&](const ValueWeight& value, double was, double is) {
      if (++rows > kMostShownValues) return;
      WriteAmounts(value.shown == value.value ? value.value : value.value + " " + value.shown, Percent(was),
                   Percent(is));
    };
    for (const ValueWeight& value : after.values) {
      const auto was = old.find(value.value);
      write(value, was == old.end() ? 0.0 : was->second, 100.0 * value.weight / after.valid);
      if (was != old.end()) old.erase(was);
    }
    for (const ValueWeight& value : before.values)
      if (const auto was = old.find(value.value); was != old.end()) write(value, was->second, 0.0);
    if (rows > kMostShownValues)
      fOut << "<tr><th scope=\"row\">and " << Number(rows - kMostShownValues, "further value")
           << "</th><td></td><td></td></tr>\n";
  }

  const ComparisonReport& fReport;
  std::ostream& fOut;
};

}  // namespace

void WriteComparisonHtml(const ComparisonReport& report, std::ostream& out) { ComparisonPage(report, out).Write(); }

}  // namespace app
