// The report as JSON: messages, tables and facts as they stand in the model, numbers in full precision.
#pragma once

#include <memory>

#include "runtime/output/render/renderer.h"

namespace runtime::output {

/// One JSON text, one item on a line.
std::unique_ptr<Renderer> NewJsonRenderer(const RenderOptions& options);
/// A JSON text on each line: the report with its facts, then each message, then each procedure followed by its tables.
std::unique_ptr<Renderer> NewJsonLinesRenderer(const RenderOptions& options);

}  // namespace runtime::output
