#include "runtime/output/render/json.h"

#include <string>

#include "runtime/output/render/jsonreport.h"

namespace runtime::output {
namespace {

class JsonRenderer : public Renderer {
 public:
  explicit JsonRenderer(const RenderOptions& options) : fCatalog(options.catalog) {}

  void Render(const Report& report, std::ostream& out) const override {
    JsonOptions options;
    options.catalog = fCatalog;
    JsonReportWriter(out, options).WriteReport(report);
  }

 private:
  const Catalog* fCatalog;
};

/// A line begins with its kind; what it tells of stands in a member of that name, or in several.
class JsonLinesRenderer : public Renderer {
 public:
  explicit JsonLinesRenderer(const RenderOptions& options) : fCatalog(options.catalog) {}

  void Render(const Report& report, std::ostream& out) const override {
    JsonOptions options;
    options.layout = JsonOptions::Layout::Compact;
    options.catalog = fCatalog;
    JsonReportWriter json(out, options);
    json.WriteRaw(R"({"kind":"report","format":"codebook-report/1")");
    if (report.facts) {
      json.WriteRaw(R"(,"facts":)");
      json.WriteFacts(*report.facts, report.language);
    }
    json.WriteRaw("}\n");
    for (const Message& message : report.messages) {
      json.WriteRaw(R"({"kind":"message","message":)");
      json.WriteMessage(message);
      json.WriteRaw("}\n");
    }
    int number = 0;
    for (const auto& procedure : report.procedures) WriteProcedure(*procedure, std::to_string(++number), json);
  }

 private:
  static void WriteProcedure(const Procedure& procedure, const std::string& number, JsonReportWriter& json) {
    json.WriteRaw(R"({"kind":"procedure","procedure":)" + number + R"(,"title":)");
    json.WriteText(procedure.title);
    json.WriteRaw(R"(,"tables":)" + std::to_string(procedure.tables.size()) + "}\n");
    int index = 0;
    for (const auto& table : procedure.tables) {
      json.WriteRaw(R"({"kind":"table","procedure":)" + number + R"(,"title":)");
      json.WriteText(procedure.title);
      json.WriteRaw(R"(,"index":)" + std::to_string(++index) + R"(,"table":)");
      json.WriteTable(*table);
      json.WriteRaw("}\n");
    }
  }

  const Catalog* fCatalog;
};

}  // namespace

std::unique_ptr<Renderer> NewJsonRenderer(const RenderOptions& options) {
  return std::make_unique<JsonRenderer>(options);
}

std::unique_ptr<Renderer> NewJsonLinesRenderer(const RenderOptions& options) {
  return std::make_unique<JsonLinesRenderer>(options);
}

}  // namespace runtime::output
