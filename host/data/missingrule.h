// Which values of a variable are user-missing.
#pragma once

#include <string>
#include <vector>

/// Of a numeric variable `values` and `ranges` hold; of a string variable `texts` (without trailing blanks; the empty
/// text is the blank value). System-missing is not user-missing.
struct MissingRule {
  struct Range {
    double low;   // inclusive; -infinity for an open end
    double high;  // inclusive; +infinity for an open end
  };

  std::vector<double> values;
  std::vector<Range> ranges;
  std::vector<std::string> texts;

  bool empty() const { return values.empty() && ranges.empty() && texts.empty(); }

  bool holds(double value) const {
    for (const double missing : values)
      if (value == missing) return true;
    for (const Range& range : ranges)
      if (value >= range.low && value <= range.high) return true;
    return false;
  }
};
