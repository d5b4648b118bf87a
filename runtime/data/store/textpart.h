// The texts of one column over a group of rows, while they are collected.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "runtime/data/store/stringtable.h"

namespace runtime::data {

/// Codes into a table of the part's own texts, in order of first appearance. Trailing blanks are no part of a text.
class TextPart {
 public:
  void Append(std::string_view text) { fCodes.push_back(fTexts.Enter(text)); }
  /// Several at once, which is faster. Each may be changed: trailing blanks go.
  void Append(std::string_view* texts, std::size_t count);

  std::size_t rows() const { return fCodes.size(); }
  const ArenaStringTable& texts() const { return fTexts; }
  const std::vector<std::uint32_t>& codes() const { return fCodes; }
  /// Enters the texts into the table of the whole column and changes the codes, which stand in `cells`, accordingly.
  void JoinTo(ArenaStringTable& table, std::uint32_t* cells) const;
  /// Begins anew; memory is kept.
  void Clear();

 private:
  ArenaStringTable fTexts;
  std::vector<std::uint32_t> fCodes;
};

}  // namespace runtime::data
