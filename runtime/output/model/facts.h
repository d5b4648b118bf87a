// What a report's reader must know of the data beside the tables: facts of the dataset, its items, what was counted of
// them, and how the statistics are defined.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace runtime::output {

/// What the runtime counted of one item of a procedure, for pictures and lists. All weights are sums of case weights.
struct Sketch {
  /// A class of values: [from, to), the last one closed; from and to are the same where there is but one value.
  struct Bin {
    double from = 0.0;
    double to = 0.0;
    double weight = 0.0;
  };

  std::string item;      // name of the variable or set
  double total = 0.0;    // weight of all cases
  double missing = 0.0;  // weight of the cases with a missing value; of a set, of those without a response
  // Of a scale variable with valid values; elsewhere NaN and empty.
  double mean = std::numeric_limits<double>::quiet_NaN();
  std::vector<double> quartiles;  // the three
  std::vector<Bin> bins;          // ascending, without gaps
};

/// What the dictionary says of a variable or set.
struct ItemFacts {
  enum class Type { Numeric, String, Date, CategorySet, DichotomySet };  // Date: dates and times
  enum class Level { Unknown, Nominal, Ordinal, Scale };
  enum class Role { Input, Target, Both, None, Partition, Split };

  std::string name;
  std::string label;  // empty: none
  Type type = Type::Numeric;
  Level level = Level::Unknown;    // of a set: Nominal
  Role role = Role::Input;         // of a set: Input
  int position = 0;                // of a variable, in the dictionary, from 1; of a set 0
  std::vector<std::string> items;  // of a set: its members' names
};

/// One sentence of how a number came about. Name and text are fixed; `^1`, `^2` stand for the arguments, which come
/// from the data.
struct MethodNote {
  std::string name;
  std::string text;
  std::vector<std::string> arguments;
};

/// Of the dataset that a report describes.
struct ReportFacts {
  std::string file;                     // file name without folders; empty: none
  std::string label;                    // empty: none
  std::int64_t cases = -1;              // unweighted; negative: not known
  std::string weight;                   // weight variable; empty: unweighted
  std::string weightLabel;              // its label; empty: none
  std::optional<double> weightedCases;  // where a pass counted them
  std::int64_t variables = 0;           // in the dictionary
  /// The variables and sets that the report has a table of: variables in the dictionary's order, then sets.
  std::vector<ItemFacts> items;
  std::vector<MethodNote> notes;  // in the order in which they are shown
};

}  // namespace runtime::output
