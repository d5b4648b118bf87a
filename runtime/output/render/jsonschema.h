// The published JSON Schema of the JSON report.
#pragma once

#include <string_view>

namespace runtime::output {

/// The text of schemas/codebook-report.schema.json, which is part of the program.
std::string_view JsonReportSchema();

}  // namespace runtime::output
