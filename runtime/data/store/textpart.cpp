#include "runtime/data/store/textpart.h"

namespace runtime::data {

void TextPart::Append(std::string_view* texts, std::size_t count) {
  fCodes.resize(fCodes.size() + count);
  fTexts.Enter(texts, count, fCodes.data() + fCodes.size() - count);
}

void TextPart::JoinTo(ArenaStringTable& table, std::uint32_t* cells) const {
  bool isSame = true;
  std::vector<std::uint32_t> codeInTable(fTexts.Size());
  for (std::uint32_t code = 0; code < codeInTable.size(); ++code) {
    codeInTable[code] = table.Enter(fTexts.Text(code));
    isSame = isSame && codeInTable[code] == code;
  }
  if (isSame) return;
  for (std::size_t row = 0; row < fCodes.size(); ++row) cells[row] = codeInTable[fCodes[row]];
}

void TextPart::Clear() {
  fTexts.Clear();
  fCodes.clear();
}

}  // namespace runtime::data
