// Differences in words.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "runtime/data/comparing/comparison.h"

namespace app {

/// A change as a reader sees it. The texts may come from the data and are to be escaped.
struct ChangeWords {
  std::string what;                   // "value label", "share of"
  std::optional<std::string> about;   // the value, attribute or set that it is about
  std::string aboutLabel;             // its label; empty: none
  std::optional<std::string> before;  // absent: there was none
  std::optional<std::string> after;
  std::string extent;     // "+5.3 points", or empty
  bool isQuoted = false;  // before and after are texts of the data, not words or numbers
};

ChangeWords WordsOf(const runtime::data::Change& change);

/// "same label, value labels and type".
std::string WordsOf(const runtime::data::RenameEvidence& evidence);

/// "2 variables added, 1 removed, 5 changed, 112 the same".
std::string CountWords(const runtime::data::Comparison& comparison);

/// "5,836".
std::string Grouped(std::size_t count);

/// "1 case", "5,836 cases".
std::string Number(std::size_t count, const std::string& noun);

}  // namespace app
