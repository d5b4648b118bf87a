#include "app/commands/schema.h"

#include <optional>
#include <ostream>

#include "app/exitstatus.h"
#include "app/options.h"
#include "app/reportsink.h"
#include "runtime/output/render/jsonschema.h"

namespace app {

int RunSchema(int argc, const char* const*, const Saying&) {
  if (argc > 1)
    throw UsageError(
        "codebook schema prints the JSON Schema of the report and takes no options. A data file of that name is "
        "./schema.");
  WriteReportTo(std::nullopt, [](std::ostream& out) { out << runtime::output::JsonReportSchema(); });
  return kDone;
}

}  // namespace app
