// All that is told of the differences between two waves of a dataset, for its renderers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "runtime/data/comparing/comparison.h"
#include "runtime/data/comparing/distribution.h"
#include "runtime/output/render/renderer.h"

namespace app {

/// One of the two.
struct Wave {
  std::string file;                            // its name without folders, "-" for standard input
  std::optional<std::string> label;            // of the file
  std::optional<std::string> weight;           // the variable's name
  std::optional<std::int64_t> cases;           // absent: a dictionary without data
  std::size_t variables = 0;                   // in the dictionary
  runtime::data::Distributions distributions;  // of variables that both have; empty where they were not compared
};

struct ComparisonReport {
  Wave before;
  Wave after;
  bool distributionsCompared = false;
  runtime::data::Thresholds thresholds;
  runtime::data::Comparison comparison;
};

/// Text for a terminal, as wide as it is.
void WriteComparisonText(const ComparisonReport& report, const runtime::output::RenderOptions& options,
                         std::ostream& out);
/// JSON as docs/reference/diff.md has it.
void WriteComparisonJson(const ComparisonReport& report, std::ostream& out);
/// A page of its own.
void WriteComparisonHtml(const ComparisonReport& report, std::ostream& out);

}  // namespace app
