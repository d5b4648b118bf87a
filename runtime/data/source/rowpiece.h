// Rows of a stream that come one by one, gathered by columns.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/source/tablesource.h"

namespace runtime::data {

class RowPiece {
 public:
  /// `isText` says of each column whether its cells are texts; others are numbers.
  explicit RowPiece(std::vector<bool> isText);

  std::size_t columns() const { return fIsText.size(); }
  bool isText(std::size_t column) const { return fIsText[column]; }
  std::size_t textBytes() const { return fTextBytes; }

  void Clear();
  /// NaN: no value.
  void AddNumber(std::size_t column, double number) { fNumbers[column].push_back(number); }
  /// The text of a cell whose number is NaN because the text is none.
  void AddUnreadable(std::size_t column, std::string_view text) {
    fUnreadable[column].push_back({fNumbers[column].size() - 1, std::string(text)});
  }
  /// With how many decimals a number is written.
  void AddDecimals(std::size_t column, int decimals) { fDecimals[column] = std::max(fDecimals[column], decimals); }
  /// An empty text: no value, or an empty one.
  void AddText(std::size_t column, std::string_view text) {
    fTexts[column].bytes += text;
    fTexts[column].ends.push_back(fTexts[column].bytes.size());
    fTextBytes += text.size();
  }
  /// See TableStream.
  void Take(std::size_t column, std::size_t first, std::size_t count, ColumnSink& sink);

 private:
  struct KeptTexts {
    std::string bytes;
    std::vector<std::size_t> ends;
  };

  struct UnreadableText {
    std::size_t row = 0;
    std::string text;
  };

  std::vector<bool> fIsText;
  std::vector<std::vector<double>> fNumbers;
  std::vector<std::vector<UnreadableText>> fUnreadable;
  std::vector<int> fDecimals;  // the most of each column that were written, 0 where nobody says
  std::vector<KeptTexts> fTexts;
  std::size_t fTextBytes = 0;
  std::vector<std::string_view> fViews;
};

}  // namespace runtime::data
