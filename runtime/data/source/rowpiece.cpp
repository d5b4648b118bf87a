#include "runtime/data/source/rowpiece.h"

#include <utility>

namespace runtime::data {

RowPiece::RowPiece(std::vector<bool> isText)
    : fIsText(std::move(isText)),
      fNumbers(fIsText.size()),
      fUnreadable(fIsText.size()),
      fDecimals(fIsText.size()),
      fTexts(fIsText.size()) {}

void RowPiece::Clear() {
  for (std::vector<double>& numbers : fNumbers) numbers.clear();
  for (KeptTexts& texts : fTexts) {
    texts.bytes.clear();
    texts.ends.clear();
  }
  for (std::vector<UnreadableText>& texts : fUnreadable) texts.clear();
  fTextBytes = 0;
}

void RowPiece::Take(std::size_t column, std::size_t first, std::size_t count, ColumnSink& sink) {
  if (!fIsText[column]) {
    if (fDecimals[column] > 0) sink.WrittenDecimals(fDecimals[column]);
    sink.Numbers(fNumbers[column].data() + first, count);
    for (const UnreadableText& cell : fUnreadable[column])
      if (cell.row >= first && cell.row < first + count) sink.Unreadable(cell.text);
    return;
  }
  const KeptTexts& texts = fTexts[column];
  fViews.clear();
  for (std::size_t row = first; row < first + count; ++row) {
    const std::size_t begin = row > 0 ? texts.ends[row - 1] : 0;
    fViews.emplace_back(texts.bytes.data() + begin, texts.ends[row] - begin);
  }
  sink.Texts(fViews.data(), count);
}

}  // namespace runtime::data
