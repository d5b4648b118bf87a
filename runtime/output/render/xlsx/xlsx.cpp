#include "runtime/output/render/xlsx/xlsx.h"

#include "runtime/output/render/xlsx/indexsheet.h"
#include "runtime/output/render/xlsx/valuesheet.h"
#include "runtime/output/render/xlsx/variablesheet.h"
#include "runtime/output/render/xlsx/workbook.h"

namespace runtime::output {
namespace {

class XlsxRenderer : public Renderer {
 public:
  explicit XlsxRenderer(const Catalog* catalog) : fCatalog(catalog) {}

  // The sheets stand in the order in which they are made; the index, which tells of the others, is filled last.
  void Render(const Report& report, std::ostream& out) const override {
    const SheetLimits limits;
    Workbook workbook(Translate(fCatalog, " … [cut]"));
    IndexSheet index(workbook, report, fCatalog, limits);
    VariableSheet variables(workbook, report, fCatalog, limits);
    ValueSheet values(workbook, report, fCatalog, limits);
    TableSheet tables(workbook, report, fCatalog, limits);
    const PlacesOfTables places = tables.Write();
    variables.Write(places);
    values.Write();
    index.Write(places);
    workbook.WriteTo(out);
  }

 private:
  const Catalog* fCatalog;
};

}  // namespace

std::unique_ptr<Renderer> NewXlsxRenderer(const RenderOptions& options) {
  return std::make_unique<XlsxRenderer>(options.catalog);
}

}  // namespace runtime::output
