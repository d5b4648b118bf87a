#include "app/commands/checkreport.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include <fmt/format.h>

#include "runtime/output/render/terminaltext.h"

namespace app {
namespace {

using runtime::data::FactsOf;
using runtime::data::Finding;
using runtime::data::Severity;
using Json = nlohmann::ordered_json;

std::size_t CountOf(const CheckReport& report, Severity severity) {
  return static_cast<std::size_t>(
      std::count_if(report.findings.begin(), report.findings.end(),
                    [severity](const Finding& finding) { return FactsOf(finding.code).severity == severity; }));
}

std::string PlaceOf(const Finding& finding) {
  std::string place = finding.file;
  if (finding.line > 0) place += fmt::format(":{}", finding.line);
  if (!finding.variable.empty()) place += ": " + finding.variable;
  return place;
}

std::string RowsOf(const Finding& finding) {
  if (finding.row == 0) return {};
  if (finding.count <= 1) return fmt::format(" (row {})", finding.row);
  return fmt::format(" ({} cells, the first in row {})", finding.count, finding.row);
}

std::string Counted(std::size_t count, const char* word, const char* several) {
  return fmt::format("{} {}", count, count == 1 ? word : several);
}

}  // namespace

std::size_t FindingsThatCount(const CheckReport& report) {
  return CountOf(report, Severity::Error) + CountOf(report, Severity::Warning);
}

void WriteCheckText(const CheckReport& report, bool isUtf8, std::ostream& out) {
  const auto line = [&](const std::string& text) {
    out << runtime::output::EscapeForTerminal(text, isUtf8, runtime::output::LineEnds::Escape) << '\n';
  };
  for (const Finding& finding : report.findings) {
    const runtime::data::CodeFacts& facts = FactsOf(finding.code);
    line(fmt::format("{}: {} {}: {}{}", PlaceOf(finding), facts.id, SeverityWord(facts.severity), finding.what,
                     RowsOf(finding)));
    const bool last = &finding == &report.findings.back();
    const Finding* next = last ? nullptr : &finding + 1;
    // The same advice is given once, under the last of several findings of a kind.
    if (next == nullptr || next->code != finding.code) line(fmt::format("    {}", facts.hint));
  }
  if (!report.findings.empty()) out << '\n';
  line(fmt::format("{}: {} cases, {} variables: {}, {}, {}", report.data, report.cases, report.variables,
                   Counted(CountOf(report, Severity::Error), "error", "errors"),
                   Counted(CountOf(report, Severity::Warning), "warning", "warnings"),
                   Counted(CountOf(report, Severity::Info), "remark", "remarks")));
}

void WriteCheckJson(const CheckReport& report, std::ostream& out) {
  Json json = Json::object();
  json["format"] = "codebook-check";
  json["version"] = 1;
  json["data"] = report.data;
  json["dictionary"] = report.dictionary.empty() ? Json() : Json(report.dictionary);
  json["cases"] = report.cases;
  json["variables"] = report.variables;
  json["summary"] = {{"errors", CountOf(report, Severity::Error)},
                     {"warnings", CountOf(report, Severity::Warning)},
                     {"infos", CountOf(report, Severity::Info)}};
  json["findings"] = Json::array();
  for (const Finding& finding : report.findings) {
    const runtime::data::CodeFacts& facts = FactsOf(finding.code);
    Json entry = Json::object();
    entry["code"] = facts.id;
    entry["name"] = facts.name;
    entry["severity"] = SeverityWord(facts.severity);
    entry["file"] = finding.file;
    if (!finding.variable.empty()) entry["variable"] = finding.variable;
    if (finding.column > 0) entry["column"] = finding.column;
    if (finding.value) entry["value"] = *finding.value;
    if (finding.row > 0) entry["row"] = finding.row;
    if (finding.line > 0) entry["line"] = finding.line;
    if (finding.count > 0) entry["count"] = finding.count;
    entry["message"] = finding.what;
    entry["hint"] = facts.hint;
    json["findings"].push_back(std::move(entry));
  }
  out << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace app
