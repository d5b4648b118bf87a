// What does not fit, for people and for programs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "runtime/data/checking/finding.h"

namespace app {

struct CheckReport {
  std::string data;        // as it was named
  std::string dictionary;  // empty: there is none
  std::int64_t cases = 0;
  std::size_t variables = 0;
  std::vector<runtime::data::Finding> findings;
};

/// Findings that count: errors and warnings.
std::size_t FindingsThatCount(const CheckReport& report);

/// A finding a line, under it what to do, at the end how many there are. Nothing from the data stands there raw.
void WriteCheckText(const CheckReport& report, bool isUtf8, std::ostream& out);

/// One JSON object, see docs/reference/check.md.
void WriteCheckJson(const CheckReport& report, std::ostream& out);

}  // namespace app
