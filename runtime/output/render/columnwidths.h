// How a table's columns share the width of a page.
#pragma once

#include <optional>
#include <vector>

namespace runtime::output {

/// What one column would like, in columns of the terminal: least <= comfortable <= natural.
struct ColumnNeed {
  int least = 1;        // no word is broken
  int comfortable = 1;  // wrapped, but pleasant to read
  int natural = 1;      // nothing is wrapped
  bool numeric = false;

  /// Makes room for one more content.
  void Include(const ColumnNeed& content);
};

enum class Comfort { Comfortable, Least };

/// Widths that fill at most `available` columns, each between the least (or comfortable) and the natural width of its
/// column; columns grow evenly. Nothing when even the lower bounds are too wide.
std::optional<std::vector<int>> ShareWidth(const std::vector<ColumnNeed>& needs, int available, Comfort comfort);

/// Widths where not even the least fit: text columns are narrowed first, the widest first, then the numeric ones; none
/// below 2 (or its natural 1), so the sum may be more than `available`.
std::vector<int> SqueezeWidth(const std::vector<ColumnNeed>& needs, int available);

}  // namespace runtime::output
