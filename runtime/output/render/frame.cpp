#include "runtime/output/render/frame.h"

#include <algorithm>

#include "runtime/output/render/textwidth.h"

namespace runtime::output {
namespace {

constexpr const char* kDim = "\x1b[2m";
constexpr const char* kBold = "\x1b[1m";
constexpr const char* kPlain = "\x1b[0m";

// The crossing of a rule with the bars that meet it.
const char* Crossing(bool utf8, bool left, bool right, bool up, bool down) {
  if (!utf8) return up || down ? "+" : "-";
  static const char* const crossings[] = {" ", "╷", "╵", "│",   // neither left nor right
                                          "╶", "┌", "└", "├",   // right
                                          "╴", "┐", "┘", "┤",   // left
                                          "─", "┬", "┴", "┼"};  // both
  return crossings[(left ? 8 : 0) + (right ? 4 : 0) + (up ? 2 : 0) + (down ? 1 : 0)];
}

void AppendDim(std::string& page, const TextFrame& frame, std::string_view line) {
  if (frame.color) page += kDim;
  page += line;
  if (frame.color) page += kPlain;
}

}  // namespace

int ColumnGap(const TextFrame& frame) { return frame.bars ? 3 : 2; }

int FrameWidth(const TextFrame& frame, std::size_t columns) {
  const int gaps = static_cast<int>(columns) - 1;
  return frame.bars ? 4 + 3 * gaps : 2 * gaps;
}

void AppendBar(std::string& page, const TextFrame& frame, Edge edge) {
  if (!frame.bars) {
    if (edge == Edge::Between) page += "  ";
    return;
  }
  if (edge != Edge::Left) page += ' ';
  AppendDim(page, frame, frame.utf8 ? "│" : "|");
  if (edge != Edge::Right) page += ' ';
}

void AppendRule(std::string& page, const TextFrame& frame, const std::vector<int>& widths,
                const std::vector<bool>& above, const std::vector<bool>& below) {
  const std::string_view dash = frame.utf8 ? "─" : "-";
  std::string line;
  for (std::size_t c = 0; c < widths.size(); ++c) {
    const int padding = frame.bars ? 2 : (c == 0 ? 0 : 2);
    if (frame.bars) line += Crossing(frame.utf8, c > 0, true, above[c], below[c]);
    for (int i = 0; i < widths[c] + padding; ++i) line += dash;
  }
  if (frame.bars) line += Crossing(frame.utf8, true, false, above[widths.size()], below[widths.size()]);
  AppendDim(page, frame, line);
  page += '\n';
}

void AppendText(std::string& page, const TextFrame& frame, std::string_view text, int width, int indent, bool right,
                bool bold) {
  const int blanks = std::max(0, width - indent - DisplayWidth(text));
  page.append(static_cast<std::size_t>(indent + (right ? blanks : 0)), ' ');
  const bool styled = frame.color && bold && !text.empty();
  if (styled) page += kBold;
  page += text;
  if (styled) page += kPlain;
  if (!right) page.append(static_cast<std::size_t>(blanks), ' ');
}

}  // namespace runtime::output
