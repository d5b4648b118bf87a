#include <bit>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <unicode/unistr.h>

#include "runtime/output/format/kinds.h"
#include "runtime/output/render/jsonreport.h"
#include "runtime/output/render/jsontext.h"
#include "runtime/output/render/renderer.h"
#include "tests/unit/output/randomreport.h"

using nlohmann::ordered_json;
using runtime::output::CellContent;
using runtime::output::Item;
using runtime::output::Report;

namespace {

std::string Rendered(const Report& report) {
  std::ostringstream out;
  runtime::output::FindReportFormat("json")->newRenderer({})->Render(report, out);
  return out.str();
}

// What a reader makes of bytes that may be no UTF-8, by another implementation.
std::string Valid(const std::string& bytes) {
  std::string text;
  icu::UnicodeString::fromUTF8(bytes).toUTF8String(text);
  return text;
}

ordered_json NumberOrNull(double number) {
  return std::isfinite(number) ? ordered_json(number) : ordered_json(nullptr);
}

void AddContent(ordered_json& object, const CellContent& content) {
  object["text"] = Valid(content.text);
  switch (content.kind) {
    case CellContent::Kind::Text:
      object["fixed"] = content.fixed;
      break;
    case CellContent::Kind::Number:
      object["number"] = NumberOrNull(content.number);
      object["format"] = runtime::output::FormatSpecText(content.format);
      break;
    case CellContent::Kind::DataValue:
      object["variable"] = Valid(content.origin->variable);
      object["value"] =
          content.origin->isString ? ordered_json(Valid(content.origin->stringValue)) : NumberOrNull(content.number);
      break;
    case CellContent::Kind::Variable:
      object["variable"] = Valid(content.origin->variable);
      object["show"] = content.origin->show;
      break;
  }
}

ordered_json Label(const CellContent& content) {
  ordered_json label = ordered_json::object();
  AddContent(label, content);
  return label;
}

ordered_json Items(const Item& group, bool inColumns) {
  ordered_json items = ordered_json::array();
  for (const auto& item : group.items) {
    ordered_json object = ordered_json::object();
    object[item->isGroup ? "group" : "category"] = Label(*item->label);
    if (item->isGroup) {
      object["items"] = Items(*item, inColumns);
    } else if (!inColumns) {
      ordered_json cells = ordered_json::array();
      for (const auto& cell : item->cells) {
        ordered_json entry = ordered_json::object();
        entry["column"] =
            cell.column == nullptr ? ordered_json(nullptr) : ordered_json(Valid(cell.column->label->text));
        AddContent(entry, *cell.content);
        cells.push_back(entry);
      }
      object["cells"] = cells;
    }
    items.push_back(object);
  }
  return items;
}

ordered_json Expected(const Report& report) {
  ordered_json json = ordered_json::object();
  json["format"] = "codebook-report/1";
  json["messages"] = ordered_json::array();
  static const char* const sources[] = {"command", "data", "host"};
  for (const auto& message : report.messages) {
    ordered_json entry = ordered_json::object();
    entry["severity"] = message.severity == runtime::output::Severity::Error ? "error" : "warning";
    entry["source"] = sources[static_cast<int>(message.source)];
    entry["text"] = Valid(message.text);
    json["messages"].push_back(entry);
  }
  json["procedures"] = ordered_json::array();
  for (const auto& procedure : report.procedures) {
    ordered_json entry = ordered_json::object();
    entry["title"] = Valid(procedure->title);
    entry["tables"] = ordered_json::array();
    for (const auto& table : procedure->tables) {
      ordered_json object = ordered_json::object();
      object["title"] = Label(*table->title);
      object["subtype"] = Label(*table->subtype);
      object["flag"] = table->flag;
      if (table->minDataColumnWidth) object["minDataColumnWidth"] = *table->minDataColumnWidth;
      object["dimensions"] = ordered_json::array();
      for (const auto& dimension : table->dimensions) {
        ordered_json part = ordered_json::object();
        part["label"] = Label(*dimension->label);
        part["place"] = dimension->inColumns ? "columns" : "rows";
        part["items"] = Items(dimension->root, dimension->inColumns);
        object["dimensions"].push_back(part);
      }
      entry["tables"].push_back(object);
    }
    json["procedures"].push_back(entry);
  }
  return json;
}

std::string JsonText(const std::string& text) {
  std::string json;
  runtime::output::AppendJsonText(json, text);
  return json;
}

std::string JsonNumber(double number) {
  std::string json;
  runtime::output::AppendJsonNumber(json, number);
  return json;
}

}  // namespace

