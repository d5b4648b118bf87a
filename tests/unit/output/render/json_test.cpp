#include <bit>
#include <cmath>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <unicode/unistr.h>

#include "runtime/output/format/kinds.h"
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
