// The report as JSON: messages and tables as they stand in the model, numbers in full precision.
#pragma once

#include <memory>

#include "runtime/output/render/renderer.h"

namespace runtime::output {

std::unique_ptr<Renderer> NewJsonRenderer(const RenderOptions& options);

}  // namespace runtime::output
