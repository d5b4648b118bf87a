#include "runtime/output/render/html/htmltext.h"

#include "runtime/output/render/html/sha256.h"

namespace runtime::output {

std::string HtmlText(std::string_view text) {
  std::string html;
  for (const char c : text) {
    switch (c) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      default:
        html += c;
    }
  }
  return html;
}

std::string HashSource(std::string_view text) {
  const auto digest = Sha256(text);
  return "'sha256-" + Base64(digest.data(), digest.size()) + "'";
}

}  // namespace runtime::output