// Values are compared as they read back, names and their order as they stand.
TEST(JsonReport, readsBackAsTheModel) {
  ASSERT_NE(ordered_json::parse(R"({"a": 1, "b": 2})"), ordered_json::parse(R"({"b": 2, "a": 1})"));
  for (std::uint64_t seed = 0; seed < 1500; ++seed) {
    const Report report = RandomReport(seed).Report();
    const std::string text = Rendered(report);
    const ordered_json read = ordered_json::parse(text);
    const ordered_json expected = Expected(report);
    ASSERT_EQ(read, expected) << "seed " << seed << "\n" << text;
    ASSERT_EQ(text, Rendered(report));
  }
}

TEST(JsonReport, ofNothingIsWhole) {
  EXPECT_EQ(Rendered({}), "{\"format\": \"codebook-report/1\",\n\"messages\": [],\n\"procedures\": []}\n");
}

namespace {

using runtime::output::JsonOptions;
using runtime::output::JsonReportWriter;

Report WithFacts() {
  Report report = RandomReport(3).Report();
  report.language = "de";
  runtime::output::ReportFacts& facts = report.facts.emplace();
  facts.file = "a<b.csv";
  facts.cases = 12;
  facts.weight = "w";
  facts.weightedCases = 0.1;
  facts.variables = 9;
  facts.notes.push_back({"Name", "First ^2, then ^1", {"<x>", "y"}});
  facts.items.resize(2);
  facts.items[0].name = "v";
  facts.items[0].label = "</script>";
  facts.items[0].type = runtime::output::ItemFacts::Type::Date;
  facts.items[0].level = runtime::output::ItemFacts::Level::Ordinal;
  facts.items[0].role = runtime::output::ItemFacts::Role::Split;
  facts.items[0].position = 4;
  facts.items[1].name = "$s";
  facts.items[1].type = runtime::output::ItemFacts::Type::CategorySet;
  facts.items[1].items = {"v", "w"};
  if (report.procedures.empty()) report.procedures.push_back(std::make_shared<runtime::output::Procedure>());
  report.procedures[0]->sketches = {{"v", 3, 1, 2.5, {1, 2, 3}, {{0, 1, 0.5}, {1, 2, 1.5}}},
                                    {"$s", 3, 0, std::numeric_limits<double>::quiet_NaN(), {}, {}}};
  return report;
}

std::string Written(const Report& report, const JsonOptions& options) {
  std::ostringstream out;
  JsonReportWriter(out, options).WriteReport(report);
  return out.str();
}

ordered_json WithoutSketches(ordered_json json) {
  for (auto& procedure : json["procedures"]) procedure.erase("sketches");
  return json;
}

}  // namespace

TEST(JsonReport, tellsTheFactsBehindTheProcedures) {
  const ordered_json json = ordered_json::parse(Rendered(WithFacts()));
  EXPECT_EQ(json.back(), ordered_json::parse(R"({"file": "a<b.csv", "label": null, "language": "de", "cases": 12,
    "weight": "w", "weightLabel": null, "weightedCases": 0.1, "variables": 9,
    "notes": [{"name": "Name", "text": "First y, then <x>"}],
    "items": [{"name": "v", "label": "</script>", "type": "date", "level": "ordinal", "role": "split", "position": 4},
              {"name": "$s", "label": null, "type": "categorySet", "level": "unknown", "role": "input",
               "members": ["v", "w"]}]})"));
  EXPECT_EQ((--json.end()).key(), "facts");
}

TEST(JsonReport, factsThatAreNotKnownAreNull) {
  Report report;
  report.facts.emplace();
  const ordered_json facts = ordered_json::parse(Rendered(report))["facts"];
  for (const char* name : {"file", "label", "cases", "weight", "weightLabel", "weightedCases"})
    EXPECT_TRUE(facts[name].is_null()) << name;
}

TEST(JsonReport, compactSaysTheSameWithoutBlanks) {
  const Report report = WithFacts();
  JsonOptions options;
  options.layout = JsonOptions::Layout::Compact;
  const std::string compact = Written(report, options);
  EXPECT_EQ(ordered_json::parse(compact), ordered_json::parse(Rendered(report)));
  EXPECT_EQ(compact.find('\n'), std::string::npos);
  EXPECT_EQ(compact.find("\": "), std::string::npos);
}

TEST(JsonReport, insideHtmlNoTextEndsTheElement) {
  const Report report = WithFacts();
  JsonOptions options;
  options.insideHtml = true;
  const std::string json = Written(report, options);
  EXPECT_EQ(json.find('<'), std::string::npos);
  EXPECT_EQ(ordered_json::parse(json), ordered_json::parse(Rendered(report)));
}

