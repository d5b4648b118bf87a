#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "app/comparison/comparisonreport.h"
#include "runtime/output/render/jsontext.h"

namespace app {
namespace {

using runtime::data::Change;
using runtime::data::Distribution;
using runtime::data::Figure;
using runtime::data::VariableComparison;

class ComparisonJson {
 public:
  explicit ComparisonJson(const ComparisonReport& report) : fReport(report) {}

  std::string Text() {
    fJson = "{\"format\": \"codebook-diff/1\",\n\"same\": ";
    fJson += fReport.comparison.differs() ? "false" : "true";
    fJson += ",\n\"old\": ";
    WriteWave(fReport.before);
    fJson += ",\n\"new\": ";
    WriteWave(fReport.after);
    fJson += ",\n\"distributionsCompared\": ";
    fJson += fReport.distributionsCompared ? "true" : "false";
    fJson += ",\n\"thresholds\": {\"missing\": ";
    Write(fReport.thresholds.missing);
    fJson += ", \"value\": ";
    Write(fReport.thresholds.value);
    fJson += ", \"mean\": ";
    Write(fReport.thresholds.mean);
    fJson += "},\n\"counts\": ";
    WriteCounts();
    fJson += ",\n\"file\": ";
    WriteChanges(fReport.comparison.file, " ");
    fJson += ",\n\"variables\": [";
    bool first = true;
    for (const VariableComparison& variable : fReport.comparison.variables) {
      if (!variable.differs()) continue;
      fJson += first ? "\n " : ",\n ";
      first = false;
      WriteVariable(variable);
    }
    fJson += first ? "]\n}\n" : "\n]\n}\n";
    return std::move(fJson);
  }

 private:
  void Write(std::string_view text) { runtime::output::AppendJsonText(fJson, text); }
  void Write(double number) { runtime::output::AppendJsonNumber(fJson, number); }

  void WriteOrNull(const std::optional<std::string>& text) {
    if (text)
      Write(*text);
    else
      fJson += "null";
  }

  static std::optional<std::string> NotEmpty(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional(text);
  }

  void WriteWave(const Wave& wave) {
    fJson += "{\"file\": ";
    Write(wave.file);
    fJson += ", \"label\": ";
    WriteOrNull(wave.label);
    fJson += ", \"cases\": " + (wave.cases ? std::to_string(*wave.cases) : "null");
    fJson += ", \"variables\": " + std::to_string(wave.variables);
    fJson += ", \"weight\": ";
    WriteOrNull(wave.weight);
    fJson += '}';
  }

  void WriteCounts() {
    const runtime::data::ComparisonCounts counts = Count(fReport.comparison);
    fJson += "{\"added\": " + std::to_string(counts.added) + ", \"removed\": " + std::to_string(counts.removed) +
             ", \"renamed\": " + std::to_string(counts.renamed) + ", \"changed\": " + std::to_string(counts.changed) +
             ", \"same\": " + std::to_string(counts.same) + ", \"changes\": {";
    std::string_view separator;
    for (std::size_t kind = 0; kind < counts.changes.size(); ++kind) {
      if (counts.changes[kind] == 0) continue;
      fJson += separator;
      Write(runtime::data::ChangeCode(static_cast<runtime::data::ChangeKind>(kind)));
      fJson += ": " + std::to_string(counts.changes[kind]);
      separator = ", ";
    }
    fJson += "}}";
  }

  void WriteChanges(const std::vector<Change>& changes, const std::string& indent) {
    fJson += '[';
    std::string_view separator;
    for (const Change& change : changes) {
      fJson += separator;
      fJson += "\n" + indent;
      separator = ",";
      WriteChange(change);
    }
    fJson += ']';
  }

  void WriteChange(const Change& change) {
    fJson += "{\"code\": ";
    Write(runtime::data::ChangeCode(change.kind));
    if (NamesWhatItIsAbout(change.kind)) {
      fJson += ", \"about\": ";
      Write(change.about);
    }
    if (!change.aboutLabel.empty()) {
      fJson += ", \"label\": ";
      Write(change.aboutLabel);
    }
    if (change.numberBefore && change.numberAfter) {
      fJson += ", \"old\": ";
      Write(*change.numberBefore);
      fJson += ", \"new\": ";
      Write(*change.numberAfter);
      fJson += ", \"size\": ";
      Write(change.size);
    } else {
      fJson += ", \"old\": ";
      WriteOrNull(change.before);
      fJson += ", \"new\": ";
      WriteOrNull(change.after);
    }
    fJson += '}';
  }

  void WriteVariable(const VariableComparison& variable) {
    fJson += "{\"status\": \"";
    fJson += variable.isAdded() ? "added" : variable.isRemoved() ? "removed" : variable.renamed ? "renamed" : "changed";
    fJson += "\", \"old\": ";
    WriteOrNull(NotEmpty(variable.before));
    fJson += ", \"new\": ";
    WriteOrNull(NotEmpty(variable.after));
    fJson += ", \"label\": ";
    WriteOrNull(NotEmpty(variable.label));
    if (variable.renamed) {
      fJson += ", \"score\": ";
      Write(variable.renamed->score);
    }
    fJson += ", \"changes\": ";
    WriteChanges(variable.changes, "  ");
    WriteDistributions(variable);
    fJson += '}';
  }

  void WriteDistributions(const VariableComparison& variable) {
    const auto before = fReport.before.distributions.find(variable.before);
    const auto after = fReport.after.distributions.find(variable.after);
    if (before == fReport.before.distributions.end() || after == fReport.after.distributions.end()) return;
    if (!variable.hasMoved()) return;
    fJson += ",\n  \"distribution\": {\"old\": ";
    WriteDistribution(before->second);
    fJson += ",\n   \"new\": ";
    WriteDistribution(after->second);
    fJson += '}';
  }

  void WriteDistribution(const Distribution& distribution) {
    fJson += "{\"valid\": ";
    Write(distribution.valid);
    fJson += ", \"missing\": ";
    Write(distribution.missing);
    if (distribution.isScale) {
      WriteFigure("mean", distribution.mean);
      WriteFigure("standardDeviation", distribution.deviation);
      fJson += ", \"quartiles\": [";
      std::string_view separator;
      for (const Figure& quartile : distribution.quartiles) {
        fJson += separator;
        Write(quartile.number);
        separator = ", ";
      }
    } else {
      fJson += ", \"values\": [";
      std::string_view separator;
      for (const runtime::data::ValueWeight& value : distribution.values) {
        fJson += separator;
        fJson += "{\"value\": ";
        Write(value.value);
        fJson += ", \"shown\": ";
        Write(value.shown);
        fJson += ", \"count\": ";
        Write(value.weight);
        fJson += '}';
        separator = ", ";
      }
    }
    fJson += "]}";
  }

  void WriteFigure(const char* name, const std::optional<Figure>& figure) {
    fJson += std::string(", \"") + name + "\": ";
    if (figure)
      Write(figure->number);
    else
      fJson += "null";
  }

  const ComparisonReport& fReport;
  std::string fJson;
};

}  // namespace

void WriteComparisonJson(const ComparisonReport& report, std::ostream& out) { out << ComparisonJson(report).Text(); }

}  // namespace app
