#include "tests/unit/aggregation/support/reference.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <set>

#include "tests/unit/aggregation/support/rational.h"

namespace reference {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::string Shortest(double number) {
  char buffer[40];
  return std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, number).ptr);
}

Value Number(double number) { return {false, number + 0.0, {}}; }

std::string TextOf(const Value& value) { return value.isText ? value.text : Shortest(value.number); }

double PercentileAt(const std::vector<std::pair<double, mpq_class>>& distinct, const mpq_class& total,
                    double cutPoint) {
  const mpq_class t = (total + 1) * mpq_class(cutPoint) / 100;
  mpq_class cumulative = distinct.front().second;
  if (t < cumulative) return distinct.front().first;
  if (t >= total) return distinct.back().first;
  for (std::size_t i = 0; i + 1 < distinct.size(); ++i) {
    const mpq_class next = cumulative + distinct[i + 1].second;
    if (t < next) {
      mpq_class d = t - cumulative;
      if (d >= 1) return distinct[i + 1].first;
      if (distinct[i + 1].second < 1) d /= distinct[i + 1].second;
      return NearestOf((1 - d) * mpq_class(distinct[i].first) + d * mpq_class(distinct[i + 1].first));
    }
    cumulative = next;
  }
  return kNaN;
}

}  // namespace

std::optional<Value> Rows::At(int variable, std::size_t row) const {
  const TestColumn& column = data.columns[static_cast<std::size_t>(variable)];
  if (column.isText) return Value{true, 0.0, column.texts[row]};
  if (std::isnan(column.numbers[row])) return std::nullopt;
  return Number(column.numbers[row]);
}

bool Rows::IsUserMissing(int variable, const Value& value) const {
  const MissingRule& rule = dictionary.variables[static_cast<std::size_t>(variable)]->missing;
  if (!value.isText) return rule.holds(value.number);
  return std::find(rule.texts.begin(), rule.texts.end(), value.text) != rule.texts.end();
}

Dimension CountVariable(const Rows& rows, int variable, const std::vector<Value>* list) {
  Dimension result;
  std::map<Value, mpq_class> weights;
  for (const std::size_t row : rows.taken) {
    const mpq_class weight = rows.Weight(row);
    if (weight == 0) continue;
    result.total += weight;
    const std::optional<Value> value = rows.At(variable, row);
    if (!value || rows.IsUserMissing(variable, *value)) result.missing += weight;
    if (value) weights[*value] += weight;
  }
  const auto add = [&](const Value& value) {
    const auto found = weights.find(value);
    const bool isMet = found != weights.end();
    result.categories.push_back({value, static_cast<int>(result.categories.size()), TextOf(value),
                                 isMet ? found->second : mpq_class(0), isMet});
    result.values += isMet ? 1 : 0;
  };
  if (list != nullptr)
    for (const Value& value : *list) add(value);
  else
    for (const auto& entry : weights) add(entry.first);
  return result;
}

Dimension CountCategorySet(const Rows& rows, const std::vector<int>& members) {
  Dimension result;
  std::map<Value, mpq_class> weights;
  std::map<Value, std::size_t> firstMember;
  std::set<Value> met;
  const auto note = [&](const Value& value, std::size_t member) {
    const auto found = firstMember.try_emplace(value, member).first;
    found->second = std::min(found->second, member);
  };
  for (std::size_t m = 0; m < members.size(); ++m) {
    const runtime::data::VariableRecord& record = *rows.dictionary.variables[static_cast<std::size_t>(members[m])];
    const MAVO_ValueLabelMap labels(record.valueLabels);
    const OBS* obs = nullptr;
    const char* label = nullptr;
    while (labels.GetNextPair(obs, label) != 0) {
      Value value = record.width == 0
                        ? Number(obs->number)
                        : Value{true, 0.0, std::string(obs->bytes, static_cast<std::size_t>(record.width))};
      if (value.isText) value.text.erase(value.text.find_last_not_of(' ') + 1);
      if (!rows.IsUserMissing(members[m], value)) note(value, m);
    }
  }
  for (const std::size_t row : rows.taken) {
    const mpq_class weight = rows.Weight(row);
    if (weight == 0) continue;
    result.total += weight;
    std::set<Value> held;
    for (std::size_t m = 0; m < members.size(); ++m) {
      const std::optional<Value> value = rows.At(members[m], row);
      if (!value || rows.IsUserMissing(members[m], *value)) continue;
      held.insert(*value);
      note(*value, m);
    }
    if (held.empty()) result.missing += weight;
    for (const Value& value : held) weights[value] += weight;
    met.insert(held.begin(), held.end());
  }
  for (const auto& [value, member] : firstMember)
    result.categories.push_back({value, members[member], TextOf(value), weights[value], true});
  result.values = static_cast<int>(met.size());
  return result;
}

Dimension CountDichotomySet(const Rows& rows, const std::vector<int>& members, const Value& counted) {
  Dimension result;
  for (const int member : members) {
    const bool isThere = std::any_of(result.categories.begin(), result.categories.end(),
                                     [member](const Category& category) { return category.code == member; });
    if (!isThere)
      result.categories.push_back(
          {Number(0.0), member, rows.dictionary.variables[static_cast<std::size_t>(member)]->name, 0, true});
  }
  for (const std::size_t row : rows.taken) {
    const mpq_class weight = rows.Weight(row);
    if (weight == 0) continue;
    result.total += weight;
    bool responded = false;
    for (Category& category : result.categories) {
      const std::optional<Value> value = rows.At(category.code, row);
      if (!value || !(*value == counted)) continue;
      responded = true;
      category.weight += weight;
    }
    if (!responded) result.missing += weight;
  }
  for (const Category& category : result.categories) result.values += category.weight > 0 ? 1 : 0;
  return result;
}

Scale Summarise(const Rows& rows, int variable, const std::vector<double>& cutPoints) {
  Scale result;
  mpq_class sum;
  mpq_class squares;
  bool isText = false;
  std::map<double, mpq_class> distinct;
  for (const std::size_t row : rows.taken) {
    const mpq_class weight = rows.Weight(row);
    if (weight == 0) continue;
    const std::optional<Value> value = rows.At(variable, row);
    if (!value || rows.IsUserMissing(variable, *value)) {
      result.missing += weight;
      continue;
    }
    result.valid += weight;
    isText = value->isText;
    if (isText) continue;
    const mpq_class x(value->number);
    sum += weight * x;
    squares += weight * x * x;
    distinct[value->number] += weight;
  }
  const bool hasNumbers = result.valid > 0 && !isText;
  result.mean = hasNumbers ? NearestOf(sum / result.valid) : kNaN;
  result.deviation =
      hasNumbers && result.valid > 1 ? NearestRootOf((squares - sum * sum / result.valid) / (result.valid - 1)) : kNaN;
  const std::vector<std::pair<double, mpq_class>> sorted(distinct.begin(), distinct.end());
  for (const double cutPoint : cutPoints)
    result.percentiles.push_back(hasNumbers ? PercentileAt(sorted, result.valid, cutPoint) : kNaN);
  return result;
}

}  // namespace reference
