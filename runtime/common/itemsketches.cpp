#include "runtime/common/itemsketches.h"

#include <cstddef>
#include <map>
#include <string>
#include <utility>

#include "runtime/data/foldedname.h"

namespace runtime::common {

using aggregation::ItemSketch;
using output::Sketch;

namespace {

Sketch AsShown(const ItemSketch& counted, const std::string& name) {
  Sketch sketch;
  sketch.item = name;
  sketch.total = counted.total;
  sketch.missing = counted.missing;
  sketch.mean = counted.mean;
  sketch.quartiles = counted.quartiles;
  for (const aggregation::HistogramBin& bin : counted.bins) sketch.bins.push_back({bin.from, bin.to, bin.weight});
  return sketch;
}

/// The sets of a procedure's tables, in their order.
class ShownSets {
 public:
  ShownSets(const data::Dictionary& dictionary, const output::Procedure& procedure) : fDictionary(dictionary) {
    std::map<std::string, const VariableSet*> sets;
    for (const VariableSet& set : dictionary.sets) sets.emplace(data::FoldName(set.GetName(kKeepCase)), &set);
    for (const auto& table : procedure.tables) {
      if (table->title->fixed || !table->title->text.starts_with('$')) continue;
      const auto found = sets.find(data::FoldName(table->title->text));
      if (found != sets.end()) fTables.push_back({table->title->text, found->second});
    }
  }

  /// The title of the table that a sketch belongs to; null where there is none (left).
  const std::string* TakeTableOf(const ItemSketch& counted) {
    for (ShownSet& table : fTables) {
      if (table.isTaken || !IsOf(*table.set, counted)) continue;
      table.isTaken = true;
      return &table.title;
    }
    return nullptr;
  }

 private:
  struct ShownSet {
    std::string title;
    const VariableSet* set;
    bool isTaken = false;
  };

  bool IsOf(const VariableSet& set, const ItemSketch& counted) const {
    const std::string label = set.GetLabel();
    if (counted.name != (label.empty() ? set.GetName(kKeepCase) : label)) return false;
    const std::vector<std::string> names = set.GetVariableNames(kKeepCase);
    if (names.size() != counted.members.size()) return false;
    for (std::size_t i = 0; i < names.size(); ++i)
      if (fDictionary.FindVariable(names[i]) != counted.members[i]) return false;
    return true;
  }

  const data::Dictionary& fDictionary;
  std::vector<ShownSet> fTables;
};

}  // namespace

std::vector<Sketch> SketchesOf(const std::vector<ItemSketch>& counted, const data::Dictionary& dictionary,
                               const output::Procedure& procedure) {
  ShownSets sets(dictionary, procedure);
  std::map<std::string, Sketch> byName;
  for (const ItemSketch& sketch : counted) {
    if (sketch.variable >= 0) {
      const std::string& name = dictionary.variables[static_cast<std::size_t>(sketch.variable)]->name;
      const auto [known, isNew] = byName.emplace(name, Sketch());
      if (isNew || (known->second.quartiles.empty() && !sketch.quartiles.empty()))
        known->second = AsShown(sketch, name);
    } else if (const std::string* title = sets.TakeTableOf(sketch)) {
      byName.emplace(*title, AsShown(sketch, *title));
    }
  }
  std::vector<Sketch> sketches;
  for (auto& [name, sketch] : byName) sketches.push_back(std::move(sketch));
  return sketches;
}

}  // namespace runtime::common
