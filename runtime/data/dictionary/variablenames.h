// Well-formed names from column headers and set names.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace runtime::data {

/// A well-formed variable name for each header, no two the same without regard to case. A header that is a name already
/// keeps it; of equal ones the first. Otherwise it is changed as little as possible: runs of other characters become
/// one
/// `_`, what may not begin a name gets `@` before it, a period at the end becomes `_`, a reserved word gets `_` behind
/// it, what is longer than 64 bytes is cut at a character, and a clash gets `_2`, `_3`, ... An empty header becomes V
/// and the number of its column, from 1.
std::vector<std::string> MakeVariableNames(const std::vector<std::string>& headers);

/// The same for one text, without regard to others. REQUIRES: the text is not empty.
std::string MakeWellFormed(std::string_view text);

/// Gives out names that no two callers share, without regard to case.
class NamesInUse {
 public:
  /// The name itself, or with `_2`, `_3`, ... behind it, cut so that it stays within 64 bytes beside its first `prefix`
  /// bytes.
  std::string Claim(const std::string& name, std::size_t prefix = 0);
  /// Takes the name when it is free.
  bool TryClaim(const std::string& name);

 private:
  std::unordered_set<std::string> fFolded;
  std::unordered_map<std::string, std::size_t> fLastNumber;  // by folded name: thousands of equal headers stay cheap
};

}  // namespace runtime::data
