// Reports of random shape with hostile texts, for tests of the renderers.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "runtime/output/format/valueformat.h"
#include "runtime/output/model/report.h"

class RandomReport {
 public:
  explicit RandomReport(std::uint64_t seed) : fRandom(seed) {}

  runtime::output::Report Report() {
    runtime::output::Report report;
    const auto messages = Below(3);
    for (std::uint64_t i = 0; i < messages; ++i) {
      report.messages.push_back({Below(2) == 0 ? runtime::output::Severity::Warning : runtime::output::Severity::Error,
                                 static_cast<runtime::output::Source>(Below(3)), Text()});
    }
    const auto procedures = Below(3);
    for (std::uint64_t i = 0; i < procedures; ++i) {
      auto procedure = std::make_shared<runtime::output::Procedure>();
      procedure->title = Text();
      const auto tables = Below(4);
      for (std::uint64_t t = 0; t < tables; ++t) procedure->tables.push_back(Table());
      report.procedures.push_back(std::move(procedure));
    }
    return report;
  }

  std::shared_ptr<runtime::output::Table> Table() {
    auto table = std::make_shared<runtime::output::Table>();
    table->title = Content();
    table->subtype = Content();
    table->flag = Below(2) == 0;
    if (Below(3) == 0) table->minDataColumnWidth = static_cast<int>(Below(400));
    std::vector<const runtime::output::Item*> columns = {nullptr};
    if (Below(4) != 0) {
      auto dimension = std::make_unique<runtime::output::Dimension>();
      dimension->label = Content();
      dimension->inColumns = true;
      dimension->root.isGroup = true;
      AddItems(dimension->root, 0, 1 + Below(3));
      Categories(dimension->root, columns);
      table->dimensions.push_back(std::move(dimension));
    }
    auto dimension = std::make_unique<runtime::output::Dimension>();
    dimension->label = Content();
    dimension->root.isGroup = true;
    AddItems(dimension->root, 0, Below(8));
    FillRows(dimension->root, columns);
    table->dimensions.insert(table->dimensions.begin(), std::move(dimension));
    return table;
  }

  std::string Text() {
    static const std::vector<std::string> pieces = {"a",
                                                    "Label",
                                                    "two words",
                                                    " ",
                                                    "  ",
                                                    "\n",
                                                    "\t",
                                                    "é",
                                                    "Straße",
                                                    "東京",
                                                    "한국어",
                                                    "👩‍👩‍👧‍👦",
                                                    "🇩🇪",
                                                    "e\xcc\x81",
                                                    "\x1b[31mred\x1b[0m",
                                                    "\r\n",
                                                    "\x07",
                                                    "\xff\xfe",
                                                    "\xe2\x80\xae",
                                                    "\xe2\x80\x8b",
                                                    "\xef\xbb\xbf",
                                                    "\xe2\x80\xa8",
                                                    "\xc2\x85",
                                                    "\xed\xa0\x80",
                                                    "\xf4\x90\x80\x80",
                                                    "\xe2\x82",
                                                    "\"",
                                                    "\\",
                                                    "</script>",
                                                    "a/long/path/of/folders",
                                                    "Donaudampfschifffahrtsgesellschaftskapitän",
                                                    "ไทยภาษา",
                                                    "שלום",
                                                    "مرحبا",
                                                    "-",
                                                    "0123456789"};
    std::string text;
    const auto count = Below(7);
    for (std::uint64_t i = 0; i < count; ++i) text += pieces[Below(pieces.size())];
    return text;
  }

  std::uint64_t Below(std::uint64_t bound) { return fRandom() % bound; }

 private:
  double Number() {
    switch (Below(6)) {
      case 0:
        return static_cast<double>(Below(1000));
      case 1:
        return static_cast<double>(Below(100000)) / 100.0;
      case 2:
        return std::numeric_limits<double>::quiet_NaN();
      case 3:
        return -0.0;
      case 4:
        return std::numeric_limits<double>::infinity();
      default:
        return std::bit_cast<double>(fRandom());
    }
  }

  runtime::output::SharedContent Content() {
    using runtime::output::CellContent;
    auto content = std::make_shared<CellContent>();
    content->kind = static_cast<CellContent::Kind>(Below(4));
    static const FormatType types[] = {kFormatF,     kFormatPct, kFormatComma, kFormatDot,
                                       kFormatSDate, kFormatE,   kFormatG};
    content->format = {types[Below(7)], static_cast<int>(Below(3)) * 5, static_cast<int>(Below(4))};
    content->fixed = Below(2) == 0;
    content->number = Number();
    runtime::output::ContentOrigin origin;
    origin.variable = Text();
    origin.isString = Below(2) == 0;
    origin.stringValue = Text();
    origin.show = static_cast<int>(Below(2));
    const bool numeric = content->kind == CellContent::Kind::Number ||
                         (content->kind == CellContent::Kind::DataValue && !origin.isString);
    if (content->kind == CellContent::Kind::DataValue || content->kind == CellContent::Kind::Variable)
      content->origin = std::make_unique<const runtime::output::ContentOrigin>(std::move(origin));
    content->text = numeric ? runtime::output::FormatNumber(content->number, content->format) : Text();
    return content;
  }

  void AddItems(runtime::output::Item& group, int depth, std::uint64_t count) {
    for (std::uint64_t i = 0; i < count; ++i) {
      auto item = std::make_unique<runtime::output::Item>();
      item->label = Content();
      item->isGroup = depth < 3 && Below(3) == 0;
      if (item->isGroup) AddItems(*item, depth + 1, Below(4));
      group.items.push_back(std::move(item));
    }
  }

  static void Categories(const runtime::output::Item& group, std::vector<const runtime::output::Item*>& categories) {
    for (const auto& item : group.items) {
      if (item->isGroup) {
        Categories(*item, categories);
      } else {
        categories.push_back(item.get());
      }
    }
  }

  void FillRows(runtime::output::Item& group, const std::vector<const runtime::output::Item*>& columns) {
    for (const auto& item : group.items) {
      if (item->isGroup) {
        FillRows(*item, columns);
        continue;
      }
      const auto cells = Below(4);
      for (std::uint64_t i = 0; i < cells; ++i) item->cells.push_back({columns[Below(columns.size())], Content()});
    }
  }

  std::mt19937_64 fRandom;
};
