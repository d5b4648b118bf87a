// The report as text for terminals: boxed tables no wider than the page.
#pragma once

#include <memory>

#include "runtime/output/render/renderer.h"

namespace runtime::output {

/// Tables one below another, their titles above them. Left out are groups without rows and columns without cells.
/// Groups stand in columns of their own beside their rows; on a narrow page above them, and on a very narrow one the
/// vertical lines go too. The method notes stand at the end. The messages are not part of the text.
std::unique_ptr<Renderer> NewTextRenderer(const RenderOptions& options);

}  // namespace runtime::output
