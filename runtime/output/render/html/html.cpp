#include "runtime/output/render/html/html.h"

#include <string>
#include <string_view>

#include "runtime/output/language/catalog.h"
#include "runtime/output/render/html/htmltext.h"
#include "runtime/output/render/html/pagewords.h"
#include "runtime/output/render/jsonreport.h"
#include "runtime/output/render/terminaltext.h"

namespace runtime::output {

// Embedded: runtime/output/render/html/page/, the script's files joined.
std::string_view PageSkeleton();
std::string_view PageStyle();
std::string_view PageScript();

namespace {

/// What the window and lists of files are headed by: one line, and no longer than such places show.
std::string PageTitle(const Report& report, const Catalog* catalog) {
  constexpr std::size_t kMost = 200;  // bytes
  std::string title(Translate(catalog, "Codebook"));
  if (!report.facts) return title;
  std::string_view of = report.facts->label.empty() ? report.facts->file : report.facts->label;
  if (of.empty()) return title;
  if (of.size() > kMost) {
    of = of.substr(0, kMost);
    while (!of.empty() && (static_cast<unsigned char>(of.back()) & 0xC0U) == 0x80U) of.remove_suffix(1);
    if (!of.empty()) of.remove_suffix(1);  // the character that was cut
  }
  return EscapeForTerminal(of, true, LineEnds::Escape) + " – " + title;
}

const std::string& Policy() {
  static const std::string policy = "default-src 'none'; script-src " + HashSource(PageScript()) + "; style-src " +
                                    HashSource(PageStyle()) + "; img-src data:; base-uri 'none'; form-action 'none'";
  return policy;
}

class HtmlRenderer : public Renderer {
 public:
  explicit HtmlRenderer(const RenderOptions& options) : fCatalog(options.catalog) {}

  void Render(const Report& report, std::ostream& out) const override {
    // Places of the skeleton are names in braces.
    std::string_view rest = PageSkeleton();
    while (true) {
      const std::size_t begin = rest.find('{');
      out << rest.substr(0, begin);
      if (begin == std::string_view::npos) return;
      const std::size_t end = rest.find('}', begin);
      Fill(rest.substr(begin + 1, end - begin - 1), report, out);
      rest.remove_prefix(end + 1);
    }
  }

 private:
  void Fill(std::string_view place, const Report& report, std::ostream& out) const {
    if (place == "language") {
      out << HtmlText(report.language);
    } else if (place == "policy") {
      out << Policy();
    } else if (place == "title") {
      out << HtmlText(PageTitle(report, fCatalog));
    } else if (place == "style") {
      out << PageStyle();
    } else if (place == "noscript") {
      out << HtmlText(
          Translate(fCatalog,
                    "This codebook is drawn by JavaScript, which is switched off in this browser. Switch it "
                    "on for this page; it works without a network and sends nothing anywhere."));
    } else if (place == "words") {
      WriteWords(out);
    } else if (place == "report") {
      JsonReportWriter(out, InPage(true)).WriteReport(report);
    } else if (place == "script") {
      out << PageScript();
    }
  }

  JsonOptions InPage(bool sketches) const {
    JsonOptions options;
    options.layout = JsonOptions::Layout::Compact;
    options.sketches = sketches;
    options.insideHtml = true;
    options.catalog = fCatalog;
    return options;
  }

  /// Those that have a translation.
  void WriteWords(std::ostream& out) const {
    JsonReportWriter json(out, InPage(false));
    std::string_view separator = "{";
    for (const char* word : PageWords()) {
      const std::string_view translated = Translate(fCatalog, word);
      if (translated == word) continue;
      json.WriteRaw(separator);
      json.WriteText(word);
      json.WriteRaw(":");
      json.WriteText(translated);
      separator = ",";
    }
    json.WriteRaw(separator == "{" ? "{}" : "}");
  }

  const Catalog* fCatalog;
};

}  // namespace

std::unique_ptr<Renderer> NewHtmlRenderer(const RenderOptions& options) {
  return std::make_unique<HtmlRenderer>(options);
}

}  // namespace runtime::output