TEST(JsonReport, sketchesStandInTheirProcedureWhereTheyAreWanted) {
  const Report report = WithFacts();
  JsonOptions options;
  options.sketches = true;
  const ordered_json json = ordered_json::parse(Written(report, options));
  EXPECT_EQ(json["procedures"][0]["sketches"],
            ordered_json::parse(R"([{"item": "v", "total": 3, "missing": 1, "mean": 2.5, "quartiles": [1, 2, 3],
              "edges": [0, 1, 2], "weights": [0.5, 1.5]}, {"item": "$s", "total": 3, "missing": 0}])"));
  EXPECT_EQ(WithoutSketches(json), ordered_json::parse(Rendered(report)));
}

TEST(JsonLines, sayWhatTheReportSays) {
  for (std::uint64_t seed = 0; seed < 200; ++seed) {
    Report report = RandomReport(seed).Report();
    if (seed % 2 == 0) report.facts = WithFacts().facts;
    const ordered_json expected = ordered_json::parse(Rendered(report));
    std::ostringstream out;
    runtime::output::FindReportFormat("jsonl")->newRenderer({})->Render(report, out);
    std::istringstream lines(out.str());
    std::string line;
    ASSERT_TRUE(std::getline(lines, line));
    const ordered_json first = ordered_json::parse(line);
    EXPECT_EQ(first["kind"], "report");
    EXPECT_EQ(first["format"], expected["format"]);
    EXPECT_EQ(first.contains("facts"), expected.contains("facts"));
    ordered_json messages = ordered_json::array();
    ordered_json procedures = ordered_json::array();
    while (std::getline(lines, line)) {
      const ordered_json said = ordered_json::parse(line);
      if (said["kind"] == "message") {
        messages.push_back(said["message"]);
      } else if (said["kind"] == "procedure") {
        procedures.push_back({{"title", said["title"]}, {"tables", ordered_json::array()}});
      } else {
        EXPECT_EQ(said["procedure"], procedures.size());
        EXPECT_EQ(said["title"], procedures.back()["title"]);
        procedures.back()["tables"].push_back(said["table"]);
        EXPECT_EQ(said["index"], procedures.back()["tables"].size());
      }
    }
    ASSERT_EQ(messages, expected["messages"]);
    ASSERT_EQ(procedures, expected["procedures"]);
  }
}

TEST(JsonText, escapesWhatATerminalWouldObey) {
  EXPECT_EQ(JsonText("a\"b\\c/d"), R"("a\"b\\c/d")");
  EXPECT_EQ(JsonText(std::string("\x00\x1b\n\t\x7f", 5)), R"("\u0000\u001b\u000a\u0009\u007f")");
  EXPECT_EQ(JsonText("\xc2\x9b"), R"("\u009b")");
  EXPECT_EQ(JsonText("\xe2\x80\xae\xe2\x81\xa9\xd8\x9c"), R"("\u202e\u2069\u061c")");
  EXPECT_EQ(JsonText("\xe2\x80\xa8"), R"("\u2028")");
  EXPECT_EQ(JsonText("Köln 東京 👩‍👧"), "\"Köln 東京 👩‍👧\"");
  EXPECT_EQ(JsonText(""), "\"\"");
}

TEST(JsonText, replacesWhatIsNoUtf8) {
  EXPECT_EQ(JsonText("a\xff z"), "\"a\xEF\xBF\xBD z\"");
  EXPECT_EQ(JsonText("\xe2\x82"), "\"\xEF\xBF\xBD\"");
  EXPECT_EQ(JsonText("\xc0\xaf"), "\"\xEF\xBF\xBD\xEF\xBF\xBD\"");
  EXPECT_EQ(JsonText("\xed\xa0\x80"), "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\"");
  std::mt19937_64 random(1);
  for (int i = 0; i < 20000; ++i) {
    std::string bytes;
    const auto length = random() % 8;
    for (std::uint64_t k = 0; k < length; ++k)
      bytes += static_cast<char>(random() % 3 == 0 ? random() : 0x80 | random());
    ASSERT_EQ(ordered_json::parse(JsonText(bytes)), ordered_json(Valid(bytes)));
  }
}

TEST(JsonNumber, isTheShortestThatReadsBack) {
  EXPECT_EQ(JsonNumber(0.1), "0.1");
  EXPECT_EQ(JsonNumber(12), "12");
  EXPECT_EQ(JsonNumber(-0.0), "-0.0");
  EXPECT_EQ(JsonNumber(1e300), "1e+300");
  EXPECT_EQ(JsonNumber(std::nan("")), "null");
  EXPECT_EQ(JsonNumber(-INFINITY), "null");
  std::mt19937_64 random(2);
  for (int i = 0; i < 20000; ++i) {
    const auto number = std::bit_cast<double>(random());
    if (!std::isfinite(number)) continue;
    const auto read = ordered_json::parse(JsonNumber(number)).get<double>();
    ASSERT_EQ(std::bit_cast<std::uint64_t>(read), std::bit_cast<std::uint64_t>(number));
  }
}
