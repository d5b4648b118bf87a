#include "runtime/common/distributions.h"

#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

#include "runtime/data/dictionary/numberwords.h"

namespace runtime::common {
namespace {

using data::Distribution;
using data::Figure;
using output::CellContent;
using output::Item;

const CellContent* ContentIn(const Item& row, std::string_view column) {
  for (const output::Cell& cell : row.cells)
    if (cell.column != nullptr && cell.column->label->text == column) return cell.content.get();
  return nullptr;
}

double CountIn(const Item& row) {
  const CellContent* const count = ContentIn(row, "Count");
  return count == nullptr ? 0.0 : count->number;
}

std::optional<Figure> FigureIn(const Item& row) {
  const CellContent* const content = ContentIn(row, "Value");
  if (content == nullptr || std::isnan(content->number)) return std::nullopt;
  return Figure{content->number, content->text};
}

void ReadCounts(const Item& group, Distribution& distribution) {
  distribution.isScale = true;
  for (const auto& row : group.items) {
    const std::optional<Figure> count = FigureIn(*row);
    (row->label->text == "Valid" ? distribution.valid : distribution.missing) = count ? count->number : 0.0;
  }
}

void ReadMoments(const Item& group, Distribution& distribution) {
  for (const auto& row : group.items) {
    std::optional<Figure> figure = FigureIn(*row);
    if (!figure) continue;
    const std::string& name = row->label->text;
    if (name == "Mean")
      distribution.mean = std::move(figure);
    else if (name == "Standard Deviation")
      distribution.deviation = std::move(figure);
    else
      distribution.quartiles.push_back(*std::move(figure));
  }
}

void ReadValid(const Item& group, Distribution& distribution) {
  for (const auto& row : group.items) {
    const CellContent& value = *row->label;
    const CellContent* const label = ContentIn(*row, "Value");
    data::ValueWeight counted;
    counted.value = value.origin->isString ? value.origin->stringValue : data::NumberWords(value.number);
    counted.shown = label == nullptr ? value.text : label->text;
    counted.weight = CountIn(*row);
    distribution.valid += counted.weight;
    distribution.values.push_back(std::move(counted));
  }
}

/// Nothing where the table holds no counts.
std::optional<Distribution> ReadTable(const output::Table& table) {
  Distribution distribution;
  bool counted = false;
  for (const auto& dimension : table.dimensions) {
    if (dimension->inColumns) continue;
    for (const auto& group : dimension->root.items) {
      if (!group->isGroup || !group->label->fixed) continue;
      const std::string& name = group->label->text;
      if (name == "N") ReadCounts(*group, distribution);
      if (name == "Central Tendency and Dispersion") ReadMoments(*group, distribution);
      if (name == "Valid Values") ReadValid(*group, distribution);
      if (name == "Missing Values")
        for (const auto& row : group->items) distribution.missing += CountIn(*row);
      counted = counted || name == "N" || name == "Valid Values";
    }
  }
  return counted ? std::optional(std::move(distribution)) : std::nullopt;
}

}  // namespace

std::string CountingCommand(const std::vector<CountedVariable>& variables) {
  std::string command = "CODEBOOK";
  for (const CountedVariable& variable : variables)
    command += "\n" + variable.name + (variable.asScale ? " [S]" : " [N]");
  return command + "\n/VARINFO VALUELABELS MISSING /STATISTICS COUNT MEAN STDDEV QUARTILES /OPTIONS MAXCATS=" +
         std::to_string(kMostCountedValues) + ".";
}

data::Distributions DistributionsOf(const output::Report& report) {
  data::Distributions distributions;
  for (const auto& procedure : report.procedures)
    for (const auto& table : procedure->tables)
      if (std::optional<Distribution> distribution = ReadTable(*table))
        distributions.emplace(table->title->text, *std::move(distribution));
  return distributions;
}

}  // namespace runtime::common
