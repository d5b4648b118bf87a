// The report as a page: one file with everything in it, for any browser, from disk and without a network.
#pragma once

#include <memory>

#include "runtime/output/render/renderer.h"

namespace runtime::output {

/// The page holds the report as JSON, once; its script draws what is seen. Its policy lets no script and no style run
/// but its own and lets nothing be fetched.
std::unique_ptr<Renderer> NewHtmlRenderer(const RenderOptions& options);

}  // namespace runtime::output
